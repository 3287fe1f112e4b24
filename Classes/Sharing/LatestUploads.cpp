#include "Classes/Sharing/LatestUploads.h"

#include "Classes/Sharing/ServiceAddress.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLog.h"

#include <QVariantMap>

namespace {
const QString urlKey = QStringLiteral("url");
const QString filenameKey = QStringLiteral("filename");
const QString dateKey = QStringLiteral("date");
} // namespace

QList<LatestUpload> LatestUploads::all()
{
    QList<LatestUpload> uploads;
    for (const QVariant &each : ZQUserDefaults::standardUserDefaults().objectForKey(storageKey).toList()) {
        const QVariantMap entry = each.toMap();
        const LatestUpload upload{ServiceAddress::link(entry.value(urlKey).toString()),
                                  entry.value(filenameKey).toString(), entry.value(dateKey).toDateTime()};
        if (!upload.url.isEmpty() && upload.date.isValid() && uploads.size() < most) {
            uploads.append(upload);
        }
    }
    return uploads;
}

void LatestUploads::add(const QList<LatestUpload> &uploads)
{
    QVariantList entries;
    for (const LatestUpload &each : QList<LatestUpload>(uploads.crbegin(), uploads.crend()) + all()) {
        if (entries.size() < most) {
            entries.append(QVariantMap{{urlKey, each.url}, {filenameKey, each.filename}, {dateKey, each.date}});
        }
    }
    ZQUserDefaults::standardUserDefaults().setObjectForKey(entries, storageKey);
}

void LatestUploads::synchronize()
{
    if (ZQError error; !ZQUserDefaults::standardUserDefaults().synchronize(&error)) {
        qCWarning(zqLogApplication).noquote()
            << "The latest uploads could not be kept:" << error.localizedDescription();
    }
}

#include "Classes/Sharing/LatestUploads.h"

#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLog.h"

#include <QUrl>
#include <QVariantMap>

#include <algorithm>

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
        const LatestUpload upload{link(entry.value(urlKey).toString()), entry.value(filenameKey).toString(),
                                  entry.value(dateKey).toDateTime()};
        if (!upload.url.isEmpty() && upload.date.isValid() && uploads.size() < most) {
            uploads.append(upload);
        }
    }
    return uploads;
}

void LatestUploads::add(const LatestUpload &upload)
{
    QVariantList entries;
    for (const LatestUpload &each : QList<LatestUpload>{upload} + all()) {
        if (entries.size() < most) {
            entries.append(QVariantMap{{urlKey, each.url}, {filenameKey, each.filename}, {dateKey, each.date}});
        }
    }
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    defaults.setObjectForKey(entries, storageKey);
    if (ZQError error; !defaults.synchronize(&error)) {
        qCWarning(zqLogApplication).noquote()
            << "The latest uploads could not be kept:" << error.localizedDescription();
    }
}

// It is pasted anywhere, also into a terminal, where a line break is a command.
QString LatestUploads::link(const QString &text)
{
    constexpr qsizetype longest = 8192;
    const bool isPlain = text.size() <= longest && std::none_of(text.begin(), text.end(), [](QChar each) {
                             return !each.isPrint() || each.isSpace();
                         });
    const QUrl url = isPlain ? QUrl(text, QUrl::StrictMode) : QUrl();
    const bool isOfWeb = url.scheme() == u"http" || url.scheme() == u"https";
    return url.isValid() && isOfWeb && !url.host().isEmpty() ? text : QString();
}

#include "Classes/Application/CutOffSyncs.h"

#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Foundation/ZQLog.h"

#include <QDir>
#include <QFile>

#include <functional>

namespace {

const QString beginning = QStringLiteral("running-");

QString folderIn(const QString &bundle)
{
    return bundle + QStringLiteral("/live-folders");
}

void eachBefore(const QString &bundle, const QDateTime &launch,
                const std::function<void(const QString &path, qint64 began)> &visit)
{
    const QDir folder(folderIn(bundle));
    for (const QString &name : folder.entryList({beginning + u'*'}, QDir::Files)) {
        bool isNumber = false;
        const qint64 began = name.mid(beginning.size()).toLongLong(&isNumber);
        if (isNumber && began < launch.toMSecsSinceEpoch()) {
            visit(folder.filePath(name), began);
        }
    }
}

} // namespace

QString CutOffSyncs::begin(const QString &bundle)
{
    const QString path = folderIn(bundle) + u'/' + beginning + QString::number(QDateTime::currentMSecsSinceEpoch());
    ZQError error;
    if (!zqMakeFolder(folderIn(bundle)) || !zqWriteFileAtomically(path, QByteArray(), &error)) {
        qCWarning(zqLogFiles).noquote() << "It is not noted that live folders are read:"
                                        << error.localizedDescription();
    }
    return path;
}

void CutOffSyncs::end(const QString &note)
{
    QFile::remove(note);
}

std::optional<QDateTime> CutOffSyncs::since(const QString &bundle, const QDateTime &launch)
{
    std::optional<qint64> first;
    eachBefore(bundle, launch,
               [&first](const QString &, qint64 began) { first = std::min(first.value_or(began), began); });
    return first ? std::optional(QDateTime::fromMSecsSinceEpoch(*first, Qt::UTC)) : std::nullopt;
}

void CutOffSyncs::forget(const QString &bundle, const QDateTime &launch)
{
    eachBefore(bundle, launch, [](const QString &path, qint64) { QFile::remove(path); });
}

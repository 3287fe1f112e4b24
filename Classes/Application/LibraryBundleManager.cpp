#include "Classes/Application/LibraryBundleManager.h"

#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QUuid>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace {

struct Made
{
    ZQMutex mutex;
    bool isKept ZQ_GUARDED_BY(mutex) = false;
    QSet<QUuid> bundleIDs ZQ_GUARDED_BY(mutex);
};
Made &made()
{
    static Made instance;
    return instance;
}

} // namespace

void LibraryBundleManager::rememberMadeDirectories(bool remembers)
{
    const ZQLockGuard lock(made().mutex);
    made().isKept = remembers;
    made().bundleIDs = {};
}

bool LibraryBundleManager::didMake(const QString &directoryName)
{
    const QUuid bundleID = QUuid::fromString(QFileInfo(directoryName).completeBaseName());
    const ZQLockGuard lock(made().mutex);
    return !bundleID.isNull() && made().bundleIDs.contains(bundleID);
}

QString LibraryBundleManager::newLibraryItemBundlePath()
{
    const QString library = ZQLibraryEnvironment::current().libraryDirectory();
    if (library.isEmpty()) {
        return {};
    }
    const QUuid bundleID = QUuid::createUuid();
    const QString name = bundleID.toString(QUuid::WithoutBraces).toUpper() + QStringLiteral(".ztlibraryitem");
    {
        const ZQLockGuard lock(made().mutex); // before it is there for anyone to see
        if (made().isKept) {
            made().bundleIDs.insert(bundleID);
        }
    }
    const QString path = library + u'/' + name;
    if (::mkdir(QFile::encodeName(path).constData(), 0755) != 0) {
        qCWarning(zqLogApplication).noquote() << zqFormat(QStringLiteral("Error creating item directory at %@ : %@"),
                                                          {path, QString::fromLocal8Bit(std::strerror(errno))});
        return {};
    }
    return path;
}

QString LibraryBundleManager::libraryPathForFilePath(const QString &filePath)
{
    const QString directory = newLibraryItemBundlePath();
    return directory.isEmpty() ? QString() : directory + u'/' + QFileInfo(filePath).fileName();
}

QString LibraryBundleManager::libraryPathForThumbOfURL(const QString &path)
{
    const QString directory = QFileInfo(path).path();
    return directory + u'/' + zqBaseName(path) + QStringLiteral("_thumb.") + zqPathExtension(path);
}

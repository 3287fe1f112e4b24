#include "Classes/Application/LibraryBundleManager.h"

#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

QString LibraryBundleManager::newLibraryItemBundlePath()
{
    const QString library = ZQLibraryEnvironment::current().libraryDirectory();
    if (library.isEmpty()) {
        return {};
    }
    const QString name =
        QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper() + QStringLiteral(".ztlibraryitem");
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

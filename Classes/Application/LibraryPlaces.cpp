#include "Classes/Application/LibraryPlaces.h"

#include "Classes/Application/LibraryLocation.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQPropertyList.h"
#include "Kit/Files/ZQRegularFile.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace {
const QString displayName = QStringLiteral("Zelto");
const QString bundleIdentifier = QStringLiteral("org.zelto.Zelto");
} // namespace

QString LibraryPlaces::createdDirectory(const QString &path, const char *message)
{
    if (QFileInfo(path).isDir()) {
        return path;
    }
    if (::mkdir(QFile::encodeName(path).constData(), 0755) != 0) {
        qCWarning(zqLogApplication).noquote()
            << zqFormat(QString::fromLatin1(message), {path, QString::fromLocal8Bit(std::strerror(errno))});
        return {};
    }
    zqSyncFolder(QFileInfo(path).path()); // before anything in it is reported as saved
    return path;
}

QString LibraryPlaces::applicationSupportFolder()
{
    QString base = ZQPaths::dataHome();
    if (!QDir().mkpath(base)) {
        base = ZQPaths::temporaryDir();
    }
    const QString folder = base + u'/' + displayName;
    if (QFileInfo(folder).isDir()) {
        return folder;
    }
    if (zqMakeFolder(folder)) {
        tryToRecuperateSandboxedLibraryToDestination(folder);
    } else {
        qCWarning(zqLogApplication).noquote() << "Error creating application support folder at" << folder;
    }
    return folder;
}

void LibraryPlaces::tryToRecuperateSandboxedLibraryToDestination(const QString &destination)
{
    const QString container = QDir::homePath() + QStringLiteral("/.var/app/") + bundleIdentifier;
    const QString library = container + QStringLiteral("/data/") + displayName + LibraryLocation::suffix;
    if (!QFileInfo(library).isDir()) {
        return;
    }
    constexpr qint64 largest = 64 << 20;
    const auto preferences = zqReadRegularFile(
        container + QStringLiteral("/Library/Preferences/") + bundleIdentifier + QStringLiteral(".plist"), largest);
    if (preferences) {
        if (const auto values = ZQPropertyList::fromData(*preferences)) {
            ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
            const QVariantMap map = values->toMap();
            for (auto it = map.begin(); it != map.end(); ++it) {
                defaults.setObjectForKey(it.value(), it.key());
            }
            defaults.synchronize();
        }
    }
    QDir().rename(library, destination + u'/' + displayName + LibraryLocation::suffix);
}

void LibraryPlaces::setLibraryBundleDirectory(const QString &path)
{
    m_requestedBundleDirectory = QFileInfo(path).absoluteFilePath();
}

QString LibraryPlaces::libraryBundleDirectory()
{
    if (!m_libraryBundleDirectory.isEmpty()) {
        return m_libraryBundleDirectory;
    }
    QString path = m_requestedBundleDirectory;
    if (path.isEmpty()) {
        path = LibraryLocation::remembered();
    }
    if (path.isEmpty()) {
        path = applicationSupportFolder() + u'/' + displayName + LibraryLocation::suffix;
    }
    m_libraryBundleDirectory = createdDirectory(path, "Error creating library bundle directory at %@ : %@");
    return m_libraryBundleDirectory;
}

QString LibraryPlaces::libraryDirectory()
{
    // Background imports ask too; they only ever see the finished value, set before the first import is queued.
    if (!m_libraryDirectory.isEmpty()) {
        return m_libraryDirectory;
    }
    if (!zqIsMainThread()) {
        return {};
    }
    const QString bundle = libraryBundleDirectory();
    if (!bundle.isEmpty()) {
        m_libraryDirectory =
            createdDirectory(bundle + QStringLiteral("/Library"), "Error creating library directory at %@ : %@");
    }
    return m_libraryDirectory;
}

QString LibraryPlaces::exportIconDirectory()
{
    return createdDirectory(applicationSupportFolder() + QStringLiteral("/ExportIcons"),
                            "Error creating export icon directory at %@ : %@");
}

QString LibraryPlaces::wallpaperDirectory()
{
    return createdDirectory(applicationSupportFolder() + QStringLiteral("/Wallpapers"),
                            "Error creating wallpaper directory at %@ : %@");
}

QString LibraryPlaces::templateDirectory()
{
    return createdDirectory(applicationSupportFolder() + QStringLiteral("/Templates"),
                            "Error creating template directory at %@ : %@");
}

QString LibraryPlaces::storePath()
{
    return libraryBundleDirectory() + QStringLiteral("/storedata");
}

void LibraryPlaces::forgetLibrary()
{
    m_libraryBundleDirectory.clear();
    m_libraryDirectory.clear();
}

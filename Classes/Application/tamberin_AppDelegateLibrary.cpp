// Where the library is, the directories beside it, and switching to another one.

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Files/ZQPropertyList.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace {
const QString displayName = QStringLiteral("Zelto");
const QString bundleIdentifier = QStringLiteral("org.zelto.Zelto");
const QString bundleSuffix = QStringLiteral(".ztlibrary");
const QString locationKey = QStringLiteral("ZeltoLibraryLocation");
} // namespace

QString tamberin_AppDelegate::createdDirectory(const QString &path, const char *message)
{
    if (QFileInfo(path).isDir()) {
        return path;
    }
    if (::mkdir(QFile::encodeName(path).constData(), 0755) != 0) {
        qCWarning(zqLogApplication).noquote()
            << zqFormat(QString::fromLatin1(message), {path, QString::fromLocal8Bit(std::strerror(errno))});
        return {};
    }
    return path;
}

QString tamberin_AppDelegate::applicationSupportFolder()
{
    QString base = ZQPaths::dataHome();
    if (!QDir().mkpath(base)) {
        base = ZQPaths::temporaryDir();
    }
    const QString folder = base + u'/' + displayName;
    if (QFileInfo(folder).isDir()) {
        return folder;
    }
    if (QDir().mkpath(folder)) {
        tryToRecuperateSandboxedLibraryToDestination(folder);
    } else {
        qCWarning(zqLogApplication).noquote() << "Error creating application support folder at" << folder;
    }
    return folder;
}

void tamberin_AppDelegate::tryToRecuperateSandboxedLibraryToDestination(const QString &destination)
{
    const QString container = QDir::homePath() + QStringLiteral("/.var/app/") + bundleIdentifier;
    const QString library = container + QStringLiteral("/data/") + displayName + bundleSuffix;
    if (!QFileInfo(library).isDir()) {
        return;
    }
    QFile preferences(container + QStringLiteral("/Library/Preferences/") + bundleIdentifier +
                      QStringLiteral(".plist"));
    if (preferences.open(QIODevice::ReadOnly)) {
        if (const auto values = ZQPropertyList::fromData(preferences.readAll())) {
            ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
            const QVariantMap map = values->toMap();
            for (auto it = map.begin(); it != map.end(); ++it) {
                defaults.setObjectForKey(it.value(), it.key());
            }
            defaults.synchronize();
        }
    }
    QDir().rename(library, destination + u'/' + displayName + bundleSuffix);
}

void tamberin_AppDelegate::setLibraryBundleDirectory(const QString &path)
{
    m_requestedBundleDirectory = QFileInfo(path).absoluteFilePath();
}

QString tamberin_AppDelegate::libraryBundleDirectory()
{
    if (!m_libraryBundleDirectory.isEmpty()) {
        return m_libraryBundleDirectory;
    }
    QString path = m_requestedBundleDirectory;
    if (path.isEmpty()) {
        path = loadLibraryURL();
    }
    if (path.isEmpty()) {
        path = applicationSupportFolder() + u'/' + displayName + bundleSuffix;
    }
    m_libraryBundleDirectory = createdDirectory(path, "Error creating library bundle directory at %@ : %@");
    return m_libraryBundleDirectory;
}

QString tamberin_AppDelegate::libraryDirectory()
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

QString tamberin_AppDelegate::exportIconDirectory()
{
    return createdDirectory(applicationSupportFolder() + QStringLiteral("/ExportIcons"),
                            "Error creating export icon directory at %@ : %@");
}

QString tamberin_AppDelegate::wallpaperDirectory()
{
    return createdDirectory(applicationSupportFolder() + QStringLiteral("/Wallpapers"),
                            "Error creating wallpaper directory at %@ : %@");
}

QString tamberin_AppDelegate::templateDirectory()
{
    return createdDirectory(applicationSupportFolder() + QStringLiteral("/Templates"),
                            "Error creating template directory at %@ : %@");
}

QString tamberin_AppDelegate::temporaryFolder()
{
    return ZQPaths::temporaryDir() + QStringLiteral("/ZeltoTemporaryFolder");
}

void tamberin_AppDelegate::deleteFilesAtPaths(const QStringList &paths, const QString &baseDirectory)
{
    QStringList arguments{QStringLiteral("-rf")};
    for (const QString &path : paths) {
        if (path.isEmpty() || (baseDirectory.isEmpty() && !path.startsWith(u'/'))) {
            continue; // without a base a relative path would be looked for wherever the process happens to stand
        }
        arguments.append(path);
    }
    if (arguments.size() == 1) {
        return;
    }
    auto *task = new QProcess(this);
    if (!baseDirectory.isEmpty()) {
        task->setWorkingDirectory(baseDirectory);
    }
    task->setStandardOutputFile(QProcess::nullDevice());
    task->setStandardErrorFile(QProcess::nullDevice());
    task->start(QStringLiteral("/bin/rm"), arguments);
    m_deleteTask = task;
}

void tamberin_AppDelegate::waitForRemovals()
{
    for (QProcess *task : findChildren<QProcess *>()) {
        task->waitForFinished(-1);
    }
}

void tamberin_AppDelegate::saveNewLibraryURL(const QString &path)
{
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    defaults.setObjectForKey(zqDataForPersistentURL(path), locationKey);
    defaults.synchronize();
}

QString tamberin_AppDelegate::loadLibraryURL()
{
    const QByteArray data = ZQUserDefaults::standardUserDefaults().dataForKey(locationKey);
    const QString path = data.isEmpty() ? QString() : zqURLFromPersistentData(data);
    if (path.isEmpty() || path.contains(QStringLiteral(".Trash")) || !QFileInfo(path).isDir()) {
        return {};
    }
    return path;
}

void tamberin_AppDelegate::notifyAndQuit()
{
    userInteraction().ask({zqLocalized("Zelto will now quit"),
                           zqLocalized("Please re-open Zelto for applying the new settings."),
                           {zqLocalized("Quit")},
                           {},
                           false});
    terminate();
}

namespace {
FileChoice libraryChoice()
{
    FileChoice choice;
    choice.extensions = {QStringLiteral("ztlibrary")};
    return choice;
}

QString withLibraryExtension(const QString &path)
{
    return path.endsWith(bundleSuffix) ? path : path + bundleSuffix;
}
} // namespace

void tamberin_AppDelegate::newZeltoLibrary()
{
    const auto chosen = userInteraction().chooseFileToSave(libraryChoice());
    if (!chosen) {
        return;
    }
    const QString path = withLibraryExtension(*chosen);
    if (::mkdir(QFile::encodeName(path).constData(), 0755) != 0) {
        userInteraction().presentError(ZQError::posix(errno, path));
        return;
    }
    saveNewLibraryURL(path);
    notifyAndQuit();
}

void tamberin_AppDelegate::openZeltoLibrary()
{
    FileChoice choice = libraryChoice();
    choice.title = zqLocalized("Please choose the library that you want to open");
    choice.prompt = zqLocalized("Open");
    choice.directory = true; // a bundle is a directory on this desktop
    const QStringList chosen = userInteraction().chooseFilesToOpen(choice);
    if (chosen.isEmpty()) {
        return;
    }
    if (!chosen.first().endsWith(bundleSuffix)) {
        userInteraction().presentError(ZQError::with(
            QStringLiteral("zelto.library"), 3, zqFormat(zqLocalized("“%@” is no Zelto library."), {chosen.first()}),
            zqLocalized("Choose a folder whose name ends in .ztlibrary.")));
        return;
    }
    saveNewLibraryURL(chosen.first());
    notifyAndQuit();
}

void tamberin_AppDelegate::moveZeltoLibrary()
{
    FileChoice choice = libraryChoice();
    const QString source = libraryBundleDirectory();
    choice.name = QFileInfo(source).completeBaseName();
    choice.prompt = zqLocalized("Move");
    choice.title = zqLocalized("Please choose where to move your library");
    const auto chosen = userInteraction().chooseFileToSave(choice);
    if (!chosen || source.isEmpty()) {
        return;
    }
    const QString destination = withLibraryExtension(*chosen);
    if (QFileInfo(destination).absoluteFilePath() == QFileInfo(source).absoluteFilePath()) {
        return; // what exists at the destination is removed first: here that would be the library itself
    }
    QFileInfo existing(destination);
    if (existing.isDir() && !existing.isSymLink()) {
        QDir(destination).removeRecursively();
    } else {
        QFile::remove(destination);
    }
    saveAction();
    removeManagedObjectContext();
    if (!QDir().rename(source, destination)) {
        // Another volume: copied whole before the old one goes, so that a failure half way loses nothing.
        ZQError error;
        if (!zqCopyFile(source, destination, &error)) {
            qCWarning(zqLogApplication).noquote() << error.localizedDescription();
            notifyAndQuit(); // the library stays where it was and is found there again
            return;
        }
        QDir(source).removeRecursively();
    }
    saveNewLibraryURL(destination);
    notifyAndQuit();
}

void tamberin_AppDelegate::revealLibraryInFinder()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{QUrl::fromLocalFile(libraryBundleDirectory()).toString()} << QString();
    QDBusConnection::sessionBus().send(call);
}

// Where the library is, the directories beside it, and switching to another one.

#include "Classes/Application/LibraryLocation.h"
#include "Classes/Application/LibraryLock.h"
#include "Classes/Application/LibraryMove.h"
#include "Classes/Application/ModelEnvironment.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQPaths.h"
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

#include <atomic>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <thread>

namespace {
const QString displayName = QStringLiteral("Zelto");
const QString bundleIdentifier = QStringLiteral("org.zelto.Zelto");
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
    zqSyncFolder(QFileInfo(path).path()); // before anything in it is reported as saved
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
    if (zqMakeFolder(folder)) {
        tryToRecuperateSandboxedLibraryToDestination(folder);
    } else {
        qCWarning(zqLogApplication).noquote() << "Error creating application support folder at" << folder;
    }
    return folder;
}

void tamberin_AppDelegate::tryToRecuperateSandboxedLibraryToDestination(const QString &destination)
{
    const QString container = QDir::homePath() + QStringLiteral("/.var/app/") + bundleIdentifier;
    const QString library = container + QStringLiteral("/data/") + displayName + LibraryLocation::suffix;
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
    QDir().rename(library, destination + u'/' + displayName + LibraryLocation::suffix);
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
        path = applicationSupportFolder() + u'/' + displayName + LibraryLocation::suffix;
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

namespace {
// Names come from the store, which may have come from elsewhere: nothing is removed but what lies in the base. Without
// a base a relative path would be looked for wherever the process happens to stand.
bool isRemovable(const QString &path, const QString &baseDirectory)
{
    const QStringList parts = path.split(u'/');
    const bool isPlain = !parts.contains(QStringLiteral("..")) && !parts.contains(QStringLiteral(".")) &&
                         !path.contains(QChar(QChar::Null));
    return !path.isEmpty() && isPlain && path.startsWith(u'/') == baseDirectory.isEmpty() && path != u"/";
}
} // namespace

void tamberin_AppDelegate::deleteFilesAtPaths(const QStringList &paths, const QString &baseDirectory)
{
    QStringList arguments{QStringLiteral("-rf")};
    for (const QString &path : paths) {
        if (!isRemovable(path, baseDirectory)) {
            qCWarning(zqLogApplication).noquote() << "Not removed:" << path << "in" << baseDirectory;
            continue;
        }
        arguments.append(path.startsWith(u'-') ? QStringLiteral("./") + path : path);
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

bool tamberin_AppDelegate::saveNewLibraryURL(const QString &path, ZQError *error)
{
    return LibraryLocation::remember(path, error);
}

QString tamberin_AppDelegate::loadLibraryURL()
{
    return LibraryLocation::remembered();
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
    return path.endsWith(LibraryLocation::suffix, Qt::CaseInsensitive) ? path : path + LibraryLocation::suffix;
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
    rememberAndQuit(path);
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
    rememberAndQuit(chosen.first());
}

void tamberin_AppDelegate::rememberAndQuit(const QString &library)
{
    ZQError error;
    if (saveNewLibraryURL(library, &error)) {
        notifyAndQuit();
    } else {
        userInteraction().presentError(error);
    }
}

bool tamberin_AppDelegate::agreesToReplace(const QString &path)
{
    const QFileInfo existing(path);
    return !(existing.exists() || existing.isSymLink()) ||
           userInteraction().ask({zqFormat(zqLocalized("“%@” exists already"), {existing.fileName()}),
                                  zqLocalized("It goes to the trash, and the library takes its place."),
                                  {zqLocalized("Replace"), zqLocalized("Cancel")},
                                  {},
                                  true}) == 0;
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
    ZQError error = LibraryMove::refusal(source, destination);
    if (!error.isNull()) {
        userInteraction().presentError(error);
        return;
    }
    if (!agreesToReplace(destination) || !stopRunningImports()) {
        return;
    }
    if (m_mainWindowController && !m_mainWindowController->commitEditing()) {
        return;
    }
    if (m_context && !m_context->save(&error)) {
        userInteraction().presentError(error); // what is not saved would be lost on the way
        return;
    }
    if (m_mainWindowController) {
        m_mainWindowController->savePersistentState();
        m_mainWindowController.reset(); // it shows objects of the store, and reads it on threads of its own
    }
    const std::unique_ptr<LibraryLock> lock = std::move(m_lock); // nobody else opens it half way
    removeManagedObjectContext();
    m_storeFailed = true; // and it is not opened again in this process
    if (!moveInBackground(source, destination, &error)) {
        userInteraction().presentError(error); // the library stays where it was and is found there again
    }
    notifyAndQuit();
}

bool tamberin_AppDelegate::moveInBackground(const QString &source, const QString &destination, ZQError *error)
{
    std::atomic<bool> isCancelled = false;
    std::atomic<bool> isDone = false;
    bool isMoved = false;
    const auto bar = userInteraction().beginProgress(zqLocalized("Moving the library…"), 1.0,
                                                     [&isCancelled] { isCancelled = true; });
    LibraryMove::Progress progress;
    progress.didCopy = [&bar](double, double total) { bar->advanceBy(1.0 / total); };
    progress.isCancelled = [&isCancelled] { return isCancelled.load(); };
    std::thread mover([&] {
        isMoved = LibraryMove::move(source, destination, progress, error);
        isDone = true;
    });
    zqRunMainLoopUntil([&isDone] { return isDone.load(); });
    mover.join();
    return isMoved;
}

void tamberin_AppDelegate::revealLibraryInFinder()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{QUrl::fromLocalFile(libraryBundleDirectory()).toString()} << QString();
    QDBusConnection::sessionBus().send(call);
}

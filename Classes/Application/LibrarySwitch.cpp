#include "Classes/Application/LibrarySwitch.h"

#include "Classes/Application/LibraryLocation.h"
#include "Classes/Application/LibraryLock.h"
#include "Classes/Application/LibraryMove.h"
#include "Classes/Application/LibraryPlaces.h"
#include "Classes/Application/LibraryStore.h"
#include "Classes/Application/Quit.h"
#include "Classes/Application/RunningParts.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include <atomic>
#include <cerrno>
#include <sys/stat.h>
#include <thread>

LibrarySwitch::LibrarySwitch(RunningParts &running, LibraryPlaces &places, LibraryStore &store, Quit &quit,
                             std::function<void()> closeLibrary)
    : m_running(running), m_places(places), m_store(store), m_quit(quit), m_closeLibrary(std::move(closeLibrary))
{
}

bool LibrarySwitch::switchToLibrary(const QString &path)
{
    ZQError error = LibraryLocation::refusal(path);
    if (!error.isNull()) {
        m_running.userInteraction().presentError(error);
        return false;
    }
    if (LibraryLocation::isSamePlace(path, m_places.libraryBundleDirectory())) {
        return false; // it is open
    }
    if (m_running.window()) {
        const int answer =
            m_running.userInteraction().ask({zqLocalized("Opening a new library requires Zelto to relaunch"),
                                             zqLocalized("Do you want to switch library and quit Zelto?"),
                                             {zqLocalized("Quit"), zqLocalized("Cancel")},
                                             {},
                                             false});
        if (answer != 0) {
            return false;
        }
    }
    if (!LibraryLocation::remember(path, &error)) {
        m_running.userInteraction().presentError(error);
        return false;
    }
    if (m_running.window()) {
        m_quit.terminate();
    }
    return true;
}

void LibrarySwitch::notifyAndQuit()
{
    m_running.userInteraction().ask({zqLocalized("Zelto will now quit"),
                                     zqLocalized("Please re-open Zelto for applying the new settings."),
                                     {zqLocalized("Quit")},
                                     {},
                                     false});
    m_quit.terminate();
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

void LibrarySwitch::newZeltoLibrary()
{
    const auto chosen = m_running.userInteraction().chooseFileToSave(libraryChoice());
    if (!chosen) {
        return;
    }
    const QString path = withLibraryExtension(*chosen);
    if (::mkdir(QFile::encodeName(path).constData(), 0755) != 0) {
        m_running.userInteraction().presentError(ZQError::posix(errno, path));
        return;
    }
    rememberAndQuit(path);
}

void LibrarySwitch::openZeltoLibrary()
{
    FileChoice choice = libraryChoice();
    choice.title = zqLocalized("Please choose the library that you want to open");
    choice.prompt = zqLocalized("Open");
    choice.directory = true; // a bundle is a directory on this desktop
    const QStringList chosen = m_running.userInteraction().chooseFilesToOpen(choice);
    if (chosen.isEmpty()) {
        return;
    }
    rememberAndQuit(chosen.first());
}

void LibrarySwitch::rememberAndQuit(const QString &library)
{
    ZQError error;
    if (LibraryLocation::remember(library, &error)) {
        notifyAndQuit();
    } else {
        m_running.userInteraction().presentError(error);
    }
}

bool LibrarySwitch::agreesToReplace(const QString &path)
{
    const QFileInfo existing(path);
    return !(existing.exists() || existing.isSymLink()) ||
           m_running.userInteraction().ask({zqFormat(zqLocalized("“%@” exists already"), {existing.fileName()}),
                                            zqLocalized("It goes to the trash, and the library takes its place."),
                                            {zqLocalized("Replace"), zqLocalized("Cancel")},
                                            {},
                                            true}) == 0;
}

void LibrarySwitch::moveZeltoLibrary()
{
    FileChoice choice = libraryChoice();
    const QString source = m_places.libraryBundleDirectory();
    choice.suggestedName = QFileInfo(source).completeBaseName();
    choice.prompt = zqLocalized("Move");
    choice.title = zqLocalized("Please choose where to move your library");
    const auto chosen = m_running.userInteraction().chooseFileToSave(choice);
    if (!chosen || source.isEmpty()) {
        return;
    }
    const QString destination = withLibraryExtension(*chosen);
    ZQError error = LibraryMove::refusal(source, destination);
    if (!error.isNull()) {
        m_running.userInteraction().presentError(error);
        return;
    }
    if (!agreesToReplace(destination) || !m_quit.stopRunningImports()) {
        return;
    }
    if (m_running.window() && !m_running.window()->commitEditing()) {
        return;
    }
    if (m_store.contextIfOpen() && !m_store.contextIfOpen()->save(&error)) {
        m_running.userInteraction().presentError(error); // what is not saved would be lost on the way
        return;
    }
    if (m_running.window()) {
        m_running.window()->savePersistentState();
        m_running.closeWindow(); // it shows objects of the store, and reads it on threads of its own
    }
    const std::unique_ptr<LibraryLock> lock = m_store.takeLock(); // nobody else opens it half way
    m_closeLibrary();
    m_store.stayClosed(); // and it is not opened again in this process
    if (!moveInBackground(source, destination, &error)) {
        m_running.userInteraction().presentError(error); // the library stays where it was and is found there again
    }
    notifyAndQuit();
}

bool LibrarySwitch::moveInBackground(const QString &source, const QString &destination, ZQError *error)
{
    std::atomic<bool> isCancelled = false;
    std::atomic<bool> isDone = false;
    bool isMoved = false;
    const auto bar = m_running.userInteraction().beginProgress(zqLocalized("Moving the library…"), 1.0,
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

void LibrarySwitch::revealLibraryInFinder()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{QUrl::fromLocalFile(m_places.libraryBundleDirectory()).toString()} << QString();
    QDBusConnection::sessionBus().send(call);
}

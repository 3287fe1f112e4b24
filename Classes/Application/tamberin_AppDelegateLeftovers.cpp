// Item directories that belong to no item of the store: what an ended import left goes, what a lost store knew comes
// back.

#include "Classes/Application/LeftoverSearch.h"
#include "Classes/Application/LibraryBundleManager.h"
#include "Classes/Application/RemovalNote.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QCoreApplication>
#include <QPointer>

#include <chrono>
#include <thread>
#include <utility>

namespace {

constexpr qsizetype pathsPerRemoval = 1000;
constexpr qsizetype removedWithoutAsking = 20;
constexpr std::chrono::milliseconds removalStep{20};
constexpr int takeBackButton = 0;
constexpr int removeButton = 1;

// One removing process at a time: a thousand at once would leave the window no processor. False when it was stopped.
bool startRemoval(const QStringList &names, const QString &library, const std::stop_token &stop)
{
    bool isStarted = names.isEmpty();
    while (!isStarted && !stop.stop_requested()) {
        const bool isServed = zqOnMainThreadAndWait([&] {
            tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
            QProcess *const earlier = delegate ? delegate->deleteTask() : nullptr;
            if (delegate && !stop.stop_requested() && (!earlier || earlier->state() == QProcess::NotRunning)) {
                delegate->deleteFilesAtPaths(names, library);
                isStarted = true;
            }
        });
        if (!isServed) {
            return false;
        }
        if (!isStarted) {
            std::this_thread::sleep_for(removalStep);
        }
    }
    return isStarted;
}

} // namespace

void tamberin_AppDelegate::checkAndDeleteLibraryLeftovers(std::function<void()> done)
{
    const QString library = libraryDirectory();
    if (isCheckingLeftovers() || !managedObjectContext() || library.isEmpty()) {
        if (done) {
            done();
        }
        return;
    }
    m_isCheckingLeftovers = true;
    m_leftoversDone = std::move(done);
    m_leftoverStop = std::stop_source();
    m_leftoverQueue = std::make_unique<ZQOperationQueue>(QStringLiteral("leftovers"), 1);
    // Asked before the person can forget those imports.
    auto cutOffImports = m_parts.importManager ? m_parts.importManager->tracesOfCutOffImports() : nullptr;
    m_leftoverQueue->addOperationWithBlock(
        [place = LeftoverSearch::Place{library, removalsPath(), m_launchDate, std::move(cutOffImports), m_coordinator},
         stop = m_leftoverStop.get_token()] {
            const auto found = LeftoverSearch(place).run(stop);
            zqOnMainThread([found, stop] {
                if (!stop.stop_requested()) { // else the application that asked may be gone
                    sharedDelegate()->didSearchLeftovers(found);
                }
            });
        });
}

bool tamberin_AppDelegate::isCheckingLeftovers() const
{
    return m_isCheckingLeftovers || m_isTakingBack || (m_leftoverQueue && m_leftoverQueue->operationCount() > 0);
}

void tamberin_AppDelegate::stopLeftoverCheck()
{
    m_leftoverStop.request_stop();
    m_isCheckingLeftovers = false;
    m_leftoversDone = {};
    LibraryBundleManager::rememberMadeDirectories(false);
    if (m_leftoverQueue) {
        m_leftoverQueue->cancelAllOperations();
        m_leftoverQueue->waitUntilAllOperationsAreFinished(); // a batch of names, or less
        m_leftoverQueue.reset();
    }
}

void tamberin_AppDelegate::didSearchLeftovers(std::optional<LibraryLeftovers> found)
{
    LibraryBundleManager::rememberMadeDirectories(false); // what is made from here on cannot be among those found
    if (!found) {
        endLeftoverCheck({}, Check::WasCutOff);
        return;
    }
    const bool isLeft = found->storeIsEmpty && !found->leftovers.isEmpty();
    if (isLeft) {
        // A store without a single item beside filled directories is a lost or restored store, not rubbish.
        qCWarning(zqLogApplication) << "The store lists no items, so" << found->leftovers.size()
                                    << "item directories are left where they are";
        found->leftovers.clear();
        found->unexplained = 0;
    }
    const std::stop_token stop = m_leftoverStop.get_token();
    const int answer = answerAboutLeftovers(found->unexplained, found->directories);
    if (stop.stop_requested()) {
        return; // the application quit meanwhile; the next launch looks again
    }
    if (answer == removeButton && !isLeft) {
        removeLeftovers(found->leftovers, found->lost);
        return;
    }
    if (answer == takeBackButton) {
        found->lost.append(found->leftovers);
    } else if (!isLeft) {
        qCWarning(zqLogApplication) << found->leftovers.size() << "item directories of no item are left";
    }
    endLeftoverCheck(found->lost, answer == takeBackButton ? Check::SawToAll : Check::IsComplete);
}

void tamberin_AppDelegate::removeLeftovers(const QStringList &leftovers, const QStringList &lost)
{
    if (leftovers.isEmpty()) {
        endLeftoverCheck(lost, Check::SawToAll);
        return;
    }
    constexpr qsizetype named = 50;
    qCInfo(zqLogApplication).noquote() << "Removing" << leftovers.size()
                                       << "item directories of no item:" << leftovers.mid(0, named).join(u' ');
    const QString library = libraryDirectory();
    m_leftoverQueue->addOperationWithBlock([place = LeftoverSearch::Place{library, {}, {}, {}, m_coordinator},
                                            leftovers, lost, stop = m_leftoverStop.get_token()] {
        LeftoverSearch search(place);
        bool isStarted = true;
        for (qsizetype first = 0; isStarted && first < leftovers.size(); first += pathsPerRemoval) {
            // What was found may be long ago: an item that was saved since keeps its directory.
            const auto unnamed = search.unnamedOf(leftovers.mid(first, pathsPerRemoval));
            isStarted = unnamed && startRemoval(*unnamed, place.library, stop);
        }
        zqOnMainThread([lost, stop, end = isStarted ? Check::SawToAll : Check::IsComplete] {
            if (!stop.stop_requested()) {
                sharedDelegate()->endLeftoverCheck(lost, end);
            }
        });
    });
}

// Once the library was looked through, what a recovery cost is known; once all was seen to, whatever is found later is
// of another origin.
void tamberin_AppDelegate::endLeftoverCheck(const QStringList &lost, Check end)
{
    if (end == Check::SawToAll && m_parts.importManager) {
        m_parts.importManager->didLookThroughLeftovers(m_launchDate);
    }
    if (end != Check::WasCutOff) {
        takeBack(lost);
    }
    m_isCheckingLeftovers = false;
    if (const auto done = std::exchange(m_leftoversDone, {})) {
        done();
    }
}

void tamberin_AppDelegate::clearRecovered()
{
    if (m_leftoverQueue && m_coordinator && m_coordinator->wasRecovered()) {
        m_leftoverQueue->addOperationWithBlock([coordinator = m_coordinator] { coordinator->clearRecovered(); });
    }
}

QString tamberin_AppDelegate::removalsPath()
{
    return libraryBundleDirectory() + QStringLiteral("/pending-removals");
}

void tamberin_AppDelegate::noteRemovals(const QStringList &directories)
{
    if (directories.isEmpty()) {
        return;
    }
    // Beside them what an earlier process noted and did not come to, but for what the store names again: its items are
    // wanted.
    const RemovalNote note(removalsPath(), libraryDirectory());
    const QStringList earlier = note.present();
    QStringList names =
        LeftoverSearch({libraryDirectory(), {}, {}, {}, m_coordinator}).unnamedOf(earlier).value_or(earlier);
    names.append(directories);
    names.removeDuplicates();
    note.write(names);
}

void tamberin_AppDelegate::dropNotedRemovals()
{
    if (m_lock && !m_libraryBundleDirectory.isEmpty() && !m_libraryDirectory.isEmpty()) {
        RemovalNote(removalsPath(), m_libraryDirectory).dropWhatIsGone();
    }
}

// So many at once are hardly what one import left.
int tamberin_AppDelegate::answerAboutLeftovers(qsizetype count, qsizetype ofAll)
{
    if (count <= removedWithoutAsking || count * 10 <= ofAll) {
        return removeButton;
    }
    return userInteraction().ask(
        {zqFormat(zqLocalized("%d folders of the library belong to no item"), {count}),
         zqLocalized("They may be what is left of imports that were cut off, or belong to items that the library lost. "
                     "Zelto can take them back into the project “Recovered”, where you can look at them, or remove "
                     "them with the files in them."),
         {zqLocalized("Take Back"), zqLocalized("Remove"), zqLocalized("Not Now")},
         {},
         true});
}

void tamberin_AppDelegate::takeBack(const QStringList &directories)
{
    if (directories.isEmpty()) {
        clearRecovered();
        return;
    }
    if (!m_parts.importManager) {
        qCWarning(zqLogApplication) << directories.size() << "item directories of no item are left";
        return;
    }
    m_isTakingBack = true;
    m_parts.importManager->takeBackItemDirectories(directories,
                                                   [delegate = QPointer(this)](qsizetype takenBack, bool isComplete) {
                                                       if (delegate) {
                                                           delegate->didTakeBack(takenBack, isComplete);
                                                       }
                                                   });
}

void tamberin_AppDelegate::didTakeBack(qsizetype takenBack, bool isComplete)
{
    m_isTakingBack = false;
    if (isComplete) {
        clearRecovered();
    }
    if (takenBack == 0) {
        return;
    }
    const QString text =
        takenBack == 1
            ? zqLocalized("1 file of the library had lost its entry and was taken back.")
            : zqFormat(zqLocalized("%d files of the library had lost their entries and were taken back."), {takenBack});
    qCWarning(zqLogApplication).noquote() << text;
    userInteraction().ask(
        {text, zqLocalized("Look for them in the project “Recovered”."), {zqLocalized("OK")}, {}, false});
}

#include "Classes/Application/LeftoverCheck.h"

#include "Classes/Application/CutOffSyncs.h"
#include "Classes/Application/LeftoverSearch.h"
#include "Classes/Application/LibraryBundleManager.h"
#include "Classes/Application/LibraryPlaces.h"
#include "Classes/Application/LibraryRemovals.h"
#include "Classes/Application/LibraryStore.h"
#include "Classes/Application/RunningParts.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"

#include <QPointer>
#include <QProcess>

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
bool startRemoval(LibraryRemovals &removals, const QStringList &names, const QString &library,
                  const std::stop_token &stop)
{
    bool isStarted = names.isEmpty();
    while (!isStarted && !stop.stop_requested()) {
        const bool isServed = zqOnMainThreadAndWait([&] {
            if (stop.stop_requested()) { // the application that has the removals may be gone
                return;
            }
            const QProcess *const earlier = removals.deleteTask();
            if (!earlier || earlier->state() == QProcess::NotRunning) {
                removals.deleteFilesAtPaths(names, library);
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

LeftoverCheck::LeftoverCheck(RunningParts &running, LibraryPlaces &places, LibraryStore &store,
                             LibraryRemovals &removals, QDateTime launchDate)
    : m_running(running), m_places(places), m_store(store), m_removals(removals), m_launchDate(std::move(launchDate))
{
}

LeftoverCheck::~LeftoverCheck()
{
    m_stop.request_stop(); // what is on its way to the main thread does not look for this one
}

void LeftoverCheck::start(std::function<void()> done)
{
    const QString library = m_places.libraryDirectory();
    if (isRunning() || !m_store.managedObjectContext() || library.isEmpty()) {
        if (done) {
            done();
        }
        return;
    }
    m_isChecking = true;
    m_done = std::move(done);
    m_stop = std::stop_source();
    m_queue = std::make_unique<ZQOperationQueue>(QStringLiteral("leftovers"), 1);
    // Asked before the person can forget those imports.
    auto cutOffImports = m_running.importManager() ? m_running.importManager()->tracesOfCutOffImports() : nullptr;
    auto tracesOfAll =
        [cutOffImports = std::move(cutOffImports),
         sync = CutOffSyncs::since(m_places.libraryBundleDirectory(), m_launchDate)](const QSet<QString> &bundleIDs) {
            CutOffImports traces = cutOffImports ? cutOffImports(bundleIDs) : CutOffImports();
            if (sync && (!traces.since || *sync < *traces.since)) {
                traces.since = sync;
            }
            return traces;
        };
    m_queue->addOperationWithBlock([place = LeftoverSearch::Place{library, m_removals.removalsPath(), m_launchDate,
                                                                  std::move(tracesOfAll), m_store.coordinatorIfOpen()},
                                    stop = m_stop.get_token(), this] {
        const auto found = LeftoverSearch(place).run(stop);
        zqOnMainThread([found, stop, this] {
            if (!stop.stop_requested()) { // else the application that asked may be gone
                didSearch(found);
            }
        });
    });
}

bool LeftoverCheck::isRunning() const
{
    return m_isChecking || m_isTakingBack || (m_queue && m_queue->operationCount() > 0);
}

void LeftoverCheck::stop()
{
    m_stop.request_stop();
    m_isChecking = false;
    m_done = {};
    LibraryBundleManager::rememberMadeDirectories(false);
    if (m_queue) {
        m_queue->cancelAllOperations();
        m_queue->waitUntilAllOperationsAreFinished(); // a batch of names, or less
        m_queue.reset();
    }
}

void LeftoverCheck::didSearch(std::optional<LibraryLeftovers> found)
{
    LibraryBundleManager::rememberMadeDirectories(false); // what is made from here on cannot be among those found
    if (!found) {
        finish({}, Check::WasCutOff);
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
    const std::stop_token stop = m_stop.get_token();
    const int answer = answerAbout(found->unexplained, found->directories);
    if (stop.stop_requested()) {
        return; // the application quit meanwhile; the next launch looks again
    }
    if (answer == removeButton && !isLeft) {
        remove(found->leftovers, found->lost);
        return;
    }
    if (answer == takeBackButton) {
        found->lost.append(found->leftovers);
    } else if (!isLeft) {
        qCWarning(zqLogApplication) << found->leftovers.size() << "item directories of no item are left";
    }
    finish(found->lost, answer == takeBackButton ? Check::SawToAll : Check::IsComplete);
}

void LeftoverCheck::remove(const QStringList &leftovers, const QStringList &lost)
{
    if (leftovers.isEmpty()) {
        finish(lost, Check::SawToAll);
        return;
    }
    constexpr qsizetype named = 50;
    qCInfo(zqLogApplication).noquote() << "Removing" << leftovers.size()
                                       << "item directories of no item:" << leftovers.mid(0, named).join(u' ');
    const QString library = m_places.libraryDirectory();
    m_queue->addOperationWithBlock([place = LeftoverSearch::Place{library, {}, {}, {}, m_store.coordinatorIfOpen()},
                                    leftovers, lost, stop = m_stop.get_token(), this] {
        LeftoverSearch search(place);
        bool isStarted = true;
        for (qsizetype first = 0; isStarted && first < leftovers.size(); first += pathsPerRemoval) {
            // What was found may be long ago: an item that was saved since keeps its directory.
            const auto unnamed = search.unnamedOf(leftovers.mid(first, pathsPerRemoval));
            isStarted = unnamed && startRemoval(m_removals, *unnamed, place.library, stop);
        }
        zqOnMainThread([this, lost, stop, how = isStarted ? Check::SawToAll : Check::IsComplete] {
            if (!stop.stop_requested()) {
                finish(lost, how);
            }
        });
    });
}

// Once the library was looked through, what a recovery cost is known; once all was seen to, whatever is found later is
// of another origin.
void LeftoverCheck::finish(const QStringList &lost, Check how)
{
    if (how == Check::SawToAll && m_running.importManager()) {
        m_running.importManager()->didLookThroughLeftovers(m_launchDate);
        CutOffSyncs::forget(m_places.libraryBundleDirectory(), m_launchDate);
    }
    if (how != Check::WasCutOff) {
        takeBack(lost);
    }
    m_isChecking = false;
    if (const auto done = std::exchange(m_done, {})) {
        done();
    }
}

void LeftoverCheck::clearRecovered()
{
    const auto coordinator = m_store.coordinatorIfOpen();
    if (m_queue && coordinator && coordinator->wasRecovered()) {
        m_queue->addOperationWithBlock([coordinator] { coordinator->clearRecovered(); });
    }
}

// So many at once are hardly what one import left.
int LeftoverCheck::answerAbout(qsizetype count, qsizetype ofAll)
{
    if (count <= removedWithoutAsking || count * 10 <= ofAll) {
        return removeButton;
    }
    return m_running.userInteraction().ask(
        {zqFormat(zqLocalized("%d folders of the library belong to no item"), {count}),
         zqLocalized("They may be what is left of imports that were cut off, or belong to items that the library lost. "
                     "Zelto can take them back into the project “Recovered”, where you can look at them, or remove "
                     "them with the files in them."),
         {zqLocalized("Take Back"), zqLocalized("Remove"), zqLocalized("Not Now")},
         {},
         true});
}

void LeftoverCheck::takeBack(const QStringList &directories)
{
    if (directories.isEmpty()) {
        clearRecovered();
        return;
    }
    if (!m_running.importManager()) {
        qCWarning(zqLogApplication) << directories.size() << "item directories of no item are left";
        return;
    }
    m_isTakingBack = true;
    m_running.importManager()->takeBackItemDirectories(directories,
                                                       [self = QPointer(this)](qsizetype takenBack, bool isComplete) {
                                                           if (self) {
                                                               self->didTakeBack(takenBack, isComplete);
                                                           }
                                                       });
}

void LeftoverCheck::didTakeBack(qsizetype takenBack, bool isComplete)
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
    m_running.userInteraction().ask(
        {text, zqLocalized("Look for them in the project “Recovered”."), {zqLocalized("OK")}, {}, false});
}

#include "Classes/Application/Quit.h"

#include "Classes/Application/LeftoverCheck.h"
#include "Classes/Application/LeftoverSearch.h"
#include "Classes/Application/LibraryPlaces.h"
#include "Classes/Application/LibraryRemovals.h"
#include "Classes/Application/LibraryStore.h"
#include "Classes/Application/QuestionWithdrawal.h"
#include "Classes/Application/RunningParts.h"
#include "Classes/Application/StoreWork.h"
#include "Classes/Application/TemporaryArea.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Persistence/ZQStoreCheck.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QCoreApplication>

#include <chrono>

namespace {
constexpr std::chrono::milliseconds drainStep{400};
constexpr std::chrono::milliseconds uploadStep{20};
constexpr std::chrono::seconds longestEndOfUploads{5};
constexpr int pathsPerRemoval = 1000;

UserQuestion mayQuit(const QString &message, const QString &informativeText)
{
    UserQuestion question;
    question.message = message;
    question.informativeText = informativeText;
    question.buttons = {zqLocalized("Quit anyway"), zqLocalized("Cancel")};
    question.isDestructive = true;
    question.isLastDefault = true;
    return question;
}
} // namespace

Quit::Quit(RunningParts &running, LibraryPlaces &places, LibraryStore &store, LeftoverCheck &leftovers,
           StoreWork &storeWork, LibraryRemovals &removals)
    : m_running(running), m_places(places), m_store(store), m_leftovers(leftovers), m_storeWork(storeWork),
      m_removals(removals)
{
}

bool Quit::mayEndUploads()
{
    const CloudUploading *const uploads = m_running.cloudUploading();
    if (!uploads || !uploads->isUploading() || isEndWanted()) { // who ends the session waits for no answer
        return true;
    }
    UserQuestion question = mayQuit(
        zqLocalized("Zelto is uploading files"),
        zqLocalized("Zelto is uploading files, are you sure to quit? Those that are not uploaded yet will not be."));
    m_uploadQuestion = question.withdrawal = std::make_shared<QuestionWithdrawal>();
    const int answer = m_running.userInteraction().ask(question);
    m_uploadQuestion.reset();
    // The last may have arrived, or the session ended, while the question stood there.
    return answer == 0 || !uploads->isUploading() || isEndWanted();
}

bool Quit::isEndWanted() const
{
    return m_running.parts().isEndWanted && m_running.parts().isEndWanted();
}

// They end at once; one that cannot, for whatever reason, keeps nobody.
void Quit::endUploads()
{
    if (CloudUploading *const uploads = m_running.cloudUploading()) {
        uploads->cancelUploads();
        const auto latest = std::chrono::steady_clock::now() + longestEndOfUploads;
        zqRunMainLoopUntil([=] { return !uploads->hasUploadsLeft() || std::chrono::steady_clock::now() > latest; },
                           uploadStep);
    }
}

bool Quit::stopRunningImports()
{
    ZQOperationQueue *sync =
        m_running.liveFolderManager() ? &m_running.liveFolderManager()->syncOperationQueue() : nullptr;
    ImageDownloading *const downloads = m_running.imageDownloading();
    ScreenCaptureControlling *const capture = m_running.capture();
    // A download that ends may begin an import, and so may a capture: they are looked at first.
    const auto isIdle = [&] {
        return (!capture || !capture->isStoring()) && (!downloads || !downloads->isDownloading()) &&
               m_running.backgroundQueue().operationCount() == 0 && (!sync || sync->operationCount() == 0);
    };
    if (isIdle()) {
        return true;
    }
    const int answer = m_running.userInteraction().ask(mayQuit(
        zqLocalized("Zelto is importing files"), zqLocalized("Zelto is importing files, are you sure to quit?")));
    if (answer != 0) {
        return false;
    }
    m_isEnding = true;
    m_leftovers.stop(); // it might queue more, and ask below the loop that drains
    m_running.setKeepsCancelledImports(true);
    if (downloads) {
        downloads->stopDownloads();
    }
    m_running.backgroundQueue().cancelAllOperations();
    if (sync) {
        sync->cancelAllOperations();
    }
    m_running.userInteraction().showNotificationWithText(zqLocalized("Cleaning up library"), NotificationPlace::Window,
                                                         usualNotificationTime);
    const auto isDrained = [&] {
        m_running.userInteraction().dismissQuestions(); // an import may come to one while it ends
        return isIdle();
    };
    zqRunMainLoopUntil(isDrained, drainStep);
    m_running.setKeepsCancelledImports(false);
    return true;
}

QStringList Quit::purge()
{
    ZQManagedObjectContext *context = m_store.managedObjectContext();
    if (!ZQSidebarWatchedFolder::putAwayItemsLeftBehind(*context)) {
        return {}; // the next one does
    }
    ZQSidebarBaseItem::permanentlyDeleteInactiveObjectinManagedObjectContext(*context);
    return ZQLibraryBaseItem::permanentlyDeleteInactiveObjectinManagedObjectContext(*context).value_or(QStringList());
}

// Those of an earlier quit that was called off as well; what the store names after all stays.
void Quit::removePurged()
{
    const QString library = m_places.libraryDirectory();
    LeftoverSearch search({library, {}, {}, {}, m_store.coordinatorIfOpen()});
    const QStringList purged =
        library.isEmpty() ? QStringList() : search.unnamedOf(m_notedRemovals).value_or(QStringList());
    for (qsizetype first = 0; first < purged.size(); first += pathsPerRemoval) {
        m_removals.deleteFilesAtPaths(purged.mid(first, pathsPerRemoval), library);
    }
    const bool isStoring = m_running.capture() && m_running.capture()->isStoring();
    ImportManaging *const manager = m_running.importManager();
    if (!isStoring && (!manager || !manager->cutOffImportSince())) { // which may need what lies there
        m_removals.deleteFilesAtPaths(TemporaryArea::takeForRemoval(), {});
    }
}

TerminateReply Quit::applicationShouldTerminate()
{
    // What was taken a moment ago is an import like any other then.
    if (ScreenCaptureControlling *const capture = m_running.capture(); capture && !capture->finishStoring()) {
        return TerminateReply::Cancel;
    }
    if (!mayEndUploads() || !stopRunningImports()) {
        return TerminateReply::Cancel;
    }
    m_isEnding = true;
    endUploads();
    m_storeWork.stop();
    m_running.userInteraction().showNotificationWithText(zqLocalized("Cleaning up library"), NotificationPlace::Window,
                                                         usualNotificationTime);
    m_running.cancelEdits();
    if (MainWindowControlling *const window = m_running.window()) {
        window->savePersistentState();
    }
    if (m_running.liveFolderManager()) {
        m_running.liveFolderManager()->stopObservingWatchedFolders();
    }
    ZQManagedObjectContext *const context = m_store.contextIfOpen();
    if (!context) {
        return TerminateReply::Now; // the library never opened, or was moved away
    }
    const QStringList purgedDirectories = purge();
    if (!context->hasChanges()) {
        return TerminateReply::Now;
    }

    ZQError error;
    m_notedRemovals += purgedDirectories;
    m_removals.noteRemovals(m_notedRemovals); // and noted they stay: the next launch drops what the store still names
    if (!context->save(&error)) {
        m_running.userInteraction().presentError(error);
        const int answer = m_running.userInteraction().ask(
            {zqLocalized("Could not save changes while quitting.  Quit anyway?"),
             zqLocalized("Quitting now will lose any changes you have made since the last successful save"),
             {zqLocalized("Quit anyway"), zqLocalized("Cancel")},
             {},
             true});
        if (answer != 0) {
            m_storeWork.start();
            if (m_running.liveFolderManager()) {
                m_running.liveFolderManager()->startObservingWatchedFolders();
            }
            return TerminateReply::Cancel;
        }
        return TerminateReply::Now; // what could not be saved is still listed by the store, so its files stay
    }
    removePurged();
    return TerminateReply::Now;
}

void Quit::terminate()
{
    if (m_isTerminating) {
        if (m_uploadQuestion && isEndWanted()) {
            m_uploadQuestion->withdraw();
        }
        return;
    }
    m_isTerminating = true;
    const TerminateReply reply = applicationShouldTerminate();
    m_isTerminating = m_isEnding = false;
    if (reply == TerminateReply::Now) {
        m_hasQuit = true;
        QCoreApplication::exit(0);
    } else {
        m_reopensAfterQuit = false;
    }
}

void Quit::reportDamage(const QStringList &problems)
{
    zqLogDamage(problems);
    const int answer = m_running.userInteraction().ask(
        {zqLocalized("The library is damaged"),
         zqLocalized("Zelto can quit, open again and copy everything that can still be read into a new store. The "
                     "damaged one is kept beside it. Until then some items cannot be shown."),
         {zqLocalized("Recover"), zqLocalized("Later")},
         {},
         false});
    if (answer == 0 && m_store.coordinatorIfOpen()) {
        m_store.coordinatorIfOpen()->requestRecovery();
        m_reopensAfterQuit = true;
        terminate();
    }
}

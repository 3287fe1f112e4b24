// Quitting: what runs is drained, state is kept, what was deleted goes for good.

#include "Classes/Application/LeftoverSearch.h"
#include "Classes/Application/ModelEnvironment.h"
#include "Classes/Application/TemporaryArea.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <QCoreApplication>

namespace {
constexpr std::chrono::milliseconds drainStep{400};
constexpr int pathsPerRemoval = 1000;
constexpr int centreOfWindow = 0;
constexpr double notificationSeconds = 2.5;
} // namespace

bool tamberin_AppDelegate::stopRunningImports()
{
    ZQOperationQueue *sync = m_parts.liveFolderManager ? &m_parts.liveFolderManager->syncOperationQueue() : nullptr;
    const auto isIdle = [&] {
        return backgroundOperationQueue().operationCount() == 0 && (!sync || sync->operationCount() == 0);
    };
    if (isIdle()) {
        return true;
    }
    const int answer = userInteraction().ask({zqLocalized("Zelto is importing files"),
                                              zqLocalized("Zelto is importing files, are you sure to quit?"),
                                              {zqLocalized("Quit anyway"), zqLocalized("Cancel")},
                                              {},
                                              true});
    if (answer != 0) {
        return false;
    }
    const auto keepRequests = [this](bool keeps) {
        if (m_parts.importManager) {
            m_parts.importManager->setKeepsCancelledImports(keeps);
        }
    };
    stopLeftoverCheck(); // it might queue more, and ask below the loop that drains
    keepRequests(true);
    backgroundOperationQueue().cancelAllOperations();
    if (sync) {
        sync->cancelAllOperations();
    }
    userInteraction().showNotificationWithText(zqLocalized("Cleaning up library"), centreOfWindow, notificationSeconds);
    const auto isDrained = [&] {
        userInteraction().dismissQuestions(); // an import may come to one while it ends
        return isIdle();
    };
    zqRunMainLoopUntil(isDrained, drainStep);
    keepRequests(false);
    return true;
}

QStringList tamberin_AppDelegate::purge()
{
    ZQManagedObjectContext *context = managedObjectContext();
    ZQSidebarBaseItem::permanentlyDeleteInactiveObjectinManagedObjectContext(*context);
    return ZQLibraryBaseItem::permanentlyDeleteInactiveObjectinManagedObjectContext(*context).value_or(QStringList());
}

TerminateReply tamberin_AppDelegate::applicationShouldTerminate()
{
    if (!stopRunningImports()) {
        return TerminateReply::Cancel;
    }
    stopStoreWork();
    userInteraction().showNotificationWithText(zqLocalized("Cleaning up library"), centreOfWindow, notificationSeconds);
    if (m_mainWindowController) {
        m_mainWindowController->cancelEdits();
        m_mainWindowController->savePersistentState();
    }
    if (m_parts.liveFolderManager) {
        m_parts.liveFolderManager->stopObservingWatchedFolders();
    }
    if (!m_context) {
        return TerminateReply::Now; // the library never opened, or was moved away
    }
    const QStringList purgedDirectories = purge();
    if (!m_context->hasChanges()) {
        return TerminateReply::Now;
    }

    ZQError error;
    m_notedRemovals += purgedDirectories;
    noteRemovals(m_notedRemovals); // and noted they stay: the next launch drops what the store still names
    if (!m_context->save(&error)) {
        userInteraction().presentError(error);
        const int answer = userInteraction().ask(
            {zqLocalized("Could not save changes while quitting.  Quit anyway?"),
             zqLocalized("Quitting now will lose any changes you have made since the last successful save"),
             {zqLocalized("Quit anyway"), zqLocalized("Cancel")},
             {},
             true});
        if (answer != 0) {
            startStoreWork();
            return TerminateReply::Cancel;
        }
        return TerminateReply::Now; // what could not be saved is still listed by the store, so its files stay
    }
    // Those of an earlier quit that was called off as well; what the store names after all stays.
    const QString library = libraryDirectory();
    LeftoverSearch search({library, {}, {}, {}, m_coordinator});
    const QStringList purged =
        library.isEmpty() ? QStringList() : search.unnamedOf(m_notedRemovals).value_or(QStringList());
    for (qsizetype first = 0; first < purged.size(); first += pathsPerRemoval) {
        deleteFilesAtPaths(purged.mid(first, pathsPerRemoval), library);
    }
    if (!m_parts.importManager || !m_parts.importManager->cutOffImportSince()) { // which may need what lies there
        deleteFilesAtPaths(TemporaryArea::takeForRemoval(), {});
    }
    return TerminateReply::Now;
}

void tamberin_AppDelegate::terminate()
{
    if (m_isTerminating) {
        return;
    }
    m_isTerminating = true;
    const TerminateReply reply = applicationShouldTerminate();
    m_isTerminating = false;
    if (reply == TerminateReply::Now) {
        m_hasQuit = true;
        QCoreApplication::exit(0);
    } else {
        m_reopensAfterQuit = false;
    }
}

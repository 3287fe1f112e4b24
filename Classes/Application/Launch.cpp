#include "Classes/Application/Launch.h"

#include "Classes/Application/DesktopRequests.h"
#include "Classes/Application/FixedSidebar.h"
#include "Classes/Application/ItemTagSync.h"
#include "Classes/Application/LeftoverCheck.h"
#include "Classes/Application/LibraryBundleManager.h"
#include "Classes/Application/LibraryMigration.h"
#include "Classes/Application/LibraryPlaces.h"
#include "Classes/Application/LibraryStore.h"
#include "Classes/Application/PreferencesController.h"
#include "Classes/Application/Quit.h"
#include "Classes/Application/RatingFiller.h"
#include "Classes/Application/RunningParts.h"
#include "Classes/Application/StoreWork.h"
#include "Classes/Application/UpdateChannel.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <chrono>

namespace {
constexpr std::chrono::seconds commandPatience{1}; // for what a window does beside its work
} // namespace

Launch::Launch(const Uses &uses, QDateTime launchDate) : m_uses(uses), m_launchDate(std::move(launchDate)) {}

void Launch::applicationWillFinishLaunching()
{
    m_uses.places.applicationSupportFolder();
    m_uses.running.makeProtocolManager();
}

void Launch::applicationDidFinishLaunching()
{
    const ApplicationParts &parts = m_uses.running.parts();
    zqSetPersistentURLsWait(false); // a window does not
    m_uses.migration.checkModelMigration();
    if (parts.softwareUpdater) {
        parts.softwareUpdater->configure(appCastURL(parts.softwareUpdater->areTestKeysHeld()));
        parts.softwareUpdater->setAutomaticChecks(true);
    }
    if (!m_uses.store.managedObjectContext() || m_uses.quit.hasQuit()) {
        return; // what failed was told; without a store there is nothing to show
    }
    m_uses.places.libraryDirectory();
    m_uses.sidebar.setupBasicSidebarProjects();
    PreferencesController::registerDefaultPreferences();
    m_uses.running.makeCapture();
    m_uses.running.backgroundQueue().setMaxConcurrentOperationCount(1);
    m_uses.tags.open(); // before live folders are looked at, which take in files' tags
    if (parts.liveFolderManager) {
        parts.liveFolderManager->getLiveFolderPermissionFromSandbox();
    }
    m_uses.running.makeWindow();
    if (parts.cloudMenuViewController) {
        parts.cloudMenuViewController->createSharedSession();
        parts.cloudMenuViewController->updateCloudMenu();
    }
    m_followsLocale = true;
    zqRunMainLoopFor(parts.windowFirst);
    if (m_uses.quit.hasQuit()) {
        return;
    }
    if (parts.liveFolderManager) {
        parts.liveFolderManager->startObservingWatchedFolders();
        parts.liveFolderManager->syncRootWatchedFolders();
    }
    if (parts.crashReporter) {
        startCrashReporter();
    } else { // nothing asks for the check, which ends this; the reporter does so later
        LibraryBundleManager::rememberMadeDirectories(false);
    }
    m_isLaunched = true;
    m_uses.storeWork.start();
}

void Launch::startCrashReporter()
{
    const auto offerToResume = [this] {
        if (ImportManaging *const manager = m_uses.running.importManager()) { // makes new directories
            manager->offerToResumeImports();
        }
    };
    m_uses.running.parts().crashReporter->start({[this] { m_uses.requests.reopenMainWindow(); },
                                                 [this, offerToResume] {
                                                     m_uses.leftovers.start(offerToResume);
                                                     return QString();
                                                 }},
                                                true);
}

bool Launch::openLibraryForCommand(ZQError *error)
{
    zqSetPersistentURLsWait(true);
    PreferencesController::registerDefaultPreferences();
    LibraryStore &store = m_uses.store;
    if (!store.lockLibrary(error) || m_uses.places.libraryDirectory().isEmpty()) {
        return false;
    }
    if (!store.open(error)) {
        return false;
    }
    m_uses.migration.checkModelMigration();
    RatingFiller(store.coordinatorIfOpen(), [&store](const ZQContextDidSave &saved) {
        store.mergeSaved(saved);
    }).run([deadline = std::chrono::steady_clock::now() + commandPatience] {
        return std::chrono::steady_clock::now() < deadline;
    });
    m_uses.sidebar.setupBasicSidebarProjects();
    m_uses.running.backgroundQueue().setMaxConcurrentOperationCount(1);
    m_uses.tags.open();
    const auto coordinator = store.coordinatorIfOpen();
    const bool isNewStore = coordinator->creationDate() >= m_launchDate;
    if (coordinator->wasUncleanlyClosed() || coordinator->wasRecovered() || isNewStore) {
        m_uses.leftovers.start({});
        zqRunMainLoopUntil([this] { return !m_uses.leftovers.isRunning(); }); // the command is about all of the library
    }
    LibraryBundleManager::rememberMadeDirectories(false);
    return true;
}

QString Launch::appCastURL(bool testKeysHeld)
{
    return UpdateChannel::feedOf(UpdateChannel::chosen(testKeysHeld));
}

#include "Classes/Application/tamberin_AppDelegate.h"

#include "Classes/Application/ApplicationParts.h"
#include "Classes/Application/DesktopRequests.h"
#include "Classes/Application/FixedSidebar.h"
#include "Classes/Application/ItemTagSync.h"
#include "Classes/Application/Launch.h"
#include "Classes/Application/LeftoverCheck.h"
#include "Classes/Application/LibraryBundleManager.h"
#include "Classes/Application/LibraryLocation.h"
#include "Classes/Application/LibraryMigration.h"
#include "Classes/Application/LibraryPlaces.h"
#include "Classes/Application/LibraryRemovals.h"
#include "Classes/Application/LibraryStore.h"
#include "Classes/Application/LibrarySwitch.h"
#include "Classes/Application/ModelEnvironment.h"
#include "Classes/Application/Quit.h"
#include "Classes/Application/RunningParts.h"
#include "Classes/Application/StoreWork.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/_ZQEntities.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QEvent>

#include <chrono>

namespace {
tamberin_AppDelegate *sharedInstance = nullptr;
constexpr std::chrono::seconds longestRemovalAtEnd{2};
} // namespace

tamberin_AppDelegate::tamberin_AppDelegate(ApplicationParts parts)
{
    const QDateTime launchDate = QDateTime::currentDateTimeUtc();
    m_running = std::make_unique<RunningParts>(std::move(parts));
    m_places = std::make_unique<LibraryPlaces>();
    m_store = std::make_unique<LibraryStore>(*m_places, *m_running);
    m_tags = std::make_unique<ItemTagSync>(*m_places, *m_store);
    m_environment = std::make_unique<ModelEnvironment>(*m_running, *m_places, *m_tags);
    m_migration = std::make_unique<LibraryMigration>(*m_places, *m_store, *m_running);
    m_sidebar = std::make_unique<FixedSidebar>(*m_places, *m_store, *m_running);
    m_removals = std::make_unique<LibraryRemovals>(*m_places, *m_store, this);
    m_leftovers = std::make_unique<LeftoverCheck>(*m_running, *m_places, *m_store, *m_removals, launchDate);
    m_storeWork = std::make_unique<StoreWork>(*m_store, *m_leftovers, *m_running,
                                              [this](const QStringList &problems) { reportDamage(problems); });
    m_quit = std::make_unique<Quit>(*m_running, *m_places, *m_store, *m_leftovers, *m_storeWork, *m_removals);
    m_switch = std::make_unique<LibrarySwitch>(*m_running, *m_places, *m_store, *m_quit,
                                               [this] { removeManagedObjectContext(); });
    m_requests = std::make_unique<DesktopRequests>(*m_running, *m_places, *m_store, *m_switch);
    m_launch = std::make_unique<Launch>(Launch::Uses{*m_running, *m_places, *m_store, *m_migration, *m_sidebar, *m_tags,
                                                     *m_leftovers, *m_storeWork, *m_quit, *m_requests},
                                        launchDate);
    sharedInstance = this;
    LibraryBundleManager::rememberMadeDirectories(true);
    zqRegisterEntities();
    QCoreApplication::instance()->installEventFilter(this);
}

tamberin_AppDelegate::~tamberin_AppDelegate()
{
    m_running->closeProtocolManager(); // it asks through the window
    m_running->closeWindow();
    m_running->closeCapture();
    m_storeWork->stop();
    if (LiveFolderManaging *const manager = m_running->liveFolderManager()) {
        manager->syncOperationQueue().cancelAllOperations();
        manager->syncOperationQueue().waitUntilAllOperationsAreFinished();
    }
    m_running->endBackgroundQueue();
    m_tags->close();
    m_store->close();
    m_removals->leaveRemovals(longestRemovalAtEnd);
    m_removals->dropNotedRemovals();
    if (QCoreApplication *const application = QCoreApplication::instance()) {
        application->removeEventFilter(this); // the end of a member is an event, and needs those that ended before it
    }
    sharedInstance = nullptr;
}

tamberin_AppDelegate *tamberin_AppDelegate::sharedDelegate()
{
    return sharedInstance;
}

void tamberin_AppDelegate::applicationWillFinishLaunching()
{
    m_launch->applicationWillFinishLaunching();
}

void tamberin_AppDelegate::applicationDidFinishLaunching()
{
    m_launch->applicationDidFinishLaunching();
}

bool tamberin_AppDelegate::openLibraryForCommand(ZQError *error)
{
    return m_launch->openLibraryForCommand(error);
}

bool tamberin_AppDelegate::lockLibrary(ZQError *error)
{
    return m_store->lockLibrary(error);
}

bool tamberin_AppDelegate::applicationLauched() const
{
    return m_launch->isLaunched();
}

void tamberin_AppDelegate::setApplicationLauched(bool launched)
{
    m_launch->setLaunched(launched);
}

QString tamberin_AppDelegate::appCastURL(bool testKeysHeld) const
{
    return Launch::appCastURL(testKeysHeld);
}

bool tamberin_AppDelegate::applicationShouldHandleReopen(bool hasVisibleWindows)
{
    return m_requests->applicationShouldHandleReopen(hasVisibleWindows);
}

void tamberin_AppDelegate::applicationWillBecomeActive()
{
    m_requests->applicationWillBecomeActive();
}

void tamberin_AppDelegate::reopenMainWindow()
{
    m_requests->reopenMainWindow();
}

void tamberin_AppDelegate::openFiles(const QStringList &paths)
{
    m_requests->openFiles(paths);
}

TerminateReply tamberin_AppDelegate::applicationShouldTerminate()
{
    return m_quit->applicationShouldTerminate();
}

bool tamberin_AppDelegate::isTerminating() const
{
    return m_quit->isTerminating();
}

void tamberin_AppDelegate::terminate()
{
    m_quit->terminate();
}

void tamberin_AppDelegate::reportDamage(const QStringList &problems)
{
    m_quit->reportDamage(problems);
}

bool tamberin_AppDelegate::reopensAfterQuit() const
{
    return m_quit->reopensAfterQuit();
}

std::shared_ptr<const ZQManagedObjectModel> tamberin_AppDelegate::managedObjectModel()
{
    return m_store->managedObjectModel();
}

std::shared_ptr<ZQPersistentStoreCoordinator> tamberin_AppDelegate::persistentStoreCoordinator()
{
    return m_store->persistentStoreCoordinator();
}

ZQManagedObjectContext *tamberin_AppDelegate::managedObjectContext()
{
    return m_store->managedObjectContext();
}

void tamberin_AppDelegate::removeManagedObjectContext()
{
    m_running->endEdits();
    m_tags->close(); // the journal lies in the bundle, which is about to move
    m_storeWork->stop();
    m_store->close();
    m_store->unlock();
    m_places->forgetLibrary();
}

void tamberin_AppDelegate::saveAction()
{
    m_store->saveAction();
}

void tamberin_AppDelegate::checkModelMigration()
{
    m_migration->checkModelMigration();
}

bool tamberin_AppDelegate::migrateToModelVersion(const QString &version)
{
    return m_migration->migrateToModelVersion(version);
}

std::optional<LibraryRecovery> tamberin_AppDelegate::recoverLibrary(ZQError *error)
{
    return m_store->recoverLibrary(error);
}

void tamberin_AppDelegate::checkAndDeleteLibraryLeftovers(std::function<void()> done)
{
    m_leftovers->start(std::move(done));
}

bool tamberin_AppDelegate::isCheckingLeftovers() const
{
    return m_leftovers->isRunning();
}

QString tamberin_AppDelegate::applicationSupportFolder()
{
    return m_places->applicationSupportFolder();
}

QString tamberin_AppDelegate::libraryBundleDirectory()
{
    return m_places->libraryBundleDirectory();
}

QString tamberin_AppDelegate::libraryDirectory()
{
    return m_places->libraryDirectory();
}

QString tamberin_AppDelegate::exportIconDirectory()
{
    return m_places->exportIconDirectory();
}

QString tamberin_AppDelegate::wallpaperDirectory()
{
    return m_places->wallpaperDirectory();
}

QString tamberin_AppDelegate::templateDirectory()
{
    return m_places->templateDirectory();
}

void tamberin_AppDelegate::setLibraryBundleDirectory(const QString &path)
{
    m_places->setLibraryBundleDirectory(path);
}

void tamberin_AppDelegate::tryToRecuperateSandboxedLibraryToDestination(const QString &destination)
{
    m_places->tryToRecuperateSandboxedLibraryToDestination(destination);
}

void tamberin_AppDelegate::deleteFilesAtPaths(const QStringList &paths, const QString &baseDirectory)
{
    m_removals->deleteFilesAtPaths(paths, baseDirectory);
}

QProcess *tamberin_AppDelegate::deleteTask() const
{
    return m_removals->deleteTask();
}

void tamberin_AppDelegate::waitForRemovals()
{
    m_removals->waitForRemovals();
}

void tamberin_AppDelegate::setupBasicSidebarProjects()
{
    m_sidebar->setupBasicSidebarProjects();
}

void tamberin_AppDelegate::updateLocalization()
{
    m_sidebar->updateLocalization();
}

void tamberin_AppDelegate::updateSidebarElementNamesWithCurrentLocale()
{
    m_sidebar->updateSidebarElementNamesWithCurrentLocale();
}

void tamberin_AppDelegate::localeChanged()
{
    updateLocalization();
}

void tamberin_AppDelegate::newZeltoLibrary()
{
    m_switch->newZeltoLibrary();
}

void tamberin_AppDelegate::openZeltoLibrary()
{
    m_switch->openZeltoLibrary();
}

void tamberin_AppDelegate::moveZeltoLibrary()
{
    m_switch->moveZeltoLibrary();
}

void tamberin_AppDelegate::revealLibraryInFinder()
{
    m_switch->revealLibraryInFinder();
}

bool tamberin_AppDelegate::saveNewLibraryURL(const QString &path, ZQError *error)
{
    return LibraryLocation::remember(path, error);
}

QString tamberin_AppDelegate::loadLibraryURL()
{
    return LibraryLocation::remembered();
}

void tamberin_AppDelegate::openZeltoKunHelper()
{
    m_running->makeCapture();
}

void tamberin_AppDelegate::quitZeltoKunHelper()
{
    m_running->closeCapture();
}

void tamberin_AppDelegate::syncWatchedFolder(const ZQObjectID &folder)
{
    if (LiveFolderManaging *const manager = m_running->liveFolderManager()) {
        manager->syncWatchedFolder(folder, false);
    }
}

void tamberin_AppDelegate::forceSyncWatchedFolder(const ZQObjectID &folder)
{
    if (LiveFolderManaging *const manager = m_running->liveFolderManager()) {
        manager->syncWatchedFolder(folder, true);
    }
}

MainWindowControlling *tamberin_AppDelegate::mainWindowController() const
{
    return m_running->window();
}

ScreenCaptureControlling *tamberin_AppDelegate::zeltoKunViewController() const
{
    return m_running->capture();
}

ProtocolHandling *tamberin_AppDelegate::protocolManager() const
{
    return m_running->protocolManager();
}

ZQOperationQueue &tamberin_AppDelegate::backgroundOperationQueue()
{
    return m_running->backgroundQueue();
}

ZQOperationQueue &tamberin_AppDelegate::editQueue()
{
    return m_running->editQueue();
}

ImageDownloading *tamberin_AppDelegate::imageDownloading() const
{
    return m_running->imageDownloading();
}

ImportManaging *tamberin_AppDelegate::importManager() const
{
    return m_running->importManager();
}

LiveFolderManaging *tamberin_AppDelegate::liveFolderManager() const
{
    return m_running->liveFolderManager();
}

UserInteraction &tamberin_AppDelegate::userInteraction() const
{
    return m_running->userInteraction();
}

void tamberin_AppDelegate::updateCloudMenu()
{
    if (CloudMenuControlling *const menu = m_running->parts().cloudMenuViewController) {
        menu->updateCloudMenu();
    }
}

bool tamberin_AppDelegate::eventFilter(QObject *watched, QEvent *event)
{
    if (m_launch->followsLocale() && watched == QCoreApplication::instance() && event->type() == QEvent::LocaleChange) {
        localeChanged();
    }
    return QObject::eventFilter(watched, event);
}

#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

class DesktopRequests;
class FixedSidebar;
class ImageDownloading;
class ImportManaging;
class ItemTagSync;
class Launch;
class LeftoverCheck;
class LibraryMigration;
class LibraryPlaces;
class LibraryRemovals;
class LibraryStore;
class LibrarySwitch;
class LiveFolderManaging;
class MainWindowControlling;
class ModelEnvironment;
class ProtocolHandling;
class QProcess;
class Quit;
class RunningParts;
class ScreenCaptureControlling;
class StoreWork;
class UserInteraction;
class ZQManagedObjectContext;
class ZQManagedObjectModel;
class ZQOperationQueue;
class ZQPersistentStoreCoordinator;
enum class TerminateReply;
struct ApplicationParts;
struct LibraryRecovery;
struct ZQError;
struct ZQObjectID;

// The application: the one face of those who own the library's places and store, and the process's life. It makes them,
// ends them in their order, and does nothing else; what each call does, costs and answers when it fails is said where
// it is done. Main thread, except where stated.
class tamberin_AppDelegate : public QObject
{
    Q_OBJECT
public:
    explicit tamberin_AppDelegate(ApplicationParts parts);
    ~tamberin_AppDelegate() override;
    static tamberin_AppDelegate *sharedDelegate(); // null before one was made

    // Launch.
    void applicationWillFinishLaunching();
    void applicationDidFinishLaunching();
    bool openLibraryForCommand(ZQError *error);
    bool lockLibrary(ZQError *error); // what a window does before anything else
    bool applicationLauched() const;
    void setApplicationLauched(bool launched);
    QString appCastURL(bool testKeysHeld) const;

    // DesktopRequests.
    bool applicationShouldHandleReopen(bool hasVisibleWindows);
    void applicationWillBecomeActive();
    void reopenMainWindow();
    void openFiles(const QStringList &paths); // `application:openFiles:`

    // Quit.
    TerminateReply applicationShouldTerminate();
    void terminate();
    bool isTerminating() const; // the person has agreed, or it has
    void reportDamage(const QStringList &problems);
    bool reopensAfterQuit() const;

    // LibraryStore, LibraryMigration.
    LibraryStore &libraryStore() const { return *m_store; }
    std::shared_ptr<const ZQManagedObjectModel> managedObjectModel();
    std::shared_ptr<ZQPersistentStoreCoordinator> persistentStoreCoordinator();
    ZQManagedObjectContext *managedObjectContext(); // null when the store cannot be opened
    void removeManagedObjectContext();
    void saveAction();
    void checkModelMigration();
    bool migrateToModelVersion(const QString &version);
    std::optional<LibraryRecovery> recoverLibrary(ZQError *error);

    // LeftoverCheck.
    void checkAndDeleteLibraryLeftovers(std::function<void()> done = {});
    bool isCheckingLeftovers() const; // until all of that is done

    // LibraryPlaces. `libraryDirectory` from any thread once it was asked for on the main thread.
    QString applicationSupportFolder();
    QString documentDirectory() { return applicationSupportFolder(); }
    QString libraryBundleDirectory();
    QString libraryDirectory();
    QString exportIconDirectory();
    QString wallpaperDirectory();
    QString templateDirectory();
    void setLibraryBundleDirectory(const QString &path); // for a command or a test
    void tryToRecuperateSandboxedLibraryToDestination(const QString &destination);

    // LibraryRemovals.
    void deleteFilesAtPaths(const QStringList &paths, const QString &baseDirectory);
    QProcess *deleteTask() const;
    void waitForRemovals();

    // FixedSidebar.
    void setupBasicSidebarProjects();
    void updateLocalization();
    void updateSidebarElementNamesWithCurrentLocale();
    void localeChanged();

    // LibrarySwitch.
    void newZeltoLibrary();
    void openZeltoLibrary();
    void moveZeltoLibrary(); // takes the window away: not from inside one of its own events
    void revealLibraryInFinder();
    // Where the library is remembered: see LibraryLocation.
    static bool saveNewLibraryURL(const QString &path, ZQError *error = nullptr);
    static QString loadLibraryURL();

    // The other parts and the queues.
    void openZeltoKunHelper();
    void quitZeltoKunHelper();
    void syncWatchedFolder(const ZQObjectID &folder);
    void forceSyncWatchedFolder(const ZQObjectID &folder);
    MainWindowControlling *mainWindowController() const;
    ScreenCaptureControlling *zeltoKunViewController() const;
    ProtocolHandling *protocolManager() const; // null without a window
    ZQOperationQueue &backgroundOperationQueue();
    // Changes of many items, one after the other. Quitting cancels them at the batch they are at, and lets those of one
    // batch end; all end before the window and the store do.
    ZQOperationQueue &editQueue();
    ImportManaging *importManager() const;
    ImageDownloading *imageDownloading() const;    // null: none
    LiveFolderManaging *liveFolderManager() const; // null: none
    UserInteraction &userInteraction() const;      // any thread may ask for it
    void updateCloudMenu();

private:
    bool eventFilter(QObject *watched, QEvent *event) override;

    // Each uses some of those before it.
    std::unique_ptr<RunningParts> m_running;
    std::unique_ptr<LibraryPlaces> m_places;
    std::unique_ptr<LibraryStore> m_store;
    std::unique_ptr<ItemTagSync> m_tags;
    std::unique_ptr<ModelEnvironment> m_environment;
    std::unique_ptr<LibraryMigration> m_migration;
    std::unique_ptr<FixedSidebar> m_sidebar;
    std::unique_ptr<LibraryRemovals> m_removals;
    std::unique_ptr<LeftoverCheck> m_leftovers;
    std::unique_ptr<StoreWork> m_storeWork;
    std::unique_ptr<Quit> m_quit;
    std::unique_ptr<LibrarySwitch> m_switch;
    std::unique_ptr<DesktopRequests> m_requests;
    std::unique_ptr<Launch> m_launch;
};

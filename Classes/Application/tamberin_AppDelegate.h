#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Application/LibraryRecovery.h"
#include "Classes/Application/UserInteraction.h"
#include "Kit/Foundation/ZQError.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QDateTime>
#include <QProcess>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

class LibraryLock;
class ModelEnvironment;
struct LibraryLeftovers;

// The other parts of the application, made by `main`. A null one is absent.
struct ApplicationParts
{
    UserInteraction *userInteraction = nullptr; // required
    ImportManaging *importManager = nullptr;
    LiveFolderManaging *liveFolderManager = nullptr;
    SoftwareUpdating *softwareUpdater = nullptr;
    CrashReporting *crashReporter = nullptr;
    CloudMenuControlling *cloudMenuViewController = nullptr;
    std::function<std::unique_ptr<MainWindowControlling>()> makeMainWindowController;
    std::function<std::unique_ptr<ScreenCaptureControlling>()> makeZeltoKunViewController;
    std::chrono::milliseconds windowFirst{500}; // for its first picture, before anything beside it begins
};

enum class TerminateReply { Cancel = 0, Now = 1 };

// The single owner of the library's store and of the process's life: launch, files handed over by the desktop,
// quitting. Main thread, except where stated.
class tamberin_AppDelegate : public QObject
{
    Q_OBJECT
public:
    explicit tamberin_AppDelegate(ApplicationParts parts);
    ~tamberin_AppDelegate() override;
    static tamberin_AppDelegate *sharedDelegate(); // null before one was made

    // Launch with a window: both in this order, once.
    void applicationWillFinishLaunching();
    void applicationDidFinishLaunching();
    // Launch for one command: the store, the fixed sidebar, the defaults and the background queue; no window, no
    // watching.
    bool openLibraryForCommand(ZQError *error);
    // Keeps other processes out of the library; part of opening the store, and what a window does before anything else.
    bool lockLibrary(ZQError *error);

    // Reopening.
    bool applicationShouldHandleReopen(bool hasVisibleWindows);
    void applicationWillBecomeActive();
    void reopenMainWindow();

    void openFiles(const QStringList &paths); // `application:openFiles:`
    TerminateReply applicationShouldTerminate();
    // Asks `applicationShouldTerminate` and, when it agrees, ends the event loop.
    void terminate();

    // The store.
    std::shared_ptr<const ZQManagedObjectModel> managedObjectModel();
    std::shared_ptr<ZQPersistentStoreCoordinator> persistentStoreCoordinator();
    ZQManagedObjectContext *managedObjectContext(); // null when the store cannot be opened
    void removeManagedObjectContext();
    void saveAction();
    void checkModelMigration();
    // Fills in what "Version6" or "Version7" brought; others need nothing, or have it done beside the window. False,
    // with the version still noted as pending, after an error, which was logged or presented.
    bool migrateToModelVersion(const QString &version);
    // Copies what can be read of the damaged store into a new one that takes its place. The store must not be open.
    std::optional<LibraryRecovery> recoverLibrary(ZQError *error);
    // Of the open store: offers to quit, recover it and open again.
    void reportDamage(const QStringList &problems);
    // Whether the person agreed to quit only so that the next launch recovers the library.
    bool reopensAfterQuit() const { return m_reopensAfterQuit; }
    // What no item names and is younger than the store goes; what is older, or left after a recovery, becomes items
    // again. Looks, removes and takes back beside the caller; `done` is called once nothing more is asked about and
    // what is taken back is queued, and not at all when the application quits before. Any end before that does no harm:
    // the next launch looks again.
    void checkAndDeleteLibraryLeftovers(std::function<void()> done = {});
    bool isCheckingLeftovers() const; // until all of that is done

    // Places. The directories are created when first asked for; empty on failure. `libraryDirectory` may be called from
    // any thread once it was asked for on the main thread.
    QString applicationSupportFolder();
    QString documentDirectory() { return applicationSupportFolder(); }
    QString libraryBundleDirectory();
    QString libraryDirectory();
    QString exportIconDirectory();
    QString wallpaperDirectory();
    QString templateDirectory();
    // For a command or a test: this bundle, whatever the preferences remember. Before the library is first asked for.
    void setLibraryBundleDirectory(const QString &path);

    void deleteFilesAtPaths(const QStringList &paths, const QString &baseDirectory);
    QProcess *deleteTask() const { return m_deleteTask; }
    void waitForRemovals(); // every removal that was started
    void tryToRecuperateSandboxedLibraryToDestination(const QString &destination);

    // The fixed sidebar.
    void setupBasicSidebarProjects();
    void updateLocalization();
    void updateSidebarElementNamesWithCurrentLocale();
    void localeChanged();

    void openZeltoKunHelper();
    void quitZeltoKunHelper();
    void syncWatchedFolder(const ZQObjectID &folder);
    void forceSyncWatchedFolder(const ZQObjectID &folder);
    QString appCastURL(bool testKeysHeld) const;

    // Switching libraries: the new location takes effect at the next launch.
    void newZeltoLibrary();
    void openZeltoLibrary();
    void moveZeltoLibrary(); // takes the window away: not from inside one of its own events
    void revealLibraryInFinder();
    // Where the library is remembered: see LibraryLocation.
    static bool saveNewLibraryURL(const QString &path, ZQError *error = nullptr);
    static QString loadLibraryURL();

    MainWindowControlling *mainWindowController() const { return m_mainWindowController.get(); }
    ScreenCaptureControlling *zeltoKunViewController() const { return m_zeltoKunViewController.get(); }
    ZQOperationQueue &backgroundOperationQueue();
    ZQOperationQueue &editQueue(); // changes of many items, one after another, whoever asked for them
    ImportManaging *importManager() const { return m_parts.importManager; }
    UserInteraction &userInteraction() const { return *m_parts.userInteraction; } // any thread may ask for it
    bool applicationLauched() const { return m_applicationLauched; }
    void setApplicationLauched(bool launched) { m_applicationLauched = launched; }

private:
    QString createdDirectory(const QString &path, const char *message);
    bool openStore(ZQError *error);
    void notifyAndQuit();
    void rememberAndQuit(const QString &library);
    bool agreesToReplace(const QString &path);
    bool moveInBackground(const QString &source, const QString &destination, ZQError *error);
    bool stopRunningImports();
    QStringList purge();
    void importOpenedFiles(const QStringList &paths);
    bool switchToLibrary(const QString &path);
    bool moveTemplate(const QString &path);
    bool offerRecovery(const ZQError &damage);
    // What the open store still needs and the person need not wait for.
    void startStoreWork();
    void stopStoreWork();
    void mergeSaved(const ZQContextDidSave &notification);
    QString removalsPath();
    void noteRemovals(const QStringList &directories);
    void dropNotedRemovals(); // those that are gone
    void stopLeftoverCheck();
    void didSearchLeftovers(std::optional<LibraryLeftovers> found);
    int answerAboutLeftovers(qsizetype count, qsizetype ofAll);
    void removeLeftovers(const QStringList &leftovers, const QStringList &lost);
    enum class Check { WasCutOff, IsComplete, SawToAll };
    void endLeftoverCheck(const QStringList &lost, Check end);
    void clearRecovered();
    void takeBack(const QStringList &directories);
    void didTakeBack(qsizetype takenBack, bool isComplete);
    bool eventFilter(QObject *watched, QEvent *event) override;

    ApplicationParts m_parts;
    std::unique_ptr<ModelEnvironment> m_environment;
    std::unique_ptr<ZQOperationQueue> m_backgroundOperationQueue;
    std::unique_ptr<ZQOperationQueue> m_editQueue;
    std::unique_ptr<MainWindowControlling> m_mainWindowController;
    std::unique_ptr<ScreenCaptureControlling> m_zeltoKunViewController;
    std::shared_ptr<const ZQManagedObjectModel> m_model;
    std::shared_ptr<ZQPersistentStoreCoordinator> m_coordinator;
    std::unique_ptr<ZQManagedObjectContext> m_context;
    std::unique_ptr<LibraryLock> m_lock;
    std::unique_ptr<ZQOperationQueue> m_storeQueue;
    std::stop_source m_storeStop;
    std::unique_ptr<ZQOperationQueue> m_leftoverQueue;
    std::stop_source m_leftoverStop;
    std::function<void()> m_leftoversDone;
    QString m_requestedBundleDirectory;
    QString m_libraryBundleDirectory;
    QString m_libraryDirectory;
    QDateTime m_launchDate;
    bool m_storeFailed = false;
    bool m_observesLocale = false;
    bool m_isTerminating = false;
    bool m_hasQuit = false; // perhaps while the launch waited for an answer
    bool m_isCheckingLeftovers = false;
    bool m_isTakingBack = false;
    bool m_reopensAfterQuit = false;
    QStringList m_notedRemovals; // by every attempt to quit
    QProcess *m_deleteTask = nullptr;
    bool m_shouldShowMainWindowOnActivation = true;
    bool m_applicationLauched = false;
};

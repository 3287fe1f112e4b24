#include "Classes/Application/tamberin_AppDelegate.h"

#include "Classes/Application/LeftoverSearch.h"
#include "Classes/Application/LibraryBundleManager.h"
#include "Classes/Application/LibraryLocation.h"
#include "Classes/Application/LibraryLock.h"
#include "Classes/Application/ModelEnvironment.h"
#include "Classes/Application/PreferencesController.h"
#include "Classes/Application/RatingFiller.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"
#include "Models/DataModel/_ZQEntities.h"

#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QTimer>

#include <chrono>

namespace {
tamberin_AppDelegate *sharedInstance = nullptr;

constexpr std::chrono::milliseconds retryOpening{200};
constexpr int activationGateMilliseconds = 200;
constexpr std::chrono::seconds commandPatience{1}; // for what a window does beside its work
} // namespace

tamberin_AppDelegate::tamberin_AppDelegate(ApplicationParts parts)
    : m_parts(std::move(parts)), m_environment(std::make_unique<ModelEnvironment>(*this)),
      m_launchDate(QDateTime::currentDateTimeUtc())
{
    Q_ASSERT(m_parts.userInteraction);
    sharedInstance = this;
    LibraryBundleManager::rememberMadeDirectories(true);
    zqRegisterEntities();
    QCoreApplication::instance()->installEventFilter(this);
}

tamberin_AppDelegate::~tamberin_AppDelegate()
{
    m_mainWindowController.reset();
    m_zeltoKunViewController.reset();
    stopStoreWork();
    if (m_parts.importManager) { // what ends with the process was not given up by anybody
        m_parts.importManager->setKeepsCancelledImports(true);
    }
    m_backgroundOperationQueue.reset();
    if (m_parts.importManager) {
        m_parts.importManager->setKeepsCancelledImports(false);
    }
    m_environment->closeTagFiles();
    m_context.reset();
    m_coordinator.reset();
    waitForRemovals(); // destroying a running process object would kill it half way
    dropNotedRemovals();
    sharedInstance = nullptr;
}

tamberin_AppDelegate *tamberin_AppDelegate::sharedDelegate()
{
    return sharedInstance;
}

void tamberin_AppDelegate::applicationWillFinishLaunching()
{
    applicationSupportFolder();
}

void tamberin_AppDelegate::applicationDidFinishLaunching()
{
    zqSetPersistentURLsWait(false); // a window does not
    checkModelMigration();
    if (m_parts.softwareUpdater) {
        m_parts.softwareUpdater->configure(appCastURL(m_parts.softwareUpdater->areTestKeysHeld()));
        m_parts.softwareUpdater->setAutomaticChecks(true);
    }
    if (!managedObjectContext() || m_hasQuit) {
        return; // what failed was told; without a store there is nothing to show
    }
    libraryDirectory();
    setupBasicSidebarProjects();
    PreferencesController::registerDefaultPreferences();
    openZeltoKunHelper();
    backgroundOperationQueue().setMaxConcurrentOperationCount(1);
    m_environment->finishInterruptedTagWrites(); // before live folders are looked at, which take in files' tags
    if (m_parts.liveFolderManager) {
        m_parts.liveFolderManager->getLiveFolderPermissionFromSandbox();
    }
    if (m_parts.makeMainWindowController) {
        m_mainWindowController = m_parts.makeMainWindowController();
        m_mainWindowController->showWindow();
        m_mainWindowController->activateIgnoringOtherApps();
    }
    if (m_parts.cloudMenuViewController) {
        m_parts.cloudMenuViewController->createSharedSession();
        m_parts.cloudMenuViewController->updateCloudMenu();
    }
    m_observesLocale = true;
    zqRunMainLoopFor(m_parts.windowFirst);
    if (m_hasQuit) {
        return;
    }
    if (m_parts.liveFolderManager) {
        m_parts.liveFolderManager->startObservingWatchedFolders();
        m_parts.liveFolderManager->syncRootWatchedFolders();
    }
    if (m_parts.crashReporter) {
        m_parts.crashReporter->start({[this] { reopenMainWindow(); },
                                      [this] {
                                          checkAndDeleteLibraryLeftovers([this] {
                                              if (m_parts.importManager) { // makes new directories
                                                  m_parts.importManager->offerToResumeImports();
                                              }
                                          });
                                          return QString();
                                      }},
                                     true);
    }
    if (!m_parts.crashReporter) { // nothing asks for the check, which ends this; the reporter does so later
        LibraryBundleManager::rememberMadeDirectories(false);
    }
    setApplicationLauched(true);
    startStoreWork();
}

bool tamberin_AppDelegate::openLibraryForCommand(ZQError *error)
{
    zqSetPersistentURLsWait(true);
    PreferencesController::registerDefaultPreferences();
    if (!lockLibrary(error) || libraryDirectory().isEmpty()) {
        return false;
    }
    if (!openStore(error)) {
        return false;
    }
    checkModelMigration();
    RatingFiller(m_coordinator, [this](const ZQContextDidSave &saved) {
        mergeSaved(saved);
    }).run([deadline = std::chrono::steady_clock::now() + commandPatience] {
        return std::chrono::steady_clock::now() < deadline;
    });
    setupBasicSidebarProjects();
    backgroundOperationQueue().setMaxConcurrentOperationCount(1);
    m_environment->finishInterruptedTagWrites();
    const bool isNewStore = m_coordinator->creationDate() >= m_launchDate;
    if (m_coordinator->wasUncleanlyClosed() || m_coordinator->wasRecovered() || isNewStore) {
        checkAndDeleteLibraryLeftovers();
        zqRunMainLoopUntil([this] { return !isCheckingLeftovers(); }); // the command is about all of the library
    }
    LibraryBundleManager::rememberMadeDirectories(false);
    return true;
}

ZQOperationQueue &tamberin_AppDelegate::backgroundOperationQueue()
{
    if (!m_backgroundOperationQueue) {
        m_backgroundOperationQueue = std::make_unique<ZQOperationQueue>(QStringLiteral("background"), 1);
    }
    return *m_backgroundOperationQueue;
}

ZQOperationQueue &tamberin_AppDelegate::editQueue()
{
    if (!m_editQueue) {
        m_editQueue = std::make_unique<ZQOperationQueue>(QStringLiteral("Edits"), 1);
    }
    return *m_editQueue;
}

QString tamberin_AppDelegate::appCastURL(bool testKeysHeld) const
{
    if (ZQUserDefaults::standardUserDefaults().boolForKey(QStringLiteral("PartecipateToBeta"))) {
        return QStringLiteral("updates/beta/appcast.xml");
    }
    return testKeysHeld ? QStringLiteral("updates/test/appcast.xml") : QStringLiteral("updates/release/appcast.xml");
}

void tamberin_AppDelegate::openZeltoKunHelper()
{
    if (!m_zeltoKunViewController && m_parts.makeZeltoKunViewController) {
        m_zeltoKunViewController = m_parts.makeZeltoKunViewController();
        m_zeltoKunViewController->loadView();
    }
}

void tamberin_AppDelegate::quitZeltoKunHelper()
{
    m_zeltoKunViewController.reset();
}

void tamberin_AppDelegate::syncWatchedFolder(const ZQObjectID &folder)
{
    if (m_parts.liveFolderManager) {
        m_parts.liveFolderManager->syncWatchedFolder(folder, false);
    }
}

void tamberin_AppDelegate::forceSyncWatchedFolder(const ZQObjectID &folder)
{
    if (m_parts.liveFolderManager) {
        m_parts.liveFolderManager->syncWatchedFolder(folder, true);
    }
}

bool tamberin_AppDelegate::eventFilter(QObject *watched, QEvent *event)
{
    if (m_observesLocale && watched == QCoreApplication::instance() && event->type() == QEvent::LocaleChange) {
        localeChanged();
    }
    return QObject::eventFilter(watched, event);
}

void tamberin_AppDelegate::applicationWillBecomeActive()
{
    m_shouldShowMainWindowOnActivation = false;
    QTimer::singleShot(activationGateMilliseconds, this, [this] { m_shouldShowMainWindowOnActivation = true; });
}

bool tamberin_AppDelegate::applicationShouldHandleReopen(bool hasVisibleWindows)
{
    if (!m_mainWindowController) {
        return false;
    }
    if (!hasVisibleWindows) {
        m_mainWindowController->makeKeyAndOrderFront();
        return true;
    }
    if (m_mainWindowController->isMiniaturized()) {
        m_mainWindowController->deminiaturize();
        return true;
    }
    if (m_mainWindowController->isVisible() || !m_shouldShowMainWindowOnActivation) {
        return false;
    }
    m_mainWindowController->makeKeyAndOrderFront();
    return true;
}

void tamberin_AppDelegate::reopenMainWindow()
{
    if (!m_mainWindowController) {
        return;
    }
    if (m_mainWindowController->isMiniaturized()) {
        m_mainWindowController->deminiaturize();
    }
    m_mainWindowController->makeKeyAndOrderFront();
}

bool tamberin_AppDelegate::switchToLibrary(const QString &path)
{
    ZQError error = LibraryLocation::refusal(path);
    if (!error.isNull()) {
        userInteraction().presentError(error);
        return false;
    }
    if (LibraryLocation::isSamePlace(path, libraryBundleDirectory())) {
        return false; // it is open
    }
    if (m_mainWindowController) {
        const int answer = userInteraction().ask({zqLocalized("Opening a new library requires Zelto to relaunch"),
                                                  zqLocalized("Do you want to switch library and quit Zelto?"),
                                                  {zqLocalized("Quit"), zqLocalized("Cancel")},
                                                  {},
                                                  false});
        if (answer != 0) {
            return false;
        }
    }
    if (!saveNewLibraryURL(path, &error)) {
        userInteraction().presentError(error);
        return false;
    }
    if (m_mainWindowController) {
        terminate();
    }
    return true;
}

bool tamberin_AppDelegate::moveTemplate(const QString &path)
{
    const QString directory = templateDirectory();
    ZQError error;
    if (!directory.isEmpty() && zqMoveNoReplace(path, directory + u'/' + QFileInfo(path).fileName(), &error)) {
        return true;
    }
    userInteraction().presentError(error);
    return false;
}

void tamberin_AppDelegate::openFiles(const QStringList &paths)
{
    QStringList rest;
    bool templateMoved = false;
    for (const QString &path : paths) {
        const QString extension = zqPathExtension(path);
        if (extension.toLower() == QStringLiteral("ztlibrary")) {
            switchToLibrary(path);
        } else if (extension == QStringLiteral("zttemplate")) {
            templateMoved = moveTemplate(path) || templateMoved;
        } else {
            rest.append(path);
        }
    }
    if (!m_mainWindowController) {
        // Nothing of what was done above is done twice: the moved templates and remembered libraries are not in the
        // list.
        QTimer::singleShot(retryOpening, this, [this, rest, templateMoved] {
            if (!rest.isEmpty()) {
                openFiles(rest);
            } else if (templateMoved && m_mainWindowController) {
                m_mainWindowController->newFileFromTemplate();
            }
        });
        return;
    }
    if (!rest.isEmpty()) {
        importOpenedFiles(rest);
    } else if (templateMoved) {
        m_mainWindowController->newFileFromTemplate();
    }
}

void tamberin_AppDelegate::importOpenedFiles(const QStringList &paths)
{
    ZQManagedObjectContext *context = managedObjectContext();
    if (!context || !m_parts.importManager) {
        return;
    }
    QStringList directories;
    QStringList files;
    for (const QString &path : paths) {
        const QFileInfo info(path);
        if (info.exists()) {
            (info.isDir() ? directories : files).append(path);
        }
    }
    constexpr quint32 atTheEnd = 4294967295U;
    const auto importInto = [&](const QStringList &list, const ZQRef<ZQSidebarBaseItem> &target) {
        if (!list.isEmpty() && target) {
            m_parts.importManager->importFilesAtPaths(list, target->objectID(), atTheEnd, {});
        }
    };
    importInto(directories, ZQSidebarBaseItem::projectsLabelInManagedObjectContext(*context));
    importInto(files, ZQSidebarBaseItem::libraryProjectInManagedObjectContext(*context));

    if (directories.isEmpty() &&
        ZQUserDefaults::standardUserDefaults().boolForKey(QStringLiteral("ShowRecentItemsAfterDropOnDock"))) {
        if (const auto recent = ZQSidebarBaseItem::recentProjectInManagedObjectContext(*context)) {
            m_mainWindowController->selectSidebarItem(recent->objectID());
        }
    }
}

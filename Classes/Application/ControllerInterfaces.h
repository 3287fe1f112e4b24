#pragma once

#include <QDateTime>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

class ZQManagedObjectContext;
class ZQOperationQueue;
class ZQLibraryBaseItem;
struct ZQObjectID;

// What the application object needs of the other parts, implemented in their folders and handed to it by `main`.
// Every one may be missing: without a window, in a command, in a test.

// The main window. Main thread.
class MainWindowControlling
{
public:
    virtual ~MainWindowControlling() = default;
    virtual void showWindow() = 0; // shows it and makes it key and front, as it was left
    virtual void makeKeyAndOrderFront() = 0;
    virtual bool isMiniaturized() const = 0;
    virtual void deminiaturize() = 0;
    virtual bool isVisible() const = 0;
    virtual void activateIgnoringOtherApps() = 0;
    virtual void selectSidebarItem(const ZQObjectID &item) = 0;
    virtual void newFileFromTemplate() = 0;
    // Keeps the state of, in this order: the content view controller, the current image browser, the current tab state,
    // the window.
    virtual void savePersistentState() = 0;
    virtual bool commitEditing() = 0;  // ends a text being edited, taking what was typed; false when it cannot be taken
    virtual void refreshContent() = 0; // the current browser's
    virtual void updateLocalization() = 0;
};

// What imports that an earlier process did not end tell about item directories that no item names.
struct CutOffImports
{
    std::optional<QDateTime> since; // what was made from then on may be theirs, if nothing says that it was saved once
    QSet<QString> saved;            // the bundleIDs of items that the store named once
};

// The import manager, as the application sees it. Main thread.
class ImportManaging
{
public:
    virtual ~ImportManaging() = default;
    virtual void importFilesAtPaths(const QStringList &paths, const ZQObjectID &intoSidebarItemID, quint32 atIndex,
                                    const QVariantMap &metadata) = 0;
    // Makes items again of item directories that no item names, by the directories' names, where they lie: nothing in
    // them is copied, moved or removed. In the background. `done` is called on the main thread with how many became
    // items and whether all were seen to; those that gave none keep their directories.
    virtual void takeBackItemDirectories(const QStringList &names,
                                         std::function<void(qsizetype takenBack, bool isComplete)> done) = 0;
    // Imports that an earlier process did not end: when the first of them began, and the question about them.
    virtual std::optional<QDateTime> cutOffImportSince() = 0;
    // Asks for what those that are cut off now tell about the items of these bundleIDs. The answer may be called on any
    // thread, while they are forgotten or go on, and takes a while for large ones.
    virtual std::function<CutOffImports(const QSet<QString> &bundleIDs)> tracesOfCutOffImports() = 0;
    // All that they had made before `launch` was looked through: what is found later is not theirs.
    virtual void didLookThroughLeftovers(const QDateTime &launch) = 0;
    virtual void offerToResumeImports() = 0;
    // From then on a cancel is no decision of the person's: what was asked for is kept for the next launch.
    virtual void setKeepsCancelledImports(bool keeps) = 0;
    virtual void thumbForLibraryItem(ZQLibraryBaseItem *item) = 0;
};

// Live folders, as the application sees them. Main thread.
class LiveFolderManaging
{
public:
    virtual ~LiveFolderManaging() = default;
    // What brings them in step with the disk, one after another. Quitting waits for it.
    virtual ZQOperationQueue &syncOperationQueue() = 0;
    virtual void getLiveFolderPermissionFromSandbox() = 0;
    virtual void startObservingWatchedFolders() = 0;
    virtual void stopObservingWatchedFolders() = 0;
    virtual void syncRootWatchedFolders() = 0;
    virtual void syncWatchedFolder(const ZQObjectID &folder, bool force) = 0;
};

// The screen-capture controller.
class ScreenCaptureControlling
{
public:
    virtual ~ScreenCaptureControlling() = default;
    virtual void loadView() = 0;
};

// The cloud session and its menu.
class CloudMenuControlling
{
public:
    virtual ~CloudMenuControlling() = default;
    virtual void createSharedSession() = 0;
    virtual void updateCloudMenu() = 0;
};

// The software update check.
class SoftwareUpdating
{
public:
    virtual ~SoftwareUpdating() = default;
    virtual bool areTestKeysHeld() const = 0; // Option and Control, at this moment
    virtual void configure(const QString &appCastURL) = 0;
    virtual void setAutomaticChecks(bool automatic) = 0;
};

// The crash reporter. Its callbacks are asked on the main thread after `start`.
class CrashReporting
{
public:
    struct Callbacks
    {
        std::function<void()> showMainApplicationWindow;
        std::function<QString()> applicationLog;
    };
    virtual ~CrashReporting() = default;
    virtual void start(Callbacks callbacks, bool automaticSubmission) = 0;
};

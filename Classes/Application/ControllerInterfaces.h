#pragma once

#include "Kit/Persistence/ZQObjectID.h"

#include <QDateTime>
#include <QList>
#include <QRect>
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

// What became of the import of a file that somebody waits for.
struct ImportEnd
{
    enum class Kind : quint8 {
        Imported,
        Failed,
        Cancelled,
        GoesOn, // it is cut off; the next launch offers to go on with it, and needs the file
    };
    Kind kind = Kind::Failed;
    QString reason;    // localized: why it is not imported
    QStringList items; // the item directories' names
};

// The import manager, as the application sees it. Main thread.
class ImportManaging
{
public:
    virtual ~ImportManaging() = default;
    virtual void importFilesAtPaths(const QStringList &paths, const ZQObjectID &intoSidebarItemID, quint32 atIndex,
                                    const QVariantMap &metadata) = 0;
    // To the end of the entry, and without a question where the library has the same already. `done` is called once,
    // when the file is in the library or will not be.
    virtual void importFile(const QString &path, const ZQObjectID &intoSidebarItemID, const QVariantMap &metadata,
                            std::function<void(const ImportEnd &end)> done) = 0;
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

// What a live folder does and how it stands, as a row of the sidebar shows it.
struct LiveFolderStatus
{
    bool isSyncing = false; // or waits for its turn
    qsizetype filesDone = 0;
    qsizetype filesTotal = 0;  // 0: not known
    bool isSwept = false;      // its file system tells of no change: it is looked at in intervals
    qsizetype filesKept = 0;   // of a root: gone, so many at once that their items stay until the person says otherwise
    QString reason;            // localized: why it is missing, looked at in intervals or not watched in full; or empty
    bool holdsAnother = false; // of a root that is missing: another folder lies at its place, and could be taken for it
};

// What became of directories that were to be live folders.
struct AddedLiveFolders
{
    struct Refused
    {
        QString path;
        QString reason; // localized, and says what to do
    };
    QList<ZQObjectID> added;
    QList<ZQObjectID> alreadyThere; // roots, or folders below one
    QList<Refused> refused;
};

// Live folders, as the application sees them. Main thread.
class LiveFolderManaging
{
public:
    // Their object is the manager; the folder is in the user information, as the text of its identifier, under
    // "folder".
    static inline const QString didStartSync = QStringLiteral("WatchedFolderDidStartSync");
    static inline const QString didEndSync = QStringLiteral("WatchedFolderDidEndSync");
    static inline const QString statusDidChange =
        QStringLiteral("WatchedFolderStatusDidChange"); // a few times a second

    virtual ~LiveFolderManaging() = default;
    // What brings them in step with the disk, one after another. Quitting waits for it.
    virtual ZQOperationQueue &syncOperationQueue() = 0;
    virtual void getLiveFolderPermissionFromSandbox() = 0;
    virtual void startObservingWatchedFolders() = 0;
    virtual void stopObservingWatchedFolders() = 0;
    virtual void syncRootWatchedFolders() = 0;
    virtual void syncWatchedFolder(const ZQObjectID &folder, bool force) = 0;
    // Looks at the folder on the disk that this process wrote into; does nothing for one that is in no live folder.
    virtual void syncFolderAtPath(const QString & /*path*/) {}
    // Ends what is waiting or running for these and for what is below them; what was saved until then stays.
    virtual void stopSyncingWatchedFolders(const QList<ZQObjectID> &folders) = 0;
    // Makes roots of the directories, from position `atIndex` of LIVE FOLDERS on, saves them in the main context, has
    // them watched and synchronised. No undo: that is the caller's.
    virtual AddedLiveFolders addNewWatchFolderFromPaths(const QStringList &paths, quint32 atIndex) = 0;
    // Roots were enabled, disabled, removed or brought back, and saved: they are watched and synchronised, or no
    // longer.
    virtual void watchedFoldersDidChange(const QList<ZQObjectID> &folders) = 0;
    virtual LiveFolderStatus statusOfWatchedFolder(const ZQObjectID &folder) const = 0;
    // Forced, and what the folder's root misses in this run leaves the library however much it is.
    virtual void syncAndRemoveMissing(const ZQObjectID &folder) = 0;
};

class CaptureCommands; // of Classes/Capture

// The screen-capture controller. Main thread.
class ScreenCaptureControlling
{
public:
    virtual ~ScreenCaptureControlling() = default;
    virtual void loadView() = 0;
    // Captures that a person takes part in; another one that goes on is ended first. What is taken goes to Screenshots.
    virtual void snapArea() = 0;
    virtual void snapWindow() = 0;
    virtual void snapFullScreen() = 0;
    // Capture of a web page. `pageURL` empty: the person types it; `frame` of the browser's window, in points of the
    // desktop, null where it is not known.
    virtual void snapWebsite(const QString &pageURL, const QRect &frame) = 0;
    virtual void openZelto() {} // the main window, forward
    // For who waits for what is taken; null: nobody takes anything.
    virtual CaptureCommands *captureCommands() { return nullptr; }
    // Why the keys of the command known by its user default do not work, localized; empty: they do, or there are none.
    virtual QString problemOfHotKey(const QString & /*command*/) const { return {}; }
    // While a person presses the keys that are to be one of them, none does what it does.
    virtual void setHotKeysPaused(bool /*paused*/) {}
    // Returns once everything that was taken is on its way into the library, as an import, or in another place. False:
    // there is a picture that only memory has. For quitting.
    virtual bool finishStoring() { return true; }
    virtual bool isStoring() const { return false; } // something that is neither
};

// Images of a web page that are to be imported.
struct ImageDownloadRequest
{
    QString pageTitle;
    QString pageUrl;
    QStringList images; // addresses
    QString importAll;  // not empty: into a new project titled `pageTitle`, else into the library
    // Who named the addresses: a page, by an address of the scheme, may say of itself what it likes.
    enum class Asker { Page, Person };
    Asker asker = Asker::Page;
};

// What downloads them, in the background, with progress. Main thread.
class ImageDownloading
{
public:
    virtual ~ImageDownloading() = default;
    virtual void downloadImages(const ImageDownloadRequest &request) = 0;
    virtual bool isDownloading() const { return false; }
    virtual void stopDownloads() {} // cancels all; they end soon, and nothing of them is imported
};

// Commands that arrive as addresses of this application's scheme. Main thread.
class ProtocolHandling
{
public:
    static inline const QString scheme = QStringLiteral("zelto");

    virtual ~ProtocolHandling() = default;
    // Whether a word, where a file could stand too, is an address of the scheme, well formed or not.
    static bool isProtocolURL(const QString &word) { return word.startsWith(scheme + u':', Qt::CaseInsensitive); }
    // Waits until the launch is done. Nothing of it is trusted.
    virtual void handleURL(const QString &url) = 0;
};

// Keys that work while other programs have the focus. Main thread.
class HotKeyRegistering
{
public:
    // As kept in the user defaults: a virtual key code and a mask of modifiers ("code", "flags"). See `HotKey`.
    virtual ~HotKeyRegistering() = default;
    // Takes the keys for the command known by its user default (see `HotKeyCommand`), instead of those that it had.
    // `setting` empty: gives them up. Empty when the keys are taken, else why not, localized, for the person. Where a
    // desktop asks the person first the answer comes later, by `stateDidChange`.
    virtual QString registerHotKey(const QString &command, const QVariantMap &setting, std::function<void()> run) = 0;
    virtual QString problemOfHotKey(const QString &command) const = 0;
    static inline const QString stateDidChange = QStringLiteral("HotKeyStateDidChange"); // posted with no object
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

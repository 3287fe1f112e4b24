#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Import/LiveFolderManager.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QStringList>
#include <QUrl>

#include <atomic>
#include <memory>
#include <optional>

class ImportOperation;
class PendingImportFile;
class QMimeData;
class ZQSidebarBaseItem;
struct UnfoldedArchive;

// The one way by which files reach the library, and the owner of the import pipeline's queues. One for the process.
//
// Main thread, except for the class queries, which any thread may ask.
class AImportManager : public ImportManaging
{
public:
    static inline const QString didFinishImportOperation = QStringLiteral("ImportManagerDidFinishImportOperation");
    static inline const QString willFinishImportOperation = QStringLiteral("ImportManagerWillFinishImportOperation");

    static AImportManager &sharedAImportManager();

    // Which files can be imported. By name and by whether the path is a folder; contents are not looked at.
    static bool fileAtPathIsSupported(const QString &path);
    static bool fileAtPathIsArchive(const QString &path);
    static bool filesAtPathsContainsValidItems(const QStringList &paths);
    static bool filesAtPathsContainsDirectory(const QStringList &paths);
    static bool filesAtPathsContainsArchive(const QStringList &paths);
    static bool areFilesAtPaths(const QStringList &paths, const ZQSidebarBaseItem *validForSidebarItem);
    static QStringList supportedTypeForOpenPanel(); // extensions
    // Textual: "/a/bc" counts as inside "/a/b". The order is kept.
    static QStringList removeSubFoldersFromPaths(const QStringList &paths);
    static QString getActualPath(const QString &path); // where the file is now
    static bool isFileReadableAtPath(const QString &path);
    static QStringList unreadableFilesForFilePaths(const QStringList &paths); // folders with all they hold
    static QStringList unreadableFilesForDirectory(const QString &directory);
    // Textual. What lies in one is moved into the library instead of copied.
    static bool fileIsInsideTemporaryDirectory(const QString &path);
    // Whether views can show the file itself: no thumbnail of it is kept.
    static bool canSkipThumbForPath(const QString &path);

    // Imports. The answer runs, or waits for its turn, on the background queue; its report is complete when it has
    // finished. Null without a library.
    std::shared_ptr<ImportOperation> startImportOfFilesAtPaths(const QStringList &paths,
                                                               const ZQObjectID &intoSidebarItemID, quint32 atIndex,
                                                               const QVariantMap &metadata);
    // The same for what came out of an archive; the request owns the folder it lies in.
    std::shared_ptr<ImportOperation> startImportOfArchive(const UnfoldedArchive &archive, quint32 atIndex);
    void importFilesAtPaths(const QStringList &paths, const ZQObjectID &intoSidebarItemID, quint32 atIndex,
                            const QVariantMap &metadata) override;
    std::shared_ptr<ImportOperation> importFilesAtPaths(const QStringList &paths,
                                                        const ZQSidebarBaseItem *intoSidebarItem);
    std::shared_ptr<ImportOperation> importFilesAtPaths(const QStringList &paths,
                                                        const ZQSidebarBaseItem *intoSidebarItem, quint32 atIndex);
    std::shared_ptr<ImportOperation> importFileURLs(const QList<QUrl> &urls, const ZQSidebarBaseItem *intoSidebarItem);
    std::shared_ptr<ImportOperation> importFileURLs(const QList<QUrl> &urls, const ZQSidebarBaseItem *intoSidebarItem,
                                                    quint32 atIndex);
    // Null when there is nothing on the clipboard that could be imported.
    std::shared_ptr<ImportOperation>
    importItemsFromPasteboard(const QMimeData *pasteboard, const ZQSidebarBaseItem *intoSidebarItem, quint32 atIndex);
    void stopAllOperation();
    void takeBackItemDirectories(const QStringList &names,
                                 std::function<void(qsizetype takenBack, bool isComplete)> done) override;

    // Imports that an earlier process did not end. The first goes on with all of them, the second gives them up; what
    // they have saved stays.
    QStringList cutOffImports() const;
    // Which those are, in a few words; empty when none can be read.
    QString textForCutOffImports() const;
    // `unreadable`: how many requests cannot be read; the person is told of each.
    QList<std::shared_ptr<ImportOperation>> resumeImports(qsizetype *unreadable = nullptr);
    // A request goes on with what came out of its archive, which was unpacked again. Null without a library, or when
    // that could not be noted.
    std::shared_ptr<ImportOperation> resumeImportOfArchive(const UnfoldedArchive &archive,
                                                           const std::shared_ptr<PendingImportFile> &pending);
    void forgetImports();
    std::optional<QDateTime> cutOffImportSince() override;
    std::function<CutOffImports(const QSet<QString> &bundleIDs)> tracesOfCutOffImports() override;
    void didLookThroughLeftovers(const QDateTime &launch) override;
    void offerToResumeImports() override;
    void setKeepsCancelledImports(bool keeps) override { m_keepsCancelledImports = keeps; }
    bool keepsCancelledImports() const { return m_keepsCancelledImports; } // any thread

    ZQOperationQueue &importOperationQueue(); // the application's background queue
    ZQOperationQueue &thumbsGenerationQueue() { return m_thumbsGenerationQueue; }
    ZQOperationQueue &syncOperationQueue() override { return m_syncOperationQueue; }

    // A fresh folder of one's own for files that are to be imported; empty on failure, which the person is told. Any
    // thread.
    static QString temporaryDirectory();
    static QUrl temporaryURL();

    // Brings a background save into the main context and saves that.
    void mergeChanges(const ZQContextDidSave &notification);
    // The active tags of each title become one.
    void mergeDuplicatedTagNames(const QStringList &titles);

    // Makes the thumbnail of a saved item again.
    void thumbForLibraryItem(ZQLibraryBaseItem *item) override;
    void thumbForImage(ZQLibraryBaseItem *item) { thumbForLibraryItem(item); }
    void updateThumbPath(const QString &path, const ZQObjectID &forObjectID); // empty: no thumbnail

    // Whether the library lies on this volume.
    bool libraryOnPath(const QString &volumePath) const;

    // Live folders.
    void getLiveFolderPermissionFromSandbox() override { m_liveFolderManager.getLiveFolderPermissionFromSandbox(); }
    void startObservingWatchedFolders() override { m_liveFolderManager.startObservingWatchedFolders(); }
    void stopObservingWatchedFolders() override { m_liveFolderManager.stopObservingWatchedFolders(); }
    void syncRootWatchedFolders() override { m_liveFolderManager.syncRootWatchedFolders(false); }
    void syncWatchedFolder(const ZQObjectID &folder, bool force) override;

private:
    AImportManager();
    static QString pendingFolder();
    std::shared_ptr<ImportOperation> startImport(const QStringList &paths, const ZQObjectID &intoSidebarItemID,
                                                 quint32 atIndex, const QVariantMap &metadata,
                                                 const UnfoldedArchive *origin);
    std::shared_ptr<ImportOperation> queue(std::shared_ptr<ImportOperation> operation,
                                           std::shared_ptr<PendingImportFile> pending);
    std::shared_ptr<ImportOperation> resumeImport(const QString &name);
    void announceQueued(const QStringList &paths);

    ZQOperationQueue m_thumbsGenerationQueue;
    ZQOperationQueue m_syncOperationQueue;
    LiveFolderManager m_liveFolderManager;
    std::atomic<bool> m_keepsCancelledImports = false;
};

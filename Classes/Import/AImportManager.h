#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Import/BatchRequest.h"
#include "Classes/Import/ImportOwner.h"
#include "Classes/Import/PendingImports.h"
#include "Classes/Tags/WhereFroms.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <QStringList>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

class PromisedImports;
class QMimeData;

// The one way by which files reach the library, and the owner of the import pipeline's queues. One for the process.
//
// Main thread. An import answers at once: the work is done on the background queue, and what went wrong is in the
// operation's report.
class AImportManager : public ImportManaging, public ImportOwner
{
public:
    static inline const QString didFinishImportOperation = QStringLiteral("ImportManagerDidFinishImportOperation");
    static inline const QString willFinishImportOperation = QStringLiteral("ImportManagerWillFinishImportOperation");

    static AImportManager &sharedAImportManager();

    // The way in; see `ImportOwner`. The others say the same with what their callers have. Null, too, for a live
    // folder.
    std::shared_ptr<ImportOperation> startImport(const BatchRequest &request) override;
    void importFilesAtPaths(const QStringList &paths, const ZQObjectID &intoSidebarItemID, quint32 atIndex,
                            const QVariantMap &metadata) override;
    void importFile(const QString &path, const ZQObjectID &intoSidebarItemID, const QVariantMap &metadata,
                    std::function<void(const ImportEnd &end)> done) override;
    std::shared_ptr<ImportOperation> importFilesAtPaths(const QStringList &paths,
                                                        const ZQSidebarBaseItem *intoSidebarItem,
                                                        quint32 atIndex = ZQSidebarBaseItem::appendIndex);
    std::shared_ptr<ImportOperation> importFileURLs(const QList<QUrl> &urls, const ZQSidebarBaseItem *intoSidebarItem,
                                                    quint32 atIndex = ZQSidebarBaseItem::appendIndex);
    // Null when there is nothing on the clipboard that could be imported.
    std::shared_ptr<ImportOperation>
    importItemsFromPasteboard(const QMimeData *pasteboard, const ZQSidebarBaseItem *intoSidebarItem, quint32 atIndex);
    // What other programs promise in a drag. Until this is set, and on a display where that is not known, nothing.
    void setPromisedImports(PromisedImports *promised) { m_promisedImports = promised; }
    bool isPromised(const QMimeData &dragged) const;
    // The import begins when it has come. False when nothing is promised.
    bool importPromisedFiles(const QMimeData &dropped, const ZQSidebarBaseItem *intoSidebarItem, quint32 atIndex);
    // What is to go into a live folder is copied to its place on the disk by who can take that back: `copy` is called
    // instead of an import. Null: it is refused.
    using WatchedFolderCopy =
        std::function<void(const QStringList &paths, const ZQObjectID &folder, const WhereFroms &origin)>;
    void setWatchedFolderCopy(WatchedFolderCopy copy) { m_watchedFolderCopy = std::move(copy); }
    void stopAllOperation();
    void takeBackItemDirectories(const QStringList &names,
                                 std::function<void(qsizetype takenBack, bool isComplete)> done) override;

    // Imports that an earlier process did not end.
    PendingImports &pendingImports() { return m_pendingImports; }
    std::optional<QDateTime> cutOffImportSince() override { return m_pendingImports.cutOffSince(); }
    std::function<CutOffImports(const QSet<QString> &bundleIDs)> tracesOfCutOffImports() override
    {
        return m_pendingImports.traces();
    }
    void didLookThroughLeftovers(const QDateTime &launch) override { m_pendingImports.didLookThroughLeftovers(launch); }
    void offerToResumeImports() override { m_pendingImports.offerToResume(); }
    std::shared_ptr<ImportOperation> resumeImportOfArchive(const UnfoldedArchive &archive,
                                                           const std::shared_ptr<PendingImportFile> &pending,
                                                           const std::shared_ptr<ImportWhole> &whole) override
    {
        return m_pendingImports.resumeArchive(archive, pending, whole);
    }
    void setKeepsCancelledImports(bool keeps) override { m_pendingImports.setKeepsCancelled(keeps); }
    bool keepsCancelledImports() const override { return m_pendingImports.keepsCancelled(); }

    ZQOperationQueue &importOperationQueue(); // the application's background queue
    ZQOperationQueue &thumbsGenerationQueue() { return m_thumbsGenerationQueue; }

    void mergeChanges(const ZQContextDidSave &notification) override;
    // The active tags of each title become one.
    void mergeDuplicatedTagNames(const QStringList &titles);

    // Makes the thumbnail of a saved item again.
    void thumbForLibraryItem(ZQLibraryBaseItem *item) override;
    void thumbForImage(ZQLibraryBaseItem *item) { thumbForLibraryItem(item); }
    void updateThumbPath(const QString &path, const ZQObjectID &forObjectID); // empty: no thumbnail

    // Whether the library lies on this volume.
    bool libraryOnPath(const QString &volumePath) const;

private:
    AImportManager();
    void announceQueued(const QStringList &paths);
    void copyIntoWatchedFolder(const BatchRequest &request);

    ZQOperationQueue m_thumbsGenerationQueue;
    PendingImports m_pendingImports;
    PromisedImports *m_promisedImports = nullptr;
    WatchedFolderCopy m_watchedFolderCopy;
};

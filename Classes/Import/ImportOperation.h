#pragma once

#include "Classes/Application/UserInteraction.h"
#include "Classes/Import/BaseImportOperation.h"
#include "Classes/Import/BatchRequest.h"
#include "Classes/Import/ImportReport.h"
#include "Classes/Import/PendingImport.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <QDateTime>
#include <QHash>
#include <QSet>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

class ImportOwner;

// One import request: sorts paths into folders and files, has each file copied and read on an inner queue, makes
// library items of the results in a context of its own, puts them where they belong and saves.
//
// Made on the main thread, runs on the background queue. Every file asked for ends as an item or in the report with a
// reason, save hidden ones inside folders.
class ImportOperation : public ZQOperation, private ImportBatch
{
public:
    static inline const QString sidebarItemDidAddItem = QStringLiteral("SidebarItemDidAddItem"); // userInfo "objectID"
    static constexpr quint32 appendIndex = ZQSidebarBaseItem::appendIndex;

    ImportOperation(const BatchRequest &request, ImportOwner &owner);
    ~ImportOperation() override;

    // Before the start: where the request is kept until it ends. Resumed: go on with what it did not save.
    void setPendingImport(std::shared_ptr<PendingImportFile> file, bool isResumed);
    // Before the start: the archive asked for is unpacked again, and this request of what it held goes on with that.
    void setRequestOfArchive(std::shared_ptr<PendingImportFile> file);

    bool hasStarted() const { return m_hasStarted; } // any thread
    const ImportReport &report() const { return m_report; }
    // The requests for what the archives of this one held; complete once this one has finished. Main thread.
    const QList<std::shared_ptr<ImportOperation>> &followUps() const { return m_followUps; }
    // Whether this and all that followed from it have finished, and whether one of them was cancelled. Main thread.
    bool isWhollyFinished() const;
    bool isAnyCancelled() const;
    quint32 originalDropIndex() const { return m_originalDropIndex; }
    const QStringList &foldersAndArchivesPathOrdered() const { return m_foldersAndArchivesPathOrdered; }

    void main() override;

private:
    // Files that go into one sidebar item.
    struct Group
    {
        ZQRef<ZQSidebarBaseItem> project;
        QStringList files;
        QString droppedFolder;                 // which all of them come from; empty: each was dropped itself
        std::vector<qint64> milliseconds = {}; // of each file's import date behind the batch's
    };

    // What is kept of an item once it was made.
    struct CreatedItem
    {
        ZQObjectID objectID; // temporary until saved
        QString bundleID;
        QString SHA1;
        QString filePath;
        QString thumbName;
        QString sourcePath;
        QString movedPath; // see `ImportedFile`
        qint64 movedModification = 0;
        QStringList tags;
        QString notes;
        bool isGone = false;    // taken out again
        bool isEarlier = false; // saved before the batch was cut off
    };

    // Files whose operations run together, each with its slot.
    struct Chunk
    {
        std::vector<ImportedFile> fileProcessed;
        std::vector<std::shared_ptr<BaseImportOperation>> operations;
    };

    // Where the items of a group go.
    struct Place
    {
        ZQRef<ZQSidebarBaseItem> project;
        quint32 position = 0;
        bool isExplicit = false;
    };

    // An item of the library, and the new ones with the same digest.
    struct Duplicate
    {
        ZQRef<ZQLibraryBaseItem> existing;
        std::vector<std::size_t> created; // in m_createdItems
    };

    // ImportBatch; any thread.
    void fileDidDrop(const DroppedFile &file) override;
    void fileDidFinish() override;
    QString refusal() const override;
    void setRefusal(const QString &reason) override;
    void archiveDidUnfold(const UnfoldedArchive &archive) override;

    // Start.
    bool setUp();
    void importIntoTarget();
    void importFlat(ZQSidebarBaseItem &target);
    void importStructured(ZQSidebarBaseItem &target);
    static DroppedFile unsupportedFile(const QString &path);
    QStringList screened(const QStringList &files);
    QStringList supportedFiles();
    void addLooseFiles(const QStringList &files, ZQSidebarBaseItem &target, quint32 &dropIndex, QList<Group> &groups);
    QList<Group> projectsToImportFromDirectory(const QString &directoryPath, ZQSidebarBaseItem *inFolder,
                                               quint32 atIndex);
    void dropRefused(const QStringList &refused, const QList<DroppedFile> &dropped);
    QStringList filesBelowDirectory(const QString &directoryPath);
    void beginProgress();
    bool saveStructure();
    static void logSaveError(const ZQError &error);

    // A batch that was cut off.
    bool restoreEarlierItems();
    void restoreEarlierItem(const PendingImportFile::Source &source, ZQLibraryBaseItem &item);
    QStringList remaining(const QStringList &files);
    void resume();
    void importRemainingGroups();
    bool rememberGroups(const QList<Group> &groups);
    bool rememberUnsavedItems(ZQError *error);
    void postpone(const QString &reason);
    void endPendingImport(bool wasCancelled);
    void endRequestOfArchive(bool wasCancelled);
    void keepPendingImport();
    QString textForUnfinished() const;

    // Groups.
    void importGroups(QList<Group> &groups);
    void importFiles(const Group &group);
    void orderLikeTheDrop(QList<Group> &groups);
    std::unique_ptr<Chunk> startChunk(const Group &group, qsizetype first, qsizetype count);
    void finishChunk(Chunk &chunk, Place &place);
    ZQRef<ZQLibraryBaseItem> insertItem(const ImportedFile &file);
    void tagItem(ZQLibraryBaseItem &item, const QStringList &tags);
    ZQRef<ZQSidebarTag> tagWithName(const QString &text);
    bool saveItems(ZQError *error = nullptr);
    void writeTagsOfItems(std::size_t first);
    void forgetUnsavedItems(const QString &reason);

    // Finish.
    void finish();
    void checkForDuplicateImport();
    std::optional<std::vector<Duplicate>> findDuplicates();
    QList<DuplicatePair> duplicatePairs(const std::vector<Duplicate> &duplicates) const;
    void resolveDuplicate(const Duplicate &duplicate, DuplicateChoice choice);
    void relink(ZQLibraryBaseItem &existing, ZQLibraryBaseItem &created);
    void removeEverythingCreated();
    void enableSidebarItems();
    void completeItems();
    void takeOut(std::size_t index);
    void removeBundles();
    void keepWhatCouldNotBeTakenOut(const ZQError &error);
    void importUnfoldedArchives();
    void importUnfoldedArchive(const UnfoldedArchive &archive);
    quint32 indexForArchive(const UnfoldedArchive &archive) const;
    void writeReport(bool isCancelled);
    void tellResult(bool isCancelled);
    void tellDropped();
    void notify(const QString &text, int position, double seconds);

    ZQRef<ZQLibraryBaseItem> object(const CreatedItem &item);
    static QString bundlePath(const QString &bundleID);
    void dropAll(const QStringList &paths, const QString &reason,
                 DroppedFile::Telling telling = DroppedFile::Telling::InWindow);

    ImportOwner &m_owner;
    QStringList m_itemsToImport;
    const ZQObjectID m_rootSidebarItem;
    quint32 m_index;
    quint32 m_originalDropIndex;
    const QVariantMap m_metadata;
    const ImportSettings m_settings;
    const std::shared_ptr<ZQPersistentStoreCoordinator> m_coordinator;
    UserInteraction &m_userInteraction;
    ImportReport m_report;

    std::chrono::steady_clock::time_point m_startDate;
    std::unique_ptr<ZQOperationQueue> m_importOperationQueue;
    std::unique_ptr<ZQManagedObjectContext> m_moc;
    ZQOperation::Token m_cancellationObserver;
    ZQManagedObjectContext::Token m_mainThreadSaveObserver;

    QStringList m_requestedFiles; // every single file that was to become an item
    QStringList m_foldersAndArchivesPathOrdered;
    ZQObjectID m_target;
    std::optional<UnfoldedArchive> m_origin;
    std::shared_ptr<PendingImportFile> m_pendingImport;
    std::shared_ptr<PendingImportFile> m_requestOfArchive;
    bool m_isResumed = false;
    PendingImport m_firstRequest; // as it was before the start
    QStringList m_outOfReach;     // what a request that was cut off names, and nobody finds
    bool m_isRequestKept = false;
    QString m_postponement; // why the request is kept
    std::atomic<bool> m_hasStarted = false;
    QHash<QString, int> m_earlierPaths; // how often each is in already
    bool m_hasArchives = false;
    bool m_isProcessed = false; // the last group gave something

    std::vector<CreatedItem> m_createdItems;
    qsizetype m_savedItemCount = 0;
    QList<ZQRef<ZQLibraryBaseItem>> m_unsavedItems;        // those of `m_createdItems` from `m_savedItemCount` on
    QList<ZQRef<ZQSidebarBaseItem>> m_createdSidebarItems; // tags included
    QHash<QString, ZQRef<ZQSidebarTag>> m_tags;
    QStringList m_bundlesToRemove; // of what the store does not name
    // Of items that the store names until their deletion was saved, and what is to be reported then.
    QStringList m_bundlesToRemoveOnceSaved;
    QList<DroppedFile> m_droppedOnceSaved;
    QStringList m_discardedPaths;
    QDateTime m_firstImportDate;

    QList<std::shared_ptr<ImportOperation>> m_followUps;
    QSet<QString> m_followedUpPaths; // of archives

    std::shared_ptr<UserProgress> m_progress;
    std::atomic<qint64> m_numberOfItemToImport = 0;
    mutable std::mutex m_mutex;
    QString m_refusal;
    QList<UnfoldedArchive> m_unfoldedArchives;
    QSet<QString> m_droppedPaths;
    int m_unreportedProgress = 0;
    std::chrono::steady_clock::time_point m_lastProgress;
};

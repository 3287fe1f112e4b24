#pragma once

#include "Classes/Import/BatchResumption.h"
#include "Classes/Import/BatchState.h"
#include "Classes/Import/CreatedItems.h"
#include "Classes/Import/ImportPlan.h"

#include <QSet>

#include <atomic>
#include <memory>

class BatchResult;
class GroupImport;
class ImportOwner;

// One import request: has an ImportPlan sort the paths into folders and files, a GroupImport copy and read the files
// and make items of them in a context of its own, a DuplicateCheck ask about those that the library has, and saves.
//
// Made on the main thread, runs on the background queue. Every file asked for ends as an item or in the report with a
// reason, save hidden ones inside folders.
class ImportOperation : public ZQOperation
{
public:
    static constexpr quint32 appendIndex = ZQSidebarBaseItem::appendIndex;

    ImportOperation(const BatchRequest &request, const KeptRequest &kept, ImportOwner &owner);
    ~ImportOperation() override;

    bool hasStarted() const { return m_hasStarted; } // any thread
    const ImportReport &report() const { return m_batch.record.report(); }
    // The requests for what the archives of this one held; complete once this one has finished. Main thread.
    const QList<std::shared_ptr<ImportOperation>> &followUps() const { return m_followUps; }
    // Whether this and all that followed from it have finished, and whether one of them was cancelled. Main thread.
    bool isWhollyFinished() const;
    bool isAnyCancelled() const;
    // Whether a question that is open may be theirs: imports that ask run one after another. Main thread.
    bool isAnyRunning() const;
    void cancelWholly(); // this, and all that followed from it. Main thread.
    // Once it has finished.
    bool isRequestKept() const { return m_resumption.isRequestKept(); }
    quint32 originalDropIndex() const { return m_batch.originalDropIndex; }
    const QStringList &foldersAndArchivesPathOrdered() const { return m_batch.foldersAndArchivesPathOrdered; }

    void main() override;
    bool overtakes() const override { return m_goesPastQuestions; }

private:
    bool setUp();
    void importIntoTarget();
    void resume();
    bool rememberFolders(const QList<FileGroup> &groups);
    void removeEverythingCreated();

    void finish(BatchResult &result);
    void saveAtTheEnd(bool wasCancelled);
    void enableSidebarItems();
    void importUnfoldedArchives();
    void importUnfoldedArchive(const UnfoldedArchive &archive);
    quint32 indexForArchive(const UnfoldedArchive &archive) const;
    void releaseFolders();

    ImportOwner &m_owner;
    const bool m_goesPastQuestions;
    BatchState m_batch;
    BatchResumption m_resumption;
    ImportPlan m_plan;
    CreatedItems m_items;
    std::unique_ptr<GroupImport> m_groupImport;
    ZQOperation::Token m_cancellationObserver;
    ZQManagedObjectContext::Token m_mainThreadSaveObserver;
    std::atomic<bool> m_hasStarted = false;

    QList<std::shared_ptr<ImportOperation>> m_followUps;
    QSet<QString> m_followedUpPaths; // of archives
};

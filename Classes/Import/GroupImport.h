#pragma once

#include "Classes/Import/BatchState.h"
#include "Classes/Import/ImportedFile.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QDateTime>

#include <chrono>
#include <deque>
#include <memory>
#include <optional>

class BaseImportOperation;
class CreatedItems;

// Imports the files of one batch, a group after the other: has each file copied and read by an operation of its kind on
// an inner queue, three at a time, and makes items of the results in the order of the files.
//
// What is there is saved soon after the start and then now and then, so that the first items are on screen within a
// second and the rest follows: by time, since some files take seconds, and by number, since results are kept in memory
// until then. Meanwhile further files are being read. Order, positions and tags come out as in a single save: a file
// becomes an item when those before it have. What was saved stays on the batch's account until the end: a cancel
// removes it, and duplicates are asked about once, after the last file.
//
// The batch's thread; `cancelFiles` any. A file that fails is told to the batch's record by its operation.
class GroupImport
{
public:
    static inline const QString sidebarItemDidAddItem = QStringLiteral("SidebarItemDidAddItem"); // userInfo "objectID"

    GroupImport(BatchState &batch, CreatedItems &items);

    void importGroups(QList<FileGroup> &groups);
    void cancelFiles() { m_queue.cancelAllOperations(); } // those that are read, or wait for that

private:
    using Clock = std::chrono::steady_clock;

    // A file that is read, or waits for that, and the slot for its result.
    struct Reading
    {
        std::shared_ptr<BaseImportOperation> operation;
        ImportedFile file;
    };
    // Told when a file has been read; the last operation may outlive the batch.
    struct Arrival
    {
        ZQMutex mutex;
        ZQCondition arrived;
    };

    void orderLikeTheDrop(QList<FileGroup> &groups);
    void importFiles(const FileGroup &group);
    void startFurther(const FileGroup &group, qsizetype &next);
    std::shared_ptr<BaseImportOperation> operationFor(const FileGroup &group, qsizetype file);
    bool waitForFirst();
    void takeFirst(ItemInserter::Place &place);
    void insertItem(const ImportedFile &file, ItemInserter::Place &place);
    bool isSaveDue() const;
    void save(ItemInserter::Place &place);

    bool isOfLiveFolder(const QString &path) const;

    BatchState &m_batch;
    std::optional<QStringList> m_liveFolders; // paths of roots, with a slash behind; nothing: not known
    CreatedItems &m_items;
    ZQOperationQueue m_queue;
    std::shared_ptr<Arrival> m_arrival;
    std::deque<Reading> m_reading; // in the order of the files; slots stay where they are
    Clock::duration m_saveInterval;
    Clock::time_point m_nextSave;
    QDateTime m_firstImportDate;
};

#pragma once

#include "Classes/Import/BatchState.h"
#include "Classes/Import/ImportedFile.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QDateTime>

#include <memory>
#include <vector>

class BaseImportOperation;
class CreatedItems;

// Imports the files of one batch, a group after the other: has each file copied and read by an operation of its kind on
// an inner queue, three at a time, and makes items of the results in the order of the files.
//
// A group becomes items once all its files have been read. A batch of very many files would show nothing for minutes
// that way and keep every result in memory, so it goes in chunks of one group after another: while one chunk becomes
// items and is saved, the files of the next are being read. The order, the positions and the tags come out the same,
// since chunks follow each other in the order of the files and the positions run on. What a chunk saved stays on the
// batch's account until the end: a cancel removes it, and duplicates are asked about once, after the last file.
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
    // Files whose operations run together, each with its slot.
    struct Chunk
    {
        std::vector<ImportedFile> fileProcessed;
        std::vector<std::shared_ptr<BaseImportOperation>> operations;
    };

    void orderLikeTheDrop(QList<FileGroup> &groups);
    void importFiles(const FileGroup &group);
    std::unique_ptr<Chunk> startChunk(const FileGroup &group, qsizetype first, qsizetype count);
    void finishChunk(Chunk &chunk, ItemInserter::Place &place);
    void insertItem(const ImportedFile &file, ItemInserter::Place &place);

    BatchState &m_batch;
    CreatedItems &m_items;
    ZQOperationQueue m_queue;
    QDateTime m_firstImportDate;
};

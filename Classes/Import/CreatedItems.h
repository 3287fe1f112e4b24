#pragma once

#include "Classes/Import/BatchState.h"
#include "Classes/Import/PendingImport.h"

#include <QStringList>

#include <vector>

class BatchResumption;
struct ImportedFile;

// What is kept of an item once a batch made it.
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

// The items of one batch and their item directories, from the insertion until both are safe or gone: saves them, takes
// them out again, and removes a directory only when no row names it, in the store or about to be there.
//
// The batch's thread. A save flushes the file system once, so that the files are on the disk before rows name them; one
// that fails is told to the batch's record, and the items that were to be saved are given up.
class CreatedItems
{
public:
    CreatedItems(BatchState &batch, BatchResumption &resumption) : m_batch(batch), m_resumption(resumption) {}

    const std::vector<CreatedItem> &all() const { return m_items; }
    qsizetype savedCount() const { return m_savedCount; }
    qsizetype unsavedCount() const { return m_unsaved.size(); }
    ZQRef<ZQLibraryBaseItem> object(const CreatedItem &item) const;

    void add(const ImportedFile &file, const ItemInserter::Inserted &inserted);
    // One that the store has since before the batch was cut off; before any other.
    void addEarlier(const PendingImportFile::Source &source, ZQLibraryBaseItem &item);
    // Of a file that becomes no item: nobody names it.
    void giveUpDirectory(const QString &bundleID) { m_bundlesToRemove.append(bundleID); }

    bool save(ZQError *error = nullptr);
    void forgetUnsaved(const QString &reason);

    // The item goes with the next save; the path is reported then.
    void takeOut(std::size_t index);
    void takeOut(std::size_t index, const DroppedFile &reportedOnceSaved);
    void takeOutAll(); // but for the earlier ones, which the person has had since the last launch
    // The person decided against it: a batch that goes on does not ask again.
    void discard(const QString &sourcePath) { m_discardedPaths.append(sourcePath); }

    // At the end, in this order. After a last save that failed: the store still lists what earlier saves of the batch
    // put there, and it stays whole.
    void keepWhatCouldNotBeTakenOut(const ZQError &error);
    // What is due once the items are safe: the moved files leave where they were.
    void removeSources();
    void removeDirectories();
    void releaseObjects() { m_unsaved.clear(); } // before the context is reset

private:
    bool rememberUnsaved(ZQError *error);
    void writeTags(std::size_t first);

    BatchState &m_batch;
    BatchResumption &m_resumption;
    std::vector<CreatedItem> m_items;
    qsizetype m_savedCount = 0;
    QList<ZQRef<ZQLibraryBaseItem>> m_unsaved; // those of `m_items` from `m_savedCount` on
    QStringList m_bundlesToRemove;             // of what the store does not name
    // Of items that the store names until their deletion was saved, and what is to be reported then.
    QStringList m_bundlesToRemoveOnceSaved;
    QList<DroppedFile> m_droppedOnceSaved;
    QStringList m_discardedPaths;
};

#pragma once

#include "Classes/Application/UserInteraction.h"
#include "Classes/Import/BatchState.h"

#include <optional>
#include <vector>

class BatchResumption;
class CreatedItems;
struct CreatedItem;

// Finds out which of the items that a batch made the library had already, by their digests, and asks the person about
// them, once for the whole batch. Each is kept, discarded, or discarded with the library's item put in its place. An
// answer for all that the import brings holds for the batches of its archives too.
//
// The batch's thread, which waits for the answer; the person may cancel the batch there. One query for 500 digests.
// When the library cannot be read the batch is postponed and what is unsaved given up.
class DuplicateCheck
{
public:
    DuplicateCheck(BatchState &batch, CreatedItems &items, BatchResumption &resumption)
        : m_batch(batch), m_items(items), m_resumption(resumption)
    {
    }

    void run();

private:
    // An item of the library, and the new ones with the same digest.
    struct Duplicate
    {
        ZQRef<ZQLibraryBaseItem> existing;
        std::vector<std::size_t> created; // their places in the created items
    };

    std::optional<std::vector<Duplicate>> find();
    std::optional<DuplicateAnswers> ask(const QList<DuplicatePair> &pairs);
    QList<DuplicatePair> pairs(const std::vector<Duplicate> &duplicates) const;
    void resolve(const Duplicate &duplicate, DuplicateChoice choice);
    QString addressOf(const CreatedItem &created) const;
    bool goesIntoProject(const CreatedItem &created) const;
    bool doArchivesFollow() const;
    void relink(ZQLibraryBaseItem &existing, ZQLibraryBaseItem &created);

    BatchState &m_batch;
    CreatedItems &m_items;
    BatchResumption &m_resumption;
};

#pragma once

#include "Kit/Imaging/ZQPictureHash.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <functional>
#include <optional>

class LibraryIndex;

// Items that look alike, and the one of them that is worth most.
struct NearDuplicateGroup
{
    QList<ZQObjectID> items; // by their worth
    qsizetype best = 0;      // the position of the one that is proposed to be kept
    QString reason;          // why, one sentence, localised
};

class NearDuplicates
{
public:
    using Progress = std::function<void(double)>; // 0 … 1, now and then, on the thread that asks; may be null

    // The groups among all active items, or among `items`, as NearGroups cuts them, the nearer the more there are;
    // those with the most items first. On the context's thread, with what was saved; seconds for a million. `index` may
    // be null, and is not held meanwhile. Nothing after an error, or, without one, when the thread's ZQCancellation was
    // cancelled.
    static std::optional<QList<NearDuplicateGroup>> find(ZQManagedObjectContext &context, LibraryIndex *index,
                                                         const std::optional<QList<ZQObjectID>> &items,
                                                         const Progress &progress, ZQError *error);

    // What tells which of several is worth more.
    struct Worth
    {
        ZQObjectID item;
        QString extension;
        qint64 width = 0; // in pixels
        qint64 height = 0;
        qint64 rating = 0;
        qint64 imported = 0; // milliseconds since 1970
    };
    // By, one after the other: artwork that is sharp in any size, more pixels, a format that loses less, more stars,
    // and being in the library for longer. Of two and more.
    static NearDuplicateGroup groupOf(QList<Worth> items);
};

#pragma once

#include "Classes/Browsing/Index/HashDistances.h"
#include "Kit/Foundation/ZQPages.h"
#include "Kit/Persistence/ZQObjectID.h"

#include <optional>
#include <utility>

class ZQError;
class ZQManagedObjectContext;

// What items look like, by itself: to be looked at for as long as it takes, while store and index go on. 50 bytes a
// picture.
struct PictureSet
{
    std::vector<ZQObjectID> items;
    ZQPagedVector<HashWords> hashes; // at the same places

    // Of all active items, as they were saved, in one pass over the store: for where no index is. On the context's
    // thread. Nothing after an error, or when the thread's ZQCancellation was cancelled.
    static std::optional<PictureSet> ofStore(ZQManagedObjectContext &context, ZQError *error);

    void add(const ZQObjectID &item, const HashWords &hash);
    // The nearest to `hash` with how many bits they are apart, nearest first, then in their order here; at most
    // `limit`, none beyond `farthest`.
    std::vector<std::pair<ZQObjectID, int>> nearest(const HashWords &hash, size_t limit, int farthest) const;
};

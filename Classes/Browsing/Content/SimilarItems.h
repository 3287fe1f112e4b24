#pragma once

#include "Kit/Imaging/ZQPictureHash.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <optional>
#include <utility>
#include <vector>

class LibraryIndex;

// The active items that look most like pictures, with how many bits they are apart, nearest first: for each of the
// pictures at most `limit`, and none that nobody would call similar. Of `index` where that is ready, else of the store;
// may be null. What was saved, on the context's thread. Nothing after an error, or, without one, when the thread's
// ZQCancellation was cancelled.
using SimilarItems = std::vector<std::pair<ZQObjectID, int>>;
std::optional<std::vector<SimilarItems>> zqSimilarItems(const QList<ZQPictureHash> &pictures, size_t limit,
                                                        ZQManagedObjectContext &context, LibraryIndex *index,
                                                        ZQError *error);

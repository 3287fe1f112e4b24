#include "Classes/Browsing/Content/SimilarItems.h"

#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Browsing/Index/PictureSet.h"
#include "Kit/Foundation/ZQCancellation.h"

std::optional<std::vector<SimilarItems>> zqSimilarItems(const QList<ZQPictureHash> &pictures, size_t limit,
                                                        ZQManagedObjectContext &context, LibraryIndex *index,
                                                        ZQError *error)
{
    constexpr int farthest = ZQPictureHash::similarDistance;
    std::vector<SimilarItems> found;
    if (index && index->isReady() && index->waitUntilCurrent()) {
        if (const auto reading = index->read()) {
            for (const ZQPictureHash &picture : pictures) {
                found.push_back(reading->similar(picture, limit, farthest));
            }
            return ZQCancellation::isCurrentCancelled() ? std::nullopt : std::optional(std::move(found));
        }
    }
    const auto set = PictureSet::ofStore(context, error);
    if (!set) {
        return std::nullopt;
    }
    for (const ZQPictureHash &picture : pictures) {
        found.push_back(set->nearest(picture.words, limit, farthest));
    }
    return found;
}

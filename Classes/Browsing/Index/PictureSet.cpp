#include "Classes/Browsing/Index/PictureSet.h"

#include "Kit/Persistence/ZQRowStream.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <algorithm>

void PictureSet::add(const ZQObjectID &item, const HashWords &hash)
{
    items.push_back(item);
    hashes.push_back(hash);
}

std::optional<PictureSet> PictureSet::ofStore(ZQManagedObjectContext &context, ZQError *error)
{
    enum Property { Active, Hash };
    PictureSet set;
    ZQRowStream stream(context);
    const auto take = [&set](const ZQRowStream::Row &row) {
        const std::string_view data = row.data(Hash);
        const auto hash = ZQPictureHash::fromBytes(QByteArray::fromRawData(data.data(), qsizetype(data.size())));
        if (hash && row.number(Active)) {
            set.add({row.entity, row.key}, hash->words);
        }
    };
    const bool isRead = stream.rows(ZQLibraryBaseItem::entityName(),
                                    {QStringLiteral("active"), QStringLiteral("pictureHash")}, {}, take, error);
    return isRead ? std::optional(std::move(set)) : std::nullopt;
}

std::vector<std::pair<ZQObjectID, int>> PictureSet::nearest(const HashWords &hash, size_t limit, int farthest) const
{
    std::vector<quint16> distances(hashes.size());
    zqDistances(hash, hashes, distances);
    std::vector<quint32> places;
    for (size_t i = 0; i < distances.size(); ++i) {
        if (distances[i] <= farthest) {
            places.push_back(quint32(i));
        }
    }
    std::stable_sort(places.begin(), places.end(),
                     [&distances](quint32 a, quint32 b) { return distances[a] < distances[b]; });
    std::vector<std::pair<ZQObjectID, int>> result;
    for (size_t i = 0; i < std::min(limit, places.size()); ++i) {
        result.emplace_back(items[places[i]], distances[places[i]]);
    }
    return result;
}

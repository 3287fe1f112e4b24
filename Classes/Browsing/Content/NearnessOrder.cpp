#include "Classes/Browsing/Content/NearnessOrder.h"

#include "Classes/Browsing/Content/SimilarItems.h"
#include "Classes/Browsing/Search/LikeArgument.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <vector>

QHash<ZQObjectID, int> NearnessOrder::distances(const QList<ZQPictureHash> &pictures) const
{
    constexpr size_t all = std::numeric_limits<quint32>::max(); // rows
    const std::vector<SimilarItems> none;
    QHash<ZQObjectID, int> result;
    for (const SimilarItems &each : zqSimilarItems(pictures, all, m_context, m_index, nullptr).value_or(none)) {
        for (const auto &[item, distance] : each) {
            const auto known = result.constFind(item);
            if (known == result.cend() || *known > distance) {
                result.insert(item, distance);
            }
        }
    }
    return result;
}

void NearnessOrder::apply(Content &content, const QString &searchText, const SearchContext &search) const
{
    const auto like = LikeArgument::in(searchText);
    const auto pictures =
        like && search.picturesNamed ? search.picturesNamed(like->argument.name) : QList<ZQPictureHash>();
    if (pictures.isEmpty() || content.rows.ids.size() < 2) {
        return;
    }
    QHash<ZQObjectID, int> known = distances(pictures);
    const auto itself =
        m_context.fetchObjectIDs({.entityName = ZQLibraryBaseItem::entityName(),
                                  .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("bundleID == %@"),
                                                                                {QVariant(like->argument.name)})},
                                 nullptr);
    for (const ZQObjectID &item : itself.value_or(QList<ZQObjectID>())) {
        known.insert(item, -1); // before those that look the same
    }
    std::vector<int> nearness;
    nearness.reserve(size_t(content.rows.ids.size()));
    for (const ZQObjectID &item : std::as_const(content.rows.related)) {
        nearness.push_back(known.value(item, ZQPictureHash::bitCount));
    }
    std::vector<qsizetype> order(nearness.size());
    std::iota(order.begin(), order.end(), qsizetype(0));
    const auto sort = [&](qint64 first, qint64 count) {
        std::stable_sort(order.begin() + first, order.begin() + first + count,
                         [&](qsizetype a, qsizetype b) { return nearness[size_t(a)] < nearness[size_t(b)]; });
    };
    if (content.groups.isEmpty()) {
        sort(0, qint64(order.size()));
    }
    for (const ContentGroup &group : std::as_const(content.groups)) {
        sort(group.first, group.count);
    }
    ZQRelatedIDs sorted;
    for (const qsizetype place : order) {
        sorted.ids.append(content.rows.ids[place]);
        sorted.related.append(content.rows.related[place]);
    }
    content.rows = sorted;
}

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Browsing/Content/NearDuplicates.h"
#include "Classes/Browsing/Content/SimilarItems.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Command/Commands.h"
#include "Classes/Command/ItemListing.h"
#include "Classes/Command/WorkBeside.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace {

using Groups = QList<NearDuplicateGroup>;

template <class Found>
struct Answer
{
    std::optional<Found> found;
    ZQError error;
};

// Of a window, if there is one that knows what the store does.
std::shared_ptr<LibraryIndex> indexOf(const CommandContext &context)
{
    return context.readyIndex() ? context.index : nullptr;
}

int failed(const ZQError &error, CommandContext &context)
{
    return context.fail(error.isNull() ? zqLocalized("the search was given up") : error.localizedDescription());
}

int printSimilar(SimilarItems found, const ZQObjectID &item, size_t limit, CommandContext &context)
{
    std::erase_if(found, [&item](const auto &each) { return each.first == item; });
    QList<ZQObjectID> items;
    QHash<ZQObjectID, int> distances;
    for (size_t i = 0; i < std::min(limit, found.size()); ++i) {
        items.append(found[i].first);
        distances.insert(found[i].first, found[i].second);
    }
    return zqPrintItems(items, distances, context) ? 0 : 2;
}

QJsonObject objectOf(const ZQLibraryBaseItem &item)
{
    return {{QStringLiteral("bundleID"), item.bundleID()},       {QStringLiteral("title"), item.title()},
            {QStringLiteral("extension"), item.extension()},     {QStringLiteral("pixelWidth"), item.pixelWidth()},
            {QStringLiteral("pixelHeight"), item.pixelHeight()}, {QStringLiteral("rating"), item.rating()}};
}

using Items = QList<ZQRef<ZQLibraryBaseItem>>;

QJsonObject objectOf(const NearDuplicateGroup &group, const Items &items)
{
    QJsonArray members;
    for (const auto &item : items) {
        members.append(objectOf(*item));
    }
    return {{QStringLiteral("items"), members},
            {QStringLiteral("best"), items[group.best]->bundleID()},
            {QStringLiteral("reason"), group.reason}};
}

QByteArray linesOf(const NearDuplicateGroup &group, const Items &items)
{
    QByteArray lines;
    for (qsizetype i = 0; i < items.size(); ++i) {
        const QString line = items[i]->bundleID() + u'\t' + zqListedName(*items[i]);
        lines += (i == group.best ? line + u'\t' + group.reason : line).toUtf8() + '\n';
    }
    return lines;
}

int printGroups(const Groups &groups, CommandContext &context)
{
    constexpr qsizetype atATime = 40; // takes a few milliseconds
    bool isFirst = true;
    const auto partAt = [&](qsizetype first) {
        QList<ZQObjectID> ids;
        for (const NearDuplicateGroup &group : groups.mid(first, atATime)) {
            ids += group.items;
        }
        const Items read = ZQLibraryBaseItem::itemsWithIDs(ids, context.store()); // in one go, and held meanwhile
        QJsonArray array;
        QByteArray text;
        for (const NearDuplicateGroup &group : groups.mid(first, atATime)) {
            const Items items = ZQLibraryBaseItem::itemsWithIDs(group.items, context.store());
            if (items.size() != group.items.size()) {
                continue; // one of them was removed meanwhile
            }
            if (context.json) {
                array.append(objectOf(group, items));
            } else {
                text += (std::exchange(isFirst, false) ? "" : "\n") + linesOf(group, items);
            }
        }
        return context.json ? zqJSONElements(array) : text;
    };
    return zqPrintInParts(groups.size(), atATime, context, partAt) ? 0 : 2;
}

} // namespace

int zqRunSimilar(const QString &item, int limit, CommandContext &context)
{
    const auto items = zqItemsForReferences({item}, context);
    if (!items) {
        return 2;
    }
    const auto &first = items->first();
    const auto hash = ZQPictureHash::fromBytes(first->pictureHash());
    if (!hash) {
        return context.fail(
            first->pictureHash().isNull()
                ? zqFormat(zqLocalized("what “%@” looks like is not known yet; `zelto fingerprints` finds it out"),
                           {zqListedName(*first)})
                : zqFormat(zqLocalized("“%@” shows nothing that another picture could look like"),
                           {zqListedName(*first)}));
    }
    const auto most = size_t(limit);
    const auto search = [hash = *hash, most, index = indexOf(context)](ZQManagedObjectContext &store,
                                                                       const std::stop_token &) {
        Answer<SimilarItems> answer;
        auto found = zqSimilarItems({hash}, most + 1, store, index.get(), &answer.error); // itself is among them
        answer.found = found ? std::optional(std::move(found->front())) : std::nullopt;
        return answer;
    };
    return WorkBeside<Answer<SimilarItems>>::run(
        context, search, [most, id = first->objectID()](const Answer<SimilarItems> &answer, CommandContext &finished) {
            return answer.found ? printSimilar(*answer.found, id, most, finished) : failed(answer.error, finished);
        });
}

int zqRunNearDuplicates(CommandContext &context)
{
    const auto search = [index = indexOf(context)](ZQManagedObjectContext &store, const std::stop_token &) {
        Answer<Groups> answer;
        answer.found = NearDuplicates::find(store, index.get(), std::nullopt, nullptr, &answer.error);
        return answer;
    };
    return WorkBeside<Answer<Groups>>::run(context, search, [](const Answer<Groups> &answer, CommandContext &finished) {
        return answer.found ? printGroups(*answer.found, finished) : failed(answer.error, finished);
    });
}

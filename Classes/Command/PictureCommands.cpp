#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Browsing/Content/NearDuplicates.h"
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

using Similar = std::vector<std::pair<ZQObjectID, int>>;
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

std::optional<Similar> similarTo(const ZQPictureHash &hash, size_t limit, ZQManagedObjectContext &store,
                                 LibraryIndex *index, ZQError *error)
{
    if (index && index->waitUntilCurrent()) {
        if (const auto reading = index->read()) {
            return reading->similar(hash, limit, ZQPictureHash::similarDistance);
        }
    }
    const auto pictures = PictureSet::ofStore(store, error);
    return pictures ? std::optional(pictures->nearest(hash.words, limit, ZQPictureHash::similarDistance))
                    : std::nullopt;
}

int printSimilar(Similar found, const ZQObjectID &item, size_t limit, CommandContext &context)
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

QString nameOf(const ZQLibraryBaseItem &item)
{
    return item.extension().isEmpty() ? item.title() : item.title() + u'.' + item.extension();
}

QJsonObject objectOf(const ZQLibraryBaseItem &item)
{
    return {{QStringLiteral("bundleID"), item.bundleID()},       {QStringLiteral("title"), item.title()},
            {QStringLiteral("extension"), item.extension()},     {QStringLiteral("pixelWidth"), item.pixelWidth()},
            {QStringLiteral("pixelHeight"), item.pixelHeight()}, {QStringLiteral("rating"), item.rating()}};
}

int printGroups(const Groups &groups, CommandContext &context)
{
    QJsonArray array;
    bool isFirst = true;
    for (const NearDuplicateGroup &group : groups) {
        if (!context.isWanted()) {
            context.output.clear();
            return context.fail(zqLocalized("the list was given up"));
        }
        const auto items = ZQLibraryBaseItem::itemsWithIDs(group.items, context.store());
        const bool isWhole = items.size() == group.items.size(); // nothing was removed meanwhile
        if (!isWhole) {
            continue;
        }
        if (context.json) {
            QJsonArray members;
            for (const auto &item : items) {
                members.append(objectOf(*item));
            }
            array.append(QJsonObject{{QStringLiteral("items"), members},
                                     {QStringLiteral("best"), items[group.best]->bundleID()},
                                     {QStringLiteral("reason"), group.reason}});
            continue;
        }
        if (!std::exchange(isFirst, false)) {
            context.print({});
        }
        for (qsizetype i = 0; i < items.size(); ++i) {
            const QString line = items[i]->bundleID() + u'\t' + nameOf(*items[i]);
            context.print(i == group.best ? line + u'\t' + group.reason : line);
        }
    }
    if (context.json) {
        context.printJSON(array);
    }
    return 0;
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
                           {nameOf(*first)})
                : zqFormat(zqLocalized("“%@” shows nothing that another picture could look like"), {nameOf(*first)}));
    }
    const auto most = size_t(limit);
    const auto search = [hash = *hash, most, index = indexOf(context)](ZQManagedObjectContext &store,
                                                                       const std::stop_token &) {
        Answer<Similar> answer;
        answer.found = similarTo(hash, most + 1, store, index.get(), &answer.error); // itself is among them
        return answer;
    };
    return WorkBeside<Answer<Similar>>::run(
        context, search, [most, id = first->objectID()](const Answer<Similar> &answer, CommandContext &finished) {
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

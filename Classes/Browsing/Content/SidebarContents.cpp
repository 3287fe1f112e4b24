#include "Classes/Browsing/Content/SidebarContents.h"

#include "Classes/Browsing/Content/StoreSearch.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Persistence/ZQGroupedCount.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

namespace {

// Those of more than one item; nothing where the index has no answer.
std::optional<QMap<QString, qint64>> repeatedDigests(const LibraryIndex::Reading &reading,
                                                     const QList<ZQFetchRequest> &requests)
{
    ZQRowSet all(reading.rowCount());
    for (ZQFetchRequest request : requests) {
        if (zqListRowsOfEntity(request.entityName) == ZQListRows::LibraryItems && request.fetchLimit == 0) {
            const auto found = reading.matching(request.predicate, ZQListRows::LibraryItems, reading.items());
            if (!found) {
                return std::nullopt;
            }
            all |= *found;
            continue;
        }
        if (request.fetchLimit == 0) {
            request.sortDescriptors.clear(); // in any order
        }
        const auto found = reading.rows(request);
        if (!found) {
            return std::nullopt;
        }
        all |= LibraryIndex::Reading::setOf(*found, reading.rowCount());
    }
    constexpr qint64 several = 2; // how many makes no difference
    QMap<QString, qint64> counts;
    for (const QString &digest : reading.repeatedDigests(all)) {
        counts.insert(digest, several);
    }
    return counts;
}

// What the pictures of this title look like; nothing where the index has no answer.
std::optional<QList<ZQPictureHash>> picturesTitled(LibraryIndex &index, const QString &title)
{
    const auto reading = index.isReady() && index.waitUntilCurrent() ? index.read() : std::nullopt;
    const auto rows =
        reading ? reading->matching(StoreSearch::titledPictures(title), ZQListRows::LibraryItems, reading->items())
                : std::nullopt;
    if (!rows) {
        return std::nullopt;
    }
    QList<ZQPictureHash> found;
    for (const HashWords &words : reading->pictures(*rows).hashes) {
        if (found.size() < StoreSearch::mostPictures) {
            found.append(ZQPictureHash{words});
        }
    }
    return found;
}

// What `look` finds in the index as it is now; nothing where that has no answer.
template <class Look>
auto inIndex(LibraryIndex &index, const Look &look) -> decltype(look(std::declval<const LibraryIndex::Reading &>()))
{
    const auto reading = index.waitUntilCurrent() ? index.read() : std::optional<LibraryIndex::Reading>();
    return reading ? look(*reading) : std::nullopt;
}

// What leads from items to the entries of one kind, as `contentRequest` has it for each.
struct Together
{
    const char *entity; // of the entries; null: all whose members have an order
    const char *keyPath;
};
constexpr Together together[] = {
    {"ZQSidebarTag", "tags"}, {"ZQSidebarWatchedFolder", "watchingFolder"}, {nullptr, "projectsItems.project"}};

} // namespace

ZQFetchRequest SidebarContents::wholeLibrary()
{
    return {.entityName = ZQLibraryBaseItem::entityName(),
            .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("active == YES")),
            .sortDescriptors = {{QStringLiteral("import_date"), false},
                                {QStringLiteral("title"), false, ZQSortDescriptor::Comparison::LocalizedStandard}}};
}

ZQFetchRequest SidebarContents::request(const ZQSidebarBaseItem &item) const
{
    const auto *smart = dynamic_cast<const ZQSidebarSmartFolder *>(&item);
    return smart ? requestForSearchText(smart->searchText()) : item.contentRequest();
}

ZQFetchRequest SidebarContents::requestForSearchText(const QString &text) const
{
    ZQFetchRequest request = wholeLibrary();
    const ZQPredicate found =
        SearchManager::predicateForSearchString(text, searchContext(ZQListRows::LibraryItems, {request}));
    request.predicate =
        found.isNull() ? ZQPredicate::notPredicate({}) : ZQPredicate::andPredicate({request.predicate, found});
    return request;
}

// Digests that occur twice are looked for in the whole content, which takes the store seconds in a large library.
SearchContext SidebarContents::searchContext(ZQListRows rows, const QList<ZQFetchRequest> &requests) const
{
    SearchContext result = StoreSearch::context(rows, requests, m_context);
    if (m_index) {
        // The store is asked after the reading has ended.
        result.hashCounts = [index = m_index, requests, ofStore = result.hashCounts] {
            const auto repeated = inIndex(*index, [&requests](const LibraryIndex::Reading &reading) {
                return repeatedDigests(reading, requests);
            });
            return repeated ? *repeated : ofStore();
        };
        result.picturesNamed = [index = m_index, &context = m_context,
                                ofStore = result.picturesNamed](const QString &name) {
            const QList<ZQPictureHash> identified = StoreSearch::picturesIdentified(name, context);
            const auto titled = identified.isEmpty() ? picturesTitled(*index, name) : identified;
            return titled ? *titled : ofStore(name);
        };
    }
    return result;
}

SidebarContents::Entry SidebarContents::entryFor(const ZQSidebarBaseItem &item)
{
    const auto *smart = dynamic_cast<const ZQSidebarSmartFolder *>(&item);
    return {item.objectID(), item.contentRequest(), smart != nullptr, smart ? smart->searchText() : QString()};
}

std::optional<SidebarContents::Counts> SidebarContents::countsWithBelow(const QList<ZQObjectID> &liveFolders,
                                                                        const std::function<bool()> &isWanted) const
{
    const auto rows = m_context.fetchObjectIDsWithRelated(
        {ZQSidebarWatchedFolder::entityName(), ZQPredicate::predicateWithFormat(QStringLiteral("active == YES"))},
        QStringLiteral("father"));
    QHash<qint64, qint64> fathers;
    QList<Entry> entries;
    for (qsizetype i = 0; rows && i < rows->ids.size(); ++i) {
        fathers.insert(rows->ids.at(i).key, rows->related.at(i).key);
        entries.append({rows->ids.at(i),
                        {ZQLibraryBaseItem::entityName(),
                         ZQPredicate::predicateWithFormat(QStringLiteral("watchingFolder == %@ AND active == YES"),
                                                          {QVariant::fromValue(rows->ids.at(i))})},
                        false,
                        {}});
    }
    const auto own = rows ? counts(entries, isWanted) : std::nullopt;
    if (!own) {
        return std::nullopt;
    }
    constexpr int deepest = 1000; // of a damaged tree
    QHash<qint64, qint64> all;
    for (auto count = own->constBegin(); count != own->constEnd(); ++count) {
        qint64 key = count.key().key;
        for (int depth = 0; *count > 0 && fathers.contains(key) && depth < deepest; ++depth) {
            all[key] += *count;
            key = fathers.value(key);
        }
    }
    Counts result;
    for (const ZQObjectID &folder : liveFolders) {
        result.insert(folder, all.value(folder.key));
    }
    return result;
}

bool SidebarContents::isIndexCurrent() const
{
    return m_index && m_index->waitUntilCurrent();
}

// One pass over the lists of the index counts all projects, tags and live folders; only what is found by a condition
// takes one of its own.
SidebarContents::Counts SidebarContents::countsOfIndex(const QList<Entry> &entries) const
{
    Counts result;
    const auto reading = isIndexCurrent() ? m_index->read() : std::nullopt;
    if (!reading) {
        return result;
    }
    const ZQRowSet active = reading->active();
    Counts held;
    for (const IndexFacet facet : {IndexFacet::Tag, IndexFacet::Project, IndexFacet::LiveFolder}) {
        for (const IndexCount &count : reading->counts(facet, active, {})) {
            held.insert(count.value.value<ZQObjectID>(), count.count);
        }
    }
    const ZQEntityDescription *tags = m_context.model().entity(QStringLiteral("ZQSidebarTag"));
    const ZQEntityDescription *folders = m_context.model().entity(QStringLiteral("ZQSidebarWatchedFolder"));
    for (const Entry &entry : entries) {
        const bool isHeld = entry.request.entityName == ZQProjectItem::entityName() ||
                            entry.item.entity->isKindOf(tags) || entry.item.entity->isKindOf(folders);
        if (isHeld) {
            result.insert(entry.item, held.value(entry.item, 0));
        } else if (const auto found =
                       reading->matching(entry.request.predicate, ZQListRows::LibraryItems, reading->items())) {
            result.insert(entry.item, qint64(found->count()));
        }
    }
    return result;
}

std::optional<SidebarContents::Counts>
SidebarContents::countsOfStore(const QList<Entry> &entries, const std::function<bool()> &isWanted, ZQError *error) const
{
    Counts result;
    for (const Together &each : together) {
        const auto *entity = each.entity ? m_context.model().entity(QLatin1StringView(each.entity)) : nullptr;
        QList<ZQObjectID> related;
        for (const Entry &entry : entries) {
            if (entity ? entry.item.entity->isKindOf(entity)
                       : entry.request.entityName == ZQProjectItem::entityName()) {
                related.append(entry.item);
            }
        }
        if (related.isEmpty() || !isWanted()) {
            continue;
        }
        const auto counts =
            zqCountByRelated(m_context,
                             {.entityName = ZQLibraryBaseItem::entityName(),
                              .keyPath = QLatin1StringView(each.keyPath),
                              .related = related,
                              .excluded = ZQPredicate::predicateWithFormat(QStringLiteral("active == NO"))},
                             error);
        if (!counts) {
            return std::nullopt;
        }
        result.insert(*counts);
    }
    return result;
}

std::optional<SidebarContents::Counts> SidebarContents::counts(const QList<Entry> &entries,
                                                               const std::function<bool()> &isWanted) const
{
    QList<Entry> asked = entries;
    for (Entry &entry : asked) { // before the index is read, which a search may do itself
        if (entry.isSmart) {
            entry.request = requestForSearchText(entry.searchText);
        }
        entry.request.sortDescriptors.clear();
    }
    Counts result = countsOfIndex(asked);
    asked.removeIf([&result](const Entry &entry) { return result.contains(entry.item); });
    ZQError error;
    const auto failed = [&error]() -> std::optional<Counts> {
        if (!ZQCancellation::isCurrentCancelled()) {
            zqLogFetchError(error);
        }
        return std::nullopt;
    };
    if (!m_context.hasChanges()) { // which only counting one by one knows of
        const auto counted = countsOfStore(asked, isWanted, &error);
        if (!counted) {
            return failed();
        }
        result.insert(*counted);
    }
    for (const Entry &entry : std::as_const(asked)) {
        if (!isWanted()) {
            return std::nullopt;
        }
        if (result.contains(entry.item)) {
            continue;
        }
        const auto count = m_context.countForFetchRequest(entry.request, &error);
        if (!count) {
            return failed();
        }
        result.insert(entry.item, *count);
    }
    return result;
}

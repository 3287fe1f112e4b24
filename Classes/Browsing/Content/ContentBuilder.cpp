#include "Classes/Browsing/Content/ContentBuilder.h"

#include "Classes/Browsing/Content/NearnessOrder.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Browsing/Index/ListOrder.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

namespace {

using SidebarItem = ZQRef<ZQSidebarBaseItem>;
using SidebarItems = QList<SidebarItem>;

void addOnce(const SidebarItem &item, SidebarItems &into)
{
    if (!into.contains(item)) {
        into.append(item);
    }
}

void addWatchedFolders(const SidebarItem &item, SidebarItems &into)
{
    // What is below comes a level at a time, and not a folder at a time.
    constexpr int deepest = 1000; // of a damaged tree
    QList<ZQRef<ZQManagedObject>> kept;
    SidebarItems level = {item};
    for (int depth = 0; !level.isEmpty() && depth < deepest; ++depth) {
        kept += zqPrefetch(level, QStringLiteral("childs"));
        SidebarItems next;
        for (const SidebarItem &above : std::as_const(level)) {
            next += above->childsItems();
        }
        level = next;
    }
    addOnce(item, into);
    for (const auto &below : zqCast<ZQSidebarWatchedFolder>(item)->orderedChildrenAndSubChildren()) {
        addOnce(below, into);
    }
}

ContentPart partOf(const SidebarItem &item, const ZQFetchRequest &request)
{
    using Holding = ContentPart::Holding;
    const Holding holding = item->hasOrderedMembers()          ? Holding::Memberships
                            : item->isWatchedFolder()          ? Holding::WatchedFolder
                            : bool(zqCast<ZQSidebarTag>(item)) ? Holding::Tag
                                                               : Holding::Other;
    return {item->objectID(), item->title(), holding, item->isRecent(), request};
}

// Folders of a live folder often bear the same names; those go by their whole way.
void nameApart(const SidebarItems &items, QList<ContentPart> &parts)
{
    QHash<QString, int> counts;
    for (const ContentPart &part : std::as_const(parts)) {
        counts[part.title] += part.holding == ContentPart::Holding::WatchedFolder ? 1 : 0;
    }
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (parts[i].holding != ContentPart::Holding::WatchedFolder || counts.value(parts[i].title) < 2) {
            continue;
        }
        constexpr int deepest = 1000; // of a damaged tree
        auto above = items[i]->father();
        for (int depth = 0; above && above->isWatchedFolder() && depth < deepest; ++depth, above = above->father()) {
            parts[i].title.prepend(above->title() + QStringLiteral(" / "));
        }
    }
}

} // namespace

ContentBuilder::Sources ContentBuilder::sourcesOf(const SidebarItems &selection, bool isSingle)
{
    SidebarItems projects;
    SidebarItems watchedFolders;
    bool hasTags = false;
    for (const SidebarItem &item : selection) {
        hasTags = hasTags || item->isTag();
        if (item->isFolder() && !item->isSpecial()) {
            for (const SidebarItem &below : ZQSidebarFolder::expandedProjects({item})) {
                below->isWatchedFolder() ? addWatchedFolders(below, watchedFolders) : addOnce(below, projects);
            }
        } else if (item->isWatchedFolder() && !item->isSpecial() && !item->isTag()) {
            addWatchedFolders(item, watchedFolders);
        } else {
            addOnce(item, projects);
        }
    }
    const bool isSpecial = isSingle && selection.first()->isSpecial() && !selection.first()->isScreenshot();
    const bool showsItems = isSpecial || (!projects.isEmpty() && projects.first()->isTag());
    // Tags behind a project bring nothing: each of the two trees is selected in by itself.
    return {showsItems || !hasTags ? projects + watchedFolders : watchedFolders, showsItems};
}

ContentBuilder::ContentBuilder(ContentQuery query, ZQManagedObjectContext &context, LibraryIndex *index)
    : m_query(std::move(query)), m_context(context), m_index(index), m_contents(context, index)
{
    m_query.settleOrder();
}

QList<ZQFetchRequest> ContentBuilder::requestsOf(const ContentParts &parts)
{
    QList<ZQFetchRequest> requests;
    for (const ContentPart &part : parts.parts) {
        requests.append(part.request);
    }
    return requests;
}

ZQFetchRequest ContentBuilder::requestOf(const ZQSidebarBaseItem &item) const
{
    const bool isEdited = m_query.editsSearch && item.isSmartFolder() && m_query.sidebarItems.size() == 1;
    return isEdited ? SidebarContents::wholeLibrary() : m_contents.request(item);
}

void ContentBuilder::restrictToTitlesBeginning(ZQFetchRequest &request, const QString &text)
{
    const QString title = zqItemKeyPath(zqListRowsOfEntity(request.entityName), QStringLiteral("title"));
    request.predicate = ZQPredicate::andPredicate(
        {request.predicate, ZQPredicate::predicateWithFormat(title + QStringLiteral(" BEGINSWITH[cd] %@"), {text})});
}

void ContentBuilder::prepare(ZQFetchRequest &request) const
{
    const ZQListRows rows = zqListRowsOfEntity(request.entityName);
    // Only memberships have an order of their own.
    const bool hasNoOrder = m_query.sortValue == ZQSortValue::Manual && rows == ZQListRows::LibraryItems;
    const auto descriptors =
        hasNoOrder ? QList<ZQSortDescriptor>() : ListOrder::descriptors(m_query.sortValue, m_query.isAscending, rows);
    if (!descriptors.isEmpty()) {
        request.sortDescriptors = descriptors;
    }
}

std::optional<ContentParts> ContentBuilder::parts(ZQError *error) const
{
    QVariantList ids;
    for (const ZQObjectID &id : m_query.sidebarItems) {
        ids.append(QVariant::fromValue(id));
    }
    const auto found =
        zqFetch<ZQSidebarBaseItem>(m_context,
                                   {.entityName = ZQSidebarBaseItem::entityName(),
                                    .predicate = ZQPredicate::predicateWithFormat(
                                        QStringLiteral("SELF IN %@ AND active == YES"), {QVariant(ids)})},
                                   error);
    if (!found) {
        return std::nullopt;
    }
    SidebarItems selection;
    for (const ZQObjectID &id : m_query.sidebarItems) {
        const auto item =
            std::find_if(found->begin(), found->end(), [&id](const auto &each) { return each->objectID() == id; });
        if (item != found->end()) {
            selection.append(*item);
        }
    }
    const bool isSingle = m_query.sidebarItems.size() == 1 && selection.size() == 1;
    const Sources sources = sourcesOf(selection, isSingle);
    ContentParts result;
    result.showsItems = sources.showsItems;
    for (const SidebarItem &item : sources.items) {
        result.parts.append(partOf(item, requestOf(*item)));
    }
    nameApart(sources.items, result.parts);
    return result;
}

std::optional<QString> ContentBuilder::predicateString(ZQError *error) const
{
    const auto found = parts(error);
    if (!found) {
        return std::nullopt;
    }
    const QList<ZQFetchRequest> requests = requestsOf(*found);
    const ZQListRows kind =
        requests.isEmpty() ? ZQListRows::Memberships : zqListRowsOfEntity(requests.first().entityName);
    return SearchManager::predicateStringForSearchString(m_query.filter, m_contents.searchContext(kind, requests));
}

std::optional<ContentBuilder::Scope> ContentBuilder::scope(ZQError *error) const
{
    const auto found = parts(error);
    if (!found) {
        return std::nullopt;
    }
    Scope scope{requestsOf(*found), {}};
    scope.search = m_contents.searchContext(ZQListRows::LibraryItems, scope.requests);
    return scope;
}

ContentRows ContentBuilder::rows(ContentParts parts) const
{
    if (m_query.filter.isEmpty()) {
        return {std::move(parts), m_query.displayStyle, m_context,
                [this](ZQFetchRequest &request) { prepare(request); }, m_index};
    }
    // Once for all requests, since it may have to look at all of them.
    const auto conditions = std::make_shared<std::map<ZQListRows, ZQPredicate>>();
    const auto search = [this, conditions, requests = requestsOf(parts)](ZQFetchRequest &request) {
        prepare(request);
        const ZQListRows kind = zqListRowsOfEntity(request.entityName);
        auto condition = conditions->find(kind);
        if (condition == conditions->end()) {
            const SearchContext context = m_contents.searchContext(kind, requests);
            condition =
                conditions->emplace(kind, SearchManager::predicateForSearchString(m_query.filter, context)).first;
        }
        request.predicate = ZQPredicate::andPredicate({request.predicate, condition->second});
    };
    return {std::move(parts), m_query.displayStyle, m_context, search, m_index};
}

std::optional<Content> ContentBuilder::content(const IsWanted &isWanted) const
{
    ZQError error;
    auto found = parts(&error);
    if (!found) {
        return ZQCancellation::isCurrentCancelled() ? std::nullopt : std::optional(Content{{}, {}, error});
    }
    const QList<ZQFetchRequest> requests = m_query.isByNearness ? requestsOf(*found) : QList<ZQFetchRequest>();
    ContentRows wanted = rows(std::move(*found));
    if (m_query.firstRows > 0 && m_query.filter.isEmpty()) {
        wanted.stopAfter(m_query.firstRows, m_query.sortValue);
    }
    auto content = wanted.content(isWanted);
    if (content && m_query.isByNearness) {
        NearnessOrder(m_context, m_index)
            .apply(*content, m_query.filter, m_contents.searchContext(ZQListRows::LibraryItems, requests));
    }
    return content;
}

std::optional<QList<ZQObjectID>> ContentBuilder::rowsWithTitleBeginning(const QString &text,
                                                                        const IsWanted &isWanted) const
{
    auto found = parts(nullptr);
    if (!found) {
        return std::nullopt;
    }
    return rows(std::move(*found))
        .identifiers([&text](ZQFetchRequest &request) { restrictToTitlesBeginning(request, text); }, isWanted);
}

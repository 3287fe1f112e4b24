#include "Classes/Browsing/ContentBuilder.h"

#include "Kit/Foundation/ZQCancellation.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <algorithm>
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
    addOnce(item, into);
    for (const auto &below : zqCast<ZQSidebarWatchedFolder>(item)->orderedChildrenAndSubChildren()) {
        addOnce(below, into);
    }
}

ContentPart partOf(const SidebarItem &item)
{
    using Holding = ContentPart::Holding;
    const ZQFetchRequest request = item->contentRequest();
    const Holding holding = item->hasOrderedMembers()          ? Holding::Memberships
                            : item->isWatchedFolder()          ? Holding::WatchedFolder
                            : bool(zqCast<ZQSidebarTag>(item)) ? Holding::Tag
                                                               : Holding::Other;
    return {item->objectID(), item->title(), holding, item->isRecent(), request};
}

ContentParts partsOf(const SidebarItems &selection, bool isSingle)
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
    ContentParts result;
    result.showsItems = isSpecial || (!projects.isEmpty() && projects.first()->isTag());
    // Tags behind a project bring nothing: each of the two trees is selected in by itself.
    const SidebarItems shown = result.showsItems || !hasTags ? projects + watchedFolders : watchedFolders;
    for (const SidebarItem &item : shown) {
        result.parts.append(partOf(item));
    }
    return result;
}

} // namespace

ContentBuilder::ContentBuilder(ContentQuery query, ZQManagedObjectContext &context)
    : m_query(std::move(query)), m_context(context)
{
    m_query.settleOrder();
}

void ContentBuilder::restrictToTitles(ZQFetchRequest &request, const char *comparison, const QString &text)
{
    const QString title = zqItemKeyPath(zqListRowsOfEntity(request.entityName), QStringLiteral("title"));
    request.predicate = ZQPredicate::andPredicate(
        {request.predicate, ZQPredicate::predicateWithFormat(
                                title + u' ' + QLatin1StringView(comparison) + u' ' + QStringLiteral("%@"), {text})});
}

void ContentBuilder::prepare(ZQFetchRequest &request) const
{
    const ZQListRows rows = zqListRowsOfEntity(request.entityName);
    // Only memberships have an order of their own.
    const bool hasNoOrder = m_query.sortValue == ZQSortValue::Manual && rows == ZQListRows::LibraryItems;
    const auto descriptors =
        hasNoOrder ? QList<ZQSortDescriptor>()
                   : ZQSidebarBaseItem::sortDescriptorsForSortValue(m_query.sortValue, m_query.isAscending, rows);
    if (!descriptors.isEmpty()) {
        request.sortDescriptors = descriptors;
    }
    if (!m_query.filter.isEmpty()) {
        restrictToTitles(request, "contains[cd]", m_query.filter);
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
    return partsOf(selection, m_query.sidebarItems.size() == 1 && selection.size() == 1);
}

ContentRows ContentBuilder::rows(ContentParts parts) const
{
    return {std::move(parts), m_query.displayStyle, m_context, [this](ZQFetchRequest &request) { prepare(request); }};
}

std::optional<Content> ContentBuilder::content(const IsWanted &isWanted) const
{
    ZQError error;
    auto found = parts(&error);
    if (!found) {
        return ZQCancellation::isCurrentCancelled() ? std::nullopt : std::optional(Content{{}, {}, error});
    }
    return rows(std::move(*found)).content(isWanted);
}

std::optional<QList<ZQObjectID>> ContentBuilder::rowsWithTitleBeginning(const QString &text,
                                                                        const IsWanted &isWanted) const
{
    auto found = parts(nullptr);
    if (!found) {
        return std::nullopt;
    }
    return rows(std::move(*found))
        .identifiers([&text](ZQFetchRequest &request) { restrictToTitles(request, "BEGINSWITH[cd]", text); }, isWanted);
}

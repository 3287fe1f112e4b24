// What a tab knows of its rows, and when it no longer does.

#include "Classes/Browsing/Content/ContentBuilder.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Browsing/Search/LikeArgument.h"
#include "Classes/Browsing/Tabs/TabState.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int rowsOfBeginning = 400;            // more than a screen shows
constexpr qsizetype mostLookedAt = 200;         // changes; of more, some are taken to touch what is shown
constexpr qsizetype mostLookedThrough = 100000; // rows; more of them take longer than reading them anew is worth

bool isOf(const ZQObjectID &id, const QString &rootEntity)
{
    return id.rootEntity() && id.rootEntity()->name == rootEntity;
}

} // namespace

bool TabState::isByNearness() const
{
    return !m_sortKeys && LikeArgument::in(filter());
}

ContentQuery TabState::contentQuery()
{
    ContentQuery query{.sidebarItems = m_sidebarSelectedItems,
                       .filter = filter(),
                       .sortValue = sortKeysValue(),
                       .isAscending = sortDirectionValue(),
                       .displayStyle = browserDisplayStyleValue(),
                       .editsSearch = m_editsSearch};
    query.isByNearness = isByNearness();
    if (!query.isByNearness && query.settleOrder()) {
        m_sortKeys = query.sortValue;
        m_sortDirection = query.isAscending;
    }
    return query;
}

// While the index is being built, the first rows come from the store; all of them would take it longer than the index.
void TabState::buildCache(ContentFetcher::Ticket &ticket, std::function<void(const Content &)> done)
{
    const auto index = ticket.index();
    const bool isAtTop = !view.scroll || view.scroll->y() < 1;
    ContentQuery query = contentQuery();
    if (!index || index->isReady() || m_content || !isAtTop || !query.filter.isEmpty()) {
        ask(ticket, query, std::move(done));
        return;
    }
    query.firstRows = rowsOfBeginning;
    ask(ticket, query, [this, &ticket, state = weak_from_this(), done](const Content &content) {
        done(content);
        if (content.isBeginning && !state.expired()) {
            ask(ticket, contentQuery(), done);
        }
    });
}

void TabState::ask(ContentFetcher::Ticket &ticket, const ContentQuery &query, std::function<void(const Content &)> done)
{
    ticket.run([state = weak_from_this(), query, index = ticket.index(), done = std::move(done)](
                   ZQManagedObjectContext &context, const auto &isWanted) -> ContentFetcher::Ticket::Answer {
        const auto content = ContentBuilder(query, context, index.get()).content(isWanted);
        if (!content) {
            return {};
        }
        return [state, content = *content, done] {
            if (const auto tab = state.lock()) {
                content.error.isNull() && !content.isBeginning ? tab->setContent(content) : tab->invalidateCache();
            }
            done(content);
        };
    });
}

bool TabState::isBelowSelection(const ZQObjectID &id) const
{
    const auto isSelected = [this](const ZQObjectID &each) { return m_sidebarSelectedItems.contains(each); };
    if (isSelected(id)) {
        return true;
    }
    constexpr int deepest = 1000; // of a damaged tree
    auto above = m_edits.sidebarItem(id);
    for (int depth = 0; above && depth < deepest; ++depth) {
        if (isSelected(above->objectID())) {
            return true;
        }
        above = above->father();
    }
    return false;
}

// An item that is not shown may be, once it is active again.
bool TabState::belongsToSelection(const ZQObjectID &id) const
{
    const auto item = m_edits.libraryItem(id);
    if (!item) {
        return false;
    }
    for (const auto &membership : item->projectsItems()) {
        const auto project = membership->project();
        if (project && isBelowSelection(project->objectID())) {
            return true;
        }
    }
    for (const auto &tag : item->tags()) {
        if (isBelowSelection(tag->objectID())) {
            return true;
        }
    }
    const auto folder = item->watchingFolder();
    return folder && isBelowSelection(folder->objectID());
}

bool TabState::isTouchedBy(const ZQContextDidSave &change) const
{
    const QList<ZQObjectID> present = change.inserted + change.updated;
    if (present.size() + change.deleted.size() > mostLookedAt || m_content->rows.ids.size() > mostLookedThrough) {
        return true;
    }
    const QList<ZQObjectID> all = present + change.deleted;
    const QSet<ZQObjectID> changed(all.begin(), all.end());
    const auto shows = [&changed](const QList<ZQObjectID> &rows) {
        return std::any_of(rows.begin(), rows.end(), [&](const ZQObjectID &row) { return changed.contains(row); });
    };
    if (shows(m_content->rows.related) || shows(m_content->rows.ids)) {
        return true;
    }
    for (const ZQObjectID &id : change.deleted) {
        if (isOf(id, ZQSidebarBaseItem::entityName())) {
            return true; // where it was is not known any more
        }
    }
    for (const ZQObjectID &id : present) {
        if (isOf(id, ZQSidebarBaseItem::entityName())
                ? isBelowSelection(id)
                : isOf(id, ZQLibraryBaseItem::entityName()) && belongsToSelection(id)) {
            return true;
        }
        if (isOf(id, ZQProjectItem::entityName())) {
            const auto membership = zqCast<ZQProjectItem>(m_edits.context.objectWithID(id));
            const auto project = membership ? membership->project() : nullptr;
            if (project && isBelowSelection(project->objectID())) {
                return true;
            }
        }
    }
    return false;
}

void TabState::evaluateCache(const ZQContextDidSave &change)
{
    if (!m_content || (change.inserted.isEmpty() && change.updated.isEmpty() && change.deleted.isEmpty())) {
        return;
    }
    const auto single = singleSidebarElement();
    if ((single && single->isSpecial()) || showsSavedSearch() || isTouchedBy(change)) {
        invalidateCache();
    }
}

QList<ContentGroup> TabState::filteredGroups() const
{
    const ZQPredicate filtering = filterPredicate();
    if (!m_content || filtering.isNull()) {
        return groups();
    }
    QVariantList items;
    for (const ZQObjectID &id : m_content->rows.related) {
        items.append(QVariant::fromValue(id));
    }
    const auto matching = m_edits.context.fetchObjectIDs(
        {.entityName = ZQLibraryBaseItem::entityName(),
         .predicate = ZQPredicate::andPredicate(
             {filtering, ZQPredicate::predicateWithFormat(QStringLiteral("SELF IN %@"), {QVariant(items)})})});
    const QSet<ZQObjectID> kept = matching ? QSet<ZQObjectID>(matching->begin(), matching->end()) : QSet<ZQObjectID>();
    QList<bool> matches;
    matches.reserve(m_content->rows.related.size());
    for (const ZQObjectID &id : m_content->rows.related) {
        matches.append(kept.contains(id));
    }
    return m_content->filteredGroups(matches);
}

QList<ZQObjectID> TabState::selectedBrowserItems() const
{
    QList<ZQObjectID> result;
    const QList<ZQObjectID> rows = m_content ? m_content->rows.related : QList<ZQObjectID>();
    for (const auto &[first, last] : view.selectionIndexes.ranges()) {
        for (qint64 index = first; index <= last && index < rows.size(); ++index) {
            result.append(rows[index]);
        }
    }
    return result;
}

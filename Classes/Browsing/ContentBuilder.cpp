#include "Classes/Browsing/ContentBuilder.h"

#include "Classes/Browsing/ContentFetcher.h"
#include "Classes/Browsing/SearchManager.h"
#include "Classes/Browsing/StoreSearch.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarRecent.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <algorithm>
#include <utility>

ContentBuilder::ContentBuilder(ContentQuery query, ZQManagedObjectContext &context)
    : m_query(std::move(query)), m_context(context)
{
}

void ContentBuilder::addSections(const ZQRef<ZQSidebarBaseItem> &item, QList<Section> &into)
{
    if (item->isRecent()) {
        ZQPredicate earlier;
        for (const ZQSidebarRecent::Group &group : ZQSidebarRecent::groups()) {
            ZQFetchRequest request = item->contentRequest();
            const ZQPredicate notEarlier = earlier.isNull() ? ZQPredicate() : ZQPredicate::notPredicate(earlier);
            request.predicate = ZQPredicate::andPredicate({request.predicate, group.predicate, notEarlier});
            earlier = earlier.isNull() ? group.predicate : ZQPredicate::orPredicate({earlier, group.predicate});
            into.append({group.title, request});
        }
    } else if (item->isWatchedFolder()) {
        into.append({item->title(), item->contentRequest()});
        const auto folder = zqCast<ZQSidebarWatchedFolder>(item);
        for (const auto &child : folder->orderedChildrenAndSubChildren()) {
            if (child != item) {
                into.append({child->title(), child->contentRequest()});
            }
        }
    } else if (item->isFolder()) {
        for (const auto &project : ZQSidebarFolder::expandedProjects({item})) {
            into.append({project->title(), project->contentRequest()});
        }
    } else {
        into.append({item->title(), item->contentRequest()});
    }
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
    const bool isManual = m_query.sortValue == ZQSortValue::Manual;
    const ZQSortValue value =
        isManual && rows == ZQListRows::LibraryItems ? ZQSortValue::ImportDate : m_query.sortValue;
    const auto descriptors = ZQSidebarBaseItem::sortDescriptorsForSortValue(value, m_query.isAscending, rows);
    if (!descriptors.isEmpty()) {
        request.sortDescriptors = descriptors;
    }
}

SearchContext ContentBuilder::searchContext(ZQListRows rows, const QList<Section> &sections) const
{
    QList<ZQFetchRequest> requests;
    for (const Section &section : sections) {
        requests.append(section.request);
    }
    return StoreSearch::context(rows, requests, m_context);
}

void ContentBuilder::addSearch(QList<Section> &sections) const
{
    const QList<Section> whole = sections;
    for (const ZQListRows rows : {ZQListRows::LibraryItems, ZQListRows::Memberships}) {
        std::optional<ZQPredicate> predicate; // once for all sections, since it may have to look at all of them
        for (Section &section : sections) {
            if (zqListRowsOfEntity(section.request.entityName) != rows) {
                continue;
            }
            if (!predicate) {
                predicate = SearchManager::predicateForSearchString(m_query.filter, searchContext(rows, whole));
            }
            section.request.predicate = ZQPredicate::andPredicate({section.request.predicate, *predicate});
        }
    }
}

std::optional<QList<ContentBuilder::Section>> ContentBuilder::sections(ZQError *error) const
{
    auto built = sectionsWithoutSearch(error);
    if (built && !m_query.filter.isEmpty()) {
        addSearch(*built);
    }
    return built;
}

std::optional<QString> ContentBuilder::predicateString(ZQError *error) const
{
    const auto built = sectionsWithoutSearch(error);
    if (!built) {
        return std::nullopt;
    }
    const ZQListRows rows =
        built->isEmpty() ? ZQListRows::Memberships : zqListRowsOfEntity(built->first().request.entityName);
    return SearchManager::predicateStringForSearchString(m_query.filter, searchContext(rows, *built));
}

std::optional<QList<ContentBuilder::Section>> ContentBuilder::sectionsWithoutSearch(ZQError *error) const
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
    QList<Section> result;
    ZQRef<ZQSidebarBaseItem> single;
    for (const ZQObjectID &id : m_query.sidebarItems) {
        const auto item =
            std::find_if(found->begin(), found->end(), [&id](const auto &each) { return each->objectID() == id; });
        if (item != found->end()) {
            addSections(*item, result);
            single = *item;
        }
    }
    const bool isOne = m_query.sidebarItems.size() == 1 && !result.isEmpty();
    if (isOne && !single->isRecent() && !single->isFolder() && !single->isWatchedFolder()) {
        result.first().title.clear();
    }
    for (Section &section : result) {
        prepare(section.request);
    }
    return result;
}

std::optional<Content> ContentBuilder::content(const IsWanted &isWanted) const
{
    ZQError error;
    const auto built = sections(&error);
    if (!built) {
        return ZQCancellation::isCurrentCancelled() ? std::nullopt : std::optional(Content{{}, {}, error});
    }
    Content result;
    for (const Section &section : *built) {
        if (!isWanted()) {
            return std::nullopt;
        }
        auto rows = ContentFetcher::rows(section.request, m_context, &error);
        if (!rows && ZQCancellation::isCurrentCancelled()) {
            return std::nullopt;
        }
        if (!rows) {
            zqLogFetchError(error);
            return Content{{}, {}, error};
        }
        if (!rows->ids.isEmpty()) {
            result.titles.append(section.title);
            result.rows.append(std::move(*rows));
        }
    }
    return result;
}

std::optional<QList<ZQObjectID>> ContentBuilder::rowsWithTitleBeginning(const QString &text,
                                                                        const IsWanted &isWanted) const
{
    auto built = sections(nullptr);
    if (!built) {
        return std::nullopt;
    }
    QList<ZQObjectID> result;
    for (Section &section : *built) {
        restrictToTitlesBeginning(section.request, text);
        section.request.sortDescriptors.clear();
        const auto found = isWanted() ? m_context.fetchObjectIDs(section.request) : std::nullopt;
        if (!found) {
            return std::nullopt;
        }
        result += *found;
    }
    return result;
}

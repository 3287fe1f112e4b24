#include "Classes/Browsing/Content/ContentRows.h"

#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Browsing/Index/ListOrder.h"
#include "Classes/Browsing/Index/SizeClasses.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQCollator.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarRecent.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

const QString extensionKey = QStringLiteral("extension");
const QString colorKey = QStringLiteral("mainColor");

QString capitalized(const QString &text)
{
    QString result = text;
    for (qsizetype i = 0; i < result.size(); ++i) {
        if (i == 0 || result.at(i - 1).isSpace()) {
            result[i] = result.at(i).toUpper();
        }
    }
    return result;
}

ZQRelatedIDs eachOnce(const QList<ZQObjectID> &ids, const QList<ZQObjectID> &related)
{
    ZQRelatedIDs result;
    QSet<ZQObjectID> seen;
    seen.reserve(ids.size());
    for (qsizetype i = 0; i < ids.size(); ++i) {
        if (qsizetype before = seen.size(); seen.insert(ids[i]), seen.size() > before) {
            result.ids.append(ids[i]);
            result.related.append(related[i]);
        }
    }
    return result;
}

// Identifiers twice cost nothing while they are one list.
ZQRelatedIDs asItems(const QList<ZQObjectID> &items)
{
    return {items, items};
}

bool areOneList(const ZQRelatedIDs &a, const ZQRelatedIDs &b)
{
    return a.ids.constData() == b.ids.constData() && a.related.constData() == b.related.constData();
}

QString titleOfKey(const QVariant &key, BrowserDisplayStyle style)
{
    if (style == BrowserDisplayStyle::ByExtension) {
        return key.toString().isEmpty() ? zqLocalized("None") : key.toString();
    }
    const QString name = ZQSidebarTag::colorNameForValue(key.toInt());
    return name.isEmpty() ? zqLocalized("None") : capitalized(name);
}

bool isBefore(const QVariant &a, const QVariant &b, const ZQCollator &words)
{
    if (a.typeId() != QMetaType::QString) {
        return a.toInt() < b.toInt();
    }
    const int order = words.compare(a.toString(), b.toString());
    return order != 0 ? order < 0 : a.toString() < b.toString();
}

} // namespace

ContentRows::ContentRows(ContentParts parts, BrowserDisplayStyle style, ZQManagedObjectContext &context,
                         Prepare prepare, LibraryIndex *index)
    : m_parts(std::move(parts)), m_style(style), m_context(context), m_prepare(std::move(prepare)), m_index(index)
{
}

// Dates of items and the order by hand have indexes of the store; any other order looks at all rows.
void ContentRows::stopAfter(int count, ZQSortValue sortValue)
{
    const bool isOneList = m_parts.parts.size() == 1 && !m_parts.parts.first().hasOwnGroups &&
                           (m_style == BrowserDisplayStyle::BySidebarItem || m_style == BrowserDisplayStyle::Plain);
    if (!isOneList) {
        return;
    }
    const bool holdsItems = m_parts.parts.first().holding == ContentPart::Holding::Other;
    const bool isIndexed = sortValue == ZQSortValue::ImportDate || sortValue == ZQSortValue::ModificationDate;
    const bool isByHand = m_parts.parts.first().holding == ContentPart::Holding::Memberships && !showsItems() &&
                          sortValue == ZQSortValue::Manual;
    if ((holdsItems && isIndexed) || isByHand) {
        m_mostRows = count;
    }
}

std::optional<Content> ContentRows::content(const IsWanted &isWanted)
{
    m_content = {};
    m_pieces.clear();
    if (!isWanted()) {
        return std::nullopt;
    }
    switch (m_style) {
    case BrowserDisplayStyle::BySidebarItem:
        addSidebarGroups(isWanted);
        break;
    case BrowserDisplayStyle::ByExtension:
    case BrowserDisplayStyle::ByColor:
        addKeyGroups();
        break;
    case BrowserDisplayStyle::BySize:
        addSizeGroups(isWanted);
        break;
    case BrowserDisplayStyle::Plain:
        if (auto found = all()) {
            m_content.rows = std::move(*found);
        }
        break;
    }
    if (!isWanted() || ZQCancellation::isCurrentCancelled()) {
        return std::nullopt;
    }
    if (!m_pieces.isEmpty()) {
        joinPieces();
    }
    if (!m_content.error.isNull()) {
        zqLogFetchError(m_content.error);
        return Content{{}, {}, m_content.error};
    }
    m_content.isBeginning = m_mostRows > 0 && m_content.rows.ids.size() >= m_mostRows;
    return std::move(m_content);
}

std::optional<QList<ZQObjectID>> ContentRows::identifiers(const Prepare &restrict, const IsWanted &isWanted)
{
    QList<ZQObjectID> result;
    for (const ContentPart &part : std::as_const(m_parts.parts)) {
        ZQFetchRequest request = part.request;
        m_prepare(request);
        restrict(request);
        request.sortDescriptors.clear();
        const auto found = isWanted() ? answer(request) : std::nullopt;
        if (!found) {
            return std::nullopt;
        }
        result += showsItems() ? found->related : found->ids;
    }
    return result;
}

void ContentRows::addGroup(ContentGroup group, const ZQRelatedIDs &rows, qsizetype first, qsizetype count)
{
    if (count == 0) {
        return;
    }
    const ContentGroup *before = m_content.groups.isEmpty() ? nullptr : &m_content.groups.constLast();
    group.first = before ? before->first + before->count : 0;
    group.count = count;
    m_content.groups.append(group);
    m_pieces.append({rows, first, count});
}

// Groups that follow each other as their rows do are that one list; nothing is copied then.
void ContentRows::joinPieces()
{
    const QList<Piece> pieces = std::exchange(m_pieces, {});
    qsizetype count = 0;
    bool isOneList = true;
    bool areItems = true; // rows are the items they stand for
    for (const Piece &piece : pieces) {
        isOneList = isOneList && areOneList(piece.rows, pieces.first().rows) && piece.first == count;
        areItems = areItems && piece.rows.ids.constData() == piece.rows.related.constData();
        count += piece.count;
    }
    if (isOneList && count == pieces.first().rows.ids.size()) {
        m_content.rows = pieces.first().rows;
        return;
    }
    const auto joined = [&](QList<ZQObjectID> ZQRelatedIDs::*list) {
        QList<ZQObjectID> result;
        result.reserve(count);
        for (const Piece &piece : pieces) {
            const auto from = (piece.rows.*list).constBegin() + piece.first;
            std::copy(from, from + piece.count, std::back_inserter(result));
        }
        return result;
    };
    m_content.rows.ids = joined(&ZQRelatedIDs::ids);
    m_content.rows.related = areItems ? m_content.rows.ids : joined(&ZQRelatedIDs::related);
}

// By sidebar item.

void ContentRows::addPart(const ContentPart &part, const ZQFetchRequest &request, const QString &title)
{
    if (auto found = rows(request, {}, nullptr)) {
        if (m_parts.showsItems) {
            found = asItems(found->related);
        }
        addGroup({.title = title, .sidebarItem = part.sidebarItem, .value = {}}, *found, 0, found->ids.size());
    }
}

// A pass over all items for each of thousands of folders would take seconds.
std::optional<ContentRows::FolderItems> ContentRows::itemsOfLiveFolders()
{
    constexpr qsizetype fewest = 2;
    const QVariantList folders = identifiersOf(ContentPart::Holding::WatchedFolder);
    if (!m_index || m_mostRows > 0 || folders.size() < fewest) {
        return std::nullopt;
    }
    const auto part = std::find_if(m_parts.parts.begin(), m_parts.parts.end(), [](const ContentPart &each) {
        return each.holding == ContentPart::Holding::WatchedFolder;
    });
    ZQFetchRequest request = part->request; // their order is the same
    request.predicate =
        ZQPredicate::predicateWithFormat(QStringLiteral("watchingFolder IN %@ AND active == YES"), {QVariant(folders)});
    m_prepare(request);
    return m_index->answerByLiveFolder(request);
}

void ContentRows::addSidebarGroups(const IsWanted &isWanted)
{
    const auto ofFolders = isWanted() ? itemsOfLiveFolders() : std::nullopt;
    for (const ContentPart &part : std::as_const(m_parts.parts)) {
        if (!isWanted() || !m_content.error.isNull()) {
            return;
        }
        if (ofFolders && part.holding == ContentPart::Holding::WatchedFolder) {
            const QList<ZQObjectID> items = ofFolders->value(part.sidebarItem);
            addGroup({.title = part.title, .sidebarItem = part.sidebarItem, .value = {}}, asItems(items), 0,
                     items.size());
        } else if (!part.hasOwnGroups || m_parts.parts.size() > 1) {
            addPart(part, part.request, part.title);
        } else {
            addRecentGroups(part);
        }
    }
}

void ContentRows::addRecentGroups(const ContentPart &recent)
{
    for (const ZQSidebarRecent::Group &group : ZQSidebarRecent::groups()) {
        ZQFetchRequest request = recent.request;
        request.predicate = ZQPredicate::andPredicate({request.predicate, group.predicate});
        addPart(recent, request, group.title);
    }
}

// By what the items are.

QVariant ContentRows::keyOf(const ZQObjectID &id) const
{
    const auto item = zqCast<ZQLibraryBaseItem>(m_context.objectWithID(id));
    if (m_style == BrowserDisplayStyle::ByColor) {
        return item ? item->mainColor() : 0;
    }
    return item ? item->extension() + QString() : QString(); // none and an empty one are the same
}

// The store puts equal keys side by side; where one ends and the next begins takes looking at a few items only.
void ContentRows::addKeyGroups()
{
    struct Run
    {
        QVariant key;
        qsizetype first;
        qsizetype count;
    };
    const auto found = all(m_style == BrowserDisplayStyle::ByColor ? colorKey : extensionKey);
    QList<Run> runs;
    for (qsizetype first = 0; found && first < found->ids.size();) {
        const QVariant key = keyOf(found->related[first]);
        qsizetype inside = first;
        qsizetype outside = found->ids.size();
        for (qsizetype step = 1; first + step < outside; step *= 2) {
            (keyOf(found->related[first + step]) == key ? inside : outside) = first + step;
        }
        while (outside - inside > 1) {
            const qsizetype middle = inside + (outside - inside) / 2;
            (keyOf(found->related[middle]) == key ? inside : outside) = middle;
        }
        runs.append({key, first, outside - first});
        first = outside;
    }
    const ZQCollator words(ZQCollator::Order::OfWords);
    std::stable_sort(runs.begin(), runs.end(),
                     [&words](const Run &a, const Run &b) { return isBefore(a.key, b.key, words); });
    for (const Run &run : std::as_const(runs)) {
        addGroup({.title = titleOfKey(run.key, m_style), .sidebarItem = {}, .value = run.key}, *found, run.first,
                 run.count);
    }
}

void ContentRows::addSizeGroups(const IsWanted &isWanted)
{
    const SizeClasses::Limits limits = SizeClasses::Limits::current();
    for (const QString &key : SizeClasses::keys()) {
        if (!isWanted() || !m_content.error.isNull()) {
            return;
        }
        const auto found = all({}, [&](ZQListRows kind) { return SizeClasses::predicateForKey(key, kind, limits); });
        if (found) {
            addGroup({.title = SizeClasses::titleForKey(key), .sidebarItem = {}, .value = key}, *found, 0,
                     found->ids.size());
        }
    }
}

// All parts together.

QVariantList ContentRows::identifiersOf(ContentPart::Holding holding) const
{
    QVariantList result;
    for (const ContentPart &part : m_parts.parts) {
        if (part.holding == holding) {
            result.append(QVariant::fromValue(part.sidebarItem));
        }
    }
    return result;
}

std::optional<ZQFetchRequest> ContentRows::membershipRequest() const
{
    const QVariantList projects = identifiersOf(ContentPart::Holding::Memberships);
    if (projects.isEmpty()) {
        return std::nullopt;
    }
    return ZQFetchRequest{.entityName = ZQProjectItem::entityName(),
                          .predicate = ZQPredicate::predicateWithFormat(
                              QStringLiteral("project IN %@ AND item.active == YES"), {QVariant(projects)})};
}

// A condition a kind and not one a part: of a thousand folders the condition would be too deep for the store.
std::optional<ZQFetchRequest> ContentRows::itemRequest() const
{
    QList<ZQPredicate> any;
    const auto add = [&](ContentPart::Holding holding, const char *format) {
        if (const QVariantList ids = identifiersOf(holding); !ids.isEmpty()) {
            any.append(ZQPredicate::predicateWithFormat(QLatin1StringView(format), {QVariant(ids)}));
        }
    };
    add(ContentPart::Holding::Tag, "ANY tags IN %@ AND active == YES");
    add(ContentPart::Holding::WatchedFolder, "watchingFolder IN %@ AND active == YES");
    for (const ContentPart &part : m_parts.parts) {
        if (part.holding == ContentPart::Holding::Other) {
            any.append(part.request.predicate);
        }
    }
    if (any.isEmpty()) {
        return std::nullopt;
    }
    return ZQFetchRequest{.entityName = ZQLibraryBaseItem::entityName(), .predicate = ZQPredicate::orPredicate(any)};
}

ContentRows::Rows ContentRows::rows(ZQFetchRequest request, const QString &leadingKey, const Condition &condition)
{
    const ZQListRows kind = zqListRowsOfEntity(request.entityName);
    if (condition) {
        request.predicate = ZQPredicate::andPredicate({request.predicate, condition(kind)});
    }
    m_prepare(request);
    if (!leadingKey.isEmpty()) {
        request.sortDescriptors.prepend({zqItemKeyPath(kind, leadingKey)});
    }
    request.fetchLimit = m_mostRows;
    return answer(request);
}

ContentRows::Rows ContentRows::answer(const ZQFetchRequest &request)
{
    if (m_index && request.fetchLimit == 0) {
        const auto found = m_index->answer(request);
        if (found || ZQCancellation::isCurrentCancelled()) {
            return found;
        }
    }
    if (ListOrder::needsItems(request.sortDescriptors)) {
        return ListOrder::rows(request, m_context, [this](const ZQFetchRequest &plain) { return answer(plain); });
    }
    return ContentFetcher::rows(request, m_context, &m_content.error);
}

ContentRows::Rows ContentRows::all(const QString &leadingKey, const Condition &condition)
{
    Rows memberships = ZQRelatedIDs();
    Rows items = ZQRelatedIDs();
    if (const auto request = membershipRequest()) {
        memberships = rows(*request, leadingKey, condition);
    }
    if (const auto request = memberships ? itemRequest() : std::nullopt) {
        items = rows(*request, leadingKey, condition);
    }
    if (!memberships || !items) {
        return std::nullopt;
    }
    if (memberships->ids.isEmpty()) {
        return items;
    }
    if (!items->ids.isEmpty()) {
        return inOneOrder(*memberships, *items, leadingKey);
    }
    return showsItems() ? eachOnce(memberships->related, memberships->related) : memberships;
}

// Both in the order that the store gives the items of both.
ContentRows::Rows ContentRows::inOneOrder(const ZQRelatedIDs &memberships, const ZQRelatedIDs &items,
                                          const QString &leadingKey)
{
    const QVariantList projects = identifiersOf(ContentPart::Holding::Memberships);
    ZQFetchRequest request = *itemRequest();
    request.predicate = ZQPredicate::orPredicate(
        {request.predicate,
         ZQPredicate::predicateWithFormat(QStringLiteral("ANY projectsItems.project IN %@ AND active == YES"),
                                          {QVariant(projects)})});
    const Rows order = rows(request, leadingKey, nullptr);
    if (!order) {
        return order;
    }
    QMultiHash<ZQObjectID, ZQObjectID> rowsOfItem;
    for (qsizetype i = items.ids.size() - 1; i >= 0; --i) {
        rowsOfItem.insert(items.ids[i], items.ids[i]);
    }
    for (qsizetype i = memberships.ids.size() - 1; i >= 0; --i) {
        rowsOfItem.insert(memberships.related[i], memberships.ids[i]);
    }
    ZQRelatedIDs result;
    for (const ZQObjectID &item : order->ids) {
        // The last one inserted comes first.
        for (auto [row, end] = rowsOfItem.equal_range(item); row != end; ++row) {
            result.ids.append(showsItems() ? item : *row);
            result.related.append(item);
        }
    }
    return showsItems() ? eachOnce(result.ids, result.related) : result;
}

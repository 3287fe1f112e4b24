// The library items that a sidebar item holds.

#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <algorithm>
#include <limits>

namespace {

// How many values one statement is given.
constexpr qsizetype pieceSize = 500;

struct Place
{
    qint32 order;
    ZQProjectItem *existing; // null for a new member
    ZQLibraryBaseItem *item;
};

// Puts a new member at `index` by the rule of orders: the others from there on move up by `count`.
// Orders with gaps or repeats cannot say where `index` is; they are numbered afresh first.
void openGap(QList<Place> &places, qsizetype index, qsizetype count)
{
    const bool fits = (index == 0 || places.at(index - 1).order < index) &&
                      (index == places.size() || places.at(index).order >= index);
    for (qsizetype position = fits ? index : 0; position < places.size(); ++position) {
        if (!fits) {
            places[position].order = qint32(position);
        }
        if (position >= index) {
            places[position].order += qint32(count);
        }
    }
}

void restoreInactive(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        if (item && !item->active()) {
            item->restoreSelf();
        }
    }
}

// The orders of `wanted` that members have. Nothing after an error.
std::optional<QSet<qint32>> takenOrders(const ZQSidebarBaseItem &project, const QList<qint32> &wanted, ZQError *error)
{
    QSet<qint32> taken;
    for (qsizetype start = 0; start < wanted.size(); start += pieceSize) {
        QVariantList piece;
        for (const qint32 order : wanted.mid(start, pieceSize)) {
            piece.append(order);
        }
        const auto there = zqFetch<ZQProjectItem>(*project.managedObjectContext(),
                                                  ZQFetchRequest{.entityName = ZQProjectItem::entityName(),
                                                                 .predicate = ZQPredicate::predicateWithFormat(
                                                                     QStringLiteral("project == %@ AND order IN %@"),
                                                                     {QVariant::fromValue(project.objectID()), piece})},
                                                  error);
        if (!there) {
            return std::nullopt;
        }
        for (const ZQRef<ZQProjectItem> &member : *there) {
            taken.insert(member->order());
        }
    }
    return taken;
}

// Those from the first of the orders on; none without any.
ZQFetched<ZQProjectItem> membersBehind(const ZQSidebarBaseItem &project, const QSet<qint32> &orders, ZQError *error)
{
    if (orders.isEmpty()) {
        return QList<ZQRef<ZQProjectItem>>();
    }
    return zqFetch<ZQProjectItem>(
        *project.managedObjectContext(),
        ZQFetchRequest{.entityName = ZQProjectItem::entityName(),
                       .predicate = ZQPredicate::predicateWithFormat(
                           QStringLiteral("project == %@ AND order >= %@"),
                           {QVariant::fromValue(project.objectID()), *std::min_element(orders.begin(), orders.end())}),
                       .sortDescriptors = {{QStringLiteral("order")}}},
        error);
}

// Who is at `order` and does not return moves up, and those close behind, too. `places` is in order.
void makeRoomAt(QList<Place> &places, qint32 order)
{
    qint32 next = order + 1;
    auto place = std::lower_bound(places.begin(), places.end(), order,
                                  [](const Place &each, qint32 value) { return each.order < value; });
    for (; place != places.end() && place->order < next; ++place) {
        if (place->order > order || place->existing) {
            place->order = next++;
        }
    }
}

ZQSortDescriptor withItemPrefix(ZQSortDescriptor descriptor, bool isPrefixed)
{
    const QString key = zqItemKey(descriptor.keyPath);
    const bool isOfItem = isPrefixed && key != QStringLiteral("order");
    descriptor.keyPath = isOfItem ? zqItemKeyPath(ZQListRows::Memberships, key) : key;
    return descriptor;
}

} // namespace

ZQFetchRequest ZQSidebarBaseItem::contentRequest() const
{
    return {.entityName = ZQProjectItem::entityName(),
            .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("project == %@ AND item.active == YES"),
                                                          {QVariant::fromValue(objectID())}),
            .sortDescriptors = {{QStringLiteral("order")}}};
}

bool ZQSidebarBaseItem::hasOrderedMembers() const
{
    return contentRequest().entityName == ZQProjectItem::entityName();
}

QList<ZQRef<ZQLibraryBaseItem>> ZQSidebarBaseItem::items() const
{
    return itemsWithSortDescriptors({});
}

QList<ZQRef<ZQLibraryBaseItem>>
ZQSidebarBaseItem::itemsWithSortDescriptors(const QList<ZQSortDescriptor> &sortDescriptors) const
{
    ZQManagedObjectContext *context = managedObjectContext();
    if (!context) {
        return {};
    }
    ZQFetchRequest request = contentRequest();
    const bool listsMemberships = hasOrderedMembers();
    QList<ZQSortDescriptor> usable;
    for (const ZQSortDescriptor &descriptor : sortDescriptors) {
        if (listsMemberships || descriptor.keyPath != QStringLiteral("order")) {
            usable.append(withItemPrefix(descriptor, listsMemberships));
        }
    }
    if (!usable.isEmpty()) {
        request.sortDescriptors = usable;
    }
    if (!listsMemberships) {
        return zqFetch<ZQLibraryBaseItem>(*context, request).value_or(QList<ZQRef<ZQLibraryBaseItem>>());
    }
    const auto memberships = zqFetch<ZQProjectItem>(*context, request).value_or(QList<ZQRef<ZQProjectItem>>());
    const auto kept = context->prefetchRelatedObjects(memberships, QStringLiteral("item"));
    QList<ZQRef<ZQLibraryBaseItem>> all;
    all.reserve(memberships.size());
    for (const ZQRef<ZQProjectItem> &membership : memberships) {
        if (auto item = membership->item()) {
            all.append(item);
        }
    }
    return all;
}

qint64 ZQSidebarBaseItem::numberOfItems() const
{
    return numberOfItemsWithPredicate({});
}

qint64 ZQSidebarBaseItem::numberOfItemsWithPredicate(const ZQPredicate &predicate) const
{
    ZQManagedObjectContext *context = managedObjectContext();
    if (!context) {
        return 0;
    }
    ZQFetchRequest request = contentRequest();
    request.sortDescriptors.clear();
    request.predicate = ZQPredicate::andPredicate({request.predicate, predicate});
    return zqCount(*context, request);
}

QList<ZQRef<ZQProjectItem>> ZQSidebarBaseItem::pItems() const
{
    return pItemsWithActiveItemsOnly(true);
}

QList<ZQRef<ZQProjectItem>> ZQSidebarBaseItem::pItemsWithActiveItemsOnly(bool activeItemsOnly) const
{
    ZQManagedObjectContext *context = managedObjectContext();
    if (!context) {
        return {};
    }
    const QString format =
        activeItemsOnly ? QStringLiteral("project == %@ AND item.active == YES") : QStringLiteral("project == %@");
    return zqFetch<ZQProjectItem>(*context, format, {QVariant::fromValue(objectID())}, {{QStringLiteral("order")}})
        .value_or(QList<ZQRef<ZQProjectItem>>());
}

bool ZQSidebarBaseItem::containsItem(const ZQLibraryBaseItem *item) const
{
    return item && item->projectItemForSidebarItem(this);
}

qint32 ZQSidebarBaseItem::orderOfItem(const ZQLibraryBaseItem *item) const
{
    const ZQRef<ZQProjectItem> membership = item ? item->projectItemForSidebarItem(this) : ZQRef<ZQProjectItem>();
    return membership ? membership->order() : -1;
}

// After every member, also where removed ones left gaps or the last ones are inactive. Nothing after an error: a guess
// would be somebody else's place.
std::optional<qint32> ZQSidebarBaseItem::appendOrder(ZQError *error) const
{
    ZQManagedObjectContext *context = managedObjectContext();
    if (!context) {
        return 0;
    }
    ZQFetchRequest request = membershipRequest();
    request.sortDescriptors = {{QStringLiteral("order"), false}};
    request.fetchLimit = 1;
    const auto last = zqFetch<ZQProjectItem>(*context, request, error);
    if (!last) {
        return std::nullopt;
    }
    const qint32 afterLast = last->isEmpty() ? 0 : last->first()->order() + 1;
    request.fetchLimit = 0;
    request.sortDescriptors.clear();
    ZQError failure;
    const auto count = context->countForFetchRequest(request, &failure);
    if (!count) {
        zqLogFetchError(failure);
        zqSetError(error, failure);
        return std::nullopt;
    }
    return std::max(afterLast, qint32(*count));
}

void ZQSidebarBaseItem::insertMembership(ZQLibraryBaseItem *item, qint32 order)
{
    const auto membership = managedObjectContext()->insertNewObject<ZQProjectItem>();
    membership->setOrder(order);
    membership->setItem(item);
    membership->setProject(this);
}

bool ZQSidebarBaseItem::addItem(ZQLibraryBaseItem *item)
{
    return addItem(item, appendIndex, false, true);
}

bool ZQSidebarBaseItem::addItem(ZQLibraryBaseItem *item, quint32 atIndex, bool rearrangeOtherItems,
                                bool checkForDuplicate)
{
    if (!item || !managedObjectContext()) {
        return false;
    }
    const ZQRef<ZQLibraryBaseItem> kept(item);
    const auto present =
        checkForDuplicate ? membershipsOfItems({kept}) : ZQFetched<ZQProjectItem>(QList<ZQRef<ZQProjectItem>>());
    if (!present) { // it may be a member, and nobody is to be one twice
        return false;
    }
    if (!item->active()) {
        item->restoreSelf();
    }
    if (!present->isEmpty()) {
        return false;
    }
    if (atIndex == appendIndex) {
        const auto order = appendOrder(nullptr);
        if (order) {
            insertMembership(item, *order);
        }
        return order.has_value();
    }
    if (!rearrangeOtherItems) {
        insertMembership(item, qint32(std::min<quint32>(atIndex, std::numeric_limits<qint32>::max())));
        return true;
    }
    return insertAt({kept}, {atIndex}, nullptr);
}

ZQFetched<ZQProjectItem> ZQSidebarBaseItem::membershipsOfItems(const QList<ZQRef<ZQLibraryBaseItem>> &items,
                                                               ZQError *error) const
{
    QList<ZQRef<ZQProjectItem>> memberships;
    QSet<qint64> seen;
    for (qsizetype start = 0; managedObjectContext() && start < items.size(); start += pieceSize) {
        QVariantList ids;
        for (const ZQRef<ZQLibraryBaseItem> &item : items.mid(start, pieceSize)) {
            if (item) {
                ids.append(QVariant::fromValue(item->objectID()));
            }
        }
        // From the items: they are in few projects, while one project may have a hundred thousand members.
        const auto members = zqFetch<ZQProjectItem>(*managedObjectContext(),
                                                    ZQFetchRequest{.entityName = ZQProjectItem::entityName(),
                                                                   .predicate = ZQPredicate::predicateWithFormat(
                                                                       QStringLiteral("item IN %@"), {QVariant(ids)})},
                                                    error);
        if (!members) {
            return std::nullopt;
        }
        for (const ZQRef<ZQProjectItem> &member : *members) {
            if (member->projectKey() == objectID().key && !seen.contains(member->itemKey())) {
                seen.insert(member->itemKey());
                memberships.append(member);
            }
        }
    }
    return memberships;
}

ZQFetched<ZQLibraryBaseItem> ZQSidebarBaseItem::itemsToInsert(const QList<ZQRef<ZQLibraryBaseItem>> &items,
                                                              QList<qsizetype> &positions, ZQError *error) const
{
    const auto memberships = membershipsOfItems(items, error);
    if (!memberships) { // whether they are members is not known, and nobody is to be one twice
        return std::nullopt;
    }
    QSet<qint64> taken;
    for (const ZQRef<ZQProjectItem> &membership : *memberships) {
        taken.insert(membership->itemKey());
    }
    QList<ZQRef<ZQLibraryBaseItem>> fresh;
    for (qsizetype position = 0; position < items.size(); ++position) {
        const ZQRef<ZQLibraryBaseItem> &item = items.at(position);
        if (item && !taken.contains(item->objectID().key)) {
            taken.insert(item->objectID().key);
            fresh.append(item);
            positions.append(position);
        }
    }
    return fresh;
}

bool ZQSidebarBaseItem::addItems(const QList<ZQRef<ZQLibraryBaseItem>> &items, const QList<quint32> &atIndexes,
                                 ZQError *error)
{
    if (!managedObjectContext() || items.isEmpty()) {
        return true;
    }
    QList<qsizetype> positions;
    const auto fresh = itemsToInsert(items, positions, error);
    if (!fresh) {
        return false;
    }
    QList<quint32> indexes;
    for (const qsizetype position : std::as_const(positions)) {
        indexes.append(position < atIndexes.size() ? atIndexes.at(position) : appendIndex);
    }
    if (std::all_of(indexes.begin(), indexes.end(), [](quint32 index) { return index == appendIndex; })) {
        const auto order = fresh->isEmpty() ? 0 : appendOrder(error);
        if (!order) {
            return false;
        }
        for (qsizetype i = 0; i < fresh->size(); ++i) {
            insertMembership(fresh->at(i).get(), *order + qint32(i));
        }
    } else if (!insertAt(*fresh, indexes, error)) {
        return false;
    }
    restoreInactive(items);
    return true;
}

ZQFetchRequest ZQSidebarBaseItem::membershipRequest() const
{
    return {.entityName = ZQProjectItem::entityName(),
            .predicate =
                ZQPredicate::predicateWithFormat(QStringLiteral("project == %@"), {QVariant::fromValue(objectID())}),
            .sortDescriptors = {{QStringLiteral("order")}}};
}

// Members before the first place stay as they are and are not read, as long as their orders say how many they are.
bool ZQSidebarBaseItem::insertAt(const QList<ZQRef<ZQLibraryBaseItem>> &items, const QList<quint32> &indexes,
                                 ZQError *error)
{
    ZQManagedObjectContext &context = *managedObjectContext();
    ZQFetchRequest request = membershipRequest();
    const qint64 first = *std::min_element(indexes.begin(), indexes.end());
    const qint64 count = first == 0 ? 0 : zqCount(context, request);
    request.fetchOffset = int(std::max<qint64>(0, std::min(first, count) - 1));
    auto memberships = zqFetch<ZQProjectItem>(context, request, error);
    if (memberships && request.fetchOffset > 0 &&
        (memberships->isEmpty() || memberships->first()->order() != request.fetchOffset)) {
        request.fetchOffset = 0;
        memberships = zqFetch<ZQProjectItem>(context, request, error);
    }
    if (!memberships) { // without the others' orders there is no place
        return false;
    }
    const qsizetype unread = request.fetchOffset;
    QList<Place> places;
    for (const ZQRef<ZQProjectItem> &membership : *memberships) {
        places.append({membership->order() - qint32(unread), membership.get(), nullptr});
    }
    // Items for consecutive places, the usual case, go in together.
    for (qsizetype start = 0; start < items.size();) {
        const auto index = qsizetype(std::min<quint64>(indexes.at(start) - quint64(unread), quint64(places.size())));
        qsizetype end = start + 1;
        while (end < items.size() && quint64(indexes.at(end)) == quint64(unread + index + end - start)) {
            ++end;
        }
        openGap(places, index, end - start);
        QList<Place> inserted = places.mid(0, index);
        inserted.reserve(places.size() + end - start);
        for (qsizetype position = start; position < end; ++position) {
            inserted.append({qint32(index + position - start), nullptr, items.at(position).get()});
        }
        inserted += places.mid(index);
        places = inserted;
        start = end;
    }
    for (const Place &place : std::as_const(places)) {
        if (place.existing) {
            place.existing->setOrder(place.order + qint32(unread));
        } else {
            insertMembership(place.item, place.order + qint32(unread));
        }
    }
    return true;
}

// Nobody else moves unless a place was taken meanwhile; then the one there and those close behind it make room. All
// that has to be known is read before anything changes.
bool ZQSidebarBaseItem::restoreItems(const QList<ZQRef<ZQLibraryBaseItem>> &items, const QList<qint32> &orders,
                                     ZQError *error)
{
    if (!managedObjectContext() || items.isEmpty() || orders.size() != items.size()) {
        return true;
    }
    if (!hasOrderedMembers()) {
        return addItems(items, {}, error);
    }
    QList<qsizetype> positions;
    const auto fresh = itemsToInsert(items, positions, error);
    if (!fresh) {
        return false;
    }
    QList<qint32> wanted;
    for (const qsizetype position : std::as_const(positions)) {
        wanted.append(orders.at(position));
    }
    const auto taken = takenOrders(*this, wanted, error);
    const auto behind = taken ? membersBehind(*this, *taken, error) : std::nullopt;
    if (!behind) {
        return false;
    }
    QList<Place> places;
    for (qsizetype i = 0; i < fresh->size(); ++i) {
        places.append({wanted.at(i), nullptr, fresh->at(i).get()});
    }
    for (const ZQRef<ZQProjectItem> &member : *behind) {
        places.append({member->order(), member.get(), nullptr});
    }
    std::stable_sort(places.begin(), places.end(), [](const Place &a, const Place &b) { return a.order < b.order; });
    QList<qint32> highestFirst(taken->cbegin(), taken->cend());
    std::sort(highestFirst.begin(), highestFirst.end(), std::greater<>());
    for (const qint32 order : std::as_const(highestFirst)) {
        makeRoomAt(places, order);
    }
    for (const Place &place : std::as_const(places)) {
        if (place.existing) {
            place.existing->setOrder(place.order);
        } else {
            insertMembership(place.item, place.order);
        }
    }
    restoreInactive(items);
    return true;
}

void ZQSidebarBaseItem::removeItems(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    const auto memberships = membershipsOfItems(items);
    for (const ZQRef<ZQProjectItem> &membership : memberships.value_or(QList<ZQRef<ZQProjectItem>>())) {
        managedObjectContext()->deleteObject(membership.get());
    }
}

bool ZQSidebarBaseItem::prepareToAddItem(ZQLibraryBaseItem *item) const
{
    if (!item) {
        return false;
    }
    if (!item->active()) {
        item->restoreSelf();
    }
    return !containsItem(item);
}

void ZQSidebarBaseItem::addEachItem(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        addItem(item.get(), appendIndex, false, true);
    }
}

void ZQSidebarBaseItem::removeItem(ZQLibraryBaseItem *item)
{
    removeItems({ZQRef<ZQLibraryBaseItem>(item)});
}

void ZQSidebarBaseItem::removeProjectItem(ZQProjectItem *projectItem)
{
    ZQManagedObjectContext *context = managedObjectContext();
    if (context && projectItem && projectItem->projectKey() == objectID().key) {
        context->deleteObject(projectItem);
    }
}

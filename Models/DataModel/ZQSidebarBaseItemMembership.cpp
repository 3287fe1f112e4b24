// The library items that a sidebar item holds.

#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <algorithm>
#include <limits>

namespace {

// How many values one statement is given.
constexpr qsizetype pieceSize = 500;

const QString itemPrefix = QStringLiteral("item.");

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

ZQSortDescriptor withItemPrefix(ZQSortDescriptor descriptor, bool isPrefixed)
{
    if (descriptor.keyPath.startsWith(itemPrefix)) {
        descriptor.keyPath.remove(0, itemPrefix.size());
    }
    if (isPrefixed && descriptor.keyPath != QStringLiteral("order")) {
        descriptor.keyPath.prepend(itemPrefix);
    }
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
    const bool listsMemberships = request.entityName == ZQProjectItem::entityName();
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

// After every member, also where removed ones left gaps or the last ones are inactive.
qint32 ZQSidebarBaseItem::appendOrder() const
{
    ZQManagedObjectContext *context = managedObjectContext();
    if (!context) {
        return 0;
    }
    ZQFetchRequest request{.entityName = ZQProjectItem::entityName(),
                           .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("project == %@"),
                                                                         {QVariant::fromValue(objectID())}),
                           .sortDescriptors = {{QStringLiteral("order"), false}},
                           .fetchLimit = 1};
    const auto last = zqFetch<ZQProjectItem>(*context, request);
    const qint32 afterLast = last && !last->isEmpty() ? last->first()->order() + 1 : 0;
    request.fetchLimit = 0;
    request.sortDescriptors.clear();
    return std::max(afterLast, qint32(zqCount(*context, request)));
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
    if (!item->active()) {
        item->restoreSelf();
    }
    if (checkForDuplicate && containsItem(item)) {
        return false;
    }
    if (atIndex == appendIndex) {
        insertMembership(item, appendOrder());
        return true;
    }
    if (!rearrangeOtherItems) {
        insertMembership(item, qint32(std::min<quint32>(atIndex, std::numeric_limits<qint32>::max())));
        return true;
    }
    QList<Place> places;
    const QList<ZQRef<ZQProjectItem>> memberships = pItemsWithActiveItemsOnly(false);
    for (const ZQRef<ZQProjectItem> &membership : memberships) {
        places.append({membership->order(), membership.get(), nullptr});
    }
    const auto index = qsizetype(std::min<quint64>(atIndex, quint64(places.size())));
    openGap(places, index, 1);
    for (const Place &place : places) {
        place.existing->setOrder(place.order);
    }
    insertMembership(item, qint32(index));
    return true;
}

// The keys of those of `items` that are members already.
QSet<qint64> ZQSidebarBaseItem::memberKeys(const QList<ZQRef<ZQLibraryBaseItem>> &items) const
{
    QSet<qint64> keys;
    for (qsizetype start = 0; start < items.size(); start += pieceSize) {
        QVariantList ids;
        for (const ZQRef<ZQLibraryBaseItem> &item : items.mid(start, pieceSize)) {
            if (item) {
                ids.append(QVariant::fromValue(item->objectID()));
            }
        }
        const auto members =
            zqFetch<ZQProjectItem>(*managedObjectContext(), QStringLiteral("project == %@ AND item IN %@"),
                                   {QVariant::fromValue(objectID()), ids});
        for (const ZQRef<ZQProjectItem> &member : members.value_or(QList<ZQRef<ZQProjectItem>>())) {
            keys.insert(member->valueForKey(QStringLiteral("item")).value<ZQObjectID>().key);
        }
    }
    return keys;
}

void ZQSidebarBaseItem::addItems(const QList<ZQRef<ZQLibraryBaseItem>> &items, const QList<quint32> &atIndexes)
{
    if (!managedObjectContext() || items.isEmpty()) {
        return;
    }
    QSet<qint64> taken = memberKeys(items);
    QList<ZQRef<ZQLibraryBaseItem>> fresh;
    QList<quint32> indexes;
    for (qsizetype position = 0; position < items.size(); ++position) {
        const ZQRef<ZQLibraryBaseItem> &item = items.at(position);
        if (!item) {
            continue;
        }
        if (!item->active()) {
            item->restoreSelf();
        }
        if (!taken.contains(item->objectID().key)) {
            taken.insert(item->objectID().key);
            fresh.append(item);
            indexes.append(position < atIndexes.size() ? atIndexes.at(position) : appendIndex);
        }
    }
    if (std::all_of(indexes.begin(), indexes.end(), [](quint32 index) { return index == appendIndex; })) {
        qint32 order = fresh.isEmpty() ? 0 : appendOrder();
        for (const ZQRef<ZQLibraryBaseItem> &item : fresh) {
            insertMembership(item.get(), order++);
        }
        return;
    }

    QList<Place> places;
    const QList<ZQRef<ZQProjectItem>> memberships = pItemsWithActiveItemsOnly(false);
    for (const ZQRef<ZQProjectItem> &membership : memberships) {
        places.append({membership->order(), membership.get(), nullptr});
    }
    // Items for consecutive places, the usual case, go in together.
    for (qsizetype start = 0; start < fresh.size();) {
        const auto index = qsizetype(std::min<quint64>(indexes.at(start), quint64(places.size())));
        qsizetype end = start + 1;
        while (end < fresh.size() && quint64(indexes.at(end)) == quint64(index + end - start)) {
            ++end;
        }
        openGap(places, index, end - start);
        QList<Place> inserted = places.mid(0, index);
        inserted.reserve(places.size() + end - start);
        for (qsizetype position = start; position < end; ++position) {
            inserted.append({qint32(index + position - start), nullptr, fresh.at(position).get()});
        }
        inserted += places.mid(index);
        places = inserted;
        start = end;
    }
    for (const Place &place : places) {
        if (place.existing) {
            place.existing->setOrder(place.order);
        } else {
            insertMembership(place.item, place.order);
        }
    }
}

void ZQSidebarBaseItem::removeItems(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        if (item) {
            removeProjectItem(item->projectItemForSidebarItem(this).get());
        }
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
    if (context && projectItem && projectItem->project().get() == this) {
        context->deleteObject(projectItem);
    }
}

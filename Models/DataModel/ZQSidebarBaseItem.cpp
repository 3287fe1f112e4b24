#include "Models/DataModel/ZQSidebarBaseItem.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"

#include <algorithm>

namespace {

// More than any tree a person makes; stops the walk up a damaged one.
constexpr int maximumDepth = 1000;

struct SortKey
{
    const char *key;
    ZQSortDescriptor::Comparison comparison;
};

constexpr auto standard = ZQSortDescriptor::Comparison::Standard;
constexpr auto localized = ZQSortDescriptor::Comparison::LocalizedStandard;

// By sort value. Value 0, the manual order, and 5, no order, are not in here.
const QList<QList<SortKey>> sortKeysByValue = {
    {},
    {{"import_date", standard}, {"title", localized}},
    {{"title", localized}, {"import_date", standard}},
    {{"pixelTotal", standard}, {"import_date", standard}},
    {{"mainColor", standard}, {"SHA1", standard}, {"title", localized}},
    {},
    {{"modification_date", standard}, {"title", localized}},
    {{"creation_date", standard}, {"title", localized}},
};

bool isOrdered(const ZQRef<ZQSidebarBaseItem> &a, const ZQRef<ZQSidebarBaseItem> &b)
{
    return a->order() < b->order();
}

} // namespace

ZQRef<ZQSidebarBaseItem> ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind kind, ZQManagedObjectContext &context,
                                                              ZQError *failure)
{
    // Everything a person made has kind 0 as well; only the label is fixed.
    const QString format = kind == ZQSidebarKind::LibraryLabel ? QStringLiteral("kind == %@ AND is_Label == YES")
                                                               : QStringLiteral("kind == %@");
    return zqFetchFirst<ZQSidebarBaseItem>(context, format, {qint16(kind)}, failure);
}

ZQRef<ZQSidebarBaseItem> ZQSidebarBaseItem::libraryProjectInManagedObjectContext(ZQManagedObjectContext &context)
{
    return specialItemOfKind(ZQSidebarKind::Library, context);
}

ZQRef<ZQSidebarBaseItem> ZQSidebarBaseItem::recentProjectInManagedObjectContext(ZQManagedObjectContext &context)
{
    return specialItemOfKind(ZQSidebarKind::Recent, context);
}

ZQRef<ZQSidebarBaseItem> ZQSidebarBaseItem::screenshotProjectInManagedObjectContext(ZQManagedObjectContext &context)
{
    return specialItemOfKind(ZQSidebarKind::Screenshots, context);
}

ZQRef<ZQSidebarBaseItem> ZQSidebarBaseItem::projectsLabelInManagedObjectContext(ZQManagedObjectContext &context)
{
    return specialItemOfKind(ZQSidebarKind::ProjectsLabel, context);
}

ZQRef<ZQSidebarBaseItem> ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(ZQManagedObjectContext &context)
{
    return specialItemOfKind(ZQSidebarKind::WatchedFoldersLabel, context);
}

ZQRef<ZQSidebarBaseItem> ZQSidebarBaseItem::tagsLabelInManagedObjectContext(ZQManagedObjectContext &context)
{
    return specialItemOfKind(ZQSidebarKind::TagsLabel, context);
}

ZQRef<ZQSidebarBaseItem> ZQSidebarBaseItem::sizeLabelInManagedObjectContext(ZQManagedObjectContext &context)
{
    return specialItemOfKind(ZQSidebarKind::SizesLabel, context);
}

ZQRef<ZQSidebarBaseItem> ZQSidebarBaseItem::colorsLabelInManagedObjectContext(ZQManagedObjectContext &context)
{
    return specialItemOfKind(ZQSidebarKind::ColorsLabel, context);
}

QList<ZQSortDescriptor> ZQSidebarBaseItem::sortDescriptorsForSortValue(ZQSortValue sortValue, bool ascending,
                                                                       ZQListRows itemKind)
{
    if (sortValue == ZQSortValue::Manual) {
        return {{QStringLiteral("order"), true, standard}};
    }
    QList<ZQSortDescriptor> descriptors;
    const auto value = qsizetype(sortValue);
    if (value < 0 || value >= sortKeysByValue.size()) {
        return descriptors;
    }
    for (const SortKey &key : sortKeysByValue.at(value)) {
        descriptors.append({zqItemKeyPath(itemKind, QLatin1String(key.key)), ascending, key.comparison});
    }
    return descriptors;
}

void ZQSidebarBaseItem::permanentlyDeleteInactiveObjectinManagedObjectContext(ZQManagedObjectContext &context)
{
    const auto inactive = zqFetch<ZQSidebarBaseItem>(context, QStringLiteral("active == %@"), {false});
    if (!inactive) {
        return;
    }
    for (const ZQRef<ZQSidebarBaseItem> &item : *inactive) {
        item->deletePermanently();
    }
}

// Puts `child` before the sibling now at `atIndex`.
void ZQSidebarBaseItem::addChild(ZQSidebarBaseItem *child, quint32 atIndex)
{
    if (!child || child == this || isDescendantOfItem(child)) {
        qCWarning(zqLogStore, "A sidebar item cannot be put below itself");
        return;
    }
    QList<ZQRef<ZQSidebarBaseItem>> siblings = orderedChildren();
    siblings.removeIf([child](const ZQRef<ZQSidebarBaseItem> &sibling) { return sibling.get() == child; });
    const auto index = qsizetype(std::min<quint64>(atIndex, quint64(siblings.size())));
    const bool fits = (index == 0 || siblings.at(index - 1)->order() < index) &&
                      (index == siblings.size() || siblings.at(index)->order() >= index);
    for (qsizetype position = 0; position < siblings.size(); ++position) {
        // Orders with gaps or repeats cannot place the child by its index; number them afresh.
        if (!fits) {
            siblings.at(position)->setOrder(qint32(position));
        }
        if (position >= index) {
            siblings.at(position)->setOrder(siblings.at(position)->order() + 1);
        }
    }
    child->setFather(this);
    child->setOrder(qint32(index));
}

void ZQSidebarBaseItem::removeFromFather()
{
    setFather(nullptr);
}

QList<ZQRef<ZQSidebarBaseItem>> ZQSidebarBaseItem::childsItems() const
{
    QList<ZQRef<ZQSidebarBaseItem>> children = childs();
    children.removeIf([](const ZQRef<ZQSidebarBaseItem> &child) { return !child->active(); });
    return children;
}

qint32 ZQSidebarBaseItem::numberofChilds() const
{
    return qint32(childsItems().size());
}

QList<ZQRef<ZQSidebarBaseItem>> ZQSidebarBaseItem::orderedChildren() const
{
    QList<ZQRef<ZQSidebarBaseItem>> children = childsItems();
    std::stable_sort(children.begin(), children.end(), isOrdered);
    return children;
}

QList<ZQRef<ZQSidebarBaseItem>> ZQSidebarBaseItem::alphabeticOrderedChildren() const
{
    QList<ZQRef<ZQSidebarBaseItem>> children = orderedChildren();
    std::stable_sort(children.begin(), children.end(), [](const auto &a, const auto &b) {
        return zqCompareValues(a->title(), b->title(), localized) < 0;
    });
    return children;
}

void ZQSidebarBaseItem::reorderChildren()
{
    qint32 position = 0;
    for (const ZQRef<ZQSidebarBaseItem> &child : orderedChildren()) {
        child->setOrder(position++);
    }
}

bool ZQSidebarBaseItem::isDescendantOfItem(const ZQSidebarBaseItem *item) const
{
    ZQRef<ZQSidebarBaseItem> ancestor = father();
    for (int depth = 0; ancestor && depth < maximumDepth; ++depth) {
        if (ancestor.get() == item) {
            return true;
        }
        ancestor = ancestor->father();
    }
    return false;
}

bool ZQSidebarBaseItem::isDroppableLabel() const
{
    static const QList<qint16> droppable = {qint16(ZQSidebarKind::ProjectsLabel),
                                            qint16(ZQSidebarKind::WatchedFoldersLabel),
                                            qint16(ZQSidebarKind::TagsLabel)};
    return is_Label() && droppable.contains(kind());
}

QString ZQSidebarBaseItem::typeString() const
{
    return zqLocalized("Label");
}

void ZQSidebarBaseItem::deleteSelf()
{
    setActive(false);
}

void ZQSidebarBaseItem::restoreSelf()
{
    setActive(true);
}

void ZQSidebarBaseItem::deletePermanently()
{
    ZQManagedObjectContext *context = managedObjectContext();
    // A father's removal may have taken it along already.
    if (context && !isDeleted()) {
        context->deleteObject(this);
    }
}

QString ZQSidebarBaseItem::UUID() const
{
    const ZQManagedObjectContext *context = managedObjectContext();
    return objectID().URIRepresentation(context ? context->persistentStoreCoordinator()->storeUUID() : QUuid());
}

void ZQSidebarBaseItem::awakeFromInsert()
{
    setCreation_date(zqNow());
}

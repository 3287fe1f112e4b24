#include "Classes/Editing/CopiesBesideOriginals.h"

#include "Classes/Editing/EditRun.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <QHash>

namespace {

// By the originals' keys; those of originals that are no members have no place beside them.
QHash<qint64, ZQRef<ZQLibraryBaseItem>> copiesOfMembers(EditRun &run, const ZQSidebarBaseItem &project,
                                                        const QList<CopyOfItem> &copies, ZQError *error)
{
    QList<ZQObjectID> ids;
    QHash<qint64, ZQObjectID> copyOf;
    for (const CopyOfItem &each : copies) {
        ids.append(each.original);
        copyOf.insert(each.original.key, each.copy);
    }
    const auto memberships = project.membershipsOfItems(ZQLibraryBaseItem::itemsWithIDs(ids, run.context()), error);
    QHash<qint64, ZQRef<ZQLibraryBaseItem>> result;
    for (const auto &membership : memberships.value_or(QList<ZQRef<ZQProjectItem>>())) {
        const qint64 key = membership->itemKey();
        const auto copy = zqCast<ZQLibraryBaseItem>(run.context().objectWithID(copyOf.value(key)));
        if (copy && copy->active()) {
            result.insert(key, copy);
        }
    }
    return result;
}

// Among all, deleted items' memberships too: they return to their places.
bool orderBehindOriginals(EditRun &run, const ZQObjectID &project,
                          const QHash<qint64, ZQRef<ZQLibraryBaseItem>> &copies, ZQError *error)
{
    const auto all = zqFetch<ZQProjectItem>(
        run.context(),
        {.entityName = ZQProjectItem::entityName(),
         .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("project == %@"), {QVariant::fromValue(project)}),
         .sortDescriptors = {{QStringLiteral("order")}}},
        error);
    if (!all) {
        return false;
    }
    QSet<qint64> copyKeys;
    for (const auto &copy : copies) {
        copyKeys.insert(copy->objectID().key);
    }
    QHash<qint64, ZQRef<ZQProjectItem>> ofCopies;
    for (const auto &membership : *all) {
        if (copyKeys.contains(membership->itemKey())) {
            ofCopies.insert(membership->itemKey(), membership);
        }
    }
    qint32 order = 0;
    const auto put = [&order](ZQProjectItem &membership) {
        if (membership.order() != order) {
            membership.setOrder(order);
        }
        ++order;
    };
    for (const auto &membership : *all) {
        if (copyKeys.contains(membership->itemKey())) {
            continue;
        }
        put(*membership);
        if (const auto copy = copies.value(membership->itemKey())) {
            if (const auto beside = ofCopies.value(copy->objectID().key)) {
                put(*beside);
            }
        }
    }
    return true;
}

ZQRef<ZQSidebarBaseItem> orderedProject(EditRun &run, const ZQObjectID &id)
{
    auto project = id.isNull() ? ZQRef<ZQSidebarBaseItem>() : zqCast<ZQSidebarBaseItem>(run.context().objectWithID(id));
    return project && project->hasOrderedMembers() ? project : ZQRef<ZQSidebarBaseItem>();
}

} // namespace

bool zqPutBesideOriginals(EditRun &run, const ZQObjectID &project, const QList<CopyOfItem> &copies)
{
    const auto into = orderedProject(run, project);
    if (!into || copies.isEmpty()) {
        return true;
    }
    ZQError error;
    const auto members = copiesOfMembers(run, *into, copies, &error);
    if (error.isNull() && members.isEmpty()) {
        return true;
    }
    // Orders are given to memberships that the store has.
    if (!error.isNull() || !into->addItems(members.values(), {}, &error) || !run.save() ||
        !orderBehindOriginals(run, project, members, &error)) {
        if (!error.isNull()) {
            run.presentError(error);
        }
        return false;
    }
    return run.save();
}

bool zqTakeFromOriginals(EditRun &run, const ZQObjectID &project, const QList<ZQObjectID> &copies)
{
    const auto from = orderedProject(run, project);
    if (!from || copies.isEmpty()) {
        return true;
    }
    from->removeItems(ZQLibraryBaseItem::itemsWithIDs(copies, run.context()));
    return run.save();
}

#include "Classes/Editing/LibraryCommands.h"

#include "Classes/Editing/CopiesBesideOriginals.h"
#include "Classes/Editing/EditStep.h"
#include "Classes/Editing/FileProblems.h"
#include "Classes/Editing/ItemDeletion.h"
#include "Classes/Editing/ItemEdits.h"
#include "Classes/Editing/LiveFolderEdits.h"
#include "Kit/Files/ZQOwnMove.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQProjectItem.h"

#include <QFileInfo>

#include <algorithm>
#include <memory>
#include <utility>

namespace {

using Items = QList<ZQRef<ZQLibraryBaseItem>>;
using IDs = QList<ZQObjectID>;
using Done = LibraryCommands::Done; // what a step has changed and not taken back; of one thread at a time

ZQRef<ZQSidebarBaseItem> sidebarItem(ZQManagedObjectContext &context, const ZQObjectID &id)
{
    return zqCast<ZQSidebarBaseItem>(context.objectWithID(id));
}

// Takes back what `done` holds, the last first, a batch a save; what was not come to stays in it.
template <class T>
bool takeBack(EditRun &run, const QString &progressText, QList<T> &done,
              const std::function<bool(const QList<T> &batch, ZQOwnMoves &moves)> &change)
{
    const qsizetype count = run.inBatches(progressText, done.size(), [&](qsizetype, qsizetype size) {
        ZQOwnMoves moves;
        if (!change(done.last(size), moves) || !run.save()) {
            moves.takeBack();
            return false;
        }
        done.resize(done.size() - size);
        return true;
    });
    return count > 0;
}

// Deletes those that are not yet, and says which they were.
EditPass deletion(const IDs &items, const Done &done)
{
    return {[items, done](EditRun &run) {
                FileProblems problems;
                run.inBatches(zqLocalized("Deleting items…"), items.size(), [&](qsizetype first, qsizetype size) {
                    IDs deleted;
                    ZQOwnMoves moves;
                    const auto batch = ZQLibraryBaseItem::itemsWithIDs(items.mid(first, size), run.context());
                    ZQLibraryBaseItem::lookForFiles(batch);
                    for (const auto &item : batch) {
                        if (item->active() && zqDeleteItem(*item, moves, problems)) {
                            deleted.append(item->objectID());
                        }
                    }
                    if (!run.save()) {
                        moves.takeBack();
                        return false;
                    }
                    done->append(deleted);
                    return true;
                });
                problems.tell(run, zqKey("“%@” cannot be deleted."), zqKey("%d items cannot be deleted."));
                return !done->isEmpty();
            },
            zqLocalized("Deleting items…")};
}

EditPass restoration(const Done &done)
{
    return {[done](EditRun &run) {
                FileProblems problems;
                const auto restore = [&](const IDs &batch, ZQOwnMoves &moves) {
                    const auto all = ZQLibraryBaseItem::itemsWithIDs(batch, run.context());
                    ZQLibraryBaseItem::lookForFiles(all);
                    for (const auto &item : all) {
                        if (zqRestoreItem(*item, moves, problems)) {
                            run.didBring({item->objectID()});
                        }
                    }
                    return true;
                };
                const bool isDone = takeBack<ZQObjectID>(run, zqLocalized("Restoring items…"), *done, restore);
                problems.tell(run, zqKey("“%@” cannot be restored."), zqKey("%d items cannot be restored."));
                return isDone;
            },
            zqLocalized("Restoring items…")};
}

QString nameFor(EditContext &edits, const IDs &ids)
{
    const auto item = ids.size() == 1 ? edits.libraryItem(ids.first()) : ZQRef<ZQLibraryBaseItem>();
    return item ? zqFormat(zqLocalized("delete %@"), {item->title()}) : zqLocalized("delete items");
}

struct RemovedPlace
{
    qint32 order = 0;
    ZQObjectID item;
};

// Nothing after an error, which was told: without their places, removing the items could not be taken back.
std::optional<QList<RemovedPlace>> removeBatch(EditRun &run, ZQSidebarBaseItem &from, const Items &items)
{
    QList<RemovedPlace> places;
    if (!from.hasOrderedMembers()) {
        for (const auto &item : items) {
            if (from.containsItem(item.get())) {
                places.append({0, item->objectID()});
            }
        }
        from.removeItems(items);
        return places;
    }
    ZQError error;
    const auto memberships = from.membershipsOfItems(items, &error);
    if (!memberships) {
        run.presentError(error);
        return std::nullopt;
    }
    QHash<qint64, ZQRef<ZQProjectItem>> members;
    for (const auto &membership : *memberships) {
        members.insert(membership->itemKey(), membership);
    }
    for (const auto &item : items) {
        if (const auto membership = members.take(item->objectID().key)) {
            places.append({membership->order(), item->objectID()});
            from.removeProjectItem(membership.get());
        }
    }
    return places;
}

EditPass removal(const IDs &items, const ZQObjectID &from, const std::shared_ptr<QList<RemovedPlace>> &done)
{
    return {[items, from, done](EditRun &run) {
                const auto container = sidebarItem(run.context(), from);
                run.inBatches(
                    zqLocalized("Removing items…"), container ? items.size() : 0, [&](qsizetype first, qsizetype size) {
                        const auto places = removeBatch(
                            run, *container, ZQLibraryBaseItem::itemsWithIDs(items.mid(first, size), run.context()));
                        if (!places || !run.save()) {
                            return false;
                        }
                        done->append(*places);
                        return true;
                    });
                return !done->isEmpty();
            },
            zqLocalized("Removing items…")};
}

// The highest orders return first: who has to make room for a batch is then there already.
EditPass returnToPlaces(const ZQObjectID &to, const std::shared_ptr<QList<RemovedPlace>> &done)
{
    return {[to, done](EditRun &run) {
                const auto into = sidebarItem(run.context(), to);
                if (!into) {
                    return false;
                }
                std::stable_sort(done->begin(), done->end(),
                                 [](const RemovedPlace &a, const RemovedPlace &b) { return a.order < b.order; });
                const auto restore = [&](const QList<RemovedPlace> &batch, ZQOwnMoves &) {
                    Items items;
                    QList<qint32> orders;
                    for (const auto &[order, id] : batch) {
                        if (const auto item = zqCast<ZQLibraryBaseItem>(run.context().objectWithID(id))) {
                            items.append(item);
                            orders.append(order);
                        }
                    }
                    ZQError error;
                    if (!into->restoreItems(items, orders, &error)) {
                        run.presentError(error);
                        return false;
                    }
                    for (const auto &item : std::as_const(items)) {
                        run.didBring({item->objectID()});
                    }
                    return true;
                };
                return takeBack<RemovedPlace>(run, zqLocalized("Adding items…"), *done, restore);
            },
            zqLocalized("Adding items…")};
}

// Nothing after an error.
std::optional<IDs> notYetIn(const ZQSidebarBaseItem &target, const Items &items, ZQError *error)
{
    const auto memberships = target.membershipsOfItems(items, error);
    if (!memberships) {
        return std::nullopt;
    }
    QSet<qint64> present;
    for (const auto &membership : *memberships) {
        present.insert(membership->itemKey());
    }
    IDs fresh;
    for (const auto &item : items) {
        const bool isThere =
            target.hasOrderedMembers() ? present.contains(item->objectID().key) : target.containsItem(item.get());
        if (!isThere) {
            fresh.append(item->objectID());
        }
    }
    return fresh;
}

// By item: a membership that is removed and returns is another one.
struct NewOrder
{
    qint64 itemKey;
    qint32 before;
    qint32 after;
};

// The orders that change when those of `members` that belong to `moved` go before the one now at `toIndex`.
QList<NewOrder> ordersAfterMove(const QList<ZQRef<ZQProjectItem>> &members, const QSet<ZQObjectID> &moved,
                                quint32 toIndex)
{
    QSet<qint64> movedKeys;
    for (const ZQObjectID &id : moved) {
        movedKeys.insert(id.key);
    }
    QList<ZQRef<ZQProjectItem>> staying;
    QList<ZQRef<ZQProjectItem>> moving;
    qsizetype target = 0;
    for (qsizetype i = 0; i < members.size(); ++i) {
        const bool moves = movedKeys.contains(members[i]->itemKey());
        (moves ? moving : staying).append(members[i]);
        target += !moves && i < qsizetype(toIndex) ? 1 : 0;
    }
    QList<NewOrder> changes;
    if (!moving.isEmpty()) {
        const auto order = staying.first(target) + moving + staying.sliced(target);
        for (qsizetype i = 0; i < order.size(); ++i) {
            if (order[i]->order() != qint32(i)) {
                changes.append({order[i]->itemKey(), order[i]->order(), qint32(i)});
            }
        }
    }
    return changes;
}

// Nothing after an error, which was told.
ZQFetched<ZQProjectItem> members(EditRun &run, const ZQFetchRequest &request)
{
    ZQError error;
    auto found = zqFetch<ZQProjectItem>(run.context(), request, &error);
    if (!found) {
        run.presentError(error);
    }
    return found;
}

ZQFetchRequest allMembersOf(const ZQObjectID &project)
{
    return {.entityName = ZQProjectItem::entityName(),
            .predicate =
                ZQPredicate::predicateWithFormat(QStringLiteral("project == %@"), {QVariant::fromValue(project)}),
            .sortDescriptors = {{QStringLiteral("order")}}};
}

// One save, whatever their number: a project whose orders were changed in part only would be in disorder.
bool giveOrders(EditRun &run, const ZQObjectID &project, const QList<NewOrder> &orders, qint32 NewOrder::*which)
{
    QHash<qint64, qint32> byItem;
    for (const NewOrder &order : orders) {
        byItem.insert(order.itemKey, order.*which);
    }
    const auto all = byItem.isEmpty() ? std::nullopt : members(run, allMembersOf(project));
    if (!all) {
        return false;
    }
    for (const auto &membership : *all) {
        if (const auto order = byItem.constFind(membership->itemKey()); order != byItem.cend()) {
            membership->setOrder(*order);
        }
    }
    return run.save();
}

using Orders = QHash<qint64, qint32>; // by item

// From the order `first` on; empty after an error, which whoever changes them runs into, and tells.
Orders ordersOf(EditRun &run, const ZQObjectID &project, quint32 first)
{
    if (project.isNull()) {
        return {};
    }
    ZQFetchRequest request = allMembersOf(project);
    request.predicate = ZQPredicate::predicateWithFormat(QStringLiteral("project == %@ AND order >= %@"),
                                                         {QVariant::fromValue(project), qint64(first)});
    Orders orders;
    const auto all = zqFetch<ZQProjectItem>(run.context(), request);
    for (const auto &membership : all.value_or(QList<ZQRef<ZQProjectItem>>())) {
        orders.insert(membership->itemKey(), membership->order());
    }
    return orders;
}

// Steps that are taken back before this one say where members were by their orders: what made room for others has to go
// back to where it was.
QList<NewOrder> changesFrom(const Orders &before, const Orders &after)
{
    QList<NewOrder> changes;
    for (auto each = before.cbegin(); each != before.cend(); ++each) {
        if (const auto now = after.constFind(each.key()); now != after.cend() && *now != each.value()) {
            changes.append({each.key(), each.value(), *now});
        }
    }
    return changes;
}

// Many new members come at the end first, where nobody has to move for each batch, and go to their place together.
void moveToPlace(EditRun &run, const ZQObjectID &project, const IDs &added, quint32 index)
{
    const auto all = members(run, allMembersOf(project));
    if (all) {
        giveOrders(run, project, ordersAfterMove(*all, {added.begin(), added.end()}, index), &NewOrder::after);
    }
}

// Adds those that are not there yet at `atIndex` and behind, and says which they were.
EditPass addition(const IDs &items, const ZQObjectID &to, quint32 atIndex, const Done &done,
                  const std::shared_ptr<QList<NewOrder>> &moved)
{
    return {
        [items, to, atIndex, done, moved](EditRun &run) {
            const auto into = sidebarItem(run.context(), to);
            const bool isPlaced = into && into->hasOrderedMembers() && atIndex != ZQSidebarBaseItem::appendIndex;
            const bool isPlacedAfterwards = isPlaced && items.size() > run.perBatch();
            const Orders before = isPlaced ? ordersOf(run, to, atIndex) : Orders();
            IDs added;
            run.inBatches(zqLocalized("Adding items…"), into ? items.size() : 0, [&](qsizetype first, qsizetype size) {
                ZQError error;
                const auto fresh =
                    notYetIn(*into, ZQLibraryBaseItem::itemsWithIDs(items.mid(first, size), run.context()), &error);
                QList<quint32> indexes;
                for (qsizetype i = 0; fresh && isPlaced && !isPlacedAfterwards && i < fresh->size(); ++i) {
                    indexes.append(atIndex + quint32(i));
                }
                if (!fresh ||
                    !into->addItems(ZQLibraryBaseItem::itemsWithIDs(*fresh, run.context()), indexes, &error)) {
                    run.presentError(error);
                    return false;
                }
                if (!run.save()) {
                    return false;
                }
                added.append(*fresh);
                return true;
            });
            done->append(added);
            run.didBring(added);
            if (isPlacedAfterwards && !added.isEmpty()) {
                moveToPlace(run, to, added, atIndex);
            }
            *moved = before.isEmpty() ? QList<NewOrder>() : changesFrom(before, ordersOf(run, to, atIndex));
            return !done->isEmpty();
        },
        zqLocalized("Adding items…")};
}

EditPass removalOf(const Done &done, const ZQObjectID &from, const std::shared_ptr<QList<NewOrder>> &moved)
{
    return {
        [done, from, moved](EditRun &run) {
            const auto container = sidebarItem(run.context(), from);
            const auto remove = [&](const IDs &batch, ZQOwnMoves &) {
                return removeBatch(run, *container, ZQLibraryBaseItem::itemsWithIDs(batch, run.context())).has_value();
            };
            const bool isDone = container && takeBack<ZQObjectID>(run, zqLocalized("Removing items…"), *done, remove);
            if (isDone && done->isEmpty()) {
                giveOrders(run, from, *moved, &NewOrder::before);
            }
            return isDone;
        },
        zqLocalized("Removing items…")};
}

constexpr qsizetype filesPerBatch = 16;   // copied and flushed before a save names them
constexpr qint64 bytesPerRow = 8LL << 20; // copying so much takes about as long as a small file

// How much work copying is; of a few large files as of many small ones.
qint64 weightOf(const IDs &items, EditContext &edits)
{
    qint64 bytes = 0;
    for (qsizetype i = 0; i < items.size() && items.size() <= filesPerBatch; ++i) {
        const auto item = edits.libraryItem(items[i]);
        bytes += item ? QFileInfo(item->findItemURL()).size() : 0;
    }
    return std::max<qint64>(items.size(), bytes / bytesPerRow);
}

IDs idsOf(const QList<CopyOfItem> &copies)
{
    IDs ids;
    for (const CopyOfItem &each : copies) {
        ids.append(each.copy);
    }
    return ids;
}

// What was copied for a batch that could not be saved is left over: the next launch sees to it.
QList<CopyOfItem> copyItems(EditRun &run, const IDs &items)
{
    QList<CopyOfItem> copies;
    run.inBatches(zqLocalized("Duplicating items…"), items.size(), [&](qsizetype first, qsizetype size) {
        const auto batch = ZQLibraryBaseItem::itemsWithIDs(items.mid(first, size), run.context());
        ZQLibraryBaseItem::lookForFiles(batch);
        QList<qsizetype> which;
        const Items made = ZQLibraryBaseItem::duplicatesOf(
            batch, [&run] { return !run.isCancelled(); }, &which);
        if (!run.save()) {
            return false;
        }
        for (qsizetype i = 0; i < made.size(); ++i) {
            copies.append({batch[which[i]]->objectID(), made[i]->objectID()});
        }
        return true;
    });
    return copies;
}

// False when it has that title already, cannot have it, which was shown, or the store could not be saved: the files are
// under the old name again then.
bool rename(EditRun &run, ZQLibraryBaseItem &item, const QString &title)
{
    const QString before = item.title();
    if (before == title || !item.setNewTitle(title)) {
        return false;
    }
    const QString thumb = item.thumbName();
    if (run.save()) {
        run.didBring({item.objectID()});
        return true;
    }
    item.setTitle(title); // as the files are named, whatever became of the change
    item.setThumbName(thumb);
    item.setNewTitle(before);
    return false;
}

} // namespace

void LibraryCommands::deleteItems(const QList<ZQObjectID> &items)
{
    const auto done = std::make_shared<IDs>(); // what was deleted before is not revived
    zqPushEdit(m_edits, nameFor(m_edits, items), {items.size(), mostAtOnce}, deletion(items, done), restoration(done));
}

void LibraryCommands::deleteItems(const QList<ZQObjectID> &items, const Done &done)
{
    if (!items.isEmpty()) {
        zqPerformEdit(m_edits, {items.size(), mostAtOnce}, deletion(items, done));
    }
}

void LibraryCommands::restoreItems(const Done &done)
{
    if (m_edits.isBusy() || !done->isEmpty()) { // what is being deleted is not in there yet
        zqPerformEdit(m_edits, {done->size(), mostAtOnce}, restoration(done));
    }
}

void LibraryCommands::removeItems(const QList<ZQObjectID> &items, const ZQObjectID &fromSidebarItem)
{
    const auto container = m_edits.sidebarItem(fromSidebarItem);
    if (!container || container->isWatchedFolder()) { // its items are in it for as long as their files are
        return;
    }
    if (container->isTag()) {
        ItemEdits(m_edits).changeTags(items, {}, {fromSidebarItem});
        return;
    }
    const auto done = std::make_shared<QList<RemovedPlace>>();
    zqPushEdit(m_edits, zqLocalized("remove items"), {items.size(), mostAtOnce}, removal(items, fromSidebarItem, done),
               returnToPlaces(fromSidebarItem, done));
}

void LibraryCommands::addItems(const QList<ZQObjectID> &items, const ZQObjectID &toSidebarItem, quint32 atIndex)
{
    const auto target = m_edits.sidebarItem(toSidebarItem);
    if (!target || items.isEmpty()) {
        return;
    }
    if (target->isTag()) {
        ItemEdits(m_edits).changeTags(items, {toSidebarItem}, {});
        return;
    }
    if (target->isWatchedFolder()) {
        LiveFolderEdits(m_edits).moveLibraryItems(items, toSidebarItem);
        return;
    }
    // Members behind the place move up, too.
    const bool isAppended = atIndex == ZQSidebarBaseItem::appendIndex || !target->hasOrderedMembers();
    const qint64 rows = items.size() + (isAppended ? 0 : std::max<qint64>(0, target->numberOfItems() - atIndex));
    const auto done = std::make_shared<IDs>();
    const auto moved = std::make_shared<QList<NewOrder>>();
    zqPushEdit(m_edits, zqLocalized("copy items"), {rows, mostAtOnce},
               addition(items, toSidebarItem, atIndex, done, moved), removalOf(done, toSidebarItem, moved));
}

void LibraryCommands::moveItems(const QList<ZQObjectID> &items, const ZQObjectID &inSidebarItem, quint32 toIndex)
{
    const auto project = m_edits.sidebarItem(inSidebarItem);
    if (!project || items.isEmpty()) {
        return;
    }
    const QSet<ZQObjectID> moved(items.begin(), items.end());
    const auto orders = std::make_shared<QList<NewOrder>>();
    const auto redo = [orders, moved, inSidebarItem, toIndex](EditRun &run) {
        const auto into = orders->isEmpty() ? sidebarItem(run.context(), inSidebarItem) : nullptr;
        if (const auto all = into ? members(run, into->contentRequest()) : ZQFetched<ZQProjectItem>()) {
            *orders = ordersAfterMove(*all, moved, toIndex);
        }
        return giveOrders(run, inSidebarItem, *orders, &NewOrder::after);
    };
    const auto undo = [orders, inSidebarItem](EditRun &run) {
        return giveOrders(run, inSidebarItem, *orders, &NewOrder::before);
    };
    zqPushEdit(m_edits, zqLocalized("move items"), {project->numberOfItems(), mostAtOnce}, {redo, {}}, {undo, {}});
}

void LibraryCommands::duplicateItems(const QList<ZQObjectID> &items, const ZQObjectID &inSidebarItem,
                                     const std::function<void(const QList<ZQObjectID> &copies)> &didMake)
{
    if (items.isEmpty()) {
        return;
    }
    const auto copies = std::make_shared<QList<CopyOfItem>>(); // all that were made; of one thread at a time
    const auto gone = std::make_shared<IDs>();                 // those of them that were taken back
    const auto moved = std::make_shared<QList<NewOrder>>();
    const EditPass make{[items, copies, gone, moved, inSidebarItem, didMake](EditRun &run) {
                            const bool isFirst = copies->isEmpty();
                            if (isFirst) {
                                *copies = copyItems(run, items);
                            }
                            const bool isDone = isFirst ? !copies->isEmpty() : restoration(gone).apply(run);
                            const Orders before = ordersOf(run, inSidebarItem, 0);
                            zqPutBesideOriginals(run, inSidebarItem, *copies);
                            *moved = changesFrom(before, ordersOf(run, inSidebarItem, 0));
                            if (isFirst && isDone && didMake) {
                                zqOnMainThread([didMake, made = idsOf(*copies)] { didMake(made); });
                            }
                            return isDone;
                        },
                        zqLocalized("Duplicating items…")};
    const EditPass takeBack{[copies, gone, moved, inSidebarItem](EditRun &run) {
                                const bool isDone = deletion(idsOf(*copies), gone).apply(run);
                                zqTakeFromOriginals(run, inSidebarItem, *gone);
                                if (gone->size() == copies->size()) {
                                    giveOrders(run, inSidebarItem, *moved, &NewOrder::before);
                                }
                                return isDone;
                            },
                            zqLocalized("Deleting items…")};
    // Files are copied, however few: never at once.
    zqPushEdit(m_edits, zqLocalized("duplicate items"), {weightOf(items, m_edits), 0, filesPerBatch}, make, takeBack);
}

void LibraryCommands::renameItem(const ZQObjectID &item, const QString &title)
{
    const auto object = m_edits.libraryItem(item);
    if (!object || title.isEmpty() || (title == object->title() && !m_edits.isBusy())) {
        return;
    }
    const auto before = std::make_shared<QString>(); // when its turn came: another renaming may wait before it
    const EditPass redo{[item, title, before](EditRun &run) {
                            const auto renamed = zqCast<ZQLibraryBaseItem>(run.context().objectWithID(item));
                            *before = renamed ? renamed->title() : title;
                            return renamed && rename(run, *renamed, title);
                        },
                        {}};
    const EditPass undo{[item, title, before](EditRun &run) {
                            const auto renamed = zqCast<ZQLibraryBaseItem>(run.context().objectWithID(item));
                            // Somebody may have named it anew since.
                            return renamed && renamed->title() == title && *before != title &&
                                   rename(run, *renamed, *before);
                        },
                        {}};
    zqPushEdit(m_edits, zqFormat(zqLocalized("rename '%@' in '%@'"), {object->title(), title}), {1, 1}, redo, undo);
}

#include "Classes/Interface/LibraryCommands.h"

#include "Classes/Interface/ItemEdits.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperation.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQProjectItem.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace {

using Items = QList<ZQRef<ZQLibraryBaseItem>>;

constexpr qsizetype batchSize = 1000;

// What one step does in a context: the window's, or one of the edit queue. It saves by calling `save`, as often as it
// likes, and stops when that fails.
using Save = std::function<bool()>;
using Change = std::function<void(ZQManagedObjectContext &context, const Save &save)>;

Items objects(WindowContext &window, const QList<ZQObjectID> &ids)
{
    return ZQLibraryBaseItem::itemsWithIDs(ids, window.context);
}

ZQRef<ZQSidebarBaseItem> sidebarItem(ZQManagedObjectContext &context, const ZQObjectID &id)
{
    return zqCast<ZQSidebarBaseItem>(context.objectWithID(id));
}

class ChangeOperation : public ZQOperation
{
public:
    ChangeOperation(WindowContext &window, Change change)
        : m_window(window), m_coordinator(window.context.persistentStoreCoordinator()), m_change(std::move(change))
    {
    }
    void main() override
    {
        ZQManagedObjectContext context(m_coordinator, ZQMergePolicy::PropertyObjectTrump);
        const auto merging = context.observeDidSave([this](const ZQContextDidSave &saved) {
            zqOnMainThreadAndWait([&] { m_window.context.mergeChangesFromContextDidSaveNotification(saved); });
        });
        m_change(context, [&] {
            ZQError error;
            const bool isSaved = context.save(&error);
            if (!isSaved) {
                zqOnMainThread([&user = m_window.user, error] { user.presentError(error); });
            }
            return isSaved;
        });
    }

private:
    WindowContext &m_window;
    std::shared_ptr<ZQPersistentStoreCoordinator> m_coordinator;
    Change m_change;
};

// Few rows are changed at once in the window's context; many on the edit queue, so that the window stays free. While
// that is busy the few wait there, too, so that everything happens in the order it was asked for.
void perform(WindowContext &window, qint64 rows, const Change &change)
{
    if (rows > LibraryCommands::mostAtOnce || window.editQueue.operationCount() > 0) {
        window.editQueue.addOperation(std::make_shared<ChangeOperation>(window, change));
        return;
    }
    change(window.context, [&window] {
        window.save();
        return true;
    });
}

void push(WindowContext &window, const QString &name, qint64 rows, const Change &redo, const Change &undo)
{
    window.undoStack.push(new BlockUndoCommand(
        name, [&window, rows, redo] { perform(window, rows, redo); },
        [&window, rows, undo] { perform(window, rows, undo); }));
}

// The same to each item, a batch a save.
Change forEachItem(const QList<ZQObjectID> &items, void (ZQLibraryBaseItem::*change)())
{
    return [items, change](ZQManagedObjectContext &context, const Save &save) {
        for (qsizetype start = 0; start < items.size(); start += batchSize) {
            for (const auto &item : ZQLibraryBaseItem::itemsWithIDs(items.mid(start, batchSize), context)) {
                (item.get()->*change)();
            }
            if (!save()) {
                return;
            }
        }
    };
}

// Deletes those that are not yet, and says which they were.
Change deletion(const QList<ZQObjectID> &items, const std::shared_ptr<QList<ZQObjectID>> &deleted)
{
    return [items, deleted](ZQManagedObjectContext &context, const Save &save) {
        deleted->clear();
        for (qsizetype start = 0; start < items.size(); start += batchSize) {
            for (const auto &item : ZQLibraryBaseItem::itemsWithIDs(items.mid(start, batchSize), context)) {
                if (item->active()) {
                    item->deleteSelf();
                    deleted->append(item->objectID());
                }
            }
            if (!save()) {
                return;
            }
        }
    };
}

QString nameFor(WindowContext &window, const QList<ZQObjectID> &ids)
{
    const auto item = ids.size() == 1 ? window.libraryItem(ids.first()) : ZQRef<ZQLibraryBaseItem>();
    return item ? zqFormat(zqLocalized("delete %@"), {item->title()}) : zqLocalized("delete items");
}

Change removal(const QList<ZQObjectID> &items, const ZQObjectID &from)
{
    return [items, from](ZQManagedObjectContext &context, const Save &save) {
        if (const auto container = sidebarItem(context, from)) {
            container->removeItems(ZQLibraryBaseItem::itemsWithIDs(items, context));
            save();
        }
    };
}

QList<ZQObjectID> notYetIn(const ZQSidebarBaseItem &target, const Items &items)
{
    const auto memberships = target.membershipsOfItems(items);
    if (!memberships) {
        return {};
    }
    QSet<qint64> present;
    for (const auto &membership : *memberships) {
        present.insert(membership->itemKey());
    }
    QList<ZQObjectID> fresh;
    for (const auto &item : items) {
        const bool isThere =
            target.hasOrderedMembers() ? present.contains(item->objectID().key) : target.containsItem(item.get());
        if (!isThere) {
            fresh.append(item->objectID());
        }
    }
    return fresh;
}

struct NewOrder
{
    ZQObjectID membership;
    qint32 before;
    qint32 after;
};

// The orders that change when the members of `moved` go before the one now at `toIndex`.
QList<NewOrder> ordersAfterMove(const ZQSidebarBaseItem &project, const QSet<ZQObjectID> &moved, quint32 toIndex)
{
    QSet<qint64> movedKeys;
    for (const ZQObjectID &id : moved) {
        movedKeys.insert(id.key);
    }
    const auto members = project.pItems();
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
                changes.append({order[i]->objectID(), order[i]->order(), qint32(i)});
            }
        }
    }
    return changes;
}

} // namespace

void LibraryCommands::deleteItems(const QList<ZQObjectID> &items)
{
    auto deleted = std::make_shared<QList<ZQObjectID>>(); // what was deleted before is not revived
    push(m_window, nameFor(m_window, items), items.size(), deletion(items, deleted),
         [deleted](ZQManagedObjectContext &context, const Save &save) {
             forEachItem(*deleted, &ZQLibraryBaseItem::restoreSelf)(context, save);
         });
}

void LibraryCommands::setDeleted(const QList<ZQObjectID> &items, bool isDeleted)
{
    if (!items.isEmpty()) {
        perform(m_window, items.size(),
                forEachItem(items, isDeleted ? &ZQLibraryBaseItem::deleteSelf : &ZQLibraryBaseItem::restoreSelf));
    }
}

void LibraryCommands::removeItems(const QList<ZQObjectID> &items, const ZQObjectID &fromSidebarItem)
{
    const auto container = m_window.sidebarItem(fromSidebarItem);
    if (!container) {
        return;
    }
    if (container->isTag()) {
        ItemEdits(m_window).changeTags(items, {}, {fromSidebarItem});
        return;
    }
    using Place = std::pair<qint32, ZQObjectID>;
    const auto places = std::make_shared<QList<Place>>();
    const auto redo = [items, fromSidebarItem, places](ZQManagedObjectContext &context, const Save &save) {
        const auto from = sidebarItem(context, fromSidebarItem);
        const Items all = from ? ZQLibraryBaseItem::itemsWithIDs(items, context) : Items();
        const auto memberships = from ? from->membershipsOfItems(all) : std::nullopt;
        if (!memberships) {
            return; // without their places, removing them could not be taken back
        }
        QHash<qint64, qint32> orders;
        for (const auto &membership : *memberships) {
            orders.insert(membership->itemKey(), membership->order());
        }
        places->clear();
        for (const auto &item : all) {
            if (!from->hasOrderedMembers() || orders.contains(item->objectID().key)) {
                places->append({orders.value(item->objectID().key), item->objectID()});
            }
        }
        removal(items, fromSidebarItem)(context, save);
    };
    const auto undo = [places, fromSidebarItem](ZQManagedObjectContext &context, const Save &save) {
        QList<ZQObjectID> ids;
        QList<qint32> orders;
        for (const auto &[order, id] : std::as_const(*places)) {
            ids.append(id);
            orders.append(order);
        }
        const Items all = ZQLibraryBaseItem::itemsWithIDs(ids, context);
        if (const auto into = sidebarItem(context, fromSidebarItem); into && all.size() == ids.size()) {
            into->restoreItems(all, orders);
            save();
        }
    };
    push(m_window, zqLocalized("remove items"), items.size(), redo, undo);
}

void LibraryCommands::addItems(const QList<ZQObjectID> &items, const ZQObjectID &toSidebarItem, quint32 atIndex)
{
    const auto target = m_window.sidebarItem(toSidebarItem);
    if (!target) {
        return;
    }
    if (target->isTag()) {
        ItemEdits(m_window).changeTags(items, {toSidebarItem}, {});
        return;
    }
    // Members behind the place move up, too.
    const bool isAppended = atIndex == ZQSidebarBaseItem::appendIndex || !target->hasOrderedMembers();
    const qint64 rows = items.size() + (isAppended ? 0 : std::max<qint64>(0, target->numberOfItems() - atIndex));
    const auto added = std::make_shared<QList<ZQObjectID>>();
    if (rows <= mostAtOnce) {
        *added = notYetIn(*target, objects(m_window, items));
        if (added->isEmpty()) {
            return;
        }
    }
    const auto redo = [items, added, toSidebarItem, atIndex](ZQManagedObjectContext &context, const Save &save) {
        const auto into = sidebarItem(context, toSidebarItem);
        if (!into) {
            return;
        }
        if (added->isEmpty()) {
            *added = notYetIn(*into, ZQLibraryBaseItem::itemsWithIDs(items, context));
        }
        QList<quint32> indexes;
        for (qsizetype i = 0; atIndex != ZQSidebarBaseItem::appendIndex && i < added->size(); ++i) {
            indexes.append(atIndex + quint32(i));
        }
        into->addItems(ZQLibraryBaseItem::itemsWithIDs(*added, context), indexes);
        save();
    };
    const auto undo = [added, toSidebarItem](ZQManagedObjectContext &context, const Save &save) {
        removal(*added, toSidebarItem)(context, save);
    };
    push(m_window, zqLocalized("copy items"), rows, redo, undo);
}

void LibraryCommands::moveItems(const QList<ZQObjectID> &items, const ZQObjectID &inSidebarItem, quint32 toIndex)
{
    const auto project = m_window.sidebarItem(inSidebarItem);
    if (!project) {
        return;
    }
    const QSet<ZQObjectID> moved(items.begin(), items.end());
    const qint64 rows = project->numberOfItems();
    const auto orders = std::make_shared<QList<NewOrder>>();
    if (rows <= mostAtOnce) {
        const auto members = project->membershipsOfItems(objects(m_window, items));
        if (!members || members->isEmpty()) {
            return;
        }
    }
    const auto apply = [orders](ZQManagedObjectContext &context, const Save &save, qint32 NewOrder::*which) {
        QList<ZQRef<ZQProjectItem>> members;
        for (const NewOrder &order : std::as_const(*orders)) {
            members.append(zqCast<ZQProjectItem>(context.objectWithID(order.membership)));
        }
        for (qsizetype i = 0; i < members.size(); ++i) {
            if (members[i]) {
                members[i]->setOrder(orders->at(i).*which);
            }
        }
        save();
    };
    const auto redo = [apply, orders, moved, inSidebarItem, toIndex](ZQManagedObjectContext &context,
                                                                     const Save &save) {
        if (const auto into = orders->isEmpty() ? sidebarItem(context, inSidebarItem) : nullptr) {
            *orders = ordersAfterMove(*into, moved, toIndex);
        }
        apply(context, save, &NewOrder::after);
    };
    const auto undo = [apply](ZQManagedObjectContext &context, const Save &save) {
        apply(context, save, &NewOrder::before);
    };
    push(m_window, zqLocalized("move items"), rows, redo, undo);
}

void LibraryCommands::duplicateItems(const QList<ZQObjectID> &items)
{
    auto copies = std::make_shared<QList<ZQObjectID>>();
    WindowContext &window = m_window;
    window.undoStack.push(new BlockUndoCommand(
        zqLocalized("duplicate items"),
        [&window, items, copies] {
            if (!copies->isEmpty()) {
                for (const auto &copy : objects(window, *copies)) {
                    copy->restoreSelf();
                }
                window.save();
                return;
            }
            const Items made = ZQLibraryBaseItem::duplicatesOf(objects(window, items));
            window.save();
            for (const auto &copy : made) {
                copies->append(copy->objectID());
            }
        },
        [&window, copies] {
            for (const auto &copy : objects(window, *copies)) {
                copy->deleteSelf();
            }
            window.save();
        }));
}

void LibraryCommands::renameItem(const ZQObjectID &item, const QString &title)
{
    const auto object = m_window.libraryItem(item);
    if (!object || title.isEmpty() || title == object->title()) {
        return;
    }
    const QString before = object->title();
    if (!object->setNewTitle(title)) {
        return; // the reason was shown
    }
    m_window.save();
    WindowContext &window = m_window;
    const auto rename = [&window, item](const QString &to) {
        if (const auto renamed = window.libraryItem(item); renamed && renamed->title() != to) {
            renamed->setNewTitle(to);
            window.save();
        }
    };
    window.undoStack.push(new BlockUndoCommand(
        zqFormat(zqLocalized("rename '%@' in '%@'"), {before, title}), [rename, title] { rename(title); },
        [rename, before] { rename(before); }));
}

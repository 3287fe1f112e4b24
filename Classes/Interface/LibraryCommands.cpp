#include "Classes/Interface/LibraryCommands.h"

#include "Classes/Interface/ItemEdits.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQProjectItem.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace {

using Items = QList<ZQRef<ZQLibraryBaseItem>>;

Items objects(WindowContext &window, const QList<ZQObjectID> &ids)
{
    window.context.fillFaults(ids);
    Items result;
    for (const ZQObjectID &id : ids) {
        if (auto item = window.libraryItem(id)) {
            result.append(std::move(item));
        }
    }
    return result;
}

QString nameFor(WindowContext &window, const QList<ZQObjectID> &ids)
{
    const auto item = ids.size() == 1 ? window.libraryItem(ids.first()) : ZQRef<ZQLibraryBaseItem>();
    return item ? zqFormat(zqLocalized("delete %@"), {item->title()}) : zqLocalized("delete items");
}

} // namespace

void LibraryCommands::deleteItems(const QList<ZQObjectID> &items)
{
    WindowContext &window = m_window;
    auto deleted = std::make_shared<QList<ZQObjectID>>(); // what was deleted before is not revived
    window.undoStack.push(new BlockUndoCommand(
        nameFor(window, items),
        [&window, items, deleted] {
            deleted->clear();
            for (const auto &item : objects(window, items)) {
                if (item->active()) {
                    item->deleteSelf();
                    deleted->append(item->objectID());
                }
            }
            window.save();
        },
        [&window, deleted] {
            for (const auto &item : objects(window, *deleted)) {
                item->restoreSelf();
            }
            window.save();
        }));
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
    QList<std::pair<qint32, ZQObjectID>> places;
    for (const auto &item : objects(m_window, items)) {
        places.append({container->orderOfItem(item.get()), item->objectID()});
    }
    std::sort(places.begin(), places.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
    WindowContext &window = m_window;
    window.undoStack.push(new BlockUndoCommand(
        zqLocalized("remove items"),
        [&window, items, fromSidebarItem] {
            if (const auto from = window.sidebarItem(fromSidebarItem)) {
                from->removeItems(objects(window, items));
                window.save();
            }
        },
        [&window, places, fromSidebarItem] {
            if (const auto into = window.sidebarItem(fromSidebarItem)) {
                for (const auto &[index, id] : places) {
                    if (const auto item = window.libraryItem(id)) {
                        into->addItem(item.get(), quint32(std::max(0, index)));
                    }
                }
                window.save();
            }
        }));
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
    QList<ZQObjectID> added;
    for (const auto &item : objects(m_window, items)) {
        if (!target->containsItem(item.get())) {
            added.append(item->objectID());
        }
    }
    if (added.isEmpty()) {
        return;
    }
    WindowContext &window = m_window;
    window.undoStack.push(new BlockUndoCommand(
        zqLocalized("copy items"),
        [&window, added, toSidebarItem, atIndex] {
            if (const auto into = window.sidebarItem(toSidebarItem)) {
                QList<quint32> indexes;
                for (qsizetype i = 0; atIndex != ZQSidebarBaseItem::appendIndex && i < added.size(); ++i) {
                    indexes.append(atIndex + quint32(i));
                }
                into->addItems(objects(window, added), indexes);
                window.save();
            }
        },
        [&window, added, toSidebarItem] {
            if (const auto from = window.sidebarItem(toSidebarItem)) {
                from->removeItems(objects(window, added));
                window.save();
            }
        }));
}

void LibraryCommands::moveItems(const QList<ZQObjectID> &items, const ZQObjectID &inSidebarItem, quint32 toIndex)
{
    const auto project = m_window.sidebarItem(inSidebarItem);
    if (!project) {
        return;
    }
    const QSet<ZQObjectID> moved(items.begin(), items.end());
    QList<std::pair<ZQObjectID, qint32>> before; // membership and its order
    QList<ZQObjectID> staying;
    QList<ZQObjectID> moving;
    qsizetype target = 0;
    const auto members = project->pItems();
    for (qsizetype i = 0; i < members.size(); ++i) {
        before.append({members[i]->objectID(), members[i]->order()});
        const auto item = members[i]->item();
        const bool moves = item && moved.contains(item->objectID());
        (moves ? moving : staying).append(members[i]->objectID());
        target += !moves && i < qsizetype(toIndex) ? 1 : 0;
    }
    if (moving.isEmpty()) {
        return;
    }
    QList<std::pair<ZQObjectID, qint32>> after;
    const QList<ZQObjectID> order = staying.first(target) + moving + staying.sliced(target);
    for (qsizetype i = 0; i < order.size(); ++i) {
        after.append({order[i], qint32(i)});
    }
    WindowContext &window = m_window;
    const auto apply = [&window](const QList<std::pair<ZQObjectID, qint32>> &orders) {
        for (const auto &[id, position] : orders) {
            if (const auto member = zqCast<ZQProjectItem>(window.context.objectWithID(id))) {
                member->setOrder(position);
            }
        }
        window.save();
    };
    window.undoStack.push(new BlockUndoCommand(
        zqLocalized("move items"), [apply, after] { apply(after); }, [apply, before] { apply(before); }));
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
            Items made;
            for (const auto &item : objects(window, items)) {
                if (auto copy = item->duplicate()) {
                    made.append(std::move(copy));
                }
            }
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

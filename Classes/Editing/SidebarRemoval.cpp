#include "Classes/Editing/SidebarRemoval.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Editing/EditStep.h"
#include "Classes/Editing/ItemEdits.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <algorithm>
#include <utility>

namespace {

using Item = ZQRef<ZQSidebarBaseItem>;

constexpr qsizetype foldersPerFetch = 500;

void collectDescendants(const Item &item, QList<ZQObjectID> &into)
{
    into.append(item->objectID());
    for (const Item &child : item->childsItems()) {
        collectDescendants(child, into);
    }
}

} // namespace

SidebarPlace SidebarPlace::of(const Item &row)
{
    SidebarPlace place{row->objectID(), {}, 0};
    if (const Item father = row->father()) {
        place.father = father->objectID();
        place.index = quint32(std::max<qsizetype>(0, father->orderedChildren().indexOf(row)));
    }
    return place;
}

void SidebarActivation::remove(const Item &row)
{
    if (row->isTag()) {
        row->setActive(false);
        add(row);
        return;
    }
    if (row->isWatchedFolder()) {
        row->ZQSidebarBaseItem::deleteSelf();
        addLiveFolder(row, false);
    } else {
        row->deleteSelf();
    }
}

void SidebarActivation::restore(const Item &row)
{
    if (row->isTag()) {
        row->setActive(true);
        add(row);
        return;
    }
    if (row->isWatchedFolder()) {
        row->ZQSidebarBaseItem::restoreSelf();
        addLiveFolder(row, true);
    } else {
        row->restoreSelf();
    }
}

// The items of one that is out of reach come back when it does.
void SidebarActivation::addLiveFolder(const Item &row, bool comes)
{
    const auto folder = zqCast<ZQSidebarWatchedFolder>(row);
    if (!comes) {
        m_goingFolders.append(row->objectID());
    } else if (folder->is_enabled() && !folder->is_missing() && !folder->is_trashed()) {
        m_comingFolders.append(row->objectID());
        folder->setLastSyncDate({}); // all of it is looked at again: its items may come only in part
    }
    if (row->isWatchedFolder() && !zqIsSubFolder(*row)) {
        m_liveFolders.append(row->objectID());
    }
}

// Half of a live folder in the library would be no state of it.
void SidebarActivation::changeItemsOfFolders(const QList<ZQObjectID> &folders, bool active)
{
    constexpr qint64 mostAtOnce = 1000;
    QList<ZQFetchRequest> requests;
    qint64 count = 0;
    for (qsizetype first = 0; first < folders.size(); first += foldersPerFetch) {
        QVariantList some;
        for (const ZQObjectID &id : folders.mid(first, foldersPerFetch)) {
            some.append(QVariant::fromValue(id));
        }
        requests.append({ZQLibraryBaseItem::entityName(),
                         ZQPredicate::predicateWithFormat(QStringLiteral("watchingFolder IN %@ AND active == %@"),
                                                          {QVariant(some), !active})});
        // What cannot be counted is much.
        count += qint64(m_edits.context.countForFetchRequest(requests.last()).value_or(mostAtOnce + 1));
    }
    if (count == 0 && !m_edits.isBusy()) { // what is under way may change that
        return;
    }
    const QString text = active ? zqLocalized("Bringing items back…") : zqLocalized("Removing items…");
    const auto apply = [requests, text, active](EditRun &run) {
        QList<ZQObjectID> items;
        for (const ZQFetchRequest &request : requests) {
            ZQError error;
            const auto found = run.context().fetchObjectIDs(request, &error);
            if (!found) {
                run.presentError(error);
                return false;
            }
            items += *found;
        }
        run.inBatches(text, items.size(), [&](qsizetype first, qsizetype size) {
            ZQSidebarWatchedFolder::setItemsActive(
                ZQLibraryBaseItem::itemsWithIDs(items.mid(first, size), run.context()), active);
            return run.save();
        });
        return true;
    };
    if (count > mostAtOnce) {
        m_edits.save(); // so that the rows are seen to go, or come, at once
    }
    zqPerformEdit(m_edits, {count, mostAtOnce}, {apply, text, true});
}

void SidebarActivation::save()
{
    changeItemsOfFolders(std::exchange(m_goingFolders, {}), false);
    changeItemsOfFolders(std::exchange(m_comingFolders, {}), true);
    if (m_tagged.isEmpty()) {
        m_edits.save();
    } else {
        ItemEdits(m_edits).saveAndRewriteFiles(m_tagged);
    }
    if (m_edits.liveFolderManager && !m_liveFolders.isEmpty()) {
        m_edits.liveFolderManager->watchedFoldersDidChange(m_liveFolders);
    }
}

void SidebarActivation::add(const Item &tag)
{
    for (const ZQObjectID &id : tag->relatedObjectIDs(QStringLiteral("taggedItems"))) {
        if (!m_known.contains(id)) {
            m_known.insert(id);
            m_tagged.append(id);
        }
    }
}

void SidebarRemoval::remove()
{
    m_places.clear();
    m_deleted.clear();
    SidebarActivation activation(m_edits);
    for (auto id = m_rows.crbegin(); id != m_rows.crend(); ++id) {
        const Item item = m_edits.sidebarItem(*id);
        if (!item || !item->active()) {
            continue;
        }
        QList<ZQObjectID> below;
        collectDescendants(item, below);
        m_places.append(SidebarPlace::of(item));
        item->removeFromFather();
        for (const ZQObjectID &each : std::as_const(below)) {
            if (const Item lower = m_edits.sidebarItem(each); lower && lower->active()) {
                activation.remove(lower);
                m_deleted.append(each);
            }
        }
    }
    activation.save();
}

void SidebarRemoval::putBack()
{
    SidebarActivation activation(m_edits);
    for (auto id = m_deleted.crbegin(); id != m_deleted.crend(); ++id) {
        if (const Item item = m_edits.sidebarItem(*id)) {
            activation.restore(item);
        }
    }
    QList<ZQObjectID> rows;
    for (auto place = m_places.crbegin(); place != m_places.crend(); ++place) {
        const Item item = m_edits.sidebarItem(place->row);
        const Item father = m_edits.sidebarItem(place->father);
        if (item && father) {
            father->addChild(item.get(), place->index);
            rows.append(place->row);
        }
    }
    activation.save();
    zqTellOfRows(m_edits, rows);
}

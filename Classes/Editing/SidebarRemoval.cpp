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

SidebarActivation::SidebarActivation(EditContext &edits)
    : m_edits(edits), m_liveItems(edits, zqLocalized("Removing items…"))
{
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

void SidebarActivation::addLiveFolder(const Item &row, bool comes)
{
    const auto folder = zqCast<ZQSidebarWatchedFolder>(row);
    comes ? m_liveItems.addComing(*folder) : m_liveItems.addGoing(row->objectID());
    if (row->isWatchedFolder() && !zqIsSubFolder(*row)) {
        m_liveFolders.append(row->objectID());
    }
}

void SidebarActivation::save()
{
    m_liveItems.change();
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

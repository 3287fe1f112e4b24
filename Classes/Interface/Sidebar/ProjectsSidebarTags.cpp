// The tags in the sidebar: new ones, and their order.

#include "Classes/Interface/Sidebar/ProjectsSidebarViewController.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQSwitch.h"

#include <QActionGroup>
#include <QMenu>

void ProjectsSidebarViewController::addNew()
{
    isTagsSide() ? addNewTag() : addNewProject();
}

void ProjectsSidebarViewController::addNewTag()
{
    m_switch->setCurrentIndex(1);
    editTitle(m_commands.addNewTag());
}

bool ProjectsSidebarViewController::areTagsSortedByTitle() const
{
    const auto label = ZQSidebarBaseItem::tagsLabelInManagedObjectContext(m_window.context);
    return label && SidebarTreeModel::isSortedByTitle(*label);
}

// Their order by hand stays beneath, and comes back.
void ProjectsSidebarViewController::sortTagsByTitle(bool byTitle)
{
    const auto label = ZQSidebarBaseItem::tagsLabelInManagedObjectContext(m_window.context);
    if (label && byTitle != SidebarTreeModel::isSortedByTitle(*label)) {
        label->setSortKeys(qint16(byTitle ? ZQSortValue::Title : ZQSortValue::Manual));
        m_window.save();
        reload();
    }
}

void ProjectsSidebarViewController::addTagOrder(QMenu &menu)
{
    auto *group = new QActionGroup(&menu);
    const bool isByTitle = areTagsSortedByTitle();
    for (const bool byTitle : {false, true}) {
        QAction *action = menu.addAction(byTitle ? zqLocalized("Sort by Title") : zqLocalized("Sort by Hand"), this,
                                         [this, byTitle] { sortTagsByTitle(byTitle); });
        action->setCheckable(true);
        action->setChecked(byTitle == isByTitle);
        group->addAction(action);
    }
}

void ProjectsSidebarViewController::showTagOrder(const QPoint &globalPoint)
{
    QMenu menu(this);
    addTagOrder(menu);
    menu.exec(globalPoint);
}

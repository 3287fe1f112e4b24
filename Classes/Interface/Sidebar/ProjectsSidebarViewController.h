#pragma once

#include "Classes/Editing/SidebarCommands.h"
#include "Classes/Interface/Sidebar/SidebarTreeView.h"
#include "Classes/Interface/WindowCommand.h"

#include <QWidget>

class LiveFolderActions;
class QMenu;
class ZQSwitch;
class QStackedWidget;
class QVBoxLayout;

// The sidebar: the projects and the tags behind a switch, and the lines of long work below them.
class ProjectsSidebarViewController : public QWidget
{
    Q_OBJECT
public:
    explicit ProjectsSidebarViewController(WindowContext &window, QWidget *parent = nullptr);

    QList<ZQObjectID> selectedItems() const;             // of the one side where something is
    void selectItems(const QList<ZQObjectID> &items);    // turns to their side
    void selectReturned(const QList<ZQObjectID> &items); // rows that are there again, with the folders around them open
    void reload();
    bool isEditing() const { return tree()->isEditing(); }
    void reloadCounts();
    void setShowsCounts(bool shows); // none before it is said
    QVBoxLayout *progressLayout() const { return m_progress; }
    QList<WindowCommand> commands();
    LiveFolderActions &liveFolders() { return *m_liveFolders; }
    // The keys of a command of the window, which the menu shows; the window sets it. Null: none.
    std::function<QKeySequence(CommandID)> keysOf;

    void addNewProject() { add(SidebarCommands::NewItem::Project); }
    void addNewFolder() { add(SidebarCommands::NewItem::Folder); }
    void addNewTag();
    void addNew(); // a tag or a project, by the side that is shown
    // After what is selected, with its name, which is what was typed, to be edited. False when there is no place for
    // it.
    bool addSmartFolder(const QString &searchText, const QString &typed, const SidebarCommands::Order &order);
    void sortTagsByTitle(bool byTitle); // or as they were ordered by hand; kept
    bool areTagsSortedByTitle() const;
    void deleteItem(); // the selection
    void deleteItemAndContent();
    void renameSidebarItem();
    bool canDuplicate() const; // one smart folder
    void duplicateItem();

    // What a drop of files on a place does.
    Qt::DropAction validateFileDrop(const QStringList &paths, const SidebarDropPlace &place) const;
    bool filesDropCanCreateProjectInSidebar(const QStringList &paths, const SidebarDropPlace &place) const;
    bool folderDropCanCreateWatchedFolderInSidebar(const QStringList &paths, const SidebarDropPlace &place) const;

Q_SIGNALS:
    void selectionChanged(); // not when only the other side is shown
    void sideChanged(bool isTags);
    void editSearchRequested();     // of the smart folder that is selected
    void nearDuplicatesRequested(); // in the library

private:
    SidebarTreeView *tree() const;
    SidebarTreeView *view(const SidebarTreeModel *model) const;
    bool isTagsSide() const;
    void selectionDidChange(SidebarTreeView *view);
    bool reload(SidebarTreeModel *model);
    void addTagOrder(QMenu &menu);
    void showTagOrder(const QPoint &globalPoint);
    QString dropHint(const QMimeData *data, const SidebarDropPlace &place) const;
    SidebarTreeView *makeTree(SidebarTreeModel *model);
    SidebarCommands::Items selectedObjects() const; // of the side shown
    static SidebarCommands::Items selectedObjects(const SidebarTreeView *view);
    void add(SidebarCommands::NewItem kind);
    void openAround(const SidebarCommands::Item &item);
    void editTitle(const SidebarCommands::Item &item);
    void endEditing(const QModelIndex &index, const QString &title);
    void selectNeighbourAfterDeletion(const ZQObjectID &neighbour);
    ZQObjectID safeNeighbour() const;
    SidebarCommands::Items deletableItems(bool withContent) const; // of what is selected
    QString withKeys(const QString &title, CommandID id) const;
    void addWhatChangesSelection(QMenu &menu);
    void showMenu(const QPoint &globalPoint);
    void pressLabelButton(const SidebarTreeView &view, const QModelIndex &label, const QPoint &globalPoint);
    bool tellOfSubFolders(const SidebarCommands::Items &items) const; // which only the disk can take away
    Qt::DropAction validate(const QMimeData *data, const SidebarDropPlace &place) const;
    bool accept(const QMimeData *data, const SidebarDropPlace &place);
    bool acceptFiles(const QStringList &paths, const SidebarDropPlace &place);
    void newSidebarItemFromDropFiles(const QStringList &paths, const SidebarDropPlace &place);
    SidebarCommands::Items draggedItems(const QMimeData *data) const;
    // From there on down, as it was kept; of a side that is not shown once it is.
    void restoreExpansion(SidebarTreeView *view, const QModelIndex &from = {});

    WindowContext &m_window;
    SidebarCommands m_commands;
    LiveFolderActions *m_liveFolders;
    ZQSwitch *m_switch;
    QStackedWidget *m_stack;
    SidebarTreeModel *m_projects;
    SidebarTreeModel *m_tags;
    QVBoxLayout *m_progress;
    bool m_isReloading = false;
    bool m_isRestoring = false; // rows open, but nobody opened them
    SidebarTreeView *m_restoredWhenShown = nullptr;
};

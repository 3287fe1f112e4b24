#include "Classes/Interface/Sidebar/ProjectsSidebarViewController.h"

#include "Classes/Editing/LibraryCommands.h"
#include "Classes/Import/ImportDoor.h"
#include "Classes/Interface/Browser/BrowserContent.h"
#include "Classes/Interface/LiveFolderStates.h"
#include "Classes/Interface/Sidebar/LiveFolderActions.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Widgets/ZQSwitch.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QBoxLayout>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMimeData>
#include <QScopedValueRollback>
#include <QStackedWidget>

#include <algorithm>
#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr qsizetype longestInMenu = 120;
constexpr auto timeForAdvice = 5s;

} // namespace

ProjectsSidebarViewController::ProjectsSidebarViewController(WindowContext &window, QWidget *parent)
    : QWidget(parent), m_window(window), m_commands(window),
      m_switch(new ZQSwitch({zqLocalized("Projects"), zqLocalized("Tags")}, this)), m_stack(new QStackedWidget(this)),
      m_projects(new SidebarTreeModel(window, SidebarTreeModel::Side::Projects, this)),
      m_tags(new SidebarTreeModel(window, SidebarTreeModel::Side::Tags, this)), m_progress(new QVBoxLayout)
{
    setObjectName(QStringLiteral("Sidebar"));
    setAttribute(Qt::WA_StyledBackground);
    m_liveFolders = new LiveFolderActions(
        window,
        [this] {
            SidebarCommands::Items items = selectedObjects(view(m_projects));
            items.removeIf([](const auto &item) { return !item->isWatchedFolder(); });
            return items;
        },
        this);
    connect(m_liveFolders, &LiveFolderActions::rowsToSelect, this, &ProjectsSidebarViewController::selectReturned);
    m_stack->addWidget(makeTree(m_projects));
    m_stack->addWidget(makeTree(m_tags));
    auto *top = new QHBoxLayout;
    top->setContentsMargins(12, 8, 12, 0);
    top->addWidget(m_switch);
    m_progress->setSpacing(0);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(top);
    layout->addWidget(m_stack, 1);
    layout->addLayout(m_progress);
    connect(m_switch, &ZQSwitch::currentIndexChanged, this, [this](int side) {
        m_stack->setCurrentIndex(side);
        if (m_restoredWhenShown == tree()) {
            restoreExpansion(tree());
        }
        Q_EMIT sideChanged(side == 1);
    });
    reload();
}

SidebarTreeView *ProjectsSidebarViewController::makeTree(SidebarTreeModel *model)
{
    auto *view = new SidebarTreeView(this);
    const bool isTags = model->side() == SidebarTreeModel::Side::Tags;
    view->setAccessibleName(isTags ? zqLocalized("Tags") : zqLocalized("Projects"));
    view->setTree(model);
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    view->validateDrop = [this](const QMimeData *mime, const SidebarDropPlace &place) { return validate(mime, place); };
    view->dropHint = [this](const QMimeData *mime, const SidebarDropPlace &place) { return dropHint(mime, place); };
    view->acceptDrop = [this](const QMimeData *mime, const SidebarDropPlace &place) { return accept(mime, place); };
    view->makeDrag = [this, model](const QModelIndexList &indexes) {
        QStringList uris;
        const QUuid store = m_window.context.persistentStoreCoordinator()->storeUUID();
        for (const QModelIndex &index : indexes) {
            uris.append(model->item(index)->objectID().URIRepresentation(store));
        }
        auto *mime = new QMimeData;
        mime->setData(SidebarTreeView::elementMimeType, uris.join(u'\n').toUtf8());
        return mime;
    };
    connect(view, &SidebarTreeView::labelButtonPressed, this,
            [this, view](const QModelIndex &label, const QPoint &point) { pressLabelButton(*view, label, point); });
    connect(view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this, view] { selectionDidChange(view); });
    const auto keepExpansion = [this, model](const QModelIndex &index, bool expanded) {
        const auto item = model->item(index);
        if (!m_isReloading && !m_isRestoring && item && item->expanded() != expanded) {
            item->setExpanded(expanded);
            m_window.save();
        }
    };
    connect(view, &QTreeView::expanded, this, [this, view, keepExpansion](const QModelIndex &index) {
        keepExpansion(index, true);
        if (!m_isRestoring) {
            restoreExpansion(view, index);
        }
    });
    connect(view, &QTreeView::collapsed, this,
            [keepExpansion](const QModelIndex &index) { keepExpansion(index, false); });
    connect(view, &QWidget::customContextMenuRequested, this, [this, view](const QPoint &point) {
        const QModelIndex index = view->indexAt(point);
        if (index.isValid() && (index.flags() & Qt::ItemIsSelectable) && !view->selectionModel()->isSelected(index)) {
            view->setCurrentIndex(index);
        }
        showMenu(view->viewport()->mapToGlobal(point));
    });
    connect(model, &SidebarTreeModel::renamed, this, &ProjectsSidebarViewController::endEditing, Qt::QueuedConnection);
    return view;
}

SidebarTreeView *ProjectsSidebarViewController::tree() const
{
    return static_cast<SidebarTreeView *>(m_stack->currentWidget());
}

SidebarTreeView *ProjectsSidebarViewController::view(const SidebarTreeModel *model) const
{
    return static_cast<SidebarTreeView *>(m_stack->widget(model == m_tags ? 1 : 0));
}

bool ProjectsSidebarViewController::isTagsSide() const
{
    return m_switch->currentIndex() == 1;
}

// What is shown is chosen on one side: turning to the other chooses nothing, so that items can be dragged there.
void ProjectsSidebarViewController::selectionDidChange(SidebarTreeView *changed)
{
    if (m_isReloading) {
        return;
    }
    if (changed->selectionModel()->hasSelection()) {
        m_isReloading = true;
        view(changed->tree() == m_tags ? m_projects : m_tags)->clearSelection();
        m_isReloading = false;
    }
    Q_EMIT selectionChanged();
}

QList<ZQObjectID> ProjectsSidebarViewController::selectedItems() const
{
    QList<ZQObjectID> ids;
    for (const SidebarTreeModel *model : {m_projects, m_tags}) {
        for (const auto &item : selectedObjects(view(model))) {
            ids.append(item->objectID());
        }
    }
    return ids;
}

SidebarCommands::Items ProjectsSidebarViewController::selectedObjects() const
{
    return selectedObjects(tree());
}

SidebarCommands::Items ProjectsSidebarViewController::selectedObjects(const SidebarTreeView *view)
{
    QModelIndexList indexes = view->selectionModel()->selectedIndexes();
    std::sort(indexes.begin(), indexes.end(), [view](const QModelIndex &a, const QModelIndex &b) {
        return view->visualRect(a).top() < view->visualRect(b).top();
    });
    SidebarCommands::Items items;
    for (const QModelIndex &index : std::as_const(indexes)) {
        if (const auto item = view->tree()->item(index)) {
            items.append(item);
        }
    }
    return items;
}

void ProjectsSidebarViewController::selectItems(const QList<ZQObjectID> &items)
{
    if (items.isEmpty()) {
        return;
    }
    const bool isTag = !m_projects->indexOf(items.first()).isValid() && m_tags->indexOf(items.first()).isValid();
    m_switch->setCurrentIndex(isTag ? 1 : 0);
    QItemSelection selection;
    for (const ZQObjectID &id : items) {
        const QModelIndex index = tree()->tree()->indexOf(id);
        if (index.isValid() && index.flags() & Qt::ItemIsSelectable) {
            selection.select(index, index);
        }
    }
    if (selection.indexes().isEmpty()) {
        return;
    }
    const QModelIndex first = selection.indexes().first();
    tree()->selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
    tree()->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    tree()->scrollTo(first);
}

void ProjectsSidebarViewController::reload()
{
    m_isReloading = true;
    const bool projects = reload(m_projects);
    const bool tags = reload(m_tags);
    m_isReloading = false;
    if (projects || tags) {
        Q_EMIT selectionChanged();
    }
}

// Whether something else is selected afterwards: when all of what was selected is gone, the row that is nearest.
bool ProjectsSidebarViewController::reload(SidebarTreeModel *model)
{
    SidebarTreeView *const tree = view(model);
    QList<ZQObjectID> before;
    for (const auto &item : selectedObjects(tree)) {
        before.append(item->objectID());
    }
    const QList<ZQObjectID> neighbours = before.isEmpty() ? before : tree->neighboursOfSelection();
    const SidebarTreeView::TopRow top = tree->topRow();
    model->reload();
    restoreExpansion(tree);
    const auto select = [&](const ZQObjectID &id) {
        const QModelIndex index = model->indexOf(id);
        if (index.isValid()) {
            tree->selectionModel()->setCurrentIndex(index, QItemSelectionModel::Select);
        }
        return index.isValid();
    };
    qsizetype kept = 0;
    for (const ZQObjectID &id : before) {
        kept += select(id) ? 1 : 0;
    }
    if (kept == 0) {
        std::any_of(neighbours.begin(), neighbours.end(), select);
    }
    if (kept == before.size()) { // nothing else is to be seen
        tree->keepOnTop(top);
    }
    if (model->hasUncounted()) {
        model->reloadCounts();
    }
    return kept != before.size();
}

void ProjectsSidebarViewController::restoreExpansion(SidebarTreeView *view, const QModelIndex &from)
{
    if (view != tree()) {
        m_restoredWhenShown = view;
        return;
    }
    m_restoredWhenShown = from.isValid() ? m_restoredWhenShown : nullptr;
    const auto restore = [view](const auto &self, const QModelIndex &parent) -> void {
        for (int row = 0; row < view->model()->rowCount(parent); ++row) {
            const QModelIndex index = view->model()->index(row, 0, parent);
            if (!view->model()->hasChildren(index)) {
                continue;
            }
            const auto item = view->tree()->item(index);
            const bool isOpen = item->expanded() || (item->isLabel() && item->expandedIsNull());
            view->setExpanded(index, isOpen);
            if (isOpen) { // what is closed is gone through when it opens
                self(self, index);
            }
        }
    };
    const QScopedValueRollback restoring(m_isRestoring, true);
    restore(restore, from);
    if (view->tree()->hasUncounted()) {
        view->tree()->reloadCounts();
    }
}

void ProjectsSidebarViewController::setShowsCounts(bool shows)
{
    m_projects->setShowsCounts(shows);
    m_tags->setShowsCounts(shows);
}

void ProjectsSidebarViewController::reloadCounts()
{
    m_projects->reloadCounts();
    m_tags->reloadCounts();
}

QList<WindowCommand> ProjectsSidebarViewController::commands()
{
    return QList<WindowCommand>{
               {CommandID::NewProject, zqLocalized("New Project"), {Qt::CTRL | Qt::Key_N}, [this] { addNewProject(); }},
               {CommandID::NewFolder,
                zqLocalized("New Folder"),
                {Qt::CTRL | Qt::SHIFT | Qt::Key_N},
                [this] { addNewFolder(); }},
               {CommandID::NewTag, zqLocalized("New Tag"), {}, [this] { addNewTag(); }}} +
           m_liveFolders->commands();
}

void ProjectsSidebarViewController::add(SidebarCommands::NewItem kind)
{
    m_switch->setCurrentIndex(0);
    const auto selected = selectedObjects();
    editTitle(m_commands.addNewListItem(kind, selected.isEmpty() ? SidebarCommands::Item() : selected.last()));
}

bool ProjectsSidebarViewController::addSmartFolder(const QString &searchText, const QString &typed,
                                                   const SidebarCommands::Order &order)
{
    m_switch->setCurrentIndex(0);
    const auto selected = selectedObjects();
    const auto beside = selected.isEmpty() ? SidebarCommands::Item() : selected.last();
    const auto item = m_commands.addSmartFolder(searchText, SidebarCommands::nameOfSearch(typed), beside, order);
    editTitle(item);
    return bool(item);
}

void ProjectsSidebarViewController::openAround(const SidebarCommands::Item &item)
{
    for (auto above = item->father(); above; above = above->father()) {
        tree()->setExpanded(tree()->tree()->indexOf(above->objectID()), true);
    }
}

// Not while a name is typed: the editor would close.
void ProjectsSidebarViewController::selectReturned(const QList<ZQObjectID> &items)
{
    if (isEditing()) {
        return;
    }
    reload();
    selectItems(items); // turns to their side
    for (const ZQObjectID &id : items) {
        if (const auto item = m_window.sidebarItem(id)) {
            openAround(item);
        }
    }
}

void ProjectsSidebarViewController::editTitle(const SidebarCommands::Item &item)
{
    if (!item) {
        return;
    }
    reload();
    openAround(item);
    selectItems({item->objectID()});
    tree()->setFocus();
    tree()->edit(tree()->tree()->indexOf(item->objectID()));
}

void ProjectsSidebarViewController::endEditing(const QModelIndex &index, const QString &title)
{
    const auto item = tree()->tree()->item(index);
    if (!item || m_commands.validateNewTitle(title, item) || item->isTag()) {
        return;
    }
    tree()->edit(tree()->tree()->indexOf(item->objectID()));
}

// The row that takes the selection when the selected ones go: below, else above, never a label or one that goes too.
ZQObjectID ProjectsSidebarViewController::safeNeighbour() const
{
    const auto gone = selectedObjects();
    const auto isSafe = [&](const QModelIndex &index) {
        const auto item = tree()->tree()->item(index);
        const bool goesToo = std::any_of(gone.begin(), gone.end(), [&item](const auto &other) {
            return item == other || item->isDescendantOfItem(other.get());
        });
        return !item->isLabel() && !goesToo;
    };
    if (gone.isEmpty()) {
        return {};
    }
    const QModelIndex start = tree()->tree()->indexOf(gone.last()->objectID());
    for (QModelIndex index = tree()->indexBelow(start); index.isValid(); index = tree()->indexBelow(index)) {
        if (isSafe(index)) {
            return tree()->tree()->item(index)->objectID();
        }
    }
    for (QModelIndex index = tree()->indexAbove(start); index.isValid(); index = tree()->indexAbove(index)) {
        if (isSafe(index)) {
            return tree()->tree()->item(index)->objectID();
        }
    }
    return {};
}

SidebarCommands::Items ProjectsSidebarViewController::deletableItems(bool withContent) const
{
    SidebarCommands::Items items = selectedObjects();
    items.removeIf([withContent](const auto &item) {
        return item->isFixed() || zqIsSubFolder(*item) || (withContent && !item->isProject() && !item->isFolder());
    });
    return items;
}

void ProjectsSidebarViewController::deleteItem()
{
    const SidebarCommands::Items items = deletableItems(false);
    if (items.isEmpty() && tellOfSubFolders(selectedObjects())) {
        return;
    }
    const ZQObjectID neighbour = safeNeighbour();
    if (m_commands.deleteSidebarItem(items)) {
        selectNeighbourAfterDeletion(neighbour);
    }
}

void ProjectsSidebarViewController::deleteItemAndContent()
{
    const SidebarCommands::Items items = deletableItems(true);
    const ZQObjectID neighbour = safeNeighbour();
    if (m_commands.deleteSidebarItemAndRemoveContentFromLibrary(items)) {
        selectNeighbourAfterDeletion(neighbour);
    }
}

void ProjectsSidebarViewController::selectNeighbourAfterDeletion(const ZQObjectID &neighbour)
{
    reload(); // what it chooses gives way to the neighbour
    selectItems({neighbour});
}

void ProjectsSidebarViewController::renameSidebarItem()
{
    const QModelIndex index = tree()->currentIndex();
    if (tree()->selectionModel()->isSelected(index) && (index.flags() & Qt::ItemIsEditable)) {
        tree()->setFocus();
        tree()->edit(index);
    }
}

bool ProjectsSidebarViewController::canDuplicate() const
{
    const SidebarCommands::Items selected = selectedObjects();
    return selected.size() == 1 && selected.first()->isSmartFolder();
}

void ProjectsSidebarViewController::duplicateItem()
{
    if (!canDuplicate()) {
        return;
    }
    if (const auto copy = m_commands.duplicateSmartFolder(selectedObjects().first())) {
        reload();
        selectItems({copy->objectID()});
    }
}

QString ProjectsSidebarViewController::withKeys(const QString &title, CommandID id) const
{
    const QKeySequence keys = keysOf ? keysOf(id) : QKeySequence();
    return keys.isEmpty() ? title : zqTitleWithKeys(title, keys);
}

void ProjectsSidebarViewController::addWhatChangesSelection(QMenu &menu)
{
    const SidebarCommands::Items selected = selectedObjects();
    const SidebarCommands::Items deletable = deletableItems(false);
    if (deletable.isEmpty()) {
        return;
    }
    menu.addSeparator();
    if (selected.size() == 1 && selected.first()->isSmartFolder()) {
        menu.addAction(zqLocalized("Edit Search…"), this, &ProjectsSidebarViewController::editSearchRequested);
        menu.addAction(withKeys(zqLocalized("Duplicate"), CommandID::Duplicate), this,
                       &ProjectsSidebarViewController::duplicateItem);
    }
    if (selected.size() == 1 && !selected.first()->isWatchedFolder()) {
        menu.addAction(withKeys(zqLocalized("Rename"), CommandID::Rename), this,
                       &ProjectsSidebarViewController::renameSidebarItem);
    }
    // Of a mixed selection each entry says what it takes.
    const auto nameOf = [](const SidebarCommands::Items &items) {
        return items.size() == 1 ? items.first()->title() : zqFormat(zqLocalized("%d Items"), {int(items.size())});
    };
    const QString deletion = zqFormat(zqLocalized("Delete %@"), {nameOf(deletable)});
    menu.addAction(withKeys(deletion, CommandID::Remove), this, &ProjectsSidebarViewController::deleteItem);
    if (const auto withContent = deletableItems(true); !withContent.isEmpty()) {
        menu.addAction(zqFormat(zqLocalized("Delete %@ and Content"), {nameOf(withContent)}), this,
                       &ProjectsSidebarViewController::deleteItemAndContent);
    }
}

bool ProjectsSidebarViewController::tellOfSubFolders(const SidebarCommands::Items &items) const
{
    const auto found = std::find_if(items.begin(), items.end(), [](const auto &item) { return zqIsSubFolder(*item); });
    if (found == items.end()) {
        return false;
    }
    m_window.user.showNotificationWithText(
        zqFormat(zqLocalized("“%@” is a folder on the disk. It goes from here when it goes from there."),
                 {zqShortened((*found)->title(), longestInMenu)}),
        NotificationPlace::Sidebar, timeForAdvice);
    return true;
}

void ProjectsSidebarViewController::pressLabelButton(const SidebarTreeView &view, const QModelIndex &label,
                                                     const QPoint &globalPoint)
{
    if (view.tree() == m_tags) {
        showTagOrder(globalPoint);
    } else if (ZQSidebarKind(view.tree()->item(label)->kind()) == ZQSidebarKind::WatchedFoldersLabel) {
        m_liveFolders->addNewWatchedFolder();
    }
}

void ProjectsSidebarViewController::showMenu(const QPoint &globalPoint)
{
    QMenu menu(this);
    if (isTagsSide()) {
        menu.addAction(withKeys(zqLocalized("New Tag"), CommandID::NewTag), this,
                       &ProjectsSidebarViewController::addNewTag);
        menu.addSeparator();
        addTagOrder(menu);
    } else {
        menu.addAction(withKeys(zqLocalized("New Project"), CommandID::NewProject), this,
                       &ProjectsSidebarViewController::addNewProject);
        menu.addAction(withKeys(zqLocalized("New Folder"), CommandID::NewFolder), this,
                       &ProjectsSidebarViewController::addNewFolder);
        if (m_window.liveFolders) {
            menu.addAction(zqLocalized("Add Live Folder…"), m_liveFolders, &LiveFolderActions::addNewWatchedFolder);
        }
        m_liveFolders->addToMenu(menu);
    }
    const SidebarCommands::Items selected = selectedObjects();
    if (selected.size() == 1 && selected.first()->isLibrary()) {
        menu.addSeparator();
        menu.addAction(zqLocalized("Find Near-Duplicates…"), this,
                       &ProjectsSidebarViewController::nearDuplicatesRequested);
    }
    addWhatChangesSelection(menu);
    menu.exec(globalPoint);
}

#include "Classes/Interface/Browser/BrowserListStyle.h"

#include "Classes/Interface/Browser/BrowserHead.h"
#include "Classes/Interface/Browser/BrowserListColumns.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQIcon.h"
#include "Kit/Widgets/ZQListHead.h"

#include <QAction>
#include <QToolButton>

BrowserListStyle::BrowserListStyle(BrowserContent &content, BrowserHead &head, ZQGridView &grid, QObject *parent)
    : QObject(parent), m_content(content), m_head(head), m_grid(grid)
{
    const auto button = [&](const char *icon, const QString &name, bool isList) {
        auto *result = new QToolButton(&head);
        result->setIcon(ZQIcon::icon(QLatin1StringView(icon)));
        result->setIconSize({14, 14});
        result->setFixedSize(26, 26);
        result->setCheckable(true);
        result->setFocusPolicy(Qt::TabFocus);
        result->setAccessibleName(name);
        result->setToolTip(name);
        connect(result, &QToolButton::clicked, this, [this, isList] { setShowsList(isList); });
        head.addButton(result);
        return result;
    };
    m_asGrid = button("grid", zqLocalized("As Grid"), false);
    m_asList = button("menu", zqLocalized("As List"), true);

    ZQListHead &titles = grid.listHead();
    ZQViewColumns columns = BrowserListColumns::all();
    columns.restore(ZQUserDefaults::standardUserDefaults().objectForKey(columnsPreference).toMap());
    titles.setColumns(columns);
    m_byHand = new QAction(zqLocalized("Manual order"), &titles);
    m_byHand->setCheckable(true);
    connect(m_byHand, &QAction::triggered, this,
            [this] { m_head.setSort(ZQSortValue::Manual, m_content.tab().sortDirectionValue()); });
    titles.addAction(m_byHand);
    connect(&titles, &ZQListHead::sortRequested, this, &BrowserListStyle::sortBy);
    connect(&titles, &ZQListHead::columnsChanged, this, [this] {
        ZQUserDefaults::standardUserDefaults().setObjectForKey(m_grid.listHead().columns().state(), columnsPreference);
        showOrder();
    });
    connect(&grid, &ZQGridView::collapsedGroupsChanged, this,
            [this] { m_content.tab().view.collapsedGroups = m_grid.collapsedGroups(); });
}

bool BrowserListStyle::showsList() const
{
    const TabState &tab = m_content.tab();
    return tab.view.showsList.value_or(false) && tab.browserCanShowListStyle();
}

void BrowserListStyle::showTab()
{
    const bool isList = showsList();
    m_grid.setCollapsedGroups(m_content.tab().view.collapsedGroups);
    m_grid.setShowsList(isList);
    m_content.setShowsValues(isList);
    m_asGrid->setChecked(!isList);
    m_asList->setChecked(isList);
    m_asList->setEnabled(m_content.tab().browserCanShowListStyle());
    showOrder();
}

void BrowserListStyle::setShowsList(bool showsList)
{
    m_content.tab().view.showsList = showsList;
    showTab();
    Q_EMIT changed();
}

// What a column shows needs no words in the head.
void BrowserListStyle::showOrder()
{
    const TabState &tab = m_content.tab();
    const QString column = BrowserListColumns::columnOf(tab.sortKeysValue());
    m_grid.listHead().setSort(column, tab.sortDirectionValue());
    m_byHand->setVisible(m_head.canSortBy(ZQSortValue::Manual));
    m_byHand->setChecked(tab.sortKeysValue() == ZQSortValue::Manual);
    m_head.setShowsOrder(!showsList() || column.isEmpty() || !m_grid.listHead().columns().isShown(column));
}

// The same column once more turns the order round.
void BrowserListStyle::sortBy(const QString &column)
{
    const auto sort = BrowserListColumns::sortOf(column);
    if (!sort) {
        return;
    }
    const TabState &tab = m_content.tab();
    const bool isSame = tab.sortKeysValue() == sort->value;
    m_head.setSort(sort->value, isSame ? !tab.sortDirectionValue() : sort->isAscendingFirst);
}

QList<WindowCommand> BrowserListStyle::commands()
{
    QList<WindowCommand> result = {
        {.id = CommandID::ShowAsGrid,
         .title = zqLocalized("As Grid"),
         .keys = {Qt::CTRL | Qt::ALT | Qt::Key_1},
         .run = [this] { setShowsList(false); },
         .isChecked = [this] { return !showsList(); }},
        {.id = CommandID::ShowAsList,
         .title = zqLocalized("As List"),
         .keys = {Qt::CTRL | Qt::ALT | Qt::Key_2},
         .run = [this] { setShowsList(true); },
         .isEnabled = [this] { return m_content.tab().browserCanShowListStyle(); },
         .isChecked = [this] { return showsList(); }},
    };
    for (const bool collapses : {true, false}) {
        const Qt::Key key = collapses ? Qt::Key_Left : Qt::Key_Right;
        const auto hasGroups = [this] { return m_grid.gridLayout().hasHeads(); };
        result.append({.id = collapses ? CommandID::CollapseGroup : CommandID::ExpandGroup,
                       .title = collapses ? zqLocalized("Collapse Group") : zqLocalized("Expand Group"),
                       .keys = {QKeySequence(Qt::ALT | key)},
                       .run = [this, collapses] { m_grid.setGroupCollapsed(m_grid.currentGroup(), collapses); },
                       .isEnabled = hasGroups,
                       .keysIn = &m_grid});
        result.append({.id = collapses ? CommandID::CollapseAllGroups : CommandID::ExpandAllGroups,
                       .title = collapses ? zqLocalized("Collapse All Groups") : zqLocalized("Expand All Groups"),
                       .keys = {QKeySequence(Qt::ALT | Qt::SHIFT | key)},
                       .run = [this, collapses] { m_grid.setAllGroupsCollapsed(collapses); },
                       .isEnabled = hasGroups,
                       .keysIn = &m_grid});
    }
    return result;
}

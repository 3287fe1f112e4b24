// The order and the groups of what the browser shows: its head, menus and commands.

#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QLabel>
#include <QMenu>
#include <QToolButton>

namespace {

struct SortChoice
{
    ZQSortValue value;
    const char *title;
};
constexpr SortChoice sortChoices[] = {
    {ZQSortValue::Manual, "Manual order"},
    {ZQSortValue::ImportDate, "Import date"},
    {ZQSortValue::Title, "Title"},
    {ZQSortValue::Size, "Size"},
    {ZQSortValue::Color, "Color"},
    {ZQSortValue::ModificationDate, "Modification date"},
    {ZQSortValue::CreationDate, "Creation date"},
    {ZQSortValue::None, "Sidebar order"},
};

struct GroupChoice
{
    BrowserDisplayStyle style;
    const char *title;
};
constexpr GroupChoice groupChoices[] = {
    {BrowserDisplayStyle::Plain, "None"},
    {BrowserDisplayStyle::BySidebarItem, "Sidebar item"},
    {BrowserDisplayStyle::ByExtension, "Extension"},
    {BrowserDisplayStyle::ByColor, "Color"},
    {BrowserDisplayStyle::BySize, "Size"},
};

template <class Choice, size_t count, class Value>
QString titleOf(const Choice (&choices)[count], Value Choice::*key, Value value)
{
    for (const Choice &choice : choices) {
        if (choice.*key == value) {
            return zqLocalized(choice.title);
        }
    }
    return zqLocalized("None");
}

} // namespace

void BrowserViewController::updateHead()
{
    const TabState &tab = m_content->tab();
    m_title->setText(tab.tabName());
    m_count->setText(countText());
    const BrowserDisplayStyle style = tab.browserDisplayStyleValue();
    const QString grouping = titleOf(groupChoices, &GroupChoice::style, style);
    m_group->setText(grouping + QStringLiteral(" ▾"));
    m_group->setAccessibleName(zqFormat(zqLocalized("Group: %@"), {grouping}));
    const ZQSortValue value = tab.sortKeysValue();
    // What has no order of its own is listed by title.
    const bool isByTitle = value == ZQSortValue::Manual && tab.hasWatchedFolders();
    m_sort->setText(titleOf(sortChoices, &SortChoice::value, isByTitle ? ZQSortValue::Title : value));
    m_sort->setAccessibleName(zqFormat(zqLocalized("Sort: %@"), {m_sort->text()}));
    const bool ascending = tab.sortDirectionValue();
    m_direction->setVisible(hasDirection());
    m_direction->setIcon(ZQIcon::icon(ascending ? QStringLiteral("arrow-up") : QStringLiteral("arrow-down")));
    m_direction->setAccessibleName(ascending ? zqLocalized("Ascending") : zqLocalized("Descending"));
    m_direction->setToolTip(m_direction->accessibleName());
}

bool BrowserViewController::canSortBy(ZQSortValue value) const
{
    const TabState &tab = m_content->tab();
    if (value == ZQSortValue::Manual) {
        return tab.browserCanManuallySort();
    }
    const auto single = m_content->singleItem();
    return value != ZQSortValue::None || tab.sidebarSelectedItems().size() > 1 || (single && single->isFolder());
}

bool BrowserViewController::hasDirection() const
{
    const ZQSortValue value = m_content->tab().sortKeysValue();
    return value != ZQSortValue::Manual && value != ZQSortValue::None;
}

void BrowserViewController::showSortMenu()
{
    QMenu menu(this);
    const TabState &tab = m_content->tab();
    const bool ascending = tab.sortDirectionValue();
    const auto add = [&](const QString &title, ZQSortValue value, bool direction, bool isChecked) {
        QAction *action = menu.addAction(title, this, [this, value, direction] { setSort(value, direction); });
        action->setCheckable(true);
        action->setChecked(isChecked);
    };
    for (const SortChoice &choice : sortChoices) {
        if (canSortBy(choice.value)) {
            add(zqLocalized(choice.title), choice.value, ascending, choice.value == tab.sortKeysValue());
        }
    }
    if (hasDirection()) {
        menu.addSeparator();
        add(zqLocalized("Ascending"), tab.sortKeysValue(), true, ascending);
        add(zqLocalized("Descending"), tab.sortKeysValue(), false, !ascending);
    }
    menu.exec(m_sort->mapToGlobal(QPoint(0, m_sort->height() + 2)));
}

void BrowserViewController::showGroupMenu()
{
    QMenu menu(this);
    for (const GroupChoice &choice : groupChoices) {
        QAction *action =
            menu.addAction(zqLocalized(choice.title), this, [this, choice] { setDisplayStyle(choice.style); });
        action->setCheckable(true);
        action->setChecked(choice.style == m_content->tab().browserDisplayStyleValue());
    }
    menu.exec(m_group->mapToGlobal(QPoint(0, m_group->height() + 2)));
}

void BrowserViewController::setSort(ZQSortValue value, bool ascending)
{
    m_content->setSort(value, ascending);
    updateHead();
    Q_EMIT orderChanged();
    Q_EMIT viewChanged();
}

void BrowserViewController::setDisplayStyle(BrowserDisplayStyle style)
{
    m_content->setDisplayStyle(style);
    updateHead();
    Q_EMIT orderChanged();
    Q_EMIT viewChanged();
}

QList<WindowCommand> BrowserViewController::orderCommands()
{
    const auto id = [](CommandID first, auto value) { return CommandID(int(first) + int(value)); };
    QList<WindowCommand> result;
    for (const GroupChoice &choice : groupChoices) {
        result.append(
            {.id = id(CommandID::GroupPlain, choice.style),
             .title = zqLocalized(choice.title),
             .keys = {},
             .run = [this, choice] { setDisplayStyle(choice.style); },
             .isChecked = [this, choice] { return m_content->tab().browserDisplayStyleValue() == choice.style; }});
    }
    for (const SortChoice &choice : sortChoices) {
        result.append({.id = id(CommandID::SortManually, choice.value),
                       .title = zqLocalized(choice.title),
                       .keys = {},
                       .run = [this, choice] { setSort(choice.value, m_content->tab().sortDirectionValue()); },
                       .isEnabled = [this, choice] { return canSortBy(choice.value); },
                       .isChecked = [this, choice] { return m_content->tab().sortKeysValue() == choice.value; }});
    }
    for (const bool ascending : {true, false}) {
        result.append(
            {.id = ascending ? CommandID::SortAscending : CommandID::SortDescending,
             .title = ascending ? zqLocalized("Ascending") : zqLocalized("Descending"),
             .keys = {},
             .run = [this, ascending] { setSort(m_content->tab().sortKeysValue(), ascending); },
             .isEnabled = [this] { return hasDirection(); },
             .isChecked =
                 [this, ascending] { return hasDirection() && m_content->tab().sortDirectionValue() == ascending; }});
    }
    return result;
}

#include "Classes/Interface/Browser/BrowserHead.h"

#include "Classes/Browsing/Index/ListOrder.h"
#include "Classes/Browsing/Search/LikeArgument.h"
#include "Classes/Interface/Browser/BrowserContent.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQElidedLabel.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QToolButton>

#include <algorithm>

namespace {

struct SortChoice
{
    ZQSortValue value;
    const char *title;
};
constexpr SortChoice sortChoices[] = {
    {ZQSortValue::Manual, zqKey("Manual order")},
    {ZQSortValue::ImportDate, zqKey("Import date")},
    {ZQSortValue::Title, zqKey("Title")},
    {ZQSortValue::Size, zqKey("Size")},
    {ZQSortValue::Color, zqKey("Color")},
    {ZQSortValue::ModificationDate, zqKey("Modification date")},
    {ZQSortValue::CreationDate, zqKey("Creation date")},
    {ListOrder::byKind, zqKey("Kind")},
    {ListOrder::byRating, zqKey("Rating")},
    {ListOrder::byTags, zqKey("Tags")},
    {ListOrder::byHue, zqKey("Hue")},
    {ZQSortValue::None, zqKey("Sidebar order")},
};

CommandID idOfSort(ZQSortValue value)
{
    return value < ListOrder::byKind ? CommandID(int(CommandID::SortManually) + int(value))
                                     : CommandID(int(CommandID::SortByKind) + int(value) - int(ListOrder::byKind));
}

struct GroupChoice
{
    BrowserDisplayStyle style;
    const char *title;
};
constexpr GroupChoice groupChoices[] = {
    {BrowserDisplayStyle::Plain, zqKey("None")},
    {BrowserDisplayStyle::BySidebarItem, zqKey("Sidebar item")},
    {BrowserDisplayStyle::ByExtension, zqKey("Extension")},
    {BrowserDisplayStyle::ByColor, zqKey("Color")},
    {BrowserDisplayStyle::BySize, zqKey("Size")},
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

BrowserHead::BrowserHead(BrowserContent &content, QWidget *parent)
    : QWidget(parent), m_content(content), m_title(new ZQElidedLabel(this)), m_count(new QLabel(this)),
      m_buttons(new QWidget(this))
{
    setFixedHeight(ZQMeasure::headHeight);
    m_title->setObjectName(QStringLiteral("Title"));
    m_count->setObjectName(QStringLiteral("Muted"));
    const auto [groupCaption, group] = makeChoice(zqLocalized("Group"), zqLocalized("Group by"));
    m_group = group;
    connect(m_group, &QToolButton::clicked, this, &BrowserHead::showGroupMenu);
    const auto [sortCaption, sort] = makeChoice(zqLocalized("Sort"), zqLocalized("Sort by"));
    m_sort = sort;
    m_groupCaption = groupCaption;
    m_sortCaption = sortCaption;
    connect(m_sort, &QToolButton::clicked, this, &BrowserHead::showSortMenu);
    m_direction = new QToolButton(this);
    m_direction->setFixedSize(26, 26);
    m_direction->setIconSize({14, 14});
    connect(m_direction, &QToolButton::clicked, this,
            [this] { setSort(m_content.tab().sortKeysValue(), !m_content.tab().sortDirectionValue()); });
    auto *buttons = new QHBoxLayout(m_buttons);
    buttons->setContentsMargins(0, 0, 8, 0);
    buttons->setSpacing(2);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(20, 0, 14, 0);
    row->addWidget(m_title);
    row->addSpacing(8);
    row->addWidget(m_count);
    row->addStretch(1);
    row->addWidget(m_buttons);
    row->addWidget(groupCaption);
    row->addWidget(m_group);
    row->addSpacing(6);
    row->addWidget(sortCaption);
    row->addWidget(m_sort);
    row->setSpacing(2);
    row->addWidget(m_direction);
}

std::pair<QLabel *, QToolButton *> BrowserHead::makeChoice(const QString &caption, const QString &tip)
{
    auto *label = new QLabel(caption, this);
    label->setObjectName(QStringLiteral("Muted"));
    auto *button = new QToolButton(this);
    button->setObjectName(QStringLiteral("Pop"));
    button->setAccessibleName(tip);
    button->setToolTip(tip);
    button->setFocusPolicy(Qt::TabFocus);
    return {label, button};
}

void BrowserHead::addButton(QWidget *button)
{
    m_buttons->layout()->addWidget(button);
    orderStops();
}

// Tab goes as they stand.
void BrowserHead::orderStops()
{
    QList<QWidget *> stops;
    for (int i = 0; i < m_buttons->layout()->count(); ++i) {
        QWidget *added = m_buttons->layout()->itemAt(i)->widget();
        const QList<QToolButton *> parts = added->findChildren<QToolButton *>();
        stops += parts.isEmpty() ? QList<QWidget *>{added} : QList<QWidget *>(parts.begin(), parts.end());
    }
    stops += {m_group, m_sort, m_direction};
    for (qsizetype i = 1; i < stops.size(); ++i) {
        setTabOrder(stops[i - 1], stops[i]);
    }
}

void BrowserHead::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    makeRoom();
}

bool BrowserHead::event(QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest) { // a button came or went
        makeRoom();
    }
    return QWidget::event(event);
}

void BrowserHead::setShowsOrder(bool showsOrder)
{
    m_showsOrder = showsOrder;
    makeRoom();
}

// Where there is little room, what is said elsewhere gives way: the status row counts, the tips name what is chosen.
void BrowserHead::makeRoom()
{
    constexpr int usualButtons = 190;
    constexpr int roomForButtons = 420;
    const int more = std::max(0, m_buttons->sizeHint().width() - usualButtons);
    const int roomForAll = 600 + more;
    const int roomForTitle = roomForButtons + more; // with less, half a word would be left of it
    m_title->setVisible(width() >= roomForTitle);
    m_buttons->setVisible(width() >= roomForButtons);
    m_count->setVisible(width() >= roomForAll);
    m_groupCaption->setVisible(width() >= roomForAll);
    m_sortCaption->setVisible(width() >= roomForAll && m_showsOrder);
    m_sort->setVisible(m_showsOrder);
    m_direction->setVisible(m_showsOrder && hasDirection());
}

void BrowserHead::showTab(const QString &count)
{
    const TabState &tab = m_content.tab();
    m_title->setText(tab.tabName());
    m_count->setText(count);
    const BrowserDisplayStyle style = tab.browserDisplayStyleValue();
    const QString grouping = titleOf(groupChoices, &GroupChoice::style, style);
    m_group->setText(grouping + QStringLiteral(" ▾"));
    m_group->setAccessibleName(zqFormat(zqLocalized("Group: %@"), {grouping}));
    const ZQSortValue value = tab.sortKeysValue();
    // What has no order of its own is listed by title.
    const bool isByTitle = value == ZQSortValue::Manual && tab.hasWatchedFolders();
    m_sort->setText(tab.isByNearness()
                        ? zqLocalized("Nearness")
                        : titleOf(sortChoices, &SortChoice::value, isByTitle ? ZQSortValue::Title : value));
    m_sort->setAccessibleName(zqFormat(zqLocalized("Sort: %@"), {m_sort->text()}));
    const bool ascending = tab.sortDirectionValue();
    m_direction->setVisible(m_showsOrder && hasDirection());
    m_direction->setIcon(ZQIcon::icon(ascending ? QStringLiteral("arrow-up") : QStringLiteral("arrow-down")));
    m_direction->setAccessibleName(ascending ? zqLocalized("Ascending") : zqLocalized("Descending"));
    m_direction->setToolTip(m_direction->accessibleName());
}

bool BrowserHead::canSortBy(ZQSortValue value) const
{
    const TabState &tab = m_content.tab();
    if (value == ZQSortValue::Manual) {
        return tab.browserCanManuallySort();
    }
    const auto single = m_content.singleItem();
    return value != ZQSortValue::None || tab.sidebarSelectedItems().size() > 1 || (single && single->isFolder());
}

bool BrowserHead::hasDirection() const
{
    const ZQSortValue value = m_content.tab().sortKeysValue();
    return value != ZQSortValue::Manual && value != ZQSortValue::None && !m_content.tab().isByNearness();
}

void BrowserHead::showSortMenu()
{
    QMenu menu(this);
    const TabState &tab = m_content.tab();
    const bool ascending = tab.sortDirectionValue();
    const auto add = [&](const QString &title, ZQSortValue value, bool direction, bool isChecked) {
        QAction *action = menu.addAction(title, this, [this, value, direction] { setSort(value, direction); });
        action->setCheckable(true);
        action->setChecked(isChecked);
    };
    const bool isByNearness = tab.isByNearness();
    if (LikeArgument::in(tab.filter())) {
        QAction *action = menu.addAction(zqLocalized("Nearness"), this, [this] {
            m_content.setSortByNearness();
            Q_EMIT orderChanged();
        });
        action->setCheckable(true);
        action->setChecked(isByNearness);
    }
    for (const SortChoice &choice : sortChoices) {
        if (canSortBy(choice.value)) {
            add(zqLocalized(choice.title), choice.value, ascending,
                choice.value == tab.sortKeysValue() && !isByNearness);
        }
    }
    if (hasDirection()) {
        menu.addSeparator();
        add(zqLocalized("Ascending"), tab.sortKeysValue(), true, ascending);
        add(zqLocalized("Descending"), tab.sortKeysValue(), false, !ascending);
    }
    menu.exec(m_sort->mapToGlobal(QPoint(0, m_sort->height() + 2)));
}

void BrowserHead::showGroupMenu()
{
    QMenu menu(this);
    for (const GroupChoice &choice : groupChoices) {
        QAction *action =
            menu.addAction(zqLocalized(choice.title), this, [this, choice] { setDisplayStyle(choice.style); });
        action->setCheckable(true);
        action->setChecked(choice.style == m_content.tab().browserDisplayStyleValue());
    }
    menu.exec(m_group->mapToGlobal(QPoint(0, m_group->height() + 2)));
}

void BrowserHead::setSort(ZQSortValue value, bool ascending)
{
    m_content.setSort(value, ascending);
    Q_EMIT orderChanged();
}

void BrowserHead::setDisplayStyle(BrowserDisplayStyle style)
{
    m_content.setDisplayStyle(style);
    Q_EMIT orderChanged();
}

QList<WindowCommand> BrowserHead::commands()
{
    const auto id = [](CommandID first, auto value) { return CommandID(int(first) + int(value)); };
    QList<WindowCommand> result;
    for (const GroupChoice &choice : groupChoices) {
        result.append(
            {.id = id(CommandID::GroupPlain, choice.style),
             .title = zqLocalized(choice.title),
             .keys = {},
             .run = [this, choice] { setDisplayStyle(choice.style); },
             .isChecked = [this, choice] { return m_content.tab().browserDisplayStyleValue() == choice.style; }});
    }
    for (const SortChoice &choice : sortChoices) {
        result.append({.id = idOfSort(choice.value),
                       .title = zqLocalized(choice.title),
                       .keys = {},
                       .run = [this, choice] { setSort(choice.value, m_content.tab().sortDirectionValue()); },
                       .isEnabled = [this, choice] { return canSortBy(choice.value); },
                       .isChecked =
                           [this, choice] {
                               const TabState &tab = m_content.tab();
                               return tab.sortKeysValue() == choice.value && !tab.isByNearness();
                           }});
    }
    for (const bool ascending : {true, false}) {
        result.append(
            {.id = ascending ? CommandID::SortAscending : CommandID::SortDescending,
             .title = ascending ? zqLocalized("Ascending") : zqLocalized("Descending"),
             .keys = {},
             .run = [this, ascending] { setSort(m_content.tab().sortKeysValue(), ascending); },
             .isEnabled = [this] { return hasDirection(); },
             .isChecked = [this,
                           ascending] { return hasDirection() && m_content.tab().sortDirectionValue() == ascending; }});
    }
    return result;
}

#include "Classes/Interface/Browser/RefineBar.h"

#include "Classes/Browsing/Content/FacetCounts.h"
#include "Classes/Interface/Browser/ColorWheelMenu.h"
#include "Classes/Interface/Browser/FacetButton.h"
#include "Classes/Interface/Browser/FacetMenu.h"
#include "Classes/Interface/WindowContext.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QEvent>
#include <QLabel>
#include <QStyle>
#include <QToolButton>

#include <algorithm>

namespace {

const QString wantedKey = QStringLiteral("RefineBarShown");

constexpr int sideMargin = 20;
constexpr int topMargin = 2;
constexpr int bottomMargin = 12;
constexpr int gap = 5;
constexpr int facetGap = 18;
constexpr int lineGap = 6;
constexpr int lineHeight = 22;

qsizetype mostValues(FacetKind kind)
{
    switch (kind) {
    case FacetKind::Color:
        return 10;
    case FacetKind::Rating:
    case FacetKind::Size:
        return 6;
    default:
        return 4;
    }
}

} // namespace

RefineBar::RefineBar(WindowContext &window, QWidget *parent)
    : QWidget(parent), m_wheel(new QToolButton(this)), m_absent(new QLabel(zqLocalized("Counting…"), this)),
      m_ticket(window.fetcher, ContentFetcher::Priority::Counts)
{
    setObjectName(QStringLiteral("RefineBar"));
    setAccessibleName(zqLocalized("Refine"));
    m_wheel->setIcon(ZQIcon::icon(QStringLiteral("color")));
    m_wheel->setAccessibleName(zqLocalized("Find Color…"));
    m_wheel->setToolTip(m_wheel->accessibleName());
    m_wheel->setFocusPolicy(Qt::NoFocus);
    m_wheel->hide();
    connect(m_wheel, &QToolButton::clicked, this, [this] { openColorWheel(*m_wheel); });
    m_absent->setObjectName(QStringLiteral("SmallMuted"));
    m_shown = {m_absent};
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setVisible(isWanted());
    if (const auto index = m_ticket.index()) {
        connect(index.get(), &LibraryIndex::ready, this, &RefineBar::recount);
        connect(index.get(), &LibraryIndex::failed, this, &RefineBar::recount);
    }
}

bool RefineBar::isWanted()
{
    return ZQUserDefaults::standardUserDefaults().boolForKey(wantedKey);
}

void RefineBar::setWanted(bool isWanted)
{
    ZQUserDefaults::standardUserDefaults().setObjectForKey(isWanted, wantedKey);
}

QSize RefineBar::sizeHint() const
{
    return {2 * sideMargin, heightForWidth(width())};
}

void RefineBar::setContent(const ContentQuery &query)
{
    m_query = query;
    recount();
}

// Until the counts of the new place are there; those for each key that is typed take their place at once.
void RefineBar::expire()
{
    setEnabled(false);
}

void RefineBar::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    recount();
}

void RefineBar::recount()
{
    if (isHidden()) {
        return;
    }
    if (m_query.sidebarItems.isEmpty()) {
        m_ticket.run([](auto &, const auto &) { return ContentFetcher::Ticket::Answer(); });
        showFacets({});
        return;
    }
    m_ticket.run([this, query = m_query, index = m_ticket.index()](
                     ZQManagedObjectContext &context, const auto &isWanted) -> ContentFetcher::Ticket::Answer {
        const auto facets = index ? FacetCounts::of(query, context, *index, isWanted) : std::nullopt;
        return [this, facets] { facets ? showFacets(*facets) : showNoFacets(); };
    });
}

// Counts of before would be chosen by who takes them for those of what is shown.
void RefineBar::showNoFacets()
{
    const auto index = m_ticket.index();
    const bool isToCome = index && !index->isReady() && !index->hasFailed();
    showFacets({});
    m_absent->setText(isToCome ? zqLocalized("Counting…") : zqLocalized("The items could not be counted"));
    m_shown = {m_absent};
    m_absent->show();
    updateGeometry();
    RefineBar::place(width(), true);
}

void RefineBar::choose(FacetKind kind, const QString &token)
{
    if (isEnabled()) { // a menu may still be open
        Q_EMIT chosen(kind, token);
    }
}

// The most frequent ones, and those that are chosen.
QList<FacetValue> RefineBar::shownValues(const Facet &facet)
{
    const qsizetype most = mostValues(facet.kind);
    QList<FacetValue> shown = facet.values.first(std::min(most, facet.values.size()));
    for (qsizetype i = most; i < facet.values.size(); ++i) {
        if (facet.values[i].isChosen) {
            shown.append(facet.values[i]);
        }
    }
    return shown;
}

// What takes no focus just now has no place in the order of the Tab key that could be set.
void RefineBar::putAfter(QWidget *before, QWidget *widget)
{
    const Qt::FocusPolicy policies[] = {before->focusPolicy(), widget->focusPolicy()};
    before->setFocusPolicy(Qt::StrongFocus);
    widget->setFocusPolicy(Qt::StrongFocus);
    setTabOrder(before, widget);
    before->setFocusPolicy(policies[0]);
    widget->setFocusPolicy(policies[1]);
}

void RefineBar::setNextStop(QWidget *widget)
{
    putAfter(m_buttons.isEmpty() ? static_cast<QWidget *>(this) : m_buttons.last(), widget);
}

FacetButton *RefineBar::nextButton()
{
    if (m_buttonCount == m_buttons.size()) {
        auto *button = new FacetButton(this);
        putAfter(m_buttons.isEmpty() ? static_cast<QWidget *>(this) : m_buttons.last(), button);
        m_buttons.append(button);
        connect(button, &FacetButton::clicked, this, [this, button] {
            if (button->isMore()) {
                openMenu(*button);
            } else {
                choose(button->kind(), button->token());
            }
        });
        connect(button, &FacetButton::moveRequested, this, [this, button](int key) { moveFrom(*button, key); });
        connect(button, &FacetButton::focused, this, [this, button] { setStop(button); });
    }
    return m_buttons[m_buttonCount++];
}

QLabel *RefineBar::nextCaption()
{
    if (m_captionCount == m_captions.size()) {
        auto *caption = new QLabel(this);
        caption->setObjectName(QStringLiteral("SmallFaint"));
        m_captions.append(caption);
    }
    return m_captions[m_captionCount++];
}

void RefineBar::showFacet(const Facet &facet)
{
    QLabel *caption = nextCaption();
    caption->setText(Facet::title(facet.kind));
    m_shown.append(caption);
    const QList<FacetValue> values = shownValues(facet);
    for (const FacetValue &value : values) {
        FacetButton *button = nextButton();
        button->showValue(facet.kind, value);
        m_shown.append(button);
    }
    if (const qsizetype others = facet.values.size() - values.size(); others > 0) {
        FacetButton *button = nextButton();
        button->showMore(facet.kind, int(others));
        m_shown.append(button);
    }
    if (facet.kind == FacetKind::Color) {
        m_shown.append(m_wheel);
    }
}

// Widgets are used again: the counts follow each key that is typed.
void RefineBar::showFacets(const QList<Facet> &facets)
{
    const auto focused = std::find_if(m_buttons.begin(), m_buttons.begin() + m_buttonCount,
                                      [](const FacetButton *button) { return button->hasFocus(); });
    const bool hadFocus = focused != m_buttons.begin() + m_buttonCount;
    const auto before = hadFocus ? std::pair((*focused)->kind(), (*focused)->token()) : std::pair<FacetKind, QString>();
    const qsizetype place = focused - m_buttons.begin();
    m_facets = facets;
    m_shown.clear();
    m_buttonCount = 0;
    m_captionCount = 0;
    for (const Facet &facet : facets) {
        showFacet(facet);
    }
    m_absent->hide();
    m_wheel->hide(); // unless there are colors
    setEnabled(true);
    FacetButton *stop = m_buttonCount > 0 ? m_buttons.first() : nullptr;
    for (qsizetype i = 0; hadFocus && i < m_buttonCount; ++i) {
        const bool isSame = m_buttons[i]->kind() == before.first && m_buttons[i]->token() == before.second;
        stop = isSame || i == place ? m_buttons[i] : stop;
        if (isSame) {
            break;
        }
    }
    for (QWidget *widget : std::as_const(m_shown)) {
        widget->show();
    }
    if (hadFocus && stop) {
        stop->setFocus();
    }
    for (qsizetype i = m_buttonCount; i < m_buttons.size(); ++i) {
        m_buttons[i]->hide();
    }
    for (qsizetype i = m_captionCount; i < m_captions.size(); ++i) {
        m_captions[i]->hide();
    }
    setStop(stop);
    updateGeometry();
    RefineBar::place(width(), true);
}

void RefineBar::setStop(const FacetButton *stop)
{
    for (FacetButton *button : std::as_const(m_buttons)) {
        button->setFocusPolicy(button == stop ? Qt::TabFocus : Qt::NoFocus);
    }
}

void RefineBar::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    place(width(), true);
}

void RefineBar::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange) {
        place(width(), true);
    }
}

// A caption goes to the next line with its first value.
int RefineBar::place(int width, bool moves) const
{
    int x = sideMargin;
    int y = topMargin;
    for (qsizetype i = 0; i < m_shown.size(); ++i) {
        const bool isCaption = qobject_cast<QLabel *>(m_shown[i]) != nullptr;
        const int own = m_shown[i]->sizeHint().width();
        const int first = isCaption && i + 1 < m_shown.size() ? gap + m_shown[i + 1]->sizeHint().width() : 0;
        x += isCaption && x > sideMargin ? facetGap - gap : 0;
        if (x > sideMargin && x + own + first > width - sideMargin) {
            x = sideMargin;
            y += lineHeight + lineGap;
        }
        if (moves) {
            const QRect box(x, y, std::min(own, std::max(1, width - x)), lineHeight);
            m_shown[i]->setGeometry(QStyle::visualRect(layoutDirection(), {0, 0, width, height()}, box));
        }
        x += own + gap;
    }
    return y + lineHeight + bottomMargin;
}

void RefineBar::openMenu(const FacetButton &button)
{
    const auto facet = std::find_if(m_facets.begin(), m_facets.end(),
                                    [&button](const Facet &each) { return each.kind == button.kind(); });
    if (facet != m_facets.end()) {
        auto *menu = new FacetMenu(*facet, this);
        connect(menu, &FacetMenu::chosen, this, &RefineBar::choose);
        menu->popUp(button);
    }
}

void RefineBar::openColorWheel(const QWidget &anchor)
{
    auto *wheel = new ColorWheelMenu(this);
    // Whatever was counted: a bar that is hidden counts nothing.
    connect(wheel, &ColorWheelMenu::chosen, this, &RefineBar::colorChosen);
    wheel->popUp(anchor);
}

void RefineBar::moveFrom(const FacetButton &button, int key)
{
    const qsizetype index = m_buttons.indexOf(&button);
    const int forward = isRightToLeft() ? -1 : 1;
    qsizetype next = index;
    switch (key) {
    case Qt::Key_Left:
        next -= forward;
        break;
    case Qt::Key_Right:
        next += forward;
        break;
    case Qt::Key_Home:
        next = 0;
        break;
    case Qt::Key_End:
        next = m_buttonCount - 1;
        break;
    default: { // the nearest of the line above or below
        const int line = button.y() + (key == Qt::Key_Up ? -1 : 1) * (lineHeight + lineGap);
        int nearest = width();
        for (qsizetype i = 0; i < m_buttonCount; ++i) {
            const int distance = std::abs(m_buttons[i]->geometry().center().x() - button.geometry().center().x());
            if (m_buttons[i]->y() == line && distance < nearest) {
                nearest = distance;
                next = i;
            }
        }
    }
    }
    if (next >= 0 && next < m_buttonCount) {
        m_buttons[next]->setFocus();
    }
}

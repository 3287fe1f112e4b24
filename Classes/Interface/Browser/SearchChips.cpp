#include "Classes/Interface/Browser/SearchChips.h"

#include "Classes/Browsing/SearchExpression.h"
#include "Classes/Browsing/SearchManager.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace {

constexpr int sideMargin = 20;
constexpr int chipHeight = 22;
constexpr int chipPadding = 8;
constexpr int chipGap = 6;
constexpr int crossSize = 8;
constexpr int crossRoom = 18;       // where a click takes the chip out
constexpr qsizetype mostChips = 30; // no window is wide enough for more

QString shownText(const SearchPart &part)
{
    constexpr qsizetype longest = 40;
    const QString text = part.text.simplified();
    return zqShortened(text, longest);
}

} // namespace

SearchChips::SearchChips(QWidget *parent) : QWidget(parent)
{
    setFixedHeight(ZQMeasure::groupHeadHeight);
    setObjectName(QStringLiteral("SearchChips"));
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    hide();
    connect(&ZQTheme::current(), &ZQTheme::changed, this, [this] {
        layOut();
        update();
    });
}

void SearchChips::setText(const QString &searchText, bool isInField)
{
    m_text = searchText;
    m_isInField = isInField;
    m_chips.clear();
    m_hovered = -1;
    bool needsExplanation = false;
    QStringList said;
    if (!searchText.trimmed().isEmpty()) {
        const QList<SearchPart> parts = SearchExpression::read(searchText, SearchContext()).parts;
        for (qsizetype index = 0; index < parts.size(); ++index) {
            const SearchPart &part = parts[index];
            const bool isWrong = part.kind == SearchPart::Kind::Problem;
            needsExplanation = needsExplanation || isWrong || part.kind != SearchPart::Kind::Word;
            if ((isWrong || part.isClause()) && m_chips.size() < mostChips) {
                m_chips.append({shownText(part),
                                isWrong ? part.meaning : QString(),
                                part.meaning,
                                {},
                                index,
                                part.position,
                                part.length});
                said.append(zqShortened(part.text) + QStringLiteral(": ") + part.meaning);
            }
        }
    }
    m_current = std::clamp(m_current, 0, std::max(0, count() - 1));
    setAccessibleName(said.isEmpty() ? QString() : zqLocalized("Search") + QStringLiteral(": ") + said.join(u'\n'));
    layOut();
    setVisible(needsExplanation && !m_chips.isEmpty());
    update();
}

void SearchChips::layOut()
{
    const QFontMetrics metrics(ZQTheme::current().font(ZQMeasure::smallTextSize));
    const int roomBehind = m_isInField ? crossRoom : chipPadding;
    int x = sideMargin;
    for (Chip &chip : m_chips) {
        const QString text = chip.reason.isEmpty() ? chip.text : chip.text + QStringLiteral("  ") + chip.reason;
        const int width = metrics.horizontalAdvance(text) + chipPadding + roomBehind;
        chip.place = QRect(x, (height() - chipHeight) / 2, width, chipHeight);
        x += width + chipGap;
    }
    // The reason of the last may have no room: the cross does.
    for (Chip &chip : m_chips) {
        const int left = width() - sideMargin - chip.place.left();
        if (!chip.reason.isEmpty() && chip.place.width() > left) {
            const int least = metrics.horizontalAdvance(chip.text) + chipPadding + roomBehind;
            chip.place.setWidth(std::max(least, left));
        }
    }
    updateGeometry();
}

QSize SearchChips::sizeHint() const
{
    return {2 * sideMargin, ZQMeasure::groupHeadHeight}; // as wide as there is room
}

QRect SearchChips::crossRect(int index) const
{
    const QRect &place = m_chips[index].place;
    return {place.right() + 1 - crossRoom, place.top(), crossRoom, place.height()};
}

int SearchChips::chipAt(const QPoint &place) const
{
    const auto chip =
        std::find_if(m_chips.begin(), m_chips.end(), [&place](const Chip &each) { return each.place.contains(place); });
    return chip != m_chips.end() ? int(chip - m_chips.begin()) : -1;
}

void SearchChips::makeCurrent(int index)
{
    if (index < 0 || index >= count()) {
        return;
    }
    m_current = index;
    setAccessibleDescription(m_chips[index].text + QStringLiteral(": ") + m_chips[index].meaning);
    QAccessibleEvent event(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&event);
    update();
}

void SearchChips::choose(int index)
{
    makeCurrent(index);
    if (m_isInField) {
        Q_EMIT partChosen(m_chips[index].position, m_chips[index].length);
    }
}

void SearchChips::takeOut(int index)
{
    makeCurrent(index);
    if (m_isInField) {
        Q_EMIT searchRequested(SearchManager::without(m_text, m_chips[index].index));
    }
}

bool SearchChips::event(QEvent *event)
{
    if (event->type() == QEvent::Resize) {
        layOut();
    }
    if (event->type() == QEvent::ShortcutOverride) { // Del means what is selected elsewhere
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Delete || key == Qt::Key_Backspace) {
            event->accept();
            return true;
        }
    }
    if (event->type() != QEvent::ToolTip) {
        return QWidget::event(event);
    }
    const auto *help = static_cast<QHelpEvent *>(event);
    const int chip = chipAt(help->pos());
    if (chip < 0) {
        QToolTip::hideText();
    } else {
        QToolTip::showText(help->globalPos(), m_chips[chip].meaning, this, m_chips[chip].place);
    }
    return true;
}

void SearchChips::mousePressEvent(QMouseEvent *event)
{
    const int chip = event->button() == Qt::LeftButton ? chipAt(event->pos()) : -1;
    if (chip < 0) {
        return;
    }
    crossRect(chip).contains(event->pos()) ? takeOut(chip) : choose(chip);
}

void SearchChips::mouseMoveEvent(QMouseEvent *event)
{
    const int hovered = chipAt(event->pos());
    setCursor(hovered >= 0 && m_isInField ? Qt::PointingHandCursor : Qt::ArrowCursor);
    if (std::exchange(m_hovered, hovered) != hovered) {
        update();
    }
}

void SearchChips::leaveEvent(QEvent *event)
{
    QWidget::leaveEvent(event);
    m_hovered = -1;
    update();
}

void SearchChips::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    makeCurrent(m_current);
}

void SearchChips::keyPressEvent(QKeyEvent *event)
{
    if (m_chips.isEmpty()) {
        return QWidget::keyPressEvent(event);
    }
    const int forward = isRightToLeft() ? -1 : 1;
    switch (event->key()) {
    case Qt::Key_Left:
        return makeCurrent(m_current - forward);
    case Qt::Key_Right:
        return makeCurrent(m_current + forward);
    case Qt::Key_Home:
        return makeCurrent(0);
    case Qt::Key_End:
        return makeCurrent(count() - 1);
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        return takeOut(m_current);
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        return choose(m_current);
    default:
        QWidget::keyPressEvent(event);
    }
}

void SearchChips::paintChip(QPainter &painter, int index) const
{
    const Chip &chip = m_chips[index];
    const bool isWrong = !chip.reason.isEmpty();
    const bool hasFocus = this->hasFocus() && index == m_current;
    const QRectF box = QRectF(chip.place).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(hasFocus  ? QPen(zqColor(ZQColorRole::Accent), 1.5)
                   : isWrong ? QPen(zqColor(ZQColorRole::Danger), 1)
                             : QPen(Qt::NoPen));
    painter.setBrush(isWrong ? QBrush(Qt::NoBrush) : QBrush(zqColor(ZQColorRole::Select)));
    painter.drawRoundedRect(box, 5, 5);
    const QRect text = chip.place.adjusted(chipPadding, 0, m_isInField ? -crossRoom : -chipPadding, 0);
    painter.setPen(zqColor(isWrong ? ZQColorRole::Danger : ZQColorRole::Text));
    painter.drawText(text, Qt::AlignVCenter, chip.text);
    if (isWrong) {
        painter.setPen(zqColor(ZQColorRole::TextMuted));
        const QRect rest =
            text.adjusted(painter.fontMetrics().horizontalAdvance(chip.text + QStringLiteral("  ")), 0, 0, 0);
        painter.drawText(rest, Qt::AlignVCenter,
                         painter.fontMetrics().elidedText(chip.reason, Qt::ElideRight, rest.width()));
    }
    if (!m_isInField) {
        return;
    }
    QRect cross(0, 0, crossSize, crossSize);
    cross.moveCenter(crossRect(index).center());
    ZQIcon::paint(painter, cross, QStringLiteral("close"),
                  zqColor(index == m_hovered || hasFocus ? ZQColorRole::Text : ZQColorRole::TextMuted));
}

void SearchChips::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(ZQTheme::current().font(ZQMeasure::smallTextSize));
    for (int index = 0; index < count(); ++index) {
        paintChip(painter, index);
    }
}

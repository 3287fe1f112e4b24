#include "Classes/Interface/Browser/SearchChips.h"

#include "Classes/Browsing/Search/LikeArgument.h"
#include "Classes/Browsing/Search/SearchExpression.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Classes/Browsing/Search/SearchTokenizer.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>

namespace {

constexpr int sideMargin = 20;
constexpr int chipHeight = 22;
constexpr int chipPadding = 8;
constexpr int chipGap = 6;
constexpr int crossSize = 8;
constexpr int crossRoom = 18; // where a click takes the chip out
constexpr int joinGap = 5;    // between a chip and what joins it
constexpr int rowGap = 4;
constexpr int mostRows = 3;
constexpr int mostJoins = 12;        // of one chip; who nests deeper cannot count them either
constexpr qsizetype mostChips = 300; // laid out for each key that is typed

QString shownText(const SearchPart &part, const std::function<QString(const QString &)> &titleOfPicture)
{
    constexpr qsizetype longest = 40;
    QString text = part.text.simplified();
    if (const auto like = titleOfPicture ? LikeArgument::in(text) : std::nullopt) {
        const LikeArgument shown{titleOfPicture(like->argument.name), like->argument.apart};
        text.replace(like->position, like->length, shown.text());
    }
    return zqShortened(text, longest);
}

QFont chipFont()
{
    return ZQTheme::current().font(ZQMeasure::smallTextSize);
}

// Nothing for what joins as a blank does.
QString joinOf(const SearchPart &part)
{
    if (part.kind == SearchPart::Kind::Bracket) {
        return part.text;
    }
    return part.text == QStringLiteral("OR")    ? zqLocalized("or")
           : part.text == QStringLiteral("AND") ? zqLocalized("and")
           : part.isNegated                     ? zqLocalized("not")
                                                : QString();
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
    m_hovered = -1;
    readParts();
    m_current = std::clamp(m_current, 0, std::max(0, count() - 1));
    QStringList said;
    for (const Chip &chip : std::as_const(m_chips)) {
        said.append(spoken(chip));
    }
    setAccessibleName(said.isEmpty() ? zqLocalized("What is searched for")
                                     : zqFormat(zqLocalized("Search: %@"), {said.join(u'\n')}));
    accessiblePartsDidChange(this);
    layOut();
    setVisible(m_needsExplanation && !m_chips.isEmpty());
    update();
}

ZQAccessiblePart SearchChips::accessiblePart(int index) const
{
    return {.name = spoken(m_chips[index]),
            .description = m_chips[index].reason,
            .place = isShown(index) ? m_chips[index].place : QRect(),
            .isCurrent = index == m_current};
}

void SearchChips::setCursor(qsizetype cursor)
{
    if (std::exchange(m_cursor, cursor) != cursor && m_hasMistakes) {
        setText(m_text, m_isInField);
    }
}

// More letters may make a token of it, or what it compares and looks for may come yet.
bool SearchChips::isOnlyBegun(const SearchPart &part) const
{
    const bool isUnderCursor = m_isInField && m_cursor >= part.position && m_cursor <= part.end();
    const bool isEnded = part.end() < m_text.size() && SearchTokenizer::isBlank(m_text[part.end()]);
    if (!isUnderCursor || isEnded) {
        return false;
    }
    const QString token = part.text.mid(part.text.indexOf(u'#'));
    const auto hasAnyOf = [&token](QStringView characters) {
        return std::any_of(token.begin(), token.end(), [&](QChar c) { return characters.contains(c); });
    };
    switch (part.problem) {
    case SearchProblem::UnknownToken:
    case SearchProblem::NoComparison:
        return !hasAnyOf(u"<=>:\" \t");
    case SearchProblem::NoArgument:
        return !hasAnyOf(u"\"");
    default:
        return false;
    }
}

void SearchChips::readParts()
{
    m_chips.clear();
    m_leftOut = 0;
    m_needsExplanation = false;
    m_hasMistakes = false;
    if (m_text.trimmed().isEmpty()) {
        return;
    }
    SearchContext context;
    context.titleOfPicture = titleOfPicture;
    const QList<SearchPart> parts = SearchExpression::read(m_text, context).parts;
    QStringList joins;
    for (qsizetype index = 0; index < parts.size(); ++index) {
        const SearchPart &part = parts[index];
        const bool isWrong = part.kind == SearchPart::Kind::Problem;
        m_hasMistakes = m_hasMistakes || isWrong;
        if (isOnlyBegun(part)) {
            continue;
        }
        m_needsExplanation = m_needsExplanation || isWrong || part.kind != SearchPart::Kind::Word;
        const bool isChip = isWrong || part.isClause();
        if (isChip && m_chips.size() == mostChips) {
            ++m_leftOut;
        } else if (isChip) {
            m_chips.append({.text = shownText(part, titleOfPicture),
                            .reason = isWrong ? part.meaning : QString(),
                            .meaning = part.meaning,
                            .before = std::exchange(joins, {}),
                            .index = index,
                            .position = part.position,
                            .length = part.length});
        } else if (part.text == QStringLiteral(")") && m_leftOut == 0 && !m_chips.isEmpty()) {
            m_chips.last().closings = std::min(m_chips.last().closings + 1, mostJoins);
        } else if (const QString join = joinOf(part); !join.isEmpty() && joins.size() < mostJoins) {
            joins.append(join);
        }
    }
}

// Brackets are no words, and many voices leave them out.
QString SearchChips::spoken(const Chip &chip)
{
    QStringList words;
    for (const QString &join : chip.before) {
        words.append(join == QStringLiteral("(") ? zqLocalized("open bracket") : join);
    }
    words.append(zqFormat(zqLocalized("%@: %@"), {chip.text, chip.meaning}));
    for (int i = 0; i < chip.closings; ++i) {
        words.append(zqLocalized("close bracket"));
    }
    return words.join(u' ');
}

QString SearchChips::joins(int index) const
{
    return m_chips[index].before.join(u' ');
}

QString SearchChips::closings(int index) const
{
    return QString(m_chips[index].closings, u')');
}

int SearchChips::shownRows() const
{
    return std::min(mostRows, m_rows);
}

bool SearchChips::isShown(int index) const
{
    const int row = m_chips[index].row;
    return row >= m_firstRow && row < m_firstRow + shownRows();
}

QString SearchChips::moreText() const
{
    int others = m_leftOut;
    for (int index = 0; index < count(); ++index) {
        others += isShown(index) ? 0 : 1;
    }
    return others > 0 ? zqFormat(zqLocalized("%d more"), {others}) : QString();
}

QRect SearchChips::moreRect() const
{
    const QString text = moreText();
    if (text.isEmpty()) {
        return {};
    }
    const int wide = QFontMetrics(chipFont()).horizontalAdvance(text);
    const int top = (ZQMeasure::groupHeadHeight - chipHeight) / 2 + (shownRows() - 1) * (chipHeight + rowGap);
    return {width() - sideMargin - wide, top, wide, chipHeight};
}

void SearchChips::layOut()
{
    const int room = std::max(1, width() - 2 * sideMargin);
    breakRows(room);
    if (m_rows > mostRows || m_leftOut > 0) {
        const QString widest = zqFormat(zqLocalized("%d more"), {count() + m_leftOut});
        breakRows(std::max(1, room - chipGap - QFontMetrics(chipFont()).horizontalAdvance(widest)));
    }
    const int row = m_current < count() ? m_chips[m_current].row : 0;
    m_firstRow = hasFocus() ? std::clamp(m_firstRow, row - shownRows() + 1, row) : m_firstRow;
    m_firstRow = std::clamp(m_firstRow, 0, m_rows - shownRows());
    placeRows();
    setFixedHeight(ZQMeasure::groupHeadHeight + (shownRows() - 1) * (chipHeight + rowGap));
}

// A chip stays with what joins it, and is cut only where it has a row for itself and that is too narrow.
void SearchChips::breakRows(int room)
{
    const QFontMetrics metrics(chipFont());
    const int roomBehind = m_isInField ? crossRoom : chipPadding;
    const auto widthOf = [&metrics](const QString &text) {
        return text.isEmpty() ? 0 : metrics.horizontalAdvance(text) + joinGap;
    };
    int x = 0;
    int row = 0;
    for (int index = 0; index < count(); ++index) {
        Chip &chip = m_chips[index];
        const QString text = chip.reason.isEmpty() ? chip.text : chip.text + QStringLiteral("  ") + chip.reason;
        const int before = widthOf(joins(index));
        const int behind = widthOf(closings(index));
        const int whole = metrics.horizontalAdvance(text) + chipPadding + roomBehind;
        if (x > 0 && x + before + whole + behind > room) {
            x = 0;
            ++row;
        }
        const int least = chipPadding + roomBehind;
        chip.row = row;
        chip.place =
            QRect(sideMargin + x + before, 0, std::max(least, std::min(whole, room - before - behind)), chipHeight);
        x += before + chip.place.width() + behind + chipGap;
    }
    m_rows = row + 1;
}

void SearchChips::placeRows()
{
    const int top = (ZQMeasure::groupHeadHeight - chipHeight) / 2;
    for (Chip &chip : m_chips) {
        chip.place.moveTop(top + (chip.row - m_firstRow) * (chipHeight + rowGap));
    }
}

void SearchChips::scrollTo(int firstRow)
{
    m_firstRow = std::clamp(firstRow, 0, m_rows - shownRows());
    placeRows();
    update();
}

QSize SearchChips::sizeHint() const
{
    return {2 * sideMargin, height()}; // as wide as there is room
}

QRect SearchChips::crossRect(int index) const
{
    const QRect &place = m_chips[index].place;
    return {place.right() + 1 - crossRoom, place.top(), crossRoom, place.height()};
}

int SearchChips::chipAt(const QPoint &place) const
{
    for (int index = 0; index < count(); ++index) {
        if (isShown(index) && m_chips[index].place.contains(place)) {
            return index;
        }
    }
    return -1;
}

void SearchChips::makeCurrent(int index)
{
    if (index < 0 || index >= count()) {
        return;
    }
    m_current = index;
    const int row = m_chips[index].row;
    scrollTo(std::clamp(m_firstRow, row - shownRows() + 1, row));
    setAccessibleDescription(spoken(m_chips[index]));
    accessiblePartIsCurrent(this, index);
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
        if (event->button() == Qt::LeftButton && moreRect().contains(event->pos())) {
            const bool isAtEnd = m_firstRow + shownRows() >= m_rows;
            scrollTo(isAtEnd ? 0 : m_firstRow + shownRows());
        }
        return;
    }
    crossRect(chip).contains(event->pos()) ? takeOut(chip) : choose(chip);
}

void SearchChips::mouseMoveEvent(QMouseEvent *event)
{
    const int hovered = chipAt(event->pos());
    const bool isMore = m_rows > mostRows && moreRect().contains(event->pos());
    setCursor(isMore || (hovered >= 0 && m_isInField) ? Qt::PointingHandCursor : Qt::ArrowCursor);
    if (std::exchange(m_hovered, hovered) != hovered) {
        update();
    }
}

void SearchChips::wheelEvent(QWheelEvent *event)
{
    const int turned = event->angleDelta().y();
    if (m_rows > mostRows && turned != 0) {
        scrollTo(m_firstRow + (turned < 0 ? 1 : -1));
    }
    event->accept();
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
    painter.drawText(text, Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(chip.text, Qt::ElideRight, text.width() + 1));
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

void SearchChips::paintJoins(QPainter &painter, int index) const
{
    const QRect &place = m_chips[index].place;
    painter.setPen(zqColor(ZQColorRole::TextMuted));
    painter.drawText(QRect(0, place.top(), place.left() - joinGap, place.height()), Qt::AlignVCenter | Qt::AlignRight,
                     joins(index));
    painter.drawText(QRect(place.right() + 1 + joinGap, place.top(), width(), place.height()), Qt::AlignVCenter,
                     closings(index));
}

void SearchChips::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(chipFont());
    for (int index = 0; index < count(); ++index) {
        if (isShown(index)) {
            paintJoins(painter, index);
            paintChip(painter, index);
        }
    }
    painter.setPen(zqColor(ZQColorRole::TextMuted));
    painter.drawText(moreRect(), Qt::AlignVCenter, moreText());
}

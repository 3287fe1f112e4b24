#include "Classes/Interface/Window/CompletionList.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQAccessible.h"
#include "Kit/Widgets/ZQSwatch.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>

namespace {

constexpr int tokensWidth = 440;
constexpr int argumentsWidth = 280;
constexpr int rowHeight = 28;
constexpr int margin = 6;
constexpr int padding = 10;
constexpr int mostRows = 12;
constexpr int dotSize = 12;
constexpr int textWidth = 176; // the meanings stand below each other

QFont smallFont()
{
    return ZQTheme::current().font(ZQMeasure::smallTextSize);
}

} // namespace

CompletionList::CompletionList(QWidget *window) : QWidget(window)
{
    setObjectName(QStringLiteral("Completions"));
    zqSetAccessibleRole(this, QAccessible::Notification);
    setFocusPolicy(Qt::NoFocus);
    setMouseTracking(true);
    hide();
}

void CompletionList::setOptions(const QList<SearchCompletion> &options)
{
    m_options = options;
    m_current = -1;
    m_first = 0;
    resize(sizeHint());
    setAccessibleName(zqFormat(zqLocalized("%d completions"), {int(options.size())}));
    update();
}

const SearchCompletion *CompletionList::current() const
{
    return m_current >= 0 && m_current < m_options.size() ? &m_options.at(m_current) : nullptr;
}

int CompletionList::shownRows() const
{
    return std::min(mostRows, int(m_options.size()));
}

QSize CompletionList::sizeHint() const
{
    const bool areTokens = !m_options.isEmpty() && m_options.first().text.startsWith(u'#');
    return {areTokens ? tokensWidth : argumentsWidth, shownRows() * rowHeight + 2 * margin};
}

void CompletionList::step(int by)
{
    const int rows = int(m_options.size());
    const int next = m_current + by;
    makeCurrent(m_current < 0 ? (by > 0 ? 0 : rows - 1) : next < 0 || next >= rows ? -1 : next);
}

void CompletionList::page(int by)
{
    makeCurrent(std::clamp(m_current + by * shownRows(), 0, std::max(0, int(m_options.size()) - 1)));
}

void CompletionList::makeCurrent(int row)
{
    m_current = row;
    if (row >= 0) {
        scrollTo(std::clamp(m_first, row - shownRows() + 1, row));
        const SearchCompletion &option = m_options.at(row);
        setAccessibleName(QStringList{option.text, option.argumentHint, option.meaning}.join(QStringLiteral(", ")));
        zqAnnounce(this, accessibleName()); // the focus stays in the field
    }
    update();
    Q_EMIT currentChanged();
}

void CompletionList::scrollTo(int first)
{
    m_first = std::clamp(first, 0, std::max(0, int(m_options.size()) - shownRows()));
    update();
}

QRect CompletionList::rowRect(int row) const
{
    return {margin, margin + (row - m_first) * rowHeight, width() - 2 * margin, rowHeight};
}

int CompletionList::rowAt(const QPoint &place) const
{
    for (int row = m_first; row < m_first + shownRows(); ++row) {
        if (rowRect(row).contains(place)) {
            return row;
        }
    }
    return -1;
}

void CompletionList::mouseMoveEvent(QMouseEvent *event)
{
    if (const int row = rowAt(event->pos()); row >= 0 && row != m_current) {
        makeCurrent(row);
    }
}

void CompletionList::mousePressEvent(QMouseEvent *event)
{
    if (const int row = rowAt(event->pos()); row >= 0 && event->button() == Qt::LeftButton) {
        Q_EMIT taken(row);
    }
}

void CompletionList::wheelEvent(QWheelEvent *event)
{
    constexpr int notch = 120;
    scrollTo(m_first - 3 * event->angleDelta().y() / notch);
    event->accept();
}

void CompletionList::paintRow(QPainter &painter, int row) const
{
    const SearchCompletion &option = m_options.at(row);
    const QRect place = rowRect(row);
    if (row == m_current) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(zqColor(ZQColorRole::Select));
        painter.drawRoundedRect(place, ZQMeasure::rowRadius, ZQMeasure::rowRadius);
    }
    const QRect inner = place.adjusted(padding, 0, -padding, 0);
    const bool isToken = option.text.startsWith(u'#');
    painter.setFont(smallFont());
    const int meaningWidth = std::min(painter.fontMetrics().horizontalAdvance(option.meaning), inner.width() / 2);
    QRect meaning = inner;
    meaning.setLeft(isToken ? inner.left() + textWidth : inner.right() - meaningWidth);
    painter.setPen(zqColor(ZQColorRole::TextMuted));
    painter.drawText(meaning, Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(option.meaning, Qt::ElideRight, meaning.width() + 1));
    paintName(painter, option, QRect(inner.topLeft(), QPoint(meaning.left() - padding, inner.bottom())));
}

// The swatch, what is put in, and what stands behind it or is short for it.
void CompletionList::paintName(QPainter &painter, const SearchCompletion &option, QRect place)
{
    if (option.color != 0) {
        painter.setPen(QPen(zqSwatchRing(option.color, zqColor(ZQColorRole::Raised)), 1));
        painter.setBrush(ZQTheme::swatch(option.color));
        painter.drawEllipse(QRectF(place.left() + 0.5, place.center().y() - dotSize / 2 + 1, dotSize - 1, dotSize - 1));
        place.setLeft(place.left() + dotSize + padding);
    }
    painter.setFont(ZQTheme::current().font(ZQMeasure::textSize, QFont::Medium));
    painter.setPen(zqColor(ZQColorRole::Text));
    const QString text = painter.fontMetrics().elidedText(option.text, Qt::ElideRight, place.width());
    painter.drawText(place, Qt::AlignVCenter, text);
    place.setLeft(place.left() + painter.fontMetrics().horizontalAdvance(text) + 8);
    painter.setFont(smallFont());
    painter.setPen(zqColor(ZQColorRole::TextFaint));
    const QString more = QStringList{option.argumentHint, option.shortForm}.join(QStringLiteral("  ")).trimmed();
    painter.drawText(place, Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(more, Qt::ElideRight, std::max(0, place.width())));
}

void CompletionList::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(zqColor(ZQColorRole::Border), 1));
    painter.setBrush(zqColor(ZQColorRole::Raised));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
    for (int row = m_first; row < m_first + shownRows(); ++row) {
        paintRow(painter, row);
    }
}

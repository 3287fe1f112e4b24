#include "Classes/Interface/InfoPanel/FlowLayout.h"

#include <QStyle>
#include <QWidget>

FlowLayout::FlowLayout(int spacing) : m_spacing(spacing) {}

FlowLayout::~FlowLayout()
{
    qDeleteAll(m_items);
}

void FlowLayout::addItem(QLayoutItem *item)
{
    m_items.append(item);
    invalidate();
}

int FlowLayout::count() const
{
    return int(m_items.size());
}

QLayoutItem *FlowLayout::itemAt(int index) const
{
    return m_items.value(index);
}

QLayoutItem *FlowLayout::takeAt(int index)
{
    if (index < 0 || index >= m_items.size()) {
        return nullptr;
    }
    QLayoutItem *item = m_items.takeAt(index);
    invalidate();
    return item;
}

int FlowLayout::heightForWidth(int width) const
{
    return place(QRect(0, 0, width, 0), false);
}

QSize FlowLayout::minimumSize() const
{
    QSize size;
    for (const QLayoutItem *item : m_items) {
        size = size.expandedTo(item->minimumSize());
    }
    const QMargins margins = contentsMargins();
    return size + QSize(margins.left() + margins.right(), margins.top() + margins.bottom());
}

void FlowLayout::setGeometry(const QRect &rect)
{
    QLayout::setGeometry(rect);
    place(rect, true);
}

int FlowLayout::place(const QRect &rect, bool apply) const
{
    const QMargins margins = contentsMargins();
    const QRect inner = rect.marginsRemoved(margins);
    const Qt::LayoutDirection direction = parentWidget() ? parentWidget()->layoutDirection() : Qt::LeftToRight;
    int x = inner.x();
    int y = inner.y();
    int lineHeight = 0;
    for (QLayoutItem *item : m_items) {
        const QSize hint = item->sizeHint();
        const bool grows = item->expandingDirections() & Qt::Horizontal;
        const int width = std::min(grows ? item->minimumSize().width() : hint.width(), inner.width());
        if (x > inner.x() && x + width > inner.right() + 1) {
            x = inner.x();
            y += lineHeight + m_spacing;
            lineHeight = 0;
        }
        if (apply) {
            const QRect box(x, y, grows ? inner.right() + 1 - x : width, hint.height());
            item->setGeometry(QStyle::visualRect(direction, inner, box));
        }
        x += width + m_spacing;
        lineHeight = std::max(lineHeight, hint.height());
    }
    return y + lineHeight - rect.y() + margins.bottom();
}

// The list style of a grid view, and groups that are collapsed in both styles.

#include "Kit/Widgets/ZQGridView.h"
#include "Kit/Widgets/ZQListHead.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace {
constexpr int pictureInset = 6; // above and below it in its row
constexpr int chipInset = 7;
constexpr int chipGap = 4;
constexpr int chipHeight = 18;
constexpr int chipRadius = 4;
constexpr int rowRadius = 6;
constexpr int mostStars = 5;
} // namespace

void ZQGridView::setShowsList(bool showsList)
{
    if (showsList == m_showsList) {
        return;
    }
    const ZQIndexSet visible = visibleIndexes();
    const bool isAtTop = scrollOffset() == 0;
    const qint64 kept = isAtTop ? -1 : visible.contains(m_current) ? m_current : visible.first();
    m_showsList = showsList;
    m_listHead->setVisible(showsList);
    setViewportMargins(0, showsList ? ZQListHead::height : 0, 0, 0);
    relayout();
    setScrollOffset(kept < 0 ? 0 : m_layout.cell(kept).top - ZQMeasure::groupHeadHeight);
    if (kept >= 0) {
        scrollToIndex(kept);
    }
}

void ZQGridView::setFillsCells(bool fillsCells)
{
    m_fillsCells = fillsCells;
    viewport()->update();
}

QStringList ZQGridView::listColumns() const
{
    QStringList result;
    for (qsizetype i = 1; i < m_listPlaces.size(); ++i) {
        result.append(m_listHead->columns().all()[m_listPlaces[i].column].identifier);
    }
    return result;
}

// A person points at what a row shows, to drag it, or beside it, to draw a band.
bool ZQGridView::isBesideContent(const QPoint &point) const
{
    return m_showsList && !m_listPlaces.isEmpty() &&
           layoutX(point.x()) > ZQGridLayout::sideMargin + m_listPlaces.first().left + m_listPlaces.first().width;
}

void ZQGridView::paintRow(QPainter &painter, qint64 index, const QRect &rect)
{
    const ZQGridItem item = m_source->item(index);
    const bool selected = m_selection.contains(index);
    const QRectF ground = QRectF(rect).adjusted(-6, 0, 6, -1);
    if (selected) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(zqColor(ZQColorRole::Select));
        painter.drawRoundedRect(ground, rowRadius, rowRadius);
    }
    if (hasFocus() && index == m_current) {
        painter.setPen(QPen(zqColor(ZQColorRole::Accent), 1, selected ? Qt::SolidLine : Qt::DotLine));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(ground.adjusted(0.5, 0.5, -0.5, -0.5), rowRadius, rowRadius);
    }
    const int inset = std::min(pictureInset, rect.height() / 8);
    const QRect picture(rect.left(), rect.top() + inset, ZQViewColumns::pictureWidth, rect.height() - 2 * inset);
    paintPicture(painter, item, QStyle::visualRect(layoutDirection(), rect, picture), 0);
    if (m_listPlaces.isEmpty()) {
        return;
    }
    const auto boxOf = [&](const ZQViewColumns::Place &place) {
        return QStyle::visualRect(layoutDirection(), rect,
                                  {rect.left() + place.left, rect.top(), place.width, rect.height()});
    };
    painter.setFont(ZQTheme::current().font(ZQMeasure::smallTextSize, QFont::Medium));
    painter.setPen(zqColor(ZQColorRole::Text));
    const QRect title = boxOf(m_listPlaces.first());
    painter.drawText(title, int(Qt::AlignVCenter),
                     painter.fontMetrics().elidedText(item.title, Qt::ElideMiddle, title.width()));
    painter.setFont(ZQTheme::current().font(ZQMeasure::smallTextSize));
    const QList<ZQListValue> values = m_source->listValues(index, listColumns());
    for (qsizetype i = 0; i < values.size() && i + 1 < m_listPlaces.size(); ++i) {
        paintValue(painter, values[i], boxOf(m_listPlaces[i + 1]), selected);
    }
}

void ZQGridView::paintValue(QPainter &painter, const ZQListValue &value, const QRect &box, bool selected)
{
    if (!value.chips.isEmpty()) {
        paintChips(painter, value.chips, box, selected);
        return;
    }
    const bool isRating = value.stars > 0;
    const QString text = isRating ? QString(std::min(value.stars, mostStars), QChar(u'★')) : value.text;
    painter.setPen(zqColor(isRating ? ZQColorRole::Accent : ZQColorRole::TextMuted));
    painter.drawText(box, int(Qt::AlignVCenter), painter.fontMetrics().elidedText(text, Qt::ElideRight, box.width()));
}

// As many as there is room for, and how many more there are.
void ZQGridView::paintChips(QPainter &painter, const QStringList &chips, const QRect &box, bool selected)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const auto mirrored = [&](const QRect &rect) { return QStyle::visualRect(layoutDirection(), box, rect); };
    int left = box.left(); // before it is mirrored
    for (qsizetype i = 0; i < chips.size(); ++i) {
        const QString more = i + 1 < chips.size() ? u'+' + QString::number(chips.size() - i - 1) : QString();
        const int kept = more.isEmpty() ? 0 : metrics.horizontalAdvance(more) + chipGap;
        const int room = box.right() + 1 - left - kept;
        const int wanted = metrics.horizontalAdvance(chips[i]) + 1 + 2 * chipInset; // and a fraction
        if (i > 0 && wanted > room) {
            painter.setPen(zqColor(ZQColorRole::TextMuted));
            painter.drawText(mirrored({left, box.top(), box.right() + 1 - left, box.height()}), int(Qt::AlignVCenter),
                             u'+' + QString::number(chips.size() - i));
            return;
        }
        const QRect chip =
            mirrored({left, box.top() + (box.height() - chipHeight) / 2, std::min(wanted, room), chipHeight});
        if (!selected) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(zqColor(ZQColorRole::Select));
            painter.drawRoundedRect(chip, chipRadius, chipRadius);
        }
        painter.setPen(zqColor(ZQColorRole::Text));
        painter.drawText(chip, int(Qt::AlignCenter),
                         metrics.elidedText(chips[i], Qt::ElideRight, chip.width() - 2 * chipInset));
        left += chip.width() + chipGap;
    }
}

// Groups.

void ZQGridView::setGroupCollapsed(int group, bool collapsed)
{
    if (group < 0 || group >= m_groups.size()) {
        return;
    }
    if (collapsed) {
        m_collapsedTitles.insert(m_groups[group].title);
    } else {
        m_collapsedTitles.remove(m_groups[group].title);
    }
    const bool wasSticky = stickyGroup() == group;
    reloadData();
    if (wasSticky) {
        setScrollOffset(m_layout.groupTop(group));
    }
    Q_EMIT collapsedGroupsChanged();
}

void ZQGridView::setAllGroupsCollapsed(bool collapsed)
{
    QSet<QString> titles;
    for (const ZQGridGroup &group : m_groups) {
        if (collapsed) {
            titles.insert(group.title);
        }
    }
    const int top = stickyGroup();
    setCollapsedGroups(titles);
    if (top >= 0) {
        setScrollOffset(m_layout.groupTop(top));
    }
    Q_EMIT collapsedGroupsChanged();
}

void ZQGridView::setCollapsedGroups(const QSet<QString> &titles)
{
    if (titles != m_collapsedTitles) {
        m_collapsedTitles = titles;
        reloadData();
    }
}

int ZQGridView::currentGroup() const
{
    return !m_layout.hasHeads() ? -1 : m_current < 0 ? stickyGroup() : m_layout.groupOfIndex(m_current);
}

bool ZQGridView::isOnHead() const
{
    const int group = m_layout.groupOfIndex(m_current);
    return group >= 0 && m_layout.isCollapsed(group);
}

void ZQGridView::collapseCurrentGroup(bool collapsed)
{
    setGroupCollapsed(currentGroup(), collapsed);
}

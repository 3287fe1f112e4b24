#include "Kit/Widgets/ZQGridView.h"

#include "Kit/Widgets/ZQGridAccessible.h"
#include "Kit/Widgets/ZQListHead.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QAccessible>
#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QNativeGestureEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

qint64 ZQGridDataSource::indexForTyping(const QString &text, qint64 from) const
{
    const qint64 total = count();
    for (qint64 step = 0; step < total; ++step) {
        const qint64 index = (from + step) % total;
        if (item(index).title.startsWith(text, Qt::CaseInsensitive)) {
            return index;
        }
    }
    return -1;
}

ZQGridView::ZQGridView(QWidget *parent)
    : QAbstractScrollArea(parent), m_loader(std::make_unique<ZQThumbnailLoader>()), m_listHead(new ZQListHead(this))
{
    m_listHead->hide();
    connect(m_listHead, &ZQListHead::columnsChanged, this, &ZQGridView::relayout);
    zqInstallGridAccessibility();
    setFocusPolicy(Qt::StrongFocus);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAcceptDrops(true);
    setAcceptDrops(true);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    connect(m_loader.get(), &ZQThumbnailLoader::loaded, viewport(), QOverload<>::of(&QWidget::update));
    connect(&ZQTheme::current(), &ZQTheme::changed, viewport(), QOverload<>::of(&QWidget::update));
    m_autoScroll.setInterval(30);
    connect(&m_autoScroll, &QTimer::timeout, this, [this] {
        const int beyond = m_lastPoint.y() < 0 ? m_lastPoint.y() : std::max(0, m_lastPoint.y() - viewport()->height());
        setScrollOffset(scrollOffset() + beyond / 2);
        updateRubberBand(m_lastPoint);
    });
}

ZQGridView::~ZQGridView() = default;

void ZQGridView::setDataSource(ZQGridDataSource *source)
{
    m_source = source;
    m_selection.clear();
    m_current = m_anchor = -1;
    reloadData();
    setScrollOffset(0);
    Q_EMIT selectionChanged();
}

void ZQGridView::reloadData()
{
    m_groups = m_source ? m_source->groups() : QList<ZQGridGroup>();
    QList<qint64> counts;
    QList<bool> collapsed;
    for (const ZQGridGroup &group : m_groups) {
        counts.append(group.count);
        collapsed.append(m_collapsedTitles.contains(group.title));
    }
    const bool hasHeads = !m_groups.isEmpty();
    if (!hasHeads) {
        counts = {m_source ? m_source->count() : 0};
    }
    m_layout.setContent(counts, hasHeads, collapsed);
    ZQIndexSet kept = m_selection;
    kept.remove(m_layout.count(), std::max(kept.last(), m_layout.count()));
    m_current = std::min(m_current, m_layout.count() - 1);
    m_anchor = std::min(m_anchor, m_layout.count() - 1);
    setSelectionQuietly(kept);
    relayout();
    zqGridContentChanged(this);
}

void ZQGridView::updateVisible()
{
    viewport()->update();
}

void ZQGridView::relayout()
{
    if (m_showsList) {
        m_layout.setListGeometry(viewport()->width(), m_zoom);
        m_listPlaces = m_listHead->columns().places(viewport()->width() - 2 * ZQGridLayout::sideMargin);
        m_listHead->setGeometry(viewport()->x(), 0, viewport()->width(), ZQListHead::height);
    } else {
        m_layout.setGeometry(viewport()->width(), m_zoom, m_showsTitles);
    }
    updateScrollBar();
    viewport()->update();
    Q_EMIT visibleChanged();
}

void ZQGridView::updateScrollBar()
{
    const qint64 range = std::max<qint64>(0, m_layout.contentHeight() - viewport()->height());
    m_unit = range / (qint64(1) << 30) + 1;
    QScrollBar *bar = verticalScrollBar();
    bar->setRange(0, int(range / m_unit));
    bar->setPageStep(int(std::max<qint64>(1, viewport()->height() / m_unit)));
    bar->setSingleStep(int(std::max<qint64>(1, 48 / m_unit)));
}

qint64 ZQGridView::scrollOffset() const
{
    return verticalScrollBar()->value() * m_unit;
}

void ZQGridView::setScrollOffset(qint64 offset)
{
    verticalScrollBar()->setValue(int(std::clamp<qint64>(offset / m_unit, 0, verticalScrollBar()->maximum())));
}

void ZQGridView::scrollContentsBy(int /*dx*/, int /*dy*/)
{
    viewport()->update();
    Q_EMIT visibleChanged();
}

void ZQGridView::resizeEvent(QResizeEvent * /*event*/)
{
    const qint64 top = m_layout.indexAt(ZQGridLayout::sideMargin + 1, scrollOffset() + m_layout.rowHeight() / 2);
    const qint64 before = top < 0 ? 0 : m_layout.cell(top).top - scrollOffset();
    relayout();
    if (top >= 0) {
        setScrollOffset(m_layout.cell(top).top - before);
    }
}

void ZQGridView::setShowsTitles(bool titles, bool extensions)
{
    m_showsTitles = titles || extensions;
    m_showsExtensions = extensions;
    relayout();
}

void ZQGridView::setZoom(double zoom)
{
    setZoom(zoom, viewport()->rect().center());
}

void ZQGridView::setZoom(double zoom, const QPoint &anchor)
{
    zoom = std::clamp(zoom, 0.0, 1.0);
    if (zoom == m_zoom) {
        return;
    }
    const qint64 y = scrollOffset() + anchor.y();
    qint64 index = m_layout.indexAt(layoutX(anchor.x()), y);
    if (index < 0 && m_layout.count() > 0) {
        index = std::clamp<qint64>(m_layout.insertionIndexAt(layoutX(anchor.x()), y), 0, m_layout.count() - 1);
    }
    const ZQGridLayout::Cell before = index < 0 ? ZQGridLayout::Cell() : m_layout.cell(index);
    const double share = before.height > 0 ? double(y - before.top) / before.height : 0;
    m_zoom = zoom;
    relayout();
    if (index >= 0) {
        const ZQGridLayout::Cell after = m_layout.cell(index);
        setScrollOffset(after.top + qint64(std::lround(share * after.height)) - anchor.y());
    }
    Q_EMIT zoomChanged(zoom);
}

int ZQGridView::stickyGroup() const
{
    return m_layout.hasHeads() ? m_layout.groupAtY(scrollOffset()) : -1;
}

QRect ZQGridView::visualRect(qint64 index) const
{
    const ZQGridLayout::Cell cell = m_layout.cell(index);
    const qint64 top = std::clamp<qint64>(cell.top - scrollOffset(), -(1 << 24), 1 << 24);
    const int left = isRightToLeft() ? viewport()->width() - cell.left - cell.width : cell.left;
    return {left, int(top), cell.width, cell.height};
}

int ZQGridView::layoutX(int x) const
{
    return isRightToLeft() ? viewport()->width() - 1 - x : x;
}

qint64 ZQGridView::indexAt(const QPoint &point) const
{
    if (headAt(point) >= 0) {
        return -1;
    }
    return m_layout.indexAt(layoutX(point.x()), scrollOffset() + point.y());
}

ZQIndexSet ZQGridView::visibleIndexes() const
{
    return m_layout.indexesBetween(scrollOffset(), scrollOffset() + viewport()->height());
}

int ZQGridView::headAt(const QPoint &point) const
{
    if (!m_layout.hasHeads()) {
        return -1;
    }
    if (point.y() < ZQMeasure::groupHeadHeight) {
        return stickyGroup();
    }
    const qint64 y = scrollOffset() + point.y();
    const int group = m_layout.groupAtY(y);
    return group >= 0 && y < m_layout.groupTop(group) + ZQMeasure::groupHeadHeight ? group : -1;
}

void ZQGridView::setSelectionQuietly(const ZQIndexSet &selection)
{
    if (selection == m_selection) {
        return;
    }
    const bool isOne = selection.count() + 1 == m_selection.count() || m_selection.count() + 1 == selection.count() ||
                       (selection.count() == 1 && m_selection.count() <= 1);
    m_selection = selection;
    viewport()->update();
    zqGridSelectionChanged(this, isOne ? m_current : -1);
    Q_EMIT selectionChanged();
}

void ZQGridView::setSelection(const ZQIndexSet &selection)
{
    ZQIndexSet inside = selection;
    inside.remove(m_layout.count(), std::max(inside.last(), m_layout.count()));
    m_current = m_anchor = inside.first();
    setSelectionQuietly(inside);
}

void ZQGridView::setSelected(qint64 index, bool isSelected)
{
    if (index < 0 || index >= m_layout.count() || m_selection.contains(index) == isSelected) {
        return;
    }
    ZQIndexSet selection = m_selection;
    selection.toggle(index);
    m_current = m_anchor = index;
    setSelectionQuietly(selection);
}

void ZQGridView::selectAll()
{
    setSelectionQuietly(ZQIndexSet(0, m_layout.count() - 1));
}

void ZQGridView::setCurrentIndex(qint64 index)
{
    if (index < 0 || index >= m_layout.count()) {
        return;
    }
    if (const int group = m_layout.groupOfIndex(index); m_layout.isCollapsed(group)) {
        setGroupCollapsed(group, false); // it is to be seen
    }
    moveCurrent(index, Qt::NoModifier);
}

QString ZQGridView::groupTitleOf(qint64 index) const
{
    return m_layout.hasHeads() ? m_groups.value(m_layout.groupOfIndex(index)).title : QString();
}

void ZQGridView::scrollToIndex(qint64 index)
{
    if (index < 0 || index >= m_layout.count()) {
        return;
    }
    const ZQGridLayout::Cell cell = m_layout.cell(index);
    const int covered = m_layout.hasHeads() ? ZQMeasure::groupHeadHeight + 6 : 8;
    if (cell.top - covered < scrollOffset()) {
        setScrollOffset(cell.top - covered);
    } else if (cell.top + cell.height + 8 > scrollOffset() + viewport()->height()) {
        setScrollOffset(cell.top + cell.height + 8 - viewport()->height());
    }
}

void ZQGridView::announce(qint64 index)
{
    if (!QAccessible::isActive()) {
        return;
    }
    QAccessibleEvent event(this, QAccessible::Focus);
    event.setChild(int(index));
    QAccessible::updateAccessibility(&event);
}

void ZQGridView::moveCurrent(qint64 index, Qt::KeyboardModifiers modifiers)
{
    if (index < 0) {
        return;
    }
    m_current = index;
    if (modifiers & Qt::ShiftModifier) {
        m_anchor = m_anchor < 0 ? index : m_anchor;
        setSelectionQuietly(ZQIndexSet(std::min(m_anchor, index), std::max(m_anchor, index)));
    } else if (!(modifiers & Qt::ControlModifier)) {
        m_anchor = index;
        setSelectionQuietly(ZQIndexSet(index, index));
    }
    scrollToIndex(index);
    viewport()->update();
    announce(index);
}

void ZQGridView::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
        return;
    }
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    const bool isForward = (event->key() == Qt::Key_Right) != isRightToLeft();
    const qint64 current = m_current;
    const int pageRows = std::max(1, viewport()->height() / std::max(1, m_layout.rowHeight()));
    const auto step = [&](qint64 items) {
        return current < 0 ? m_layout.firstShown() : m_layout.movedByItems(current, items);
    };
    const bool isAlt = modifiers & Qt::AltModifier;
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        if (m_layout.hasHeads() && (isAlt || m_showsList || (isOnHead() && isForward))) {
            collapseCurrentGroup(!isForward);
        } else {
            moveCurrent(step(isForward ? 1 : -1), modifiers);
        }
        return;
    case Qt::Key_Up:
        moveCurrent(m_layout.movedByRows(current, -1), modifiers);
        return;
    case Qt::Key_Down:
        moveCurrent(m_layout.movedByRows(current, 1), modifiers);
        return;
    case Qt::Key_PageUp:
        moveCurrent(m_layout.movedByRows(current, -pageRows), modifiers);
        return;
    case Qt::Key_PageDown:
        moveCurrent(m_layout.movedByRows(current, pageRows), modifiers);
        return;
    case Qt::Key_Home:
        moveCurrent(m_layout.firstShown(), modifiers & ~Qt::ControlModifier);
        return;
    case Qt::Key_End:
        moveCurrent(m_layout.lastShown(), modifiers & ~Qt::ControlModifier);
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (current >= 0) {
            Q_EMIT activated(current);
        }
        return;
    case Qt::Key_Space:
        if (current >= 0 && (modifiers & Qt::ControlModifier)) {
            setSelected(current, !m_selection.contains(current));
            return;
        }
        if (!m_typed.isEmpty() && m_typedAt.elapsed() < 1000) {
            typeToJump(event->text());
        } else if (current >= 0) {
            Q_EMIT quickLookRequested(current);
        }
        return;
    default:
        break;
    }
    const QString text = event->text();
    if (!text.isEmpty() && text.at(0).isPrint() &&
        !(modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))) {
        typeToJump(text);
        return;
    }
    QAbstractScrollArea::keyPressEvent(event);
}

void ZQGridView::typeToJump(const QString &text)
{
    if (!isTyping()) {
        m_typed.clear();
    }
    const bool isFirst = m_typed.isEmpty();
    m_typed += text;
    m_typedAt.restart();
    if (!m_source || m_layout.count() == 0) {
        return;
    }
    const qint64 from = m_current < 0 ? 0 : (isFirst ? m_current + 1 : m_current) % m_layout.count();
    setCurrentIndex(m_source->indexForTyping(m_typed, from));
}

void ZQGridView::wheelEvent(QWheelEvent *event)
{
    if (event->modifiers() & Qt::ControlModifier) {
        setZoom(m_zoom + event->angleDelta().y() / 120.0 * 0.04, event->position().toPoint());
        event->accept();
        return;
    }
    if (!event->pixelDelta().isNull()) {
        setScrollOffset(scrollOffset() - event->pixelDelta().y());
        event->accept();
        return;
    }
    QAbstractScrollArea::wheelEvent(event);
}

// A title being typed goes on before a key of it means a command.
bool ZQGridView::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && isTyping()) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const bool isText = !key->text().isEmpty() && key->text().at(0).isPrint();
        if (isText && !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))) {
            event->accept();
            return true;
        }
    }
    const bool isDone = QAbstractScrollArea::event(event);
    if (event->type() == QEvent::LayoutDirectionChange) {
        relayout(); // the viewport has moved to the other side of its bar
    }
    return isDone;
}

bool ZQGridView::isTyping() const
{
    constexpr qint64 pause = 1000;
    return !m_typed.isEmpty() && m_typedAt.isValid() && m_typedAt.elapsed() <= pause;
}

bool ZQGridView::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::NativeGesture) {
        const auto *gesture = static_cast<QNativeGestureEvent *>(event);
        if (gesture->gestureType() == Qt::ZoomNativeGesture) {
            setZoom(m_zoom + gesture->value() * 0.5, gesture->position().toPoint());
            return true;
        }
    }
    return QAbstractScrollArea::viewportEvent(event);
}

void ZQGridView::contextMenuEvent(QContextMenuEvent *event)
{
    QPoint point = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard && m_current >= 0) {
        point = viewport()->mapToGlobal(visualRect(m_current).center());
    } else if (event->reason() == QContextMenuEvent::Mouse) {
        const qint64 index = indexAt(event->pos());
        if (index >= 0 && !m_selection.contains(index)) {
            moveCurrent(index, Qt::NoModifier);
        }
    }
    Q_EMIT contextMenuRequested(point);
}

void ZQGridView::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    m_isReachedByKey = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    viewport()->update();
    if (m_current >= 0) {
        announce(m_current); // after the grid itself
    }
}

void ZQGridView::focusOutEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

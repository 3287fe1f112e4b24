#include "Classes/Interface/Export/PresetsView.h"

#include "Classes/Interface/Export/ExportPresets.h"
#include "Classes/Interface/Export/PresetCell.h"
#include "Classes/Interface/Export/PresetIcon.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QContextMenuEvent>
#include <QDrag>
#include <QDragMoveEvent>
#include <QLabel>
#include <QMimeData>
#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace {

constexpr int stepX = PresetCell::cellSize.width() + PresetsView::spacing.width();
constexpr int stepY = PresetCell::cellSize.height() + PresetsView::spacing.height();
constexpr int emptyHeight = 60;

} // namespace

PresetsView::PresetsView(ExportPresets &presets, QWidget *parent)
    : QWidget(parent), m_presets(presets),
      m_empty(new QLabel(zqLocalized("There are no presets. Make one below."), this))
{
    setAcceptDrops(true);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    m_empty->setObjectName(QStringLiteral("SmallMuted"));
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setWordWrap(true);
    connect(&presets, &ExportPresets::changed, this, &PresetsView::reload);
    reload();
}

void PresetsView::reload()
{
    QString focused;
    for (const PresetCell *cell : std::as_const(m_cells)) {
        focused = cell->hasFocus() ? cell->preset().identifier : focused;
    }
    // Not at once: the one whose key or menu brought this is still at work.
    const QList<PresetCell *> old = m_cells;
    const qsizetype focusedIndex =
        std::find_if(old.begin(), old.end(), [](const PresetCell *cell) { return cell->hasFocus(); }) - old.begin();
    m_cells.clear();
    for (const ExportItem &preset : m_presets.items()) {
        m_cells.append(makeCell(preset));
    }
    layOut();
    enableCells();
    if (!focused.isEmpty() && !m_cells.isEmpty()) {
        const qsizetype again = m_presets.indexOf(focused);
        m_cells[again >= 0 ? again : std::min(focusedIndex, m_cells.size() - 1)]->setFocus();
    }
    for (PresetCell *cell : old) {
        cell->hide();
        cell->deleteLater();
    }
    m_empty->setVisible(m_cells.isEmpty());
    updateGeometry();
}

PresetCell *PresetsView::makeCell(const ExportItem &preset)
{
    auto *cell = new PresetCell(preset, this);
    cell->setEditing(m_isEditing);
    const QString identifier = preset.identifier;
    connect(cell, &PresetCell::clicked, this, [this, identifier] {
        if (!m_isEditing) {
            Q_EMIT chosen(identifier);
        }
    });
    // Later: the cell may be gone when the drag ends.
    const auto startDrag = [this, identifier] {
        if (m_isEditing) {
            startMove(identifier);
        } else {
            Q_EMIT dragRequested(identifier);
        }
    };
    connect(cell, &PresetCell::dragRequested, this, startDrag, Qt::QueuedConnection);
    connect(cell, &PresetCell::deleteRequested, this, [this, identifier] { m_presets.deleteItem(identifier); });
    connect(cell, &PresetCell::moveRequested, this, [this, cell](Qt::Key arrow) { moveFocus(cell, arrow); });
    cell->show();
    return cell;
}

void PresetsView::setEditing(bool isEditing)
{
    m_isEditing = isEditing;
    for (PresetCell *cell : std::as_const(m_cells)) {
        cell->setEditing(isEditing);
    }
    enableCells();
}

void PresetsView::setHasSelection(bool hasSelection)
{
    m_hasSelection = hasSelection;
    enableCells();
}

void PresetsView::enableCells()
{
    for (PresetCell *cell : std::as_const(m_cells)) {
        cell->setEnabled(m_isEditing || m_hasSelection);
    }
}

// Geometry.

int PresetsView::columnsFor(int width) const
{
    return std::max(1, (width + spacing.width()) / stepX);
}

QRect PresetsView::placeOf(qsizetype index) const
{
    const int columns = columnsFor(width());
    const int left = std::max(0, (width() - columns * stepX + spacing.width()) / 2);
    const int column = int(index) % columns;
    const int row = int(index) / columns;
    return QStyle::visualRect(layoutDirection(), {0, 0, width(), height()},
                              {QPoint(left + column * stepX, row * stepY), PresetCell::cellSize});
}

int PresetsView::heightForWidth(int width) const
{
    const int columns = columnsFor(width);
    const int rows = (int(m_presets.items().size()) + columns - 1) / columns;
    return rows == 0 ? emptyHeight : rows * stepY - spacing.height();
}

QSize PresetsView::minimumSizeHint() const
{
    return {PresetCell::cellSize.width(), heightForWidth(std::max(width(), PresetCell::cellSize.width()))};
}

QSize PresetsView::sizeHint() const
{
    return minimumSizeHint();
}

void PresetsView::layOut()
{
    for (qsizetype i = 0; i < m_cells.size(); ++i) {
        m_cells[i]->move(placeOf(i).topLeft());
    }
    m_empty->setGeometry(0, 0, width(), emptyHeight);
}

void PresetsView::resizeEvent(QResizeEvent * /*event*/)
{
    layOut();
    updateGeometry();
}

void PresetsView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange) {
        layOut();
    }
}

qsizetype PresetsView::dropIndexAt(const QPoint &point) const
{
    const qsizetype count = m_cells.size();
    const int columns = columnsFor(width());
    const qsizetype rows = std::max<qsizetype>(1, (count + columns - 1) / columns);
    const qsizetype row = std::clamp<qsizetype>(point.y() / stepY, 0, rows - 1);
    const QRect first = placeOf(0);
    const int fromFirst =
        (isRightToLeft() ? first.right() - point.x() : point.x() - first.left()) + spacing.width() / 2;
    const qsizetype column = std::clamp((fromFirst + stepX / 2) / stepX, 0, columns);
    return std::min(row * columns + column, count);
}

// Reordering.

void PresetsView::startMove(const QString &identifier)
{
    const qsizetype index = m_presets.indexOf(identifier);
    if (index < 0) {
        return;
    }
    m_moved = identifier;
    auto *drag = new QDrag(this);
    auto *mime = new QMimeData;
    mime->setData(internalDropType, {});
    drag->setMimeData(mime);
    const qreal scale = devicePixelRatioF() / PresetIcon::dragScale;
    QImage icon = PresetIcon::dragImage(m_presets.items()[index], scale);
    icon.setDevicePixelRatio(devicePixelRatioF());
    drag->setPixmap(QPixmap::fromImage(icon));
    drag->setHotSpot({PresetIcon::dragSize.width() / 2, PresetIcon::dragSize.height() / 2});
    drag->exec(Qt::MoveAction);
    m_moved.clear();
}

void PresetsView::setDropIndex(qsizetype index)
{
    m_dropIndex = index;
    update();
}

void PresetsView::dragEnterEvent(QDragEnterEvent *event)
{
    dragMoveEvent(event);
}

void PresetsView::dragMoveEvent(QDragMoveEvent *event)
{
    const bool isOurs = m_isEditing && !m_moved.isEmpty() && event->mimeData()->hasFormat(internalDropType);
    setDropIndex(isOurs ? dropIndexAt(event->position().toPoint()) : -1);
    if (isOurs) {
        event->setDropAction(Qt::MoveAction);
        event->accept();
    } else {
        event->ignore();
    }
}

void PresetsView::dragLeaveEvent(QDragLeaveEvent * /*event*/)
{
    setDropIndex(-1);
}

void PresetsView::dropEvent(QDropEvent *event)
{
    const bool isOurs = m_isEditing && !m_moved.isEmpty() && event->mimeData()->hasFormat(internalDropType);
    setDropIndex(-1);
    if (!isOurs) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::MoveAction);
    event->accept();
    m_presets.moveItem(m_moved, dropIndexAt(event->position().toPoint()));
}

void PresetsView::paintEvent(QPaintEvent * /*event*/)
{
    if (m_dropIndex < 0) {
        return;
    }
    // Behind the last one of a row, where the next would begin a row of its own.
    const bool isBehind = m_dropIndex > 0 && m_dropIndex % columnsFor(width()) == 0 && m_dropIndex == m_cells.size();
    const QRect place = placeOf(isBehind ? m_dropIndex - 1 : m_dropIndex);
    const bool isOnRight = isBehind != isRightToLeft();
    const int x = isOnRight ? std::min(place.right() + 4, width() - 3) : std::max(place.left() - 4, 0);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(zqColor(ZQColorRole::Accent));
    painter.drawRoundedRect(QRect(x, place.top() + 4, 3, place.height() - 8), 1.5, 1.5);
}

// Pointer and keys.

void PresetsView::contextMenuEvent(QContextMenuEvent *event)
{
    const QPoint point =
        event->reason() == QContextMenuEvent::Keyboard ? mapFromGlobal(event->globalPos()) : event->pos();
    QString identifier;
    for (const PresetCell *cell : std::as_const(m_cells)) {
        const bool isMeant =
            event->reason() == QContextMenuEvent::Keyboard ? cell->hasFocus() : cell->geometry().contains(point);
        identifier = isMeant ? cell->preset().identifier : identifier;
    }
    event->accept();
    Q_EMIT menuRequested(identifier, event->globalPos());
}

void PresetsView::moveFocus(PresetCell *from, Qt::Key arrow)
{
    const int columns = columnsFor(width());
    const int forward = isRightToLeft() ? -1 : 1;
    const int step = arrow == Qt::Key_Left    ? -forward
                     : arrow == Qt::Key_Right ? forward
                     : arrow == Qt::Key_Up    ? -columns
                                              : columns;
    const qsizetype to = m_cells.indexOf(from) + step;
    if (to >= 0 && to < m_cells.size()) {
        m_cells[to]->setFocus(Qt::OtherFocusReason);
    }
}

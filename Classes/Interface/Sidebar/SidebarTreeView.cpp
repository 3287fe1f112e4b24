#include "Classes/Interface/Sidebar/SidebarTreeView.h"

#include "Kit/Widgets/ZQIcon.h"

#include <QApplication>
#include <QDrag>
#include <QHeaderView>
#include <QHelpEvent>
#include <QLocale>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTimer>
#include <QToolTip>

namespace {

constexpr int rowMargin = SidebarDelegate::rowMargin;
constexpr int twistyRoom = SidebarDelegate::twistyRoom;

bool isLabel(const QModelIndex &index)
{
    return SidebarDelegate::isLabel(index);
}

} // namespace

SidebarTreeView::SidebarTreeView(QWidget *parent) : QTreeView(parent)
{
    setItemDelegate(new SidebarDelegate(m_turningSign, this));
    setHeaderHidden(true);
    setIndentation(0);
    setRootIsDecorated(false);
    setItemsExpandable(true);
    setExpandsOnDoubleClick(false);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::EditKeyPressed);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(false);
    setMouseTracking(true);
    setFrameShape(QFrame::NoFrame);
    setUniformRowHeights(false);
}

void SidebarTreeView::setTree(SidebarTreeModel *model)
{
    setModel(model);
    connect(model, &SidebarTreeModel::failed, viewport(), qOverload<>(&QWidget::update));
    connect(model, &QAbstractItemModel::dataChanged, this, &SidebarTreeView::renewToolTip);
    connect(model, &QAbstractItemModel::modelReset, this, &SidebarTreeView::renewToolTip);
    connect(&m_turningSign, &ZQTurningSign::turned, this, &SidebarTreeView::turnSigns);
}

SidebarTreeView::TopRow SidebarTreeView::topRow() const
{
    const QModelIndex top = verticalScrollBar()->value() > 0 ? indexAt({0, 0}) : QModelIndex();
    return top.isValid() ? TopRow{tree()->item(top)->objectID(), visualRect(top).top()} : TopRow();
}

void SidebarTreeView::keepOnTop(const TopRow &row)
{
    const QModelIndex index = row.item.isNull() ? QModelIndex() : tree()->indexOf(row.item);
    if (index.isValid()) {
        verticalScrollBar()->setValue(verticalScrollBar()->value() + visualRect(index).top() - row.top);
    }
}

QRegion SidebarTreeView::signsInView() const
{
    QRegion signs;
    const bool isInView = isVisible() && !window()->isMinimized();
    const QModelIndexList syncing = isInView ? tree()->syncingRows() : QModelIndexList();
    for (const QModelIndex &index : syncing) {
        if (const QRect row = visualRect(index); row.intersects(viewport()->rect())) {
            constexpr int beyond = 2; // corners of what turns
            signs += SidebarDelegate::signRect(row, index).adjusted(-beyond, -beyond, beyond, beyond);
        }
    }
    return signs;
}

// Where none is in view, nothing turns until one is painted.
void SidebarTreeView::turnSigns()
{
    const QRegion signs = signsInView();
    m_turningSign.setInView(!signs.isEmpty());
    viewport()->update(signs);
}

bool SidebarTreeView::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto *const help = static_cast<QHelpEvent *>(event);
        m_tipped = indexAt(help->pos());
        m_tipPlace = help->globalPos();
        m_tip = m_tipped.data(Qt::ToolTipRole).toString();
    }
    return QTreeView::viewportEvent(event);
}

// What is said of a folder may be over while it is being read.
void SidebarTreeView::renewToolTip()
{
    const QString text = m_tipped.isValid() ? m_tipped.data(Qt::ToolTipRole).toString() : QString();
    if (text != m_tip && QToolTip::isVisible() && QToolTip::text() == m_tip) { // and not another widget's
        m_tip = text;
        QToolTip::showText(m_tipPlace, text, viewport()); // none hides it
    }
}

void SidebarTreeView::hideEvent(QHideEvent *event)
{
    m_turningSign.setInView(false);
    QTreeView::hideEvent(event);
}

void SidebarTreeView::drawBranches(QPainter * /*painter*/, const QRect & /*rect*/, const QModelIndex & /*index*/) const
{
}

void SidebarTreeView::drawRow(QPainter *painter, const QStyleOptionViewItem &options, const QModelIndex &index) const
{
    // The style would fill the row before the delegate draws its rounded one.
    QStyleOptionViewItem option = options;
    option.rect = visualRect(index);
    option.rect.setLeft(0);
    option.rect.setRight(viewport()->width() - 1);
    option.widget = this;
    option.state.setFlag(QStyle::State_Selected, selectionModel()->isSelected(index));
    option.state.setFlag(QStyle::State_HasFocus, hasFocus() && currentIndex() == index);
    option.state.setFlag(QStyle::State_MouseOver,
                         indexAt(viewport()->mapFromGlobal(QCursor::pos())) == index && viewport()->underMouse());
    itemDelegate()->paint(painter, option, index);
}

void SidebarTreeView::paintEvent(QPaintEvent *event)
{
    if (!m_turningSign.isTurning()) {
        m_turningSign.setInView(!signsInView().isEmpty());
    }
    QTreeView::paintEvent(event);
    if (const QString text = tree()->emptyText(); !text.isEmpty()) {
        QPainter painter(viewport());
        painter.setPen(zqColor(ZQColorRole::TextMuted));
        const int margin = 2 * rowMargin;
        painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
                         Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, text);
    }
    if (m_dropRow.isNull() && m_dropLine.isNull()) {
        return;
    }
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    paintDropHint(painter);
    if (!m_dropLine.isNull()) {
        painter.fillRect(m_dropLine, zqColor(ZQColorRole::Accent));
    } else {
        painter.setPen(QPen(zqColor(ZQColorRole::Accent), 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(m_dropRow).adjusted(rowMargin + 1, 1, -rowMargin - 1, -1), ZQMeasure::rowRadius,
                                ZQMeasure::rowRadius);
    }
}

void SidebarTreeView::paintDropHint(QPainter &painter) const
{
    if (m_dropHint.isEmpty()) {
        return;
    }
    painter.setFont(ZQTheme::current().font(ZQMeasure::smallTextSize));
    const int height = painter.fontMetrics().height() + 10;
    const QRect box(rowMargin + 4, viewport()->height() - height - 12, viewport()->width() - 2 * (rowMargin + 4),
                    height);
    painter.setPen(Qt::NoPen);
    painter.setBrush(zqColor(ZQColorRole::AccentFill));
    painter.drawRoundedRect(box, ZQMeasure::rowRadius, ZQMeasure::rowRadius);
    painter.setPen(zqColor(ZQColorRole::AccentText));
    painter.drawText(box, Qt::AlignCenter,
                     painter.fontMetrics().elidedText(m_dropHint, Qt::ElideRight, box.width() - 12));
}

QList<ZQObjectID> SidebarTreeView::neighboursOfSelection() const
{
    constexpr int furthest = 50;
    QModelIndexList selected = selectionModel()->selectedIndexes();
    if (selected.isEmpty()) {
        return {};
    }
    std::sort(selected.begin(), selected.end(),
              [this](const QModelIndex &a, const QModelIndex &b) { return visualRect(a).top() < visualRect(b).top(); });
    QList<ZQObjectID> result;
    const auto add = [&](const QModelIndex &index) {
        if (index.flags() & Qt::ItemIsSelectable) {
            result.append(tree()->item(index)->objectID());
        }
    };
    int left = furthest;
    for (QModelIndex at = indexBelow(selected.last()); at.isValid() && left > 0; at = indexBelow(at), --left) {
        add(at);
    }
    left = furthest;
    for (QModelIndex at = indexAbove(selected.first()); at.isValid() && left > 0; at = indexAbove(at), --left) {
        add(at);
    }
    return result;
}

void SidebarTreeView::mousePressEvent(QMouseEvent *event)
{
    const QModelIndex index = indexAt(event->pos());
    m_pressedSelected = QPersistentModelIndex();
    if (index.isValid() && event->button() == Qt::LeftButton) {
        const bool hasButton = !index.data(SidebarTreeModel::ButtonRole).toString().isEmpty();
        const QRect button = SidebarDelegate::labelButtonRect(visualRect(index));
        if (hasButton && button.adjusted(-6, -6, 6, 6).contains(event->pos())) {
            Q_EMIT labelButtonPressed(index, viewport()->mapToGlobal(button.bottomLeft()));
            return;
        }
        const bool isTwisty =
            model()->hasChildren(index) &&
            SidebarDelegate::twistyRect(visualRect(index), index).adjusted(-4, -9, 3, 9).contains(event->pos());
        if (isTwisty || (isLabel(index) && model()->hasChildren(index))) {
            setExpanded(index, !isExpanded(index));
            return;
        }
        const bool isOnlySelected =
            selectionModel()->isSelected(index) && selectionModel()->selectedIndexes().size() == 1;
        if (isOnlySelected && hasFocus() && event->modifiers() == Qt::NoModifier &&
            SidebarDelegate::mirrored(visualRect(index), {event->pos(), QSize(1, 1)}).x() >=
                SidebarDelegate::titleLeft(visualRect(index), index)) {
            m_pressedSelected = index;
        }
    }
    if (!index.isValid()) {
        return; // a click in the void keeps what the browser shows
    }
    QTreeView::mousePressEvent(event);
}

void SidebarTreeView::keyPressEvent(QKeyEvent *event)
{
    m_renamed = QPersistentModelIndex();
    const bool turns = event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (turns && isSection(currentIndex())) {
        setExpanded(currentIndex(), !isExpanded(currentIndex()));
        return;
    }
    QTreeView::keyPressEvent(event);
}

bool SidebarTreeView::isSection(const QModelIndex &index) const
{
    return index.isValid() && isLabel(index) && model()->hasChildren(index);
}

// Labels are no rows of a person: what stands on one is seen nowhere. Only where a section is closed or about to be do
// the arrows stop at its label, so that it can be opened and closed.
QModelIndex SidebarTreeView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    const QModelIndex next = QTreeView::moveCursor(action, modifiers);
    const bool isStep = action == MoveUp || action == MoveDown || action == MovePrevious || action == MoveNext;
    if (!next.isValid() || !isLabel(next) ||
        (isSection(next) && (action == MoveLeft || action == MoveRight || (isStep && !isExpanded(next))))) {
        return next.isValid() ? next : currentIndex();
    }
    const bool isUp = action == MoveUp || action == MovePrevious || action == MoveHome || action == MovePageUp;
    QModelIndex above = next;
    QModelIndex below = next;
    while (above.isValid() && isLabel(above)) {
        above = indexAbove(above);
    }
    while (below.isValid() && isLabel(below)) {
        below = indexBelow(below);
    }
    const QModelIndex wanted = isUp ? above : below;
    const QModelIndex other = isStep ? currentIndex() : isUp ? below : above; // a page or an end stops at the last row
    return wanted.isValid() ? wanted : other.isValid() ? other : currentIndex();
}

// What is shown stays while the arrows stand on a label.
QItemSelectionModel::SelectionFlags SidebarTreeView::selectionCommand(const QModelIndex &index,
                                                                      const QEvent *event) const
{
    return index.isValid() && isLabel(index) ? QItemSelectionModel::NoUpdate
                                             : QTreeView::selectionCommand(index, event);
}

void SidebarTreeView::mouseReleaseEvent(QMouseEvent *event)
{
    QTreeView::mouseReleaseEvent(event);
    const QPersistentModelIndex index = std::exchange(m_pressedSelected, QPersistentModelIndex());
    if (!index.isValid() || indexAt(event->pos()) != index || !(index.flags() & Qt::ItemIsEditable)) {
        return;
    }
    m_renamed = index;
    QTimer::singleShot(QApplication::doubleClickInterval(), this, [this, index] {
        if (index.isValid() && m_renamed == index && currentIndex() == index && state() == NoState && hasFocus()) {
            edit(index);
        }
    });
}

void SidebarTreeView::mouseDoubleClickEvent(QMouseEvent *event)
{
    const QModelIndex index = indexAt(event->pos());
    m_pressedSelected = QPersistentModelIndex();
    if (index.isValid() && model()->hasChildren(index) && !isLabel(index)) {
        setExpanded(index, !isExpanded(index));
    }
}

// The first row's title, and how many come with it.
QPixmap SidebarTreeView::dragPicture(const QModelIndexList &dragged) const
{
    constexpr int padding = 8;
    constexpr int widest = 180;
    const QFont font = ZQTheme::current().font(ZQMeasure::smallTextSize);
    const QFontMetrics metrics(font);
    QString text = metrics.elidedText(dragged.first().data().toString(), Qt::ElideRight, widest);
    if (dragged.size() > 1) {
        text += QStringLiteral("  +") + QLocale().toString(dragged.size() - 1);
    }
    const QSize size(metrics.horizontalAdvance(text) + 2 * padding, ZQMeasure::rowHeight - 4);
    QPixmap picture(size * devicePixelRatioF());
    picture.setDevicePixelRatio(devicePixelRatioF());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(zqColor(ZQColorRole::Border), 1));
    painter.setBrush(zqColor(ZQColorRole::Raised2));
    painter.drawRoundedRect(QRectF({}, size).adjusted(0.5, 0.5, -0.5, -0.5), ZQMeasure::rowRadius,
                            ZQMeasure::rowRadius);
    painter.setFont(font);
    painter.setPen(zqColor(ZQColorRole::Text));
    painter.drawText(QRect({}, size), Qt::AlignCenter, text);
    return picture;
}

void SidebarTreeView::startDrag(Qt::DropActions /*actions*/)
{
    QModelIndexList dragged;
    for (const QModelIndex &index : selectionModel()->selectedIndexes()) {
        if (index.flags() & Qt::ItemIsDragEnabled) {
            dragged.append(index);
        }
    }
    QMimeData *mime = makeDrag && !dragged.isEmpty() ? makeDrag(dragged) : nullptr;
    if (!mime) {
        return;
    }
    auto *drag = new QDrag(this);
    drag->setMimeData(mime);
    constexpr int distance = 14; // so that it covers no target
    drag->setPixmap(dragPicture(dragged));
    drag->setHotSpot({-distance, -distance});
    drag->exec(Qt::MoveAction);
}

QList<SidebarDropPlace> SidebarTreeView::placesAt(const QPoint &point) const
{
    const QModelIndex index = indexAt(point);
    if (!index.isValid()) {
        return {{}};
    }
    const ZQRef<ZQSidebarBaseItem> item = tree()->item(index);
    const SidebarDropPlace onto{item, -1};
    if (ZQSidebarKind(item->kind()) == ZQSidebarKind::WatchedFoldersLabel) {
        return {onto}; // beside it there is nothing that files could go to
    }
    const SidebarDropPlace before{tree()->item(index.parent()), index.row()};
    const bool isOpen = isExpanded(index) && model()->rowCount(index) > 0;
    const SidebarDropPlace after =
        isOpen ? SidebarDropPlace{item, 0} : SidebarDropPlace{tree()->item(index.parent()), index.row() + 1};
    const QRect row = visualRect(index);
    const int y = point.y() - row.top();
    if (y < row.height() / 4) {
        return {before, onto};
    }
    if (y > row.height() * 3 / 4) {
        return {after, onto};
    }
    return y < row.height() / 2 ? QList<SidebarDropPlace>{onto, before} : QList<SidebarDropPlace>{onto, after};
}

bool SidebarTreeView::choosePlace(const QMimeData *mime, const QPoint &point, SidebarDropPlace &place,
                                  Qt::DropAction &action) const
{
    for (const SidebarDropPlace &candidate : placesAt(point)) {
        action = validateDrop ? validateDrop(mime, candidate) : Qt::IgnoreAction;
        if (action != Qt::IgnoreAction) {
            place = candidate;
            return true;
        }
    }
    return false;
}

void SidebarTreeView::showPlace(const SidebarDropPlace *place)
{
    m_dropRow = m_dropLine = {};
    m_dropHint = place ? m_dropHint : QString();
    if (place && place->target) {
        const QModelIndex target = tree()->indexOf(place->target->objectID());
        if (place->index < 0) {
            m_dropRow = QRect(0, visualRect(target).top(), viewport()->width(), visualRect(target).height());
        } else {
            const int rows = model()->rowCount(target);
            const QModelIndex beside = rows == 0 ? target : model()->index(std::min(place->index, rows - 1), 0, target);
            const QRect row = visualRect(beside);
            const int y = rows == 0 || place->index >= rows ? row.bottom() : row.top() - 1;
            const int left = (rows == 0 ? rowMargin + twistyRoom
                                        : SidebarDelegate::titleLeft(row, beside) - ZQMeasure::iconSize - 8);
            m_dropLine =
                SidebarDelegate::mirrored(viewport()->rect(), {left, y, viewport()->width() - left - rowMargin, 2});
        }
    } else if (place) {
        m_dropRow = viewport()->rect();
    }
    viewport()->update();
}

void SidebarTreeView::dragEnterEvent(QDragEnterEvent *event)
{
    dragMoveEvent(event);
    event->accept(); // what enters over a row that refuses may go on to one that does not
}

void SidebarTreeView::dragMoveEvent(QDragMoveEvent *event)
{
    constexpr int edge = 20;
    const int y = event->position().toPoint().y();
    const int step = y < edge ? -edge : y > viewport()->height() - edge ? edge : 0;
    verticalScrollBar()->setValue(verticalScrollBar()->value() + step);
    SidebarDropPlace place;
    Qt::DropAction action = Qt::IgnoreAction;
    if (choosePlace(event->mimeData(), event->position().toPoint(), place, action)) {
        event->setDropAction(action);
        event->accept();
        m_dropHint = dropHint ? dropHint(event->mimeData(), place) : QString();
        showPlace(&place);
    } else {
        event->ignore();
        showPlace(nullptr);
    }
}

void SidebarTreeView::dragLeaveEvent(QDragLeaveEvent * /*event*/)
{
    showPlace(nullptr);
}

void SidebarTreeView::dropEvent(QDropEvent *event)
{
    SidebarDropPlace place;
    Qt::DropAction action = Qt::IgnoreAction;
    showPlace(nullptr);
    if (choosePlace(event->mimeData(), event->position().toPoint(), place, action) && acceptDrop &&
        acceptDrop(event->mimeData(), place)) {
        event->setDropAction(action);
        event->accept();
    } else {
        event->ignore();
    }
}

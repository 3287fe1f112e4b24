#include "Classes/Interface/Sidebar/SidebarTreeView.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQIcon.h"
#include "Kit/Widgets/ZQSwatch.h"

#include <QApplication>
#include <QDrag>
#include <QHeaderView>
#include <QLineEdit>
#include <QLocale>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTimer>

namespace {

constexpr int rowMargin = 8;
constexpr int twistyRoom = 14;
constexpr int levelIndent = 16;
constexpr int labelHeight = 32;

int depthOf(const QModelIndex &index)
{
    int depth = 0;
    for (QModelIndex above = index.parent(); above.isValid(); above = above.parent()) {
        ++depth;
    }
    return depth;
}

bool isLabel(const QModelIndex &index)
{
    return index.data(SidebarTreeModel::LabelRole).toBool();
}

} // namespace

int SidebarDelegate::titleLeft(const QRect &row, const QModelIndex &index)
{
    return row.left() + rowMargin + twistyRoom + levelIndent * std::max(0, depthOf(index) - 1) + ZQMeasure::iconSize +
           8;
}

QRect SidebarDelegate::twistyRect(const QRect &row, const QModelIndex &index)
{
    const int x = row.left() + rowMargin + 2 + levelIndent * std::max(0, depthOf(index) - 1);
    return {x, row.top() + (row.height() - 10) / 2, 10, 10};
}

QRect SidebarDelegate::labelMenuRect(const QRect &row)
{
    constexpr int size = 14;
    return {row.right() - rowMargin - 8 - size, row.center().y() + 4 - size / 2, size, size};
}

QSize SidebarDelegate::sizeHint(const QStyleOptionViewItem & /*option*/, const QModelIndex &index) const
{
    return {100, isLabel(index) ? labelHeight : ZQMeasure::rowHeight};
}

void SidebarDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRect row = option.rect;
    const QString title = index.data().toString();
    if (isLabel(index)) {
        QFont font = ZQTheme::current().font(ZQMeasure::tinyTextSize, QFont::DemiBold);
        font.setLetterSpacing(QFont::PercentageSpacing, 104);
        painter->setFont(font);
        if ((option.state & QStyle::State_HasFocus) && option.widget && option.widget->hasFocus()) {
            painter->setPen(QPen(zqColor(ZQColorRole::Accent), 1));
            painter->drawRoundedRect(QRectF(row).adjusted(rowMargin, 8.5, -rowMargin, -0.5), ZQMeasure::rowRadius,
                                     ZQMeasure::rowRadius);
        }
        painter->setPen(zqColor(ZQColorRole::TextFaint));
        painter->drawText(row.adjusted(16, 8, -16, 0), Qt::AlignVCenter, title);
        if (index.data(SidebarTreeModel::MenuRole).toBool()) {
            ZQIcon::paint(*painter, labelMenuRect(row), QStringLiteral("menu"), zqColor(ZQColorRole::TextFaint));
        }
        painter->restore();
        return;
    }
    const bool selected = option.state & QStyle::State_Selected;
    const bool isAway = index.data(SidebarTreeModel::StateRole).toBool();
    const QRectF box = QRectF(row).adjusted(rowMargin, 0.5, -rowMargin, -0.5);
    const bool focused = (option.state & QStyle::State_HasFocus) && option.widget && option.widget->hasFocus();
    painter->setPen(focused ? QPen(zqColor(ZQColorRole::Accent), 1) : QPen(Qt::NoPen));
    painter->setBrush(selected                                   ? QBrush(zqColor(ZQColorRole::Select))
                      : (option.state & QStyle::State_MouseOver) ? QBrush(zqColor(ZQColorRole::Hover))
                                                                 : QBrush(Qt::NoBrush));
    painter->drawRoundedRect(box, ZQMeasure::rowRadius, ZQMeasure::rowRadius);
    const int left = titleLeft(row, index);
    const QColor iconColor = zqColor(isAway     ? ZQColorRole::TextFaint
                                     : selected ? ZQColorRole::Accent
                                                : ZQColorRole::TextMuted);
    const QRectF icon(left - ZQMeasure::iconSize - 8, row.top() + (row.height() - ZQMeasure::iconSize) / 2,
                      ZQMeasure::iconSize, ZQMeasure::iconSize);
    const ZQColorRole ground = selected ? ZQColorRole::Select : ZQColorRole::Sunken;
    if (const int swatch = index.data(SidebarTreeModel::SwatchRole).toInt()) {
        painter->setPen(QPen(zqSwatchRing(swatch, zqColor(ground)), 1));
        painter->setBrush(ZQTheme::swatch(swatch));
        painter->drawEllipse(icon.adjusted(2.5, 2.5, -2.5, -2.5));
    } else {
        ZQIcon::paint(*painter, icon, index.data(SidebarTreeModel::IconRole).toString(), iconColor);
    }
    if (index.model()->hasChildren(index)) {
        const auto *tree = qobject_cast<const QTreeView *>(option.widget);
        ZQIcon::paint(*painter, twistyRect(row, index),
                      tree && tree->isExpanded(index) ? QStringLiteral("chevron-down")
                                                      : QStringLiteral("chevron-right"),
                      zqColor(ZQColorRole::TextFaint));
    }
    painter->setFont(ZQTheme::current().font(ZQMeasure::tinyTextSize));
    const QString badge = index.data(SidebarTreeModel::CountRole).toString();
    const int badgeWidth = badge.isEmpty() ? 0 : painter->fontMetrics().horizontalAdvance(badge) + 8;
    painter->setPen(zqColor(selected ? ZQColorRole::TextMuted : ZQColorRole::TextFaint));
    painter->drawText(row.adjusted(0, 0, -rowMargin - 8, 0), int(Qt::AlignVCenter | Qt::AlignRight), badge);
    painter->setFont(ZQTheme::fontForName(ZQTheme::current().font(), title));
    painter->setPen(zqColor(isAway ? ZQColorRole::TextFaint : ZQColorRole::Text));
    const QRect text(left, row.top(), row.right() - rowMargin - 8 - badgeWidth - left, row.height());
    painter->drawText(text, Qt::AlignVCenter, painter->fontMetrics().elidedText(title, Qt::ElideRight, text.width()));
    painter->restore();
}

QWidget *SidebarDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem & /*option*/,
                                       const QModelIndex & /*index*/) const
{
    auto *editor = new QLineEdit(parent);
    editor->setObjectName(QStringLiteral("InlineEditor"));
    editor->setAccessibleName(zqLocalized("Name"));
    return editor;
}

// The rows are refreshed while one is edited; what was typed stays.
void SidebarDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    constexpr const char *isFilled = "zqIsFilled";
    if (!editor->property(isFilled).toBool()) {
        editor->setProperty(isFilled, true);
        auto *line = static_cast<QLineEdit *>(editor);
        line->setText(index.data(Qt::EditRole).toString());
        line->selectAll();
    }
}

void SidebarDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                           const QModelIndex &index) const
{
    const QRect row = option.rect;
    editor->setGeometry(titleLeft(row, index) - 5, row.top() + 2,
                        row.right() - rowMargin - 2 - titleLeft(row, index) + 5, row.height() - 4);
}

SidebarTreeView::SidebarTreeView(QWidget *parent) : QTreeView(parent)
{
    setItemDelegate(new SidebarDelegate(this));
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
        const bool hasMenu = index.data(SidebarTreeModel::MenuRole).toBool();
        const QRect menu = SidebarDelegate::labelMenuRect(visualRect(index));
        if (hasMenu && menu.adjusted(-6, -6, 6, 6).contains(event->pos())) {
            Q_EMIT labelMenuRequested(viewport()->mapToGlobal(menu.bottomLeft()));
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
            event->pos().x() >= SidebarDelegate::titleLeft(visualRect(index), index)) {
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
            m_dropLine = QRect(left, y, viewport()->width() - left - rowMargin, 2);
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

#include "Kit/Widgets/ZQListHead.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQGridLayout.h"
#include "Kit/Widgets/ZQIcon.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QAbstractButton>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>

#include <utility>

namespace {

constexpr int keyStep = 8; // of a line that is moved by keys
constexpr int arrowSize = 10;

enum class Sorted { No, Up, Down };

class Title : public QAbstractButton
{
public:
    using QAbstractButton::QAbstractButton;

    void show(const ZQViewColumn &column, Sorted sorted)
    {
        m_isSortable = column.isSortable;
        m_sorted = sorted;
        setText(column.title);
        setCursor(m_isSortable ? Qt::PointingHandCursor : Qt::ArrowCursor);
        const QString format = sorted == Sorted::Up     ? zqLocalized("%@, ascending")
                               : sorted == Sorted::Down ? zqLocalized("%@, descending")
                                                        : QStringLiteral("%@");
        setAccessibleName(zqFormat(format, {column.title}));
        setToolTip(m_isSortable ? zqFormat(zqLocalized("Sort by %@"), {column.title}) : QString());
        update();
    }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setLayoutDirection(layoutDirection());
        painter.setFont(ZQTheme::current().font(ZQMeasure::tinyTextSize, QFont::DemiBold));
        const bool standsOut = m_sorted != Sorted::No || (m_isSortable && underMouse());
        painter.setPen(zqColor(standsOut ? ZQColorRole::Text : ZQColorRole::TextFaint));
        const int arrow = m_sorted == Sorted::No ? 0 : arrowSize + 3;
        const QString text = painter.fontMetrics().elidedText(this->text(), Qt::ElideRight, width() - arrow);
        painter.drawText(rect(), int(Qt::AlignVCenter | Qt::AlignLeft), text);
        if (m_sorted != Sorted::No) {
            const int left = painter.fontMetrics().horizontalAdvance(text) + 3;
            const QRect arrowBox(left, (height() - arrowSize) / 2, arrowSize, arrowSize);
            ZQIcon::paint(painter, QStyle::visualRect(layoutDirection(), rect(), arrowBox),
                          m_sorted == Sorted::Up ? QStringLiteral("arrow-up") : QStringLiteral("arrow-down"),
                          zqColor(ZQColorRole::Text));
        }
        if (hasFocus()) {
            painter.setPen(QPen(zqColor(ZQColorRole::Accent), 1));
            painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 4.5, -0.5, -4.5), 4, 4);
        }
    }
    void enterEvent(QEnterEvent * /*event*/) override { update(); }
    void leaveEvent(QEvent * /*event*/) override { update(); }

private:
    bool m_isSortable = false;
    Sorted m_sorted = Sorted::No;
};

} // namespace

ZQListHead::ZQListHead(QWidget *parent) : QWidget(parent)
{
    setFixedHeight(height);
    setMouseTracking(true);
    setAccessibleName(zqLocalized("Columns"));
    connect(&ZQTheme::current(), &ZQTheme::changed, this, QOverload<>::of(&QWidget::update));
}

void ZQListHead::setColumns(const ZQViewColumns &columns)
{
    m_columns = columns;
    layOut();
}

void ZQListHead::setSort(const QString &identifier, bool isAscending)
{
    m_sort = identifier;
    m_isAscending = isAscending;
    layOut();
}

int ZQListHead::rowWidth() const
{
    return width() - 2 * ZQGridLayout::sideMargin;
}

void ZQListHead::layOut()
{
    const QList<ZQViewColumns::Place> places = m_columns.places(rowWidth());
    while (m_titles.size() > places.size()) {
        delete m_titles.takeLast();
    }
    while (m_titles.size() < places.size()) {
        auto *title = new Title(this);
        title->setFocusPolicy(m_titles.isEmpty() ? Qt::TabFocus : Qt::NoFocus);
        title->installEventFilter(this);
        connect(title, &QAbstractButton::clicked, this, [this, place = m_titles.size()] {
            const auto shown = m_columns.places(rowWidth());
            if (const ZQViewColumn &column = m_columns.all()[shown[place].column]; column.isSortable) {
                Q_EMIT sortRequested(column.identifier);
            }
        });
        title->QWidget::show();
        m_titles.append(title);
    }
    for (qsizetype i = 0; i < places.size(); ++i) {
        const ZQViewColumn &column = m_columns.all()[places[i].column];
        const Sorted sorted = column.identifier != m_sort ? Sorted::No : m_isAscending ? Sorted::Up : Sorted::Down;
        static_cast<Title *>(m_titles[i])->show(column, sorted);
        m_titles[i]->setGeometry(QStyle::visualRect(
            layoutDirection(), rect(), {ZQGridLayout::sideMargin + places[i].left, 0, places[i].width, height - 1}));
    }
    update();
}

void ZQListHead::resizeEvent(QResizeEvent * /*event*/)
{
    layOut();
}

void ZQListHead::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), zqColor(ZQColorRole::Ground));
    const QColor line = zqColor(ZQColorRole::Border);
    painter.fillRect(QRect(ZQGridLayout::sideMargin, height - 1, rowWidth(), 1), line);
    if (!underMouse() && m_dragged < 0) {
        return;
    }
    for (qsizetype i = 1; i < m_titles.size(); ++i) { // where the lines are that can be dragged
        const QRect mark(titleStart(i) - ZQViewColumns::gap / 2, 8, 1, height - 16);
        painter.fillRect(QStyle::visualRect(layoutDirection(), rect(), mark), line);
    }
}

// The pointer.

int ZQListHead::readingX(int x) const
{
    return isRightToLeft() ? width() - 1 - x : x;
}

int ZQListHead::titleStart(qsizetype place) const
{
    const QRect title = m_titles[place]->geometry();
    return readingX(isRightToLeft() ? title.right() : title.left());
}

qsizetype ZQListHead::boundaryAt(int x) const
{
    for (qsizetype i = 1; i < m_titles.size(); ++i) {
        if (x < titleStart(i) && x >= titleStart(i) - ZQViewColumns::gap) {
            return i - 1;
        }
    }
    return -1;
}

void ZQListHead::moveBoundary(qsizetype place, int by)
{
    if (m_columns.moveBoundary(place, by, rowWidth())) {
        layOut();
        Q_EMIT columnsChanged();
    }
}

void ZQListHead::mousePressEvent(QMouseEvent *event)
{
    m_draggedFrom = readingX(event->pos().x());
    m_dragged = event->button() == Qt::LeftButton ? boundaryAt(m_draggedFrom) : -1;
}

void ZQListHead::mouseMoveEvent(QMouseEvent *event)
{
    const int x = readingX(event->pos().x());
    if (m_dragged < 0) {
        setCursor(boundaryAt(x) >= 0 ? Qt::SplitHCursor : Qt::ArrowCursor);
        return;
    }
    // The line stays where it can go no further until the pointer is back at it.
    const int before = titleStart(m_dragged + 1);
    moveBoundary(m_dragged, x - m_draggedFrom);
    m_draggedFrom += titleStart(m_dragged + 1) - before;
}

void ZQListHead::mouseReleaseEvent(QMouseEvent * /*event*/)
{
    m_dragged = -1;
    update();
}

void ZQListHead::contextMenuEvent(QContextMenuEvent *event)
{
    showMenu(event->globalPos());
}

void ZQListHead::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LayoutDirectionChange) {
        layOut();
    }
    QWidget::changeEvent(event);
}

void ZQListHead::showMenu(const QPoint &globalPoint)
{
    QMenu menu(this);
    for (qsizetype i = 1; i < m_columns.all().size(); ++i) {
        const ZQViewColumn &column = m_columns.all()[i];
        QAction *action = menu.addAction(column.title);
        action->setCheckable(true);
        action->setChecked(column.isShown);
        connect(action, &QAction::triggered, this, [this, identifier = column.identifier](bool isShown) {
            if (m_columns.setShown(identifier, isShown)) {
                layOut();
                Q_EMIT columnsChanged();
            }
        });
    }
    bool isFirst = true;
    for (QAction *action : actions()) {
        if (action->isVisible() && std::exchange(isFirst, false)) {
            menu.addSeparator();
        }
        if (action->isVisible()) {
            menu.addAction(action);
        }
    }
    menu.exec(globalPoint);
}

// Keys.

void ZQListHead::focusPlace(qsizetype place)
{
    if (place < 0 || place >= m_titles.size()) {
        return;
    }
    for (QAbstractButton *title : m_titles) {
        title->setFocusPolicy(title == m_titles[place] ? Qt::TabFocus : Qt::NoFocus);
    }
    m_titles[place]->setFocus(Qt::OtherFocusReason);
}

bool ZQListHead::eventFilter(QObject *watched, QEvent *event)
{
    const qsizetype place = m_titles.indexOf(qobject_cast<QAbstractButton *>(watched)); // null is none of them
    if (event->type() != QEvent::KeyPress || place < 0) {
        return QWidget::eventFilter(watched, event);
    }
    const auto *key = static_cast<QKeyEvent *>(event);
    const bool isAlt = key->modifiers() & Qt::AltModifier;
    switch (key->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right: {
        const int step = (key->key() == Qt::Key_Right) != isRightToLeft() ? 1 : -1;
        isAlt ? moveBoundary(place, step * keyStep) : focusPlace(place + step);
        return true;
    }
    case Qt::Key_Return:
    case Qt::Key_Enter:
        m_titles[place]->click();
        return true;
    default:
        return QWidget::eventFilter(watched, event);
    }
}

#include "Kit/Widgets/ZQGridAccessible.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQAccessibleLeaf.h"
#include "Kit/Widgets/ZQGridView.h"
#include "Kit/Widgets/ZQListHead.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>
#include <QKeySequence>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

// Screen readers count in int.
int countOf(const ZQGridView &view)
{
    return int(std::min<qint64>(view.gridLayout().count(), std::numeric_limits<int>::max()));
}

class GridItem : public ZQAccessibleLeaf, public QAccessibleTableCellInterface
{
public:
    GridItem(ZQGridView *view, qint64 index) : ZQAccessibleLeaf(view), m_view(view), m_index(index) {}
    bool isValid() const override { return widget() && m_view->dataSource() && m_index < m_view->gridLayout().count(); }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QString text(QAccessible::Text kind) const override
    {
        if ((kind != QAccessible::Name && kind != QAccessible::Description) || !isValid()) {
            return {};
        }
        m_view->dataSource()->willShow(m_index, m_index);
        if (kind == QAccessible::Description) {
            return m_view->showsList() ? rowText() : m_view->groupTitleOf(m_index);
        }
        const ZQGridItem item = m_view->dataSource()->item(m_index);
        return item.extension.isEmpty() ? item.title : item.title + u'.' + item.extension;
    }
    QRect rect() const override
    {
        const QRect rect = m_view->visualRect(m_index);
        return {m_view->viewport()->mapToGlobal(rect.topLeft()), rect.size()};
    }
    QAccessible::State state() const override
    {
        QAccessible::State state = ZQAccessibleLeaf::state();
        state.selectable = state.multiSelectable = state.extSelectable = state.focusable = true;
        state.selected = isSelected();
        state.focused = m_view->hasFocus() && m_view->currentIndex() == m_index;
        state.offscreen = !m_view->visualRect(m_index).intersects(m_view->viewport()->rect());
        return state;
    }
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::TableCellInterface ? static_cast<QAccessibleTableCellInterface *>(this)
                                                       : ZQAccessibleLeaf::interface_cast(type);
    }

    QStringList actionNames() const override
    {
        return {pressAction(), toggleAction(), showMenuAction(), setFocusAction()};
    }
    QString localizedActionDescription(const QString &name) const override
    {
        return name == pressAction()    ? zqLocalized("Opens it in the full view")
               : name == toggleAction() ? zqLocalized("Adds it to what is selected, or takes it away")
                                        : QAccessibleActionInterface::localizedActionDescription(name);
    }
    void doAction(const QString &name) override
    {
        if (!isValid()) {
            return;
        }
        if (name == toggleAction()) {
            m_view->setSelected(m_index, !isSelected());
            return;
        }
        m_view->setCurrentIndex(m_index);
        if (name == pressAction()) {
            Q_EMIT m_view->activated(m_index);
        } else if (name == showMenuAction()) {
            // What asked for it is not to wait until the menu is gone.
            QMetaObject::invokeMethod(
                m_view, [view = m_view, place = rect().center()] { Q_EMIT view->contextMenuRequested(place); },
                Qt::QueuedConnection);
        }
    }
    QStringList keyBindingsForAction(const QString &name) const override
    {
        return name == pressAction() ? QStringList{QKeySequence(Qt::Key_Return).toString(QKeySequence::NativeText)}
               : name == toggleAction()
                   ? QStringList{QKeySequence(Qt::CTRL | Qt::Key_Space).toString(QKeySequence::NativeText)}
                   : QStringList();
    }

    bool isSelected() const override { return m_view->selection().contains(m_index); }
    QList<QAccessibleInterface *> columnHeaderCells() const override { return {}; }
    QList<QAccessibleInterface *> rowHeaderCells() const override { return {}; }
    int columnIndex() const override { return 0; }
    int rowIndex() const override { return int(m_index); }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface *table() const override { return parent(); }

    qint64 index() const { return m_index; }

private:
    // What the columns say, each with its title.
    QString rowText() const
    {
        const QStringList names = m_view->listColumns();
        const QList<ZQListValue> values = m_view->dataSource()->listValues(m_index, names);
        QStringList parts;
        for (const ZQViewColumn &column : m_view->listHead().columns().all()) {
            const ZQListValue value = values.value(names.indexOf(column.identifier));
            const QString text = value.stars > 0          ? QString::number(value.stars)
                                 : !value.chips.isEmpty() ? value.chips.join(QStringLiteral(", "))
                                                          : value.text;
            if (!text.isEmpty()) {
                parts.append(column.title + u' ' + text);
            }
        }
        return parts.join(QStringLiteral("; "));
    }

    ZQGridView *m_view;
    qint64 m_index;
};

// A table of one column, as other lists are: that is how a selection is told and changed, and it says that the entries
// are too many to be asked for beforehand.
class Grid : public QAccessibleWidget, public QAccessibleTableInterface
{
public:
    explicit Grid(ZQGridView *view) : QAccessibleWidget(view, QAccessible::List), m_view(view) {}
    ~Grid() override { forget(); }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::TableInterface ? static_cast<QAccessibleTableInterface *>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.multiSelectable = state.extSelectable = true;
        return state;
    }

    int childCount() const override { return countOf(*m_view); }
    QAccessibleInterface *child(int index) const override
    {
        if (index < 0 || index >= childCount()) {
            return nullptr;
        }
        if (const auto found = m_children.constFind(index); found != m_children.constEnd()) {
            return QAccessible::accessibleInterface(*found);
        }
        auto *item = new GridItem(m_view, index);
        m_children.insert(index, QAccessible::registerAccessibleInterface(item));
        return item;
    }
    QAccessibleInterface *childAt(int x, int y) const override
    {
        return child(int(m_view->indexAt(m_view->viewport()->mapFromGlobal(QPoint(x, y)))));
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        const auto *item = dynamic_cast<const GridItem *>(child);
        return item ? int(item->index()) : -1;
    }
    QAccessibleInterface *focusChild() const override { return child(int(m_view->currentIndex())); }

    int rowCount() const override { return childCount(); }
    int columnCount() const override { return 1; }
    QAccessibleInterface *cellAt(int row, int column) const override { return column == 0 ? child(row) : nullptr; }
    QAccessibleInterface *caption() const override { return nullptr; }
    QAccessibleInterface *summary() const override { return nullptr; }
    QString columnDescription(int) const override { return {}; }
    QString rowDescription(int row) const override
    {
        const QAccessibleInterface *cell = child(row);
        return cell ? cell->text(QAccessible::Name) : QString();
    }
    int selectedCellCount() const override
    {
        return int(std::min<qint64>(m_view->selection().count(), std::numeric_limits<int>::max()));
    }
    int selectedRowCount() const override { return selectedCellCount(); }
    int selectedColumnCount() const override { return 0; }
    // Of a selection of everything, no more than anybody listens to.
    QList<int> selectedRows() const override
    {
        constexpr qsizetype most = 10000;
        QList<int> rows;
        for (const ZQIndexSet::Range &range : m_view->selection().ranges()) {
            for (qint64 index = range.first; index <= range.last && rows.size() < most; ++index) {
                rows.append(int(index));
            }
        }
        return rows;
    }
    QList<int> selectedColumns() const override { return {}; }
    QList<QAccessibleInterface *> selectedCells() const override
    {
        QList<QAccessibleInterface *> cells;
        for (const int row : selectedRows()) {
            cells.append(child(row));
        }
        return cells;
    }
    bool isColumnSelected(int) const override { return false; }
    bool isRowSelected(int row) const override { return m_view->selection().contains(row); }
    bool selectRow(int row) override { return select(row, true); }
    bool unselectRow(int row) override { return select(row, false); }
    bool selectColumn(int) override { return false; }
    bool unselectColumn(int) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent *) override {}

    void forget()
    {
        const auto children = std::exchange(m_children, {});
        for (const QAccessible::Id id : children) {
            QAccessible::deleteAccessibleInterface(id);
        }
    }

private:
    bool select(int row, bool isSelected)
    {
        if (row < 0 || row >= childCount()) {
            return false;
        }
        m_view->setSelected(row, isSelected);
        return true;
    }

    ZQGridView *m_view;
    mutable QHash<qint64, QAccessible::Id> m_children;
};

QAccessibleInterface *makeGrid(const QString & /*className*/, QObject *object)
{
    auto *view = qobject_cast<ZQGridView *>(object);
    return view ? new Grid(view) : nullptr;
}

} // namespace

void zqInstallGridAccessibility()
{
    static const bool installed = [] {
        QAccessible::installFactory(&makeGrid);
        return true;
    }();
    Q_UNUSED(installed)
}

void zqGridContentChanged(ZQGridView *view)
{
    if (!QAccessible::isActive()) {
        return;
    }
    if (auto *grid = dynamic_cast<Grid *>(QAccessible::queryAccessibleInterface(view))) {
        grid->forget();
    }
    QAccessibleTableModelChangeEvent event(view, QAccessibleTableModelChangeEvent::ModelReset);
    QAccessible::updateAccessibility(&event);
}

void zqGridSelectionChanged(ZQGridView *view, qint64 changed)
{
    if (!QAccessible::isActive()) {
        return;
    }
    // One entry is told by itself; of many, only that it is another selection.
    const bool isOne = changed >= 0 && changed < countOf(*view);
    QAccessibleEvent within(
        view, isOne ? (view->selection().contains(changed) ? QAccessible::SelectionAdd : QAccessible::SelectionRemove)
                    : QAccessible::SelectionWithin);
    if (isOne) {
        within.setChild(int(changed));
    }
    QAccessible::updateAccessibility(&within);
}

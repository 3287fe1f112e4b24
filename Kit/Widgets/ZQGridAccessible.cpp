#include "Kit/Widgets/ZQGridAccessible.h"

#include "Kit/Widgets/ZQGridView.h"
#include "Kit/Widgets/ZQListHead.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>

namespace {

class GridItem : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    GridItem(ZQGridView *view, qint64 index) : m_view(view), m_index(index) {}
    bool isValid() const override { return m_view->dataSource() && m_index < m_view->gridLayout().count(); }
    QObject *object() const override { return nullptr; }
    QAccessibleInterface *parent() const override { return QAccessible::queryAccessibleInterface(m_view); }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QString text(QAccessible::Text kind) const override
    {
        if ((kind != QAccessible::Name && kind != QAccessible::Description) || !isValid()) {
            return {};
        }
        m_view->dataSource()->willShow(m_index, m_index);
        if (kind == QAccessible::Description) {
            return m_view->showsList() ? rowText() : QString();
        }
        const ZQGridItem item = m_view->dataSource()->item(m_index);
        return item.extension.isEmpty() ? item.title : item.title + u'.' + item.extension;
    }
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override
    {
        const QRect rect = m_view->visualRect(m_index);
        return {m_view->viewport()->mapToGlobal(rect.topLeft()), rect.size()};
    }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.selectable = state.focusable = true;
        state.selected = m_view->selection().contains(m_index);
        state.focused = m_view->hasFocus() && m_view->currentIndex() == m_index;
        state.offscreen = !m_view->visualRect(m_index).intersects(m_view->viewport()->rect());
        return state;
    }
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this) : nullptr;
    }
    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    void doAction(const QString &name) override
    {
        m_view->setCurrentIndex(m_index);
        if (name == pressAction()) {
            Q_EMIT m_view->activated(m_index);
        }
    }
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

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

class Grid : public QAccessibleWidget
{
public:
    explicit Grid(ZQGridView *view) : QAccessibleWidget(view, QAccessible::List), m_view(view) {}
    ~Grid() override { forget(); }

    int childCount() const override { return int(m_view->gridLayout().count()); }
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

    void forget()
    {
        const auto children = std::exchange(m_children, {});
        for (const QAccessible::Id id : children) {
            QAccessible::deleteAccessibleInterface(id);
        }
    }

private:
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
}

#pragma once

#include <QAccessible>
#include <QPointer>
#include <QWidget>

// For what is seen within a widget and is no widget itself: a child of it that has none of its own, and may be pressed.
// Invalid once the widget is gone. Main thread.
class ZQAccessibleLeaf : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    explicit ZQAccessibleLeaf(QWidget *widget) : m_widget(widget) {}

    bool isValid() const override { return !m_widget.isNull(); }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override { return m_widget ? m_widget->window()->windowHandle() : nullptr; }
    QAccessibleInterface *parent() const override { return QAccessible::queryAccessibleInterface(m_widget); }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    void setText(QAccessible::Text, const QString &) override {}
    // What it has of its widget.
    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.invalid = !isValid();
        state.invisible = !m_widget || !m_widget->isVisible();
        state.disabled = m_widget && !m_widget->isEnabled();
        return state;
    }
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this) : nullptr;
    }
    QStringList actionNames() const override { return {}; }
    void doAction(const QString & /*name*/) override {}
    QStringList keyBindingsForAction(const QString & /*name*/) const override { return {}; }

protected:
    QWidget *widget() const { return m_widget; }

private:
    QPointer<QWidget> m_widget;
};

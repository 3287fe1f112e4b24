#include "Kit/Widgets/ZQAccessible.h"

#include "Kit/Widgets/ZQAccessibleLeaf.h"

#include <QAccessibleWidget>
#include <QHash>
#include <QVariant>
#include <QWidget>

#include <utility>

namespace {

constexpr const char *roleProperty = "zqAccessibleRole";

class Part : public ZQAccessibleLeaf
{
public:
    Part(QWidget *widget, int index) : ZQAccessibleLeaf(widget), m_index(index) {}

    bool isValid() const override { return parts() && m_index < parts()->accessiblePartCount(); }
    QAccessible::Role role() const override { return isValid() ? parts()->accessiblePartRole() : QAccessible::NoRole; }
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name          ? part().name
               : kind == QAccessible::Description ? part().description
                                                  : QString();
    }
    QRect rect() const override
    {
        const QRect place = part().place;
        return place.isEmpty() ? QRect() : QRect(widget()->mapToGlobal(place.topLeft()), place.size());
    }
    QAccessible::State state() const override
    {
        const ZQAccessiblePart shown = part();
        QAccessible::State state = ZQAccessibleLeaf::state();
        state.selectable = state.focusable = true;
        state.selected = shown.isChosen;
        state.focused = shown.isCurrent && widget() && widget()->hasFocus();
        state.offscreen = shown.place.isEmpty();
        return state;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString &name) override
    {
        if (name == pressAction() && isValid() && widget()->isEnabled()) {
            parts()->pressAccessiblePart(m_index);
        }
    }

    int index() const { return m_index; }

private:
    ZQAccessibleParts *parts() const { return dynamic_cast<ZQAccessibleParts *>(widget()); }
    ZQAccessiblePart part() const { return isValid() ? parts()->accessiblePart(m_index) : ZQAccessiblePart(); }

    int m_index;
};

class Whole : public QAccessibleWidget
{
public:
    Whole(QWidget *widget, QAccessible::Role role) : QAccessibleWidget(widget, role) {}
    ~Whole() override
    {
        for (const QAccessible::Id id : std::exchange(m_made, {})) {
            QAccessible::deleteAccessibleInterface(id);
        }
    }

    int childCount() const override { return partCount() + QAccessibleWidget::childCount(); }
    QAccessibleInterface *child(int index) const override
    {
        if (index < 0 || index >= childCount()) {
            return nullptr;
        }
        if (index >= partCount()) {
            return QAccessibleWidget::child(index - partCount());
        }
        if (const auto found = m_made.constFind(index); found != m_made.constEnd()) {
            return QAccessible::accessibleInterface(*found);
        }
        auto *made = new Part(widget(), index);
        m_made.insert(index, QAccessible::registerAccessibleInterface(made));
        return made;
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        if (const auto *part = dynamic_cast<const Part *>(child)) {
            return part->index();
        }
        const int found = QAccessibleWidget::indexOfChild(child);
        return found < 0 ? found : found + partCount();
    }
    QAccessibleInterface *childAt(int x, int y) const override
    {
        const QPoint point = widget()->mapFromGlobal(QPoint(x, y));
        for (int index = 0; index < partCount(); ++index) {
            if (parts()->accessiblePart(index).place.contains(point)) {
                return child(index);
            }
        }
        return QAccessibleWidget::childAt(x, y);
    }
    QAccessibleInterface *focusChild() const override
    {
        for (int index = 0; widget()->hasFocus() && index < partCount(); ++index) {
            if (parts()->accessiblePart(index).isCurrent) {
                return child(index);
            }
        }
        return QAccessibleWidget::focusChild();
    }

private:
    ZQAccessibleParts *parts() const { return dynamic_cast<ZQAccessibleParts *>(widget()); }
    int partCount() const { return parts() ? parts()->accessiblePartCount() : 0; }

    mutable QHash<int, QAccessible::Id> m_made;
};

class Number : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    Number(QWidget *widget, QAccessible::Role role) : QAccessibleWidget(widget, role) {}
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface *>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value && number() ? number()->accessibleNumberText()
                                                      : QAccessibleWidget::text(kind);
    }
    QVariant currentValue() const override { return number() ? number()->accessibleNumber() : 0.0; }
    void setCurrentValue(const QVariant &value) override
    {
        if (number() && widget()->isEnabled()) {
            number()->setAccessibleNumber(value.toDouble());
        }
    }
    QVariant maximumValue() const override { return number() ? number()->accessibleLimit() : 0.0; }
    QVariant minimumValue() const override { return 0.0; }
    QVariant minimumStepSize() const override { return number() ? number()->accessibleStep() : 1.0; }

private:
    // Null once the widget is no more than what it is made from.
    ZQAccessibleNumber *number() const { return dynamic_cast<ZQAccessibleNumber *>(widget()); }
};

class Thing : public QAccessibleWidget
{
public:
    Thing(QWidget *widget, QAccessible::Role role) : QAccessibleWidget(widget, role) {}
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value && thing() ? thing()->accessibleValueText() : QAccessibleWidget::text(kind);
    }
    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        if (thing()) {
            thing()->completeAccessibleState(state);
        }
        return state;
    }
    QStringList actionNames() const override
    {
        const QStringList own = thing() && widget()->isEnabled() ? thing()->accessibleActions().keys() : QStringList();
        return own + QAccessibleWidget::actionNames();
    }
    QString localizedActionDescription(const QString &name) const override
    {
        const QString own = thing() ? thing()->accessibleActions().value(name) : QString();
        return own.isEmpty() ? QAccessibleWidget::localizedActionDescription(name) : own;
    }
    void doAction(const QString &name) override
    {
        if (thing() && widget()->isEnabled() && thing()->accessibleActions().contains(name)) {
            thing()->doAccessibleAction(name);
        } else {
            QAccessibleWidget::doAction(name);
        }
    }

private:
    ZQAccessibleThing *thing() const { return dynamic_cast<ZQAccessibleThing *>(widget()); }
};

// Stands nowhere, and is there to be read out.
class Announcement : public ZQAccessibleLeaf
{
public:
    Announcement(QWidget *widget, const QString &text) : ZQAccessibleLeaf(widget), m_text(text) {}
    QAccessible::Role role() const override { return QAccessible::Notification; }
    QString text(QAccessible::Text kind) const override { return kind == QAccessible::Name ? m_text : QString(); }
    QRect rect() const override { return {}; }

private:
    const QString m_text;
};

QAccessibleInterface *make(const QString & /*className*/, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    if (auto *parts = dynamic_cast<ZQAccessibleParts *>(widget)) {
        return new Whole(widget, parts->accessibleRole());
    }
    if (auto *number = dynamic_cast<ZQAccessibleNumber *>(widget)) {
        return new Number(widget, number->accessibleRole());
    }
    if (auto *thing = dynamic_cast<ZQAccessibleThing *>(widget)) {
        return new Thing(widget, thing->accessibleRole());
    }
    const QVariant role = widget ? widget->property(roleProperty) : QVariant();
    return role.isValid() ? new QAccessibleWidget(widget, QAccessible::Role(role.toInt())) : nullptr;
}

void install()
{
    static const bool isInstalled = [] {
        QAccessible::installFactory(&make);
        return true;
    }();
    Q_UNUSED(isInstalled)
}

} // namespace

ZQAccessibleParts::ZQAccessibleParts()
{
    install();
}

void ZQAccessibleParts::accessiblePartsDidChange(QWidget *widget)
{
    if (QAccessible::isActive()) {
        QAccessibleEvent event(widget, QAccessible::ObjectReorder);
        QAccessible::updateAccessibility(&event);
    }
}

void ZQAccessibleParts::accessiblePartIsCurrent(QWidget *widget, int index)
{
    if (QAccessible::isActive() && widget->hasFocus() && index >= 0) {
        QAccessibleEvent event(widget, QAccessible::Focus);
        event.setChild(index);
        QAccessible::updateAccessibility(&event);
    }
}

ZQAccessibleNumber::ZQAccessibleNumber()
{
    install();
}

void ZQAccessibleNumber::accessibleNumberDidChange(QWidget *widget, double number)
{
    if (QAccessible::isActive()) {
        QAccessibleValueChangeEvent event(widget, number);
        QAccessible::updateAccessibility(&event);
    }
}

ZQAccessibleThing::ZQAccessibleThing()
{
    install();
}

void ZQAccessibleThing::accessibleStateDidChange(QWidget *widget, QAccessible::State changed)
{
    if (QAccessible::isActive()) {
        QAccessibleStateChangeEvent event(widget, changed);
        QAccessible::updateAccessibility(&event);
    }
}

void zqSetAccessibleRole(QWidget *widget, QAccessible::Role role)
{
    install();
    widget->setProperty(roleProperty, int(role));
}

void zqAnnounce(QWidget *widget, const QString &text)
{
    if (!QAccessible::isActive() || text.isEmpty()) {
        return;
    }
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent event(widget, text);
    QAccessible::updateAccessibility(&event);
#else
    // What appears with the role of a notification is read out; the name is what there is to read.
    static QAccessible::Id last = 0;
    QAccessibleInterface *said = QAccessible::queryAccessibleInterface(widget);
    if (said && said->role() == QAccessible::Notification) {
        widget->setAccessibleName(text);
    } else {
        QAccessible::deleteAccessibleInterface(last);
        said = new Announcement(widget, text);
        last = QAccessible::registerAccessibleInterface(said);
    }
    for (const QAccessible::Event kind : {QAccessible::Alert, QAccessible::ObjectShow}) {
        QAccessibleEvent event(said, kind);
        QAccessible::updateAccessibility(&event);
    }
#endif
}

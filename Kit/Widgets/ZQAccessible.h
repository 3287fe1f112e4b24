#pragma once

#include <QAccessible>
#include <QMap>
#include <QRect>
#include <QString>

class QWidget;

// What screen readers hear of widgets that draw themselves. Main thread.

// One of several things a widget draws for a person to choose among.
struct ZQAccessiblePart
{
    QString name;
    QString description = {};
    QRect place = {}; // in the widget; empty for what has no room
    bool isChosen = false;
    bool isCurrent = false; // has the focus when the widget has it
};

// Mixed into such a widget: each part is a child that can be heard of, pressed and seen as chosen. Child widgets follow
// the parts.
class ZQAccessibleParts
{
public:
    ZQAccessibleParts();
    virtual ~ZQAccessibleParts() = default;
    virtual QAccessible::Role accessibleRole() const = 0;
    virtual QAccessible::Role accessiblePartRole() const = 0;
    virtual int accessiblePartCount() const = 0;
    virtual ZQAccessiblePart accessiblePart(int index) const = 0;
    virtual void pressAccessiblePart(int index) = 0;

protected:
    // The parts are others, or say something else.
    static void accessiblePartsDidChange(QWidget *widget);
    // Tells which is the current one, where the widget has the focus.
    static void accessiblePartIsCurrent(QWidget *widget, int index);
};

// Mixed into a widget that shows a number.
class ZQAccessibleNumber
{
public:
    ZQAccessibleNumber();
    virtual ~ZQAccessibleNumber() = default;
    virtual QAccessible::Role accessibleRole() const { return QAccessible::Slider; }
    virtual double accessibleNumber() const = 0;
    virtual double accessibleLimit() const = 0; // from 0 on
    virtual double accessibleStep() const { return 1; }
    virtual QString accessibleNumberText() const { return {}; } // empty: the number itself
    virtual void setAccessibleNumber(double /*number*/) {}

protected:
    static void accessibleNumberDidChange(QWidget *widget, double number);
};

// Mixed into a widget that is one thing, as a picture, of which there is more to tell or to do than of any widget.
class ZQAccessibleThing
{
public:
    ZQAccessibleThing();
    virtual ~ZQAccessibleThing() = default;
    virtual QAccessible::Role accessibleRole() const = 0;
    virtual QString accessibleValueText() const { return {}; }
    virtual void completeAccessibleState(QAccessible::State & /*state*/) const {} // from what any widget has
    // The names of QAccessibleActionInterface, each with what it does, localised; empty: what it always does.
    virtual QMap<QString, QString> accessibleActions() const { return {}; }
    virtual void doAccessibleAction(const QString & /*name*/) {}

protected:
    static void accessibleStateDidChange(QWidget *widget, QAccessible::State changed);
};

// For a widget that is one thing: a picture, a field. Before anybody asks for it, thus in its constructor.
void zqSetAccessibleRole(QWidget *widget, QAccessible::Role role);

// Has screen readers say the text at once, wherever the focus is. `widget` is what it is about, and is shown. One that
// is a notification itself is called so from then on.
void zqAnnounce(QWidget *widget, const QString &text);

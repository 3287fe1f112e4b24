#pragma once

#include "Kit/Widgets/ZQAccessible.h"

#include <QAbstractButton>
#include <QColor>

// One of an asset's colours, to be searched with a click, or with Shift in addition to what is searched. Main thread.
class ColorSwatch : public QAbstractButton, public ZQAccessibleThing
{
    Q_OBJECT
public:
    ColorSwatch(const QColor &color, const QString &name, QWidget *parent = nullptr);
    // What is said of it besides.
    void setDescription(const QString &description);
    QSize sizeHint() const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::Button; }
    QMap<QString, QString> accessibleActions() const override;
    void doAccessibleAction(const QString &name) override;

Q_SIGNALS:
    void chosen(bool adds);
    void menuRequested(const QPoint &globalPoint);

protected:
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QColor m_color;
    bool m_adds = false; // of the click that ends
};

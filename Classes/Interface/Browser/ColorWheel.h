#pragma once

#include "Kit/Widgets/ZQAccessible.h"

#include <QColor>
#include <QImage>
#include <QWidget>

// Hues around, and from grey in the middle to full colour at the edge. The pointer chooses, and the arrow keys: left
// and right the hue, up and down how full it is, by the smallest step with Shift. Main thread.
class ColorWheel : public QWidget, public ZQAccessibleNumber
{
    Q_OBJECT
public:
    explicit ColorWheel(QWidget *parent = nullptr);
    QColor color() const;
    void setColor(const QColor &color);
    void setValue(int value); // from black, 0, to light, 255
    int value() const { return m_value; }

    double accessibleNumber() const override { return m_hue; } // degrees
    double accessibleLimit() const override { return 359; }
    QString accessibleNumberText() const override { return color().name(); }
    void setAccessibleNumber(double number) override { choose(int(number), m_fullness); }

Q_SIGNALS:
    void changed();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void choose(int hue, int fullness);
    void chooseAt(const QPointF &point);
    void draw();

    QImage m_disk; // of this value and scale
    int m_hue = 210;
    int m_fullness = 200; // 0 to 255
    int m_value = 220;
};

#pragma once

#include "Kit/Widgets/ZQAccessible.h"

#include <QStringList>
#include <QTimer>
#include <QWidget>

// A row of segments of which one is on, chosen with the pointer, the arrow keys or a screen reader; a drag that rests
// on a segment turns to it, so that it can go on to what is there.
class ZQSwitch : public QWidget, public ZQAccessibleParts
{
    Q_OBJECT
public:
    explicit ZQSwitch(const QStringList &segments, QWidget *parent = nullptr);
    int currentIndex() const { return m_current; }
    void setCurrentIndex(int index);
    QSize sizeHint() const override;

    QAccessible::Role accessibleRole() const override { return QAccessible::PageTabList; }
    QAccessible::Role accessiblePartRole() const override { return QAccessible::PageTab; }
    int accessiblePartCount() const override { return int(m_segments.size()); }
    ZQAccessiblePart accessiblePart(int index) const override;
    void pressAccessiblePart(int index) override { setCurrentIndex(index); }

Q_SIGNALS:
    void currentIndexChanged(int index);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;

private:
    QRect segmentRect(int index) const;
    int segmentAt(const QPoint &point) const; // -1 for none

    QStringList m_segments;
    int m_current = 0;
    int m_dragged = -1; // the segment a drag rests on
    QTimer m_turn;
};

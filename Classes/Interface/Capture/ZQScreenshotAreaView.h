#pragma once

#include "Classes/Interface/Capture/ScreenshotView.h"

class ZQScreenshotAreaView;

// Who hears of what is chosen. Main thread.
class ZQScreenshotAreaViewDelegate
{
public:
    virtual ~ZQScreenshotAreaViewDelegate() = default;
    // Confirmed; the rectangle in the view's coordinates, that is in points of its screen.
    virtual void screenshotAreaView(ZQScreenshotAreaView &view, const QRectF &didSelectScreenRect) = 0;
    virtual void screenshotAreaViewDidBegin(ZQScreenshotAreaView &view) = 0; // a selection is there now
};

// The choice of an area, which lies on one screen: drawn anew, moved, resized by eight handles; by arrow keys moved (a
// point, with Shift ten) and, with Ctrl, resized. A magnifier shows the pixels around the pointer.
class ZQScreenshotAreaView : public ScreenshotView
{
    Q_OBJECT
public:
    ZQScreenshotAreaView(const FrozenScreen &screen, ZQScreenshotAreaViewDelegate &delegate, QWidget *parent = nullptr);

    const QRect &selection() const { return m_selection; } // in pixels of the picture; empty: none
    void clearSelection(); // since there is one on another screen, where the hint now is

protected:
    void confirm() override;
    QString hint() const override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    // What is held of the selection: edges, or all of it.
    struct Grip
    {
        int x = 0; // -1: the left edge, 1: the right one
        int y = 0;
        bool isMove = false;
        bool isHandle() const { return x != 0 || y != 0; }
    };
    Grip gripAt(const QPointF &position) const;
    QPointF handlePlace(const Grip &handle) const;
    void showCursor(const Grip &grip);
    void select(const QRect &selection);
    void beginDrag(const QPointF &position);
    void dragTo(const QPoint &pixel);
    void moveBy(const QPoint &step, bool resizes);
    QRect startingSelection() const;
    bool showsMagnifier() const;
    QRectF lensRect() const;
    QPointF placeOfFirstHint() const;
    void paintSelection(QPainter &painter) const;
    void paintTags(QPainter &painter) const; // of the selection
    void paintMagnifier(QPainter &painter) const;
    QString sizeText() const;
    void announceSelection();

    ZQScreenshotAreaViewDelegate &m_delegate;
    QRect m_selection;
    Grip m_grip;
    QRect m_before;  // the selection, when the drag began
    QPoint m_anchor; // the corner that stays, or the pixel that was pressed
    QPoint m_offset; // from the pixel that was pressed to what it holds
    QPointF m_pressed;
    QPointF m_pointer;
    bool m_isDragging = false;
    bool m_isElsewhere = false; // the selection lies on another screen
    bool m_isPointerHere = false;
};

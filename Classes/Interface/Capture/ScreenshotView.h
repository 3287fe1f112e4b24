#pragma once

#include "Classes/Capture/ScreenSource.h"

#include <QImage>
#include <QPixmap>
#include <QWidget>

#include <functional>

// One screen as it was when the choice began.
struct FrozenScreen
{
    ScreenInfo info;
    QImage image; // in pixels, of the size of `info.pixelFrame`
};

// What a person chooses in: a screen's frozen picture over the whole screen, dimmed but for what is chosen, so that
// open menus and tool tips stay in it and no compositor is needed. What is chosen is kept in pixels of that picture.
// Main thread.
class ScreenshotView : public QWidget
{
    Q_OBJECT
public:
    explicit ScreenshotView(const FrozenScreen &screen, QWidget *parent = nullptr);

    void coverScreen();   // above everything that lies there
    void uncoverScreen(); // for good: what still arrives from the person means nothing
    const FrozenScreen &screen() const { return m_screen; }
    QRect pixelRect(const QRectF &viewRect) const; // to whole pixels
    QRectF viewRect(const QRect &pixelRect) const;

    std::function<void()> left;    // without a choice
    std::function<void()> entered; // by the pointer

protected:
    virtual void confirm() = 0;
    virtual QString hint() const = 0;

    QPoint pixelAt(const QPointF &position) const; // within the picture
    // Where an event of the pointer was, whose own position is rounded to whole points.
    QPointF exactPosition(const QMouseEvent &event) const;
    void paintPicture(QPainter &painter, const QRect &bright) const;
    // A small text; `place` is moved into the view. Answers where it is.
    QRectF paintTag(QPainter &painter, const QPointF &place, const QString &text, double opacity = 1) const;
    void paintHint(QPainter &painter, const QPointF &place) const;
    QSizeF tagSize(const QString &text) const;
    void announce(const QString &text); // to screen readers

    bool event(QEvent *event) override;
    bool eventFilter(QObject *object, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void enterEvent(QEnterEvent *event) override;

private:
    FrozenScreen m_screen;
    QPixmap m_bright;
    QPixmap m_dimmed;
    QPointF m_exactPosition; // of the last event
    bool m_isOver = false;
};

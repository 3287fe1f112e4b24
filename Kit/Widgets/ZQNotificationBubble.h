#pragma once

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <chrono>

class QPropertyAnimation;

// A short text that fades in over a widget, goes by itself and is read out by screen readers. One at a time for each
// place: a new text replaces the one before it.
class ZQNotificationBubble : public QWidget
{
    Q_OBJECT
public:
    explicit ZQNotificationBubble(QWidget *window);
    // In the lower part of `place` (a child of the window, or the window), or in its middle.
    void showText(const QString &text, QWidget *place, bool inMiddle, std::chrono::milliseconds time);
    QString text() const { return m_text; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void reposition();
    void fade(double to);

    QString m_text;
    QPointer<QWidget> m_place;
    bool m_inMiddle = false;
    QTimer m_timer;
    QPropertyAnimation *m_fading = nullptr;
};

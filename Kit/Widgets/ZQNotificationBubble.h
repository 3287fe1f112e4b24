#pragma once

#include <QList>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <functional>

class QPropertyAnimation;
class QPushButton;

// Something a person may do about what a notification says.
struct ZQNotificationAction
{
    QString title;
    std::function<void()> run;
};

// A short text that fades in over a widget, goes by itself and is read out by screen readers, with buttons for what may
// be done about it. One at a time: what comes meanwhile waits until the one before has been read, but not what is said
// already. It stays while the pointer or the focus is on it.
class ZQNotificationBubble : public QWidget
{
    Q_OBJECT
public:
    explicit ZQNotificationBubble(QWidget *window);
    // In the lower part of `place` (a child of the window, or the window), or in its middle.
    void showText(const QString &text, QWidget *place, bool inMiddle, std::chrono::milliseconds time,
                  const QList<ZQNotificationAction> &actions = {});
    QString text() const { return m_shown.text; }
    qsizetype waitingCount() const { return m_waiting.size(); }

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    struct Message
    {
        QString text;
        QPointer<QWidget> place;
        bool inMiddle = false;
        std::chrono::milliseconds time{};
        QList<ZQNotificationAction> actions = {};
    };
    void begin(const Message &message);
    void makeButtons();
    void end(); // goes on to what waits
    bool isHeld() const;
    QRect textBounds() const; // without a position
    void reposition();
    void fade(double to);

    Message m_shown;
    QList<Message> m_waiting;
    QList<QPushButton *> m_buttons;
    QTimer m_timer;
    QPropertyAnimation *m_fading = nullptr;
};

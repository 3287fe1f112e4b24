#pragma once

#include <QWidget>

// A light over a part of the desktop that goes out, and deletes itself. No click and no key ends up in it. Main thread.
class ScreenFlash : public QWidget
{
    Q_OBJECT
public:
    static void show(const QRect &frame, int milliseconds);
    static bool endAll(); // at once; whether there was one

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    explicit ScreenFlash(const QRect &frame);
};

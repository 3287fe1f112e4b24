#pragma once

#include <QMainWindow>

#include <functional>

// The window itself: tells its owner when it is asked to close.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    using QMainWindow::QMainWindow;
    std::function<void()> closeRequested;
    std::function<void()> activated; // came to the front

protected:
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
};

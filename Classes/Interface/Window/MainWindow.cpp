#include "Classes/Interface/Window/MainWindow.h"

#include <QCloseEvent>

bool MainWindow::event(QEvent *event)
{
    if (event->type() == QEvent::WindowActivate && activated) {
        activated();
    }
    return QMainWindow::event(event);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (closeRequested) {
        event->ignore();
        closeRequested();
    } else {
        QMainWindow::closeEvent(event);
    }
}

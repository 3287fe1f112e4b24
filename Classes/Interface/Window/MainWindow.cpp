#include "Classes/Interface/Window/MainWindow.h"

#include <QCloseEvent>

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (closeRequested) {
        event->ignore();
        closeRequested();
    } else {
        QMainWindow::closeEvent(event);
    }
}

#pragma once

#include "Classes/Interface/WindowContext.h"

#include <QObject>
#include <QTimer>

class BrowserViewController;

// Has the files of items read for what other programs gave them: of those selected, and of those on screen when the
// window comes to the front. The reading itself happens beside the window. Main thread.
class FileTagReader : public QObject
{
    Q_OBJECT
public:
    // `frontWindow` owns it.
    FileTagReader(WindowContext &window, BrowserViewController &browser, QWidget *frontWindow);

    static constexpr qsizetype mostAtOnce = 500;

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void read(QList<ZQObjectID> items);

    WindowContext &m_window;
    BrowserViewController &m_browser;
    QTimer m_selected;
};

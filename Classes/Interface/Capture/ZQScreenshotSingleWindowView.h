#pragma once

#include "Classes/Interface/Capture/ScreenshotView.h"

class PickableWindows;
class ZQScreenshotSingleWindowView;

// Who hears of the window that is picked. Main thread.
class ZQScreenshotSingleWindowViewDelegate
{
public:
    virtual ~ZQScreenshotSingleWindowViewDelegate() = default;
    virtual void screenshotSingleWindowView(ZQScreenshotSingleWindowView &view, quint32 didSelectWindow) = 0;
};

// The choice of a window: of the one under the pointer, or by Tab and the arrow keys also of one that others cover.
class ZQScreenshotSingleWindowView : public ScreenshotView
{
    Q_OBJECT
public:
    ZQScreenshotSingleWindowView(const FrozenScreen &screen, PickableWindows &windows,
                                 ZQScreenshotSingleWindowViewDelegate &delegate, QWidget *parent = nullptr);

protected:
    void confirm() override;
    QString hint() const override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void highlightAt(const QPointF &position);
    void windowsDidChange();

    PickableWindows &m_windows;
    ZQScreenshotSingleWindowViewDelegate &m_delegate;
};

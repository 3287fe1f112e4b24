#pragma once

#include "Classes/Capture/ScreenSource.h"
#include "Classes/Capture/XPixels.h"
#include "Classes/Capture/XWindows.h"
#include "Kit/Desktop/ZQXConnection.h"

#include <QObject>

#include <memory>

// The screens and windows of an X display, over a connection of its own. Most answers come within the call; that of a
// window that others cover comes later where no compositing manager keeps its pixels, since its program has to draw
// them first. Main thread.
class XScreenSource : public ScreenSource
{
public:
    explicit XScreenSource(std::unique_ptr<ZQXConnection> connection);
    ~XScreenSource() override;

    bool canSeeScreen() const override { return true; }
    QList<ScreenInfo> screens() const override;
    QList<QVariantMap> onScreenWindows() const override;
    std::optional<QVariantMap> windowDescription(quint32 number) const override;
    void captureRect(const QRect &rect, Taken taken) override;
    void captureWindow(quint32 number, Taken taken) override;
    void captureAllScreens(Taken taken) override;
    void captureInteractively(Taken taken) override { captureAllScreens(std::move(taken)); }

private:
    class Redirection;
    struct WindowShot;
    QRect rootRect() const;
    double scaleAt(const QRect &rect) const; // of the screen that has most of it
    QImage screenPixels(const QRect &rect) const;
    QImage windowPixels(const XWindow &window) const; // null: it has none of its own
    bool isCovered(const XWindow &window) const;
    bool hasCompositingManager() const;
    QImage shaped(QImage image, const XWindow &window, const QPoint &origin) const;
    void takeWhenSettled(const std::shared_ptr<WindowShot> &shot);
    void give(QImage image, const QRect &rect, const Taken &taken) const;

    std::unique_ptr<ZQXConnection> m_connection;
    std::unique_ptr<XWindows> m_windows;
    std::unique_ptr<XPixels> m_pixels;
    bool m_hasComposite = false;
    bool m_hasShape = false;
    bool m_hasMonitors = false;
    QList<std::shared_ptr<WindowShot>> m_shots;
    QObject m_context; // of what is still to come
};

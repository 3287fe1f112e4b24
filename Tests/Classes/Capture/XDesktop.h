#pragma once

#include "Kit/Desktop/ZQXConnection.h"

#include <QByteArray>
#include <QPoint>
#include <QProcess>
#include <QRect>

#include <functional>
#include <memory>

// A window manager on the test's display, and programs' windows of one colour, over a connection of their own.
class XDesktop
{
public:
    struct Window
    {
        QRect rect;
        quint32 colour = 0xff0000; // premultiplied, with alpha where it is transparent
        QByteArray program = "Program";
        bool isTransparent = false;
        bool isManaged = true;
        QByteArray type = {}; // "_NET_WM_WINDOW_TYPE_DOCK"
    };

    XDesktop();
    ~XDesktop();
    XDesktop(const XDesktop &) = delete;
    XDesktop &operator=(const XDesktop &) = delete;

    ZQXConnection &connection() { return *m_connection; }
    bool hasWindowManager() const { return m_hasWindowManager; }

    xcb_window_t show(const Window &window); // above the others
    QPoint origin(xcb_window_t window);      // on the screen
    void destroy(xcb_window_t window);
    void minimise(xcb_window_t window);
    void setNumbers(xcb_window_t window, const QByteArray &property, const QList<quint32> &numbers);

    // False when it takes far too long.
    static bool waitUntil(const std::function<bool()> &isSo);

private:
    xcb_visualid_t transparentVisual() const;

    std::unique_ptr<ZQXConnection> m_connection;
    QProcess m_windowManager;
    bool m_hasWindowManager = false;
};

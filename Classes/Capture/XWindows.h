#pragma once

#include "Kit/Desktop/ZQXConnection.h"

#include <QList>
#include <QRect>
#include <QString>
#include <QVariantMap>

#include <optional>

// A window as a person sees it.
struct XWindow
{
    xcb_window_t number = XCB_WINDOW_NONE; // the program's own
    xcb_window_t frame = XCB_WINDOW_NONE;  // what of it lies on the root: the window manager's, or the window itself
    QRect frameRect;                       // in pixels of the root, with its border
    QRect bounds;                          // the same without shadows and margins that nobody sees
    int layer = 0;
    QString owner; // its program
    QString title;

    QVariantMap description() const; // see `ScreenSource`
};

// The windows of an X display that can be seen, with or without a window manager. Main thread.
class XWindows
{
public:
    explicit XWindows(ZQXConnection &connection) : m_connection(connection) {}

    QList<XWindow> onScreen();                     // front to back
    std::optional<XWindow> window(quint32 number); // nothing: it is gone, or cannot be seen

private:
    struct Attributes
    {
        bool isViewable = false;
        bool hasPixels = false;
        bool isOverrideRedirect = false;
    };
    QList<xcb_window_t> children(xcb_window_t parent);
    std::optional<Attributes> attributes(xcb_window_t window);
    std::optional<QRect> outerRect(xcb_window_t window, const QPoint &innerOrigin); // with its border
    std::optional<QPoint> originOnRoot(xcb_window_t window);
    std::optional<xcb_window_t> frameOf(xcb_window_t window);
    std::optional<xcb_window_t> clientWithin(xcb_window_t frame, int depth);

    std::optional<XWindow> managed(xcb_window_t client);
    std::optional<XWindow> unmanaged(xcb_window_t top, bool hasClientList);
    bool setPlace(XWindow &window);
    void setDescription(XWindow &window);
    bool isHidden(xcb_window_t client);
    int layerOf(xcb_window_t client);
    QString ownerOf(xcb_window_t client);

    ZQXConnection &m_connection;
};

#include "Tests/Classes/Capture/XDesktop.h"

#include "Kit/Operations/ZQMainThread.h"

#include <chrono>

XDesktop::XDesktop() : m_connection(ZQXConnection::open())
{
    m_windowManager.setStandardOutputFile(QProcess::nullDevice());
    m_windowManager.setStandardErrorFile(QProcess::nullDevice());
    m_windowManager.start(QStringLiteral("openbox"), {QStringLiteral("--sm-disable")});
    m_hasWindowManager = m_connection && waitUntil([this] {
                             return !m_connection->numbers(m_connection->root(), "_NET_SUPPORTING_WM_CHECK").isEmpty();
                         });
}

XDesktop::~XDesktop()
{
    m_windowManager.terminate();
    m_windowManager.waitForFinished();
    if (m_connection) {
        xcb_delete_property(m_connection->get(), m_connection->root(), m_connection->atom("_NET_SUPPORTING_WM_CHECK"));
        xcb_flush(m_connection->get());
    }
}

bool XDesktop::waitUntil(const std::function<bool()> &isSo)
{
    constexpr std::chrono::seconds farTooLong(20);
    const auto end = std::chrono::steady_clock::now() + farTooLong;
    zqRunMainLoopUntil([&] { return isSo() || std::chrono::steady_clock::now() > end; });
    return isSo();
}

xcb_visualid_t XDesktop::transparentVisual() const
{
    constexpr int depth = 32;
    for (auto each = xcb_screen_allowed_depths_iterator(&m_connection->screen()); each.rem > 0; xcb_depth_next(&each)) {
        if (each.data->depth == depth) {
            return xcb_depth_visuals(each.data)[0].visual_id;
        }
    }
    return m_connection->screen().root_visual;
}

xcb_window_t XDesktop::show(const Window &window)
{
    constexpr quint8 transparentDepth = 32;
    constexpr quint32 placedByPerson = 1;
    constexpr qsizetype sizeHintNumbers = 18;
    xcb_connection_t *const display = m_connection->get();
    const xcb_visualid_t visual = window.isTransparent ? transparentVisual() : m_connection->screen().root_visual;
    const xcb_colormap_t colours = xcb_generate_id(display);
    xcb_create_colormap(display, XCB_COLORMAP_ALLOC_NONE, colours, m_connection->root(), visual);
    const quint32 values[] = {window.colour, 0, window.isManaged ? 0U : 1U, colours};
    const xcb_window_t id = xcb_generate_id(display);
    xcb_create_window(display, window.isTransparent ? transparentDepth : m_connection->screen().root_depth, id,
                      m_connection->root(), qint16(window.rect.x()), qint16(window.rect.y()),
                      quint16(window.rect.width()), quint16(window.rect.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      visual, XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_COLORMAP,
                      values);
    const QByteArray names = "instance" + QByteArray(1, '\0') + window.program + QByteArray(1, '\0');
    xcb_change_property(display, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                        quint32(names.size()), names.constData());
    xcb_change_property(display, XCB_PROP_MODE_REPLACE, id, m_connection->atom("_NET_WM_NAME"),
                        m_connection->atom("UTF8_STRING"), 8, 6, "T\xc3\xaftl\x65");
    QList<quint32> hints(sizeHintNumbers, 0);
    hints[0] = placedByPerson;
    hints[1] = quint32(window.rect.x());
    hints[2] = quint32(window.rect.y());
    xcb_change_property(display, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 32,
                        quint32(hints.size()), hints.constData());
    if (!window.type.isEmpty()) {
        const xcb_atom_t type = m_connection->atom(window.type);
        xcb_change_property(display, XCB_PROP_MODE_REPLACE, id, m_connection->atom("_NET_WM_WINDOW_TYPE"),
                            XCB_ATOM_ATOM, 32, 1, &type);
    }
    xcb_map_window(display, id);
    xcb_flush(display);
    // A window manager that is only just there may miss it; unmapped and mapped in one go it would, too.
    constexpr int looksBetween = 20;
    int looks = 0;
    waitUntil([&] {
        const ZQXReply<xcb_get_window_attributes_reply_t> is(
            xcb_get_window_attributes_reply(display, xcb_get_window_attributes(display, id), nullptr));
        const bool isSeen = is && is->map_state == XCB_MAP_STATE_VIEWABLE;
        const bool isManaged = !window.isManaged || !m_connection->numbers(id, "WM_STATE").isEmpty();
        if (isSeen && isManaged) {
            return true;
        }
        if (++looks % looksBetween == 0) {
            isSeen ? xcb_unmap_window(display, id) : xcb_map_window(display, id);
            xcb_flush(display);
        }
        return false;
    });
    return id;
}

QPoint XDesktop::origin(xcb_window_t window)
{
    const auto cookie = xcb_translate_coordinates(m_connection->get(), window, m_connection->root(), 0, 0);
    const ZQXReply<xcb_translate_coordinates_reply_t> reply(
        xcb_translate_coordinates_reply(m_connection->get(), cookie, nullptr));
    return reply ? QPoint(reply->dst_x, reply->dst_y) : QPoint();
}

void XDesktop::destroy(xcb_window_t window)
{
    m_connection->wasDone(xcb_destroy_window_checked(m_connection->get(), window));
}

void XDesktop::minimise(xcb_window_t window)
{
    constexpr quint32 iconic = 3;
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = m_connection->atom("WM_CHANGE_STATE");
    event.data.data32[0] = iconic;
    xcb_send_event(m_connection->get(), 0, m_connection->root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char *>(&event));
    xcb_flush(m_connection->get());
}

void XDesktop::setNumbers(xcb_window_t window, const QByteArray &property, const QList<quint32> &numbers)
{
    m_connection->wasDone(xcb_change_property_checked(m_connection->get(), XCB_PROP_MODE_REPLACE, window,
                                                      m_connection->atom(property), XCB_ATOM_CARDINAL, 32,
                                                      quint32(numbers.size()), numbers.constData()));
}

#include "Kit/Desktop/ZQXConnection.h"

std::unique_ptr<ZQXConnection> ZQXConnection::open()
{
    int number = 0;
    xcb_connection_t *const connection = xcb_connect(nullptr, &number);
    if (xcb_connection_has_error(connection) != 0) {
        xcb_disconnect(connection);
        return nullptr;
    }
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < number && screens.rem > 1; ++i) {
        xcb_screen_next(&screens);
    }
    return std::unique_ptr<ZQXConnection>(new ZQXConnection(connection, number, screens.data));
}

ZQXConnection::~ZQXConnection()
{
    xcb_disconnect(m_connection);
}

xcb_atom_t ZQXConnection::atom(const QByteArray &name)
{
    if (const auto known = m_atoms.constFind(name); known != m_atoms.constEnd()) {
        return *known;
    }
    const auto cookie = xcb_intern_atom(m_connection, 0, quint16(name.size()), name.constData());
    const ZQXReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_connection, cookie, nullptr));
    const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    if (reply) {
        m_atoms.insert(name, atom);
    }
    return atom;
}

ZQXReply<xcb_get_property_reply_t> ZQXConnection::property(xcb_window_t window, const QByteArray &name)
{
    constexpr quint32 longest = 1 << 18; // of four bytes
    const auto cookie = xcb_get_property(m_connection, 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, longest);
    return ZQXReply<xcb_get_property_reply_t>(xcb_get_property_reply(m_connection, cookie, nullptr));
}

QList<quint32> ZQXConnection::numbers(xcb_window_t window, const QByteArray &name)
{
    constexpr quint8 bits = 32;
    const auto reply = property(window, name);
    if (!reply || reply->format != bits) {
        return {};
    }
    const auto *const first = static_cast<const quint32 *>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

QByteArray ZQXConnection::bytes(xcb_window_t window, const QByteArray &name)
{
    constexpr quint8 bits = 8;
    const auto reply = property(window, name);
    if (!reply || reply->format != bits) {
        return {};
    }
    return {static_cast<const char *>(xcb_get_property_value(reply.get())), xcb_get_property_value_length(reply.get())};
}

bool ZQXConnection::wasDone(xcb_void_cookie_t checked, quint8 *errorCode)
{
    const ZQXReply<xcb_generic_error_t> error(xcb_request_check(m_connection, checked));
    if (errorCode) {
        *errorCode = error ? error->error_code : quint8(0);
    }
    return !error && isAlive();
}

void ZQXConnection::dropEvents()
{
    while (ZQXReply<xcb_generic_event_t>(xcb_poll_for_event(m_connection))) {
    }
}

#pragma once

#include <QByteArray>
#include <QGuiApplication>
#include <QString>

#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

// What both ends of the direct-save protocol of drags between programs of an X display say and read. What is read was
// written by another program. Main thread, with the toolkit's connection.
namespace XDirectSaveProtocol {

inline const QString format = QStringLiteral("XdndDirectSave0"); // also the name of the property
inline constexpr quint8 bitsOfText = 8;

struct Freeing
{
    void operator()(void *reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, Freeing>;

// Null when the program's windows are on no X display.
inline xcb_connection_t *connection()
{
    const auto *const x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

inline xcb_atom_t atomNamed(xcb_connection_t *connection, const QByteArray &name)
{
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, false, quint16(name.size()), name.constData()), nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

inline xcb_atom_t dragSelection(xcb_connection_t *connection)
{
    return atomNamed(connection, "XdndSelection");
}

// The window of the program that something is dragged from.
inline xcb_window_t ownerOf(xcb_connection_t *connection, xcb_atom_t selection)
{
    const Reply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection), nullptr));
    return reply ? reply->owner : xcb_window_t(XCB_WINDOW_NONE);
}

struct Text
{
    QByteArray bytes;
    bool isCutOff = false;
};

// The text in a property, whatever it says its type is, cut off at `longest` bytes; empty for what is no text.
inline Text textOf(xcb_connection_t *connection, xcb_window_t window, xcb_atom_t property, quint32 longest)
{
    const auto asked = xcb_get_property(connection, false, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, longest / 4);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, asked, nullptr));
    if (!reply || reply->format != bitsOfText) {
        return {};
    }
    return {QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                       xcb_get_property_value_length(reply.get())),
            reply->bytes_after > 0};
}

// Writes `text` over the property; false when the window is gone.
inline bool writeText(xcb_connection_t *connection, xcb_window_t window, xcb_atom_t property, const QByteArray &text)
{
    const auto written = xcb_change_property_checked(connection, XCB_PROP_MODE_REPLACE, window, property,
                                                     atomNamed(connection, "text/plain"), bitsOfText,
                                                     quint32(text.size()), text.constData());
    return !Reply<xcb_generic_error_t>(xcb_request_check(connection, written));
}

} // namespace XDirectSaveProtocol

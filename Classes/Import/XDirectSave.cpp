#include "Classes/Import/XDirectSave.h"

#include "Kit/Foundation/ZQLog.h"

#include <QGuiApplication>

#include <cstdlib>

namespace {

struct Freeing
{
    void operator()(void *reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, Freeing>;

constexpr quint32 longestName = 4096; // bytes
constexpr quint32 longestAnswer = 64;
constexpr quint8 bitsOfText = 8;

xcb_atom_t atomNamed(xcb_connection_t *connection, const QByteArray &name)
{
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, false, quint16(name.size()), name.constData()), nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

xcb_window_t ownerOf(xcb_connection_t *connection, xcb_atom_t selection)
{
    const Reply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection), nullptr));
    return reply ? reply->owner : xcb_window_t(XCB_WINDOW_NONE);
}

// The text in a property, whatever it says its type is, cut off at `longest` bytes; empty for what is no text.
QByteArray textOf(xcb_connection_t *connection, xcb_window_t window, xcb_atom_t property, quint32 longest)
{
    const auto asked = xcb_get_property(connection, false, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, longest / 4);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, asked, nullptr));
    if (!reply || reply->format != bitsOfText) {
        return {};
    }
    return QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                      xcb_get_property_value_length(reply.get()));
}

xcb_connection_t *connectionOfWindow()
{
    const auto *const x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

} // namespace

PromiseSourceMaker XDirectSave::maker()
{
    xcb_connection_t *const connection = connectionOfWindow();
    if (!connection) {
        return {};
    }
    return [connection](const QString &format) { return std::make_unique<XDirectSave>(connection, format); };
}

XDirectSave::XDirectSave(xcb_connection_t *connection, const QString &format)
    : m_connection(connection), m_selection(atomNamed(connection, "XdndSelection")),
      m_format(atomNamed(connection, format.toLatin1())), m_source(ownerOf(connection, m_selection))
{
    QCoreApplication::instance()->installNativeEventFilter(this);
}

XDirectSave::~XDirectSave()
{
    // A program that is still to answer gets an error for a window that is gone, which ends some.
    if (m_window != XCB_WINDOW_NONE && m_answer) {
        xcb_destroy_window(m_connection, m_window);
        xcb_flush(m_connection);
    }
}

QByteArray XDirectSave::proposedName()
{
    return textOf(m_connection, m_source, m_format, longestName);
}

void XDirectSave::save(const QByteArray &address)
{
    if (m_source == XCB_WINDOW_NONE || !tellAddress(address)) {
        qCInfo(zqLogImport) << "The program that promised a file is gone";
        m_answer = QByteArray();
        return;
    }
    ask();
}

bool XDirectSave::tellAddress(const QByteArray &address)
{
    const auto told = xcb_change_property_checked(m_connection, XCB_PROP_MODE_REPLACE, m_source, m_format,
                                                  atomNamed(m_connection, "text/plain"), bitsOfText,
                                                  quint32(address.size()), address);
    return !Reply<xcb_generic_error_t>(xcb_request_check(m_connection, told));
}

void XDirectSave::ask()
{
    const xcb_screen_t *const screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    m_window = xcb_generate_id(m_connection);
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, screen->root, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_convert_selection(m_connection, m_window, m_selection, m_format, m_format, XCB_CURRENT_TIME);
    xcb_flush(m_connection);
}

bool XDirectSave::nativeEventFilter(const QByteArray &eventType, void *message, qintptr * /*result*/)
{
    constexpr quint8 sentByProgram = 0x80;
    if (m_window == XCB_WINDOW_NONE || eventType != "xcb_generic_event_t") {
        return false;
    }
    const auto *const event = static_cast<const xcb_generic_event_t *>(message);
    if ((event->response_type & ~sentByProgram) != XCB_SELECTION_NOTIFY) {
        return false;
    }
    const auto *const notify = reinterpret_cast<const xcb_selection_notify_event_t *>(event);
    if (notify->requestor != m_window || m_answer) {
        return notify->requestor == m_window;
    }
    m_answer = notify->property == XCB_ATOM_NONE ? QByteArray()
                                                 : textOf(m_connection, m_window, notify->property, longestAnswer);
    return true;
}

#include "Tests/Classes/PromisedDrag/DropTarget.h"

#include <QUrl>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <poll.h>

namespace {

constexpr const char *directSave = "XdndDirectSave0";
constexpr const char *list = "text/uri-list";

struct Freeing
{
    void operator()(void *reply) const { std::free(reply); }
};

} // namespace

DropTarget::DropTarget(QPoint onScreen, QByteArray folder)
    : m_place(onScreen), m_folder(std::move(folder)), m_thread([this] { run(); })
{
}

DropTarget::~DropTarget()
{
    m_isStopped = true;
    m_thread.join();
}

xcb_atom_t DropTarget::atom(const char *name) const
{
    const std::unique_ptr<xcb_intern_atom_reply_t, Freeing> reply(xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, false, uint16_t(std::strlen(name)), name), nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

QByteArray DropTarget::property(xcb_window_t window, const char *name) const
{
    const std::unique_ptr<xcb_get_property_reply_t, Freeing> reply(xcb_get_property_reply(
        m_connection, xcb_get_property(m_connection, false, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 16384),
        nullptr));
    return reply ? QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                              xcb_get_property_value_length(reply.get()))
                 : QByteArray();
}

void DropTarget::makeWindow()
{
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    m_window = xcb_generate_id(m_connection);
    const uint32_t overridesManager[] = {1};
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, screen->root, int16_t(m_place.x()),
                      int16_t(m_place.y()), edge, edge, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT, overridesManager);
    const uint32_t version = 5;
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, atom("XdndAware"), XCB_ATOM_ATOM, 32, 1,
                        &version);
    xcb_map_window(m_connection, m_window);
    const std::unique_ptr<xcb_get_input_focus_reply_t, Freeing> done(
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr)); // all of it has happened
    m_isReady = true;
}

void DropTarget::run()
{
    m_connection = xcb_connect(nullptr, nullptr);
    makeWindow();
    const auto latest = std::chrono::steady_clock::now() + std::chrono::seconds(60); // a source that says nothing
    while (!m_isOver && !m_isStopped && std::chrono::steady_clock::now() < latest) {
        const std::unique_ptr<xcb_generic_event_t, Freeing> event(xcb_poll_for_event(m_connection));
        if (event) {
            handle(*event);
            continue;
        }
        pollfd waiting = {xcb_get_file_descriptor(m_connection), POLLIN, 0};
        ::poll(&waiting, 1, 50);
    }
    xcb_disconnect(m_connection);
    m_isOver = true;
}

void DropTarget::handle(const xcb_generic_event_t &event)
{
    constexpr int sentByProgram = 0x80;
    switch (event.response_type & ~sentByProgram) {
    case XCB_SELECTION_NOTIFY:
        finish(reinterpret_cast<const xcb_selection_notify_event_t &>(event));
        break;
    case XCB_CLIENT_MESSAGE:
        didHear(reinterpret_cast<const xcb_client_message_event_t &>(event));
        break;
    default:
        break;
    }
}

void DropTarget::send(const char *message, uint32_t b, uint32_t e) const
{
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = m_source;
    event.type = atom(message);
    const uint32_t data[] = {m_window, b, 0, 0, e};
    std::memcpy(event.data.data32, data, sizeof data);
    xcb_send_event(m_connection, false, m_source, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&event));
    xcb_flush(m_connection);
}

void DropTarget::didHear(const xcb_client_message_event_t &message)
{
    constexpr uint32_t accepts = 1;
    m_source = message.data.data32[0];
    if (message.type == atom("XdndPosition")) {
        send("XdndStatus", accepts, atom("XdndActionCopy"));
        ++m_positions;
    } else if (message.type == atom("XdndDrop")) {
        drop(message.data.data32[2]);
    }
}

// With the time of the drop, by which the source knows which of its drags is meant.
void DropTarget::drop(xcb_timestamp_t time)
{
    const char *format = list;
    if (!m_folder.isEmpty()) {
        format = directSave;
        m_name = property(m_source, directSave);
        const QByteArray address = m_folder + QUrl::toPercentEncoding(QString::fromUtf8(m_name));
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_source, atom(directSave), atom("text/plain"), 8,
                            uint32_t(address.size()), address.constData());
    }
    xcb_convert_selection(m_connection, m_window, atom("XdndSelection"), atom(format), atom("ANSWER"), time);
    xcb_flush(m_connection);
}

void DropTarget::finish(const xcb_selection_notify_event_t &notify)
{
    m_answer = notify.property == XCB_ATOM_NONE ? QByteArray() : property(m_window, "ANSWER");
    send("XdndFinished", 1);
    m_isOver = true;
}

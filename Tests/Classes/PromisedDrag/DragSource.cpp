#include "Tests/Classes/PromisedDrag/DragSource.h"

#include <QFile>
#include <QUrl>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <poll.h>

namespace {

constexpr const char *directSave = "XdndDirectSave0";
constexpr int moves = 2; // the first brings the drag into the window

struct Freeing
{
    void operator()(void *reply) const { std::free(reply); }
};

} // namespace

DragSource::DragSource(Promise promise, xcb_window_t target, QPoint onScreen)
    : m_promise(std::move(promise)), m_target(target), m_point(onScreen), m_thread([this] {
          drag();
          m_isOver = true;
      })
{
}

DragSource::~DragSource()
{
    m_thread.join();
}

xcb_atom_t DragSource::atom(const char *name) const
{
    const std::unique_ptr<xcb_intern_atom_reply_t, Freeing> reply(xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, false, uint16_t(std::strlen(name)), name), nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

void DragSource::send(const char *message, uint32_t b, uint32_t c, uint32_t d, uint32_t e) const
{
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = m_target;
    event.type = atom(message);
    const uint32_t data[] = {m_window, b, c, d, e};
    std::memcpy(event.data.data32, data, sizeof data);
    xcb_send_event(m_connection, false, m_target, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&event));
    xcb_flush(m_connection);
}

void DragSource::begin()
{
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    m_window = xcb_generate_id(m_connection);
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(m_connection, m_window, atom("XdndSelection"), XCB_CURRENT_TIME);
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, atom(directSave), atom("text/plain"), 8,
                        uint32_t(m_promise.name.size()), m_promise.name.constData());
    constexpr uint32_t version = 5;
    const xcb_atom_t list = m_promise.addresses.isEmpty() ? xcb_atom_t(XCB_ATOM_NONE) : atom("text/uri-list");
    send("XdndEnter", version << 24, atom(directSave), list);
    move();
}

void DragSource::move() const
{
    const auto x = uint32_t(m_point.x());
    const auto y = uint32_t(m_point.y());
    send("XdndPosition", 0, (x << 16) | y, XCB_CURRENT_TIME, atom("XdndActionCopy"));
}

void DragSource::drag()
{
    m_connection = xcb_connect(nullptr, nullptr);
    begin();
    const auto latest = std::chrono::steady_clock::now() + std::chrono::seconds(30); // a target that hears nothing
    while (!m_hasEnded && std::chrono::steady_clock::now() < latest) {
        const std::unique_ptr<xcb_generic_event_t, Freeing> event(xcb_poll_for_event(m_connection));
        if (event) {
            handle(*event);
            continue;
        }
        pollfd waiting = {xcb_get_file_descriptor(m_connection), POLLIN, 0};
        ::poll(&waiting, 1, 50);
    }
    xcb_disconnect(m_connection);
}

void DragSource::handle(const xcb_generic_event_t &event)
{
    constexpr int sentByProgram = 0x80;
    switch (event.response_type & ~sentByProgram) {
    case XCB_SELECTION_REQUEST:
        serve(reinterpret_cast<const xcb_selection_request_event_t &>(event));
        break;
    case XCB_CLIENT_MESSAGE:
        didHear(reinterpret_cast<const xcb_client_message_event_t &>(event));
        break;
    default:
        break;
    }
}

void DragSource::didHear(const xcb_client_message_event_t &message)
{
    if (message.type == atom("XdndFinished")) {
        m_hasEnded = true; // like programs that forget the drag then
    } else if (message.type == atom("XdndStatus") && ++m_moves < moves) {
        move();
    } else if (message.type == atom("XdndStatus") && m_moves == moves) {
        m_wasTaken = (message.data.data32[1] & 1) != 0;
        m_wasTaken ? send("XdndDrop", 0, XCB_CURRENT_TIME) : send("XdndLeave");
        m_hasEnded = !m_wasTaken;
    }
}

QByteArray DragSource::save()
{
    const std::unique_ptr<xcb_get_property_reply_t, Freeing> address(xcb_get_property_reply(
        m_connection, xcb_get_property(m_connection, false, m_window, atom(directSave), atom("text/plain"), 0, 4096),
        nullptr));
    m_address = address ? QByteArray(static_cast<const char *>(xcb_get_property_value(address.get())),
                                     xcb_get_property_value_length(address.get()))
                        : QByteArray();
    ++m_asked;
    QFile file(QUrl::fromEncoded(m_address).toLocalFile());
    if (!m_promise.content.isEmpty() && file.open(QIODevice::WriteOnly)) {
        file.write(m_promise.content);
    }
    return m_promise.answer;
}

QByteArray DragSource::dataFor(xcb_atom_t format)
{
    if (format == atom(directSave)) {
        return save();
    }
    return format == atom("text/uri-list") ? m_promise.addresses : QByteArray();
}

void DragSource::serve(const xcb_selection_request_event_t &request)
{
    const QByteArray data = dataFor(request.target);
    if (!m_promise.answers && request.target == atom(directSave)) {
        return;
    }
    xcb_selection_notify_event_t answer = {};
    answer.response_type = XCB_SELECTION_NOTIFY;
    answer.time = request.time;
    answer.requestor = request.requestor;
    answer.selection = request.selection;
    answer.target = request.target;
    answer.property = data.isEmpty() ? xcb_atom_t(XCB_ATOM_NONE) : request.property;
    if (!data.isEmpty()) {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property, request.target, 8,
                            uint32_t(data.size()), data.constData());
    }
    xcb_send_event(m_connection, false, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char *>(&answer));
    xcb_flush(m_connection);
}

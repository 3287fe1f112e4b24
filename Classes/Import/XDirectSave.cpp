#include "Classes/Import/XDirectSave.h"

#include "Classes/Import/XDirectSaveProtocol.h"
#include "Kit/Foundation/ZQLog.h"

#include <QGuiApplication>

using namespace XDirectSaveProtocol;

namespace {

constexpr quint32 longestName = 4096; // bytes
constexpr quint32 longestAnswer = 64;

} // namespace

PromiseSourceMaker XDirectSave::maker()
{
    xcb_connection_t *const display = connection();
    if (!display) {
        return {};
    }
    return [display](const QString &offered) { return std::make_unique<XDirectSave>(display, offered); };
}

XDirectSave::XDirectSave(xcb_connection_t *display, const QString &offered)
    : m_connection(display), m_selection(dragSelection(display)), m_format(atomNamed(display, offered.toLatin1())),
      m_source(ownerOf(display, m_selection))
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
    return textOf(m_connection, m_source, m_format, longestName).bytes;
}

void XDirectSave::save(const QByteArray &address)
{
    if (m_source == XCB_WINDOW_NONE || !writeText(m_connection, m_source, m_format, address)) {
        qCInfo(zqLogImport) << "The program that promised a file is gone";
        m_answer = QByteArray();
        return;
    }
    ask();
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
    m_answer = notify->property == XCB_ATOM_NONE
                   ? QByteArray()
                   : textOf(m_connection, m_window, notify->property, longestAnswer).bytes;
    return true;
}

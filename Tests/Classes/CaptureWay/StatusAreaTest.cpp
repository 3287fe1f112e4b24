#include "Classes/Interface/Capture/StatusIcon.h"
#include "Tests/Classes/CaptureWay/CaptureWayFixture.h"

#include <QApplication>

namespace {

// The status area of a desktop, over the test's own connection. Goes with this object.
class StatusArea
{
public:
    explicit StatusArea(ZQXConnection &connection)
        : m_connection(connection), m_window(xcb_generate_id(connection.get()))
    {
        xcb_connection_t *const display = m_connection.get();
        const xcb_window_t root = m_connection.root();
        const xcb_atom_t selection = m_connection.atom("_NET_SYSTEM_TRAY_S0");
        xcb_create_window(display, XCB_COPY_FROM_PARENT, m_window, root, 0, 0, 50, 30, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          m_connection.screen().root_visual, 0, nullptr);
        xcb_set_selection_owner(display, m_window, selection, XCB_CURRENT_TIME);
        xcb_client_message_event_t event = {};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = root;
        event.type = m_connection.atom("MANAGER");
        event.data.data32[1] = selection;
        event.data.data32[2] = m_window;
        xcb_send_event(display, 0, root, XCB_EVENT_MASK_STRUCTURE_NOTIFY, reinterpret_cast<const char *>(&event));
        xcb_flush(display);
    }
    ~StatusArea() { m_connection.wasDone(xcb_destroy_window_checked(m_connection.get(), m_window)); }
    StatusArea(const StatusArea &) = delete;
    StatusArea &operator=(const StatusArea &) = delete;

    bool isAskedForAPlace()
    {
        while (const ZQXReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection.get())}) {
            const auto *const message = reinterpret_cast<const xcb_client_message_event_t *>(event.get());
            const bool isMessage = (event->response_type & ~0x80) == XCB_CLIENT_MESSAGE;
            if (isMessage && message->type == m_connection.atom("_NET_SYSTEM_TRAY_OPCODE") &&
                message->data.data32[1] == 0) {
                return true;
            }
        }
        return false;
    }

private:
    ZQXConnection &m_connection;
    const xcb_window_t m_window;
};

class StatusAreaTest : public CaptureWayFixture
{
};

TEST_F(StatusAreaTest, HasTheIconOnceItStarts)
{
    ZQUserDefaults::standardUserDefaults().setObjectForKey(true, QLatin1StringView(StatusIcon::preference));
    openForCommand();
    const StatusIcon icon(*delegate);
    EXPECT_FALSE(icon.isShown());
    for (const QWidget *const each : QApplication::topLevelWidgets()) {
        EXPECT_FALSE(each->isVisible()) << "nothing lies on the desktop meanwhile";
    }
    StatusArea area(desktop.connection());
    EXPECT_TRUE(waitFor([&area] { return area.isAskedForAPlace(); }));
    EXPECT_TRUE(icon.isShown());
}

} // namespace

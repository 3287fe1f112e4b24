#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

// What the server answers, which is freed in the C way.
struct ZQXFree
{
    void operator()(void *answer) const { std::free(answer); }
};
template <class T>
using ZQXReply = std::unique_ptr<T, ZQXFree>;

// A connection to the X display of this process that is not the toolkit's: what is asked for and fails here, as for a
// window that is gone, is an answer that is missing and ends nobody. One thread.
class ZQXConnection
{
public:
    static std::unique_ptr<ZQXConnection> open(); // null: no display, or it does not answer
    ~ZQXConnection();
    ZQXConnection(const ZQXConnection &) = delete;
    ZQXConnection &operator=(const ZQXConnection &) = delete;

    xcb_connection_t *get() const { return m_connection; }
    const xcb_screen_t &screen() const { return *m_screen; }
    xcb_window_t root() const { return m_screen->root; }
    int screenNumber() const { return m_screenNumber; }
    bool isAlive() const { return xcb_connection_has_error(m_connection) == 0; }

    xcb_atom_t atom(const QByteArray &name); // kept; XCB_ATOM_NONE when the server does not answer

    // Whole, up to a limit far above what is usual; empty when there is none.
    QList<quint32> numbers(xcb_window_t window, const QByteArray &property);
    QByteArray bytes(xcb_window_t window, const QByteArray &property);

    // Whether a request that has no answer was done; waits for that.
    bool wasDone(xcb_void_cookie_t checked, quint8 *errorCode = nullptr);
    void dropEvents(); // those that come unasked would be kept for ever

private:
    ZQXConnection(xcb_connection_t *connection, int screenNumber, const xcb_screen_t *screen)
        : m_connection(connection), m_screen(screen), m_screenNumber(screenNumber)
    {
    }
    ZQXReply<xcb_get_property_reply_t> property(xcb_window_t window, const QByteArray &name);

    xcb_connection_t *const m_connection;
    const xcb_screen_t *const m_screen;
    const int m_screenNumber;
    QHash<QByteArray, xcb_atom_t> m_atoms;
};

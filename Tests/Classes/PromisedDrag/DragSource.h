#pragma once

#include <QByteArray>
#include <QPoint>

#include <xcb/xcb.h>

#include <atomic>
#include <thread>

// A program that drags a file which does not exist yet over a window of another, drops it there, and saves it where it
// is told: a client of the display by itself, on a thread of its own.
class DragSource
{
public:
    struct Promise
    {
        QByteArray name;
        QByteArray content = {};   // that it writes
        QByteArray answer = {};    // empty: it refuses to give one
        QByteArray addresses = {}; // of its list, if it has one
        bool answers = true;       // or takes note of the question and says nothing
    };
    DragSource(Promise promise, xcb_window_t target, QPoint onScreen);
    ~DragSource();
    DragSource(const DragSource &) = delete;
    DragSource &operator=(const DragSource &) = delete;

    bool isOver() const { return m_isOver; }
    // Once it is over.
    bool wasTaken() const { return m_wasTaken; }
    QByteArray address() const { return m_address; } // where it was told to save
    int asked() const { return m_asked; }            // how many times

private:
    void drag();
    void begin();
    void handle(const xcb_generic_event_t &event);
    void didHear(const xcb_client_message_event_t &message);
    void serve(const xcb_selection_request_event_t &request);
    QByteArray dataFor(xcb_atom_t format);
    QByteArray save();
    xcb_atom_t atom(const char *name) const;
    void send(const char *message, uint32_t b = 0, uint32_t c = 0, uint32_t d = 0, uint32_t e = 0) const;
    void move() const;

    const Promise m_promise;
    const xcb_window_t m_target;
    const QPoint m_point;
    xcb_connection_t *m_connection = nullptr;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    int m_moves = 0;
    bool m_hasEnded = false;
    bool m_wasTaken = false;
    int m_asked = 0;
    QByteArray m_address;
    std::atomic<bool> m_isOver = false;
    std::thread m_thread;
};

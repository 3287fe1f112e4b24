#pragma once

#include <QByteArray>
#include <QPoint>

#include <xcb/xcb.h>

#include <atomic>
#include <thread>

// A program with a window that takes what is dropped on it: a client of the display by itself, on a thread of its own.
// It has the file saved where it wants it, or asks for the list of files.
class DropTarget
{
public:
    // `folder`: the address, with a slash at its end, that the file is to be saved in; empty: asks for the list.
    DropTarget(QPoint onScreen, QByteArray folder);
    ~DropTarget();
    DropTarget(const DropTarget &) = delete;
    DropTarget &operator=(const DropTarget &) = delete;

    bool isReady() const { return m_isReady; } // its window is there
    // The drag was over it, and heard that it may be dropped here: it tells its second place only then.
    bool wasPromised() const { return m_positions > 1; }
    bool isOver() const { return m_isOver; }
    // Once it is over.
    QByteArray proposedName() const { return m_name; }
    QByteArray answer() const { return m_answer; } // of the protocol, or the list

    static constexpr int edge = 120; // of its window

private:
    void run();
    void makeWindow();
    void handle(const xcb_generic_event_t &event);
    void didHear(const xcb_client_message_event_t &message);
    void drop(xcb_timestamp_t time);
    void finish(const xcb_selection_notify_event_t &notify);
    void send(const char *message, uint32_t b, uint32_t e = 0) const;
    QByteArray property(xcb_window_t window, const char *name) const;
    xcb_atom_t atom(const char *name) const;

    const QPoint m_place;
    const QByteArray m_folder;
    xcb_connection_t *m_connection = nullptr;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    xcb_window_t m_source = XCB_WINDOW_NONE;
    QByteArray m_name;
    QByteArray m_answer;
    std::atomic<bool> m_isReady = false;
    std::atomic<int> m_positions = 0;
    std::atomic<bool> m_isOver = false;
    std::atomic<bool> m_isStopped = false;
    std::thread m_thread;
};

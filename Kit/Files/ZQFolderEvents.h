#pragma once

#include <QByteArray>

#include <cstdint>
#include <vector>

// What happened in one folder that is watched. What left a name and took another one is one event.
struct ZQFolderEvent
{
    int watch = -1;
    uint32_t mask = 0; // of inotify
    uint32_t cookie = 0;
    QByteArray name; // empty: the folder itself
    int toWatch = -1;
    QByteArray toName; // of a move: where it is now

    bool isMove() const { return toWatch >= 0; }
};

// Takes events from the system's queue, and finds the two that make a move. One thread.
class ZQFolderEvents
{
public:
    explicit ZQFolderEvents(int descriptor) : m_descriptor(descriptor) {} // not owned
    // Takes what is in the queue into memory, so that it does not overflow while other work is done.
    void read();
    bool isEmpty() const { return m_events.empty() && !m_isLost; } // of what was taken into memory
    std::vector<ZQFolderEvent> take();

private:
    void append(const char *data, qsizetype size);
    bool lacksOtherHalf() const;

    int m_descriptor;
    std::vector<ZQFolderEvent> m_events;
    bool m_isLost = false;
};

#include "Kit/Files/ZQFolderEvents.h"

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <set>
#include <unordered_map>
#include <utility>

namespace {
// What is not handled by then is as good as lost: everything is looked at.
constexpr size_t mostEvents = 1 << 18;
// Both halves of a move are queued one right after the other, but not as one.
constexpr int halfMoveTime = 10;  // milliseconds
constexpr size_t lastEvents = 16; // as many as others may have come between
} // namespace

void ZQFolderEvents::read()
{
    alignas(inotify_event) std::array<char, 65536> buffer;
    for (;;) {
        const ssize_t size = ::read(m_descriptor, buffer.data(), buffer.size());
        if (size <= 0) {
            return;
        }
        append(buffer.data(), size);
    }
}

void ZQFolderEvents::append(const char *data, qsizetype size)
{
    inotify_event head;
    for (qsizetype at = 0; at + qsizetype(sizeof head) <= size; at += qsizetype(sizeof head) + head.len) {
        std::memcpy(&head, data + at, sizeof head);
        if (m_events.size() >= mostEvents) {
            m_events.clear();
            m_isLost = true;
        }
        const char *const name = data + at + sizeof head;
        m_events.push_back({head.wd, head.mask, head.cookie, head.len ? QByteArray(name) : QByteArray(), -1, {}});
    }
}

bool ZQFolderEvents::lacksOtherHalf() const
{
    std::set<uint32_t> arrived;
    const size_t count = std::min(m_events.size(), lastEvents);
    return std::any_of(m_events.crbegin(), m_events.crbegin() + static_cast<ptrdiff_t>(count),
                       [&](const ZQFolderEvent &event) {
                           if (event.mask & IN_MOVED_TO) {
                               arrived.insert(event.cookie);
                           }
                           return (event.mask & IN_MOVED_FROM) && !arrived.contains(event.cookie);
                       });
}

std::vector<ZQFolderEvent> ZQFolderEvents::take()
{
    read();
    if (lacksOtherHalf()) {
        pollfd more = {m_descriptor, POLLIN, 0};
        ::poll(&more, 1, halfMoveTime);
        read();
    }
    std::vector<ZQFolderEvent> events;
    if (std::exchange(m_isLost, false)) {
        events.push_back({-1, IN_Q_OVERFLOW, 0, {}, -1, {}});
    }
    std::unordered_map<uint32_t, size_t> halves; // cookie → where the name was left
    for (ZQFolderEvent &event : m_events) {
        const auto half = event.mask & IN_MOVED_TO ? halves.find(event.cookie) : halves.end();
        if (half != halves.end()) {
            ZQFolderEvent &from = events[half->second];
            from.toWatch = event.watch;
            from.toName = std::move(event.name);
            continue;
        }
        if (event.mask & IN_MOVED_FROM) {
            halves.insert_or_assign(event.cookie, events.size());
        }
        events.push_back(std::move(event));
    }
    m_events.clear();
    return events;
}

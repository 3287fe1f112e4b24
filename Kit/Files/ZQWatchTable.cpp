#include "Kit/Files/ZQWatchTable.h"

#include "Kit/Foundation/ZQLog.h"

#include <QFile>

#include <sys/inotify.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {
// Not each piece that is written: it is the end of the writing that counts. IN_MASK_ADD, since a folder may be guarded
// as well, and what is asked for last would replace the rest.
constexpr uint32_t folderEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE | IN_ATTRIB |
                                  IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR | IN_DONT_FOLLOW | IN_EXCL_UNLINK |
                                  IN_MASK_ADD;
constexpr uint32_t nameEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
} // namespace

ZQWatchTable::ZQWatchTable(qint64 limit) : m_inotify(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)), m_limit(limit)
{
    if (!m_inotify.isOpen()) {
        qCWarning(zqLogFiles, "Folders cannot be watched, they are looked at in intervals: %s", std::strerror(errno));
    }
}

qint64 ZQWatchTable::limit() const
{
    if (m_limit > 0) {
        return m_limit;
    }
    QFile file(QStringLiteral("/proc/sys/fs/inotify/max_user_watches"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toLongLong() : 0;
}

bool ZQWatchTable::isFull(int error)
{
    return error == ENOSPC || error == ENOMEM || error == EBADF; // the last: not even one could be had
}

int ZQWatchTable::add(const QByteArray &path, User user)
{
    const int watch = ::inotify_add_watch(m_inotify.get(), path.constData(), folderEvents);
    if (watch < 0) {
        return watch;
    }
    const auto [from, to] = m_users.equal_range(watch);
    if (from == to && m_limit > 0 && m_count >= m_limit) {
        release(watch);
        errno = ENOSPC;
        return -1;
    }
    if (std::none_of(from, to, [&](const auto &one) { return one.second == user; })) {
        m_count += from == to;
        m_users.emplace(watch, user);
    }
    return watch;
}

void ZQWatchTable::remove(int watch, User user)
{
    const auto [from, to] = m_users.equal_range(watch);
    const auto found = std::find_if(from, to, [&](const auto &one) { return one.second == user; });
    if (found != to) {
        m_users.erase(found);
        m_count -= !m_users.contains(watch);
        release(watch);
    }
}

std::vector<ZQWatchTable::User> ZQWatchTable::usersOf(int watch) const
{
    std::vector<User> users;
    const auto [from, to] = m_users.equal_range(watch);
    for (auto it = from; it != to; ++it) {
        users.push_back(it->second);
    }
    return users;
}

void ZQWatchTable::didLose(int watch)
{
    m_count -= m_users.erase(watch) > 0;
    m_guards.erase(watch);
}

int ZQWatchTable::addGuard(const QByteArray &path, bool tellsEntries)
{
    const int watch = ::inotify_add_watch(m_inotify.get(), path.constData(),
                                          IN_MOVE_SELF | IN_ONLYDIR | IN_MASK_ADD | (tellsEntries ? nameEvents : 0));
    if (watch >= 0) {
        ++m_guards[watch];
    }
    return watch;
}

void ZQWatchTable::removeGuard(int watch)
{
    const auto found = m_guards.find(watch);
    if (found != m_guards.end() && --found->second == 0) {
        m_guards.erase(found);
        release(watch);
    }
}

void ZQWatchTable::release(int watch)
{
    if (m_inotify.isOpen() && !m_users.contains(watch) && !m_guards.contains(watch)) {
        ::inotify_rm_watch(m_inotify.get(), watch);
    }
}

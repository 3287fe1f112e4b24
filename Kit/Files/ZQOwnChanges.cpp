#include "Kit/Files/ZQOwnChanges.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

namespace {

QByteArray systemPath(const QString &path)
{
    return QFile::encodeName(QDir::cleanPath(path));
}

} // namespace

ZQOwnChanges &ZQOwnChanges::sharedOwnChanges()
{
    static ZQOwnChanges shared;
    return shared;
}

ZQOwnChanges::ZQOwnChanges(std::chrono::milliseconds moment, std::size_t limit) : m_moment(moment), m_limit(limit) {}

void ZQOwnChanges::note(const QString &path)
{
    const QByteArray key = systemPath(path);
    const ZQLockGuard lock(m_mutex);
    add(key, {});
}

void ZQOwnChanges::hold(const QString &path)
{
    const QByteArray key = systemPath(path);
    const ZQLockGuard lock(m_mutex);
    ++m_held[key]; // first: a note that is held is not forgotten to make room for itself
    add(key, {});
}

void ZQOwnChanges::release(const QString &path)
{
    const QByteArray key = systemPath(path);
    const ZQLockGuard lock(m_mutex);
    const auto held = m_held.find(key);
    if (held == m_held.end() || --*held > 0) {
        return;
    }
    m_held.erase(held);
    add(key, m_notes.value(key));
}

void ZQOwnChanges::forget(const QString &path)
{
    const QByteArray key = systemPath(path);
    const ZQLockGuard lock(m_mutex);
    if (!m_held.contains(key)) {
        m_notes.remove(key);
    }
}

bool ZQOwnChanges::isHeld(const QByteArray &path)
{
    const ZQLockGuard lock(m_mutex);
    return m_held.contains(path);
}

void ZQOwnChanges::add(const QByteArray &path, const Note &note)
{
    const Clock::time_point now = Clock::now();
    const Clock::time_point until = now + m_moment;
    forgetOld(now);
    if (m_order.size() >= m_limit) {
        forgetOldest();
    }
    m_notes.insert(path, Note{until, note.after, note.isMade});
    m_order.emplace_back(until, path);
}

void ZQOwnChanges::didChange(const QString &path)
{
    const QByteArray key = systemPath(path);
    const State state = stateOf(key);
    const ZQLockGuard lock(m_mutex);
    if (const auto note = m_notes.find(key); note != m_notes.end()) {
        note->after = state;
        note->isMade = true;
    }
}

bool ZQOwnChanges::contains(const QByteArray &path)
{
    Note note;
    {
        const ZQLockGuard lock(m_mutex);
        forgetOld(Clock::now());
        const auto found = m_notes.constFind(path);
        if (found == m_notes.cend()) {
            return false;
        }
        note = *found;
    }
    return !note.isMade || note.after == stateOf(path);
}

ZQOwnChanges::State ZQOwnChanges::stateOf(const QByteArray &path)
{
    struct stat status = {};
    if (::lstat(path.constData(), &status) != 0) {
        return {};
    }
    return {status.st_dev, status.st_ino, qint64(status.st_ctim.tv_sec) * 1'000'000'000 + status.st_ctim.tv_nsec};
}

void ZQOwnChanges::forgetOld(Clock::time_point now)
{
    while (!m_order.empty() && m_order.front().first <= now) {
        forgetOldest();
    }
}

void ZQOwnChanges::forgetOldest()
{
    const auto &[until, path] = m_order.front();
    if (const auto note = m_notes.constFind(path);
        note != m_notes.cend() && note->until == until && !m_held.contains(path)) {
        m_notes.erase(note); // a later call for the same path holds on to it
    }
    m_order.pop_front();
}

#include "Kit/Files/ZQReplacementWatch.h"

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <thread>
#include <utility>

ZQReplacementWatch::ZQReplacementWatch() : m_inotify(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
    if (m_inotify >= 0) {
        std::thread([this] {
            pollfd events = {.fd = m_inotify, .events = POLLIN, .revents = 0};
            while (true) {
                if (poll(&events, 1, -1) > 0) {
                    catchUp();
                }
            }
        }).detach();
    }
}

ZQReplacementWatch &ZQReplacementWatch::shared()
{
    static ZQReplacementWatch *const instance = new ZQReplacementWatch; // its thread lives as long as the process
    return *instance;
}

void ZQReplacementWatch::watch(const QByteArray &path, const ZQFileIdentity &identity, const Replaced &replaced)
{
    const std::lock_guard lock(m_mutex);
    const auto known = m_watched.find(m_descriptors.value(path, -1));
    if (known != m_watched.end() && known->identity.isSameAs(identity)) {
        if (!known->replaced) {
            known->replaced = replaced;
        }
    } else if (m_inotify >= 0) {
        add({path, identity, replaced});
    }
}

bool ZQReplacementWatch::add(const Watched &file)
{
    remove(m_descriptors.value(file.path, -1));
    const int descriptor =
        inotify_add_watch(m_inotify, file.path.constData(), IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_DONT_FOLLOW);
    if (descriptor < 0 || m_watched.contains(descriptor)) { // another name of the same file
        return false;
    }
    m_watched.insert(descriptor, file);
    m_descriptors.insert(file.path, descriptor);
    m_order.push_back(file.path);
    if (!zqIsFile(file.path, file.identity)) { // it went before it was watched
        remove(descriptor);
        return false;
    }
    if (m_order.size() > std::size_t(mostFiles)) {
        remove(m_descriptors.value(m_order.front(), -1));
    }
    return true;
}

void ZQReplacementWatch::remove(int descriptor)
{
    const auto file = m_watched.constFind(descriptor);
    if (file != m_watched.constEnd()) {
        inotify_rm_watch(m_inotify, descriptor);
        std::erase(m_order, file->path);
        m_descriptors.remove(file->path);
        m_watched.erase(file);
    }
}

void ZQReplacementWatch::catchUp()
{
    QList<std::pair<Replaced, QByteArray>> calls;
    {
        const std::lock_guard lock(m_mutex);
        calls = takeEvents();
    }
    for (const auto &[replaced, path] : std::as_const(calls)) {
        replaced(path);
    }
}

QList<std::pair<ZQReplacementWatch::Replaced, QByteArray>> ZQReplacementWatch::takeEvents()
{
    QList<std::pair<Replaced, QByteArray>> calls;
    alignas(inotify_event) char buffer[4096];
    for (ssize_t size = read(m_inotify, buffer, sizeof buffer); size > 0;
         size = read(m_inotify, buffer, sizeof buffer)) {
        for (ssize_t at = 0; at < size;) {
            inotify_event event = {};
            std::memcpy(&event, buffer + at, sizeof event);
            at += ssize_t(sizeof event) + ssize_t(event.len);
            if (event.mask & (IN_MOVE_SELF | IN_IGNORED)) {
                remove(event.wd); // its place was free then
            } else if (const auto call = didChange(event.wd)) {
                calls.append(*call);
            }
        }
    }
    return calls;
}

// A change of its attributes is also that of its number of names, which a file loses to the one renamed over it.
std::optional<std::pair<ZQReplacementWatch::Replaced, QByteArray>> ZQReplacementWatch::didChange(int descriptor)
{
    const auto place = m_watched.constFind(descriptor);
    if (place == m_watched.constEnd() || zqIsFile(place->path, place->identity)) {
        return std::nullopt;
    }
    const Watched file = *place;
    remove(descriptor);
    constexpr int inARow = 8; // while the next one is about to be watched, it may be replaced, too
    ZQFileIdentity present = file.identity;
    for (int i = 0; i < inARow; ++i) {
        const auto newcomer = zqLookAtFile(file.path);
        if (!newcomer || newcomer->isFolder) {
            return std::nullopt;
        }
        Replacement replacement{present, newcomer->identity};
        replacement.newcomer.fileSystem = newcomer->identity.birth == 0 ? zqFileSystemOf(file.path) : 0;
        m_replacements.push_back(replacement);
        if (m_replacements.size() > std::size_t(mostFiles)) {
            m_replacements.pop_front();
        }
        present = replacement.newcomer;
        if (add({file.path, present, {}})) {
            break;
        }
    }
    return file.replaced ? std::optional(std::pair(file.replaced, file.path)) : std::nullopt;
}

bool ZQReplacementWatch::didReplace(const ZQFileIdentity &file, const ZQFileIdentity &newcomer)
{
    const std::lock_guard lock(m_mutex);
    ZQFileIdentity present = file;
    for (const Replacement &replacement : m_replacements) { // in the order they happened
        if (replacement.file.isSameAs(present)) {
            present = replacement.newcomer;
        }
    }
    return !present.isSameAs(file) && present.isSameAs(newcomer);
}

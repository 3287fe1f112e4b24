#include "Kit/Files/ZQFileWatcher.h"

#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Foundation/ZQLog.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QMap>
#include <QSet>
#include <QSocketNotifier>
#include <QTimer>

#include <dirent.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

constexpr int settleTime = 300;     // milliseconds without an event before changes are announced
constexpr int longestWait = 3000;   // even while events keep coming
constexpr int ownChangeTime = 4000; // for how long a change of our own is ours
constexpr uint32_t events = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE | IN_ATTRIB |
                            IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR | IN_EXCL_UNLINK;

bool isWithin(const QString &path, const QString &folder)
{
    return path == folder || path.startsWith(folder == u"/" ? folder : folder + u'/');
}

} // namespace

struct ZQFileWatcher::Private
{
    ZQFileWatcher *watcher = nullptr;
    ZQFileDescriptor inotify;
    std::unique_ptr<QSocketNotifier> notifier;
    QTimer settled;
    QDeadlineTimer latest;
    QStringList roots;
    QHash<int, QString> pathOfWatch;
    QHash<QString, int> watchOfPath;
    QMap<QString, bool> changed; // folder → everything below
    QHash<QString, QDeadlineTimer> ours;

    bool watchTree(const QString &root);
    bool watchFolder(const QString &path, bool isRoot);
    void unwatchBelow(const QString &path);
    void readEvents();
    void handle(const inotify_event &event);
    void handleEntry(const QString &folder, const inotify_event &event);
    void lostEvents();
    void vanished(const QString &root);
    bool isOurs(const QString &path);
    void note(const QString &folder, bool everythingBelow);
    void announce();
};

bool ZQFileWatcher::Private::watchFolder(const QString &path, bool isRoot)
{
    const uint32_t linkRule = isRoot ? 0 : IN_DONT_FOLLOW;
    const int watch = inotify_add_watch(inotify.get(), QFile::encodeName(path).constData(), events | linkRule);
    if (watch < 0) {
        return false;
    }
    const QString before = pathOfWatch.value(watch);
    if (!before.isEmpty() && before != path) {
        watchOfPath.remove(before); // the folder has another name now
    }
    pathOfWatch.insert(watch, path);
    watchOfPath.insert(path, watch);
    return true;
}

// False when the folder itself cannot be watched, or the system has no watches left for all below it. A sub-folder that
// may not be read or is just gone is passed over.
bool ZQFileWatcher::Private::watchTree(const QString &root)
{
    QStringList folders = {root};
    while (!folders.isEmpty()) {
        const QString folder = folders.takeLast();
        if (!watchFolder(folder, roots.contains(folder))) {
            const int reason = errno;
            if (reason == ENOSPC || folder == root) {
                qCWarning(zqLogFiles, "Cannot watch %s: %s", qUtf8Printable(folder),
                          reason == ENOSPC
                              ? "the system's limit of watched folders (fs.inotify.max_user_watches) is reached"
                              : std::strerror(reason));
                return false;
            }
            continue;
        }
        const std::unique_ptr<DIR, int (*)(DIR *)> directory(opendir(QFile::encodeName(folder).constData()), closedir);
        while (const dirent *const entry = directory ? readdir(directory.get()) : nullptr) {
            const bool isSelf = std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0;
            if (!isSelf && (entry->d_type == DT_DIR || entry->d_type == DT_UNKNOWN)) {
                folders.append((folder == u"/" ? folder : folder + u'/') + QFile::decodeName(entry->d_name));
            }
        }
    }
    return true;
}

// Forgets the watches of `path` and below, except for those another root needs.
void ZQFileWatcher::Private::unwatchBelow(const QString &path)
{
    const auto isNeeded = [&](const QString &folder) {
        return std::any_of(roots.cbegin(), roots.cend(), [&](const QString &root) {
            return root != path && isWithin(folder, root) && roots.contains(path);
        });
    };
    for (auto it = watchOfPath.begin(); it != watchOfPath.end();) {
        if (!isWithin(it.key(), path) || isNeeded(it.key())) {
            ++it;
            continue;
        }
        inotify_rm_watch(inotify.get(), it.value());
        pathOfWatch.remove(it.value());
        it = watchOfPath.erase(it);
    }
}

void ZQFileWatcher::Private::readEvents()
{
    alignas(inotify_event) char buffer[65536];
    for (;;) {
        const ssize_t size = read(inotify.get(), buffer, sizeof buffer);
        if (size <= 0) {
            return;
        }
        for (ssize_t at = 0; at < size;) {
            const auto *const event = reinterpret_cast<const inotify_event *>(buffer + at);
            handle(*event);
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
    }
}

void ZQFileWatcher::Private::handle(const inotify_event &event)
{
    if (event.mask & IN_Q_OVERFLOW) {
        lostEvents();
        return;
    }
    const QString folder = pathOfWatch.value(event.wd);
    if (folder.isEmpty()) {
        return; // of a watch given up meanwhile
    }
    if (event.mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT | IN_IGNORED)) {
        if (roots.contains(folder)) {
            vanished(folder);
        } else if (!(event.mask & IN_MOVE_SELF)) {
            pathOfWatch.remove(event.wd);
            watchOfPath.remove(folder);
        }
        return;
    }
    handleEntry(folder, event);
}

void ZQFileWatcher::Private::handleEntry(const QString &folder, const inotify_event &event)
{
    const QString name = event.len ? QFile::decodeName(event.name) : QString();
    const QString path = name.isEmpty() ? folder : (folder == u"/" ? folder : folder + u'/') + name;
    const bool isSilent = isOurs(path) || isOurs(folder);
    if ((event.mask & IN_ISDIR) && (event.mask & (IN_MOVED_FROM | IN_DELETE)) && !roots.contains(path)) {
        unwatchBelow(path);
        const QStringList all = roots;
        for (const QString &root : all) {
            if (isWithin(root, path)) {
                vanished(root); // it went along with a folder around it
            }
        }
    }
    if ((event.mask & IN_ISDIR) && (event.mask & (IN_CREATE | IN_MOVED_TO)) && watchTree(path) && !isSilent) {
        note(path, true); // it may hold files from before it was watched
    }
    if (!isSilent) {
        note(folder, false);
    }
}

void ZQFileWatcher::Private::lostEvents()
{
    const QStringList all = roots;
    for (const QString &root : all) {
        unwatchBelow(root);
        if (watchTree(root)) {
            note(root, true);
        } else {
            vanished(root);
        }
    }
}

void ZQFileWatcher::Private::vanished(const QString &root)
{
    unwatchBelow(root);
    roots.removeAll(root);
    changed.remove(root);
    Q_EMIT watcher->rootDidVanish(root);
}

bool ZQFileWatcher::Private::isOurs(const QString &path)
{
    const auto found = ours.find(path);
    if (found == ours.end()) {
        return false;
    }
    if (!found->hasExpired()) {
        return true;
    }
    ours.erase(found);
    return false;
}

void ZQFileWatcher::Private::note(const QString &folder, bool everythingBelow)
{
    if (changed.isEmpty()) {
        latest.setRemainingTime(longestWait);
    }
    bool &below = changed[folder];
    below = below || everythingBelow;
    settled.start(static_cast<int>(std::clamp<qint64>(latest.remainingTime(), 0, settleTime)));
}

void ZQFileWatcher::Private::announce()
{
    const QMap<QString, bool> all = std::exchange(changed, {});
    for (auto it = all.cbegin(); it != all.cend(); ++it) {
        Q_EMIT watcher->folderDidChange(it.key(), it.value());
    }
}

ZQFileWatcher::ZQFileWatcher(QObject *parent) : QObject(parent), d(std::make_unique<Private>())
{
    d->watcher = this;
    d->settled.setSingleShot(true);
    connect(&d->settled, &QTimer::timeout, this, [this] { d->announce(); });
    d->inotify = ZQFileDescriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (!d->inotify.isOpen()) {
        qCWarning(zqLogFiles, "Folders cannot be watched: %s", std::strerror(errno));
        return;
    }
    d->notifier = std::make_unique<QSocketNotifier>(d->inotify.get(), QSocketNotifier::Read);
    connect(d->notifier.get(), &QSocketNotifier::activated, this, [this] { d->readEvents(); });
}

ZQFileWatcher::~ZQFileWatcher() = default;

bool ZQFileWatcher::addPath(const QString &path)
{
    const QString root = QDir::cleanPath(path);
    if (!d->inotify.isOpen() || !zqSystemPath(path, nullptr) || d->roots.contains(root)) {
        return d->roots.contains(root);
    }
    d->roots.append(root);
    if (!d->watchTree(root)) {
        d->unwatchBelow(root);
        d->roots.removeAll(root);
        return false;
    }
    return true;
}

void ZQFileWatcher::removePath(const QString &path)
{
    const QString root = QDir::cleanPath(path);
    if (d->roots.contains(root)) {
        d->unwatchBelow(root);
        d->roots.removeAll(root);
        for (auto it = d->changed.begin(); it != d->changed.end();) {
            const bool isWatched = d->watchOfPath.contains(it.key());
            it = isWatched ? std::next(it) : d->changed.erase(it);
        }
    }
}

QStringList ZQFileWatcher::paths() const
{
    return d->roots;
}

void ZQFileWatcher::ignoreNextChange(const QString &path)
{
    for (auto it = d->ours.begin(); it != d->ours.end();) {
        it = it->hasExpired() ? d->ours.erase(it) : std::next(it);
    }
    d->ours.insert(QDir::cleanPath(path), QDeadlineTimer(ownChangeTime));
}

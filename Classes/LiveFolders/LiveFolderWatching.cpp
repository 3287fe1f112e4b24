#include "Classes/LiveFolders/LiveFolderWatching.h"

#include "Kit/Files/ZQMountTable.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <utility>

LiveFolderWatching::LiveFolderWatching(QObject *parent) : QObject(parent), m_disks(ZQMountTable::read())
{
    connect(&m_watcher, &ZQFileWatcher::folderDidChange, this, &LiveFolderWatching::folderDidChange);
    connect(&m_watcher, &ZQFileWatcher::entryDidMove, this, &LiveFolderWatching::entryDidMove);
    connect(&m_watcher, &ZQFileWatcher::placesDidChange, this, &LiveFolderWatching::compareDisks);
    // What happened before, or while it was away, nobody told.
    const auto lookAtAll = [this](const QString &root) {
        Q_EMIT folderDidChange(root, true);
        Q_EMIT reasonDidChange();
    };
    connect(&m_watcher, &ZQFileWatcher::watchingDidStart, this, lookAtAll);
    connect(&m_watcher, &ZQFileWatcher::rootDidVanish, this, lookAtAll);
    connect(&m_watcher, &ZQFileWatcher::watchesDidRunOut, this, [this](qint64 needed) {
        m_watchesNeeded = needed;
        Q_EMIT reasonDidChange();
    });
}

// A disk in another one's place is both. One that went and came back meanwhile is there as before, and is told, too.
void LiveFolderWatching::compareDisks()
{
    const auto before = std::exchange(m_disks, ZQMountTable::read()).mountsBelow("/");
    const auto now = m_disks.mountsBelow("/");
    const auto lacks = [](const auto &mounts, const ZQMountTable::Mount &mount) {
        return std::find(mounts.begin(), mounts.end(), mount) == mounts.end();
    };
    if (before == now) {
        Q_EMIT diskDidMount(QStringLiteral("/"));
    }
    for (const ZQMountTable::Mount &mount : before) {
        if (lacks(now, mount)) {
            Q_EMIT diskDidUnmount(QFile::decodeName(mount.point));
        }
    }
    for (const ZQMountTable::Mount &mount : now) {
        if (lacks(before, mount)) {
            Q_EMIT diskDidMount(QFile::decodeName(mount.point));
        }
    }
}

void LiveFolderWatching::setRoots(const QStringList &roots)
{
    const QSet<QString> wanted(roots.begin(), roots.end());
    for (const QString &root : m_roots - wanted) {
        stopObserveWatchedFolderPath(root);
    }
    for (const QString &root : wanted - m_roots) {
        observeWatchedFolderPath(root);
    }
}

void LiveFolderWatching::observeWatchedFolderPath(const QString &path)
{
    m_roots.insert(path);
    m_watcher.addPath(path);
}

void LiveFolderWatching::stopObserveWatchedFolderPath(const QString &path)
{
    m_roots.remove(path);
    m_watcher.removePath(path);
}

QString LiveFolderWatching::reasonFor(const QString &root) const
{
    if (!m_roots.contains(root) || !m_watcher.isSwept(root)) {
        return {};
    }
    const QByteArray path = QFile::encodeName(QDir::cleanPath(root));
    const ZQMountTable table = ZQMountTable::read();
    const auto below = table.mountsBelow(path);
    const bool isSilent = table.isSilent(path) ||
                          std::any_of(below.begin(), below.end(), [](const auto &mount) { return mount.isSilent(); });
    return m_watchesNeeded > 0 && !isSilent
               ? zqFormat(
                     zqLocalized("The system has too few watches for all folders, so that this one is looked at in "
                                 "intervals. Raise fs.inotify.max_user_watches to %d."),
                     {m_watchesNeeded})
               : zqLocalized("Its file system tells of no changes, so that it is looked at in intervals.");
}

#include "Classes/LiveFolders/LiveFolderWatching.h"

#include "Kit/Foundation/ZQLocalized.h"

LiveFolderWatching::LiveFolderWatching(QObject *parent) : QObject(parent)
{
    connect(&m_watcher, &ZQFileWatcher::folderDidChange, this, &LiveFolderWatching::folderDidChange);
    connect(&m_watcher, &ZQFileWatcher::placesDidChange, this, &LiveFolderWatching::placesDidChange);
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

void LiveFolderWatching::setRoots(const QStringList &roots)
{
    const QSet<QString> wanted(roots.begin(), roots.end());
    for (const QString &root : m_roots - wanted) {
        m_watcher.removePath(root);
    }
    for (const QString &root : wanted - m_roots) {
        m_watcher.addPath(root);
    }
    m_roots = wanted;
}

QString LiveFolderWatching::reasonFor(const QString &root) const
{
    if (!m_roots.contains(root) || !m_watcher.isSwept(root)) {
        return {};
    }
    return m_watchesNeeded > 0
               ? zqFormat(
                     zqLocalized("The system has too few watches for all folders, so that this one is looked at in "
                                 "intervals. Raise fs.inotify.max_user_watches to %d."),
                     {m_watchesNeeded})
               : zqLocalized("Its file system tells of no changes, so that it is looked at in intervals.");
}

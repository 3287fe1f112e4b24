#include "Classes/LiveFolders/LiveFolderWatching.h"

#include "Kit/Foundation/ZQLocalized.h"

LiveFolderWatching::LiveFolderWatching(QObject *parent) : QObject(parent)
{
    connect(&m_watcher, &ZQFileWatcher::folderDidChange, this, &LiveFolderWatching::folderDidChange);
    connect(&m_watcher, &ZQFileWatcher::rootDidVanish, this, [this](const QString &root) {
        m_roots.remove(root); // it is added again when it is back
        Q_EMIT placesDidChange();
    });
}

void LiveFolderWatching::setRoots(const QStringList &roots)
{
    const QSet<QString> wanted(roots.begin(), roots.end());
    const QSet<QString> present = m_roots;
    for (const QString &root : present - wanted) {
        m_watcher.removePath(root);
    }
    m_unwatched.clear();
    for (const QString &root : wanted - present) {
        if (!m_watcher.addPath(root)) {
            m_unwatched.insert(root);
        }
    }
    m_roots = wanted - m_unwatched;
}

QString LiveFolderWatching::reasonFor(const QString &root) const
{
    return m_unwatched.contains(root)
               ? zqLocalized("The system does not tell of changes in it. Synchronise it yourself after changes.")
               : QString();
}

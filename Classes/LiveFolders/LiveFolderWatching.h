#pragma once

#include "Kit/Files/ZQFileWatcher.h"

#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>

// What the disk tells of live folders, in their terms: which folder to look at. Main thread.
class LiveFolderWatching : public QObject
{
    Q_OBJECT
public:
    explicit LiveFolderWatching(QObject *parent = nullptr);

    // Exactly these are watched from now on.
    void setRoots(const QStringList &roots);
    QStringList roots() const { return {m_roots.begin(), m_roots.end()}; }
    // Why changes below a root are not told at once, localized; empty: they are.
    QString reasonFor(const QString &root) const;

Q_SIGNALS:
    void folderDidChange(const QString &folder, bool everythingBelow);
    // Something may have been mounted or unmounted, or a root is no longer where it was.
    void placesDidChange();

private:
    ZQFileWatcher m_watcher;
    QSet<QString> m_roots;
    QSet<QString> m_unwatched; // that the system did not let us watch
};

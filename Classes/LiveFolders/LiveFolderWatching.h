#pragma once

#include "Kit/Files/ZQFileWatcher.h"
#include "Kit/Files/ZQMountTable.h"

#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

// What the disk tells of live folders, in their terms: which folder to look at. Main thread.
class LiveFolderWatching : public QObject
{
    Q_OBJECT
public:
    explicit LiveFolderWatching(QObject *parent = nullptr);

    // Exactly these are watched from now on; also those that are not there, so that their return is seen.
    void setRoots(const QStringList &roots);
    bool isSwept(const QString &root) const { return m_watcher.isSwept(root); }
    // Why changes below a root are not told at once, localized; empty: they are.
    QString reasonFor(const QString &root) const;

Q_SIGNALS:
    void folderDidChange(const QString &folder, bool everythingBelow);
    // Told before the changes of both folders, so that they can be looked at together.
    void entryDidMove(const QString &from, const QString &to);
    void diskDidMount(const QString &path); // anywhere
    void diskDidUnmount(const QString &path);
    void reasonDidChange(); // of any root

private:
    void observeWatchedFolderPath(const QString &path);
    void stopObserveWatchedFolderPath(const QString &path);

    void compareDisks();

    ZQFileWatcher m_watcher;
    ZQMountTable m_disks;
    QSet<QString> m_roots;
    qint64 m_watchesNeeded = 0; // when there were too few the last time; 0: there were always enough
};

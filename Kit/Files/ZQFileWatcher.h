#pragma once

#include "Kit/Files/ZQWatchOptions.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

struct ZQWatchNews;

// Watches folders with all that is below them, and tells what changed after it has settled. The work is done on threads
// of its own, which never wait for the thread the watcher lives in; that one needs an event loop and is told a few
// milliseconds' worth at a time.
//
// Hidden files and folders, and what links lead to, are no part of a folder; a root may be either. Names need not be
// text: what cannot be written as one is told by the folder around it. Changes noted in ZQOwnChanges are not told.
//
// Whatever happens, it is not missed for ever: where the system loses events or has no watch left, folders are looked
// at again, and all of them once an hour. Places that tell nothing (ZQMountTable::isSilent) are looked at in the
// interval the person set; there, only what comes and goes is seen between the hours.
class ZQFileWatcher : public QObject
{
    Q_OBJECT
public:
    explicit ZQFileWatcher(QObject *parent = nullptr);
    explicit ZQFileWatcher(const ZQWatchOptions &options, QObject *parent = nullptr);
    ~ZQFileWatcher() override;

    // Returns at once. A path where there is no folder is told as one that vanished, and started when there is one.
    // False for what is no path. One root may hold another.
    bool addPath(const QString &path);
    void removePath(const QString &path); // nothing is told of it from then on
    QStringList paths() const;            // also of those that vanished
    // Whether the root, or something below it, is looked at in intervals instead of being watched.
    bool isSwept(const QString &root) const;

Q_SIGNALS:
    // From now on changes are told: for the first time, and when a root that vanished is there again, or another folder
    // in its place.
    void watchingDidStart(const QString &root);
    // Entries of the folder came, went, or have other content or attributes; or that happened anywhere below.
    void folderDidChange(const QString &folder, bool everythingBelow);
    // A file or a folder has another name or place within what is watched; what had that name before is gone. Told
    // before the changes of both folders, in the order in which it happened.
    void entryDidMove(const QString &from, const QString &to);
    // The root is not there, cannot be listed, or is not the folder it was. It is started again when it can be.
    void rootDidVanish(const QString &root);
    void placesDidChange(); // something was mounted or unmounted anywhere
    // Not all folders can be watched; `needed` is what fs.inotify.max_user_watches would have to be.
    void watchesDidRunOut(qint64 needed);

private:
    struct Private;
    void deliver();
    void tell(const ZQWatchNews &news);
    void moveToOtherLoop(const ZQWatchNews &news);
    bool isWithinRoots(const QByteArray &path) const;

    std::unique_ptr<Private> d;
};

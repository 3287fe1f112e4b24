#pragma once

#include "Kit/Files/ZQFileWatcher.h"
#include "Kit/Files/ZQOwnChanges.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QList>
#include <QSet>
#include <QTimer>

#include <cstdio>
#include <functional>
#include <utility>

// A watcher and what it told so far. That something is not told is seen by what is told after it, since announcements
// keep their order.
struct Watching
{
    explicit Watching(const ZQWatchOptions &options = patient()) : watcher(options)
    {
        QObject::connect(&watcher, &ZQFileWatcher::folderDidChange,
                         [this](const QString &folder, bool everythingBelow) {
                             changed.insert(folder);
                             if (everythingBelow) {
                                 below.insert(folder);
                             }
                         });
        QObject::connect(&watcher, &ZQFileWatcher::entryDidMove, [this](const QString &from, const QString &to) {
            moves.append({from, to});
        });
        QObject::connect(&watcher, &ZQFileWatcher::watchingDidStart,
                         [this](const QString &root) { started.append(root); });
        QObject::connect(&watcher, &ZQFileWatcher::rootDidVanish,
                         [this](const QString &root) { vanished.append(root); });
        QObject::connect(&watcher, &ZQFileWatcher::placesDidChange, [this] { ++placeChanges; });
        QObject::connect(&watcher, &ZQFileWatcher::watchesDidRunOut, [this](qint64 count) { needed = count; });
    }

    // Own changes are forgotten, and files waited for, by what happens and not by the clock.
    static ZQWatchOptions patient()
    {
        static ZQOwnChanges ownChanges(std::chrono::hours(1));
        ZQWatchOptions options;
        options.longestWrite = std::chrono::hours(1);
        options.returnInterval = std::chrono::milliseconds(50);
        options.ownChanges = &ownChanges;
        return options;
    }

    static bool waitFor(const std::function<bool()> &isTrue)
    {
        const QDeadlineTimer deadline(20000);
        QTimer wakes;
        wakes.start(20);
        while (!isTrue() && !deadline.hasExpired()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return isTrue();
    }
    bool start(const QString &root)
    {
        const qsizetype before = started.count(root);
        return watcher.addPath(root) && waitFor([&] { return started.count(root) > before; });
    }
    bool waitForChangeOf(const QString &folder)
    {
        return waitFor([&] { return changed.contains(folder); });
    }
    // Whether changes of this very folder are told, when those from before have been told by a folder around it.
    bool follows(const QString &folder)
    {
        for (int i = 0; i < 20; ++i) {
            forget();
            QFile file(folder + QStringLiteral("/follows %1").arg(i));
            if (!file.open(QIODevice::WriteOnly)) {
                return false;
            }
            file.close();
            if (!waitFor([&] { return changed.contains(folder) || !below.isEmpty(); })) {
                return false;
            }
            if (changed.contains(folder)) {
                return true;
            }
        }
        return false;
    }
    void forget()
    {
        changed.clear();
        below.clear();
        moves.clear();
    }

    ZQFileWatcher watcher;
    QSet<QString> changed;
    QSet<QString> below;
    QList<std::pair<QString, QString>> moves;
    QStringList started;
    QStringList vanished;
    int placeChanges = 0;
    qint64 needed = 0;
};

inline bool renamed(const QString &from, const QString &to)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

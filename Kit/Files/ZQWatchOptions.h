#pragma once

#include "Kit/Files/ZQMountTable.h"

#include <QByteArray>

#include <chrono>
#include <cstddef>
#include <optional>

class ZQOwnChanges;

// How patient a watcher is, and what it may use.
struct ZQWatchOptions
{
    std::chrono::milliseconds quiet{200};           // without an event, before changes are announced
    std::chrono::milliseconds longestWait{700};     // even while events keep coming
    std::chrono::milliseconds longestWrite{3100};   // for a file that is being written
    std::chrono::milliseconds returnInterval{1000}; // between two looks whether a root is back
    std::chrono::milliseconds sweepInterval{std::chrono::hours(1)};
    // Between two looks at places that tell nothing; without it, what the person set (`LiveFolderSweepMinutes`).
    std::optional<std::chrono::milliseconds> silentInterval;
    qint64 mostWatches = 0;         // 0: what the system allows
    std::size_t mostEvents = 16384; // before one announcement; beyond, all is looked at instead
    QByteArray mountTable = ZQMountTable::defaultPath();
    ZQOwnChanges *ownChanges = nullptr; // null: those of the process
};

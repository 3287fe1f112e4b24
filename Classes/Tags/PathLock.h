#pragma once

#include "Kit/Foundation/ZQThreadSafety.h"

#include <QHash>
#include <QString>

#include <array>

// Held while several attributes of one file are read or written together, so that another thread of this process sees
// either what was before or what comes after. One path at a time a thread; taking the same again is fine. Guards files,
// not members: the check of locks has nothing to follow here.
class PathLock
{
public:
    explicit PathLock(const QString &path) ZQ_NO_THREAD_SAFETY_ANALYSIS : m_mutex(mutexFor(path)) { m_mutex.lock(); }
    ~PathLock() ZQ_NO_THREAD_SAFETY_ANALYSIS { m_mutex.unlock(); }
    PathLock(const PathLock &) = delete;
    PathLock &operator=(const PathLock &) = delete;

private:
    static ZQRecursiveMutex &mutexFor(const QString &path)
    {
        static std::array<ZQRecursiveMutex, 31> mutexes;
        return mutexes[qHash(path) % mutexes.size()];
    }

    ZQRecursiveMutex &m_mutex;
};

#pragma once

#include <QHash>
#include <QString>

#include <array>
#include <mutex>

// Held while several attributes of one file are read or written together, so that another thread of this process sees
// either what was before or what comes after. One path at a time a thread; taking the same again is fine.
class PathLock
{
public:
    explicit PathLock(const QString &path) : m_guard(mutexFor(path)) {}

private:
    static std::recursive_mutex &mutexFor(const QString &path)
    {
        static std::array<std::recursive_mutex, 31> mutexes;
        return mutexes[qHash(path) % mutexes.size()];
    }

    std::lock_guard<std::recursive_mutex> m_guard;
};

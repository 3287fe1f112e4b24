#pragma once

#include "Kit/Files/ZQFileReference.h"
#include "Kit/Files/ZQPersistentURL.h"

#include <QHash>
#include <QList>
#include <QThreadPool>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

// What the process knows of files that are not where their references say: found ones, missing ones, and those being
// looked for on a thread of its own. One for the process; any thread.
class ZQFileFinder
{
public:
    using Moved = std::function<void(const QString &path)>;

    static ZQFileFinder &shared();

    // Empty when it is missing, or being looked for.
    QByteArray find(const QByteArray &data, const ZQFileReference &reference, bool waits, const Moved &moved);
    void setWaits(bool waits) { m_waits = waits; }
    void setRoots(const QList<QByteArray> &roots);
    ZQPersistentURLCounts counts() const { return {m_inCallers, m_beside}; }
    void forget();
    void wait();

private:
    // How the last folder and the file in it looked when it was read; every renaming in the folder changes it.
    struct Stamp
    {
        quint64 inode = 0;
        qint64 modification = 0;
        qint64 change = 0;
        friend bool operator==(const Stamp &, const Stamp &) = default;
    };
    struct Known
    {
        std::chrono::steady_clock::time_point until; // for a missing one
        QByteArray path;                             // empty: missing
        ZQFileIdentity identity;
        Stamp folder;
        bool wasLookedForAround = false;
    };
    struct Wanted
    {
        QByteArray data;
        ZQFileReference reference;
        Moved moved;
    };

    ZQFileFinder();
    static Stamp stampOf(const ZQFileReference &reference);
    static std::chrono::steady_clock::time_point trustedUntil(const Stamp &folder);
    std::optional<Known> known(const QByteArray &data, const Stamp &folder);
    void remember(const QByteArray &data, const Known &known);
    QByteArray didFind(const QByteArray &data, const ZQFileReference &reference, const QByteArray &path,
                       const Stamp &folder, const Moved &moved);
    QByteArray findInFolder(const ZQFileReference &reference);
    void findAround(QList<Wanted> wanted, std::atomic<qint64> &looked);
    void findBeside(const Wanted &wanted);
    void work();

    std::mutex m_mutex;
    std::condition_variable m_idle;
    QHash<QByteArray, Known> m_known;
    std::deque<QByteArray> m_order; // of m_known, oldest first
    QList<Wanted> m_wanted;
    QList<QByteArray> m_roots;
    bool m_isWorking = false;
    std::atomic<bool> m_waits = false;
    std::atomic<qint64> m_inCallers = 0;
    std::atomic<qint64> m_beside = 0;
    QThreadPool m_thread;
};

#pragma once

#include "Kit/Files/ZQFileReference.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QThreadPool>

#include <atomic>
#include <chrono>
#include <deque>
#include <optional>

// What the process knows of files that are not where their references say: found ones, missing ones, and those being
// looked for on a thread of its own. One for the process; any thread.
class ZQFileFinder
{
public:
    using Moved = std::function<void(const QString &path)>;

    static ZQFileFinder &shared();

    // Where the file of `reference`, which is `data` decoded, is now. Without `waits` only its folder is read, and that
    // not again while a miss is remembered; empty then means missing or being looked for. With it the answer is final,
    // and what is being looked for on the thread is waited for rather than looked for twice. `moved` is called on the
    // thread, once for what is remembered as found elsewhere; it must not wait for a search.
    QByteArray find(const QByteArray &data, const ZQFileReference &reference, bool waits, const Moved &moved);
    struct Wanted
    {
        QByteArray data;
        ZQFileReference reference;
        Moved moved;
    };
    // Does the work of `find` for many: each folder is read once for all that are missing from it, and what is in none
    // is looked for in one go. What it found is remembered for the `find` of each. How many it left to the thread.
    qsizetype lookFor(const QList<Wanted> &all, bool waits);
    // Has `moved` called again at the next `find`, when what it said could not be used.
    void tellAgain(const QByteArray &data);
    // From now on every `find` waits. Searches that run on the thread go on.
    void setWaits(bool waits) { m_waits = waits; }
    void setRoots(const QList<QByteArray> &roots);
    // The time since 1970 that counts instead of the real one; nothing: the real one again. For tests.
    void setTime(std::optional<std::chrono::nanoseconds> time);
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
        std::chrono::nanoseconds until{}; // for a missing one
        QByteArray path;                  // empty: missing
        ZQFileIdentity identity;
        Stamp folder;
        bool wasLookedForAround = false;
        bool isTold = false;
    };
    struct Telling
    {
        QByteArray path;
        Moved moved;
    };

    ZQFileFinder();
    static Stamp stampOf(const ZQFileReference &reference);
    std::chrono::nanoseconds uptime() const;
    std::chrono::nanoseconds timeOfDay() const;
    std::chrono::nanoseconds trustedUntil(const Stamp &folder) const;
    // What still holds: a found file that is there, a miss whose folder and time did not run out.
    std::optional<Known> known(const QByteArray &data, const Stamp &folder);
    // Takes the place of what was known of `data`; the oldest goes when there are too many. Nobody is told.
    void remember(const QByteArray &data, const Known &known);
    void waitUntilLookedFor(const QByteArray &data);
    void didLookAround(const QByteArray &data) ZQ_REQUIRES(m_mutex);
    void tell(const QByteArray &data, const QByteArray &path, const Moved &moved);
    void didFind(const Wanted &wanted, const QByteArray &path, const Stamp &folder);
    // Those of them that are not in `folder`, where all of them were.
    QList<Wanted> findInFolder(const QByteArray &folder, const QList<Wanted> &wanted);
    void findAround(const QList<Wanted> &wanted, std::atomic<qint64> &looked);
    void findBeside(const QList<Wanted> &wanted);
    void startWork() ZQ_REQUIRES(m_mutex);
    void work();

    ZQMutex m_mutex;
    ZQCondition m_idle;
    QHash<QByteArray, Known> m_known ZQ_GUARDED_BY(m_mutex);
    std::deque<QByteArray> m_order ZQ_GUARDED_BY(m_mutex); // of m_known, oldest first
    QList<Wanted> m_wanted ZQ_GUARDED_BY(m_mutex);
    QSet<QByteArray> m_lookedFor ZQ_GUARDED_BY(m_mutex); // those of m_wanted, and those the thread is at
    QList<Telling> m_tellings ZQ_GUARDED_BY(m_mutex);
    QList<QByteArray> m_roots ZQ_GUARDED_BY(m_mutex);
    bool m_isWorking ZQ_GUARDED_BY(m_mutex) = false;
    std::atomic<bool> m_waits = false;
    std::atomic<qint64> m_time = 0; // nanoseconds; 0: the real one
    std::atomic<qint64> m_inCallers = 0;
    std::atomic<qint64> m_beside = 0;
    QThreadPool m_thread;
};

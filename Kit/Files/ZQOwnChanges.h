#pragma once

#include "Kit/Foundation/ZQThreadSafety.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <sys/types.h>

#include <chrono>
#include <deque>

// The paths at which this process is about to change something on the disk, so that its watchers do not answer it as
// they answer what other programs do. Only the events of that very path are swallowed, and only for a moment: what is
// forgotten too early costs one look too many. Any thread.
class ZQOwnChanges
{
public:
    using Clock = std::chrono::steady_clock;

    static ZQOwnChanges &sharedOwnChanges();
    explicit ZQOwnChanges(std::chrono::milliseconds moment = std::chrono::seconds(2), std::size_t limit = 20'000);

    // Before a change at `path`: both paths of a renaming, and the folder whose attributes are written.
    void note(const QString &path);
    // The same for a change that may take longer than the moment, which begins once it is released as often as held.
    void hold(const QString &path);
    void release(const QString &path);
    // After the change. Without it all that happens to the path during the moment is taken as ours; with it, what
    // others do after us is told from it.
    void didChange(const QString &path);
    // What was done at this path is to be answered, as if others had done it. Not while it is held.
    void forget(const QString &path);

    // Whether what just happened at this path, as the system has it, is ours. Asked by the watchers.
    bool contains(const QByteArray &path);
    // Whether a change of ours there has not come to its end, whatever others do meanwhile.
    bool isHeld(const QByteArray &path);

private:
    struct State
    {
        bool operator==(const State &) const = default;
        dev_t device = 0;
        ino_t inode = 0; // 0: there is nothing
        qint64 changed = 0;
    };
    struct Note
    {
        Clock::time_point until;
        State after;
        bool isMade = false;
    };

    static State stateOf(const QByteArray &path);
    void add(const QByteArray &path, const Note &note) ZQ_REQUIRES(m_mutex);
    void forgetOld(Clock::time_point now) ZQ_REQUIRES(m_mutex);
    void forgetOldest() ZQ_REQUIRES(m_mutex);

    const std::chrono::milliseconds m_moment;
    const std::size_t m_limit;
    ZQMutex m_mutex;
    QHash<QByteArray, Note> m_notes ZQ_GUARDED_BY(m_mutex);
    QHash<QByteArray, int> m_held ZQ_GUARDED_BY(m_mutex);                                // how often
    std::deque<std::pair<Clock::time_point, QByteArray>> m_order ZQ_GUARDED_BY(m_mutex); // one a call of add
};

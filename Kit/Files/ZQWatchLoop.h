#pragma once

#include "Kit/Files/ZQFolderEvents.h"
#include "Kit/Files/ZQSettlingChanges.h"
#include "Kit/Files/ZQTreeEvents.h"
#include "Kit/Files/ZQUnfinishedFiles.h"
#include "Kit/Files/ZQWatchOptions.h"
#include "Kit/Files/ZQWatchOutbox.h"
#include "Kit/Files/ZQWatchTable.h"
#include "Kit/Files/ZQWatchedRoot.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <atomic>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

// What a watcher does on a thread of its own. Roots at places that tell nothing have a loop to themselves: a server
// that does not answer holds up whoever asks it. What is public may be called from any thread.
class ZQWatchLoop
{
public:
    static std::shared_ptr<ZQWatchLoop> start(const ZQWatchOptions &options, bool isForSilent,
                                              std::shared_ptr<ZQWatchOutbox> outbox);
    ~ZQWatchLoop();
    ZQWatchLoop(const ZQWatchLoop &) = delete;
    ZQWatchLoop &operator=(const ZQWatchLoop &) = delete;

    void add(const QByteArray &path);
    void remove(const QByteArray &path);
    // Ends the thread. One that hangs in a call of the system is left behind after a moment; it tells nothing more.
    void end();

private:
    using Clock = ZQSettlingChanges::Clock;
    using Root = std::unique_ptr<ZQWatchedRoot>;
    struct Command
    {
        bool adds;
        QByteArray path;
    };

    ZQWatchLoop(const ZQWatchOptions &options, bool isForSilent, std::shared_ptr<ZQWatchOutbox> outbox);
    void run();
    void send(Command command);
    void wake();
    void obey();
    void wait();
    void handleEvents();
    void doWhatIsDue();
    std::optional<Clock::time_point> due() const;

    void startRoot(ZQWatchedRoot &root);
    bool isElsewhere(const ZQWatchedRoot &root) const;
    void tellSilentPlaces(ZQWatchedRoot &root);
    void vanish(ZQWatchedRoot &root);
    void removeRoot(QByteArray path); // a copy: the root goes
    void forgetNewsOf(const QByteArray &path);
    void checkRoots();
    void startMissingRoots();
    void lookAt(ZQWatchedRoot &root); // at all of it
    void lookAtMounts();
    void lookAtMount(ZQWatchedRoot &root, const QByteArray &point);
    void sweep();
    void sweepSilent();
    void loseEvents();
    void announce();
    void tellFolders(const std::vector<QByteArray> &folders);
    void tellWatches();
    std::vector<QByteArray> startedPaths() const;
    std::chrono::milliseconds silentInterval() const;
    std::chrono::milliseconds returnInterval() const;
    void tell(ZQWatchNews::Kind kind, const QByteArray &path = {}, qint64 needed = 0);

    const ZQWatchOptions m_options;
    const bool m_isForSilent;
    const std::shared_ptr<ZQWatchOutbox> m_outbox;
    ZQFileDescriptor m_wake;
    std::thread m_thread;
    std::atomic<bool> m_isEnding = false;

    ZQMutex m_mutex;
    ZQCondition m_ended;
    bool m_hasEnded ZQ_GUARDED_BY(m_mutex) = false;
    std::vector<Command> m_commands ZQ_GUARDED_BY(m_mutex);

    // The rest is the thread's own.
    const ZQFolderTree::Pulse m_pulse;
    ZQWatchTable m_table;
    ZQFolderEvents m_queue;
    ZQSettlingChanges m_changes;
    ZQUnfinishedFiles m_files;
    ZQTreeEvents m_events;
    ZQFileDescriptor m_mountFile;
    ZQMountTable m_mounts;
    std::vector<Root> m_roots;
    Clock::time_point m_now;
    size_t m_eventCount = 0; // since the last announcement
    bool m_isLost = false;
    qint64 m_toldNeeded = 0;
    std::optional<Clock::time_point> m_checkDue;
    std::optional<Clock::time_point> m_returnDue;
    Clock::time_point m_sweepDue;
    Clock::time_point m_silentDue;
};

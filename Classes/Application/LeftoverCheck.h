#pragma once

#include <QDateTime>
#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

class LibraryPlaces;
class LibraryRemovals;
class LibraryStore;
class RunningParts;
class ZQOperationQueue;
struct LibraryLeftovers;

// Item directories that belong to no item of the store: what is younger than the store goes; what is older, or left
// after a recovery, becomes items again. `LeftoverSearch` looks for them; this one asks, has them removed and taken
// back. Called on the main thread, and works beside it. Any end before its own does no harm: the next launch looks
// again. Errors are logged.
class LeftoverCheck : public QObject
{
public:
    LeftoverCheck(RunningParts &running, LibraryPlaces &places, LibraryStore &store, LibraryRemovals &removals,
                  QDateTime launchDate);
    ~LeftoverCheck() override;

    // `done` is called once nothing more is asked about and what is taken back is queued, and not at all when the
    // application quits before; at once where a check is under way already.
    void start(std::function<void()> done);
    void stop(); // waits for a batch of names, or less
    bool isRunning() const;

private:
    void didSearch(std::optional<LibraryLeftovers> found);
    int answerAbout(qsizetype count, qsizetype ofAll);
    void remove(const QStringList &leftovers, const QStringList &lost);
    enum class Check { WasCutOff, IsComplete, SawToAll };
    void finish(const QStringList &lost, Check how);
    void clearRecovered();
    void takeBack(const QStringList &directories);
    void didTakeBack(qsizetype takenBack, bool isComplete);

    RunningParts &m_running;
    LibraryPlaces &m_places;
    LibraryStore &m_store;
    LibraryRemovals &m_removals;
    const QDateTime m_launchDate;
    std::unique_ptr<ZQOperationQueue> m_queue;
    std::stop_source m_stop;
    std::function<void()> m_done;
    bool m_isChecking = false;
    bool m_isTakingBack = false;
};

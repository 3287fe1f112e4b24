#pragma once

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>
#include <stop_token>

class FingerprintWork;
class LeftoverCheck;
class LibraryStore;
class RunningParts;
class ZQOperationQueue;

// What the open store still needs and the person need not wait for: the whole check of a suspected store, then the
// ratings of an older library, on a queue of its own, and the fingerprints of pictures on another. Called on the main
// thread; what it finds arrives there.
class StoreWork : public QObject
{
public:
    StoreWork(LibraryStore &store, LeftoverCheck &leftovers, RunningParts &running,
              std::function<void(const QStringList &problems)> didFindDamage);
    ~StoreWork() override;

    void start();
    // Ends it and the check of leftovers, with the main loop served until what was saved last has arrived. Before the
    // store closes; no harm where nothing runs.
    void stop();

private:
    bool isOtherWorkDone() const;

    LibraryStore &m_store;
    LeftoverCheck &m_leftovers;
    RunningParts &m_running;
    std::function<void(const QStringList &)> m_didFindDamage;
    std::unique_ptr<ZQOperationQueue> m_queue;
    std::stop_source m_stop;
    std::unique_ptr<FingerprintWork> m_fingerprints;
};

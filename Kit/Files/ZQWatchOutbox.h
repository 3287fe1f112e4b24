#pragma once

#include "Kit/Foundation/ZQThreadSafety.h"

#include <QByteArray>
#include <QObject>
#include <QSet>

#include <functional>
#include <vector>

// One thing that a watcher's threads have to tell. Paths are the system's bytes.
struct ZQWatchNews
{
    enum class Kind {
        Started,
        Changed,
        Moved,
        Vanished,
        PlacesChanged,
        RanOut,
        SilentPlace, // `path` lies below a root and tells nothing
        Elsewhere,   // the root at `path` is for the other thread
    };
    Kind kind = Kind::Changed;
    QByteArray path;
    QByteArray to;                // of a move
    bool everythingBelow = false; // of a change
    qint64 needed = 0;            // watches, where they ran out
    bool isFromSilent = false;    // which thread it was
};

// Between a watcher's threads and the thread it lives in. Any thread.
class ZQWatchOutbox
{
public:
    // `deliver` is called in the receiver's thread when there is something to take.
    ZQWatchOutbox(QObject *receiver, std::function<void()> deliver);
    void close(); // from then on nothing is delivered

    void post(std::vector<ZQWatchNews> news);
    std::vector<ZQWatchNews> take();
    // Puts back, before what came since, what could not be told yet, and asks for another delivery.
    void putBack(std::vector<ZQWatchNews> news);

    void setSwept(const QByteArray &root, bool isSwept);
    QSet<QByteArray> sweptRoots() const;

private:
    void callForDelivery() ZQ_REQUIRES(m_mutex);

    mutable ZQMutex m_mutex;
    QObject *m_receiver ZQ_GUARDED_BY(m_mutex);
    std::function<void()> m_deliver ZQ_GUARDED_BY(m_mutex);
    std::vector<ZQWatchNews> m_news ZQ_GUARDED_BY(m_mutex);
    bool m_isCalledFor ZQ_GUARDED_BY(m_mutex) = false;
    QSet<QByteArray> m_swept ZQ_GUARDED_BY(m_mutex);
};

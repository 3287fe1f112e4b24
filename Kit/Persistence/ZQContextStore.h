#pragma once

#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"

#include <memory>
#include <thread>

// A context's way to its store: one connection, what went wrong on it, and the thread that may use it.
//
// A read that fails inside what has no error to give (filling an object, following a relationship) is counted here, so
// that whoever looked at objects in memory can tell afterwards whether it looked at all there is.
class ZQContextStore
{
public:
    explicit ZQContextStore(std::shared_ptr<ZQPersistentStoreCoordinator> coordinator);

    void assertThread() const
    {
        Q_ASSERT_X(m_thread == std::this_thread::get_id(), "ZQManagedObjectContext",
                   "used on another thread than it was made on");
    }
    const std::shared_ptr<ZQPersistentStoreCoordinator> &coordinator() const { return m_coordinator; }
    ZQSQLiteConnection *connection() const { return m_connection.get(); } // null when the store could not be reached
    // One that answers nothing when there is no connection.
    ZQSQLiteStatement prepare(const QString &sql);
    // Of the last failed statement, or why there is no connection. Damage is passed on to the coordinator.
    ZQError error() const;

    // Counts a read that failed, and logs it as one of `what` unless it was given up.
    void noteFailedRead(const QString &what);
    quint64 failedReads() const { return m_failedReads; }
    // Whether a read failed after there were `before`: what was looked at in memory may then have been looked at empty.
    bool hasReadFailed(quint64 before, ZQError *error) const;

private:
    std::shared_ptr<ZQPersistentStoreCoordinator> m_coordinator;
    std::thread::id m_thread = std::this_thread::get_id();
    ZQError m_connectionError;
    std::unique_ptr<ZQSQLiteConnection> m_connection;
    quint64 m_failedReads = 0; // of rows and lists, whoever needed them
};

#include "Kit/Persistence/ZQContextStore.h"

#include "Kit/Foundation/ZQLog.h"

ZQContextStore::ZQContextStore(std::shared_ptr<ZQPersistentStoreCoordinator> coordinator)
    : m_coordinator(std::move(coordinator)), m_connection(m_coordinator->newConnection(&m_connectionError))
{
    if (!m_connection) {
        qCWarning(zqLogStore, "%s", qUtf8Printable(m_connectionError.localizedDescription()));
    }
}

ZQSQLiteStatement ZQContextStore::prepare(const QString &sql)
{
    return m_connection ? m_connection->prepare(sql) : ZQSQLiteStatement();
}

ZQError ZQContextStore::error() const
{
    const ZQError error = m_connection ? m_connection->error() : m_connectionError;
    if (error.domain == ZQStoreErrorDomain && error.code == int(ZQStoreError::Damaged)) {
        m_coordinator->noteDamage();
    }
    return error;
}

void ZQContextStore::noteFailedRead(const QString &what)
{
    ++m_failedReads;
    const ZQError failure = error();
    if (failure.code != int(ZQStoreError::Cancelled)) {
        qCWarning(zqLogStore, "reading %s failed: %s", qUtf8Printable(what),
                  qUtf8Printable(failure.localizedDescription()));
    }
}

bool ZQContextStore::hasReadFailed(quint64 before, ZQError *error) const
{
    if (m_failedReads == before) {
        return false;
    }
    zqSetError(error, this->error());
    return true;
}

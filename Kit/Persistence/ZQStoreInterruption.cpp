#include "Kit/Persistence/ZQStoreInterruption.h"

#include "Kit/Persistence/ZQSQLiteConnection.h"

#include <chrono>
#include <functional>
#include <sqlite3.h>

namespace {

constexpr int stepsBetweenChecks = 10000;
constexpr std::chrono::milliseconds betweenLooks(5);

// Statements ask by themselves; a checkpoint, which a commit may bring along, only knows that it was interrupted. What
// comes between two statements is forgotten by the next one, so it is said until it is over.
void interruptOnceCancelled(const std::stop_token &stop, sqlite3 *handle, const ZQCancellation &cancellation)
{
    while (!stop.stop_requested()) {
        if (cancellation.isCancelled()) {
            sqlite3_interrupt(handle);
        }
        std::this_thread::sleep_for(betweenLooks);
    }
}

} // namespace

ZQStoreInterruption::ZQStoreInterruption(ZQSQLiteConnection &connection)
    : m_handle(connection.handle()), m_cancellation(ZQCancellation::current())
{
    if (!m_cancellation) {
        return;
    }
    sqlite3_progress_handler(
        m_handle, stepsBetweenChecks, [](void *) { return ZQCancellation::isCurrentCancelled() ? 1 : 0; }, nullptr);
    m_watch = std::jthread(interruptOnceCancelled, m_handle, std::cref(*m_cancellation));
}

ZQStoreInterruption::~ZQStoreInterruption()
{
    if (!m_cancellation) {
        return;
    }
    m_watch.request_stop();
    m_watch.join();
    sqlite3_progress_handler(m_handle, 0, nullptr, nullptr);
    if (m_cancellation->isCancelled()) {
        sqlite3_db_config(m_handle, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    }
}

#pragma once

#include "Kit/Foundation/ZQCancellation.h"

#include <memory>
#include <thread>

class ZQSQLiteConnection;
struct sqlite3;

// While it lives, whatever the connection does ends soon with SQLITE_INTERRUPT once the thread's ZQCancellation is
// cancelled, also what writes: a transaction is taken back then, a checkpoint goes on another time. Closing the
// connection leaves the log as it is from then on, which the next one that opens the store reads. For connections that
// do nothing else, and are closed soon after. The connection's thread.
class ZQStoreInterruption
{
public:
    explicit ZQStoreInterruption(ZQSQLiteConnection &connection);
    ~ZQStoreInterruption();
    ZQStoreInterruption(const ZQStoreInterruption &) = delete;
    ZQStoreInterruption &operator=(const ZQStoreInterruption &) = delete;

private:
    sqlite3 *m_handle;
    std::shared_ptr<const ZQCancellation> m_cancellation;
    std::jthread m_watch;
};

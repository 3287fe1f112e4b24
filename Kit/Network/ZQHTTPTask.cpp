#include "Kit/Network/ZQHTTPTask.h"

#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Network/ZQHTTPTransfer.h"
#include "Kit/Network/ZQNetworkThread.h"
#include "Kit/Network/ZQTransferError.h"

#include <QPointer>

#include <atomic>
#include <optional>

namespace {

constexpr std::chrono::milliseconds timeBetweenLooks{20};

ZQHTTPResponse cancelledResponse()
{
    ZQHTTPResponse response;
    response.error = ZQTransferError::cancelled();
    return response;
}

} // namespace

struct ZQHTTPTask::State
{
    std::atomic<bool> isCancelled = false;
    QPointer<ZQHTTPTransfer> transfer; // of the network's thread
};

std::shared_ptr<ZQHTTPTask> ZQHTTPTask::start(const ZQHTTPRequest &request,
                                              std::function<void(const ZQHTTPResponse &response)> done)
{
    const auto state = std::make_shared<State>();
    const bool isTakenOn = ZQNetworkThread::run([state, request, done] {
        if (state->isCancelled) {
            done(cancelledResponse());
            return;
        }
        auto *const transfer = new ZQHTTPTransfer(request, done); // deletes itself at its end
        state->transfer = transfer;
        ZQNetworkThread::whenItEnds(transfer, [transfer] { transfer->cancel(); });
        transfer->start();
    });
    if (!isTakenOn) {
        done(cancelledResponse());
    }
    return std::shared_ptr<ZQHTTPTask>(new ZQHTTPTask(state));
}

void ZQHTTPTask::cancel()
{
    if (!m_state->isCancelled.exchange(true)) {
        ZQNetworkThread::run([state = m_state] {
            if (state->transfer) {
                state->transfer->cancel();
            }
        });
    }
}

ZQHTTPResponse ZQHTTPTask::perform(const ZQHTTPRequest &request)
{
    struct Waiting
    {
        ZQMutex mutex;
        ZQCondition isThere;
        std::optional<ZQHTTPResponse> response ZQ_GUARDED_BY(mutex);
    };
    const auto waiting = std::make_shared<Waiting>();
    const auto task = start(request, [waiting](const ZQHTTPResponse &response) {
        const ZQLockGuard lock(waiting->mutex);
        waiting->response = response;
        waiting->isThere.notifyAll();
    });
    const ZQLockGuard lock(waiting->mutex);
    while (!waiting->response) {
        waiting->isThere.waitFor(waiting->mutex, timeBetweenLooks);
        if (ZQCancellation::isCurrentCancelled()) {
            const ZQUnlockGuard unlock(waiting->mutex);
            task->cancel();
        }
    }
    return *waiting->response;
}

#pragma once

#include "Kit/Network/ZQHTTPRequest.h"

#include <functional>
#include <memory>

// A request under way. All requests share one thread that only moves bytes, so that any number may run at once. Any
// thread.
class ZQHTTPTask
{
public:
    // `done` is called once, on the network's thread, also after a cancel.
    static std::shared_ptr<ZQHTTPTask> start(const ZQHTTPRequest &request,
                                             std::function<void(const ZQHTTPResponse &response)> done);
    // Waits for the answer. For operations: when the work of this thread is cancelled (`ZQCancellation`), the request
    // is too. Not on the network's thread.
    static ZQHTTPResponse perform(const ZQHTTPRequest &request);

    // Ends it soon; it still tells so, unless its end came first.
    void cancel();

private:
    struct State;
    explicit ZQHTTPTask(std::shared_ptr<State> state) : m_state(std::move(state)) {}
    std::shared_ptr<State> m_state;
};

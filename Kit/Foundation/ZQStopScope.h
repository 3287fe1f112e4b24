#pragma once

#include "Kit/Foundation/ZQCancellation.h"

#include <functional>
#include <stop_token>

// While it lasts, what the thread does is cancelled when `stop` is asked for: for work that has a stop token, and calls
// what asks for the thread's ZQCancellation.
class ZQStopScope
{
public:
    explicit ZQStopScope(const std::stop_token &stop)
        : m_scope(m_cancellation), m_callback(stop, [cancellation = m_cancellation] { cancellation->cancel(); })
    {
    }
    ZQStopScope(const ZQStopScope &) = delete;
    ZQStopScope &operator=(const ZQStopScope &) = delete;

private:
    const std::shared_ptr<ZQCancellation> m_cancellation = std::make_shared<ZQCancellation>();
    const ZQCancellation::Scope m_scope;
    const std::stop_callback<std::function<void()>> m_callback;
};

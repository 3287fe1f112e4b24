#pragma once

#include "Kit/Operations/ZQOperationQueue.h"

#include <future>
#include <memory>

// Keeps an edit queue busy until it is opened or gone.
class EditQueueGate
{
public:
    explicit EditQueueGate(ZQOperationQueue &queue)
    {
        queue.addOperationWithBlock([opened = m_open->get_future().share()] { opened.wait(); });
    }
    ~EditQueueGate() { open(); }
    EditQueueGate(const EditQueueGate &) = delete;
    EditQueueGate &operator=(const EditQueueGate &) = delete;

    bool isOpen() const { return *m_isOpen; }
    void open() const
    {
        if (!*m_isOpen) {
            *m_isOpen = true;
            m_open->set_value();
        }
    }

private:
    std::unique_ptr<std::promise<void>> m_open = std::make_unique<std::promise<void>>();
    std::unique_ptr<bool> m_isOpen = std::make_unique<bool>(false);
};

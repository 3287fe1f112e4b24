#pragma once

#include "Classes/Sharing/CloudAdapter.h"
#include "Kit/Operations/ZQMainThread.h"

#include <functional>
#include <memory>
#include <utility>

// An upload that is driven from the main thread, whichever thread starts it, and ends soon after it is cancelled,
// whatever its service is doing.
class MainThreadAdapter : public CloudAdapter
{
public:
    using CloudAdapter::CloudAdapter;
    void start() final;
    void cancel() override;

protected:
    // Main thread. It is executing.
    virtual void begin() = 0;
    // Main thread, once, after a cancel: nothing is told any more, and nothing sent but to remove what only this
    // upload made.
    virtual void abandon() = 0;

    // For what belongs to the main thread: the queue may let go of an adapter on a thread of its own.
    template <class T>
    static void release(std::unique_ptr<T> part)
    {
        if (part && !zqIsMainThread()) {
            zqOnMainThread([held = std::shared_ptr<T>(std::move(part))] {});
        }
    }

    // The file's name at the service: the title with the file's extension, without what cannot stand in a name.
    QString nameForUpload() const;

private:
    void onMainThread(std::function<void()> block);
};

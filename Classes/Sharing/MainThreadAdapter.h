#pragma once

#include "Classes/Sharing/CloudAdapter.h"

#include <functional>

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

    // The file's name at the service: the title with the file's extension, without what cannot stand in a name.
    QString nameForUpload() const;

private:
    void onMainThread(std::function<void()> block);
};

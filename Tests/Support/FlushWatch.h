#pragma once

#include <QString>

#include <functional>

// Hears of each file that this process is about to flush to the disk, on the thread that flushes. One at a time.
class FlushWatch
{
public:
    using Seen = std::function<void(const QString &path)>;
    explicit FlushWatch(Seen seen);
    ~FlushWatch();
    FlushWatch(const FlushWatch &) = delete;
    FlushWatch &operator=(const FlushWatch &) = delete;
};

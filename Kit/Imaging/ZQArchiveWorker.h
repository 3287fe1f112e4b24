#pragma once

#include "Kit/Imaging/ZQArchiveProtocol.h"
#include "Kit/Imaging/ZQRenderProcess.h"

#include <memory>

// Archives as a worker process reads them, which can write nothing and start nothing: what comes out is written by who
// asks. The worker is started with the first archive and unpacks those that follow, too, until it fails. It ends with
// this object, with the thread that used it, and when that thread's ZQCancellation happens. One thread.
class ZQArchiveWorker : public ZQArchiveSource
{
public:
    explicit ZQArchiveWorker(const ZQRenderLimits &limits = {}) : m_limits(limits) {}

    bool open(const QString &path, ZQArchiveEnd *end) override;
    std::optional<ZQArchiveEntry> nextEntry(ZQArchiveEnd *end) override;
    std::optional<Block> nextBlock(ZQArchiveEnd *end) override;

    pid_t processID() const { return m_process ? m_process->processID() : -1; }

private:
    bool start(ZQArchiveEnd *end);
    bool ask(ZQArchiveQuestion::Kind kind, int file, ZQArchiveAnswer *answer, ZQArchiveEnd *end);

    const ZQRenderLimits m_limits;
    std::unique_ptr<ZQRenderProcess> m_process;
};

#pragma once

#include "Kit/Imaging/ZQRenderProcess.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

// The worker processes that decode, kept warm. A request waits for a free one; one is started when all are busy and
// there may be more. A worker that crashes, hangs or talks nonsense costs the request it had and is replaced when the
// next one comes. Idle workers end after a while. Any thread.
class ZQRenderPool
{
public:
    explicit ZQRenderPool(ZQRenderLimits limits = {});
    ~ZQRenderPool(); // no request may be under way
    ZQRenderPool(const ZQRenderPool &) = delete;
    ZQRenderPool &operator=(const ZQRenderPool &) = delete;

    // The one of the application. Its workers end when the program does.
    static ZQRenderPool &shared();

    struct Result
    {
        std::optional<ZQImageProperties> properties;
        ZQBitmap bitmap;
        QByteArray bytes; // of the picture inside a document
    };
    // Reads the file in a worker. Null and an error, naming the file, when that fails; with `withProperties`, what the
    // file says of itself comes either way, as far as it can be read. Once the thread's ZQCancellation
    // happens, it returns within half a second, and the worker that still draws is ended with all it started.
    Result perform(ZQRenderRequest::Kind kind, const QString &path, QSize box, int frame, ZQError *error,
                   bool withProperties = false);

    // Starts the first worker, in the background.
    void prepare();
    // Ends all workers; requests from now on fail.
    void close();

    std::vector<pid_t> processIDs() const;

private:
    using Process = std::unique_ptr<ZQRenderProcess>;
    struct Idle
    {
        Process process;
        std::chrono::steady_clock::time_point since;
        int requests = 0;
    };

    enum class Taken { Worker, Nothing, Cancelled };
    Taken take(Idle &out, QString *failure);
    void giveBack(Idle idle);
    void drop(Idle idle);
    void keep();
    void startOne(std::unique_lock<std::mutex> &lock);
    std::vector<Process> takeExpired();
    ZQRenderProcess::Reply ask(const ZQRenderRequest &request, int file, QString *failure);
    ZQBitmap askThumbnailer(const QString &path, QSize box, int file);

    const ZQRenderLimits m_limits;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;      // a worker came back, or could not be started
    std::condition_variable m_keeperCalled; // a worker is wanted, or the end has come
    std::vector<Idle> m_idle;               // the last one is the warmest
    std::vector<ZQRenderProcess *> m_busy;
    int m_count = 0;  // idle, busy and to be started
    int m_wanted = 0; // to be started
    quint64 m_failures = 0;
    QString m_failure;
    bool m_closed = false;
    std::thread m_keeper; // starts the workers: each of them ends when the thread that started it does
};

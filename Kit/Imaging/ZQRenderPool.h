#pragma once

#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Imaging/ZQRenderProcess.h"

#include <memory>
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

    // Has a worker write the picture into `output`, a file open for reading and writing, in another format. Nothing and
    // an error when that fails, as above; what is in `output` is of no use then. May take several times as long as
    // drawing.
    std::optional<ZQExportedImage> exportFile(const QString &path, const ZQExportEncoding &encoding, int output,
                                              ZQError *error);

    // Has a worker pack the planes of what of the file's picture is within the window. Nothing and an error as above.
    std::optional<ZQPackedPicture> planesOfFile(const QString &path, const QRect &window, ZQError *error);

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
    void startOne() ZQ_REQUIRES(m_mutex);
    std::vector<Process> takeExpired() ZQ_REQUIRES(m_mutex);
    ZQRenderProcess::Reply ask(const ZQRenderRequest &request, int file, int output, QString *failure);
    ZQBitmap askThumbnailer(const QString &path, QSize box, int file);

    const ZQRenderLimits m_limits;
    mutable ZQMutex m_mutex;
    ZQCondition m_changed;                           // a worker came back, or could not be started
    ZQCondition m_keeperCalled;                      // a worker is wanted, or the end has come
    std::vector<Idle> m_idle ZQ_GUARDED_BY(m_mutex); // the last one is the warmest
    std::vector<ZQRenderProcess *> m_busy ZQ_GUARDED_BY(m_mutex);
    int m_count ZQ_GUARDED_BY(m_mutex) = 0;  // idle, busy and to be started
    int m_wanted ZQ_GUARDED_BY(m_mutex) = 0; // to be started
    quint64 m_failures ZQ_GUARDED_BY(m_mutex) = 0;
    QString m_failure ZQ_GUARDED_BY(m_mutex);
    bool m_closed ZQ_GUARDED_BY(m_mutex) = false;
    std::thread m_keeper; // starts the workers: each of them ends when the thread that started it does
};

#pragma once

#include "Kit/Imaging/ZQBitmap.h"
#include "Kit/Imaging/ZQPackedPicture.h"
#include "Kit/Imaging/ZQRenderProtocol.h"

#include <chrono>
#include <memory>
#include <sys/types.h>

struct ZQRenderLimits
{
    qint64 memory = 0; // bytes of address space; 0: what suits this computer
    std::chrono::milliseconds time{90'000};
    int processes = 0; // 0: what suits this computer
    std::chrono::milliseconds idle{60'000};

    qint64 memoryOrDefault() const;
    int processesOrDefault() const;
};

// The worker program: what the environment's ZELTO_RENDER names, or the one beside the running program, in its
// installation, or in its build tree. Empty when there is none.
QString zqRenderProgram();

// One running worker. It leads a process group of its own, so that what it starts ends with it, and has a folder of its
// own, the only one it can write in; both are gone when the object is. Used by one thread at a time.
class ZQRenderProcess
{
public:
    // `thumbnailed`: a file the worker may open by its path, or -1. Null, with an error that names no file, when it
    // cannot be started. The system ends the worker when the calling thread ends, so that has to outlive the worker.
    enum class Purpose { Pictures, Archives };
    static std::unique_ptr<ZQRenderProcess> start(const ZQRenderLimits &limits, int thumbnailed, QString *failure,
                                                  Purpose purpose = Purpose::Pictures);
    ~ZQRenderProcess();
    ZQRenderProcess(const ZQRenderProcess &) = delete;
    ZQRenderProcess &operator=(const ZQRenderProcess &) = delete;

    // Waits until the worker is ready for its first request, or has ended.
    void waitUntilReady(std::chrono::milliseconds time) const;

    // Hands over a request, the file, and for an export the one that is written into. False when the worker had ended
    // before it could know of the file, or when its folder is gone: the temporary area is cleaned by others, too.
    bool send(const ZQRenderRequest &request, int file, int output = -1);

    enum class Outcome { Answered, Stopped, TalkedNonsense, TookTooLong, TooMuchMemory, Cancelled };
    struct Reply
    {
        Outcome outcome = Outcome::Stopped;
        ZQRenderAnswer answer;
        ZQBitmap bitmap;
        QByteArray bytes;
        std::optional<ZQPackedPicture> planes = {};
    };
    // Waits for the answer, or until the thread's ZQCancellation happens: an answer that is about to come is still
    // waited for, since a new worker takes as long. After any outcome but `Answered` the worker is ended. `request` is
    // what the answer has to fit.
    Reply receive(const ZQRenderRequest &request, std::chrono::milliseconds time);

    // Sends a message and waits for the one that answers it, as `receive` does.
    struct Exchanged
    {
        Outcome outcome = Outcome::Stopped;
        QByteArray bytes;
    };
    Exchanged exchange(const QByteArray &question, int file, std::chrono::milliseconds time);
    // The shared memory; the worker may change it at any time.
    QByteArrayView area() const { return {m_area, zqRenderAreaBytes}; }

    pid_t processID() const { return m_process; }
    // Ends the conversation, from any thread: whoever waits for an answer gets `Stopped` and ends the worker.
    void interrupt() const;

private:
    ZQRenderProcess() = default;
    bool makeArea();
    bool spawn(const QString &program, const ZQRenderLimits &limits, int workerSocket, int thumbnailed,
               Purpose purpose);
    // The next message that is no greeting; without bytes, the outcome says why there is none.
    Exchanged nextMessage(std::chrono::milliseconds time, ZQFileDescriptor *descriptor);
    enum class Wait { Message, TimeIsUp, Cancelled };
    Wait waitForMessage(std::chrono::steady_clock::time_point end) const;
    bool waitForEnd() const;
    Outcome failed(Outcome outcome);
    bool takeContent(const ZQRenderRequest &request, const ZQFileDescriptor &descriptor, Reply &reply) const;
    void end(int &status);
    ZQBitmap takePixels(const ZQRenderRequest &request, const ZQRenderAnswer &answer,
                        const ZQFileDescriptor &descriptor) const;

    pid_t m_process = -1;
    ZQFileDescriptor m_socket;
    ZQFileDescriptor m_areaFile;
    const uchar *m_area = nullptr;
    bool m_isGreeted = false;
    QByteArray m_folder;
};

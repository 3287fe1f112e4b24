#include "Kit/Network/ZQNetworkThread.h"

#include <QCoreApplication>

#include <openssl/crypto.h>

struct ZQNetworkThread::Shared
{
    ZQMutex mutex;
    std::unique_ptr<ZQNetworkThread> thread ZQ_GUARDED_BY(mutex); // null: not yet, or no longer
};

ZQNetworkThread::Shared &ZQNetworkThread::shared()
{
    static Shared value;
    return value;
}

ZQNetworkThread::ZQNetworkThread() : m_context(std::make_unique<QObject>())
{
    m_thread.setObjectName(QStringLiteral("Network"));
    m_context->moveToThread(&m_thread);
    // What the TLS library keeps for a thread goes with it, also where the process ends at once.
    QObject::connect(&m_thread, &QThread::finished, &m_thread, &OPENSSL_thread_stop, Qt::DirectConnection);
    m_thread.start();
}

// What was posted before runs before: nothing that was taken on is left without an end.
ZQNetworkThread::~ZQNetworkThread()
{
    QMetaObject::invokeMethod(
        m_context.get(), [this] { m_context.reset(); }, Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

void ZQNetworkThread::stop()
{
    std::unique_ptr<ZQNetworkThread> ended;
    {
        const ZQLockGuard lock(shared().mutex);
        std::swap(ended, shared().thread);
    }
}

bool ZQNetworkThread::run(std::function<void()> block)
{
    const ZQLockGuard lock(shared().mutex);
    if (!QCoreApplication::instance() || QCoreApplication::closingDown()) {
        return false;
    }
    if (!shared().thread) {
        qAddPostRoutine(stop);
        shared().thread.reset(new ZQNetworkThread);
    }
    return QMetaObject::invokeMethod(shared().thread->m_context.get(), std::move(block), Qt::QueuedConnection);
}

void ZQNetworkThread::whenItEnds(QObject *context, std::function<void()> block)
{
    QObject::connect(QThread::currentThread(), &QThread::finished, context, std::move(block), Qt::DirectConnection);
}

#include "Kit/Files/ZQWatchOutbox.h"

#include <QMetaObject>

#include <iterator>
#include <utility>

ZQWatchOutbox::ZQWatchOutbox(QObject *receiver, std::function<void()> deliver)
    : m_receiver(receiver), m_deliver(std::move(deliver))
{
}

void ZQWatchOutbox::close()
{
    const ZQLockGuard lock(m_mutex);
    m_receiver = nullptr;
    m_news.clear();
}

void ZQWatchOutbox::callForDelivery()
{
    if (m_receiver && !m_news.empty() && !std::exchange(m_isCalledFor, true)) {
        QMetaObject::invokeMethod(m_receiver, m_deliver, Qt::QueuedConnection);
    }
}

void ZQWatchOutbox::post(std::vector<ZQWatchNews> news)
{
    const ZQLockGuard lock(m_mutex);
    m_news.insert(m_news.end(), std::make_move_iterator(news.begin()), std::make_move_iterator(news.end()));
    callForDelivery();
}

std::vector<ZQWatchNews> ZQWatchOutbox::take()
{
    const ZQLockGuard lock(m_mutex);
    m_isCalledFor = false;
    return std::exchange(m_news, {});
}

void ZQWatchOutbox::putBack(std::vector<ZQWatchNews> news)
{
    const ZQLockGuard lock(m_mutex);
    m_news.insert(m_news.begin(), std::make_move_iterator(news.begin()), std::make_move_iterator(news.end()));
    callForDelivery();
}

void ZQWatchOutbox::setSwept(const QByteArray &root, bool isSwept)
{
    const ZQLockGuard lock(m_mutex);
    if (isSwept) {
        m_swept.insert(root);
    } else {
        m_swept.remove(root);
    }
}

QSet<QByteArray> ZQWatchOutbox::sweptRoots() const
{
    const ZQLockGuard lock(m_mutex);
    return m_swept;
}

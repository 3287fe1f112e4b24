#include "Kit/Operations/ZQNotificationCenter.h"

#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QCoreApplication>
#include <QHash>
#include <QTimer>

#include <vector>

struct ZQNotificationCenter::Private : std::enable_shared_from_this<ZQNotificationCenter::Private>
{
    struct Observer
    {
        const void *object = nullptr;
        std::function<void(const ZQNotification &)> function;
    };

    ZQMutex mutex;
    QHash<QString, std::vector<std::weak_ptr<Observer>>> observers ZQ_GUARDED_BY(mutex);
    std::vector<ZQNotification> waitingForIdle ZQ_GUARDED_BY(mutex);

    void deliver(const ZQNotification &notification);
    void deliverWaiting();
};

void ZQNotificationCenter::Private::deliver(const ZQNotification &notification)
{
    std::vector<std::weak_ptr<Observer>> current;
    {
        const ZQLockGuard lock(mutex);
        current = observers.value(notification.name);
    }
    for (const auto &weak : current) {
        // An observer whose token was destroyed by an earlier one is not called; one that destroys its own lives until
        // it returns.
        const auto observer = weak.lock();
        if (observer && (!observer->object || observer->object == notification.object)) {
            observer->function(notification);
        }
    }
}

void ZQNotificationCenter::Private::deliverWaiting()
{
    std::vector<ZQNotification> notifications;
    {
        const ZQLockGuard lock(mutex);
        notifications.swap(waitingForIdle);
    }
    for (const ZQNotification &notification : notifications) {
        deliver(notification);
    }
}

ZQNotificationCenter::ZQNotificationCenter() : d(std::make_shared<Private>()) {}

ZQNotificationCenter &ZQNotificationCenter::defaultCenter()
{
    static ZQNotificationCenter *const center =
        new ZQNotificationCenter; // static tokens may be destroyed later than anything
    return *center;
}

ZQNotificationCenter::Token ZQNotificationCenter::addObserver(const QString &name, const void *object,
                                                              std::function<void(const ZQNotification &)> observer)
{
    auto token = std::make_shared<Private::Observer>(Private::Observer{object, std::move(observer)});
    const ZQLockGuard lock(d->mutex);
    auto &list = d->observers[name];
    std::erase_if(list, [](const auto &one) { return one.expired(); });
    list.push_back(token);
    return token;
}

void ZQNotificationCenter::postNotification(const QString &name, const void *object, const QVariantMap &userInfo)
{
    const ZQNotification notification{name, object, userInfo};
    if (zqIsMainThread()) {
        d->deliver(notification);
    } else {
        zqOnMainThread([self = d, notification] { self->deliver(notification); });
    }
}

void ZQNotificationCenter::enqueueWhenIdle(const QString &name, const void *object, const QVariantMap &userInfo)
{
    {
        const ZQLockGuard lock(d->mutex);
        for (const ZQNotification &waiting : d->waitingForIdle) {
            if (waiting.name == name) {
                return;
            }
        }
        d->waitingForIdle.push_back({name, object, userInfo});
    }
    // A timer of no time fires once no event is left.
    zqOnMainThread(
        [self = d] { QTimer::singleShot(0, QCoreApplication::instance(), [self] { self->deliverWaiting(); }); });
}

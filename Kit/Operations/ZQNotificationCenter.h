#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>

// A named announcement. `object` is what it is about, for comparison or a cast by those who know; `userInfo` the rest.
struct ZQNotification
{
    QString name;
    const void *object = nullptr;
    QVariantMap userInfo;
};

// Named notifications, always delivered on the main thread: at once when posted from it, else queued to it in order.
// Any thread.
class ZQNotificationCenter
{
public:
    static ZQNotificationCenter &defaultCenter();

    using Token = std::shared_ptr<void>;
    // Called for every notification of this name about `object` (null: about anything) until the token is destroyed,
    // which may happen inside a callback. Destroying it on another thread does not wait for a callback that runs.
    [[nodiscard]] Token addObserver(const QString &name, const void *object,
                                    std::function<void(const ZQNotification &)> observer);

    void postNotification(const QString &name, const void *object = nullptr, const QVariantMap &userInfo = {});
    // Delivered when the event loop is next idle; several of one name waiting together become the first one.
    void enqueueWhenIdle(const QString &name, const void *object = nullptr, const QVariantMap &userInfo = {});

private:
    ZQNotificationCenter();
    struct Private;
    std::shared_ptr<Private> d;
};

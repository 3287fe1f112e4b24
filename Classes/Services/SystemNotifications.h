#pragma once

#include <QDBusConnection>
#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <vector>

// Notifications that the desktop shows, for what a person should hear while they are elsewhere: through the
// notification service of the session, or through the desktop's portal in a sandbox. Nothing waits for them, and where
// there is no service, or the desktop is not to be disturbed, nothing is shown. Main thread.
class SystemNotifications : public QObject
{
    Q_OBJECT
public:
    struct Action
    {
        QString title;
        std::function<void()> run;
    };
    struct Notice
    {
        QString title;
        QString text;                        // plain; whatever it holds is shown as it is
        QList<Action> actions = {};          // each ends it
        std::function<void()> open = {};     // the person clicks on it
        std::function<void()> notShown = {}; // there is no service
    };
    enum class Way { Service, Portal };

    explicit SystemNotifications(QDBusConnection bus = QDBusConnection::sessionBus(), Way way = usualWay());
    static Way usualWay();
    void show(const Notice &notice);

private Q_SLOTS:
    void didInvoke(uint identifier, const QString &key);
    void didInvokeInPortal(const QString &identifier, const QString &key, const QVariantList &parameter);
    void didClose(uint identifier, uint reason);
    void didGetToken(uint identifier, const QString &token);

private:
    void askWhetherQuiet(const Notice &notice, const QStringList &capabilities);
    void send(const Notice &notice, const QStringList &capabilities);
    void sendToPortal(const Notice &notice);
    void remember(const QString &identifier, const Notice &notice);
    void run(const QString &identifier, const QString &key);

    struct Shown
    {
        QString identifier;
        Notice notice;
    };
    QDBusConnection m_bus;
    const Way m_way;
    std::vector<Shown> m_shown; // whose actions may still be chosen; the oldest first
};

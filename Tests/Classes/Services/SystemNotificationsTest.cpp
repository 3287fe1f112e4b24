// Notifications of the desktop: what its service is told, what comes back, and when nothing is to be shown.

#include "Classes/Services/SystemNotifications.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Support/Skip.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QFile>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>

namespace {

const QString name = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");

// The service as a desktop has it, on a connection of its own.
class Service : public QDBusVirtualObject
{
public:
    Service() : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("notifications")))
    {
        isThere = m_bus.registerVirtualObject(path, this) && m_bus.registerService(name);
    }
    ~Service() override
    {
        m_bus.unregisterService(name);
        QDBusConnection::disconnectFromBus(QStringLiteral("notifications"));
    }
    QString introspect(const QString & /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        QVariantList reply;
        if (message.member() == QStringLiteral("GetCapabilities")) {
            reply = {capabilities};
        } else if (message.member() == QStringLiteral("Get")) {
            reply = {QVariant::fromValue(QDBusVariant(isQuiet))};
            wasAskedWhetherQuiet = true;
        } else if (message.member() == QStringLiteral("Notify")) {
            shown.append(message.arguments());
            reply = {uint(shown.size())};
        }
        return connection.send(message.createReply(reply));
    }
    void tell(const char *signal, const QVariantList &arguments)
    {
        QDBusMessage message = QDBusMessage::createSignal(path, name, QLatin1StringView(signal));
        message.setArguments(arguments);
        m_bus.send(message);
    }

    bool isThere = false;
    bool isQuiet = false;
    bool wasAskedWhetherQuiet = false;
    QStringList capabilities{QStringLiteral("actions"), QStringLiteral("body-markup")};
    QList<QVariantList> shown;

private:
    QDBusConnection m_bus;
};

// Long past any delay that is none of ours.
void waitFor(const std::function<bool()> &isDone)
{
    constexpr std::chrono::seconds patience(20);
    const auto latest = std::chrono::steady_clock::now() + patience;
    zqRunMainLoopUntil([&] { return isDone() || std::chrono::steady_clock::now() > latest; });
    EXPECT_TRUE(isDone());
}

} // namespace

TEST(SystemNotificationsTest, SayWhatTheyAreToldAndDoWhatIsChosen)
{
    Service service;
    if (!service.isThere) {
        return skipWithout("a session bus of its own");
    }
    SystemNotifications notifications(QDBusConnection::sessionBus(), SystemNotifications::Way::Service);
    QStringList done;
    const auto note = [&done](const char *what) { return [&done, what] { done.append(QLatin1StringView(what)); }; };
    const SystemNotifications::Notice notice{
        QStringLiteral("Import"),
        QStringLiteral("<b>a & b</b>"),
        {{QStringLiteral("Show"), note("show")}, {QStringLiteral("Other"), note("other")}},
        note("open"),
        note("not shown")};
    for (int i = 0; i < 3; ++i) {
        notifications.show(notice);
        waitFor([&] { return service.shown.size() == i + 1; });
    }
    ASSERT_EQ(service.shown.size(), 3);
    EXPECT_EQ(service.shown[0].value(3), QStringLiteral("Import"));
    EXPECT_EQ(service.shown[0].value(4), QStringLiteral("&lt;b&gt;a &amp; b&lt;/b&gt;"));
    EXPECT_EQ(service.shown[0].value(5).toStringList(),
              (QStringList{QStringLiteral("default"), QString(), QStringLiteral("0"), QStringLiteral("Show"),
                           QStringLiteral("1"), QStringLiteral("Other")}));
    service.tell("ActionInvoked", {2U, QStringLiteral("0")});
    service.tell("ActionInvoked", {2U, QStringLiteral("0")});
    service.tell("ActionInvoked", {1U, QStringLiteral("default")});
    service.tell("NotificationClosed", {3U, 2U});
    service.tell("ActionInvoked", {3U, QStringLiteral("0")});
    service.tell("ActionInvoked", {77U, QStringLiteral("9")});
    service.capabilities.clear();
    notifications.show(notice); // is answered behind them
    waitFor([&] { return service.shown.size() == 4; });
    EXPECT_EQ(done.join(u' '), QStringLiteral("show open")) << "each once, and none that is gone";
    EXPECT_EQ(service.shown.value(3).value(4), QStringLiteral("<b>a & b</b>")) << "it is shown as it is";
    EXPECT_TRUE(service.shown.value(3).value(5).toStringList().isEmpty());
}

TEST(SystemNotificationsTest, WhatAnotherServiceSaysOfANumberIsNotOfOurs)
{
    SystemNotifications notifications(QDBusConnection::sessionBus(), SystemNotifications::Way::Service);
    int chosen = 0;
    const SystemNotifications::Notice notice{
        QStringLiteral("Import"), {}, {{QStringLiteral("Show"), [&chosen] { ++chosen; }}}, {}, {}};
    for (int i = 0; i < 2; ++i) {
        Service service;
        if (!service.isThere) {
            return skipWithout("a session bus of its own");
        }
        service.tell("ActionInvoked", {1U, QStringLiteral("0")}); // of who got that number before us
        notifications.show(notice);                               // is answered behind it
        waitFor([&service] { return service.shown.size() == 1; });
    }
    EXPECT_EQ(chosen, 0);
}

TEST(SystemNotificationsTest, GoThroughThePortalInEachSandbox)
{
    const QByteArray here = QFile::encodeName(QCoreApplication::applicationDirPath());
    const struct
    {
        const char *variable;
        QByteArray value;
        SystemNotifications::Way way;
    } cases[] = {{"FLATPAK_ID", "org.zelto.Zelto", SystemNotifications::Way::Portal},
                 {"SNAP", here, SystemNotifications::Way::Portal},
                 {"SNAP", "/snap/of-another", SystemNotifications::Way::Service}};
    for (const auto &each : cases) {
        qputenv(each.variable, each.value);
        EXPECT_EQ(SystemNotifications::usualWay(), each.way) << each.variable << '=' << each.value.constData();
        qunsetenv(each.variable);
    }
}

TEST(SystemNotificationsTest, AreQuietWhereTheDesktopIsAndWhereThereIsNone)
{
    int notShown = 0;
    SystemNotifications notifications(QDBusConnection::sessionBus(), SystemNotifications::Way::Service);
    const SystemNotifications::Notice notice{QStringLiteral("Import"), {}, {}, {}, [&notShown] { ++notShown; }};
    {
        Service service;
        if (!service.isThere) {
            return skipWithout("a session bus of its own");
        }
        service.isQuiet = true;
        notifications.show(notice);
        waitFor([&service] { return service.wasAskedWhetherQuiet; });
        service.isQuiet = false;
        notifications.show(notice); // after it
        waitFor([&service] { return !service.shown.isEmpty(); });
        EXPECT_EQ(service.shown.size(), 1);
        EXPECT_EQ(notShown, 0) << "it was not to be shown elsewhere either";
    }
    notifications.show(notice);
    waitFor([&notShown] { return notShown == 1; });
}

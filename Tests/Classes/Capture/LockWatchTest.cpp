#include "Kit/Desktop/ZQLockWatch.h"
#include "Tests/Classes/Capture/XDesktop.h"

#include <QDBusConnection>
#include <QDBusMessage>

#include <gtest/gtest.h>

namespace {

constexpr const char *peerName = "lock-watch-test";

TEST(ZQLockWatchTest, TellsOfLocksAndSleepAndNotOfTheirEnd)
{
    QDBusConnection peer = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QString::fromLatin1(peerName));
    ASSERT_TRUE(peer.isConnected());
    const struct
    {
        const char *service;
        const char *path;
        const char *interface;
        const char *signal;
        QVariantList arguments;
        int count;
    } cases[] = {
        {"org.freedesktop.login1",
         "/org/freedesktop/login1/session/_32",
         "org.freedesktop.login1.Session",
         "Lock",
         {},
         1},
        {"org.freedesktop.login1",
         "/org/freedesktop/login1",
         "org.freedesktop.login1.Manager",
         "PrepareForSleep",
         {true},
         1},
        {"org.freedesktop.login1",
         "/org/freedesktop/login1",
         "org.freedesktop.login1.Manager",
         "PrepareForSleep",
         {false},
         0},
        {"org.freedesktop.ScreenSaver", "/ScreenSaver", "org.freedesktop.ScreenSaver", "ActiveChanged", {true}, 1},
        {"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", "org.gnome.ScreenSaver", "ActiveChanged", {true}, 1},
        {"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", "org.gnome.ScreenSaver", "ActiveChanged", {false}, 0},
        {"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", "org.gnome.ScreenSaver", "WakeUpScreen", {}, 0},
    };
    for (const auto &each : cases) {
        ASSERT_TRUE(peer.registerService(QString::fromLatin1(each.service)));
        ZQLockWatch watch(QDBusConnection::sessionBus(), QDBusConnection::sessionBus());
        int count = 0;
        QObject::connect(&watch, &ZQLockWatch::willLock, &watch, [&count] { ++count; });
        const auto send = [&](const char *path, const char *interface, const char *name,
                              const QVariantList &arguments) {
            QDBusMessage message = QDBusMessage::createSignal(QString::fromLatin1(path), QString::fromLatin1(interface),
                                                              QString::fromLatin1(name));
            message.setArguments(arguments);
            ASSERT_TRUE(peer.send(message));
        };
        send(each.path, each.interface, each.signal, each.arguments);
        // What is sent behind it comes behind it.
        if (QLatin1StringView(each.service) == QLatin1StringView("org.freedesktop.login1")) {
            send("/org/freedesktop/login1/session/_31", "org.freedesktop.login1.Session", "Lock", {});
        } else {
            send(each.path, each.interface, "ActiveChanged", {true});
        }
        EXPECT_TRUE(XDesktop::waitUntil([&] { return count == each.count + 1; })) << each.interface << each.signal;
        EXPECT_TRUE(peer.unregisterService(QString::fromLatin1(each.service)));
    }
    QDBusConnection::disconnectFromBus(QString::fromLatin1(peerName));
}

} // namespace

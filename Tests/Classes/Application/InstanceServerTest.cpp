#include "Classes/Services/InstanceServer.h"

#include "Classes/Services/CrashReporter.h"
#include "Classes/Services/SoftwareUpdater.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Classes/Application/ApplicationFixture.h"
#include "Tests/Support/Skip.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <sys/socket.h>
#include <thread>

TEST(InstanceServer, ARequestIsAnsweredAndOneWhoseAskerGoesAwayIsAbandoned)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("socket"));
    bool wasAbandoned = false;
    InstanceServer server(name, [&wasAbandoned](const InstanceRequest &request) {
        if (request.arguments.value(0) == u"wait") { // as for a sheet, in a loop of its own
            zqRunMainLoopUntil([&request] { return request.isAbandoned(); });
            wasAbandoned = true;
            zqRunMainLoopFor(std::chrono::milliseconds(50)); // what was to be deleted is
        }
        return InstanceReply{3, request.arguments.join(u' ').toUtf8(), request.workingDirectory.toUtf8()};
    });
    ASSERT_TRUE(server.listen());

    QLocalSocket impatient;
    impatient.connectToServer(name);
    ASSERT_TRUE(impatient.waitForConnected());
    impatient.write("{\"arguments\":[\"wait\"]}\n");
    ASSERT_TRUE(impatient.waitForBytesWritten());
    std::thread leaver([&impatient] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        ::shutdown(int(impatient.socketDescriptor()), SHUT_RDWR); // as the system does for a process that was killed
    });
    zqRunMainLoopUntil([&wasAbandoned] { return wasAbandoned; });
    leaver.join();

    std::optional<InstanceReply> reply;
    std::thread asker([&] {
        reply = InstanceServer::send(name, {{QStringLiteral("a"), QStringLiteral("b")}, QStringLiteral("/x"), {}});
    });
    zqRunMainLoopUntil([&reply] { return reply.has_value(); });
    asker.join();
    EXPECT_EQ(reply->exitStatus, 3);
    EXPECT_EQ(reply->output, "a b");
    EXPECT_EQ(reply->errors, "/x");
}

TEST(InstanceServer, AnswersThatComeLaterKeepNobodyWaiting)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("socket"));
    QList<InstanceRequest> waiting;
    InstanceServer server(name, [&waiting](const InstanceRequest &request) {
        waiting.append(request);
        return std::optional<InstanceReply>();
    });
    ASSERT_TRUE(server.listen());
    const auto ask = [&name](const char *what, std::atomic<int> &status) {
        return std::thread([=, &status] {
            const auto reply = InstanceServer::send(name, {{QString::fromLatin1(what)}, QStringLiteral("/x"), {}, {}});
            status = reply ? reply->exitStatus : -1;
        });
    };
    std::atomic<int> first = 0;
    std::atomic<int> second = 0;
    std::thread one = ask("one", first);
    zqRunMainLoopUntil([&waiting] { return waiting.size() == 1; });
    std::thread other = ask("other", second);
    zqRunMainLoopUntil([&waiting] { return waiting.size() == 2; });
    waiting.takeLast().answer({2, {}, {}});
    zqRunMainLoopUntil([&second] { return second != 0; });
    EXPECT_EQ(first, 0);
    waiting.takeFirst().answer({1, {}, {}});
    zqRunMainLoopUntil([&first] { return first != 0; });
    one.join();
    other.join();
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 2);

    QLocalSocket leaver;
    leaver.connectToServer(name);
    ASSERT_TRUE(leaver.waitForConnected());
    leaver.write("{\"arguments\":[\"leave\"]}\n");
    ASSERT_TRUE(leaver.waitForBytesWritten());
    zqRunMainLoopUntil([&waiting] { return waiting.size() == 1; });
    leaver.abort();
    zqRunMainLoopUntil([&waiting] { return waiting.first().isAbandoned(); });
    waiting.takeFirst().answer({3, {}, {}}); // to nobody
}

TEST(InstanceServer, WhatIsAskedBeforeItIsReadyWaits)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("socket"));
    bool isReady = false;
    int served = 0;
    InstanceServer server(name, [&](const InstanceRequest &) {
        EXPECT_TRUE(isReady);
        ++served;
        return InstanceReply{};
    });
    server.setIsReady([&isReady] { return isReady; });
    ASSERT_TRUE(server.listen());
    std::optional<InstanceReply> reply;
    std::thread asker([&] { reply = InstanceServer::send(name, {{QStringLiteral("a")}, QStringLiteral("/x"), {}}); });
    zqRunMainLoopFor(std::chrono::milliseconds(200));
    EXPECT_EQ(served, 0);
    isReady = true;
    zqRunMainLoopUntil([&served] { return served > 0; });
    zqRunMainLoopUntil([&reply] { return reply.has_value(); });
    asker.join();
    EXPECT_EQ(served, 1);
}

TEST(InstanceServer, WhoWaitsLongIsToldWhetherItsTurnHasCome)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("socket"));
    for (const bool begins : {false, true}) {
        std::atomic<int> told = 0;
        std::atomic<bool> saidBegun = false;
        const auto isTold = [&told] { return told > 0; };
        InstanceServer server(name, [&](const InstanceRequest &) {
            if (begins) {
                zqRunMainLoopUntil(isTold);
            }
            return InstanceReply{4, "done", "why"};
        });
        server.setIsReady([&] { return begins || isTold(); });
        ASSERT_TRUE(server.listen());
        std::optional<InstanceReply> reply;
        std::atomic<bool> isOver = false;
        std::thread asker([&] {
            reply = InstanceServer::send(name, {{QStringLiteral("a")}, {}, {}}, nullptr, [&](bool hasBegun) {
                saidBegun = hasBegun;
                ++told;
            });
            isOver = true;
        });
        zqRunMainLoopUntil([&isOver] { return isOver.load(); });
        asker.join();
        EXPECT_EQ(told, 1);
        EXPECT_EQ(saidBegun, begins);
        ASSERT_TRUE(reply);
        EXPECT_EQ(reply->exitStatus, 4);
        EXPECT_EQ(reply->output + reply->errors, "donewhy");
    }
}

TEST(InstanceServer, WhatItDidNotComeToIsSaidNotToHaveBegun)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("socket"));
    for (const bool isRead : {true, false}) { // one the loop served, and one that came too late for it
        auto server = std::make_unique<InstanceServer>(name, [](const InstanceRequest &) { return InstanceReply{}; });
        server->setIsReady([] { return false; });
        ASSERT_TRUE(server->listen());
        std::optional<InstanceReply> reply;
        ZQError error;
        std::thread asker([&] { reply = InstanceServer::send(name, {{QStringLiteral("a")}, {}, {}}, &error); });
        if (isRead) {
            zqRunMainLoopFor(std::chrono::milliseconds(200));
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
        }
        server.reset();
        asker.join();
        EXPECT_FALSE(reply);
        EXPECT_EQ(error.code, int(InstanceServer::NobodyAnswers)) << error.localizedDescription().toStdString();
    }
}

TEST(InstanceServer, AnAnswerIsOnItsWayWithoutAMainLoopThatGoesOn)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("socket"));
    bool isServed = false;
    InstanceServer server(name, [&](const InstanceRequest &) {
        isServed = true;
        return InstanceReply{3, "done", {}};
    });
    ASSERT_TRUE(server.listen());
    std::atomic<bool> isOver = false;
    std::optional<InstanceReply> reply;
    std::thread asker([&] {
        reply = InstanceServer::send(name, {{QStringLiteral("a")}, QStringLiteral("/x"), {}});
        isOver = true;
    });
    zqRunMainLoopUntil([&isServed] { return isServed; });
    for (int i = 0; i < 500 && !isOver; ++i) { // as when quitting
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_TRUE(isOver);
    zqRunMainLoopUntil([&isOver] { return isOver.load(); });
    asker.join();
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->exitStatus, 3);
}

TEST(InstanceServer, AnAnswererThatEndsIsToldFromNone)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("socket"));
    ZQError error;
    EXPECT_FALSE(InstanceServer::send(name, {{QStringLiteral("a")}, QStringLiteral("/x"), {}}, &error));
    EXPECT_EQ(error.code, InstanceServer::NobodyAnswers);
    QLocalServer ending;
    ASSERT_TRUE(ending.listen(name));
    QObject::connect(&ending, &QLocalServer::newConnection, &ending,
                     [&ending] { ending.nextPendingConnection()->abort(); });
    std::atomic<bool> isOver = false;
    std::thread asker([&] {
        InstanceServer::send(name, {{QStringLiteral("a")}, QStringLiteral("/x"), {}}, &error);
        isOver = true;
    });
    zqRunMainLoopUntil([&isOver] { return isOver.load(); });
    asker.join();
    EXPECT_EQ(error.code, InstanceServer::EndedMeanwhile);
}

TEST(InstanceServer, ARequestMayComeInPiecesButNotWithoutEnd)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("socket"));
    ZQError error;
    InstanceServer nowhere(folder.filePath(QStringLiteral("missing/socket")), {});
    EXPECT_FALSE(nowhere.listen(&error));
    EXPECT_EQ(error.code, InstanceServer::NotListening);

    QFile left(name); // of a process that was killed
    ASSERT_TRUE(left.open(QIODevice::WriteOnly));
    left.close();
    QList<QStringList> served;
    InstanceServer server(name, [&served](const InstanceRequest &request) {
        served.append(request.arguments);
        return InstanceReply{};
    });
    ASSERT_TRUE(server.listen(&error)) << qPrintable(error.localizedDescription());
    EXPECT_EQ(QFile::permissions(name) & (QFile::ReadGroup | QFile::ReadOther | QFile::WriteOther),
              QFile::Permissions());

    QLocalSocket slow;
    slow.connectToServer(name);
    ASSERT_TRUE(slow.waitForConnected());
    slow.write("{\"arguments\":[\"a\",");
    slow.flush();
    zqRunMainLoopFor(std::chrono::milliseconds(50));
    EXPECT_TRUE(served.isEmpty());
    slow.write("\"b\"]}\n");
    zqRunMainLoopUntil([&served] { return !served.isEmpty(); });
    zqRunMainLoopUntil([&slow] { return slow.state() == QLocalSocket::UnconnectedState; });
    EXPECT_EQ(served, (QList<QStringList>{{QStringLiteral("a"), QStringLiteral("b")}}));
    EXPECT_EQ(slow.readAll(), "{\"errors\":\"\",\"output\":\"\",\"status\":0}\n");

    QLocalSocket endless;
    endless.connectToServer(name);
    ASSERT_TRUE(endless.waitForConnected());
    const QByteArray piece(1 << 20, 'x');
    for (int i = 0; i < 40 && endless.state() == QLocalSocket::ConnectedState; ++i) {
        endless.write(piece);
        zqRunMainLoopUntil(
            [&endless] { return endless.bytesToWrite() == 0 || endless.state() != QLocalSocket::ConnectedState; });
    }
    EXPECT_NE(endless.state(), QLocalSocket::ConnectedState);
    EXPECT_EQ(served.size(), 1);
}

TEST(Services, TheReporterAsksForTheLogOnceTheLoopIsFreeAndUpdatesComeFromTheSystem)
{
    int asked = 0;
    CrashReporter reporter;
    reporter.start({{},
                    [&asked] {
                        ++asked;
                        return QString();
                    }},
                   true);
    EXPECT_EQ(asked, 0);
    zqRunMainLoopFor(std::chrono::milliseconds(0));
    EXPECT_EQ(asked, 1);
    reporter.start({}, false);
    zqRunMainLoopFor(std::chrono::milliseconds(0));
    EXPECT_EQ(asked, 1);

    SoftwareUpdater updater;
    EXPECT_FALSE(updater.areTestKeysHeld()) << "there is no window";
    updater.configure(QStringLiteral("feed"));
    updater.setAutomaticChecks(true);
    EXPECT_EQ(updater.appCastURL(), QStringLiteral("feed"));
    EXPECT_TRUE(updater.checksAutomatically());
}

namespace {

// A bus as that of a desktop, with a file manager on it.
class SessionBus : public ApplicationTest
{
protected:
    ~SessionBus() override
    {
        daemon.kill();
        daemon.waitForFinished();
    }
    bool begin()
    {
        daemon.start(QStringLiteral("dbus-daemon"),
                     {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                      QStringLiteral("--address=unix:path=") + world.filePath(QStringLiteral("bus"))});
        if (!daemon.waitForStarted() || !daemon.waitForReadyRead()) {
            return false;
        }
        address = QString::fromUtf8(daemon.readLine()).trimmed();
        qputenv("DBUS_SESSION_BUS_ADDRESS", address.toUtf8());
        return QDBusConnection::sessionBus().isConnected();
    }
    QProcess daemon;
    QString address;
};

class FileManager : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")
public:
    QStringList shown;
public Q_SLOTS:
    void ShowItems(const QStringList &uris, const QString &) { shown = uris; }
};

} // namespace

TEST_F(SessionBus, TheDesktopOpensFilesAndShowsTheLibrary)
{
    if (QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty()) {
        return skipWithout("dbus-daemon");
    }
    if (!begin()) {
        return skipWithout("a session bus of its own");
    }
    QList<QStringList> opened;
    InstanceServer server(world.filePath(QStringLiteral("socket")), {});
    QStringList done;
    const DesktopActivation::Uses uses{[&opened](const QStringList &paths) { opened.append(paths); },
                                       [&done](const QString &action) { done.append(action); }};
    QDBusConnection peer = QDBusConnection::connectToBus(address, QStringLiteral("peer"));
    ASSERT_TRUE(peer.registerService(QStringLiteral("org.zelto.Zelto")));
    EXPECT_FALSE(server.registerOnSessionBus(uses)) << "the name is another's";
    ASSERT_TRUE(peer.unregisterService(QStringLiteral("org.zelto.Zelto")));
    ASSERT_TRUE(server.registerOnSessionBus(uses));
    EXPECT_FALSE(server.registerOnSessionBus(uses)) << "it is asked already";
    const auto call = [&peer](const char *method, const QVariantList &arguments) {
        QDBusMessage message =
            QDBusMessage::createMethodCall(QStringLiteral("org.zelto.Zelto"), QStringLiteral("/org/zelto/Zelto"),
                                           QStringLiteral("org.freedesktop.Application"), QLatin1String(method));
        message.setArguments(arguments);
        return peer.send(message);
    };
    EXPECT_TRUE(
        call("Open", {QStringList{QStringLiteral("file:///a%20b.png"), QStringLiteral("http://x/")}, QVariantMap()}));
    EXPECT_TRUE(comesTrue([&] { return opened.size() == 1; }));
    EXPECT_EQ(opened.value(0), QStringList{QStringLiteral("/a b.png")});
    EXPECT_TRUE(call("Activate", {QVariantMap()}));
    EXPECT_TRUE(comesTrue([&] { return opened.size() == 2; }));
    const QVariantMap token{{QStringLiteral("activation-token"), QStringLiteral("asked for")}};
    EXPECT_TRUE(call("ActivateAction", {QStringLiteral("snap-area"), QVariantList(), token}));
    EXPECT_TRUE(comesTrue([&] { return !done.isEmpty(); }));
    EXPECT_EQ(done, QStringList{QStringLiteral("snap-area")});
    EXPECT_EQ(qgetenv("XDG_ACTIVATION_TOKEN"), "asked for") << "with it the window may come to the front";
    qunsetenv("XDG_ACTIVATION_TOKEN");

    FileManager files;
    ASSERT_TRUE(peer.registerService(QStringLiteral("org.freedesktop.FileManager1")));
    ASSERT_TRUE(
        peer.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &files, QDBusConnection::ExportAllSlots));
    const auto delegate = application();
    delegate->revealLibraryInFinder();
    EXPECT_TRUE(comesTrue([&] { return !files.shown.isEmpty(); }));
    EXPECT_EQ(files.shown, QStringList{QStringLiteral("file://") + defaultBundle()});
    QDBusConnection::disconnectFromBus(QStringLiteral("peer"));
}

#include "InstanceServerTest.moc"

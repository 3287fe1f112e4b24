#include "Classes/Services/InstanceServer.h"

#include "Kit/Operations/ZQMainThread.h"

#include <QLocalServer>
#include <QLocalSocket>
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

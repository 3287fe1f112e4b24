#include "Classes/Command/Commands.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Classes/Command/CommandFixture.h"
#include "Tests/Support/LocalHTTPServer.h"

#include <QFile>

class DownloadCommandTest : public CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        QFile file(picture(QStringLiteral("in/red.png"), qRgb(220, 20, 20)));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        server.setAnswer(QStringLiteral("/red.png"), LocalHTTPServer::Answer::with("image/png", file.readAll()));
    }
    int download(const QStringList &arguments)
    {
        return run(QStringList{QStringLiteral("download"), QStringLiteral("--json"), QStringLiteral("--page"),
                               server.address(QStringLiteral("/page"))} +
                   arguments);
    }

    LocalHTTPServer server;
    const QString red = server.address(QStringLiteral("/red.png"));
    const QString missing = server.address(QStringLiteral("/missing.png"));
};

TEST_F(DownloadCommandTest, ItsStatusSaysWhetherAllSomeOrNoneCame)
{
    EXPECT_EQ(download({red, missing, QStringLiteral("--all"), QStringLiteral("--title"), QStringLiteral("Page")}), 1)
        << context.errors.constData();
    EXPECT_EQ(object()[QStringLiteral("downloaded")].toInt(), 1);
    EXPECT_EQ(object()[QStringLiteral("imported")].toArray().size(), 1);
    EXPECT_EQ(object()[QStringLiteral("failed")][0][QStringLiteral("url")].toString(), missing);
    ASSERT_EQ(run(QStringList{QStringLiteral("items"), QStringLiteral("--json"), QStringLiteral("--in"),
                              QStringLiteral("PROJECTS/Page")}),
              0);
    EXPECT_EQ(array()[0][QStringLiteral("webURL")].toString(), red);

    EXPECT_EQ(download({missing}), 2);
    EXPECT_TRUE(context.errors.contains("none of the images")) << context.errors.constData();
    EXPECT_EQ(download({}), 2);
    EXPECT_EQ(run(QStringList{QStringLiteral("download"), QStringLiteral("--all"), red}), 2);
    EXPECT_EQ(server.countOfRequestsFor(QStringLiteral("/red.png")), 1);
}

TEST_F(DownloadCommandTest, InAWindowItIsAnsweredLaterAndEndsWhenNobodyWaits)
{
    context = {};
    context.delegate = delegate.get();
    context.mayBeFinishedLater = true;
    ASSERT_EQ(zqRunDownload({.urls = {red}, .page = red, .title = {}, .all = false}, context), 0);
    ASSERT_TRUE(context.pending);
    zqRunMainLoopUntil(context.pending->isDone);
    EXPECT_EQ(context.pending->finish(context), 0) << context.errors.constData();
    EXPECT_TRUE(context.output.contains("1 item imported")) << context.output.constData();

    context.isAbandoned = {};
    context.pending.reset();
    context.mayBeFinishedLater = false;
    EXPECT_EQ(zqRunDownload({.urls = {red}, .page = {}, .title = {}, .all = false}, context), 2);
    EXPECT_TRUE(context.errors.contains("write --page")) << context.errors.constData();
    context.mayBeFinishedLater = true;

    server.setAnswer(QStringLiteral("/silent.png"), {.end = LocalHTTPServer::End::Silence, .endsBeforeHead = true});
    context.pending.reset();
    context.isAbandoned = [] { return true; };
    zqRunDownload({.urls = {server.address(QStringLiteral("/silent.png"))}, .page = red, .title = {}, .all = false},
                  context);
    ASSERT_TRUE(context.pending);
    zqRunMainLoopUntil(context.pending->isDone);
    EXPECT_EQ(context.pending->finish(context), 2);
}

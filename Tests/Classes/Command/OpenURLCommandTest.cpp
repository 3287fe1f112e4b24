#include "Tests/Classes/Command/CommandFixture.h"

#include "Classes/Command/Commands.h"
#include "Classes/Services/ProtocolManager.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Support/FakeProtocol.h"
#include "Tests/Support/LocalHTTPServer.h"

#include <QFile>

TEST_F(CommandTest, AddressesOfTheSchemeAreTakenApartBeforeAnythingIsDone)
{
    const auto url = [](const char *json) { return QStringLiteral("zelto:import:") + QString::fromUtf8(json); };
    const struct
    {
        QString url;
        const char *says;
    } cases[] = {
        {QStringLiteral("zelto:import:nonsense"), "cannot be understood"},
        {QStringLiteral("https://a.example/"), "no address that Zelto knows"},
        {url(R"({"page_url":"https://a.example/","urls":["file:///etc/passwd"]})"), "/etc/passwd"},
        {url(R"({"page_url":"https://a.example/","urls":["http://localhost/1.png"]})"), "localhost"},
        {url(R"({"page_url":"https://a.example/","urls":["https://cdn.example/1.png"]})"), "nobody has agreed"},
        {QStringLiteral(R"(zelto:snap:{"page_url":"https://a.example/"})"), "needs the window"},
    };
    for (const auto &each : cases) {
        EXPECT_EQ(run({QStringLiteral("open-url"), each.url}), 2) << qPrintable(each.url);
        EXPECT_TRUE(context.errors.contains(each.says)) << context.errors.constData();
        EXPECT_TRUE(context.output.isEmpty());
    }
    EXPECT_EQ(run({QStringLiteral("open-url"), QStringLiteral("--yes"), cases[3].url}), 2); // to that nobody agrees
    EXPECT_TRUE(context.errors.contains(cases[3].says)) << context.errors.constData();
    EXPECT_FALSE(ZQUserDefaults::standardUserDefaults().isSet(ProtocolManager::knownPagesKey));
}

TEST_F(CommandTest, ImagesInTheTextOfAnAddressBecomeItems)
{
    const QByteArray gif = "R0lGODlhAQABAIAAAAAAAP///yH5BAEAAAAALAAAAAABAAEAAAIBRAA7";
    const QString url = QStringLiteral(R"(zelto:import:{"page_url":"https://a.example/p","page_title":"The Page",)"
                                       R"("urls":["data:image/gif;base64,%1"],"import_all":"1"})")
                            .arg(QString::fromLatin1(gif));
    EXPECT_EQ(run({QStringLiteral("open-url"), url}), 0) << context.errors.constData();
    EXPECT_EQ(run({QStringLiteral("items"), QStringLiteral("--in"), QStringLiteral("PROJECTS/The Page"),
                   QStringLiteral("--json")}),
              0)
        << context.errors.constData();
    ASSERT_EQ(array().size(), 1);
    EXPECT_EQ(array().first().toObject().value(QStringLiteral("webPageURL")).toString(),
              QStringLiteral("https://a.example/p"));
}

TEST_F(CommandTest, AYesOnTheCommandLineIsEnoughAndForThatOneTime)
{
    QFile file(picture(QStringLiteral("in/red.png"), qRgb(220, 20, 20)));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    LocalHTTPServer server;
    server.setAnswer(QStringLiteral("/red.png"), LocalHTTPServer::Answer::with("image/png", file.readAll()));
    const QString url = QStringLiteral(R"(zelto:import:{"page_url":"%1","urls":["%2"]})")
                            .arg(server.address(QStringLiteral("/page")), server.address(QStringLiteral("/red.png")));
    EXPECT_EQ(run({QStringLiteral("open-url"), QStringLiteral("--yes"), QStringLiteral("--json"), url}), 0)
        << context.errors.constData();
    EXPECT_EQ(object()[QStringLiteral("imported")].toArray().size(), 1);
    EXPECT_EQ(run({QStringLiteral("open-url"), url}), 2);
    EXPECT_TRUE(context.errors.contains("--yes")) << context.errors.constData();
    EXPECT_EQ(server.countOfRequestsFor(QStringLiteral("/red.png")), 1);
}

TEST_F(CommandTest, InAWindowWhatNeedsNoWordIsReportedAtItsEndAndTheRestIsForTheWindowToAsk)
{
    QStringList asked;
    delegate.reset();
    open([&asked](ApplicationParts &parts) {
        parts.makeProtocolManager = [&asked] { return std::make_unique<FakeProtocol>(asked); };
    });
    delegate->applicationWillFinishLaunching();
    const auto openURL = [this](const QString &url) {
        context = {};
        context.delegate = delegate.get();
        context.json = context.mayBeFinishedLater = true;
        return zqRunOpenURL({.url = url}, context);
    };
    const QString page = QStringLiteral(R"(zelto:import:{"page_url":"https://a.example/p","urls":["%1"]})");
    openURL(page.arg(QStringLiteral("data:image/gif;base64,R0lGODlhAQABAIAAAAAAAP///yH5BAEAAAAALAAAAAABAAEAAAIBRAA7")));
    ASSERT_TRUE(context.pending);
    zqRunMainLoopUntil(context.pending->isDone);
    EXPECT_EQ(context.pending->finish(context), 0) << context.errors.constData();
    EXPECT_EQ(object()[QStringLiteral("imported")].toArray().size(), 1);
    EXPECT_TRUE(asked.isEmpty());

    const QStringList others{page.arg(QStringLiteral("https://cdn.example/1.png")),
                             QStringLiteral(R"(zelto:snap:{"page_url":"https://a.example/"})")};
    EXPECT_EQ(openURL(others.first()), 0);
    EXPECT_FALSE(context.pending);
    EXPECT_TRUE(object()[QStringLiteral("asked")].toBool());
    EXPECT_EQ(openURL(others.last()), 0);
    EXPECT_EQ(asked, others);
}

TEST_F(CommandTest, WhatAWindowIsToOpenMayBeWrittenAsADesktopWritesIt)
{
    const QString file = picture(QStringLiteral("a b.png"), qRgb(1, 2, 3));
    const QString address = QStringLiteral("zelto:import:{\"a.b/c\"}");
    context.workingDirectory = world.path();
    CommandLine line;
    int status = 0;
    ASSERT_TRUE(
        line.parse({address, QUrl::fromLocalFile(file).toString(), QStringLiteral("a b.png")}, context, &status))
        << context.errors.constData();
    EXPECT_FALSE(line.isCommand());
    QStringList opened;
    for (const QString &given : line.filesToOpen()) {
        opened.append(context.pathToOpen(given));
    }
    EXPECT_EQ(opened, (QStringList{address, file, file}));
    EXPECT_TRUE(context.errors.isEmpty());
}

#include "Classes/Services/ProtocolManager.h"

#include "Classes/Services/DesktopActivation.h"
#include "Tests/Classes/Application/ApplicationFixture.h"
#include "Tests/Support/FakeProtocol.h"

#include <QUrl>

#include <gtest/gtest.h>

namespace {

class FakeDownloads : public ImageDownloading
{
public:
    void downloadImages(const ImageDownloadRequest &request) override { requests.append(request); }
    bool isDownloading() const override { return false; }
    void stopDownloads() override {}
    QList<ImageDownloadRequest> requests;
};

class FakeCapture : public ScreenCaptureControlling
{
public:
    void loadView() override {}
    void snapArea() override {}
    void snapWindow() override {}
    void snapFullScreen() override {}
    void snapWebsite(const QString &pageURL, const QRect &frame) override { pages.append({pageURL, frame}); }
    QList<std::pair<QString, QRect>> pages;
};

QString import(const QString &pageHost, const QString &imageHost)
{
    return QStringLiteral(R"(zelto:import:{"page_url":"https://%1/","urls":["https://%2/1.png"]})")
        .arg(pageHost, imageHost);
}

const QString snap = QStringLiteral(
    R"(zelto:snap:{"page_url":"https://a.example/","win_x":9000,"win_y":0,"win_width":300,"win_height":200})");

} // namespace

class ProtocolManagerTest : public ApplicationTest
{
protected:
    ProtocolManager::Uses uses()
    {
        return {user,
                [this] { return isLaunched; },
                [this] { return hasCapture ? &capture : nullptr; },
                [this] { return &downloads; },
                [] { return QList<QRect>{QRect(0, 0, 1000, 800)}; },
                [this] { return now; }};
    }
    void handle(const QString &url, int times = 1)
    {
        for (int i = 0; i < times; ++i) {
            manager.handleURL(url);
        }
    }
    // Everything that came is done, in a turn of the main loop, unless it waits for something.
    void settle() { zqRunMainLoopFor(std::chrono::milliseconds(1)); }

    FakeDownloads downloads;
    FakeCapture capture;
    bool isLaunched = true;
    bool hasCapture = true;
    std::chrono::milliseconds now{0};
    ProtocolManager manager{uses()};
};

TEST_F(ProtocolManagerTest, CommandsWaitForTheLaunchAndForTheirPart)
{
    isLaunched = hasCapture = false;
    handle(snap);
    handle(import(QStringLiteral("a.example"), QStringLiteral("a.example")));
    EXPECT_TRUE(downloads.requests.isEmpty()); // never while it is called
    zqRunMainLoopFor(ProtocolManager::retryInterval + std::chrono::milliseconds(50));
    EXPECT_TRUE(downloads.requests.isEmpty() && user.notifications.isEmpty());
    isLaunched = true;
    EXPECT_TRUE(comesTrue([this] { return downloads.requests.size() == 1; })); // it does not wait for the capture
    EXPECT_TRUE(capture.pages.isEmpty());
    hasCapture = true;
    EXPECT_TRUE(comesTrue([this] { return capture.pages.size() == 1; }));
    EXPECT_EQ(capture.pages.first().first, QStringLiteral("https://a.example/"));
    EXPECT_EQ(capture.pages.first().second, QRect(700, 0, 300, 200));
    EXPECT_TRUE(user.questions.isEmpty());
}

TEST_F(ProtocolManagerTest, WhatIsRefusedIsSaid)
{
    handle(QStringLiteral("zelto:import:nonsense"));
    settle();
    ASSERT_EQ(user.notifications.size(), 1);
    EXPECT_TRUE(downloads.requests.isEmpty());
}

TEST_F(ProtocolManagerTest, ThePersonIsAskedOnceForAPageThatNamesOtherHosts)
{
    const QString foreign = import(QStringLiteral("a.example"), QStringLiteral("cdn.example"));
    handle(foreign); // nobody says yes
    settle();
    ASSERT_EQ(user.questions.size(), 1);
    EXPECT_TRUE(user.questions.first().message.contains(QStringLiteral("a.example")));
    EXPECT_TRUE(user.questions.first().informativeText.contains(QStringLiteral("cdn.example")));
    EXPECT_EQ(user.questions.first().buttons.last(), QStringLiteral("Cancel"));
    EXPECT_TRUE(downloads.requests.isEmpty());
    EXPECT_FALSE(ZQUserDefaults::standardUserDefaults().isSet(ProtocolManager::knownPagesKey));

    now += ProtocolManager::quietAfterNo;
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    handle(foreign, 2);
    settle();
    EXPECT_EQ(user.questions.size(), 2);
    EXPECT_EQ(downloads.requests.size(), 2);
    handle(import(QStringLiteral("b.example"), QStringLiteral("cdn.example")));
    settle();
    EXPECT_EQ(user.questions.size(), 3); // another page
}

TEST_F(ProtocolManagerTest, APageOnThisComputerIsAskedAboutSinceOnlyTheSenderSaysWhichItIs)
{
    handle(import(QStringLiteral("127.0.0.1"), QStringLiteral("127.0.0.1")));
    handle(QStringLiteral(R"(zelto:snap:{"page_url":"http://localhost/"})"));
    settle();
    EXPECT_EQ(user.questions.size(), 1); // the second one came before the first was answered with no
    EXPECT_TRUE(downloads.requests.isEmpty() && capture.pages.isEmpty());
}

TEST_F(ProtocolManagerTest, AYesToAPageOnThisComputerIsForThatOneTime)
{
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    const QStringList before{QStringLiteral("localhost"), QStringLiteral("192.168.1.2")}; // from wherever
    defaults.setObjectForKey(before, ProtocolManager::knownPagesKey);
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    handle(import(QStringLiteral("localhost"), QStringLiteral("localhost")), 2);
    handle(import(QStringLiteral("192.168.1.2"), QStringLiteral("cdn.example")));
    handle(QStringLiteral(R"(zelto:snap:{"page_url":"http://nas.local:8080/"})"), 2);
    settle();
    EXPECT_EQ(user.questions.size(), 5);
    EXPECT_EQ(downloads.requests.size(), 3);
    EXPECT_EQ(capture.pages.size(), 2);
    for (const UserQuestion &question : user.questions) {
        EXPECT_FALSE(question.informativeText.contains(QStringLiteral("not be asked again")));
    }
    EXPECT_EQ(defaults.objectForKey(ProtocolManager::knownPagesKey).toStringList(), before);
}

TEST_F(ProtocolManagerTest, AFloodOpensNeitherQuestionsNorDownloadsWithoutEnd)
{
    user.answerQuestion = [this](const UserQuestion &) {
        for (int i = 0; i < 100; ++i) { // while the question is open
            handle(import(QStringLiteral("%1.example").arg(i), QStringLiteral("cdn.example")));
        }
        zqRunMainLoopFor(std::chrono::milliseconds(5));
        return 1;
    };
    handle(import(QStringLiteral("a.example"), QStringLiteral("cdn.example")));
    settle();
    EXPECT_EQ(user.questions.size(), 1);
    now += ProtocolManager::burst - std::chrono::milliseconds(1);
    handle(import(QStringLiteral("other.example"), QStringLiteral("cdn.example")));
    settle();
    EXPECT_EQ(user.questions.size(), 1); // not so soon after a no
    now += ProtocolManager::burst;
    const qsizetype told = user.notifications.size();
    handle(import(QStringLiteral("a.example"), QStringLiteral("a.example")), 100);
    settle();
    EXPECT_EQ(downloads.requests.size(), ProtocolManager::mostAtOnce);
    EXPECT_EQ(user.notifications.size(), told + 1);
    now += ProtocolManager::burst;
    handle(import(QStringLiteral("a.example"), QStringLiteral("a.example")));
    settle();
    EXPECT_EQ(downloads.requests.size(), ProtocolManager::mostAtOnce + 1);
}

TEST_F(ProtocolManagerTest, OnlySoManyPagesAreRemembered)
{
    QStringList before;
    for (qsizetype i = 0; i < ProtocolManager::mostKnownPages; ++i) {
        before.append(QStringLiteral("%1.example").arg(i));
    }
    ZQUserDefaults::standardUserDefaults().setObjectForKey(before, ProtocolManager::knownPagesKey);
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    handle(import(QStringLiteral("new.example"), QStringLiteral("cdn.example")));
    handle(import(QStringLiteral("2.example"), QStringLiteral("cdn.example"))); // which is known
    settle();
    EXPECT_EQ(user.questions.size(), 1);
    EXPECT_EQ(downloads.requests.size(), 2);
    EXPECT_EQ(ZQUserDefaults::standardUserDefaults().objectForKey(ProtocolManager::knownPagesKey).toStringList(),
              before.mid(1) + QStringList{QStringLiteral("new.example")});
}

TEST_F(ApplicationTest, AddressesOfTheSchemeReachTheirManagerFromEveryDoorAndAreNoFiles)
{
    QStringList urls;
    ApplicationParts parts = partsOfAll();
    parts.makeMainWindowController = [this] { return std::make_unique<FakeWindow>(window); };
    parts.makeProtocolManager = [&urls] { return std::make_unique<FakeProtocol>(urls); };
    tamberin_AppDelegate delegate(parts);
    EXPECT_FALSE(delegate.protocolManager());
    delegate.applicationWillFinishLaunching();
    ASSERT_TRUE(delegate.protocolManager());

    const QString file = world.filePath(QStringLiteral("a b.png"));
    QStringList opened;
    DesktopActivation desktop({.open = [&opened](const QStringList &paths) { opened = paths; }, .doAction = {}});
    const QString library = QStringLiteral("zelto:import:{}.ztlibrary"); // would be one that is switched to
    desktop.Open({QStringLiteral("ZELTO:import:{\"a b\"}"), QUrl::fromLocalFile(file).toString(),
                  QStringLiteral("https://a.example/"), library, QStringLiteral("zelto:x.zttemplate")},
                 {});
    EXPECT_EQ(opened, (QStringList{QStringLiteral("ZELTO:import:{\"a b\"}"), file, library,
                                   QStringLiteral("zelto:x.zttemplate")}));
    opened.removeAll(file);
    delegate.openFiles(opened);
    EXPECT_EQ(urls, opened);
    EXPECT_TRUE(tamberin_AppDelegate::loadLibraryURL().isEmpty());
    EXPECT_TRUE(user.errors.isEmpty());
}

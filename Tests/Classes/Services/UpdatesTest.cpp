// New versions: which is newer, which announcement is believed, and when somebody is asked or told.

#include "Classes/Services/InstalledBy.h"
#include "Classes/Services/SoftwareUpdater.h"
#include "Classes/Services/UpdateVersion.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Classes/Services/SignedFeed.h"
#include "Tests/Support/LocalHTTPServer.h"
#include "Tests/Support/ScriptedUser.h"
#include "Tests/Support/UserWorld.h"

#include <QDir>
#include <QFile>
#include <QThreadPool>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>

namespace {

using Answer = LocalHTTPServer::Answer;
using Kind = UpdateAnswer::Kind;

const QString newestSeen = QStringLiteral("UpdateNewestSeen");

class UpdatesTest : public testing::Test
{
protected:
    UpdatesTest()
    {
        defaults().setObjectForKey(server.address(QStringLiteral("/of/zelto")), QStringLiteral("UpdateFeedAddress"));
        defaults().setObjectForKey(QString::fromLatin1(maker.publicKey().toBase64()), QStringLiteral("UpdateKey"));
    }
    ~UpdatesTest() override
    {
        for (const QString &key :
             {SoftwareUpdater::checksKey, SoftwareUpdater::skippedKey, SoftwareUpdater::lastCheckKey, newestSeen,
              QStringLiteral("UpdateFeedAddress"), QStringLiteral("UpdateKey")}) {
            defaults().removeObjectForKey(key);
        }
    }
    static ZQUserDefaults &defaults() { return ZQUserDefaults::standardUserDefaults(); }
    void serve(const Answer &answer, const char *channel = "release")
    {
        server.setAnswer(QStringLiteral("/of/zelto/updates/%1/feed.json").arg(QLatin1StringView(channel)), answer);
    }
    void announce(const QJsonObject &changes, const char *channel = "release")
    {
        serve(Answer::with("application/json", maker.sign(SignedFeed::announcement(changes))), channel);
    }
    static UpdateAnswer check(const char *channel = "release")
    {
        return UpdateCheck::perform(
            UpdateCheck::settingsFor(QStringLiteral("updates/%1/feed.json").arg(QLatin1StringView(channel))));
    }

    SignedFeed maker;
    LocalHTTPServer server;
};

} // namespace

TEST(UpdateVersionTest, IsOrderedAsPeopleCountVersions)
{
    const char *const ascending[] = {"0.1",      "0.9.9",      "0.10",     "1.0-alpha", "1.0-alpha.2", "1.0-alpha.10",
                                     "1.0-beta", "1.0-beta.1", "1.0-rc.1", "1.0",       "1.0.1",       "1.1-1",
                                     "1.1-a",    "1.1",        "2",        "10.0"};
    const std::size_t count = std::size(ascending);
    for (std::size_t i = 0; i < count; ++i) {
        const auto version = UpdateVersion::parse(QLatin1StringView(ascending[i]));
        ASSERT_TRUE(version) << ascending[i];
        for (std::size_t k = 0; k < count; ++k) {
            EXPECT_EQ(*version <=> *UpdateVersion::parse(QLatin1StringView(ascending[k])), i <=> k)
                << ascending[i] << ' ' << ascending[k];
        }
    }
    EXPECT_EQ(*UpdateVersion::parse(QStringLiteral("1.0")), *UpdateVersion::parse(QStringLiteral("1.0.0+build.5")));
    for (const char *no :
         {"", "v1.0", "1.", "1..0", "1.0-", "1.0 ", "-1", "1.0\n", "1.9999999999", "1.0-b_c", "latest"}) {
        EXPECT_FALSE(UpdateVersion::parse(QLatin1StringView(no))) << no;
    }
}

TEST_F(UpdatesTest, WhatIsSignedAndFitsIsBelieved)
{
    struct Case
    {
        const char *version;
        Kind kind;
    };
    for (const Case &each : {Case{"1.3.0", Kind::Newer}, Case{"1.2.0", Kind::UpToDate}, Case{"1.1.9", Kind::UpToDate},
                             Case{"1.2.0-beta.1", Kind::UpToDate}, Case{"1.2.1-beta", Kind::Newer}}) {
        announce({{QStringLiteral("version"), QLatin1StringView(each.version)}});
        const UpdateAnswer answer = check();
        EXPECT_EQ(answer.kind, each.kind) << each.version << ' ' << answer.text().toStdString();
        ASSERT_TRUE(answer.feed);
        EXPECT_EQ(answer.feed->page, QUrl(QStringLiteral("https://zelto.example/get")));
    }
    for (const auto &request : server.requests()) {
        EXPECT_TRUE(request.body.isEmpty());
        EXPECT_FALSE(request.target.contains(u'?')) << "nothing is told";
    }
}

TEST_F(UpdatesTest, WhatIsNotIsRefusedInWords)
{
    const QByteArray good = maker.sign(SignedFeed::announcement({}));
    const QByteArray other = SignedFeed().sign(SignedFeed::announcement({}));
    QByteArray changed = SignedFeed::announcement({});
    changed.replace("1.3.0", "1.4.0");
    QByteArray mixed = good;
    mixed.replace(SignedFeed::announcement({}).toBase64(), changed.toBase64());
    const auto json = [](const QByteArray &body) { return Answer::with("application/json", body); };
    const auto said = [&](const char *key, const QJsonValue &value) {
        return json(maker.sign(SignedFeed::announcement({{QLatin1StringView(key), value}})));
    };
    Answer huge = json(good);
    huge.zeros = 3 << 20;
    struct Case
    {
        const char *what;
        Answer answer;
        int code; // of the feed's errors; 0: of the network
    };
    const Case cases[] = {
        {"another key", json(other), UpdateFeed::WrongSignature},
        {"a changed announcement", json(mixed), UpdateFeed::WrongSignature},
        {"half of it", json(good.left(good.size() / 2)), UpdateFeed::NotAFeed},
        {"a login page", Answer::with("text/html", "<html>Log in</html>"), UpdateFeed::NotAFeed},
        {"another channel", said("channel", QStringLiteral("beta")), UpdateFeed::OtherChannel},
        {"another program", said("program", QStringLiteral("other")), UpdateFeed::OtherChannel},
        {"no version", said("version", QStringLiteral("newest")), UpdateFeed::NotAFeed},
        {"no date", said("date", QJsonValue()), UpdateFeed::NotAFeed},
        {"a page that runs something", said("page", QStringLiteral("file:///bin/sh")), UpdateFeed::NotAFeed},
        {"an unencrypted page", said("page", QStringLiteral("http://zelto.example/")), UpdateFeed::NotAFeed},
        {"a leading away", Answer::redirect("http://zelto.example/feed"), UpdateFeed::NotAFeed},
        {"too much", huge, 0},
        {"less than it stated", Answer{.body = good.left(40), .statedLength = good.size()}, 0},
        {"nothing", Answer{.status = 404}, 0},
    };
    for (const Case &each : cases) {
        SCOPED_TRACE(each.what);
        serve(each.answer);
        const UpdateAnswer answer = check();
        EXPECT_EQ(answer.kind, Kind::Failed);
        EXPECT_FALSE(answer.feed);
        EXPECT_FALSE(answer.text().isEmpty());
        EXPECT_EQ(answer.error.domain == UpdateFeed::errorDomain ? answer.error.code : 0, each.code)
            << answer.text().toStdString();
    }
    EXPECT_FALSE(defaults().isSet(newestSeen)) << "nothing of them counts";
}

TEST_F(UpdatesTest, AnOlderAnnouncementIsNotBroughtAgain)
{
    const QString date = QStringLiteral("date");
    announce({{date, QStringLiteral("2026-11-20T10:00:00Z")}});
    EXPECT_EQ(check().kind, Kind::Newer);
    EXPECT_EQ(check().kind, Kind::Newer) << "the same again";
    announce({{date, QStringLiteral("2026-11-20T10:59:59+01:00")}, {QStringLiteral("version"), QStringLiteral("9.0")}});
    EXPECT_EQ(check().error.code, UpdateFeed::Older);
    announce({{date, QStringLiteral("2026-01-01T00:00:00Z")}, {QStringLiteral("channel"), QStringLiteral("beta")}},
             "beta");
    EXPECT_EQ(check("beta").kind, Kind::Newer) << "each channel has its own";
}

TEST_F(UpdatesTest, APersonIsAskedBeforeTheFirstCheckAndToldOfWhatIsNew)
{
    announce({});
    ScriptedUser user;
    QList<QUrl> opened;
    // What comes of a launch at once, and then until `isDone`.
    const auto launch = [&](
                            bool isAskedFor, const std::function<bool()> &isDone = [] { return true; }) {
        user.questions.clear();
        const qsizetype requestsBefore = server.requests().size();
        SoftwareUpdater updater({[&user] { return &user; }, [&opened](const QUrl &page) { opened.append(page); },
                                 QStringLiteral("/home/a/zelto"), std::chrono::milliseconds(0)});
        updater.configure(QStringLiteral("updates/release/feed.json"));
        if (isAskedFor) {
            updater.checkForUpdates();
        } else {
            updater.setAutomaticChecks(true);
        }
        const std::chrono::milliseconds atOnce(0);
        zqRunMainLoopFor(atOnce);
        QThreadPool::globalInstance()->waitForDone(); // it is known whether there are checks
        zqRunMainLoopFor(atOnce);
        constexpr std::chrono::seconds patience(30);
        const auto latest = std::chrono::steady_clock::now() + patience;
        zqRunMainLoopUntil([&] { return isDone() || std::chrono::steady_clock::now() > latest; });
        EXPECT_TRUE(isDone());
        return server.requests().size() - requestsBefore;
    };
    const auto hears = [&user](qsizetype count) { return [&user, count] { return user.questions.size() == count; }; };
    const auto asked = [&user](qsizetype i) { return user.questions.value(i).message.toStdString(); };
    user.answerQuestion = [](const UserQuestion &) { return 1; };
    EXPECT_EQ(launch(false), 0) << "the person does not want it";
    EXPECT_EQ(asked(0), "May Zelto look for new versions?");
    EXPECT_EQ(launch(false), 0);
    EXPECT_TRUE(user.questions.isEmpty()) << "nor to be asked again";

    defaults().removeObjectForKey(SoftwareUpdater::checksKey);
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    EXPECT_EQ(launch(false, hears(2)), 1);
    EXPECT_EQ(asked(1), "Zelto 1.3.0 is there");
    EXPECT_EQ(opened, QList{QUrl(QStringLiteral("https://zelto.example/get"))});
    EXPECT_EQ(launch(false), 0) << "it was looked for today";

    defaults().removeObjectForKey(SoftwareUpdater::lastCheckKey);
    user.answerQuestion = [](const UserQuestion &) { return 1; }; // skip it
    EXPECT_EQ(launch(false, hears(1)), 1);
    defaults().removeObjectForKey(SoftwareUpdater::lastCheckKey);
    EXPECT_EQ(launch(false, [] { return defaults().isSet(SoftwareUpdater::lastCheckKey); }), 1);
    EXPECT_TRUE(user.questions.isEmpty()) << "it is skipped";
    EXPECT_EQ(launch(true, hears(1)), 1);
    EXPECT_EQ(asked(0), "Zelto 1.3.0 is there") << "whoever asks is told";

    announce({{QStringLiteral("version"), QStringLiteral("1.2.0")}});
    launch(true, hears(1));
    EXPECT_EQ(asked(0), "Zelto is up to date");
    serve(Answer{.status = 500});
    launch(true, hears(1));
    EXPECT_EQ(asked(0), "Zelto could not look for new versions");
    defaults().removeObjectForKey(QStringLiteral("UpdateFeedAddress"));
    EXPECT_EQ(launch(true, hears(1)), 0);
    EXPECT_EQ(asked(0), "Zelto does not look for new versions");
}

TEST(InstalledByTest, NamesThePackageManagerThatOwnsTheProgram)
{
    const UserWorld world("installed-by");
    const QString root = world.filePath(QStringLiteral("root"));
    const auto put = [&root](const char *path, const QByteArray &bytes) {
        const QString file = root + QLatin1StringView(path);
        QDir().mkpath(QFileInfo(file).path());
        QFile opened(file);
        EXPECT_TRUE(opened.open(QIODevice::WriteOnly));
        opened.write(bytes);
    };
    put("/var/lib/dpkg/info/zelto-data.list", "/.\n/usr/share/zelto\n");
    put("/var/lib/dpkg/info/library-app:amd64.list", "/.\n/usr\n/usr/bin\n/usr/bin/zelto\n");
    QProcessEnvironment snap;
    snap.insert(QStringLiteral("SNAP"), QStringLiteral("/snap/zelto/3"));
    snap.insert(QStringLiteral("SNAP_NAME"), QStringLiteral("zelto"));
    QProcessEnvironment flatpak;
    flatpak.insert(QStringLiteral("FLATPAK_ID"), QStringLiteral("org.zelto.Zelto"));
    struct Case
    {
        const char *program;
        QProcessEnvironment environment;
        const char *expected;
    };
    for (const Case &each :
         {Case{"/usr/bin/zelto", {}, "dpkg (package library-app)"}, Case{"/usr/bin/zelt", {}, ""},
          Case{"/usr/local/bin/zelto", {}, ""}, Case{"/home/a/zelto", {}, ""},
          Case{"/snap/zelto/3/bin/zelto", snap, "Snap (package zelto)"}, Case{"/home/a/zelto", snap, ""},
          Case{"/app/bin/zelto", flatpak, "Flatpak (package org.zelto.Zelto)"}}) {
        const auto manager = InstalledBy::managerOf(QLatin1StringView(each.program), each.environment, root);
        EXPECT_EQ(manager ? manager->text().toStdString() : "", each.expected) << each.program;
    }
    put("/var/lib/pacman/local/ALPM_DB_VERSION", "9");
    const auto manager = InstalledBy::managerOf(QStringLiteral("/usr/bin/zelt"), {}, root);
    EXPECT_EQ(manager ? manager->text().toStdString() : "", "pacman");
}

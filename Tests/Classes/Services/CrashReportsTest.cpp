// What a process that ends by a fault leaves behind, and what the next launch makes of it.

#include "Classes/Services/CrashReports.h"
#include "Classes/Services/CrashReporter.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Classes/Services/CrashingChild.h"
#include "Tests/Support/LocalHTTPServer.h"
#include "Tests/Support/UserWorld.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>

#include <gtest/gtest.h>

#include <cstring>
#include <optional>

namespace {

class CrashReportsTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(reports.make()); }
    // How it ended: by a fault, which a sanitizer makes an exit with 1, or with the code.
    static constexpr int byFault = 1;
    int runChild(const char *how)
    {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
                    {QStringLiteral("--crash"), CrashReports::usualFolder(), QLatin1StringView(how)});
        EXPECT_TRUE(child.waitForFinished(60'000));
        return child.exitStatus() == QProcess::CrashExit ? byFault : child.exitCode();
    }
    void put(const QString &name, const QByteArray &text = "Zelto crash report\n")
    {
        QFile file(CrashReports::usualFolder() + u'/' + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    UserWorld world{"crash-reports"};
    CrashReports reports;
};

} // namespace

TEST_F(CrashReportsTest, EachFaultLeavesOneThatHasNothingOfTheLibrary)
{
    struct Case
    {
        const char *how;
        const char *holds;
    };
    for (const Case &each :
         {Case{"segv", "Signal: SIGSEGV"}, Case{"thread", "Signal: SIGBUS"}, Case{"overflow", "Signal: SIGSEGV"},
          Case{"terminate", "Exception: St13runtime_error"}, Case{"fatal", "ms before: fatal"}}) {
        SCOPED_TRACE(each.how);
        EXPECT_EQ(runChild(each.how), byFault) << "it ends as it would have";
        const auto all = reports.all();
        ASSERT_EQ(all.size(), 1);
        EXPECT_TRUE(all[0].isNew);
        EXPECT_EQ(QFile::permissions(all[0].path) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
        const QString text = reports.text(all[0]);
        for (const char *part : {each.holds, "Version: 7.8.9", "Qt: ", "\nStack:\n  0 ", "test_services+0x",
                                 "ms before: warning zelto.import"}) {
            EXPECT_TRUE(text.contains(QLatin1StringView(part))) << part << " in\n" << text.toStdString();
        }
        EXPECT_FALSE(text.contains(CrashingChild::planted)) << text.toStdString();
        EXPECT_FALSE(text.contains(u'/')) << "no path: " << text.toStdString();
        EXPECT_TRUE(reports.remove(all[0]));
    }
    EXPECT_EQ(runChild("forked"), 0);
    EXPECT_TRUE(reports.all().isEmpty()) << "of a child of the process";
}

TEST_F(CrashReportsTest, TheNewestFiveAreKeptAndNothingElseIsTouched)
{
    for (int i = 1; i <= 8; ++i) {
        put(QStringLiteral("crash-%1-7.%2").arg(100 + i).arg(QLatin1StringView(i % 2 ? "new" : "txt")));
    }
    put(QStringLiteral("notes.txt"));
    put(QStringLiteral("crash-1-7.new.bak"));
    reports.removeOld();
    const auto all = reports.all();
    ASSERT_EQ(all.size(), CrashReports::mostKept);
    EXPECT_EQ(all.first().date.toSecsSinceEpoch(), 108);
    EXPECT_EQ(all.last().date.toSecsSinceEpoch(), 104);
    EXPECT_EQ(QDir(CrashReports::usualFolder()).entryList(QDir::Files).size(), CrashReports::mostKept + 2);
}

TEST_F(CrashReportsTest, ANewOneIsShownWholeOnceAndTheLogIsAskedForFirst)
{
    put(QStringLiteral("crash-100-1.new"), "older");
    put(QStringLiteral("crash-200-1.new"), "newest\nwhole");
    QStringList heard;
    std::function<void()> seen;
    const auto launch = [&](bool automatic) {
        heard.clear();
        CrashReporter reporter;
        reporter.setPresenter([&](const QString &text, std::function<void()> didSee) {
            heard.append(text);
            seen = std::move(didSee);
        });
        reporter.start({[&] { heard.append(QStringLiteral("window")); },
                        [&] {
                            heard.append(QStringLiteral("log"));
                            return QString();
                        }},
                       automatic);
        EXPECT_TRUE(heard.isEmpty());
        zqRunMainLoopFor(std::chrono::milliseconds(0));
        if (automatic && seen) {
            seen();
        }
        return heard;
    };
    EXPECT_EQ(launch(false), QStringList{QStringLiteral("log")});
    EXPECT_EQ(launch(true),
              (QStringList{QStringLiteral("log"), QStringLiteral("window"), QStringLiteral("newest\nwhole")}));
    EXPECT_EQ(launch(true), QStringList{QStringLiteral("log")}) << "it was seen";
    EXPECT_EQ(reports.all().size(), 2) << "and kept";
}

TEST_F(CrashReportsTest, OneIsSentToTheAddressThatIsSetAndNowhereElse)
{
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    const QString key = QStringLiteral("CrashReportAddress");
    EXPECT_FALSE(CrashReporter::address().isValid()) << "none is set";
    defaults.setObjectForKey(QStringLiteral("http://reports.example/"), key);
    EXPECT_FALSE(CrashReporter::address().isValid()) << "it would go unencrypted";
    LocalHTTPServer server;
    server.setAnswer(QStringLiteral("/good"), {});
    server.setAnswer(QStringLiteral("/away"), LocalHTTPServer::Answer::redirect("http://reports.example/", 307));
    for (const char *path : {"/good", "/away"}) {
        defaults.setObjectForKey(server.address(QLatin1StringView(path)), key);
        std::optional<ZQError> answer;
        CrashReporter::send(QStringLiteral("Grüße"), [&answer](const ZQError &error) { answer = error; });
        zqRunMainLoopUntil([&answer] { return answer.has_value(); });
        EXPECT_EQ(answer->isNull(), std::strcmp(path, "/good") == 0) << path;
    }
    EXPECT_EQ(server.requests().value(0).body, QStringLiteral("Grüße").toUtf8());
    EXPECT_EQ(server.requests().value(0).method, "POST");
    defaults.removeObjectForKey(key);
}

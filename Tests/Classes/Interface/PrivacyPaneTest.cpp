// What is kept of how the program is used, and the report of a crash: all of it is seen, and nothing goes by itself.

#include "Classes/Interface/Preferences/PrivacyPane.h"
#include "Classes/Interface/Sheets/CrashReportSheet.h"
#include "Classes/Services/CrashReports.h"
#include "Classes/Services/UsageCounts.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQFeatures.h"
#include "Tests/Classes/Interface/SheetsFixture.h"
#include "Tests/Support/LocalHTTPServer.h"
#include "Tests/Support/ScriptedUser.h"
#include "Tests/Support/UserWorld.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QFontInfo>
#include <QLocale>
#include <QPlainTextEdit>
#include <QSignalSpy>

#include <memory>

namespace {

const QString addressKey = QStringLiteral("CrashReportAddress");
const QString reportText = QStringLiteral("Zelto 1.0\nframe 1 “é”\n");

class PrivacyPaneTest : public SheetsFixture
{
protected:
    PrivacyPaneTest() { forget(); }
    ~PrivacyPaneTest() override { forget(); }
    static void forget()
    {
        ZQUserDefaults::standardUserDefaults().removeObjectForKey(addressKey);
        ZQUserDefaults::standardUserDefaults().removeObjectForKey(UsageCounts::countsKey);
    }
    static void write(const QString &path, const QByteArray &bytes)
    {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    static QByteArray read(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    // Beside the main window, as in the preferences.
    PrivacyPane &open()
    {
        beside = std::make_unique<QDialog>(&window);
        auto *column = new QVBoxLayout(beside.get());
        auto *pane = new PrivacyPane(user, beside.get());
        column->addWidget(pane);
        beside->show();
        return *pane;
    }
    static QString counted(const PrivacyPane &pane) { return pane.findChild<QPlainTextEdit *>()->toPlainText(); }
    CrashReportSheet *sheet() { return window.findChild<CrashReportSheet *>(); }
    CrashReportSheet &openSheet()
    {
        CrashReportSheet::show(&window, user, reportText, [this] { ++seen; });
        return *sheet();
    }

    UserWorld world{"privacy"};
    ScriptedUser user;
    std::unique_ptr<QDialog> beside;
    int seen = 0;
};

} // namespace

TEST_F(PrivacyPaneTest, TheLastReportIsShownAndSeenOnceItIsClosed)
{
    EXPECT_FALSE(button(open(), "Show Last &Report…")->isEnabled()) << "there is none";
    const QString folder = CrashReports::usualFolder() + u'/';
    write(folder + QStringLiteral("crash-1700000000-7.txt"), "older");
    write(folder + QStringLiteral("crash-1700000001-7.new"), reportText.toUtf8());
    button(open(), "Show Last &Report…")->click();
    ASSERT_TRUE(QTest::qWaitFor([this] { return sheet() && sheet()->isVisible(); }));
    EXPECT_EQ(sheet()->findChild<QPlainTextEdit *>()->toPlainText(), reportText);
    EXPECT_TRUE(CrashReports().all().first().isNew) << "it is still being read";
    button(*sheet(), "Close")->click();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !sheet(); }));
    EXPECT_FALSE(CrashReports().all().first().isNew);
    EXPECT_EQ(CrashReports().all().size(), 2);
}

TEST_F(PrivacyPaneTest, CountsAreShownAllTheNewestFirstAndErased)
{
    ZQUserDefaults::standardUserDefaults().setObjectForKey(true, UsageCounts::countsKey);
    const QDate today = QDate::currentDate();
    EXPECT_EQ(counted(open()), QStringLiteral("Nothing was counted."));
    EXPECT_FALSE(button(*beside, "&Erase Counts")->isEnabled());
    UsageCounts counts;
    counts.count(QStringLiteral("Export Items"), today.addDays(-1));
    counts.count(zqNameOfFeature(ZQFeature::UploadElsewhere), today.addDays(-2));
    counts.count(QStringLiteral("Of a Later Version"), today);
    counts.count(QStringLiteral("Of a Later Version"), today);
    ASSERT_TRUE(counts.write());
    const auto day = [](const QDate &date) { return QLocale().toString(date, QLocale::ShortFormat); };
    PrivacyPane &pane = open();
    EXPECT_EQ(counted(pane), day(today) + QStringLiteral(": Of a Later Version, 2 times\n") + day(today.addDays(-1)) +
                                 QStringLiteral(": Export Items, 1 time\n") + day(today.addDays(-2)) +
                                 QStringLiteral(": Cloud Upload (other services), 1 time"));
    button(pane, "&Erase Counts")->click();
    EXPECT_EQ(counted(pane), QStringLiteral("Nothing was counted."));
    EXPECT_FALSE(QFile::exists(UsageCounts::usualPath()));

    write(UsageCounts::usualPath(), "{\"2026-");
    PrivacyPane &damaged = open();
    EXPECT_TRUE(counted(damaged).contains(QStringLiteral("Erase"))) << counted(damaged).toStdString();
    button(damaged, "&Erase Counts")->click();
    EXPECT_EQ(counted(damaged), QStringLiteral("Nothing was counted."));

    ASSERT_TRUE(QDir().mkpath(UsageCounts::usualPath() + QStringLiteral("/in the way")));
    PrivacyPane &stuck = open();
    const QSignalSpy refusals(&stuck, &PreferencesPane::refused);
    button(stuck, "&Erase Counts")->click();
    EXPECT_EQ(refusals.size(), 1) << "what cannot be erased is said";
    EXPECT_TRUE(button(stuck, "&Erase Counts")->isEnabled());
}

TEST_F(PrivacyPaneTest, AReportIsCopiedAndSavedButOverNothing)
{
    CrashReportSheet &report = openSheet();
    EXPECT_TRUE(QFontInfo(report.findChild<QPlainTextEdit *>()->font()).fixedPitch())
        << "columns stand below each other";
    EXPECT_FALSE(button(report, "Sen&d")) << "there is nowhere to send it to";
    button(report, "C&opy")->click();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), reportText);
    EXPECT_EQ(user.notificationTexts(), QStringList{QStringLiteral("Report copied to clipboard!")});
    button(report, "&Save…")->click();
    EXPECT_TRUE(user.errors.isEmpty()) << "it was cancelled";
    user.fileToSave = world.filePath(QStringLiteral("report.txt"));
    button(report, "&Save…")->click();
    EXPECT_TRUE(user.errors.isEmpty());
    EXPECT_EQ(read(*user.fileToSave), reportText.toUtf8());
    write(*user.fileToSave, "mine");
    button(report, "&Save…")->click();
    EXPECT_EQ(user.errors.size(), 1);
    EXPECT_EQ(read(*user.fileToSave), QByteArray("mine"));
    user.fileToSave = world.filePath(QStringLiteral("no such folder/report.txt"));
    button(report, "&Save…")->click();
    EXPECT_EQ(user.errors.size(), 2);
    EXPECT_EQ(seen, 0);
    button(report, "Close")->click();
    EXPECT_EQ(seen, 1);
}

TEST_F(PrivacyPaneTest, AReportIsSentByAClickAlone)
{
    LocalHTTPServer server;
    server.setAnswer(QStringLiteral("/reports"), LocalHTTPServer::Answer::with("text/plain", "ok"));
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    defaults.setObjectForKey(server.address(QStringLiteral("/reports")), addressKey);
    button(openSheet(), "Close")->click();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !sheet(); }));
    EXPECT_EQ(server.requests().size(), 0);
    button(openSheet(), "Sen&d")->click();
    ASSERT_TRUE(QTest::qWaitFor([this] { return user.notifications.size() == 1; }));
    EXPECT_EQ(user.notificationTexts().last(), QStringLiteral("Report sent. Thank you!"));
    ASSERT_EQ(server.requests().size(), 1);
    EXPECT_EQ(server.requests().first().body, reportText.toUtf8());
    EXPECT_EQ(seen, 2);

    ASSERT_TRUE(QTest::qWaitFor([this] { return !sheet(); }));
    defaults.setObjectForKey(server.address(QStringLiteral("/gone")), addressKey);
    button(openSheet(), "Sen&d")->click();
    ASSERT_TRUE(QTest::qWaitFor([this] { return user.notifications.size() == 2; }));
    EXPECT_TRUE(user.notificationTexts().last().startsWith(QStringLiteral("The report was not sent: ")))
        << user.notificationTexts().last().toStdString();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !sheet(); }));
    defaults.setObjectForKey(QStringLiteral("http://zelto.example/reports"), addressKey);
    EXPECT_FALSE(button(openSheet(), "Sen&d")) << "not without encryption";
}

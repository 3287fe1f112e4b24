// Starting at login and looking for new versions, as a person turns them on and off.

#include "Classes/Interface/Preferences/ServicesPane.h"
#include "Classes/Services/SoftwareUpdater.h"
#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Tests/Support/ScriptedUser.h"
#include "Tests/Support/UserWorld.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest/QTest>

#include <gtest/gtest.h>

#include <memory>

namespace {

const QString feedAddress = QStringLiteral("UpdateFeedAddress");
const QString feedKey = QStringLiteral("UpdateKey");
const QString betaKey = QStringLiteral("PartecipateToBeta");

ZQUserDefaults &defaults()
{
    return ZQUserDefaults::standardUserDefaults();
}

class ServicesPaneTest : public testing::Test
{
protected:
    ServicesPaneTest() { forget(); }
    ~ServicesPaneTest() override { forget(); }
    static void forget()
    {
        for (const QString &key : {feedAddress, feedKey, betaKey, SoftwareUpdater::checksKey}) {
            defaults().removeObjectForKey(key);
        }
    }
    void open()
    {
        pane = std::make_unique<ServicesPane>();
        pane->show();
    }
    template <class T>
    T &control(const char *text)
    {
        for (T *each : pane->findChildren<T *>()) {
            if (QString(each->text()).remove(u'&') == QLatin1StringView(text)) {
                return *each;
            }
        }
        ADD_FAILURE() << text;
        return *pane->findChild<T *>();
    }
    QCheckBox &login() { return control<QCheckBox>("Start Zelto when you log in"); }
    QString enabledUpdates()
    {
        QString result;
        for (const QAbstractButton *each : std::initializer_list<const QAbstractButton *>{
                 &control<QCheckBox>("Look for new versions once a day"),
                 &control<QCheckBox>("Take part in beta versions"), &control<QPushButton>("Check for Updates...")}) {
            result += each->isEnabled() ? u'1' : u'0';
        }
        return result;
    }
    bool says(const char *part)
    {
        for (const QLabel *label : pane->findChildren<QLabel *>()) {
            if (label->isVisible() && label->text().contains(QLatin1StringView(part))) {
                return true;
            }
        }
        return false;
    }

    UserWorld world{"services-pane"};
    ScriptedUser user;
    std::unique_ptr<ServicesPane> pane;
};

} // namespace

TEST_F(ServicesPaneTest, TheBoxOfTheLoginShowsWhatHolds)
{
    const QString folder = ZQPaths::configHome() + QStringLiteral("/autostart");
    const QString entry = folder + QStringLiteral("/org.zelto.Zelto.desktop");
    open();
    EXPECT_FALSE(login().isChecked());
    login().click();
    EXPECT_TRUE(login().isChecked());
    EXPECT_TRUE(QFile::exists(entry));
    open();
    EXPECT_TRUE(login().isChecked());
    login().click();
    open();
    EXPECT_FALSE(login().isChecked());

    ASSERT_TRUE(QDir(folder).removeRecursively());
    QFile inTheWay(folder);
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    const QSignalSpy refusals(pane.get(), &PreferencesPane::refused);
    login().click();
    EXPECT_FALSE(login().isChecked()) << "it could not be turned on";
    ASSERT_EQ(refusals.size(), 1);
    EXPECT_FALSE(refusals.first().first().value<ZQError>().localizedDescription().isEmpty());
}

TEST_F(ServicesPaneTest, WhereThereAreNoChecksNothingCanBeChosenAndTheReasonIsSaid)
{
    open();
    EXPECT_EQ(enabledUpdates(), QStringLiteral("000")) << "nobody checks";
    SoftwareUpdater updater({[this] { return &user; }, [](const QUrl &) {}, world.filePath(QStringLiteral("zelto"))});
    open();
    EXPECT_EQ(enabledUpdates(), QStringLiteral("000")) << "it is not known yet whether there are any";
    EXPECT_TRUE(QTest::qWaitFor([this] { return says("built without an address"); }));
    EXPECT_EQ(enabledUpdates(), QStringLiteral("000"));
    open();
    pane.reset(); // before the answer
    QTest::qWait(20);
}

TEST_F(ServicesPaneTest, WhereThereAreTheSwitchesWriteAndTheChannelFollows)
{
    defaults().setObjectForKey(QStringLiteral("http://127.0.0.1:1/"), feedAddress);
    defaults().setObjectForKey(QString::fromLatin1(QByteArray(32, 'k').toBase64()), feedKey);
    SoftwareUpdater updater({[this] { return &user; }, [](const QUrl &) {}, world.filePath(QStringLiteral("zelto"))});
    updater.configure(QStringLiteral("updates/release/feed.json"));
    open();
    ASSERT_TRUE(QTest::qWaitFor([this] { return enabledUpdates() == QStringLiteral("111"); }));
    control<QPushButton>("Check for Updates...").click();
    EXPECT_TRUE(QTest::qWaitFor([this] { return user.questions.size() == 1; }));
    EXPECT_EQ(user.questions.value(0).message, QStringLiteral("Zelto could not look for new versions"));
    EXPECT_FALSE(says("built without"));
    control<QCheckBox>("Look for new versions once a day").click();
    EXPECT_TRUE(defaults().boolForKey(SoftwareUpdater::checksKey));
    QCheckBox &beta = control<QCheckBox>("Take part in beta versions");
    beta.click();
    EXPECT_TRUE(defaults().boolForKey(betaKey));
    EXPECT_EQ(updater.appCastURL(), QStringLiteral("updates/beta/feed.json"));
    beta.click();
    EXPECT_EQ(updater.appCastURL(), QStringLiteral("updates/release/feed.json"));
}

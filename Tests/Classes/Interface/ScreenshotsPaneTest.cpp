// The keys of captures and where they are shown: the preferences, the window's menu, the status area.

#include "Classes/Interface/Preferences/ScreenshotsPane.h"
#include "Classes/Application/ApplicationParts.h"
#include "Classes/Application/HotKeyCommand.h"
#include "Classes/Application/PreferencesController.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Interface/Capture/CaptureActions.h"
#include "Classes/Interface/Capture/StatusIcon.h"
#include "Classes/Interface/Preferences/HotKeyField.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Tests/Support/ScriptedUser.h"

#include <QCheckBox>
#include <QHash>
#include <QLabel>
#include <QtTest/QTest>

#include <gtest/gtest.h>

#include <memory>

namespace {

const QString areaKey = HotKeyCommand::area;
const QString showKey = HotKeyCommand::showZelto;

ZQUserDefaults &defaults()
{
    return ZQUserDefaults::standardUserDefaults();
}

struct CaptureLog
{
    QStringList calls;
    QHash<QString, QString> problems;
};

class FakeCapture : public ScreenCaptureControlling
{
public:
    explicit FakeCapture(CaptureLog &log) : m_log(log) {}
    void loadView() override {}
    void snapArea() override { m_log.calls.append(QStringLiteral("area")); }
    void snapWindow() override { m_log.calls.append(QStringLiteral("window")); }
    void snapFullScreen() override { m_log.calls.append(QStringLiteral("full")); }
    void snapWebsite(const QString & /*pageURL*/, const QRect & /*frame*/) override
    {
        m_log.calls.append(QStringLiteral("web"));
    }
    QString problemOfHotKey(const QString &command) const override { return m_log.problems.value(command); }
    void setHotKeysPaused(bool paused) override
    {
        m_log.calls.append(paused ? QStringLiteral("pause") : QStringLiteral("go on"));
    }

private:
    CaptureLog &m_log;
};

class ScreenshotsPaneTest : public testing::Test
{
protected:
    void SetUp() override
    {
        forget();
        PreferencesController::registerDefaultPreferences();
        ApplicationParts parts;
        parts.userInteraction = &user;
        parts.makeZeltoKunViewController = [this] { return std::make_unique<FakeCapture>(log); };
        delegate = std::make_unique<tamberin_AppDelegate>(parts);
        delegate->openZeltoKunHelper();
        openPane();
    }
    void TearDown() override
    {
        pane.reset();
        delegate.reset();
        forget();
    }
    static void forget()
    {
        for (const HotKeyCommand &command : HotKeyCommand::all()) {
            defaults().removeObjectForKey(command.preference);
        }
        for (const char *key : {"AfterScreenshotOpenZelto", "AfterScreenshotGotToScreenshots",
                                "ScreenshotSoundAndFlash", "ShowZeltoKun"}) {
            defaults().removeObjectForKey(QLatin1StringView(key));
        }
    }
    void openPane()
    {
        pane = std::make_unique<ScreenshotsPane>(*delegate);
        pane->show();
        pane->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(pane.get()));
    }
    HotKeyField &field(const char *name)
    {
        for (HotKeyField *each : pane->findChildren<HotKeyField *>()) {
            if (each->accessibleName() == QLatin1StringView(name)) {
                return *each;
            }
        }
        ADD_FAILURE() << name;
        return *pane->findChild<HotKeyField *>();
    }
    static QString keys(const HotKeyField &field) { return field.hotKey() ? field.hotKey()->text() : QString(); }
    static QString kept(const QString &key)
    {
        const auto hotKey = HotKey::fromSetting(defaults().objectForKey(key).toMap());
        return hotKey ? hotKey->text() : QString();
    }
    QString problems() // that are seen
    {
        QStringList texts;
        for (const QLabel *label : pane->findChildren<QLabel *>(QStringLiteral("Problem"))) {
            if (label->isVisible()) {
                texts.append(label->text());
            }
        }
        return texts.join(u'|');
    }
    void record(const char *name, Qt::Key key, Qt::KeyboardModifiers modifiers)
    {
        QTest::mouseClick(&field(name), Qt::LeftButton);
        ASSERT_TRUE(field(name).isRecording());
        QTest::keyClick(&field(name), key, modifiers);
    }

    CaptureLog log;
    ScriptedUser user;
    std::unique_ptr<tamberin_AppDelegate> delegate;
    std::unique_ptr<ScreenshotsPane> pane;
};

} // namespace

TEST_F(ScreenshotsPaneTest, KeysThatArePressedAreTheNewOnes)
{
    EXPECT_EQ(keys(field("Area")), QStringLiteral("Ctrl+Super+1"));
    EXPECT_EQ(field("Show Zelto").accessibleDescription(), QStringLiteral("Ctrl+Super+4"));
    record("Area", Qt::Key_F, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_FALSE(field("Area").isRecording());
    EXPECT_EQ(keys(field("Area")), kept(areaKey));
    EXPECT_TRUE(kept(areaKey).endsWith(QStringLiteral("+F")));
    EXPECT_EQ(log.calls.join(u' '), QStringLiteral("pause go on")) << "meanwhile no capture begins";
    defaults().removeObjectForKey(areaKey);
    pane->showPreference(areaKey);
    EXPECT_EQ(keys(field("Area")), QStringLiteral("Ctrl+Super+1")) << "also when it is changed elsewhere";

    field("Window").setFocus();
    QTest::keyClick(&field("Window"), Qt::Key_Return);
    EXPECT_TRUE(field("Window").isRecording());
    QTest::keyClick(&field("Window"), Qt::Key_Backspace);
    EXPECT_EQ(kept(HotKeyCommand::window), QString());
    openPane();
    EXPECT_EQ(keys(field("Window")), QString()) << "they do not come back";
}

TEST_F(ScreenshotsPaneTest, KeysThatCannotBeTakenAreRefusedWithTheReason)
{
    record("Area", Qt::Key_A, {});
    EXPECT_TRUE(field("Area").isRecording());
    EXPECT_TRUE(problems().contains(QStringLiteral("Ctrl, Alt or Super"))) << problems().toStdString();
    QTest::keyPress(&field("Area"), Qt::Key_Control);
    QTest::keyRelease(&field("Area"), Qt::Key_Control, Qt::ControlModifier);
    EXPECT_TRUE(problems().contains(QStringLiteral("No key came with it"))) << problems().toStdString();
    QTest::keyClick(&field("Area"), Qt::Key_A, Qt::ShiftModifier);
    QTest::keyClick(&field("Area"), Qt::Key_Control, Qt::ControlModifier);
    QTest::keyClick(&field("Area"), Qt::Key_VolumeUp, Qt::ControlModifier);
    EXPECT_TRUE(problems().contains(QStringLiteral("can't be used"))) << problems().toStdString();
    EXPECT_TRUE(field("Area").isRecording());
    QTest::keyClick(&field("Area"), Qt::Key_Escape);
    EXPECT_FALSE(field("Area").isRecording());
    EXPECT_EQ(problems(), QString());
    EXPECT_EQ(kept(areaKey), QStringLiteral("Ctrl+Super+1"));

    record("Area", Qt::Key_2, Qt::ControlModifier | Qt::MetaModifier);
    EXPECT_EQ(problems(), QStringLiteral("“Window” has these keys."));
    EXPECT_EQ(kept(areaKey), QStringLiteral("Ctrl+Super+1"));
    record("Area", Qt::Key_1, Qt::ControlModifier | Qt::MetaModifier);
    EXPECT_EQ(problems(), QString()) << "its own are no others";
}

TEST_F(ScreenshotsPaneTest, WhatKeepsKeysFromWorkingIsSaidBelowThem)
{
    EXPECT_EQ(problems(), QString());
    const QString taken = QStringLiteral("The desktop uses these keys.");
    log.problems.insert(showKey, taken);
    ZQNotificationCenter::defaultCenter().postNotification(HotKeyRegistering::stateDidChange);
    EXPECT_EQ(problems(), taken);
    QTest::mouseClick(&field("Show Zelto"), Qt::LeftButton);
    EXPECT_EQ(problems(), QString()) << "others are being chosen";
    field("Area").setFocus();
    EXPECT_FALSE(field("Show Zelto").isRecording());
    EXPECT_EQ(problems(), taken);
    QTest::keyClick(&field("Show Zelto"), Qt::Key_Backspace);
    EXPECT_EQ(problems(), QString()) << "no keys, no problem";
    QTest::mouseClick(&field("Area"), Qt::LeftButton);
    log.calls.clear();
    pane.reset();
    EXPECT_EQ(log.calls.join(u' '), QStringLiteral("go on")) << "whatever ends the recording";
}

TEST_F(ScreenshotsPaneTest, EachSwitchIsOneSettingAndOnAtFirst)
{
    for (const auto &[text, key] : {std::pair("Bring Zelto forward", "AfterScreenshotOpenZelto"),
                                    std::pair("Show Screenshots in the sidebar", "AfterScreenshotGotToScreenshots"),
                                    std::pair("Play a sound and flash the screen", "ScreenshotSoundAndFlash"),
                                    std::pair("Show the status icon", "ShowZeltoKun")}) {
        bool isFound = false;
        for (QCheckBox *box : pane->findChildren<QCheckBox *>()) {
            if (QString(box->text()).remove(u'&') == QLatin1StringView(text)) {
                isFound = true;
                EXPECT_TRUE(box->isChecked());
                box->click();
                EXPECT_FALSE(defaults().boolForKey(QLatin1StringView(key)));
            }
        }
        EXPECT_TRUE(isFound) << text;
    }
}

TEST_F(ScreenshotsPaneTest, MenusHaveTheCapturesWithTheirKeysAndTakeThem)
{
    const StatusIcon icon(*delegate);
    EXPECT_FALSE(icon.isShown()) << "here is no status area";
    const auto texts = [&icon] {
        QStringList lines;
        for (const QAction *entry : icon.menu().actions()) {
            lines.append(entry->isEnabled() ? entry->text() : u'(' + entry->text() + u')');
        }
        return lines.join(u'|');
    };
    EXPECT_EQ(texts(), QStringLiteral("Capture Area\tCtrl+Super+1|Capture Window\tCtrl+Super+2|"
                                      "Capture Whole Screen\tCtrl+Super+3|Capture Web Page…||"
                                      "Open Zelto\tCtrl+Super+4||Quit"));
    const QList<WindowCommand> commands = CaptureActions::commands(*delegate);
    EXPECT_EQ(commands.value(1).shown(), QStringLiteral("Window\tCtrl+Super+2"));
    for (const WindowCommand &command : commands) {
        EXPECT_TRUE(command.isEnabled());
        command.run();
    }
    EXPECT_TRUE(log.calls.isEmpty()) << "the menu is still on the screen";
    EXPECT_TRUE(QTest::qWaitFor([this] { return log.calls.size() == 4; }));
    EXPECT_EQ(log.calls.join(u' '), QStringLiteral("area window full web"));
    icon.menu().actions().value(0)->trigger();
    EXPECT_TRUE(QTest::qWaitFor([this] { return log.calls.size() == 5; }));

    defaults().setObjectForKey(QVariantMap(), areaKey);
    delegate->quitZeltoKunHelper();
    EXPECT_TRUE(QTest::qWaitFor([&] { return texts().startsWith(QStringLiteral("(Capture Area)|")); }));
    EXPECT_EQ(commands.value(0).shown(), QStringLiteral("Area"));
    EXPECT_FALSE(commands.value(0).isEnabled());
}

#include "Classes/Application/HotKeyCommand.h"
#include "Classes/Services/HotKey.h"
#include "Classes/Services/PortalHotKeys.h"
#include "Classes/Services/XHotKeys.h"
#include "Kit/Desktop/ZQKeyboardHold.h"
#include "Kit/Desktop/ZQPortal.h"
#include "Tests/Classes/Capture/MockPortal.h"
#include "Tests/Classes/Capture/XDesktop.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QProcess>
#include <QScopeGuard>

#include <gtest/gtest.h>

namespace {

const QString area = HotKeyCommand::area;
const QString window = HotKeyCommand::window;

QVariantMap setting(quint32 code, quint32 flags = HotKey::command | HotKey::option)
{
    return HotKey{code, flags}.setting();
}

TEST(HotKeyTest, IsOneTableForSettingsKeysAndTexts)
{
    const struct
    {
        quint32 code;
        quint32 flags;
        int key;
        Qt::KeyboardModifiers modifiers;
        const char *text;
        const char *trigger;
    } cases[] = {
        {18, 1572864, Qt::Key_1, Qt::ControlModifier | Qt::MetaModifier, "Ctrl+Super+1", "CTRL+LOGO+1"},
        {21, 1572864, Qt::Key_4, Qt::ControlModifier | Qt::MetaModifier, "Ctrl+Super+4", "CTRL+LOGO+4"},
        {1, 0x160000, Qt::Key_S, Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier, "Ctrl+Alt+Shift+S",
         "CTRL+ALT+SHIFT+s"},
        {122, 0, Qt::Key_F1, Qt::NoModifier, "F1", "F1"},
        {27, 0x100000, Qt::Key_Minus, Qt::ControlModifier, "Ctrl+-", "CTRL+minus"},
        {256, 0x20000, Qt::Key_Print, Qt::ShiftModifier, "Shift+Print", "SHIFT+Print"},
    };
    for (const auto &each : cases) {
        const auto key = HotKey::fromSetting(setting(each.code, each.flags));
        ASSERT_TRUE(key) << each.text;
        EXPECT_EQ(key, HotKey::fromQt(each.key, each.modifiers));
        EXPECT_EQ(key->text().toStdString(), each.text);
        EXPECT_EQ(key->portalTrigger().toStdString(), each.trigger);
        EXPECT_EQ(HotKey::fromSetting(key->setting()), key);
    }
    const QVariantMap refused[] = {
        {}, setting(18, 0), setting(0, HotKey::shift), setting(9999), {{QStringLiteral("code"), QStringLiteral("x")}}};
    for (const QVariantMap &each : refused) {
        EXPECT_FALSE(HotKey::fromSetting(each));
    }
    EXPECT_FALSE(HotKey::fromQt(Qt::Key_Control, Qt::ControlModifier));
    // Shift makes another sign of a digit: on this keyboard, and on another one.
    constexpr quint32 keyOfTwo = 11;
    const Qt::KeyboardModifiers held = Qt::ControlModifier | Qt::ShiftModifier;
    EXPECT_EQ(HotKey::fromQt(Qt::Key_At, held, keyOfTwo)->code, 19U);
    EXPECT_EQ(HotKey::fromQt(Qt::Key_QuoteDbl, held, keyOfTwo)->code, 19U);
}

class XHotKeysTest : public testing::Test
{
protected:
    XHotKeysTest() : keys(ZQXConnection::open()) {}
    static void press(const QStringList &arguments)
    {
        EXPECT_EQ(QProcess::execute(QStringLiteral("xdotool"), arguments), 0);
    }
    // All keys pressed before have arrived once this one has.
    void settle()
    {
        const int before = marks;
        press({QStringLiteral("key"), QStringLiteral("ctrl+super+9")});
        EXPECT_TRUE(XDesktop::waitUntil([&] { return marks > before; }));
    }
    void SetUp() override
    {
        ASSERT_EQ(keys.registerHotKey(QStringLiteral("mark"), setting(25), [this] { ++marks; }), QString());
        ASSERT_EQ(keys.registerHotKey(area, setting(18), [this] { ++count; }), QString());
    }

    XHotKeys keys;
    int count = 0;
    int marks = 0;
};

TEST_F(XHotKeysTest, RunOnceWhateverLocksAreOn)
{
    const QString combination = QStringLiteral("ctrl+super+1");
    const QStringList locks[] = {{}, {QStringLiteral("Num_Lock")}, {QStringLiteral("Caps_Lock")}};
    int expected = 0;
    for (const QStringList &lock : locks) { // each beside those before it
        if (!lock.isEmpty()) {
            press(QStringList{QStringLiteral("key")} + lock);
        }
        press({QStringLiteral("key"), combination});
        settle();
        EXPECT_EQ(count, ++expected) << lock.join(u' ').toStdString();
    }
    press({QStringLiteral("key"), QStringLiteral("Num_Lock"), QStringLiteral("Caps_Lock")});
    // Held so long that the display repeats it.
    press({QStringLiteral("keydown"), QStringLiteral("ctrl"), QStringLiteral("keydown"), QStringLiteral("super"),
           QStringLiteral("keydown"), QStringLiteral("1"), QStringLiteral("sleep"), QStringLiteral("1.2"),
           QStringLiteral("keyup"), QStringLiteral("1"), QStringLiteral("keyup"), QStringLiteral("super"),
           QStringLiteral("keyup"), QStringLiteral("ctrl")});
    settle();
    EXPECT_EQ(count, ++expected);
    for (const char *other : {"1", "ctrl+1", "super+1", "ctrl+super+shift+1"}) {
        press({QStringLiteral("key"), QString::fromLatin1(other)});
    }
    settle();
    EXPECT_EQ(count, expected);
}

TEST(KeyboardHoldTest, KeepsTheKeyboardFromOthersUntilItsEndAndNotLongerThanItsLimit)
{
    const auto other = ZQXConnection::open();
    ASSERT_TRUE(other);
    const auto isFree = [&other] {
        const auto cookie = xcb_grab_keyboard(other->get(), 0, other->root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                                              XCB_GRAB_MODE_ASYNC);
        const ZQXReply<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(other->get(), cookie, nullptr));
        const bool isGranted = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
        other->wasDone(xcb_ungrab_keyboard_checked(other->get(), XCB_CURRENT_TIME));
        return isGranted;
    };
    {
        const ZQKeyboardHold hold(std::chrono::minutes(5));
        EXPECT_TRUE(XDesktop::waitUntil([&] { return !isFree(); }));
    }
    EXPECT_TRUE(isFree());
    const ZQKeyboardHold forgotten(std::chrono::seconds(2));
    EXPECT_TRUE(XDesktop::waitUntil([&] { return !isFree(); }));
    EXPECT_TRUE(XDesktop::waitUntil(isFree));
}

TEST_F(XHotKeysTest, SayWhoHasTheKeysAndTakeThemOnceTheyAreFree)
{
    XHotKeys others(ZQXConnection::open());
    EXPECT_TRUE(others.registerHotKey(area, setting(18), {}).contains(QStringLiteral("another program")));
    EXPECT_EQ(others.problemOfHotKey(area), others.registerHotKey(area, setting(18), {}));
    int second = 0;
    EXPECT_TRUE(keys.registerHotKey(window, setting(18), [&second] { ++second; }).contains(QStringLiteral("in Zelto")));
    EXPECT_FALSE(keys.registerHotKey(QStringLiteral("bare"), setting(18, 0), {}).isEmpty());
    // The first moves away: the second has them.
    EXPECT_EQ(keys.registerHotKey(area, setting(19), [this] { ++count; }), QString());
    EXPECT_EQ(keys.problemOfHotKey(window), QString());
    press({QStringLiteral("key"), QStringLiteral("ctrl+super+1")});
    settle();
    EXPECT_EQ(second, 1);
    EXPECT_EQ(count, 0);
    // Given up, they are anybody's.
    EXPECT_EQ(keys.registerHotKey(window, {}, {}), QString());
    EXPECT_EQ(others.registerHotKey(area, setting(18), {}), QString());
}

TEST_F(XHotKeysTest, FollowTheLayoutOfTheKeyboard)
{
    const auto setLayout = [](const char *name) {
        return QProcess::execute(QStringLiteral("setxkbmap"), {QString::fromLatin1(name)});
    };
    ASSERT_EQ(setLayout("de"), 0);
    const auto restored = qScopeGuard([&] { setLayout("us"); });
    ASSERT_EQ(keys.registerHotKey(area, setting(6), [this] { ++count; }), QString()); // Z, where Y was
    ASSERT_EQ(setLayout("us"), 0);
    EXPECT_TRUE(XDesktop::waitUntil([&] {
        press({QStringLiteral("key"), QStringLiteral("ctrl+super+z")});
        return count > 0;
    }));
}

class PortalHotKeysTest : public testing::Test
{
protected:
    PortalHotKeysTest()
    {
        portal.answer = [this](const QString &method, const QVariantList &arguments) {
            if (method == QStringLiteral("CreateSession")) {
                return MockPortal::Answer{0, {{QStringLiteral("session_handle"), session}}};
            }
            const QDBusArgument shortcuts = arguments.at(1).value<QDBusArgument>();
            bound.clear();
            shortcuts.beginArray();
            while (!shortcuts.atEnd()) {
                QString id;
                QVariantMap properties;
                shortcuts.beginStructure();
                shortcuts >> id >> properties;
                shortcuts.endStructure();
                bound.insert(id, properties.value(QStringLiteral("preferred_trigger")).toString());
            }
            shortcuts.endArray();
            return MockPortal::Answer{bindResponse, {{QStringLiteral("shortcuts"), arguments.at(1)}}};
        };
    }

    const QString session = QStringLiteral("/org/freedesktop/portal/desktop/session/1/zelto");
    MockPortal portal;
    QMap<QString, QString> bound;
    uint bindResponse = 0;
};

TEST_F(PortalHotKeysTest, AreAskedForTogetherAndRunWhatTheyAreFor)
{
    PortalHotKeys keys;
    int count = 0;
    keys.registerHotKey(area, setting(18), [&count] { ++count; });
    keys.registerHotKey(window, setting(19), {});
    ASSERT_TRUE(XDesktop::waitUntil([&] { return !bound.isEmpty(); }));
    EXPECT_EQ(bound,
              (QMap<QString, QString>{{area, QStringLiteral("CTRL+LOGO+1")}, {window, QStringLiteral("CTRL+LOGO+2")}}));
    EXPECT_TRUE(XDesktop::waitUntil([&] { return keys.problemOfHotKey(area).isEmpty(); }));
    const auto activate = [this](const QString &of) {
        portal.emitSignal(QStringLiteral("org.freedesktop.portal.GlobalShortcuts"), QStringLiteral("Activated"),
                          {QVariant::fromValue(QDBusObjectPath(of)), area, qulonglong(1), QVariantMap()});
    };
    activate(session + u'x'); // another program's
    activate(session);
    EXPECT_TRUE(XDesktop::waitUntil([&] { return count > 0; }));
    EXPECT_EQ(count, 1);
}

TEST_F(PortalHotKeysTest, SayWhatToDoWhereTheDesktopGivesNone)
{
    PortalHotKeys keys;
    bindResponse = 1;
    keys.registerHotKey(area, setting(18), {});
    EXPECT_TRUE(XDesktop::waitUntil([&] { return !keys.problemOfHotKey(area).isEmpty(); }));
    portal.leave();
    keys.registerHotKey(area, setting(18), {});
    EXPECT_TRUE(
        XDesktop::waitUntil([&] { return keys.problemOfHotKey(area).contains(QStringLiteral("zelto snap area")); }));
}

} // namespace

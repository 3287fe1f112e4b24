// A colour to search, chosen by keys alone.

#include "Classes/Interface/Browser/ColorWheel.h"
#include "Classes/Interface/Browser/ColorWheelMenu.h"

#include <QLineEdit>
#include <QSlider>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <gtest/gtest.h>

TEST(ColorWheel, ArrowKeysTurnTheHueAndFillTheColor)
{
    ColorWheel wheel;
    wheel.setColor(QColor::fromHsv(2, 100, 200));
    QSignalSpy changed(&wheel, &ColorWheel::changed);
    struct Press
    {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        int hue, fullness;
    };
    for (const Press &each : {Press{Qt::Key_Right, {}, 357, 100},
                              {Qt::Key_Left, {}, 2, 100},
                              {Qt::Key_Left, Qt::ShiftModifier, 3, 100},
                              {Qt::Key_Up, {}, 3, 112},
                              {Qt::Key_Down, Qt::ShiftModifier, 3, 111}}) {
        QTest::keyClick(&wheel, each.key, each.modifiers);
        EXPECT_EQ(wheel.color(), QColor::fromHsv(each.hue, each.fullness, 200)) << int(each.key);
    }
    EXPECT_EQ(changed.size(), 5);
    wheel.setAccessibleNumber(120);
    EXPECT_EQ(wheel.color().hsvHue(), 120);
    EXPECT_EQ(wheel.accessibleNumberText(), wheel.color().name());
}

TEST(ColorWheel, AColorIsTypedAsANumberOrAName)
{
    ColorWheelMenu menu;
    auto *field = menu.findChild<QLineEdit *>();
    const auto *wheel = menu.findChild<ColorWheel *>();
    ASSERT_TRUE(field && wheel);
    EXPECT_EQ(field->text(), wheel->color().name());
    QSignalSpy chosen(&menu, &ColorWheelMenu::chosen);
    const auto type = [&](const char *text) {
        chosen.clear();
        field->clear();
        QTest::keyClicks(field, QLatin1StringView(text));
        const bool isChosen = QTest::qWaitFor([&] { return !chosen.isEmpty(); }, 400);
        return isChosen ? chosen.last().first().toString().toStdString() : std::string();
    };
    EXPECT_EQ(type("#1c2d3e"), "#color #1c2d3e") << "as it was typed, whatever the wheel makes of it";
    EXPECT_NEAR(wheel->color().hsvHue(), QColor(0x1c2d3e).hsvHue(), 1);
    EXPECT_EQ(type("3366cc"), "#color #3366cc");
    EXPECT_EQ(type("Red"), "#color #e03131");
    EXPECT_EQ(type("#12"), "") << "that is none yet";
    EXPECT_EQ(type("nonsense"), "");
    const QColor before = wheel->color();
    chosen.clear();
    QTest::keyClick(menu.findChild<ColorWheel *>(), Qt::Key_Left);
    EXPECT_NE(wheel->color(), before);
    EXPECT_EQ(field->text(), wheel->color().name());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !chosen.isEmpty(); }, 20000));
    EXPECT_EQ(chosen.last().first().toString(), QStringLiteral("#color ") + wheel->color().name());
}

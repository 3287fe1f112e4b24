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
        field->clear();
        QTest::keyClicks(field, QLatin1StringView(text));
    };
    // On the way to it, others may have been searched.
    const auto isSearched = [&](const QString &token) {
        return QTest::qWaitFor([&] { return !chosen.isEmpty() && chosen.last().first() == token; }, 20000);
    };
    type("#1c2d3e");
    EXPECT_TRUE(isSearched(QStringLiteral("#color #1c2d3e"))) << "as it was typed, whatever the wheel makes of it";
    EXPECT_NEAR(wheel->color().hsvHue(), QColor(0x1c2d3e).hsvHue(), 1);
    type("3366cc");
    EXPECT_TRUE(isSearched(QStringLiteral("#color #3366cc")));
    type("Red");
    EXPECT_TRUE(isSearched(QStringLiteral("#color #e03131")));
    const QColor red = wheel->color();
    for (const char *none : {"#12", "7", "nonsense"}) {
        type(none);
        EXPECT_EQ(wheel->color(), red) << none;
    }
    const QColor before = wheel->color();
    QTest::keyClick(menu.findChild<ColorWheel *>(), Qt::Key_Left);
    EXPECT_NE(wheel->color(), before);
    EXPECT_EQ(field->text(), wheel->color().name());
    EXPECT_TRUE(isSearched(QStringLiteral("#color ") + wheel->color().name()));
}

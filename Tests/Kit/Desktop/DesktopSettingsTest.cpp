#include "Kit/Desktop/ZQDesktopSettings.h"

#include <gtest/gtest.h>

TEST(ZQDesktopSettings, TakesWhatEachDesktopSaysAndNothingElse)
{
    const struct
    {
        const char *space;
        const char *key;
        QVariant value;
        bool reducesMotion;
        bool hasHighContrast;
    } cases[] = {
        {"org.freedesktop.appearance", "contrast", 1U, false, true},
        {"org.freedesktop.appearance", "contrast", 0U, false, false},
        {"org.freedesktop.appearance", "contrast", QStringLiteral("1"), false, false},
        {"org.freedesktop.appearance", "contrast", 2U, false, false},
        {"org.freedesktop.appearance", "reduced-motion", 1U, true, false},
        {"org.gnome.desktop.interface", "enable-animations", false, true, false},
        {"org.gnome.desktop.interface", "enable-animations", true, false, false},
        {"org.gnome.desktop.interface", "enable-animations", QVariant(), false, false},
        {"org.gnome.desktop.a11y.interface", "high-contrast", true, false, true},
        {"org.kde.kdeglobals.KDE", "AnimationDurationFactor", QStringLiteral("0"), true, false},
        {"org.kde.kdeglobals.KDE", "AnimationDurationFactor", QStringLiteral("0.5"), false, false},
        {"org.kde.kdeglobals.KDE", "AnimationDurationFactor", QStringLiteral("none"), false, false},
        {"org.example", "contrast", 1U, false, false},
    };
    for (const auto &each : cases) {
        const auto wishes =
            ZQDesktopSettings::wishesIn({{QLatin1StringView(each.space), {{QLatin1StringView(each.key), each.value}}}});
        EXPECT_EQ(wishes.reducesMotion, each.reducesMotion) << each.key << ' ' << each.value.toString().toStdString();
        EXPECT_EQ(wishes.hasHighContrast, each.hasHighContrast) << each.key;
    }
    const auto both = ZQDesktopSettings::wishesIn(
        {{QStringLiteral("org.freedesktop.appearance"), {{QStringLiteral("contrast"), 1U}}},
         {QStringLiteral("org.gnome.desktop.interface"), {{QStringLiteral("enable-animations"), false}}}});
    EXPECT_TRUE(both.reducesMotion && both.hasHighContrast);
}

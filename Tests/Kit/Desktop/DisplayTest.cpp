#include "Kit/Desktop/ZQDisplay.h"

#include <QScopeGuard>

#include <gtest/gtest.h>

TEST(DisplayTest, TheEnvironmentTellsAWaylandDesktopBehindAnXDisplay)
{
    const bool wasSet = qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
    const QByteArray before = qgetenv("WAYLAND_DISPLAY");
    const auto restored =
        qScopeGuard([&] { wasSet ? qputenv("WAYLAND_DISPLAY", before) : qunsetenv("WAYLAND_DISPLAY"); });
    const struct
    {
        const char *platform;
        const char *waylandDisplay; // null: not set
        ZQDisplay::Kind kind;
    } cases[] = {
        {"xcb", nullptr, ZQDisplay::Kind::X},
        {"xcb", "", ZQDisplay::Kind::X},
        {"xcb", "wayland-0", ZQDisplay::Kind::Wayland},
        {"wayland", "wayland-0", ZQDisplay::Kind::Wayland},
        {"wayland-egl", nullptr, ZQDisplay::Kind::Wayland},
        {"offscreen", nullptr, ZQDisplay::Kind::None},
        {"offscreen", "wayland-0", ZQDisplay::Kind::None},
        {"minimal", "", ZQDisplay::Kind::None},
        {"", nullptr, ZQDisplay::Kind::None},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(testing::Message() << each.platform << " with "
                                        << (each.waylandDisplay ? each.waylandDisplay : "-"));
        each.waylandDisplay ? qputenv("WAYLAND_DISPLAY", each.waylandDisplay) : qunsetenv("WAYLAND_DISPLAY");
        EXPECT_EQ(ZQDisplay::kindOf(QLatin1StringView(each.platform)), each.kind);
    }
}

#include "Kit/Widgets/ZQWindowPlace.h"

#include <gtest/gtest.h>

TEST(WindowPlace, AWindowLiesWholeInItsRoomAndOneThatDoesIsLeftAlone)
{
    const QRect room(100, 50, 1280, 900);
    const struct
    {
        QRect window;
        QRect expected;
    } cases[] = {
        {{200, 100, 800, 600}, {200, 100, 800, 600}},  {{260, 173, 1280, 800}, {100, 150, 1280, 800}},
        {{0, 0, 800, 600}, {100, 50, 800, 600}},       {{5000, -300, 2000, 1500}, {100, 50, 1280, 900}},
        {{1300, 800, 800, 600}, {580, 350, 800, 600}}, {{100, 50, 1280, 900}, {100, 50, 1280, 900}},
    };
    for (const auto &each : cases) {
        EXPECT_EQ(zqRectWithin(each.window, room), each.expected) << each.window.x() << ' ' << each.window.y();
    }
}

#include "Kit/Widgets/ZQWindowPlace.h"

#include <QScreen>
#include <QWidget>

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

TEST(WindowPlace, WhatDropsDownBeginsWhereReadingDoesAndStaysOnTheScreen)
{
    QWidget window;
    window.setGeometry(200, 100, 400, 300);
    QWidget anchor(&window);
    anchor.setGeometry(100, 20, 60, 20); // on the screen from 300 to 359, and down to 139
    QWidget popUp(nullptr, Qt::Popup);
    popUp.resize(100, 50);
    const QRect screen = window.screen()->availableGeometry();
    const struct
    {
        Qt::LayoutDirection direction;
        QPoint window;
        QPoint expected;
    } cases[] = {
        {Qt::LeftToRight, {200, 100}, {300, 142}},
        {Qt::RightToLeft, {200, 100}, {260, 142}},
        {Qt::LeftToRight, {screen.right() - 120, 100}, {screen.right() + 1 - 100, 142}},
        {Qt::RightToLeft, {-90, 100}, {0, 142}},
        {Qt::LeftToRight, {200, screen.bottom() - 50}, {300, screen.bottom() + 1 - 50}},
    };
    for (const auto &each : cases) {
        window.move(each.window);
        popUp.setLayoutDirection(each.direction);
        zqMoveBelow(popUp, anchor);
        EXPECT_EQ(popUp.pos(), each.expected) << each.window.x() << ' ' << each.window.y() << ' ' << each.direction;
    }
}

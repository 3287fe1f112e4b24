#include "Kit/Imaging/ZQPictureDifference.h"

#include <gtest/gtest.h>

TEST(ZQPictureDifference, ShowsWhereAndHowMuchTwoPicturesDiffer)
{
    QImage first(4, 2, QImage::Format_RGBA8888);
    first.fill(QColor(100, 100, 100));
    QImage second = first.convertToFormat(QImage::Format_RGB32); // the format does not matter
    second.setPixelColor(1, 0, QColor(100, 120, 100));
    second.setPixelColor(3, 1, QColor(60, 100, 100));
    const ZQPictureDifference difference = ZQPictureDifference::of(first, second);
    EXPECT_EQ(difference.greatest, 40);
    EXPECT_DOUBLE_EQ(difference.share, 2.0 / 8);
    EXPECT_EQ(qGray(difference.image.pixel(3, 1)), 255) << "the greatest is white";
    EXPECT_EQ(qGray(difference.image.pixel(1, 0)), 127);
    EXPECT_EQ(qGray(difference.image.pixel(0, 0)), 0);
}

TEST(ZQPictureDifference, WhatCannotBeSeenIsEqual)
{
    QImage first(2, 1, QImage::Format_RGBA8888);
    first.fill(QColor(255, 0, 0, 0));
    QImage second = first;
    second.fill(QColor(0, 255, 0, 0));
    EXPECT_EQ(ZQPictureDifference::of(first, second).greatest, 0);
    second.setPixelColor(0, 0, QColor(255, 0, 0, 255));
    EXPECT_EQ(ZQPictureDifference::of(first, second).greatest, 255) << "and transparent is not opaque";
}

TEST(ZQPictureDifference, NothingOfTwoSizesAndOfNothing)
{
    const QImage one(2, 1, QImage::Format_RGB32);
    EXPECT_TRUE(ZQPictureDifference::of(one, QImage(1, 2, QImage::Format_RGB32)).isNull());
    EXPECT_TRUE(ZQPictureDifference::of(QImage(), QImage()).isNull());
}

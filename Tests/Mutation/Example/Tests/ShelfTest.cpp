#include "Kit/Shelf/Shelf.h"

#include <gtest/gtest.h>

TEST(Shelf, KeepsWhatFits)
{
    Shelf shelf;
    EXPECT_FALSE(shelf.put(-2));
    EXPECT_TRUE(shelf.put(0));
    EXPECT_EQ(shelf.lowest(), 0);
    EXPECT_TRUE(shelf.putTwice(5));
    EXPECT_FALSE(shelf.put(5));
    EXPECT_EQ(shelf.books(), (std::vector{0, 5, 5}));
    EXPECT_TRUE(shelf.isWide());
}

TEST(Shelf, KnowsTheLowest)
{
    Shelf shelf;
    EXPECT_EQ(shelf.lowest(), 0);
    shelf.put(7);
    shelf.put(3);
    EXPECT_EQ(shelf.lowest(), 3);
    EXPECT_TRUE(shelf.isWide());
    EXPECT_FALSE(shelf.putTwice(-1));
}

TEST(Shelf, TidiesBeforeItAdds)
{
    Shelf shelf;
    shelf.put(7);
    shelf.put(3);
    shelf.tidy();
    EXPECT_EQ(shelf.books(), (std::vector{3, 7, 0}));
}

TEST(Shelf, IsNarrowAtFirst)
{
    EXPECT_FALSE(Shelf().isWide());
}

#include "Kit/Shelf/Shelf.h"

#include <gtest/gtest.h>

namespace {
std::string doings;
}

void sendKeys()
{
    doings += "keys sent, ";
}

void closeDoor()
{
    doings += "door closed";
}

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
    EXPECT_EQ(Shelf().widthWith(3), 1);
}

TEST(Shelf, IsLabelled)
{
    Shelf shelf;
    shelf.put(7);
    std::map<std::string, int> labels;
    std::string text;
    shelf.label(labels, text);
    EXPECT_EQ(labels, (std::map<std::string, int>{{"books", 1}, {"lowest", 7}}));
    EXPECT_EQ(text, "shelf of books");
}

TEST(Shelf, IsLeftBeforeTheDoorIsClosed)
{
    Shelf shelf;
    doings.clear();
    shelf.leave();
    EXPECT_EQ(doings, "keys sent, door closed");
    EXPECT_EQ(shelf.lendingCount(), 0u);
}

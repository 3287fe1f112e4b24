#include "Kit/Foundation/ZQIndexSet.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

TEST(ZQIndexSet, BehavesAsASetOfNumbersUnderRandomChanges)
{
    std::mt19937 random(7);
    const auto number = [&random](int limit) { return qint64(random() % unsigned(limit)); };
    ZQIndexSet set;
    std::set<qint64> reference;
    for (int step = 0; step < 4000; ++step) {
        const qint64 first = number(120);
        const qint64 last = first + number(12) - 1;
        switch (number(4)) {
        case 0:
            set.insert(first, last);
            for (qint64 i = first; i <= last; ++i) {
                reference.insert(i);
            }
            break;
        case 1:
            set.remove(first, last);
            for (qint64 i = first; i <= last; ++i) {
                reference.erase(i);
            }
            break;
        case 2:
            set.toggle(first);
            if (reference.erase(first) == 0) {
                reference.insert(first);
            }
            break;
        default:
            set.toggle(ZQIndexSet(first, last));
            for (qint64 i = first; i <= last; ++i) {
                if (reference.erase(i) == 0) {
                    reference.insert(i);
                }
            }
        }
        ASSERT_EQ(set.count(), qint64(reference.size())) << "step " << step;
        ASSERT_EQ(set.indexes(), QList<qint64>(reference.begin(), reference.end())) << "step " << step;
        ASSERT_EQ(set.contains(first), reference.contains(first));
        for (qsizetype i = 1; i < set.ranges().size(); ++i) {
            ASSERT_GT(set.ranges()[i].first, set.ranges()[i - 1].last + 1) << "neighbours are one range";
        }
    }
}

TEST(ZQIndexSet, EverythingOfAMillionIsOneRange)
{
    ZQIndexSet set(0, 999999);
    set.remove(500000);
    set.insert(500000);
    EXPECT_EQ(set.ranges().size(), 1);
    EXPECT_EQ(set.count(), 1000000);
    EXPECT_EQ(set.indexes(3), (QList<qint64>{0, 1, 2}));
}

#include "Kit/Foundation/ZQPages.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/mman.h>

TEST(ZQPages, GiveLargeArraysBackToTheSystemAtOnce)
{
    constexpr size_t large = size_t(1) << 20;
    auto *memory = static_cast<char *>(zqTakeMemory(large));
    memory[0] = memory[large - 1] = 'x';
    EXPECT_EQ(msync(memory, large, MS_ASYNC), 0) << "pages of its own";
    zqReturnMemory(memory, large);
    EXPECT_EQ(msync(memory, large, MS_ASYNC), -1);
    EXPECT_EQ(errno, ENOMEM) << "nothing is there any more";
    EXPECT_THROW(ZQPagedVector<long>().reserve(ZQPagedVector<long>().max_size()), std::bad_alloc);
}

TEST(ZQPages, KeepWhatArraysHoldWhileTheyGrowAndShrink)
{
    ZQPagedVector<int> numbers;
    for (int i = 0; i < 100000; ++i) { // from the heap to pages
        numbers.push_back(i);
    }
    zqShrink(numbers);
    EXPECT_LE(numbers.capacity(), numbers.size() + numbers.size() / 8);
    for (int i = 0; i < 100000; ++i) {
        ASSERT_EQ(numbers[size_t(i)], i);
    }
    numbers.resize(10); // and back
    zqShrink(numbers);
    EXPECT_EQ(numbers.capacity(), 10U);
    EXPECT_EQ(numbers.back(), 9);
}

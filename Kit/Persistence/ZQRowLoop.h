#pragma once

#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Persistence/ZQRowSet.h"

// Marks those of `among` of which `test(row)` is true. False when the thread's ZQCancellation was cancelled.
template <class Test>
bool zqMarkWhere(const ZQRowSet &among, ZQRowSet &found, const Test &test)
{
    constexpr size_t wordsBetweenLooks = 1024;
    for (size_t i = 0; i < among.words().size(); ++i) {
        if (i % wordsBetweenLooks == 0 && ZQCancellation::isCurrentCancelled()) {
            return false;
        }
        quint64 word = among.words()[i];
        quint64 marked = 0;
        if (word == ~quint64(0)) { // without branches, so that the compiler does several rows at once
            for (size_t bit = 0; bit < 64; ++bit) {
                marked |= quint64(test(64 * i + bit)) << bit;
            }
        } else {
            for (; word; word &= word - 1) {
                const auto bit = size_t(std::countr_zero(word));
                marked |= quint64(test(64 * i + bit)) << bit;
            }
        }
        found.words()[i] |= marked;
    }
    return true;
}

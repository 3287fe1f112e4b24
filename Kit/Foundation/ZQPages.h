#pragma once

#include <cstddef>
#include <limits>
#include <new>
#include <string>
#include <vector>

// Memory for arrays that may be large: what is large comes straight from the system, and goes back to it when it is
// freed. The heap would keep it, between pieces that are still in use, and what a library takes is measured in such
// arrays. Pages that are not written to take no memory, so that reserving too much costs little.
//
// All functions may be called from any thread.

void *zqTakeMemory(size_t bytes); // throws std::bad_alloc
void zqReturnMemory(void *memory, size_t bytes);

template <class T>
class ZQPageAllocator
{
public:
    using value_type = T;

    ZQPageAllocator() = default;
    template <class Other>
    ZQPageAllocator(const ZQPageAllocator<Other> &)
    {
    }

    T *allocate(size_t count)
    {
        if (count > std::numeric_limits<size_t>::max() / sizeof(T)) {
            throw std::bad_array_new_length();
        }
        return static_cast<T *>(zqTakeMemory(count * sizeof(T)));
    }
    void deallocate(T *memory, size_t count) { zqReturnMemory(memory, count * sizeof(T)); }

    template <class Other>
    friend bool operator==(const ZQPageAllocator &, const ZQPageAllocator<Other> &)
    {
        return true;
    }
};

template <class T>
using ZQPagedVector = std::vector<T, ZQPageAllocator<T>>;
using ZQPagedString = std::basic_string<char, std::char_traits<char>, ZQPageAllocator<char>>;

// Gives back room for growing, where that is worth the copy.
template <class Array>
void zqShrink(Array &array)
{
    if (array.capacity() - array.size() > array.size() / 8) {
        array.shrink_to_fit();
    }
}

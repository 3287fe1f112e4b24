#include "Kit/Foundation/ZQPages.h"

#include <sys/mman.h>

namespace {

constexpr size_t leastLarge = size_t(64) << 10;
constexpr size_t leastHuge = size_t(4) << 20; // from here on in pages of two megabytes, of which a few are quickly had

} // namespace

void *zqTakeMemory(size_t bytes)
{
    if (bytes < leastLarge) {
        return ::operator new(bytes);
    }
    void *memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        throw std::bad_alloc();
    }
    if (bytes >= leastHuge) {
        madvise(memory, bytes, MADV_HUGEPAGE); // where the system has none, small ones do
    }
    return memory;
}

void zqReturnMemory(void *memory, size_t bytes)
{
    if (bytes < leastLarge) {
        ::operator delete(memory);
    } else {
        munmap(memory, bytes);
    }
}

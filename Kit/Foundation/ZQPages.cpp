#include "Kit/Foundation/ZQPages.h"

#include <sys/mman.h>

namespace {

constexpr size_t leastLarge = size_t(64) << 10;

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

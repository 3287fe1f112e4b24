#pragma once

#include <QtGlobal>

#include <memory>
#include <sys/mman.h>

// Fresh memory in large pages, which takes a fraction of the time of as many small ones. What of it is never touched
// costs nothing. Null when there is none.
inline std::shared_ptr<uchar> zqLargeMemory(size_t size)
{
    void *const data = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (data == MAP_FAILED) {
        return nullptr;
    }
    ::madvise(data, size, MADV_HUGEPAGE);
    return {static_cast<uchar *>(data), [size](uchar *memory) { ::munmap(memory, size); }};
}

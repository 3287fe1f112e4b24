#pragma once

// Put into the copies of sources that hold faults (see mutate.py); no build of the working tree has it.
// `zqMutant(n)` says whether fault n is the one this process runs with, and notes that its place was reached.

#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace zqMutants {

constexpr int mostMutants = 1 << 14;

struct Switch
{
    int active = 0;
    volatile unsigned char *reached = nullptr;

    Switch() noexcept
    {
        if (const char *number = std::getenv("ZELTO_MUTANT")) {
            active = std::atoi(number);
        }
        const char *map = std::getenv("ZELTO_MUTANT_MAP");
        const int descriptor = map ? ::open(map, O_RDWR | O_CLOEXEC) : -1;
        if (descriptor >= 0) {
            void *memory = ::mmap(nullptr, mostMutants, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
            if (memory != MAP_FAILED) {
                reached = static_cast<volatile unsigned char *>(memory);
            }
            ::close(descriptor);
        }
    }
};

inline const Switch &theSwitch() noexcept
{
    static const Switch one;
    return one;
}

// A worker gives up opening files early in its life; memory shared before that goes on counting.
inline const bool isReady = theSwitch().active >= 0;

} // namespace zqMutants

inline bool zqMutant(int number) noexcept
{
    const zqMutants::Switch &one = zqMutants::theSwitch();
    if (one.reached) {
        one.reached[number] = 1;
    }
    return one.active == number;
}

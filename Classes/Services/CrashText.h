#pragma once

#include <cstddef>
#include <cstdint>

// Text that is put together and written without allocating, locking or calling what is not allowed in a handler of
// signals. What does not fit is written out on the way.
class CrashText
{
public:
    explicit CrashText(int descriptor) : m_descriptor(descriptor) {}
    ~CrashText() { flush(); }
    CrashText(const CrashText &) = delete;
    CrashText &operator=(const CrashText &) = delete;

    CrashText &text(const char *text);
    CrashText &text(const char *text, std::size_t size);
    CrashText &number(std::uint64_t number);
    CrashText &hexadecimal(std::uint64_t number);
    void flush();

private:
    CrashText &digits(std::uint64_t number, unsigned base);

    int m_descriptor;
    std::size_t m_size = 0;
    char m_buffer[1024];
};

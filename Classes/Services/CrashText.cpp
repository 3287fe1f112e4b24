#include "Classes/Services/CrashText.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

CrashText &CrashText::text(const char *text)
{
    return this->text(text, std::strlen(text));
}

CrashText &CrashText::text(const char *text, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i) {
        if (m_size == sizeof m_buffer) {
            flush();
        }
        m_buffer[m_size++] = text[i];
    }
    return *this;
}

CrashText &CrashText::number(std::uint64_t number)
{
    return digits(number, 10);
}

CrashText &CrashText::hexadecimal(std::uint64_t number)
{
    return text("0x").digits(number, 16);
}

CrashText &CrashText::digits(std::uint64_t number, unsigned base)
{
    char reversed[32];
    std::size_t count = 0;
    do {
        reversed[count++] = "0123456789abcdef"[number % base];
        number /= base;
    } while (number != 0);
    while (count > 0) {
        text(&reversed[--count], 1);
    }
    return *this;
}

void CrashText::flush()
{
    std::size_t done = 0;
    while (done < m_size) {
        const ssize_t written = ::write(m_descriptor, m_buffer + done, m_size - done);
        if (written < 0 && errno != EINTR) {
            break;
        }
        done += written > 0 ? std::size_t(written) : 0;
    }
    m_size = 0;
}

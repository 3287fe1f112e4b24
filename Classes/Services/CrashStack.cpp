#include "Classes/Services/CrashStack.h"

#include "Classes/Services/CrashText.h"

#include <cstdint>
#include <cstring>
#include <execinfo.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int mostFrames = 96;
constexpr std::size_t longestName = 80;

// A file that is mapped, from its first byte on.
struct Module
{
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    char name[longestName] = {};
};

constexpr std::size_t mostModules = 512;
Module modules[mostModules]; // a handler's stack is small
std::size_t moduleCount = 0;

std::uint64_t readHexadecimal(const char *&at)
{
    std::uint64_t number = 0;
    for (;; ++at) {
        const char digit = *at;
        if (digit >= '0' && digit <= '9') {
            number = number * 16 + std::uint64_t(digit - '0');
        } else if (digit >= 'a' && digit <= 'f') {
            number = number * 16 + std::uint64_t(digit - 'a' + 10);
        } else {
            return number;
        }
    }
}

void setName(Module &module, const char *path)
{
    const char *slash = std::strrchr(path, '/');
    const char *name = slash ? slash + 1 : path;
    std::size_t i = 0;
    for (; i + 1 < longestName && name[i] != '\0'; ++i) {
        module.name[i] = name[i];
    }
    module.name[i] = '\0';
}

// "begin-end perms offset device inode path". A file's segments follow each other, the first at offset 0. Files that
// are no modules are mapped, too, as those of a library; those hold no code and are never asked for by name.
void takeLine(const char *line)
{
    const char *at = line;
    const std::uint64_t begin = readHexadecimal(at);
    const std::uint64_t end = *at == '-' ? readHexadecimal(++at) : 0;
    const char *const path = std::strchr(line, '/');
    if (*at != ' ' || std::strlen(at) < 7 || !path) {
        return;
    }
    const bool isCode = at[3] == 'x';
    at += 6;
    const std::uint64_t offset = readHexadecimal(at);
    if (offset == 0 && moduleCount < mostModules) {
        modules[moduleCount] = {};
        modules[moduleCount].begin = begin;
        modules[moduleCount++].end = isCode ? end : begin;
    }
    if (isCode && moduleCount > 0) {
        Module &module = modules[moduleCount - 1];
        module.end = end;
        setName(module, path);
    }
}

// Now and not at the start: modules are loaded as they are needed.
void readModules()
{
    moduleCount = 0;
    const int maps = ::open("/proc/self/maps", O_RDONLY | O_CLOEXEC);
    if (maps < 0) {
        return;
    }
    static char line[4400]; // a path and what is before it
    std::size_t size = 0;
    char piece[1024];
    for (ssize_t count = 0; (count = ::read(maps, piece, sizeof piece)) > 0;) {
        for (ssize_t i = 0; i < count; ++i) {
            if (piece[i] != '\n') {
                size += size + 1 < sizeof line ? 1 : 0;
                line[size - 1] = piece[i];
                continue;
            }
            line[size] = '\0';
            takeLine(line);
            size = 0;
        }
    }
    ::close(maps);
}

void writePlace(CrashText &text, std::uint64_t address)
{
    for (std::size_t i = 0; i < moduleCount; ++i) {
        if (address >= modules[i].begin && address < modules[i].end) {
            text.text(modules[i].name).text("+").hexadecimal(address - modules[i].begin).text("\n");
            return;
        }
    }
    text.text("(in no module)\n");
}

} // namespace

void CrashStack::prepare()
{
    void *frames[4];
    ::backtrace(frames, 4);
}

void CrashStack::write(CrashText &text)
{
    static void *frames[mostFrames];
    readModules();
    const int count = ::backtrace(frames, mostFrames);
    for (int i = 0; i < count; ++i) {
        text.text("  ").number(std::uint64_t(i)).text(" ");
        writePlace(text, reinterpret_cast<std::uintptr_t>(frames[i]));
    }
}

#include "Classes/Services/CrashLog.h"

#include "Classes/Services/CrashText.h"

#include <QtGlobal>

#include <atomic>
#include <cstdint>
#include <ctime>
#include <iterator>

namespace {

struct Line
{
    std::atomic<std::uint64_t> milliseconds; // since the machine's start; 0: nothing yet, or being written
    std::atomic<int> weight;
    std::atomic<char> category[40];
};

constexpr std::uint64_t kept = 48;
Line lines[kept];
std::atomic<std::uint64_t> lineCount = 0;
QtMessageHandler otherHandler = nullptr;

std::uint64_t now()
{
    timespec time = {};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return std::uint64_t(time.tv_sec) * 1000 + std::uint64_t(time.tv_nsec) / 1'000'000;
}

void note(QtMsgType type, const char *category)
{
    Line &line = lines[lineCount.fetch_add(1) % kept];
    line.milliseconds = 0;
    line.weight = type;
    std::size_t i = 0;
    for (; category && category[i] != '\0' && i + 1 < std::size(line.category); ++i) {
        line.category[i] = category[i];
    }
    line.category[i] = '\0';
    line.milliseconds = now();
}

void handle(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    note(type, context.category);
    if (otherHandler) {
        otherHandler(type, context, message);
    }
}

const char *wordFor(int weight)
{
    switch (weight) {
    case QtDebugMsg:
        return "debug";
    case QtInfoMsg:
        return "info";
    case QtWarningMsg:
        return "warning";
    case QtCriticalMsg:
        return "critical";
    default:
        return "fatal";
    }
}

} // namespace

void CrashLog::follow()
{
    otherHandler = qInstallMessageHandler(handle);
}

void CrashLog::write(CrashText &text)
{
    const std::uint64_t last = lineCount;
    const std::uint64_t time = now();
    for (std::uint64_t i = last > kept ? last - kept : 0; i < last; ++i) {
        const Line &line = lines[i % kept];
        const std::uint64_t at = line.milliseconds;
        if (at == 0) {
            continue;
        }
        text.text("  ").number(time > at ? time - at : 0).text(" ms before: ").text(wordFor(line.weight)).text(" ");
        for (const auto &character : line.category) {
            const char one = character;
            if (one == '\0') {
                break;
            }
            text.text(&one, 1);
        }
        text.text("\n");
    }
}

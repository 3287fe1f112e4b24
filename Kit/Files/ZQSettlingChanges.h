#pragma once

#include <QByteArray>

#include <chrono>
#include <map>
#include <optional>
#include <vector>

// Gathers changes until there are no more of them for a moment, or some wait already for too long, and makes few
// announcements of many. Paths are the system's bytes; those whose bytes are no text are told by a folder around them.
// One thread.
class ZQSettlingChanges
{
public:
    using Clock = std::chrono::steady_clock;
    struct Move
    {
        bool operator==(const Move &) const = default;
        QByteArray from;
        QByteArray to;
    };
    struct Extent
    {
        bool everythingBelow = false;
        bool isSure = false; // something else happened than to files that may be incomplete
    };
    struct Changes
    {
        std::vector<Move> moves;
        std::map<QByteArray, Extent> folders;
    };
    static constexpr size_t mostFolders = 64; // more are told by a folder around them

    ZQSettlingChanges(std::chrono::milliseconds quiet, std::chrono::milliseconds longest);

    void note(const QByteArray &folder, Extent extent, Clock::time_point now);
    // What is known of a folder that moved goes with it.
    void didMoveFolder(const QByteArray &from, const QByteArray &to, Clock::time_point now);
    void noteMove(const QByteArray &from, const QByteArray &to, Clock::time_point now);
    bool contains(const QByteArray &folder) const { return m_changes.folders.contains(folder); }
    void forgetBelow(const QByteArray &folder);

    std::optional<Clock::time_point> due() const;
    Changes take(); // all; nothing is waited for
    // The path, or that of the nearest folder around it that can be written as text.
    static QByteArray textPath(const QByteArray &path);
    // The same changes in as few announcements as one for each of the roots.
    static void gather(Changes &changes, const std::vector<QByteArray> &roots);

private:
    void begin(Clock::time_point now);

    const std::chrono::milliseconds m_quiet;
    const std::chrono::milliseconds m_longest;
    Changes m_changes;
    Clock::time_point m_first;
    Clock::time_point m_last;
};

#pragma once

#include <QByteArray>

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <vector>

// Files of which only a part may be there: some program has them open for writing, or their size or time still changes.
// Each is waited for, but not for ever. One thread; looks at the disk.
class ZQUnfinishedFiles
{
public:
    using Clock = std::chrono::steady_clock;
    // `pause` lies between two looks at one file; none is waited for longer than `longest`.
    ZQUnfinishedFiles(std::chrono::milliseconds pause, std::chrono::milliseconds longest);

    void didAppear(const QByteArray &folder, const QByteArray &name, Clock::time_point now);
    void didClose(const QByteArray &folder, const QByteArray &name, Clock::time_point now); // or came as a whole
    void forget(const QByteArray &folder, const QByteArray &name);
    void forgetBelow(const QByteArray &folder);
    void didMoveFolder(const QByteArray &from, const QByteArray &to);
    bool contains(const QByteArray &folder, const QByteArray &name) const;

    // Looks at the files of one folder. False when all that is known of it are files to wait for.
    bool look(const QByteArray &folder, Clock::time_point now);
    void lookBelow(const QByteArray &folder, Clock::time_point now); // and in it
    std::optional<Clock::time_point> due() const;
    // Looks at all, except in folders that are told anyway; answers the folders where one is waited for no longer.
    std::vector<QByteArray> lookAtAll(Clock::time_point now,
                                      const std::function<bool(const QByteArray &folder)> &isToldAnyway);

private:
    struct File
    {
        Clock::time_point since;
        Clock::time_point looked;
        bool isClosed = false;
        qint64 size = -1;
        qint64 modified = 0;
    };
    using Files = std::map<QByteArray, File>;

    File &file(const QByteArray &folder, const QByteArray &name, Clock::time_point now);
    bool isFinished(const QByteArray &path, File &file, Clock::time_point now) const;

    const std::chrono::milliseconds m_pause;
    const std::chrono::milliseconds m_longest;
    std::map<QByteArray, Files> m_folders;
    Clock::time_point m_next;
};

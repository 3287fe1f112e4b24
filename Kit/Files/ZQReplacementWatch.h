#pragma once

#include "Kit/Files/ZQFileReference.h"

#include <QHash>

#include <deque>
#include <functional>
#include <mutex>
#include <optional>

// Sees how files leave their places while the program runs. A program that saves by renaming a new file over the old
// one leaves no moment without a file of that name; where the name was free, whatever takes it later is another file.
// That can only be seen while it happens: nothing on the disk tells afterwards. One for the process; any thread.
class ZQReplacementWatch
{
public:
    using Replaced = std::function<void(const QByteArray &path)>;

    static ZQReplacementWatch &shared();

    // The file at `path` has `identity`. `replaced` is called once when a new file takes its place at once.
    void watch(const QByteArray &path, const ZQFileIdentity &identity, const Replaced &replaced);
    // Takes note of what happened until now.
    void catchUp();
    // Whether `newcomer` took the place of `file` at once, perhaps with others in between, as far as that was noted.
    bool didReplace(const ZQFileIdentity &file, const ZQFileIdentity &newcomer);

private:
    struct Watched
    {
        QByteArray path;
        ZQFileIdentity identity;
        Replaced replaced;
    };
    struct Replacement
    {
        ZQFileIdentity file;
        ZQFileIdentity newcomer;
    };

    ZQReplacementWatch();
    bool add(const Watched &file);                       // with the lock
    void remove(int descriptor);                         // with the lock
    QList<std::pair<Replaced, QByteArray>> takeEvents(); // with the lock
    std::optional<std::pair<Replaced, QByteArray>> didChange(int descriptor);

    static constexpr int mostFiles = 1024;

    std::mutex m_mutex;
    int m_inotify = -1;
    QHash<int, Watched> m_watched;        // by watch descriptor
    QHash<QByteArray, int> m_descriptors; // by path
    std::deque<QByteArray> m_order;       // of the paths, oldest first
    std::deque<Replacement> m_replacements;
};

#pragma once

#include "Kit/Files/ZQSystemFile.h"

#include <QByteArray>

#include <cstdint>
#include <unordered_map>
#include <vector>

class ZQFolderTree;
struct ZQWatchedFolder;

// The watches that the system keeps for one watcher. A folder has one watch however many trees hold it, and loses it
// with the last of them. One thread.
class ZQWatchTable
{
public:
    struct User
    {
        bool operator==(const User &) const = default;
        ZQFolderTree *tree;
        ZQWatchedFolder *folder;
    };

    explicit ZQWatchTable(qint64 limit = 0); // watches at most; 0: what the system allows
    int descriptor() const { return m_inotify.get(); }
    void close() { m_inotify.close(); } // at the end: all at once is sooner done than one after another
    qint64 limit() const;
    static bool isFull(int error); // whether this number of an error means that there are no more watches

    // The number of the watch, or -1 and errno. Links are not followed.
    int add(const QByteArray &path, User user);
    void remove(int watch, User user);
    std::vector<User> usersOf(int watch) const;
    void didLose(int watch); // the system has taken it away

    // Watches a folder for what happens to its own name, and with `tellsEntries` to the names in it. Failures do not
    // matter: what a guard would tell is found out later without it.
    int addGuard(const QByteArray &path, bool tellsEntries);
    void removeGuard(int watch);
    bool isGuard(int watch) const { return m_guards.contains(watch); }

private:
    void release(int watch);

    ZQFileDescriptor m_inotify;
    const qint64 m_limit;
    qint64 m_count = 0; // watches that have users
    std::unordered_multimap<int, User> m_users;
    std::unordered_map<int, int> m_guards; // watch → how many
};

#pragma once

#include "Kit/Files/ZQWatchTable.h"

#include <QByteArray>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// A folder below a root that is watched, or looked at in intervals. Small: there may be a hundred thousand.
struct ZQWatchedFolder
{
    ZQWatchedFolder *around = nullptr;
    const std::string *name = nullptr; // the key by which the folder around it holds it
    static constexpr int noneLeft = -1;
    static constexpr int notLookedAt = -2;
    int watch = notLookedAt; // its number, or one of these
    qint64 modified = 0;     // when it was listed last; 0: it may have changed since
    std::map<std::string, std::unique_ptr<ZQWatchedFolder>, std::less<>> below;
};

// The folders below one root. Hidden ones, links and silent places (ZQMountTable) inside are left out. A watch is set
// before its folder is listed, so that nothing is missed. One thread; waits for the disk.
class ZQFolderTree
{
public:
    // `root` is where the folder really lies, `reported` what it is called by who asked for it.
    ZQFolderTree(ZQWatchTable &table, const QByteArray &root, const QByteArray &reported);
    ~ZQFolderTree();
    ZQFolderTree(const ZQFolderTree &) = delete;
    ZQFolderTree &operator=(const ZQFolderTree &) = delete;

    using Folders = std::vector<ZQWatchedFolder *>;
    // Called between folders; false ends what is done.
    using Pulse = std::function<bool()>;

    ZQWatchedFolder &root() { return *m_root; }
    bool isRoot(const ZQWatchedFolder &folder) const { return &folder == m_root.get(); }
    QByteArray systemPath(const ZQWatchedFolder &folder) const { return path(m_rootPath, folder); }
    QByteArray reportedPath(const ZQWatchedFolder &folder) const { return path(m_reported, folder); }
    qsizetype unwatched() const { return m_unwatched; } // how many have no watch

    void leaveOut(std::set<QByteArray> silentPlaces) { m_leftOut = std::move(silentPlaces); }

    // Brings a folder and all below in step with the disk. False when it cannot be looked at; it is forgotten then,
    // unless it is the root. What is found to be there below it, or to be gone, or is watched anew, is told by
    // `differing`.
    bool look(ZQWatchedFolder &folder, const Pulse &pulse, Folders *differing = nullptr);
    // The folder of that name, made and looked at; null when there is none that could be watched.
    ZQWatchedFolder *appear(ZQWatchedFolder &around, std::string_view name, const Pulse &pulse);
    ZQWatchedFolder *find(ZQWatchedFolder &around, std::string_view name) const;
    // The folder at a path of the system, as far as it is in the tree.
    ZQWatchedFolder *findPath(const QByteArray &systemPath);
    void forget(ZQWatchedFolder &around, std::string_view name);
    static bool isWithin(const ZQWatchedFolder &folder, const ZQWatchedFolder &around); // or the same
    // Moves a folder with its watches to one that is not within it; one that stands in its place is forgotten.
    ZQWatchedFolder *move(ZQWatchedFolder &from, std::string_view name, ZQWatchedFolder &to, std::string_view newName);
    struct Swept
    {
        ZQWatchedFolder *folder;
        bool isNew; // and looked at
    };
    // Those among the folders (without `all`: that have no watch) whose own time says that something came or went.
    std::vector<Swept> sweep(bool all, const Pulse &pulse);
    void didLoseWatch(ZQWatchedFolder &folder);

    static bool isHidden(std::string_view name) { return name.starts_with('.'); }

private:
    QByteArray path(const QByteArray &start, const ZQWatchedFolder &folder) const;
    bool setWatch(ZQWatchedFolder &folder, const QByteArray &path);
    void setNumber(ZQWatchedFolder &folder, int watch);
    ZQWatchedFolder *add(ZQWatchedFolder &around, std::string_view name);
    bool list(ZQWatchedFolder &folder, Folders *came, Folders *differing);
    bool readNames(int descriptor, const QByteArray &path, std::set<std::string> &names) const;
    bool bringInStep(ZQWatchedFolder &folder, const std::set<std::string> &names, bool isWhole, Folders *came);
    bool hasChanged(const ZQWatchedFolder &folder) const;
    void forgetAll(ZQWatchedFolder &folder);

    ZQWatchTable &m_table;
    const QByteArray m_rootPath;
    const QByteArray m_reported;
    std::unique_ptr<ZQWatchedFolder> m_root;
    std::set<QByteArray> m_leftOut;
    qsizetype m_unwatched = 0;
};

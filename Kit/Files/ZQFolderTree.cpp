#include "Kit/Files/ZQFolderTree.h"

#include <QList>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>

namespace {

constexpr qint64 billion = 1'000'000'000;
// What changes within the same tick of a clock after a folder was listed leaves its time as it is; servers' clocks may
// tick in seconds.
constexpr qint64 coarsestTick = 2 * billion;

qint64 nanoseconds(const timespec &time)
{
    return time.tv_sec * billion + time.tv_nsec;
}

qint64 dependableTime(const struct stat &status)
{
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const qint64 modified = nanoseconds(status.st_mtim);
    return nanoseconds(now) - modified > coarsestTick ? modified : 0;
}

QByteArray joined(const QByteArray &folder, std::string_view name)
{
    QByteArray path = folder;
    if (!path.endsWith('/')) {
        path.append('/');
    }
    return path.append(name.data(), static_cast<qsizetype>(name.size()));
}

} // namespace

ZQFolderTree::ZQFolderTree(ZQWatchTable &table, const QByteArray &root, const QByteArray &reported)
    : m_table(table), m_rootPath(root), m_reported(reported), m_root(std::make_unique<ZQWatchedFolder>())
{
}

ZQFolderTree::~ZQFolderTree()
{
    forgetAll(*m_root);
}

QByteArray ZQFolderTree::path(const QByteArray &start, const ZQWatchedFolder &folder) const
{
    std::vector<std::string_view> names;
    for (const ZQWatchedFolder *one = &folder; one->around; one = one->around) {
        names.push_back(*one->name);
    }
    QByteArray path = start;
    for (auto name = names.crbegin(); name != names.crend(); ++name) {
        path = joined(path, *name);
    }
    return path;
}

bool ZQFolderTree::look(ZQWatchedFolder &folder, const Pulse &pulse, Folders *differing)
{
    Folders toDo = {&folder};
    bool isThere = true;
    while (!toDo.empty() && pulse()) {
        ZQWatchedFolder &next = *toDo.back();
        toDo.pop_back();
        const bool isStart = &next == &folder;
        if (!list(next, nullptr, differing)) {
            isThere = isThere && !isStart;
            if (next.around) {
                forget(*next.around, std::string(*next.name));
            }
            continue;
        }
        for (const auto &[name, child] : next.below) {
            toDo.push_back(child.get());
        }
    }
    return isThere;
}

// False, and errno, for a folder that is not there, is none, or may not be read.
bool ZQFolderTree::setWatch(ZQWatchedFolder &folder, const QByteArray &path)
{
    const ZQWatchTable::User user{this, &folder};
    const int before = folder.watch;
    const int watch = m_table.add(path, user);
    if (watch < 0 && !ZQWatchTable::isFull(errno)) {
        return false;
    }
    if (before >= 0 && watch != before) {
        m_table.remove(before, user); // another folder lies in its place now
    }
    setNumber(folder, watch);
    return true;
}

void ZQFolderTree::setNumber(ZQWatchedFolder &folder, int watch)
{
    m_unwatched += (watch == ZQWatchedFolder::noneLeft) - (folder.watch == ZQWatchedFolder::noneLeft);
    folder.watch = watch;
}

bool ZQFolderTree::list(ZQWatchedFolder &folder, Folders *came, Folders *differing)
{
    const QByteArray path = systemPath(folder);
    const int before = folder.watch;
    if (!setWatch(folder, path)) {
        return false;
    }
    const bool isWatchedAnew = folder.watch != before; // what happened in it until now was told by nobody
    ZQFileDescriptor descriptor(::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
    struct stat status = {};
    if (!descriptor.isOpen() || ::fstat(descriptor.get(), &status) != 0) {
        return false;
    }
    std::set<std::string> names;
    const bool isWhole = readNames(descriptor.release(), path, names);
    folder.modified = isWhole ? dependableTime(status) : 0;
    const bool isOther = bringInStep(folder, names, isWhole, came);
    if (differing && (isOther || isWatchedAnew)) {
        differing->push_back(&folder);
    }
    return true;
}

// The names of the folders in it; false when not all could be read. Closes the descriptor.
bool ZQFolderTree::readNames(int descriptor, const QByteArray &path, std::set<std::string> &names) const
{
    const std::unique_ptr<DIR, int (*)(DIR *)> directory(::fdopendir(descriptor), ::closedir);
    if (!directory) {
        ::close(descriptor);
        return false;
    }
    errno = 0;
    while (const dirent *const entry = ::readdir(directory.get())) {
        bool isFolder = entry->d_type == DT_DIR;
        if (entry->d_type == DT_UNKNOWN) {
            struct stat status = {};
            isFolder =
                ::fstatat(descriptor, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
        }
        if (isFolder && !isHidden(entry->d_name) &&
            (m_leftOut.empty() || !m_leftOut.contains(joined(path, entry->d_name)))) {
            names.insert(entry->d_name);
        }
        errno = 0;
    }
    return errno == 0;
}

// Whether folders came or went.
bool ZQFolderTree::bringInStep(ZQWatchedFolder &folder, const std::set<std::string> &names, bool isWhole, Folders *came)
{
    bool isOther = false;
    for (auto child = folder.below.begin(); isWhole && child != folder.below.end();) {
        if (names.contains(child->first)) {
            ++child;
            continue;
        }
        forgetAll(*child->second);
        child = folder.below.erase(child);
        isOther = true;
    }
    for (const std::string &name : names) {
        if (ZQWatchedFolder *const child = add(folder, name)) {
            isOther = true;
            if (came) {
                came->push_back(child);
            }
        }
    }
    return isOther;
}

// Null when it is there already.
ZQWatchedFolder *ZQFolderTree::add(ZQWatchedFolder &around, std::string_view name)
{
    const auto [place, isNew] = around.below.try_emplace(std::string(name));
    if (!isNew) {
        return nullptr;
    }
    place->second = std::make_unique<ZQWatchedFolder>();
    place->second->around = &around;
    place->second->name = &place->first;
    return place->second.get();
}

ZQWatchedFolder *ZQFolderTree::appear(ZQWatchedFolder &around, std::string_view name, const Pulse &pulse)
{
    if (isHidden(name) || (!m_leftOut.empty() && m_leftOut.contains(joined(systemPath(around), name)))) {
        return nullptr;
    }
    add(around, name);
    ZQWatchedFolder *const folder = find(around, name);
    return look(*folder, pulse) ? folder : nullptr;
}

ZQWatchedFolder *ZQFolderTree::find(ZQWatchedFolder &around, std::string_view name) const
{
    const auto found = around.below.find(name);
    return found == around.below.end() ? nullptr : found->second.get();
}

ZQWatchedFolder *ZQFolderTree::findPath(const QByteArray &systemPath)
{
    if (!systemPath.startsWith(m_rootPath)) {
        return nullptr;
    }
    ZQWatchedFolder *folder = m_root.get();
    const QList<QByteArray> names = systemPath.mid(m_rootPath.size()).split('/');
    for (const QByteArray &name : names) {
        if (!name.isEmpty() && folder) {
            folder = find(*folder, std::string_view(name.constData(), static_cast<size_t>(name.size())));
        }
    }
    return folder;
}

void ZQFolderTree::forget(ZQWatchedFolder &around, std::string_view name)
{
    const auto found = around.below.find(name);
    if (found != around.below.end()) {
        forgetAll(*found->second);
        around.below.erase(found);
    }
}

bool ZQFolderTree::isWithin(const ZQWatchedFolder &folder, const ZQWatchedFolder &around)
{
    const ZQWatchedFolder *one = &folder;
    while (one && one != &around) {
        one = one->around;
    }
    return one != nullptr;
}

ZQWatchedFolder *ZQFolderTree::move(ZQWatchedFolder &from, std::string_view name, ZQWatchedFolder &to,
                                    std::string_view newName)
{
    auto folder = from.below.extract(from.below.find(name));
    forget(to, newName);
    folder.key() = std::string(newName);
    const auto place = to.below.insert(std::move(folder)).position;
    place->second->around = &to;
    place->second->name = &place->first;
    return place->second.get();
}

std::vector<ZQFolderTree::Swept> ZQFolderTree::sweep(bool all, const Pulse &pulse)
{
    std::vector<Swept> changed;
    Folders toDo = {m_root.get()};
    while (!toDo.empty() && pulse()) {
        ZQWatchedFolder &folder = *toDo.back();
        toDo.pop_back();
        Folders came;
        if ((all || folder.watch == ZQWatchedFolder::noneLeft) && hasChanged(folder)) {
            changed.push_back({&folder, false});
            list(folder, &came, nullptr);
        }
        for (ZQWatchedFolder *const child : came) {
            if (look(*child, pulse)) {
                changed.push_back({child, true});
            }
        }
        for (const auto &[name, child] : folder.below) {
            if (std::find(came.cbegin(), came.cend(), child.get()) == came.cend()) {
                toDo.push_back(child.get());
            }
        }
    }
    return changed;
}

bool ZQFolderTree::hasChanged(const ZQWatchedFolder &folder) const
{
    struct stat status = {};
    return ::lstat(systemPath(folder).constData(), &status) == 0 &&
           (folder.modified == 0 || nanoseconds(status.st_mtim) != folder.modified);
}

void ZQFolderTree::didLoseWatch(ZQWatchedFolder &folder)
{
    setNumber(folder, ZQWatchedFolder::notLookedAt);
}

void ZQFolderTree::forgetAll(ZQWatchedFolder &folder)
{
    for (const auto &[name, child] : folder.below) {
        forgetAll(*child);
    }
    if (folder.watch >= 0) {
        m_table.remove(folder.watch, {this, &folder});
    }
    setNumber(folder, ZQWatchedFolder::notLookedAt);
}

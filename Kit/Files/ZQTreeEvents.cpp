#include "Kit/Files/ZQTreeEvents.h"

#include "Kit/Files/ZQOwnChanges.h"

#include <dirent.h>
#include <sys/inotify.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace {

std::string_view view(const QByteArray &name)
{
    return {name.constData(), static_cast<size_t>(name.size())};
}

bool isEmptyFolder(const QByteArray &path)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> directory(::opendir(path.constData()), ::closedir);
    while (const dirent *const entry = directory ? ::readdir(directory.get()) : nullptr) {
        if (!ZQFolderTree::isHidden(entry->d_name)) {
            return false;
        }
    }
    return true;
}

} // namespace

ZQTreeEvents::ZQTreeEvents(ZQWatchTable &table, ZQOwnChanges &ownChanges, ZQSettlingChanges &changes,
                           ZQUnfinishedFiles &files, ZQFolderTree::Pulse pulse)
    : m_table(table), m_ownChanges(ownChanges), m_changes(changes), m_files(files), m_pulse(std::move(pulse))
{
}

ZQTreeEvents::Demands ZQTreeEvents::takeDemands()
{
    return std::exchange(m_demands, {});
}

QByteArray ZQTreeEvents::path(const User &user, const QByteArray &name)
{
    const QByteArray folder = user.tree->reportedPath(*user.folder);
    return name.isEmpty() ? folder : folder.endsWith('/') ? folder + name : folder + '/' + name;
}

bool ZQTreeEvents::isOwn(const User &user, const QByteArray &name) const
{
    return m_ownChanges.contains(path(user, name));
}

void ZQTreeEvents::noteFolder(const QByteArray &folder, bool everythingBelow, bool isSure)
{
    m_changes.note(folder, {everythingBelow, isSure}, m_now);
}

void ZQTreeEvents::handle(const ZQFolderEvent &event, Clock::time_point now)
{
    m_now = now;
    if (event.mask & IN_Q_OVERFLOW) {
        m_demands.everything = true;
        return;
    }
    m_demands.roots = m_demands.roots || m_table.isGuard(event.watch) || m_table.isGuard(event.toWatch);
    if (event.isMove()) {
        handleMove(event);
        return;
    }
    for (const User &user : m_table.usersOf(event.watch)) {
        if (isThere(event.watch, user)) {
            handleFolder(user, event);
        }
    }
    if (event.mask & IN_IGNORED) {
        m_table.didLose(event.watch);
    }
}

void ZQTreeEvents::handleFolder(const User &user, const ZQFolderEvent &event)
{
    if (event.name.isEmpty()) {
        handleSelf(user, event);
        return;
    }
    if (ZQFolderTree::isHidden(view(event.name))) {
        return;
    }
    const bool isFolder = event.mask & IN_ISDIR;
    if (event.mask & (IN_DELETE | IN_MOVED_FROM)) {
        didLeave(user, event.name, isFolder);
    } else if (event.mask & IN_MOVED_TO || (isFolder && event.mask & IN_CREATE)) {
        didArrive(user, event.name, isFolder);
    } else if (isFolder && !user.tree->find(*user.folder, view(event.name))) {
        didArrive(user, event.name, isFolder); // it can be read now
    } else if (isFolder) {
        if (!isOwn(user, event.name)) {
            noteFolder(path(user, event.name));
        }
    } else {
        handleFile(user, event.name, event.mask);
    }
}

void ZQTreeEvents::handleSelf(const User &user, const ZQFolderEvent &event)
{
    if (event.mask & IN_ATTRIB && !(event.mask & (IN_IGNORED | IN_DELETE_SELF))) {
        if (!isOwn(user, {})) {
            noteFolder(path(user, {}));
        }
        return;
    }
    const bool isRoot = user.tree->isRoot(*user.folder);
    if (isRoot && event.mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT | IN_IGNORED)) {
        m_demands.vanished.insert(user.tree);
    }
    m_demands.mounts = m_demands.mounts || event.mask & IN_UNMOUNT;
    if (event.mask & IN_IGNORED) {
        user.tree->didLoseWatch(*user.folder);
    }
}

void ZQTreeEvents::handleFile(const User &user, const QByteArray &name, uint32_t mask)
{
    const QByteArray folder = path(user, {});
    if (isOwn(user, name)) {
        m_files.forget(folder, name);
        return;
    }
    if (mask & IN_CREATE) {
        m_files.didAppear(folder, name, m_now);
    } else if (mask & IN_CLOSE_WRITE) {
        m_files.didClose(folder, name, m_now);
    } else if (!m_files.contains(folder, name)) {
        m_files.didClose(folder, name, m_now); // its attributes changed
    }
    noteFolder(folder, false, false);
}

void ZQTreeEvents::didLeave(const User &from, const QByteArray &name, bool isFolder)
{
    const QByteArray left = path(from, name);
    const bool isOurs = isOwn(from, name);
    if (isFolder) {
        from.tree->forget(*from.folder, view(name));
        m_changes.forgetBelow(left);
        m_files.forgetBelow(left);
        // Two folders may have exchanged their names.
        if (from.tree->appear(*from.folder, view(name), m_pulse) && !isOurs) {
            noteFolder(left, true);
        }
    } else {
        m_files.forget(path(from, {}), name);
    }
    if (!isOurs) {
        noteFolder(path(from, {}));
    }
}

void ZQTreeEvents::didArrive(const User &to, const QByteArray &name, bool isFolder)
{
    const QByteArray arrived = path(to, name);
    const bool isOurs = isOwn(to, name);
    if (isFolder) {
        const ZQWatchedFolder *const folder = to.tree->appear(*to.folder, view(name), m_pulse);
        // What others put into a folder that we made came before it was watched.
        if (folder && (!isOurs || !isEmptyFolder(to.tree->systemPath(*folder)))) {
            noteFolder(arrived, true);
        }
    } else if (!isOurs) {
        m_files.didClose(path(to, {}), name, m_now);
    }
    if (!isOurs) {
        noteFolder(path(to, {}), false, isFolder);
    }
}

bool ZQTreeEvents::isThere(int watch, const User &user) const
{
    const std::vector<User> users = m_table.usersOf(watch);
    return std::find(users.cbegin(), users.cend(), user) != users.cend();
}

void ZQTreeEvents::handleMove(const ZQFolderEvent &event)
{
    std::vector<ZQSettlingChanges::Move> told; // once, where two roots of which one holds the other see it
    if (!ZQFolderTree::isHidden(view(event.toName))) {
        for (const User &target : m_table.usersOf(event.toWatch)) {
            if (isThere(event.toWatch, target)) {
                handleArrival(target, event, told);
            }
        }
    }
    if (!ZQFolderTree::isHidden(view(event.name))) {
        for (const User &source : m_table.usersOf(event.watch)) {
            if (isThere(event.watch, source)) {
                didLeave(source, event.name, event.mask & IN_ISDIR); // nothing of it, where it moved within its tree
            }
        }
    }
}

void ZQTreeEvents::handleArrival(const User &target, const ZQFolderEvent &event,
                                 std::vector<ZQSettlingChanges::Move> &told)
{
    const bool isFolder = event.mask & IN_ISDIR;
    const std::vector<User> from = m_table.usersOf(event.watch);
    if (from.empty() || ZQFolderTree::isHidden(view(event.name))) {
        didArrive(target, event.toName, isFolder);
        return;
    }
    const auto sameTree =
        std::find_if(from.cbegin(), from.cend(), [&](const User &user) { return user.tree == target.tree; });
    const User source = sameTree == from.cend() ? from.front() : *sameTree;
    const ZQSettlingChanges::Move move{path(source, event.name), path(target, event.toName)};
    const bool isOurs = m_ownChanges.contains(move.from) || m_ownChanges.contains(move.to);
    const bool isFirst = std::find(told.cbegin(), told.cend(), move) == told.cend();
    told.push_back(move);
    if (isFolder && isFirst) {
        m_files.forgetBelow(move.to);
        m_files.didMoveFolder(move.from, move.to);
        m_changes.didMoveFolder(move.from, move.to, m_now);
    }
    if (isFolder) {
        followFolder(source, event.name, target, event.toName, isFirst);
    } else if (!isOurs) {
        m_files.didClose(path(target, {}), event.toName, m_now);
    }
    if (isOurs) {
        return;
    }
    noteFolder(path(target, {}), false, isFolder);
    if (isFirst) {
        m_changes.noteMove(move.from, move.to, m_now);
    }
}

void ZQTreeEvents::followFolder(const User &from, const QByteArray &name, const User &to, const QByteArray &newName,
                                bool isFirst)
{
    const ZQWatchedFolder *const known = from.tree->find(*from.folder, view(name));
    const bool isSameTree = from.tree == to.tree;
    // A tree that was listed since may hold the place it went to within the place it came from.
    if (!known || !isSameTree || ZQFolderTree::isWithin(*to.folder, *known)) {
        const bool wasFollowed = !isFirst || (known && !isSameTree); // by the tree of another root
        if (to.tree->appear(*to.folder, view(newName), m_pulse) && !wasFollowed) {
            noteFolder(path(to, newName), true); // nobody told what came into it until now
        }
        return;
    }
    ZQWatchedFolder *const moved = to.tree->move(*from.folder, view(name), *to.folder, view(newName));
    // What was made in it just before could not be watched: the path by which it was told was no longer there.
    ZQFolderTree::Folders differing;
    if (to.tree->look(*moved, m_pulse, &differing)) {
        for (const ZQWatchedFolder *const folder : differing) {
            noteFolder(to.tree->reportedPath(*folder), true);
        }
    }
}

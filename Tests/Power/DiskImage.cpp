#include "Tests/Power/DiskImage.h"

#include "Kit/Files/ZQSystemFile.h"

#include <QHash>
#include <QSet>

#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

constexpr qsizetype pageSize = 4096;

QByteArray contentOf(const QByteArray &path, const struct stat &status)
{
    QByteArray content;
    if (S_ISLNK(status.st_mode)) {
        content.resize(PATH_MAX);
        content.truncate(std::max<ssize_t>(readlink(path.constData(), content.data(), PATH_MAX), 0));
    } else if (S_ISREG(status.st_mode)) {
        const ZQFileDescriptor file(open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
        content.resize(status.st_size);
        content.truncate(std::max<ssize_t>(read(file.get(), content.data(), size_t(content.size())), 0));
    }
    return content;
}

QMap<QByteArray, QByteArray> attributesOf(const QByteArray &path)
{
    QMap<QByteArray, QByteArray> attributes;
    QByteArray names(1 << 16, '\0');
    names.truncate(std::max<ssize_t>(llistxattr(path.constData(), names.data(), size_t(names.size())), 0));
    for (const QByteArray &name : names.split('\0')) {
        QByteArray value(1 << 16, '\0');
        const ssize_t size = name.startsWith("user.")
                                 ? lgetxattr(path.constData(), name.constData(), value.data(), size_t(value.size()))
                                 : -1;
        if (size >= 0) {
            attributes.insert(name, value.first(size));
        }
    }
    return attributes;
}

QList<QByteArray> namesIn(const QByteArray &folder)
{
    QList<QByteArray> names;
    const std::unique_ptr<DIR, int (*)(DIR *)> directory(opendir(folder.constData()), closedir);
    while (const dirent *const entry = directory ? readdir(directory.get()) : nullptr) {
        const QByteArray name(entry->d_name);
        if (name != "." && name != "..") {
            names.append(name);
        }
    }
    return names;
}

bool isSameTime(const timespec &a, const timespec &b)
{
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

// The clock of files ticks some hundred times a second: what changed within a tick may change again unseen.
bool isOld(const timespec &time)
{
    constexpr double enough = 0.05;
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return double(now.tv_sec - time.tv_sec) + double(now.tv_nsec - time.tv_nsec) / 1e9 > enough;
}

qsizetype sizeOf(const struct stat &status)
{
    return S_ISREG(status.st_mode) || S_ISLNK(status.st_mode) ? status.st_size : 0;
}

DiskImage::Inode add(const QByteArray &path, const DiskImage &before, DiskImage &image)
{
    struct stat status = {};
    if (lstat(path.constData(), &status) != 0) {
        return 0;
    }
    const DiskImage::Inode inode = status.st_ino;
    if (image.nodes.contains(inode)) {
        return inode;
    }
    const DiskImage::Node known = before.nodes.value(inode);
    DiskImage::Node node;
    node.mode = status.st_mode;
    node.modification = status.st_mtim;
    node.change = status.st_ctim;
    node.isSettled = isOld(status.st_ctim);
    if (known.isSettled && isSameTime(known.change, node.change) && known.content.size() == sizeOf(status)) {
        node.content = known.content;
        node.attributes = known.attributes;
    } else {
        node.content = contentOf(path, status);
        node.attributes = S_ISLNK(status.st_mode) ? QMap<QByteArray, QByteArray>() : attributesOf(path);
        if (node.content == known.content) {
            node.content = known.content;
        }
    }
    image.nodes.insert(inode, node);
    if (node.isFolder()) {
        QMap<QByteArray, DiskImage::Inode> entries;
        for (const QByteArray &name : namesIn(path)) {
            if (const DiskImage::Inode child = add(path + '/' + name, before, image)) {
                entries.insert(name, child);
            }
        }
        image.nodes[inode].entries = entries == known.entries ? known.entries : entries;
    }
    return inode;
}

bool isSameContent(const QByteArray &a, const QByteArray &b)
{
    return (a.constData() == b.constData() && a.size() == b.size()) || a == b;
}

bool isSameNode(const DiskImage::Node &a, const DiskImage::Node &b)
{
    return a.mode == b.mode && a.attributes == b.attributes && a.entries == b.entries &&
           isSameContent(a.content, b.content);
}

// Of a file that was being written, some pages.
QByteArray mixed(const QByteArray &before, const QByteArray &after, std::mt19937 &random)
{
    const auto kind = random() % 3;
    if (isSameContent(before, after) || kind == 0) {
        return before;
    }
    if (kind == 1) {
        return after;
    }
    QByteArray content = random() % 2 ? before : after; // for its length
    const qsizetype size = content.size();
    for (qsizetype at = 0; at < size; at += pageSize) {
        const QByteArray page = (random() % 2 ? before : after).mid(at, std::min(pageSize, size - at));
        content.replace(at, page.size(), page);
    }
    return content;
}

} // namespace

DiskImage::Node DiskImage::Node::withoutContent() const
{
    Node node = *this;
    node.entries.clear();
    node.attributes.clear();
    if (S_ISREG(mode)) {
        node.content.clear();
    }
    return node;
}

DiskImage DiskImage::ofFolder(const QByteArray &folder, const DiskImage &before)
{
    DiskImage image;
    image.root = add(folder, before, image);
    return image;
}

namespace {

void layOutNode(const DiskImage &image, DiskImage::Inode inode, const QByteArray &path,
                QHash<DiskImage::Inode, QByteArray> &paths)
{
    const DiskImage::Node node = image.nodes.value(inode);
    if (const QByteArray first = paths.value(inode); !first.isEmpty() && !node.isFolder()) {
        ::link(first.constData(), path.constData());
        return;
    }
    paths.insert(inode, path);
    if (S_ISLNK(node.mode)) {
        ::symlink(node.content.constData(), path.constData());
        return;
    }
    if (node.isFolder()) {
        ::mkdir(path.constData(), S_IRWXU);
        for (auto entry = node.entries.cbegin(); entry != node.entries.cend(); ++entry) {
            layOutNode(image, entry.value(), path + '/' + entry.key(), paths);
        }
    } else if (S_ISREG(node.mode)) {
        const ZQFileDescriptor file(open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRWXU));
        zqWriteAll(file.get(), node.content.constData(), node.content.size());
    } else {
        return; // a socket is nothing that a disk keeps
    }
    for (auto attribute = node.attributes.cbegin(); attribute != node.attributes.cend(); ++attribute) {
        ::setxattr(path.constData(), attribute.key().constData(), attribute.value().constData(),
                   size_t(attribute.value().size()), 0);
    }
    ::chmod(path.constData(), node.mode & ALLPERMS);
    const timespec times[] = {node.modification, node.modification};
    ::utimensat(AT_FDCWD, path.constData(), times, AT_SYMLINK_NOFOLLOW);
}

} // namespace

void DiskImage::layOut(const QByteArray &folder) const
{
    QHash<Inode, QByteArray> paths;
    layOutNode(*this, root, folder, paths);
}

DiskImage DiskImage::reachable() const
{
    DiskImage found;
    found.root = root;
    QList<Inode> open{root};
    while (!open.isEmpty()) {
        const Inode inode = open.takeLast();
        if (!found.nodes.contains(inode) && nodes.contains(inode)) {
            const Node node = nodes.value(inode);
            found.nodes.insert(inode, node);
            open.append(node.entries.values());
        }
    }
    return found;
}

bool DiskImage::isSameAs(const DiskImage &other) const
{
    return root == other.root && nodes.size() == other.nodes.size() &&
           std::equal(nodes.cbegin(), nodes.cend(), other.nodes.cbegin(), isSameNode) &&
           nodes.keys() == other.nodes.keys();
}

void DiskImage::bringContent(Inode file, const DiskImage &live, bool withAttributes)
{
    const auto now = live.nodes.constFind(file);
    if (now == live.nodes.cend()) {
        return;
    }
    const bool isNew = !nodes.contains(file);
    Node &node = nodes[file];
    const Node before = node;
    node = *now;
    node.entries = before.entries;
    if (!withAttributes && !isNew) {
        node.attributes = before.attributes;
    }
}

void DiskImage::bringNames(Inode folder, const DiskImage &live)
{
    for (const Changes &together : changesTo(live)) {
        const bool isOfFolder = std::any_of(together.begin(), together.end(),
                                            [folder](const Change &change) { return change.folder == folder; });
        for (const Change &change : isOfFolder ? together : Changes()) {
            apply(change, live);
        }
    }
}

QList<DiskImage::Changes> DiskImage::changesTo(const DiskImage &live) const
{
    QList<Changes> all;
    QHash<Inode, Changes> gained;
    QHash<Inode, Changes> lost;
    for (auto node = live.nodes.cbegin(); node != live.nodes.cend(); ++node) {
        const QMap<QByteArray, Inode> before = nodes.value(node.key()).entries;
        const QMap<QByteArray, Inode> after = node->entries;
        QSet<QByteArray> names(before.keyBegin(), before.keyEnd());
        names.unite({after.keyBegin(), after.keyEnd()});
        for (const QByteArray &name : std::as_const(names)) {
            const Change change{node.key(), name, before.value(name), after.value(name)};
            if (change.before != change.after) {
                change.after ? gained[change.after].append(change) : lost[change.before].append(change);
            }
        }
    }
    for (auto it = gained.cbegin(); it != gained.cend(); ++it) {
        if (live.renamed.contains(it.key()) && lost.contains(it.key())) {
            all.append(lost.take(it.key()) + it.value());
        } else {
            for (const Change &change : it.value()) {
                all.append(Changes{change});
            }
        }
    }
    for (const Changes &changes : std::as_const(lost)) {
        for (const Change &change : changes) {
            all.append(Changes{change});
        }
    }
    // Not in the order of a hash, which differs from run to run.
    std::sort(all.begin(), all.end(), [](const Changes &a, const Changes &b) {
        return std::pair(a.first().folder, a.first().name) < std::pair(b.first().folder, b.first().name);
    });
    return all;
}

void DiskImage::apply(const Change &change, const DiskImage &live)
{
    if (!nodes.contains(change.folder)) {
        nodes.insert(change.folder, live.nodes.value(change.folder).withoutContent());
    }
    QMap<QByteArray, Inode> &entries = nodes[change.folder].entries;
    if (!change.after) {
        entries.remove(change.name);
        return;
    }
    entries.insert(change.name, change.after);
    if (!nodes.contains(change.after)) {
        nodes.insert(change.after, live.nodes.value(change.after).withoutContent());
    }
}

DiskImage DiskImage::withSomeOf(const DiskImage &live, std::mt19937 &random) const
{
    DiskImage image = *this;
    for (const Changes &together : changesTo(live)) {
        if (random() % 2) {
            for (const Change &change : together) {
                image.apply(change, live);
            }
        }
    }
    for (auto node = live.nodes.cbegin(); node != live.nodes.cend(); ++node) {
        if (!image.nodes.contains(node.key())) {
            continue;
        }
        Node &mine = image.nodes[node.key()];
        if (S_ISREG(node->mode)) {
            mine.content = mixed(mine.content, node->content, random);
        }
        if (random() % 2) { // one block of the disk holds them all
            mine.attributes = node->attributes;
            mine.mode = node->mode;
            mine.modification = node->modification;
        }
    }
    return image;
}

void DiskImage::bringBy(const Habit &habit, const DiskImage &live)
{
    for (const Changes &together : changesTo(live)) {
        const bool isNew = together.size() == 1 && together.first().after && !together.first().before;
        const bool isRemoval = together.size() == 1 && !together.first().after;
        if (isNew ? habit.newNames : isRemoval ? habit.removals : habit.renamings) {
            for (const Change &change : together) {
                apply(change, live);
            }
        }
    }
    if (habit.contents) {
        for (const Inode inode : nodes.keys()) {
            bringContent(inode, live);
        }
    }
}

#include "Kit/Files/ZQPersistentURL.h"

#include "Kit/Files/ZQSystemFile.h"

#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QIODevice>

#include <dirent.h>
#include <fcntl.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <deque>
#include <memory>
#include <mutex>

namespace {

constexpr quint32 magic = 0x5a51504c;
constexpr quint8 formatNumber = 1;
constexpr qsizetype longestReference = 16384;
constexpr int searchedEntries = 6000; // around one starting folder
constexpr int foldersUp = 2;

// What tells one file from every other on its file system. An inode number is given to a new file once its old one is
// deleted; the birth time tells these apart where the file system keeps it.
struct Identity
{
    quint64 inode = 0;
    qint64 birth = 0; // nanoseconds since 1970; 0 when unknown
    quint64 fileSystem = 0;

    bool isSame(const Identity &other) const
    {
        if (inode != other.inode || birth != other.birth) {
            return false;
        }
        // Some file systems get another number at each mount, so it decides only when nothing better does.
        return birth != 0 || fileSystem == other.fileSystem;
    }
};

struct Reference
{
    Identity file;
    Identity folder;
    bool isFolder = false;
    QByteArray path;
};

struct Found
{
    Identity identity;
    bool isFolder = false;
    quint64 device = 0;
};

std::optional<Found> look(const QByteArray &path)
{
    struct statx status = {};
    if (statx(AT_FDCWD, path.constData(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_BASIC_STATS | STATX_BTIME,
              &status) != 0) {
        return std::nullopt;
    }
    Found found;
    found.identity.inode = status.stx_ino;
    if (status.stx_mask & STATX_BTIME) {
        found.identity.birth = static_cast<qint64>(status.stx_btime.tv_sec) * 1000000000 + status.stx_btime.tv_nsec;
    }
    found.isFolder = S_ISDIR(status.stx_mode);
    found.device = (static_cast<quint64>(status.stx_dev_major) << 32) | status.stx_dev_minor;
    return found;
}

quint64 fileSystemOf(const QByteArray &path)
{
    struct statfs status = {};
    quint64 number = 0;
    if (statfs(path.constData(), &status) == 0) {
        std::memcpy(&number, &status.f_fsid, sizeof number);
    }
    return number;
}

bool isFile(const QByteArray &path, const Identity &identity)
{
    const auto found = look(path);
    if (!found || found->identity.inode != identity.inode) {
        return false;
    }
    Identity here = found->identity;
    here.fileSystem = here.birth == 0 ? fileSystemOf(path) : 0;
    return here.isSame(identity);
}

QByteArray folderOf(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash <= 0 ? QByteArray("/") : path.left(slash);
}

QByteArray below(const QByteArray &folder, const char *name)
{
    return (folder == "/" ? folder : folder + '/') + name;
}

// Whether using `path` would make the system mount something: its mount point waits for an automounter.
bool wouldMount(const QByteArray &path)
{
    QFile mounts(QStringLiteral("/proc/self/mounts"));
    if (!mounts.open(QIODevice::ReadOnly)) {
        return false;
    }
    QByteArray type;
    qsizetype longest = -1;
    for (const QByteArray &line : mounts.readAll().split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        if (fields.size() < 3) {
            continue;
        }
        QByteArray point = fields.at(1);
        point.replace("\\040", " ").replace("\\011", "\t").replace("\\012", "\n").replace("\\134", "\\");
        const bool holds = path == point || path.startsWith(point == "/" ? point : point + '/');
        if (holds && point.size() >= longest) { // a later mount lies over an earlier one
            longest = point.size();
            type = fields.at(2);
        }
    }
    return type == "autofs";
}

// Looks for a file by its identity, nearest folders first, opening only what may hold it.
class Search
{
public:
    Search(const Reference &reference, const QByteArray &start) : m_reference(reference)
    {
        if (const auto found = look(start); found && found->isFolder) {
            m_device = found->device;
            m_folders.push_back(start);
        }
    }

    QByteArray run()
    {
        while (!m_folders.empty() && m_left > 0) {
            const QByteArray folder = m_folders.front();
            m_folders.pop_front();
            const QByteArray found = lookIn(folder);
            if (!found.isEmpty()) {
                return found;
            }
        }
        return {};
    }

private:
    QByteArray lookIn(const QByteArray &folder)
    {
        const std::unique_ptr<DIR, int (*)(DIR *)> directory(opendir(folder.constData()), closedir);
        while (directory && m_left-- > 0) {
            const dirent *const entry = readdir(directory.get());
            if (!entry) {
                break;
            }
            if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) {
                continue;
            }
            const QByteArray path = below(folder, entry->d_name);
            if (entry->d_ino == m_reference.file.inode && isFile(path, m_reference.file)) {
                return path;
            }
            if (entry->d_type == DT_DIR || entry->d_type == DT_UNKNOWN) {
                note(path, entry->d_ino);
            }
        }
        return {};
    }

    void note(const QByteArray &path, quint64 inode)
    {
        const auto found = look(path);
        if (!found || !found->isFolder || found->device != m_device) {
            return; // another volume, or one not mounted yet
        }
        if (inode == m_reference.folder.inode) {
            m_folders.push_front(path);
        } else {
            m_folders.push_back(path);
        }
    }

    const Reference &m_reference;
    std::deque<QByteArray> m_folders;
    quint64 m_device = 0;
    int m_left = searchedEntries;
};

std::optional<Reference> decoded(const QByteArray &data)
{
    if (data.size() > longestReference) {
        return std::nullopt;
    }
    QDataStream stream(data);
    stream.setVersion(QDataStream::Qt_6_0);
    quint32 mark = 0;
    quint8 format = 0;
    Reference reference;
    stream >> mark >> format;
    if (mark != magic || format != formatNumber) {
        return std::nullopt;
    }
    for (Identity *identity : {&reference.file, &reference.folder}) {
        stream >> identity->fileSystem >> identity->inode >> identity->birth;
    }
    stream >> reference.isFolder >> reference.path;
    const bool isWhole = stream.status() == QDataStream::Ok && stream.atEnd();
    if (!isWhole || !reference.path.startsWith('/') || reference.path.contains('\0')) {
        return std::nullopt;
    }
    return reference;
}

struct Roots
{
    std::mutex mutex;
    QList<QByteArray> paths;
};

Roots &roots()
{
    static Roots instance;
    return instance;
}

QByteArray searchAround(const Reference &reference)
{
    QByteArray start = folderOf(reference.path);
    while (start != "/" && !look(start)) {
        start = folderOf(start);
    }
    for (int up = 0; up <= foldersUp && start != "/"; ++up) {
        const QByteArray found = Search(reference, start).run();
        if (!found.isEmpty()) {
            return found;
        }
        start = folderOf(start);
    }
    QList<QByteArray> watched;
    {
        const std::lock_guard lock(roots().mutex);
        watched = roots().paths;
        watched.detach();
    }
    for (const QByteArray &root : std::as_const(watched)) {
        const QByteArray found = wouldMount(root) ? QByteArray() : Search(reference, root).run();
        if (!found.isEmpty()) {
            return found;
        }
    }
    return {};
}

} // namespace

QByteArray zqDataForPersistentURL(const QString &path)
{
    const auto name = zqSystemPath(path, nullptr);
    if (!name) {
        return {};
    }
    Reference reference;
    reference.path = QFile::encodeName(QDir::cleanPath(QDir::current().absoluteFilePath(path)));
    const auto file = look(reference.path);
    if (!file) {
        return {};
    }
    reference.file = file->identity;
    reference.file.fileSystem = fileSystemOf(reference.path);
    reference.isFolder = file->isFolder;
    const QByteArray parent = folderOf(reference.path);
    if (const auto folder = look(parent)) {
        reference.folder = folder->identity;
        reference.folder.fileSystem = fileSystemOf(parent);
    }
    QByteArray data;
    QDataStream stream(&data, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_0);
    stream << magic << formatNumber;
    for (const Identity &identity : {reference.file, reference.folder}) {
        stream << identity.fileSystem << identity.inode << identity.birth;
    }
    stream << reference.isFolder << reference.path;
    return data;
}

QString zqURLFromPersistentData(const QByteArray &data)
{
    const auto reference = decoded(data);
    if (!reference || wouldMount(reference->path)) {
        return {};
    }
    if (isFile(reference->path, reference->file)) {
        return QFile::decodeName(reference->path);
    }
    const QByteArray moved = searchAround(*reference);
    if (!moved.isEmpty()) {
        return QFile::decodeName(moved);
    }
    // Saved by a program that writes a new file over the old one.
    const auto successor = look(reference->path);
    return successor && successor->isFolder == reference->isFolder ? QFile::decodeName(reference->path) : QString();
}

void zqSetPersistentURLRoots(const QStringList &paths)
{
    QList<QByteArray> names;
    for (const QString &path : paths) {
        if (const auto name = zqSystemPath(QDir::cleanPath(path), nullptr)) {
            names.append(*name);
        }
    }
    const std::lock_guard lock(roots().mutex);
    roots().paths = names;
}

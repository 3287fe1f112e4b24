#include "Kit/Files/ZQFileReference.h"

#include "Kit/Files/ZQFolderIdentity.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Files/ZQTrash.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QFile>
#include <QIODevice>

#include <fcntl.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <algorithm>
#include <bitset>
#include <chrono>
#include <cstring>

namespace {

constexpr quint32 magic = 0x5a51504c;
constexpr quint8 firstFormat = 1;  // without contents
constexpr quint8 secondFormat = 2; // without the number of names, which is one
constexpr quint8 lastFormat = 3;
constexpr qsizetype longestReference = 16384;
constexpr qsizetype longestDigest = 64;
constexpr qint64 readAtEachEnd = 16384;
constexpr std::size_t leastVariety = 128;        // of byte values; the white margins of two pictures look the same
constexpr std::chrono::seconds longestSaving{5}; // of a large file
constexpr const char *asideEndings[] = {"~", ".bak", ".backup", ".old", ".orig", "_original", "#"};

qint64 nanoseconds(const statx_timestamp &time)
{
    return static_cast<qint64>(time.tv_sec) * 1000000000 + time.tv_nsec;
}

QByteArray readAt(int file, qint64 offset, qint64 size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    qint64 filled = 0;
    while (filled < size) {
        const ssize_t count =
            ::pread(file, bytes.data() + filled, static_cast<std::size_t>(size - filled), offset + filled);
        if (count <= 0) {
            return {};
        }
        filled += count;
    }
    return bytes;
}

bool hasVariety(const QByteArray &bytes)
{
    std::bitset<256> values;
    for (const char byte : bytes) {
        values.set(static_cast<unsigned char>(byte));
    }
    return values.count() >= leastVariety;
}

bool numbersAnew(const QByteArray &path)
{
    struct statfs status = {};
    return statfs(path.constData(), &status) == 0 &&
           ZQFolderIdentity::hasPassingInodes(static_cast<quint64>(static_cast<unsigned int>(status.f_type)));
}

} // namespace

bool ZQFileIdentity::isSameAs(const ZQFileIdentity &other) const
{
    if (inode != other.inode || birth != other.birth) {
        return false;
    }
    // Some file systems get another number at each mount, so it decides only when nothing better does.
    return birth != 0 || fileSystem == other.fileSystem;
}

ZQFileContents ZQFileContents::ofFile(const QByteArray &path)
{
    const ZQFileDescriptor file(::open(path.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (!file.isOpen() || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size == 0) {
        return {};
    }
    const qint64 size = status.st_size;
    const QByteArray head = readAt(file.get(), 0, std::min(size, readAtEachEnd));
    const qint64 rest = std::min(size - head.size(), readAtEachEnd);
    const QByteArray tail = readAt(file.get(), size - rest, rest);
    if (head.isEmpty() || tail.size() != rest) {
        return {};
    }
    ZQFileContents contents;
    contents.size = size;
    const bool isAllOfIt = head.size() + rest == size;
    if (isAllOfIt || hasVariety(head + tail)) {
        contents.ends = QCryptographicHash::hash(head + tail, QCryptographicHash::Sha1);
    }
    return contents;
}

bool ZQFileContents::isSavedAs(const ZQFileContents &other) const
{
    return !ends.isEmpty() && size == other.size && ends == other.ends;
}

std::optional<ZQFileReference> ZQFileReference::decoded(const QByteArray &data)
{
    if (data.size() > longestReference) {
        return std::nullopt;
    }
    QDataStream stream(data);
    stream.setVersion(QDataStream::Qt_6_0);
    quint32 mark = 0;
    quint8 format = 0;
    ZQFileReference reference;
    stream >> mark >> format;
    if (mark != magic || format < firstFormat || format > lastFormat) {
        return std::nullopt;
    }
    for (ZQFileIdentity *identity : {&reference.file, &reference.folder}) {
        stream >> identity->fileSystem >> identity->inode >> identity->birth;
    }
    stream >> reference.isFolder >> reference.path;
    if (format > firstFormat) {
        stream >> reference.contents.size >> reference.contents.ends;
    }
    if (format > secondFormat) {
        stream >> reference.names;
    }
    const bool isWhole =
        stream.status() == QDataStream::Ok && stream.atEnd() && reference.contents.ends.size() <= longestDigest;
    if (!isWhole || !reference.path.startsWith('/') || reference.path.contains('\0')) {
        return std::nullopt;
    }
    return reference;
}

QByteArray ZQFileReference::encoded() const
{
    QByteArray data;
    QDataStream stream(&data, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_0);
    stream << magic << (names > 1 ? lastFormat : secondFormat);
    for (const ZQFileIdentity &identity : {file, folder}) {
        stream << identity.fileSystem << identity.inode << identity.birth;
    }
    stream << isFolder << path << contents.size << contents.ends;
    if (names > 1) {
        stream << names;
    }
    return data;
}

bool ZQFileReference::isAt(const QByteArray &place) const
{
    return zqIsFile(place, file) && (isFolder || !ZQTrash::contains(QFile::decodeName(place)));
}

bool ZQFileReference::hasMovedTo(const QByteArray &place) const
{
    if (!isAt(place)) {
        return false;
    }
    // The number may be another file's since the last mount.
    const bool isToldByContents = place != path && file.birth == 0 && !contents.ends.isEmpty() && numbersAnew(place);
    if (isToldByContents && !contents.isSavedAs(ZQFileContents::ofFile(place))) {
        return false;
    }
    const auto found = isFolder || place == path ? std::nullopt : zqLookAtFile(place);
    return !found || found->names >= names;
}

bool ZQFileReference::isSuccessor(const QByteArray &place) const
{
    const auto found = zqLookAtFile(place);
    if (!found || found->isFolder != isFolder || (!isFolder && ZQTrash::contains(QFile::decodeName(place)))) {
        return false;
    }
    // A folder that was put back from a copy or mounted anew has nothing else to be known by. Nor has a file of the
    // first format on a file system without birth times.
    const bool isKnownByName = isFolder || (contents.ends.isEmpty() && file.birth == 0 && found->identity.birth == 0);
    const bool isNumberedAnew = file.birth != 0 && file.birth == found->identity.birth && numbersAnew(place);
    return isKnownByName || isNumberedAnew || contents.isSavedAs(ZQFileContents::ofFile(place));
}

bool ZQFileReference::isPutAside(const QByteArray &name) const
{
    const QByteArray own = path.mid(path.lastIndexOf('/') + 1);
    const QByteArray plain = name.startsWith('.') || name.startsWith('#') ? name.mid(1) : name;
    return std::any_of(std::begin(asideEndings), std::end(asideEndings),
                       [&](const char *ending) { return name == own + ending || plain == own + ending; });
}

bool zqAreOfOneSaving(const ZQFoundFile &putAside, const ZQFoundFile &newcomer)
{
    const qint64 made = newcomer.identity.birth != 0 ? newcomer.identity.birth : newcomer.modification;
    return std::chrono::abs(std::chrono::nanoseconds(made - putAside.change)) <= longestSaving;
}

std::optional<ZQFoundFile> zqLookAtFile(const QByteArray &path)
{
    struct statx status = {};
    if (statx(AT_FDCWD, path.constData(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_BASIC_STATS | STATX_BTIME,
              &status) != 0) {
        return std::nullopt;
    }
    ZQFoundFile found;
    found.identity.inode = status.stx_ino;
    found.identity.birth = status.stx_mask & STATX_BTIME ? nanoseconds(status.stx_btime) : 0;
    found.isFolder = S_ISDIR(status.stx_mode);
    found.device = (static_cast<quint64>(status.stx_dev_major) << 32) | status.stx_dev_minor;
    found.names = status.stx_nlink;
    found.modification = nanoseconds(status.stx_mtime);
    found.change = nanoseconds(status.stx_ctime);
    return found;
}

quint64 zqFileSystemOf(const QByteArray &path)
{
    struct statfs status = {};
    quint64 number = 0;
    if (statfs(path.constData(), &status) == 0) {
        std::memcpy(&number, &status.f_fsid, sizeof number);
    }
    return number;
}

bool zqIsFile(const QByteArray &path, const ZQFileIdentity &identity)
{
    const auto found = zqLookAtFile(path);
    if (!found || found->identity.inode != identity.inode) {
        return false;
    }
    ZQFileIdentity here = found->identity;
    here.fileSystem = here.birth == 0 ? zqFileSystemOf(path) : 0;
    return here.isSameAs(identity);
}

QByteArray zqFolderOf(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash <= 0 ? QByteArray("/") : path.left(slash);
}

bool zqWouldMount(const QByteArray &path)
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

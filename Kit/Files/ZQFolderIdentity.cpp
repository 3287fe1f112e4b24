#include "Kit/Files/ZQFolderIdentity.h"

#include "Kit/Files/ZQMountTable.h"
#include "Kit/Files/ZQSystemFile.h"

#include <QDir>
#include <QFile>
#include <QStringList>

#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>

namespace {

// File systems, and file systems behind programs, that number their files anew each time they are mounted.
constexpr quint64 passingInodes[] = {0x4d44 /* FAT */, 0x2011BAB0 /* exFAT */, 0x65735546 /* FUSE */,
                                     0x517B /* SMB */, 0xFF534D42 /* CIFS */,  0xFE534D42 /* SMB2 */};

const QString textFormat = QStringLiteral("1");

// The drive's own identifier: the name of a device depends on what else is plugged in.
QString identifierOfDevice(const QByteArray &device)
{
    struct stat wanted = {};
    if (::stat(device.constData(), &wanted) != 0 || !S_ISBLK(wanted.st_mode)) {
        return {};
    }
    const std::unique_ptr<DIR, int (*)(DIR *)> directory(::opendir("/dev/disk/by-uuid"), ::closedir);
    while (const dirent *const entry = directory ? ::readdir(directory.get()) : nullptr) {
        struct stat status = {};
        if (::fstatat(::dirfd(directory.get()), entry->d_name, &status, 0) == 0 && S_ISBLK(status.st_mode) &&
            status.st_rdev == wanted.st_rdev) {
            return QString::fromUtf8(entry->d_name);
        }
    }
    return {};
}

QString volumeOf(const QByteArray &path)
{
    char resolved[PATH_MAX];
    if (!::realpath(path.constData(), resolved)) {
        return {};
    }
    const ZQMountTable table = ZQMountTable::read();
    const ZQMountTable::Mount *const mount = table.mountOf(resolved);
    if (!mount) {
        return {};
    }
    const bool isDevice = mount->source.startsWith('/');
    return isDevice ? identifierOfDevice(mount->source) : QString::fromUtf8(mount->source);
}

} // namespace

std::optional<ZQFolderIdentity> ZQFolderIdentity::read(const QString &path)
{
    const std::optional<QByteArray> bytes = zqSystemPath(path, nullptr);
    if (!bytes) {
        errno = ENOENT;
        return std::nullopt;
    }
    const ZQFileDescriptor folder(::open(bytes->constData(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    struct statx status = {};
    struct statfs system = {};
    if (!folder.isOpen() ||
        ::statx(folder.get(), "", AT_EMPTY_PATH | AT_STATX_SYNC_AS_STAT, STATX_INO | STATX_BTIME, &status) != 0 ||
        ::fstatfs(folder.get(), &system) != 0) {
        return std::nullopt;
    }
    ZQFolderIdentity identity;
    identity.device = makedev(status.stx_dev_major, status.stx_dev_minor);
    static_assert(sizeof system.f_fsid == sizeof identity.fileSystem);
    std::memcpy(&identity.fileSystem, &system.f_fsid, sizeof identity.fileSystem);
    identity.type = static_cast<quint64>(static_cast<unsigned int>(system.f_type));
    identity.inode = status.stx_ino;
    if (status.stx_mask & STATX_BTIME) {
        identity.born = status.stx_btime.tv_sec * 1'000'000'000 + status.stx_btime.tv_nsec;
    }
    identity.volume = volumeOf(*bytes);
    return identity;
}

bool ZQFolderIdentity::hasPassingInodes(quint64 type)
{
    return std::find(std::begin(passingInodes), std::end(passingInodes), type) != std::end(passingInodes);
}

bool ZQFolderIdentity::isSamePlace(const ZQFolderIdentity &other) const
{
    const bool isNumberedAnew = hasPassingInodes(type);
    if (type != other.type || (!isNumberedAnew && inode != other.inode)) {
        return false;
    }
    if (born != 0 && other.born != 0 && (born != other.born || !isNumberedAnew)) {
        return born == other.born;
    }
    if (!volume.isEmpty() && !other.volume.isEmpty()) {
        return volume == other.volume;
    }
    return fileSystem != 0 && other.fileSystem != 0 ? fileSystem == other.fileSystem : device == other.device;
}

QString ZQFolderIdentity::toString() const
{
    const QString numbers = QStringList{QString::number(device, 16), QString::number(fileSystem, 16),
                                        QString::number(type, 16), QString::number(inode, 16), QString::number(born)}
                                .join(u' ');
    return textFormat + u' ' + numbers + u' ' + QString::fromLatin1(volume.toUtf8().toPercentEncoding());
}

std::optional<ZQFolderIdentity> ZQFolderIdentity::fromString(const QString &text)
{
    const QStringList fields = text.split(u' ');
    if (fields.size() != 7 || fields.first() != textFormat) {
        return std::nullopt;
    }
    ZQFolderIdentity identity;
    quint64 *const numbers[] = {&identity.device, &identity.fileSystem, &identity.type, &identity.inode};
    bool isNumber = true;
    for (qsizetype i = 0; i < 4 && isNumber; ++i) {
        *numbers[i] = fields[i + 1].toULongLong(&isNumber, 16);
    }
    if (isNumber) {
        identity.born = fields[5].toLongLong(&isNumber);
    }
    identity.volume = QString::fromUtf8(QByteArray::fromPercentEncoding(fields[6].toLatin1()));
    return isNumber ? std::optional(identity) : std::nullopt;
}

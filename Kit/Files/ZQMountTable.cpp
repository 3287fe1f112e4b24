#include "Kit/Files/ZQMountTable.h"

#include <QFile>
#include <QList>

#include <algorithm>
#include <iterator>

namespace {

// The file systems whose files others change without this kernel knowing, and the one that stands where any of them may
// be mounted by looking.
constexpr const char *silentTypes[] = {
    "nfs",  "nfs4",  "cifs",     "smb3",   "smbfs",  "9p",        "afs",   "ceph",     "coda", "lustre", "beegfs",
    "gpfs", "davfs", "virtiofs", "vboxsf", "prl_fs", "glusterfs", "ncpfs", "orangefs", "gfs2", "ocfs2",  "autofs"};
// Programs that only translate what lies on a disk of this machine, and all changes go through them.
constexpr const char *tellingPrograms[] = {"fuse.gocryptfs", "fuse.encfs", "fuse.cryfs",          "fuse.securefs",
                                           "fuse.exfat",     "fuse.ntfs",  "fuse.ntfs-3g",        "fuse.veracrypt",
                                           "fuse.ext2",      "fuse.apfs",  "fuse.fuse-overlayfs", "fuse.lklfuse"};

bool isDigit(char c)
{
    return c >= '0' && c <= '7';
}

// Blanks, line ends and backslashes are written as a backslash and three octal digits.
QByteArray unescaped(const QByteArray &text)
{
    QByteArray result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isEscape = text[i] == '\\' && i + 3 < text.size() && isDigit(text[i + 1]) && isDigit(text[i + 2]) &&
                              isDigit(text[i + 3]);
        if (!isEscape) {
            result.append(text[i]);
            continue;
        }
        result.append(static_cast<char>((text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + (text[i + 3] - '0')));
        i += 3;
    }
    return result;
}

} // namespace

bool zqIsPathWithin(const QByteArray &path, const QByteArray &folder)
{
    return path.startsWith(folder) && (path.size() == folder.size() || folder == "/" || path[folder.size()] == '/');
}

ZQMountTable ZQMountTable::read(const QByteArray &path)
{
    QFile file(QFile::decodeName(path));
    return ZQMountTable(file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray());
}

ZQMountTable::ZQMountTable(const QByteArray &mountinfo)
{
    const QList<QByteArray> lines = mountinfo.split('\n');
    for (const QByteArray &line : lines) {
        const QList<QByteArray> fields = line.split(' ');
        const qsizetype dash = fields.indexOf("-", 6); // any number of optional fields before it
        if (dash >= 0 && dash + 2 < fields.size()) {
            m_mounts.push_back({unescaped(fields[4]), fields[dash + 1], unescaped(fields[dash + 2]), fields[2]});
        }
    }
}

const ZQMountTable::Mount *ZQMountTable::mountOf(const QByteArray &path) const
{
    const auto found = std::find_if(m_mounts.crbegin(), m_mounts.crend(),
                                    [&](const Mount &mount) { return zqIsPathWithin(path, mount.point); });
    return found == m_mounts.crend() ? nullptr : &*found;
}

bool ZQMountTable::isSilent(const QByteArray &path) const
{
    const Mount *const mount = mountOf(path);
    return mount && mount->isSilent();
}

std::vector<ZQMountTable::Mount> ZQMountTable::mountsBelow(const QByteArray &folder) const
{
    std::vector<Mount> below;
    for (const Mount &mount : m_mounts) {
        if (mount.point != folder && zqIsPathWithin(mount.point, folder) && mountOf(mount.point) == &mount) {
            below.push_back(mount);
        }
    }
    return below;
}

bool ZQMountTable::isSilentType(const QByteArray &type)
{
    const auto holds = [&](const auto &list) {
        return std::any_of(std::begin(list), std::end(list), [&](const char *one) { return type == one; });
    };
    return holds(silentTypes) || (type.startsWith("fuse.") && !holds(tellingPrograms));
}

#include "Classes/Application/BackupRoom.h"

#include "Kit/Files/ZQSystemFile.h"

#include <QFile>
#include <QStorageInfo>

#include <algorithm>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

// Nothing of it is left, however this ends.
ZQFileDescriptor namelessFile(const QByteArray &folder)
{
    const QByteArray path = zqTemporaryNameBeside(folder + "/probe");
    ZQFileDescriptor file(::open(path.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (file.isOpen()) {
        ::unlink(path.constData());
    }
    return file;
}

} // namespace

BackupRoom BackupRoom::at(const QString &folder)
{
    struct statvfs status = {};
    if (::statvfs(QFile::encodeName(folder).constData(), &status) != 0) {
        return {};
    }
    const auto block = qint64(status.f_frsize);
    return {block * qint64(status.f_bavail), block * qint64(status.f_blocks)};
}

qint64 BackupRoom::kept() const
{
    constexpr qint64 most = 1LL << 30;
    constexpr qint64 part = 20;
    return std::min(most, total / part);
}

bool BackupRoom::holds(qint64 bytes) const
{
    return total <= 0 || bytes + kept() <= available;
}

bool BackupRoom::isShared(const QString &library, const QString &folder)
{
    if (QStorageInfo(library).device() != QStorageInfo(folder).device()) {
        return false;
    }
    const QByteArray path = QFile::encodeName(folder);
    const ZQFileDescriptor source = namelessFile(path);
    const ZQFileDescriptor target = namelessFile(path);
    const QByteArray data(1 << 16, 'x');
    return source.isOpen() && target.isOpen() && zqWriteAll(source.get(), data.constData(), data.size()) &&
           ::ioctl(target.get(), FICLONE, source.get()) == 0;
}

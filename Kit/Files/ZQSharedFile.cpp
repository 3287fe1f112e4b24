#include "Kit/Files/ZQSharedFile.h"

#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQSystemFile.h"

#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool isMarked(const QString &path)
{
    return QFileInfo(QFileInfo(path).absolutePath() + QStringLiteral("/../../") + ZQSharedFile::markName).isFile();
}

} // namespace

bool ZQSharedFile::makeOwn(const QString &path, ZQError *error)
{
    struct stat status = {};
    const QByteArray name = QFile::encodeName(path);
    if (::lstat(name.constData(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_nlink < 2 || !isMarked(path)) {
        return true;
    }
    const QByteArray copy = zqTemporaryNameBeside(name);
    if (!zqCopyFile(path, QFile::decodeName(copy), error)) {
        return false;
    }
    const ZQFileDescriptor file(::open(copy.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    if (::fdatasync(file.get()) != 0 || ::rename(copy.constData(), name.constData()) != 0) {
        zqFailWithErrno(error, name);
        ::unlink(copy.constData());
        return false;
    }
    return true;
}

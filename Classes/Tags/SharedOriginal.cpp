#include "Classes/Tags/SharedOriginal.h"

#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQSystemFile.h"

#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// BUNDLE/Library/UUID.ztlibraryitem/FILE
bool isInBackup(const QString &path)
{
    const QString item = QFileInfo(path).absolutePath();
    return item.endsWith(QStringLiteral(".ztlibraryitem")) &&
           QFileInfo(item + QStringLiteral("/../../") + SharedOriginal::recordName).isFile();
}

} // namespace

bool SharedOriginal::makeOwn(const QString &path, ZQError *error)
{
    struct stat status = {};
    const QByteArray name = QFile::encodeName(path);
    if (::lstat(name.constData(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_nlink < 2 ||
        !isInBackup(path)) {
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

#include "Kit/Files/ZQSystemFile.h"

#include <QFile>
#include <QRandomGenerator>

#include <dirent.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>

bool ZQFileDescriptor::close()
{
    return m_descriptor < 0 || ::close(std::exchange(m_descriptor, -1)) == 0;
}

std::optional<QByteArray> zqSystemPath(const QString &path, ZQError *error)
{
    if (path.isEmpty() || path.contains(QChar::Null)) {
        zqSetError(error, ZQError::posix(EINVAL, path));
        return std::nullopt;
    }
    return QFile::encodeName(path);
}

std::vector<char *> zqPointersTo(std::vector<QByteArray> &texts)
{
    std::vector<char *> out;
    for (QByteArray &text : texts) {
        out.push_back(text.data());
    }
    out.push_back(nullptr);
    return out;
}

bool zqWriteAll(int descriptor, const char *data, qint64 size)
{
    while (size > 0) {
        const ssize_t written = ::write(descriptor, data, static_cast<size_t>(size));
        if (written < 0 && errno != EINTR) {
            return false;
        }
        if (written > 0) {
            data += written;
            size -= written;
        }
    }
    return true;
}

bool zqFailWithErrno(ZQError *error, const QByteArray &path)
{
    zqSetError(error, ZQError::posix(errno, QFile::decodeName(path)));
    return false;
}

void zqCopyUserAttributes(int source, int destination)
{
    const ssize_t size = flistxattr(source, nullptr, 0);
    if (size <= 0) {
        return;
    }
    QByteArray names(size, '\0');
    const ssize_t got = flistxattr(source, names.data(), static_cast<size_t>(size));
    names.truncate(std::max<ssize_t>(got, 0));
    for (const QByteArray &name : names.split('\0')) {
        if (!name.startsWith("user.")) {
            continue;
        }
        const ssize_t length = fgetxattr(source, name.constData(), nullptr, 0);
        if (length < 0) {
            continue;
        }
        QByteArray value(length, '\0');
        const ssize_t read = fgetxattr(source, name.constData(), value.data(), static_cast<size_t>(length));
        if (read >= 0) {
            fsetxattr(destination, name.constData(), value.constData(), static_cast<size_t>(read), 0);
        }
    }
}

void zqRemoveTree(const QByteArray &path)
{
    if (::unlink(path.constData()) == 0 || (errno != EISDIR && errno != EPERM)) {
        return;
    }
    ::chmod(path.constData(), S_IRWXU);
    if (DIR *const folder = opendir(path.constData())) {
        while (const dirent *const entry = readdir(folder)) {
            const QByteArray name(entry->d_name);
            if (name != "." && name != "..") {
                zqRemoveTree(path + '/' + name);
            }
        }
        closedir(folder);
    }
    ::rmdir(path.constData());
}

QByteArray zqTemporaryNameBeside(const QByteArray &path)
{
    const QByteArray folder = path.left(path.lastIndexOf('/') + 1);
    return folder + ".zelto-" + QByteArray::number(QRandomGenerator::global()->generate64(), 36);
}

#include "Kit/Files/ZQExtendedAttributes.h"

#include "Kit/Files/ZQOwnMove.h"
#include "Kit/Files/ZQSharedFile.h"

#include <QFile>

#include <sys/xattr.h>

#include <cerrno>

namespace {

constexpr int tries = 8; // a value may grow between asking for its size and reading it

QByteArray systemName(const QString &name)
{
    return "user." + name.toUtf8();
}

bool fail(ZQError *error, const QString &path)
{
    zqSetError(error, ZQError::posix(errno, path));
    return false;
}

// Reads what `call(buffer, size)` gives: in one call when it is small, as nearly everything is, else asking for the
// size first.
template <class Call>
std::optional<QByteArray> readSized(Call call)
{
    char small[512];
    const ssize_t fits = call(small, sizeof small);
    if (fits >= 0) {
        return QByteArray(small, fits);
    }
    if (errno != ERANGE) {
        return std::nullopt;
    }
    for (int i = 0; i < tries; ++i) {
        const ssize_t size = call(nullptr, 0);
        if (size < 0) {
            return std::nullopt;
        }
        QByteArray buffer(size, Qt::Uninitialized);
        const ssize_t got = size == 0 ? 0 : call(buffer.data(), static_cast<size_t>(size));
        if (got >= 0) {
            buffer.truncate(got);
            return buffer;
        }
        if (errno != ERANGE) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<QByteArray> ZQExtendedAttributes::get(const QString &path, const QString &name, ZQError *error)
{
    const QByteArray file = QFile::encodeName(path);
    const QByteArray key = systemName(name);
    auto value = readSized(
        [&](char *buffer, size_t size) { return lgetxattr(file.constData(), key.constData(), buffer, size); });
    if (!value && errno != ENODATA) {
        fail(error, path);
    }
    return value;
}

bool ZQExtendedAttributes::set(const QString &path, const QString &name, const QByteArray &value, ZQError *error)
{
    const QByteArray file = QFile::encodeName(path);
    const ZQOwnChange own(path);
    if (!ZQSharedFile::makeOwn(path, error)) {
        return false;
    }
    return lsetxattr(file.constData(), systemName(name).constData(), value.constData(),
                     static_cast<size_t>(value.size()), 0) == 0 ||
           fail(error, path);
}

bool ZQExtendedAttributes::remove(const QString &path, const QString &name, ZQError *error)
{
    const QByteArray file = QFile::encodeName(path);
    const QByteArray key = systemName(name);
    const ZQOwnChange own(path);
    const bool isThere = lgetxattr(file.constData(), key.constData(), nullptr, 0) >= 0; // else nothing is written
    if (isThere && !ZQSharedFile::makeOwn(path, error)) {
        return false;
    }
    return lremovexattr(file.constData(), key.constData()) == 0 || errno == ENODATA || fail(error, path);
}

QStringList ZQExtendedAttributes::list(const QString &path, ZQError *error)
{
    const QByteArray file = QFile::encodeName(path);
    const auto names = readSized([&](char *buffer, size_t size) { return llistxattr(file.constData(), buffer, size); });
    if (!names) {
        fail(error, path);
        return {};
    }
    QStringList found;
    for (const QByteArray &name : names->split('\0')) {
        if (name.startsWith("user.")) {
            found.append(QString::fromUtf8(name.mid(5)));
        }
    }
    return found;
}

#include "Kit/Files/ZQNewFile.h"

#include "Kit/Files/ZQFileCopy.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

std::optional<ZQNewFile> ZQNewFile::make(const QString &path, ZQError *error, mode_t mode)
{
    const auto name = zqSystemPath(path, error);
    if (!name) {
        return std::nullopt;
    }
    ZQNewFile out;
    out.m_path = path;
    const QByteArray temporary = zqTemporaryNameBeside(*name);
    out.m_file = ZQFileDescriptor(::open(temporary.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    if (!out.m_file.isOpen()) {
        zqFailWithErrno(error, *name);
        return std::nullopt;
    }
    out.m_temporary = temporary;
    return out;
}

ZQNewFile::ZQNewFile(ZQNewFile &&other) noexcept
    : m_path(std::move(other.m_path)), m_temporary(std::exchange(other.m_temporary, {})),
      m_file(std::move(other.m_file))
{
}

ZQNewFile::~ZQNewFile()
{
    if (!m_temporary.isEmpty()) {
        ::unlink(m_temporary.constData());
    }
}

bool ZQNewFile::place(ZQError *error)
{
    if (!m_file.close()) {
        zqSetError(error, ZQError::posix(errno, m_path));
        return false;
    }
    ZQError failure;
    if (!zqMoveNoReplace(QFile::decodeName(m_temporary), m_path, &failure)) {
        zqSetError(error, ZQError::posix(failure.code, m_path)); // nobody knows the other name
        return false;
    }
    m_temporary.clear();
    return true;
}

bool zqWriteNewFile(const QString &path, const QByteArray &content, ZQError *error)
{
    auto file = ZQNewFile::make(path, error);
    if (file && !zqWriteAll(file->descriptor(), content.constData(), content.size())) {
        return zqFailWithErrno(error, QFile::encodeName(path));
    }
    return file && file->place(error);
}

#include "Kit/Imaging/Decoders/ZQSourceFile.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vips/vips.h>

#include <utility>

ZQSourceFile::ZQSourceFile(ZQFileDescriptor descriptor, QString name)
    : m_descriptor(std::make_shared<const ZQFileDescriptor>(std::move(descriptor))), m_start(std::make_shared<Start>()),
      m_name(std::move(name))
{
}

ZQSourceFile ZQSourceFile::open(const QString &path)
{
    return {ZQFileDescriptor(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC)), path};
}

ZQSourceFile ZQSourceFile::ofBytes(const QByteArray &bytes, const QString &name)
{
    ZQFileDescriptor memory(::memfd_create("bytes", MFD_CLOEXEC));
    const bool written = memory.isOpen() && zqWriteAll(memory.get(), bytes.constData(), bytes.size());
    return {written ? std::move(memory) : ZQFileDescriptor(), name};
}

qint64 ZQSourceFile::size() const
{
    struct stat status
    {
    };
    return isOpen() && ::fstat(m_descriptor->get(), &status) == 0 ? qint64(status.st_size) : 0;
}

const QByteArray &ZQSourceFile::start() const
{
    constexpr qint64 smallBytes = 262144;
    static const QByteArray nothing;
    if (!isOpen()) {
        return nothing;
    }
    if (!m_start->isRead) {
        m_start->isRead = true;
        const qint64 all = size();
        QByteArray bytes(all <= smallBytes ? all : sniffedBytes, Qt::Uninitialized);
        qint64 done = 0;
        ssize_t got = 1;
        while (done < bytes.size() && (got > 0 || errno == EINTR)) {
            got = ::pread(m_descriptor->get(), bytes.data() + done, size_t(bytes.size() - done), done);
            done += std::max<ssize_t>(got, 0);
            errno = got == 0 ? 0 : errno;
        }
        bytes.truncate(done);
        m_start->bytes = bytes;
    }
    return m_start->bytes;
}

bool ZQSourceFile::openIn(QFile &file) const
{
    return isOpen() && ::lseek(m_descriptor->get(), 0, SEEK_SET) == 0 &&
           file.open(m_descriptor->get(), QIODevice::ReadOnly, QFileDevice::DontCloseHandle);
}

_VipsSource *ZQSourceFile::makeVipsSource() const
{
    return isOpen() && ::lseek(m_descriptor->get(), 0, SEEK_SET) == 0
               ? vips_source_new_from_descriptor(m_descriptor->get())
               : nullptr;
}

ZQSourceFile::Bytes::Bytes(const ZQSourceFile &file) : m_size(size_t(file.size()))
{
    if (m_size > 0) {
        void *const data = ::mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_PRIVATE, file.m_descriptor->get(), 0);
        m_data = data == MAP_FAILED ? nullptr : data;
    }
}

ZQSourceFile::Bytes::~Bytes()
{
    if (m_data) {
        ::munmap(m_data, m_size);
    }
}

ZQSourceFile::Bytes::Bytes(Bytes &&other) noexcept
    : m_data(std::exchange(other.m_data, nullptr)), m_size(std::exchange(other.m_size, 0))
{
}

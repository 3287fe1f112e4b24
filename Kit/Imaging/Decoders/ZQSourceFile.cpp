#include "Kit/Imaging/Decoders/ZQSourceFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vips/vips.h>

#include <utility>

ZQSourceFile::ZQSourceFile(ZQFileDescriptor descriptor, QString name)
    : m_descriptor(std::make_shared<const ZQFileDescriptor>(std::move(descriptor))), m_name(std::move(name))
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

#include "Tests/Classes/LiveFolders/ServedMount.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/fuse.h>
#include <poll.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr quint64 firstFile = 2; // 1 is the folder
constexpr qsizetype largestRequest = 1 << 20;

template <class Value>
QByteArray bytesOf(const Value &value)
{
    return QByteArray(reinterpret_cast<const char *>(&value), qsizetype(sizeof value));
}

template <class Value>
Value valueIn(const QByteArray &request)
{
    Value value = {};
    const std::size_t most = std::size_t(request.size()) - sizeof(fuse_in_header);
    std::memcpy(&value, request.constData() + sizeof(fuse_in_header), std::min(sizeof value, most));
    return value;
}

fuse_attr attributesOf(const QByteArray &path, quint64 number)
{
    struct stat status = {};
    ::stat(path.constData(), &status);
    fuse_attr attributes = {};
    attributes.ino = number;
    attributes.size = quint64(status.st_size);
    attributes.mtime = quint64(status.st_mtim.tv_sec);
    attributes.mtimensec = quint32(status.st_mtim.tv_nsec);
    attributes.ctime = attributes.mtime;
    attributes.ctimensec = attributes.mtimensec;
    attributes.mode = status.st_mode;
    attributes.nlink = 1;
    attributes.blksize = 4096;
    return attributes;
}

} // namespace

ServedMount::ServedMount(const QString &folder, const QString &source, const QStringList &names)
    : m_folder(QFile::encodeName(folder)), m_entries(firstFile)
{
    m_entries[1].path = QFile::encodeName(source);
    for (const QString &name : names) {
        m_entries.push_back({QFile::encodeName(name), QFile::encodeName(source + u'/' + name)});
    }
    m_device = ::open("/dev/fuse", O_RDWR | O_NONBLOCK | O_CLOEXEC);
    const QByteArray options = "fd=" + QByteArray::number(m_device) + ",rootmode=40000,user_id=0,group_id=0";
    m_isMounted = m_device >= 0 && ::mount("served", m_folder.constData(), "fuse", 0, options.constData()) == 0;
    if (m_isMounted) {
        m_server = std::thread([this] { serve(); });
    }
}

ServedMount::~ServedMount()
{
    die();
    if (m_isMounted) {
        ::umount2(m_folder.constData(), MNT_DETACH);
    }
}

void ServedMount::die()
{
    m_isEnding = true;
    if (m_server.joinable()) {
        m_server.join();
    }
    if (m_device >= 0) {
        ::close(m_device);
        m_device = -1;
    }
}

void ServedMount::serve() const
{
    QByteArray buffer(largestRequest, Qt::Uninitialized);
    while (!m_isEnding) {
        constexpr int untilAskedAnew = 20; // milliseconds
        pollfd waiting{m_device, POLLIN, 0};
        if (::poll(&waiting, 1, untilAskedAnew) <= 0) {
            continue;
        }
        const ssize_t count = ::read(m_device, buffer.data(), std::size_t(buffer.size()));
        if (count < 0 && (errno == EINTR || errno == EAGAIN || errno == ENOENT)) {
            continue;
        }
        if (count < ssize_t(sizeof(fuse_in_header))) {
            return;
        }
        const QByteArray request = buffer.left(count);
        fuse_in_header head = {};
        std::memcpy(&head, request.constData(), sizeof head);
        if (head.opcode == FUSE_FORGET || head.opcode == FUSE_BATCH_FORGET || head.opcode == FUSE_INTERRUPT) {
            continue;
        }
        int error = 0;
        const QByteArray result = answer(request, error);
        const fuse_out_header out{quint32(sizeof(fuse_out_header)) + quint32(result.size()), -error, head.unique};
        const QByteArray bytes = bytesOf(out) + result;
        if (::write(m_device, bytes.constData(), std::size_t(bytes.size())) < 0 && errno == ENODEV) {
            return;
        }
    }
}

std::size_t ServedMount::entryNamed(const QByteArray &name) const
{
    const auto found = std::find_if(m_entries.begin() + firstFile, m_entries.end(),
                                    [&name](const Entry &entry) { return entry.name == name; });
    return found == m_entries.end() ? 0 : std::size_t(found - m_entries.begin());
}

QByteArray ServedMount::list(quint64 offset) const
{
    QByteArray entries;
    for (quint64 number = std::max(offset + 1, firstFile); number < m_entries.size(); ++number) {
        const QByteArray &name = m_entries[number].name;
        fuse_dirent entry;
        entry.ino = number;
        entry.off = number;
        entry.namelen = quint32(name.size());
        entry.type = quint32(S_IFREG >> 12);
        QByteArray bytes(reinterpret_cast<const char *>(&entry), FUSE_NAME_OFFSET);
        bytes += name;
        bytes.append((8 - bytes.size() % 8) % 8, '\0');
        entries += bytes;
    }
    return entries;
}

QByteArray ServedMount::answer(const QByteArray &request, int &error) const
{
    fuse_in_header head = {};
    std::memcpy(&head, request.constData(), sizeof head);
    const std::size_t number = head.nodeid < m_entries.size() ? head.nodeid : 0;
    switch (head.opcode) {
    case FUSE_INIT: {
        fuse_init_out out = {};
        out.major = FUSE_KERNEL_VERSION;
        out.minor = FUSE_KERNEL_MINOR_VERSION;
        out.max_write = 4096;
        return bytesOf(out);
    }
    case FUSE_GETATTR: {
        fuse_attr_out out = {};
        out.attr = attributesOf(m_entries[number].path, number);
        return bytesOf(out);
    }
    case FUSE_LOOKUP: {
        fuse_entry_out out = {};
        out.nodeid = entryNamed(QByteArray(request.constData() + sizeof head));
        if (out.nodeid == 0) {
            error = ENOENT;
            return {};
        }
        out.attr = attributesOf(m_entries[out.nodeid].path, out.nodeid);
        return bytesOf(out);
    }
    case FUSE_OPEN:
    case FUSE_OPENDIR:
        return bytesOf(fuse_open_out{});
    case FUSE_READDIR:
        return list(valueIn<fuse_read_in>(request).offset);
    case FUSE_READ: {
        const auto wanted = valueIn<fuse_read_in>(request);
        QFile file(QFile::decodeName(m_entries[number].path));
        return file.open(QIODevice::ReadOnly) && file.seek(qint64(wanted.offset)) ? file.read(wanted.size)
                                                                                  : QByteArray();
    }
    case FUSE_STATFS:
        return bytesOf(fuse_statfs_out{});
    case FUSE_RELEASE:
    case FUSE_RELEASEDIR:
    case FUSE_FLUSH:
        return {};
    default:
        error = ENOSYS;
        return {};
    }
}

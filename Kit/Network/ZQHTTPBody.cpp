#include "Kit/Network/ZQHTTPBody.h"

#include "Kit/Files/ZQRegularFile.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Network/ZQNetworkError.h"

#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

struct ZQHTTPBody::OpenFile
{
    ZQFileDescriptor descriptor;
    QString name;
    struct stat before = {};

    bool isUnchanged() const
    {
        struct stat now = {};
        return fstat(descriptor.get(), &now) == 0 && now.st_size == before.st_size &&
               now.st_mtim.tv_sec == before.st_mtim.tv_sec && now.st_mtim.tv_nsec == before.st_mtim.tv_nsec;
    }
};

// The pieces as one device, for one sending.
class ZQHTTPBodyDevice : public QIODevice
{
public:
    explicit ZQHTTPBodyDevice(ZQHTTPBody body) : m_body(std::move(body)) { open(ReadOnly | Unbuffered); }

    qint64 size() const override { return m_body.size(); }
    bool isSequential() const override { return false; }

protected:
    qint64 readData(char *data, qint64 maximum) override
    {
        const qint64 at = pos();
        const auto after = std::upper_bound(m_body.m_pieces.cbegin(), m_body.m_pieces.cend(), at,
                                            [](qint64 place, const auto &piece) { return place < piece.start; });
        if (maximum <= 0 || at >= size() || after == m_body.m_pieces.cbegin()) {
            return 0;
        }
        const ZQHTTPBody::Piece &piece = *std::prev(after);
        const qint64 within = at - piece.start;
        const qint64 count = std::min(maximum, piece.length - within);
        if (!piece.file) {
            std::memcpy(data, piece.bytes.constData() + within, std::size_t(count));
            return count;
        }
        return readFile(piece, within, data, count);
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    // What was sent before a change is known only at the end: the last bytes are held back then.
    qint64 readFile(const ZQHTTPBody::Piece &piece, qint64 within, char *data, qint64 count)
    {
        ssize_t got = -1;
        do {
            got = pread(piece.file->descriptor.get(), data, std::size_t(count), piece.offset + within);
        } while (got < 0 && errno == EINTR);
        if (got < 0) {
            setErrorString(ZQError::posix(errno, piece.file->name).localizedDescription());
            return -1;
        }
        if (got == 0 || (within + got == piece.length && !piece.file->isUnchanged())) {
            setErrorString(zqFormat(zqLocalized("“%@” changed while it was sent."), {piece.file->name}));
            return -1;
        }
        return got;
    }

    const ZQHTTPBody m_body;
};

void ZQHTTPBody::append(const QByteArray &bytes)
{
    if (!bytes.isEmpty()) {
        m_pieces.append({bytes, nullptr, 0, m_size, bytes.size()});
        m_size += bytes.size();
    }
}

bool ZQHTTPBody::appendFile(const QString &path, ZQError *error, qint64 offset, qint64 length)
{
    const auto file = std::make_shared<OpenFile>();
    file->descriptor = zqOpenRegularFile(path, O_RDONLY, error);
    file->name = QFileInfo(path).fileName();
    if (!file->descriptor.isOpen()) {
        return false;
    }
    if (fstat(file->descriptor.get(), &file->before) != 0) {
        zqSetError(error, ZQError::posix(errno, path));
        return false;
    }
    const qint64 room = file->before.st_size - offset;
    if (offset < 0 || room < 0 || length > room) {
        zqSetError(error, zqNetworkError(ZQNetworkErrorCode::CannotRead,
                                         zqFormat(zqLocalized("“%@” became shorter."), {file->name})));
        return false;
    }
    if (const qint64 count = length < 0 ? room : length; count > 0) {
        m_pieces.append({{}, file, offset, m_size, count});
        m_size += count;
    }
    return true;
}

std::function<std::unique_ptr<QIODevice>()> ZQHTTPBody::maker() const
{
    return [body = *this] { return std::make_unique<ZQHTTPBodyDevice>(body); };
}

#include "Kit/Imaging/Worker/ZQArchiveHeaders.h"

#include <QtEndian>

#include <algorithm>
#include <array>

namespace {

constexpr int mostEntries = 1000000; // beyond that no archive is unpacked anyway

template <class Number>
Number little(const QByteArray &bytes, qsizetype at)
{
    return qFromLittleEndian<Number>(bytes.constData() + at);
}

// A zip archive ends with a record that says where its listing lies and how much text follows. When it is cut off, the
// record of a zip archive stored within it would be taken for it.
ZQArchiveHeaders zipHeaders(QFile &file)
{
    constexpr qsizetype recordSize = 22;
    constexpr qint64 longestComment = 65535;
    const qint64 start = std::max<qint64>(file.size() - recordSize - longestComment, 0);
    file.seek(start);
    const QByteArray tail = file.readAll();
    for (qsizetype at = tail.lastIndexOf("PK\5\6"); at >= 0; at = at > 0 ? tail.lastIndexOf("PK\5\6", at - 1) : -1) {
        if (at + recordSize > tail.size()) {
            continue;
        }
        const bool endsFile = at + recordSize + little<quint16>(tail, at + 20) == tail.size();
        const bool followsListing =
            qint64(little<quint32>(tail, at + 16)) + little<quint32>(tail, at + 12) == start + at;
        if (endsFile || followsListing) {
            return {};
        }
    }
    return {.isCutOff = true, .checksums = {}};
}

// The blocks of RAR 4: checksum (2 bytes), type, flags (2), header size (2), size of what follows (4). Older archives
// have no block at the end.
ZQArchiveHeaders rarHeaders(QFile &file)
{
    constexpr quint8 mainBlock = 0x73;
    constexpr quint8 fileBlock = 0x74;
    constexpr quint8 endBlock = 0x7B;
    ZQArchiveHeaders headers;
    for (qint64 position = 7; headers.checksums.size() < mostEntries;) {
        file.seek(position);
        const QByteArray block = file.read(36);
        if (block.isEmpty() && position == file.size()) {
            return headers;
        }
        if (block.size() < 7) {
            headers.isCutOff = true;
            return headers;
        }
        const auto type = quint8(block.at(2));
        const quint16 flags = little<quint16>(block, 3);
        const quint16 size = little<quint16>(block, 5);
        const bool hasEncryptedHeaders = type == mainBlock && (flags & 0x80);
        if (size < 7 || hasEncryptedHeaders || type == endBlock) {
            return headers;
        }
        const bool hasData = (flags & 0x8000) || type == fileBlock;
        quint64 data = hasData && block.size() >= 11 ? little<quint32>(block, 7) : 0;
        if (type == fileBlock && block.size() >= 32) {
            const bool isWhole = !(flags & 3); // not continued from or in another file
            headers.checksums.append(isWhole ? std::optional(little<quint32>(block, 16)) : std::nullopt);
            data += (flags & 0x100) && block.size() == 36 ? quint64(little<quint32>(block, 32)) << 32 : 0;
        }
        if (data > quint64(file.size())) {
            headers.isCutOff = true;
            return headers;
        }
        position += size + qint64(data);
    }
    return headers;
}

// Reads numbers of seven bits a byte, the lowest first.
class VariableReader
{
public:
    VariableReader(const QByteArray &bytes, qsizetype at) : m_bytes(bytes), m_at(at) {}

    quint64 next()
    {
        quint64 number = 0;
        for (int shift = 0; shift < 64 && m_at < m_bytes.size(); shift += 7) {
            const auto byte = uchar(m_bytes.at(m_at++));
            number |= quint64(byte & 0x7F) << shift;
            if (!(byte & 0x80)) {
                return number;
            }
        }
        m_isValid = false;
        return 0;
    }
    void skip(qsizetype count) { m_at += count; }
    qsizetype at() const { return m_at; }
    bool isValid() const { return m_isValid && m_at <= m_bytes.size(); }

private:
    const QByteArray &m_bytes;
    qsizetype m_at;
    bool m_isValid = true;
};

// The blocks of RAR 5: checksum (4 bytes), header size, type, flags, size of more header and of what follows.
ZQArchiveHeaders rar5Headers(QFile &file)
{
    enum BlockType { FileBlock = 2, EncryptionBlock = 4, EndBlock = 5 };
    ZQArchiveHeaders headers;
    for (qint64 position = 8; headers.checksums.size() < mostEntries;) {
        file.seek(position);
        const QByteArray block = file.read(128);
        VariableReader reader(block, 4);
        const quint64 size = reader.next();
        const qsizetype headerStart = reader.at();
        const quint64 type = reader.next();
        const quint64 flags = reader.next();
        if (flags & 1) {
            reader.next();
        }
        const quint64 data = flags & 2 ? reader.next() : 0;
        const bool isCutOff = !reader.isValid() || size > quint64(file.size()) || data > quint64(file.size());
        if (isCutOff || type == EndBlock || type == EncryptionBlock) {
            headers.isCutOff = isCutOff;
            return headers;
        }
        if (type == FileBlock) {
            const quint64 fileFlags = reader.next();
            reader.next(); // the unpacked size
            reader.next(); // the attributes
            reader.skip(fileFlags & 2 ? 4 : 0);
            const bool isWhole = !(flags & 0x18); // not continued from or in another file
            const bool isKnown = (fileFlags & 4) && isWhole && reader.isValid() && reader.at() + 4 <= block.size();
            headers.checksums.append(isKnown ? std::optional(little<quint32>(block, reader.at())) : std::nullopt);
        }
        position += headerStart + qint64(size) + qint64(data);
    }
    return headers;
}

constexpr std::array<quint32, 256> makeTable()
{
    std::array<quint32, 256> table{};
    for (quint32 i = 0; i < 256; ++i) {
        quint32 value = i;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value >> 1) ^ (value & 1 ? 0xEDB88320 : 0);
        }
        table[i] = value;
    }
    return table;
}

} // namespace

ZQArchiveHeaders ZQArchiveHeaders::headersOfFile(QFile &file)
{
    const QByteArray start = file.peek(8);
    if (start.startsWith("PK")) {
        return zipHeaders(file);
    }
    if (start == QByteArray("Rar!\x1A\x07\x01\x00", 8)) {
        return rar5Headers(file);
    }
    return start.startsWith(QByteArray("Rar!\x1A\x07\x00", 7)) ? rarHeaders(file) : ZQArchiveHeaders();
}

quint32 zqCRC32(quint32 crc, const char *data, qsizetype size)
{
    static constexpr std::array<quint32, 256> table = makeTable();
    quint32 value = ~crc;
    for (qsizetype i = 0; i < size; ++i) {
        value = table[(value ^ uchar(data[i])) & 0xFF] ^ (value >> 8);
    }
    return ~value;
}

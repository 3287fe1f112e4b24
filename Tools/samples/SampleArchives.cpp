#include "Tools/samples/SampleArchives.h"

#include <QtEndian>

#include <array>

namespace {

using SampleArchives::Entry;

quint32 crc32(const QByteArray &bytes)
{
    quint32 crc = 0xFFFFFFFF;
    for (const char byte : bytes) {
        crc ^= uchar(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ (crc & 1 ? 0xEDB88320 : 0);
        }
    }
    return ~crc;
}

template <class Number>
QByteArray little(Number number)
{
    QByteArray bytes(qsizetype(sizeof number), '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

// Seven bits a byte, the lowest first.
QByteArray variable(quint64 number)
{
    QByteArray bytes;
    do {
        bytes += char((number & 0x7F) | (number > 0x7F ? 0x80 : 0));
        number >>= 7;
    } while (number != 0);
    return bytes;
}

QByteArray deflated(const QByteArray &contents)
{
    constexpr qsizetype before = 4 + 2; // the length that Qt adds, and the header of a zlib stream
    constexpr qsizetype checksum = 4;
    const QByteArray stream = qCompress(contents, 9);
    return stream.mid(before, stream.size() - before - checksum);
}

quint32 modeOf(const Entry &entry)
{
    constexpr std::array modes{quint32(0100644), quint32(040755), quint32(0120777), quint32(010644)}; // by kind
    return modes.at(size_t(entry.kind));
}

bool isFolder(const Entry &entry)
{
    return entry.kind == Entry::Kind::Folder;
}

constexpr quint16 dosTime = 12 << 11;
constexpr quint16 dosDate = ((2024 - 1980) << 9) | (5 << 5) | 4;

} // namespace

QByteArray SampleArchives::zipFile(const QList<Entry> &entries)
{
    constexpr quint16 smallestDeflated = 128;
    QByteArray files;
    QByteArray listing;
    for (const Entry &entry : entries) {
        const bool isDeflated = entry.contents.size() >= smallestDeflated;
        const QByteArray data = isDeflated ? deflated(entry.contents) : entry.contents;
        const quint16 flags = quint16((entry.isEncrypted ? 1 : 0) | (entry.saysUTF8 ? 0x800 : 0));
        const QByteArray common = little(quint16(20)) + little(flags) + little(quint16(isDeflated ? 8 : 0)) +
                                  little(dosTime) + little(dosDate) + little(crc32(entry.contents)) +
                                  little(quint32(data.size())) + little(quint32(entry.contents.size())) +
                                  little(quint16(entry.name.size())) + little(quint16(0));
        listing += "PK\1\2" + little(quint16(0x0314)) + common + little(quint16(0)) + little(quint16(0)) +
                   little(quint16(0)) + little(quint32(modeOf(entry) << 16)) + little(quint32(files.size())) +
                   entry.name;
        files += "PK\3\4" + common + entry.name + data;
    }
    const quint16 count = quint16(entries.size());
    return files + listing + "PK\5\6" + QByteArray(4, '\0') + little(count) + little(count) +
           little(quint32(listing.size())) + little(quint32(files.size())) + little(quint16(0));
}

QByteArray SampleArchives::rarFile(const QList<Entry> &entries)
{
    const auto block = [](const QByteArray &header) { return little(quint16(crc32(header) & 0xFFFF)) + header; };
    QByteArray file = QByteArray("Rar!\x1A\x07\x00", 7) +
                      block('\x73' + little(quint16(0)) + little(quint16(13)) + QByteArray(6, '\0'));
    for (const Entry &entry : entries) {
        const quint16 flags = quint16(0x8000 | (entry.isEncrypted ? 4 : 0) | (isFolder(entry) ? 0xE0 : 0));
        const quint32 size = quint32(entry.contents.size());
        file += block('\x74' + little(flags) + little(quint16(32 + entry.name.size())) + little(size) + little(size) +
                      '\3' + little(crc32(entry.contents)) + little(dosTime) + little(dosDate) + '\x14' + '\x30' +
                      little(quint16(entry.name.size())) + little(modeOf(entry)) + entry.name) +
                entry.contents;
    }
    return file + block('\x7B' + little(quint16(0x4000)) + little(quint16(7)));
}

QByteArray SampleArchives::rar5File(const QList<Entry> &entries)
{
    const auto block = [](const QByteArray &content) {
        const QByteArray header = variable(quint64(content.size())) + content;
        return little(crc32(header)) + header;
    };
    QByteArray file = QByteArray("Rar!\x1A\x07\x01\x00", 8) + block(variable(1) + variable(0) + variable(0));
    for (const Entry &entry : entries) {
        const quint64 size = quint64(entry.contents.size());
        file += block(variable(2) + variable(2) + variable(size) + variable(4 | (isFolder(entry) ? 1 : 0)) +
                      variable(size) + variable(modeOf(entry)) + little(crc32(entry.contents)) + variable(0) +
                      variable(1) + variable(quint64(entry.name.size())) + entry.name) +
                entry.contents;
    }
    return file + block(variable(5) + variable(0) + variable(0));
}

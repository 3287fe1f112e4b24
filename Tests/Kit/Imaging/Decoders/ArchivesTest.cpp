// What is read of archives beside the library that unpacks them, and what is made of all that comes out of it.

#include "Kit/Imaging/Worker/ZQArchiveFile.h"
#include "Kit/Imaging/Worker/ZQArchiveHeaders.h"
#include "Tests/Kit/Imaging/Decoders/Bytes.h"
#include "Tools/samples/SampleArchives.h"

#include <QDateTime>

#include <gtest/gtest.h>

#include <sys/mman.h>

namespace {

using SampleArchives::Entry;
using Kind = Entry::Kind;

ZQFileDescriptor descriptorOf(const QByteArray &bytes)
{
    ZQFileDescriptor file(::memfd_create("archive", MFD_CLOEXEC));
    EXPECT_TRUE(zqWriteAll(file.get(), bytes.constData(), bytes.size()));
    EXPECT_EQ(::lseek(file.get(), 0, SEEK_SET), 0);
    return file;
}

// "whole 000000ff -", with the checksum of each entry, or "cut" in front.
std::string headersOf(const QByteArray &bytes)
{
    const ZQSourceFile source = fileOf(bytes, "a");
    QFile file;
    EXPECT_TRUE(source.openIn(file));
    const ZQArchiveHeaders headers = ZQArchiveHeaders::headersOfFile(file);
    QByteArray out = headers.isCutOff ? "cut" : "whole";
    for (const auto &checksum : headers.checksums) {
        out += ' ' + (checksum ? big(*checksum).toHex() : QByteArray("-"));
    }
    return out.toStdString();
}

// One of RAR 4; the header is filled with zeros to its size.
QByteArray block(int type, int flags, qsizetype size, quint32 data = 0, quint32 checksum = 0, quint32 high = 0)
{
    QByteArray out = little(quint16(0)) + char(type) + little(quint16(flags)) + little(quint16(size)) + little(data);
    out += QByteArray(5, '\0') + little(checksum);
    out = out.leftJustified(32, '\0') + little(high);
    return out.leftJustified(size, '\0').left(size);
}

// One of RAR 5, numbers of one byte: what comes after the header's size.
QByteArray block5(const QByteArray &header)
{
    return QByteArray(4, 'c') + char(header.size()) + header;
}

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

// "File name 7 bytes encrypted: content", one a line; then how it ended.
std::string unpacked(const QByteArray &archive, qint64 blockSize = 1000)
{
    ZQArchiveFile file(descriptorOf(archive));
    ZQArchiveEnd end;
    std::string out;
    while (const auto entry = file.nextEntry(&end)) {
        constexpr const char *kinds[] = {"File", "Folder", "Link", "Other"};
        out +=
            std::string(kinds[int(entry->kind)]) + ' ' + (entry->name.isNull() ? "(none)" : entry->name.toStdString());
        out += entry->size ? ' ' + std::to_string(*entry->size) : std::string();
        out += entry->isEncrypted ? " encrypted" : "";
        out += entry->isListed ? " listed" : "";
        std::string content;
        for (bool isLast = entry->kind != ZQArchiveEntry::Kind::File; !isLast;) {
            QByteArray data(blockSize, '\0');
            const qint64 size = file.read(data.data(), blockSize, &isLast, &end);
            if (size < 0) {
                return out + "; " + std::to_string(int(end.kind));
            }
            EXPECT_TRUE(size == blockSize || isLast);
            content += data.left(size).toStdString();
        }
        out += ": " + content + '\n';
    }
    return out + std::to_string(int(end.kind));
}

std::string ended(ZQArchiveEnd::Kind kind)
{
    return std::to_string(int(kind));
}

} // namespace

TEST(ArchiveHeadersTest, AZipArchiveEndsWithItsRecord)
{
    const QByteArray record =
        "PK\5\6" + QByteArray(8, '\0') + little(quint32(0)) + little(quint32(0)) + little(quint16(0));
    const auto recordOf = [](quint32 size, quint32 start, quint16 comment) {
        return "PK\5\6" + QByteArray(8, '\0') + little(size) + little(start) + little(comment);
    };
    const QByteArray body = "PK\3\4" + QByteArray(100, 'b');
    struct Row
    {
        const char *what;
        QByteArray bytes;
        const char *told;
    };
    for (const Row &row :
         {Row{"nothing in it", record, "whole"}, Row{"cut", body, "cut"}, Row{"at its end", body + record, "whole"},
          Row{"with a text", body + recordOf(0, 0, 5) + "12345", "whole"},
          Row{"with half a text", body + recordOf(0, 0, 5) + "1234", "cut"},
          Row{"with more than its text", body + recordOf(0, 0, 5) + "123456", "cut"},
          Row{"behind its listing", body + recordOf(4, 100, 0) + "more", "whole"},
          Row{"not behind its listing", body + recordOf(4, 101, 0) + "more", "cut"},
          Row{"half a record", (body + record).chopped(1), "cut"},
          Row{"with the longest text", body + recordOf(0, 0, 65535) + QByteArray(65535, 't'), "whole"},
          Row{"one before that is another's", body + record + body + record, "whole"},
          Row{"a text that looks like one", body + recordOf(0, 0, 9) + "PK\5\6abcde", "whole"},
          Row{"no archive", "no archive", "whole"}, Row{"nothing", {}, "whole"}}) {
        EXPECT_EQ(headersOf(row.bytes), row.told) << row.what;
    }
}

TEST(ArchiveHeadersTest, ARarArchiveIsReadBlockByBlock)
{
    const QByteArray start("Rar!\x1A\x07\x00", 7);
    const QByteArray end = block(0x7B, 0, 7);
    const QByteArray file = block(0x74, 0, 40, 5, 0xdeadbeef) + "12345";
    struct Row
    {
        const char *what;
        QByteArray bytes;
        const char *told;
    };
    for (const Row &row : {
             Row{"nothing in it", start, "whole"},
             Row{"two files", start + block(0x73, 0, 13) + file + file + end, "whole deadbeef deadbeef"},
             Row{"no end, as older ones", start + file, "whole deadbeef"},
             Row{"cut in its data", (start + file).chopped(1), "cut deadbeef"},
             Row{"cut in a header", start + file + file.left(6), "cut deadbeef"},
             Row{"what follows the end", start + end + file, "whole"},
             Row{"hidden headers", start + block(0x73, 0x80, 13) + file, "whole"},
             Row{"another's flag of that kind", start + block(0x72, 0x80, 13) + file, "whole deadbeef"},
             Row{"from another volume",
                 start + block(0x74, 1, 40, 0, 1) + block(0x74, 2, 40, 0, 1) + block(0x74, 4, 40, 0, 1),
                 "whole - - 00000001"},
             Row{"other data", start + block(0x7A, 0x8000, 20, 3) + "abc" + file, "whole deadbeef"},
             Row{"another's number that is none of data", start + block(0x7A, 0, 20, 3) + file, "whole deadbeef"},
             Row{"a header without size", start + block(0x7A, 0, 7).replace(5, 2, little(quint16(6))) + file, "whole"},
             Row{"the shortest header", start + block(0x7A, 0, 7) + file, "whole deadbeef"},
             Row{"more data than there is", start + block(0x74, 0, 40, 1000, 7) + file, "cut 00000007"},
             Row{"more data than a file can be", start + block(0x74, 0x100, 40, 0, 7, 1) + file, "cut 00000007"},
             Row{"high bits that do not count", start + block(0x74, 0, 40, 0, 7, 1) + end, "whole 00000007"},
         }) {
        EXPECT_EQ(headersOf(row.bytes), row.told) << row.what;
    }
}

TEST(ArchiveHeadersTest, ARar5ArchiveIsReadBlockByBlock)
{
    const QByteArray start("Rar!\x1A\x07\x01\x00", 8);
    const QByteArray end = block5(hex("05 00 00"));
    const QByteArray file =
        block5(hex("02 02 05  04 05 00  efbeadde")) + "12345"; // its data, then what it says of itself
    struct Row
    {
        const char *what;
        QByteArray bytes;
        const char *told;
    };
    for (const Row &row : {
             Row{"nothing in it", start + end, "whole"},
             Row{"two files", start + file + file + end, "whole deadbeef deadbeef"},
             Row{"no end", start + file, "cut deadbeef"},
             Row{"cut in its data", (start + file).chopped(1), "cut deadbeef"},
             Row{"hidden headers", start + block5(hex("04 00 00")) + file, "whole"},
             Row{"what follows the end", start + end + file, "whole"},
             Row{"another kind", start + block5(hex("03 02 03")) + "abc" + end, "whole"},
             Row{"with more header", start + block5(hex("02 03 07 05  04 05 00  01000000")) + "12345" + end,
                 "whole 00000001"},
             Row{"with a time", start + block5(hex("02 00  06 05 00  77777777 02000000")) + end, "whole 00000002"},
             Row{"without a checksum", start + block5(hex("02 00  02 05 00  77777777")) + end, "whole -"},
             Row{"from another volume",
                 start + block5(hex("02 08  04 05 00  01000000")) + block5(hex("02 10  04 05 00  01000000")) +
                     block5(hex("02 20  04 05 00  01000000")) + end,
                 "whole - - 00000001"},
             Row{"wide numbers", start + block5(hex("82 00  00  84 80 00  8580 00  00  03000000")) + end,
                 "whole 00000003"},
             Row{"a number without end", start + QByteArray(4, 'c') + QByteArray(20, '\xff'), "cut"},
             Row{"longer than the file", start + QByteArray(4, 'c') + hex("ff7f 02 00") + QByteArray(100, '\0'), "cut"},
             Row{"more data than there is", start + block5(hex("02 02 ff7f  04 05 00  01000000")) + end, "cut"},
         }) {
        EXPECT_EQ(headersOf(row.bytes), row.told) << row.what;
    }
    EXPECT_EQ(zqCRC32(0, "123456789", 9), 0xCBF43926);
    EXPECT_EQ(zqCRC32(zqCRC32(0, "1234", 4), "56789", 5), 0xCBF43926);
    EXPECT_EQ(zqCRC32(7, "", 0), 7U);
}

TEST(ArchiveFileTest, EachEntryComesAsItIs)
{
    const QList<Entry> entries{{"d/", {}, Kind::Folder}, {"d/a.txt", "content"}, {"empty", {}}, {"l", "a", Kind::Link}};
    const std::string listed =
        "Folder d/ 0 listed: \nFile d/a.txt 7 listed: content\nFile empty 0 listed: \nLink l 0 listed: \n" +
        ended(ZQArchiveEnd::Kind::Whole);
    EXPECT_EQ(unpacked(SampleArchives::zipFile(entries)), listed);
    EXPECT_EQ(unpacked(SampleArchives::zipFile(entries), 3), listed);
    EXPECT_EQ(unpacked(SampleArchives::zipFile(entries), 7), listed);
    for (const QByteArray &rar : {SampleArchives::rarFile(entries), SampleArchives::rar5File(entries)}) {
        const std::string out = unpacked(rar, 3);
        EXPECT_NE(out.find("d/a.txt 7: content\n"), std::string::npos) << out;
        EXPECT_NE(out.find("Link l"), std::string::npos) << out;
        EXPECT_TRUE(out.starts_with("Folder d")) << out;
        EXPECT_TRUE(out.ends_with('\n' + ended(ZQArchiveEnd::Kind::Whole))) << out;
        EXPECT_EQ(out.find("listed"), std::string::npos) << out;
    }
    EXPECT_NE(unpacked(SampleArchives::rarFile({{"p", {}, Kind::Pipe}})).find("Other p"), std::string::npos);
    ZQArchiveFile timed(descriptorOf(SampleArchives::zipFile({{"a", "a"}})));
    ZQArchiveEnd end;
    const auto entry = timed.nextEntry(&end);
    ASSERT_TRUE(entry && entry->time);
    EXPECT_EQ(QDateTime::fromSecsSinceEpoch(*entry->time).date(), QDate(2024, 5, 4));
    EXPECT_EQ(entry->timeNanoseconds, 0);
}

TEST(ArchiveFileTest, WhatIsCutChangedEncryptedOrNoneIsSaid)
{
    const QList<Entry> entries{{"a.txt", QByteArray(50, 'a')}, {"b.txt", "b"}};
    for (const QByteArray &whole :
         {SampleArchives::zipFile(entries), SampleArchives::rarFile(entries), SampleArchives::rar5File(entries)}) {
        EXPECT_TRUE(unpacked(whole).ends_with('\n' + ended(ZQArchiveEnd::Kind::Whole)));
        EXPECT_EQ(unpacked(whole.left(whole.size() / 2)), ended(ZQArchiveEnd::Kind::CutOff));
    }
    for (QByteArray rar : {SampleArchives::rarFile(entries), SampleArchives::rar5File(entries)}) {
        rar[rar.indexOf("aaaa") + 3] = 'x';
        const std::string out = unpacked(rar, 20);
        EXPECT_TRUE(out.starts_with("File a.txt 50; ")) << out;
        EXPECT_TRUE(out.ends_with(ended(ZQArchiveEnd::Kind::Changed)) ||
                    out.ends_with(ended(ZQArchiveEnd::Kind::Damaged)))
            << out;
    }
    EXPECT_NE(unpacked(SampleArchives::zipFile({{"a", "a", Kind::File, true}})).find("File a 1 encrypted listed"),
              std::string::npos);
    for (const QByteArray &none : {QByteArray("no archive"), QByteArray(), QByteArray("Rar!")}) {
        EXPECT_TRUE(unpacked(none) == ended(ZQArchiveEnd::Kind::Damaged) ||
                    unpacked(none) == ended(ZQArchiveEnd::Kind::Whole))
            << unpacked(none);
    }
    ZQArchiveFile closed{ZQFileDescriptor()};
    ZQArchiveEnd end;
    EXPECT_FALSE(closed.nextEntry(&end));
    EXPECT_EQ(end.kind, ZQArchiveEnd::Kind::Damaged);
}

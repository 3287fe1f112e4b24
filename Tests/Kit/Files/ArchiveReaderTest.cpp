#include "Kit/Files/ZQArchiveReader.h"
#include "Kit/Imaging/ZQArchiveWorker.h"
#include "Tests/Kit/Files/Scratch.h"
#include "Tests/Support/FileSizeLimit.h"
#include "Tools/samples/SampleArchives.h"

#include <QDirIterator>

namespace {

using SampleArchives::Entry;
using Kind = Entry::Kind;

class ArchiveReaderTest : public Scratch
{
protected:
    // Everything below the test's folder but the archive itself, as "out/a.png=contents"; folders end with "/".
    QStringList world() const
    {
        const QString base = path(QStringLiteral("w"));
        QStringList found;
        QDirIterator entries(base, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                             QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            const QString entry = entries.next();
            const QString name = entry.mid(base.size() + 1);
            found.append(entries.fileInfo().isSymLink() ? name + u'@'
                         : entries.fileInfo().isDir()   ? name + u'/'
                                                        : name + u'=' + QString::fromUtf8(read(entry)));
        }
        found.sort();
        return found;
    }

    bool extract(const QByteArray &archive, const ZQArchiveLimits &limits = {}, std::function<bool()> isCancelled = {})
    {
        folder(QStringLiteral("w/a/b"));
        QDir(path(QStringLiteral("w/a/b/out"))).removeRecursively();
        reader = std::make_unique<ZQArchiveReader>(worker, limits, std::move(isCancelled));
        error = {};
        return reader->extractArchive(file(QStringLiteral("Set.zip"), archive), path(QStringLiteral("w/a/b/out")), 0,
                                      &error);
    }
    // What lies in the extraction folder, and nothing may lie elsewhere.
    QStringList extracted(const QByteArray &archive)
    {
        EXPECT_TRUE(extract(archive)) << error.localizedDescription().toStdString();
        QStringList out;
        for (const QString &entry : world()) {
            if (entry.startsWith(QStringLiteral("a/b/out/"))) {
                out.append(entry.mid(8));
            }
        }
        out.removeAll(QString());
        EXPECT_EQ(world().size(), out.size() + 3) << world().join(u'\n').toStdString(); // "a/", "a/b/", "a/b/out/"
        return out;
    }
    void expectNothingExtracted() const
    {
        EXPECT_EQ(world(), (QStringList{QStringLiteral("a/"), QStringLiteral("a/b/")}));
    }

    ZQArchiveWorker worker; // as the application reads them
    std::unique_ptr<ZQArchiveReader> reader;
    ZQError error;
};

} // namespace

TEST_F(ArchiveReaderTest, EveryKindOfArchiveComesOutWhole)
{
    const QList<Entry> entries{{"Top/", {}, Kind::Folder}, {"Top/a.txt", QByteArray(100000, 'a')}, {"b.txt", "b"}};
    const QStringList expected{QStringLiteral("Top/"), QStringLiteral("Top/a.txt=") + QString(100000, u'a'),
                               QStringLiteral("b.txt=b")};
    EXPECT_EQ(extracted(SampleArchives::zipFile(entries)), expected);
    EXPECT_EQ(extracted(SampleArchives::rarFile(entries)), expected);
    EXPECT_EQ(extracted(SampleArchives::rar5File(entries)), expected);
    EXPECT_EQ(reader->skippedCount(), 0);
    EXPECT_EQ(reader->extractedSize(), 100001);
    EXPECT_EQ(extracted(SampleArchives::zipFile({})), QStringList());
}

TEST_F(ArchiveReaderTest, AnArchiveThatEndsWithAnotherIsNotTakenForThatOne)
{
    const QByteArray inner = SampleArchives::zipFile({{"b.txt", "b"}});
    const QList<Entry> entries{{"a.txt", "a"}, {"in.zip", inner}};
    for (const QByteArray &archive :
         {SampleArchives::zipFile(entries), SampleArchives::rarFile(entries), SampleArchives::rar5File(entries)}) {
        const QStringList names = extracted(archive);
        ASSERT_EQ(names.size(), 2);
        EXPECT_EQ(names.first(), QStringLiteral("a.txt=a"));
        EXPECT_EQ(read(path(QStringLiteral("w/a/b/out/in.zip"))), inner);
    }
}

TEST_F(ArchiveReaderTest, WhatIsNoRegularFileIsLeftOut)
{
    EXPECT_EQ(extracted(SampleArchives::rarFile(
                  {{"p.png", {}, Kind::Pipe}, {"l.png", "/etc/passwd", Kind::Link}, {"a", "a"}})),
              QStringList{QStringLiteral("a=a")});
    EXPECT_EQ(reader->skippedCount(), 2);
}

TEST_F(ArchiveReaderTest, FilesKeepTheirTimes)
{
    extract(SampleArchives::zipFile({{"a.txt", "a"}}));
    EXPECT_EQ(QFileInfo(path(QStringLiteral("w/a/b/out/a.txt"))).lastModified().date(), QDate(2024, 5, 4));
}

TEST_F(ArchiveReaderTest, NamesThatLeadElsewhereStayInsideOrAreLeftOut)
{
    struct Case
    {
        const char *what;
        QList<Entry> entries;
        QStringList expected;
        int skipped;
    };
    const Case cases[] = {
        {"upwards", {{"../up.txt", "x"}, {"in.txt", "i"}}, {u"in.txt=i"_qs}, 1},
        {"upwards later", {{"a/../../../up.txt", "x"}, {"a/..", {}, Kind::Folder}}, {}, 2},
        {"upwards with backslashes", {{"..\\up.txt", "x"}, {"a\\..\\..\\up.txt", "x"}}, {}, 2},
        {"absolute", {{"/abs.txt", "x"}, {"//x/abs.txt", "x"}}, {u"abs.txt=x"_qs, u"x/"_qs, u"x/abs.txt=x"_qs}, 0},
        {"drives", {{"C:\\d\\abs.txt", "x"}, {"c:rel.txt", "x"}}, {u"d/"_qs, u"d/abs.txt=x"_qs, u"rel.txt=x"_qs}, 0},
        {"backslashes", {{"d\\e\\", {}}, {"d\\e\\f.txt", "x"}}, {u"d/"_qs, u"d/e/"_qs, u"d/e/f.txt=x"_qs}, 0},
        {"dots", {{"./a/./b.txt", "x"}, {".", {}, Kind::Folder}}, {u"a/"_qs, u"a/b.txt=x"_qs}, 0},
        {"three dots are a name", {{".../a.txt", "x"}}, {u".../"_qs, u".../a.txt=x"_qs}, 0},
        {"a link to go through", {{"l", "../..", Kind::Link}, {"l/up.txt", "x"}}, {u"l/"_qs, u"l/up.txt=x"_qs}, 1},
        {"a link over a file", {{"a.txt", "a"}, {"a.txt", "/etc/passwd", Kind::Link}}, {u"a.txt=a"_qs}, 1},
        {"a name twice",
         {{"a.txt", "1"}, {"a.txt", "2"}, {"a.txt", "3"}},
         {u"a 1.txt=2"_qs, u"a 2.txt=3"_qs, u"a.txt=1"_qs},
         0},
        {"a name twice, taken",
         {{"a.txt", "1"}, {"a 1.txt", "2"}, {"a.txt", "3"}},
         {u"a 1.txt=2"_qs, u"a 2.txt=3"_qs, u"a.txt=1"_qs},
         0},
        {"names of two cases", {{"a.txt", "1"}, {"A.TXT", "2"}}, {u"A.TXT=2"_qs, u"a.txt=1"_qs}, 0},
        {"a file where a folder was", {{"a/b.txt", "1"}, {"a", "2"}}, {u"a 1=2"_qs, u"a/"_qs, u"a/b.txt=1"_qs}, 0},
        {"a folder where a file was", {{"a", "2"}, {"a/b.txt", "1"}, {"a/", {}, Kind::Folder}}, {u"a=2"_qs}, 2},
        {"noise", {{"__MACOSX/a/._b.png", "x"}, {"a/.DS_Store", "x"}, {"._c", "x"}}, {}, 0},
        {"no name", {{"", "x"}, {"/", {}, Kind::Folder}}, {}, 0},
    };
    for (const Case &row : cases) {
        EXPECT_EQ(extracted(SampleArchives::zipFile(row.entries)), row.expected) << row.what;
        EXPECT_EQ(reader->skippedCount(), row.skipped) << row.what;
        EXPECT_EQ(reader->firstSkipped().isEmpty(), row.skipped == 0) << row.what;
    }
}

TEST_F(ArchiveReaderTest, NamesThatAreTooLongAreShortenedAndPathsThatAreTooDeepLeftOut)
{
    const QByteArray longName = QByteArray("\xC3\xA9").repeated(200) + ".png"; // 404 bytes
    const QStringList shortened = extracted(
        SampleArchives::zipFile({{longName, "1", Kind::File, false, true}, {longName, "2", Kind::File, false, true}}));
    ASSERT_EQ(shortened.size(), 2);
    for (const QString &name : shortened) {
        EXPECT_TRUE(name.contains(QStringLiteral(".png="))) << name.toStdString();
        EXPECT_LE(name.section(u'=', 0, 0).toUtf8().size(), 255);
        EXPECT_FALSE(name.contains(QChar::ReplacementCharacter));
    }
    EXPECT_EQ(extracted(SampleArchives::zipFile({{QByteArray("d/").repeated(2000) + "a.txt", "x"}, {"b.txt", "b"}})),
              QStringList{QStringLiteral("b.txt=b")});
    EXPECT_EQ(reader->skippedCount(), 1);
    const QByteArray wide = QByteArray(200, 'w') + '/';
    EXPECT_TRUE(extracted(SampleArchives::zipFile({{wide.repeated(30) + "a.txt", "x"}})).isEmpty());
    EXPECT_EQ(reader->skippedCount(), 1);
}

TEST_F(ArchiveReaderTest, NamesAreReadInTheEncodingTheyWereWrittenIn)
{
    const QStringList japanese{u"ソフト.png=2"_qs, u"写真/"_qs, u"写真/テスト.png=1"_qs};
    EXPECT_EQ(extracted(SampleArchives::zipFile(
                  {{"\x8E\xCA\x90\x5E/\x83\x65\x83\x58\x83\x67.png", "1"}, {"\x83\x5C\x83\x74\x83\x67.png", "2"}})),
              japanese);
    // One name says its encoding, the other does not.
    EXPECT_EQ(
        extracted(SampleArchives::zipFile({{"\xE5\x86\x99.png", "1", Kind::File, false, true}, {"caf\x82.png", "2"}})),
        (QStringList{u"café.png=2"_qs, u"写.png=1"_qs}));
    EXPECT_EQ(extracted(SampleArchives::zipFile({{"\xB2\xE2\xCA\xD4.png", "1"}})), QStringList{u"测试.png=1"_qs});
    EXPECT_EQ(extracted(SampleArchives::rar5File({{"\xE5\x86\x99.png", "1"}})), QStringList{u"写.png=1"_qs});
    EXPECT_TRUE(extracted(SampleArchives::zipFile({{"\xFF\xFE\xFF.png", "1", Kind::File, false, true}})).isEmpty());
    EXPECT_EQ(reader->skippedCount(), 1); // it says UTF-8 and is not
}

TEST_F(ArchiveReaderTest, AnArchiveThatIsNotWholeLeavesNothing)
{
    const QByteArray text("Some text that is here to be found again. ");
    const QList<Entry> entries{{"a.txt", text.repeated(50) + "1"}, {"b.txt", text.repeated(60) + "2"}};
    for (const QByteArray &whole :
         {SampleArchives::zipFile(entries), SampleArchives::rarFile(entries), SampleArchives::rar5File(entries)}) {
        ASSERT_TRUE(extract(whole));
        for (const qsizetype size :
             {qsizetype(1), qsizetype(20), whole.size() / 3, whole.size() / 2, whole.size() - 60}) {
            EXPECT_FALSE(extract(whole.left(size))) << size << " of " << whole.size();
            EXPECT_EQ(error.code, ZQArchiveReader::Unreadable);
            EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("Set.zip")));
            expectNothingExtracted();
        }
        QByteArray flipped = whole;
        flipped[90] = char(~flipped.at(90)); // in the first file's contents
        EXPECT_FALSE(extract(flipped)) << whole.size();
        expectNothingExtracted();
    }
    for (const QByteArray &other : {QByteArray(), QByteArray("no archive"), QByteArray(100000, 'P')}) {
        EXPECT_FALSE(extract(other));
        expectNothingExtracted();
    }
    // The archive in it is whole, and must not be taken for it.
    const QByteArray outer =
        SampleArchives::zipFile({{"a.txt", "a"}, {"in.zip", SampleArchives::zipFile({{"b.txt", "b"}})}});
    EXPECT_FALSE(extract(outer.left(outer.size() - 40)));
    expectNothingExtracted();
}

TEST_F(ArchiveReaderTest, AnyFlippedByteIsSurvived)
{
    const QList<Entry> entries{{"Top/a.txt", QByteArray(300, 'a')}, {"l", "a", Kind::Link}, {"b.txt", "b"}};
    for (const QByteArray &whole :
         {SampleArchives::zipFile(entries), SampleArchives::rarFile(entries), SampleArchives::rar5File(entries)}) {
        for (qsizetype i = 0; i < whole.size(); i += 3) {
            QByteArray flipped = whole;
            flipped[i] = char(flipped.at(i) ^ 0xA5);
            if (!extract(flipped)) {
                expectNothingExtracted();
                EXPECT_FALSE(error.localizedDescription().isEmpty());
            }
            QDir(path(QStringLiteral("w/a/b/out"))).removeRecursively();
            expectNothingExtracted();
        }
    }
}

TEST_F(ArchiveReaderTest, AnEncryptedEntryIsNamedBeforeAnythingIsWritten)
{
    const QList<Entry> entries{{"a.txt", "a"}, {"secret.txt", "s", Kind::File, true}};
    for (const QByteArray &archive : {SampleArchives::zipFile(entries), SampleArchives::rarFile(entries)}) {
        EXPECT_FALSE(extract(archive));
        EXPECT_EQ(error.code, ZQArchiveReader::Encrypted);
        EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("Set.zip")));
        EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("secret.txt")))
            << error.localizedDescription().toStdString();
        expectNothingExtracted();
    }
}

TEST_F(ArchiveReaderTest, ALimitThatIsReachedIsNamedAndLeavesNothing)
{
    const QByteArray million(1000000, 'm');
    const QByteArray three = SampleArchives::zipFile({{"a", million}, {"b", million}, {"c", "c"}});
    struct Case
    {
        ZQArchiveLimits limits;
        QByteArray archive;
        bool passes;
    };
    const Case cases[] = {
        {{.totalSize = 2000001}, three, true},
        {{.totalSize = 2000000}, three, false},
        {{.entryCount = 3}, three, true},
        {{.entryCount = 2}, three, false},
        {{.totalSize = 1000}, SampleArchives::rar5File({{"a", million}}), false},
    };
    for (const Case &row : cases) {
        EXPECT_EQ(extract(row.archive, row.limits), row.passes) << row.limits.totalSize << ' ' << row.limits.entryCount;
        if (!row.passes) {
            EXPECT_EQ(error.code, ZQArchiveReader::TooMuch);
            expectNothingExtracted();
        }
    }
}

TEST_F(ArchiveReaderTest, AFewBytesCannotBecomeVeryMany)
{
    constexpr qsizetype size = 5000000;
    const QByteArray bomb = SampleArchives::zipFile({{"a", QByteArray(size, '\0')}});
    const qint64 ratio = size / bomb.size();
    EXPECT_FALSE(extract(bomb, {.ratio = ratio - 1, .ratioFreeSize = 1000000}));
    EXPECT_EQ(error.code, ZQArchiveReader::TooMuch);
    expectNothingExtracted();
    EXPECT_TRUE(extract(bomb, {.ratio = ratio, .ratioFreeSize = 1000000}))
        << error.localizedDescription().toStdString();
    EXPECT_TRUE(extract(bomb, {.ratio = 1, .ratioFreeSize = size}));
}

TEST_F(ArchiveReaderTest, TheLimitsHoldForTheArchivesInAnArchiveTogether)
{
    const QString inner = file(QStringLiteral("in.zip"), SampleArchives::zipFile({{"a", "12345"}}));
    const QString outer = file(QStringLiteral("out.zip"), SampleArchives::zipFile({{"b", "12345"}}));
    const auto passes = [&](const ZQArchiveLimits &limits, int depth) {
        ZQArchiveReader both(worker, limits);
        const QString first = path(QStringLiteral("first"));
        const QString second = path(QStringLiteral("second"));
        const bool result = both.extractArchive(outer, first) && both.extractArchive(inner, second, depth, &error);
        EXPECT_EQ(QFileInfo::exists(second), result);
        QDir(first).removeRecursively();
        QDir(second).removeRecursively();
        return result;
    };
    EXPECT_TRUE(passes({.totalSize = 10}, 1));
    EXPECT_FALSE(passes({.totalSize = 9}, 1));
    EXPECT_TRUE(passes({.entryCount = 2}, 1));
    EXPECT_FALSE(passes({.entryCount = 1}, 1));
    EXPECT_TRUE(passes({.nestingDepth = 2}, 2));
    EXPECT_FALSE(passes({.nestingDepth = 2}, 3));
    EXPECT_EQ(error.code, ZQArchiveReader::TooMuch);
}

TEST_F(ArchiveReaderTest, ACancelTakesEffectBetweenEntriesAndWithinOne)
{
    const QByteArray big = SampleArchives::zipFile({{"a", QByteArray(5000000, 'a')}, {"b", "b"}});
    int questions = 0;
    ASSERT_TRUE(extract(big, {}, [&] {
        ++questions;
        return false;
    }));
    ASSERT_GT(questions, 10);
    for (const int which : {1, 2, 4, questions / 2, questions}) {
        int asked = 0;
        EXPECT_FALSE(extract(big, {}, [&] { return ++asked >= which; })) << which;
        EXPECT_EQ(error.code, ZQArchiveReader::Cancelled);
        EXPECT_EQ(asked, which); // it stops at once
        expectNothingExtracted();
    }
}

TEST_F(ArchiveReaderTest, AFolderThatIsThereIsLeftAlone)
{
    folder(QStringLiteral("w/a/b"));
    const QString archive = file(QStringLiteral("Set.zip"), SampleArchives::zipFile({{"a.txt", "new"}}));
    const QString taken = folder(QStringLiteral("taken"));
    file(QStringLiteral("taken/a.txt"), "old");
    ZQArchiveReader once(worker, {});
    EXPECT_FALSE(once.extractArchive(archive, taken, 0, &error));
    EXPECT_EQ(error.code, ZQArchiveReader::NotWritable);
    EXPECT_EQ(read(taken + QStringLiteral("/a.txt")), QByteArray("old"));
    EXPECT_FALSE(once.extractArchive(archive, path(QStringLiteral("no/such/folder"))));
}

TEST_F(ArchiveReaderTest, ADiskThatTakesNoMoreIsSaidAndNothingKept)
{
    // Past the largest size a file may have here, writing fails as on a full disk.
    const QByteArray big = SampleArchives::zipFile({{"a", QByteArray(3000000, 'a')}});
    ASSERT_TRUE(extract(SampleArchives::zipFile({}))); // the worker has what it needs by then
    {
        const FileSizeLimit limit(1000000);
        EXPECT_FALSE(extract(big));
    }
    EXPECT_EQ(error.code, ZQArchiveReader::NotWritable);
    EXPECT_FALSE(error.localizedDescription().isEmpty());
    expectNothingExtracted();
}

// What the reader of archives makes of all that a source may say, and where the files go that come out.

#include "Kit/Files/ZQArchiveReader.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Tests/Kit/Files/Scratch.h"

#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace {

using End = ZQArchiveEnd;
using Extraction = Scratch;

// Answers from a list, and fails at the n-th question.
class ScriptedSource : public ZQArchiveSource
{
public:
    QList<ZQArchiveEntry> entries;
    QByteArray content = "content"; // of each entry
    int failsAt = -1;
    End end = {};
    std::function<void()> beforeEntry = {};

    bool open(const QString &, End *out) override
    {
        m_next = 0;
        return answers(out);
    }
    std::optional<ZQArchiveEntry> nextEntry(End *out) override
    {
        if (!answers(out)) {
            return std::nullopt;
        }
        if (m_next == entries.size()) {
            *out = {};
            return std::nullopt;
        }
        if (beforeEntry) {
            beforeEntry();
        }
        return entries.at(m_next++);
    }
    std::optional<Block> nextBlock(End *out) override
    {
        return answers(out) ? std::optional(Block{content, true}) : std::nullopt;
    }
    int asked() const { return m_asked; }

private:
    bool answers(End *out)
    {
        if (m_asked++ == failsAt) {
            *out = end;
        }
        return m_asked - 1 != failsAt;
    }

    qsizetype m_next = 0;
    int m_asked = 0;
};

ZQArchiveEntry named(const QByteArray &name)
{
    ZQArchiveEntry entry;
    entry.name = name;
    entry.isListed = true;
    return entry;
}

QString joined(const QStringList &components)
{
    return components.join(u'|');
}

qsizetype openDescriptors()
{
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
        .size();
}

} // namespace

TEST_F(Extraction, EveryEndIsToldInWordsWheneverItComes)
{
    const QString damage =
        QStringLiteral("“Set.zip” cannot be unpacked, since it is damaged or no archive (%1). Get it "
                       "once more, or unpack it with another program and import what it holds.");
    struct Row
    {
        End end;
        int code;
        QString text;
    };
    const Row rows[] = {
        {{End::Kind::Encrypted, {}},
         ZQArchiveReader::Encrypted,
         QStringLiteral("“Set.zip” is protected by a password. Unpack it yourself and import what it holds.")},
        {{End::Kind::CutOff, {}}, ZQArchiveReader::Unreadable, damage.arg(QStringLiteral("its end is missing"))},
        {{End::Kind::Changed, {}}, ZQArchiveReader::Unreadable, damage.arg(QStringLiteral("its content has changed"))},
        {{End::Kind::Stopped, {}}, ZQArchiveReader::Unreadable, damage.arg(QStringLiteral("what unpacks it stopped"))},
        {{End::Kind::TookTooLong, {}}, ZQArchiveReader::Unreadable, damage.arg(QStringLiteral("it took too long"))},
        {{End::Kind::TooMuchMemory, {}},
         ZQArchiveReader::Unreadable,
         damage.arg(QStringLiteral("it needs too much memory"))},
        {{End::Kind::Damaged, QStringLiteral("odd")}, ZQArchiveReader::Unreadable, damage.arg(QStringLiteral("odd"))},
        {{End::Kind::Damaged, {}}, ZQArchiveReader::Unreadable, damage.arg(QStringLiteral("it ends too early"))},
        {{End::Kind::Cancelled, {}},
         ZQArchiveReader::Cancelled,
         QStringLiteral("The import was cancelled. Import it again if you want it.")},
        {{End::Kind::Unavailable, QStringLiteral("Nobody.")}, ZQArchiveReader::Unavailable, QStringLiteral("Nobody.")}};
    const QString out = path(QStringLiteral("out"));
    for (const Row &row : rows) {
        // Seen through: opened, two entries, the end; then opened, an entry, its block, an entry, its block, the end.
        for (int question = 0; question < 10; ++question) {
            ScriptedSource source;
            source.entries = {named("a"), named("b")};
            source.failsAt = question;
            source.end = row.end;
            ZQError error;
            EXPECT_FALSE(ZQArchiveReader(source, {}).extractArchive(path(QStringLiteral("Set.zip")), out, 0, &error));
            EXPECT_EQ(error.domain, ZQArchiveReader::errorDomain);
            EXPECT_EQ(error.code, row.code) << question;
            EXPECT_EQ(error.localizedDescription(), row.text) << question;
            EXPECT_EQ(source.asked(), question + 1);
            EXPECT_FALSE(QFile::exists(out)) << question;
        }
    }
}

TEST_F(Extraction, EntriesAreTakenForWhatTheySay)
{
    using Kind = ZQArchiveEntry::Kind;
    const QString out = path(QStringLiteral("out"));
    ScriptedSource source;
    ZQArchiveEntry timed = named("timed");
    timed.time = 1234567890;
    timed.timeNanoseconds = 123456789;
    ZQArchiveEntry nameless = named({});
    ZQArchiveEntry link = named("link");
    link.kind = Kind::Link;
    ZQArchiveEntry device = named("device");
    device.kind = Kind::Other;
    ZQArchiveEntry place = named("place");
    place.kind = Kind::Folder;
    source.entries = {nameless, timed, link, device, place, named("place/"), named("back\\")};
    ZQArchiveReader reader(source, {});
    ZQError error;
    ASSERT_TRUE(reader.extractArchive(path(QStringLiteral("Set.zip")), out, 0, &error))
        << qPrintable(error.localizedDescription());
    EXPECT_EQ(QDir(out).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name),
              (QStringList{QStringLiteral("back"), QStringLiteral("place"), QStringLiteral("timed")}));
    EXPECT_EQ(reader.skippedCount(), 3);
    EXPECT_EQ(reader.firstSkipped(), QStringLiteral("“?”: its name cannot be read"));
    EXPECT_EQ(reader.extractedSize(), 7);
    struct stat status = {};
    ASSERT_EQ(stat(QFile::encodeName(out + QStringLiteral("/timed")).constData(), &status), 0);
    EXPECT_EQ(status.st_mtim.tv_sec, 1234567890);
    EXPECT_EQ(status.st_mtim.tv_nsec, 123456789);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);

    const auto skipped = [&](const ZQArchiveEntry &entry) {
        QDir(out).removeRecursively();
        ScriptedSource one;
        one.entries = {named("a"), entry};
        ZQArchiveReader again(one, {});
        EXPECT_TRUE(again.extractArchive(path(QStringLiteral("Set.zip")), out));
        return again.firstSkipped();
    };
    EXPECT_EQ(skipped(link), QStringLiteral("“link”: it is a link"));
    EXPECT_EQ(skipped(device), QStringLiteral("“device”: it is no regular file"));
    EXPECT_EQ(skipped(named("../x")), QStringLiteral("“../x”: its name leads out of the archive"));
    EXPECT_EQ(skipped(named("a/x")), QStringLiteral("“a/x”: a file has the name of its folder"));
    EXPECT_EQ(skipped(named("a/")), QStringLiteral("“a/”: a file of this name is in its way"));
    EXPECT_TRUE(
        skipped(named(QByteArray("d/").repeated(64) + "x")).endsWith(QStringLiteral("it lies too deep in folders")));
    EXPECT_EQ(skipped(named(QByteArray("d/").repeated(63) + "x")), QString());
}

TEST_F(Extraction, LimitsAndWhatCannotBeWrittenAreToldInWords)
{
    const QString out = path(QStringLiteral("out"));
    const auto told = [&](ScriptedSource &source, const ZQArchiveLimits &limits, int depth = 0) {
        ZQError error;
        EXPECT_FALSE(
            ZQArchiveReader(source, limits).extractArchive(path(QStringLiteral("Set.zip")), out, depth, &error));
        EXPECT_FALSE(QFile::exists(out));
        const QString text = error.localizedDescription();
        const QString frame = QStringLiteral("“Set.zip” was not unpacked: ");
        return text.startsWith(frame) ? text.mid(frame.size()).section(u'.', 0, 0) : text;
    };
    ScriptedSource listed;
    listed.entries = {named("a"), named("b")};
    EXPECT_EQ(told(listed, {.entryCount = 1}), QStringLiteral("it holds more than 1 files"));
    EXPECT_EQ(told(listed, {.nestingDepth = 1}, 2), QStringLiteral("it lies in more than 1 other archives"));
    EXPECT_EQ(told(listed, {.totalSize = 13}), QStringLiteral("it holds more than 0 MB"));
    EXPECT_EQ(told(listed, {.ratio = 6, .ratioFreeSize = 6}),
              QStringLiteral("its content is more than 6 times as large"));
    for (ZQArchiveEntry &entry : listed.entries) {
        entry.size = 3 << 20;
    }
    const int before = listed.asked();
    EXPECT_EQ(told(listed, {.totalSize = (6 << 20) - 1}), QStringLiteral("it holds more than 5 MB"));
    EXPECT_EQ(listed.asked() - before, 3) << "nothing was unpacked for that";
    EXPECT_TRUE(ZQArchiveReader(listed, {.totalSize = 6 << 20}).extractArchive(path(QStringLiteral("Set.zip")), out));
    QDir(out).removeRecursively();
    listed.entries.last().isEncrypted = true;
    EXPECT_EQ(told(listed, {}),
              QStringLiteral("“Set.zip” is protected by a password (“b” in it is encrypted). Unpack it "
                             "yourself and import what it holds."));

    ScriptedSource vanishing;
    vanishing.entries = {named("a")};
    vanishing.beforeEntry = [&] { QDir().rmdir(out); };
    EXPECT_EQ(told(vanishing, {}),
              QStringLiteral("It cannot be unpacked into the folder for temporary files: No such file or directory. "
                             "Check that folder and import it again."));
}

TEST(ExtractionNames, KeepTheirExtensionAndStayInsideWhatASystemTakes)
{
    const QString n239(239, u'n');
    const auto componentsOf = [](const QString &name) {
        QStringList out;
        const auto verdict = ZQExtractionFolder::components(name, &out);
        return verdict == ZQExtractionFolder::Verdict::Fine ? joined(out) : QString::number(int(verdict));
    };
    const QString long255(255, u'n');
    const struct
    {
        QString name;
        QString components;
    } rows[] = {{QStringLiteral("a/b"), QStringLiteral("a|b")},
                {QStringLiteral("c:"), {}},
                {QStringLiteral("c:a"), QStringLiteral("a")},
                {QStringLiteral("é:a"), QStringLiteral("é:a")},
                {QStringLiteral("1:a"), QStringLiteral("1:a")},
                {QStringLiteral("a:"), {}},
                {QStringLiteral("x"), QStringLiteral("x")},
                {QStringLiteral("a") + QChar(u'\0') + QStringLiteral("b"), QStringLiteral("ab")},
                {QStringLiteral("."), {}},
                {long255, long255},
                {long255 + u'n', long255},
                {long255 + QStringLiteral(".png"), QString(251, u'n') + QStringLiteral(".png")},
                {long255 + u'.' + QString(15, u'e'), n239 + u'.' + QString(15, u'e')},
                {long255 + u'.' + QString(16, u'e'), long255},
                {u'.' + long255, u'.' + QString(254, u'n')},
                {QStringLiteral("💡").repeated(64), QStringLiteral("💡").repeated(63)},
                {QStringLiteral("d/").repeated(63) + u'd', QStringLiteral("d|").repeated(63) + u'd'},
                {QStringLiteral("d/").repeated(65), QString::number(int(ZQExtractionFolder::Verdict::TooDeep))}};
    for (const auto &row : rows) {
        EXPECT_EQ(componentsOf(row.name), row.components) << qPrintable(row.name.left(40));
    }
}

TEST_F(Extraction, OneFolderIsOpenAtATimeAndNamesThatAreTakenAreNumbered)
{
    const QString out = folder(QStringLiteral("out"));
    const qsizetype before = openDescriptors();
    {
        ZQExtractionFolder extraction(out);
        for (int i = 0; i < 20; ++i) {
            ZQError error;
            const int file =
                extraction.makeFile({QString::number(i), QStringLiteral("x"), QStringLiteral("a.b.png")}, &error);
            ASSERT_GE(file, 0) << qPrintable(error.localizedDescription());
            ::close(file);
        }
        EXPECT_EQ(openDescriptors(), before + 2);
        for (const char *const expected : {"0/x/a.b 1.png", "0/x/a.b 2.png"}) {
            ::close(extraction.makeFile({QStringLiteral("0"), QStringLiteral("x"), QStringLiteral("a.b.png")}));
            EXPECT_TRUE(QFile::exists(out + u'/' + QLatin1String(expected))) << expected;
        }
        EXPECT_TRUE(extraction.makeFolder({QStringLiteral("0"), QStringLiteral("x")}));
        EXPECT_TRUE(extraction.makeFolder({}));
        ZQError error;
        EXPECT_EQ(extraction.makeFile({QString(256, u'n')}, &error), -1);
        EXPECT_EQ(
            error.localizedDescription(),
            QStringLiteral("The file “%1” cannot be made: File name too long").arg(zqShortened(QString(256, u'n'))));
        EXPECT_FALSE(extraction.makeFolder({QStringLiteral("0"), QString(256, u'n')}, &error));
        EXPECT_EQ(
            error.localizedDescription(),
            QStringLiteral("The folder “%1” cannot be made: File name too long").arg(zqShortened(QString(256, u'n'))));
        EXPECT_FALSE(
            extraction.makeFolder({QStringLiteral("0"), QStringLiteral("x"), QStringLiteral("a.b.png")}, &error));
        EXPECT_EQ(error.code, ENOTDIR);
        EXPECT_EQ(openDescriptors(), before + 2);
        const qsizetype room = PATH_MAX - 256 - out.toUtf8().size();
        EXPECT_TRUE(extraction.canHold({QString(room - 1, u'n')}));
        EXPECT_FALSE(extraction.canHold({QString(room, u'n')}));
        EXPECT_FALSE(extraction.canHold({QString(room - 2, u'n'), QStringLiteral("n")}));
    }
    EXPECT_EQ(openDescriptors(), before);
}

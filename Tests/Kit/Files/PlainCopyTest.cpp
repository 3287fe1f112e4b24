#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQNewFile.h"
#include "Kit/Files/ZQPlainCopy.h"
#include "Tests/Kit/Files/Scratch.h"
#include "Tests/Support/FileSizeLimit.h"
#include "Tests/Support/ScratchMount.h"
#include "Tests/Support/Skip.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace {

QStringList namesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

class PlainCopy : public Scratch
{
protected:
    static void setTimes(const QString &path, time_t modified)
    {
        const timespec times[] = {{1000000000, 5}, {modified, 123456789}};
        ASSERT_EQ(utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
    }

    // Copies files of several sizes, with less and more than one block, into a folder.
    void copyInto(const QString &place) const
    {
        for (const qsizetype size : {0, 1, 1 << 20, (9 << 20) + 3}) {
            QByteArray content(size, 'x');
            for (qsizetype i = 0; i < size; i += 1000) {
                content[i] = char(i);
            }
            const QString source = file(QStringLiteral("source"), content);
            ASSERT_EQ(chmod(QFile::encodeName(source).constData(), 0640), 0);
            setTimes(source, 1234567890);
            const QString copy = QStringLiteral("%1/copy %2").arg(place).arg(size);
            ZQError error;
            ASSERT_TRUE(zqCopyPlainly(source, copy, &error)) << error.localizedDescription().toStdString();
            EXPECT_EQ(read(copy), content);
            struct stat status = {};
            ASSERT_EQ(stat(QFile::encodeName(copy).constData(), &status), 0);
            EXPECT_EQ(status.st_mode & 0777, 0640U);
            EXPECT_EQ(status.st_mtim.tv_sec, 1234567890);
        }
        EXPECT_EQ(namesIn(place).size(), 4);
    }
};

} // namespace

TEST_F(PlainCopy, KeepsContentModeAndTimesOnOneDisk)
{
    copyInto(folder(QStringLiteral("same")));
}

TEST_F(PlainCopy, KeepsContentModeAndTimesToAnotherDisk)
{
    const ScratchMount other(folder(QStringLiteral("other")), 64LL << 20);
    if (!other.isMounted()) {
        return skipWithout("the right to mount a file system");
    }
    copyInto(path(QStringLiteral("other")));
}

TEST_F(PlainCopy, KeepsAttributes)
{
    const QString source = file(QStringLiteral("source"), "content");
    if (!ZQExtendedAttributes::set(source, QStringLiteral("note"), "kept")) {
        return skipWithout("extended attributes");
    }
    const QString copy = path(QStringLiteral("copy"));
    ASSERT_EQ(chmod(QFile::encodeName(source).constData(), 0400), 0); // a copy that nobody may change any more
    ASSERT_TRUE(zqCopyPlainly(source, copy));
    EXPECT_EQ(ZQExtendedAttributes::get(copy, QStringLiteral("note")), QByteArray("kept"));
}

// Where the file system clones files, the source is read in a moment, before there is anything to ask for.
TEST_F(PlainCopy, ReadsAgainWhatChangesMeanwhileAndRefusesWhatNeverHoldsStill)
{
    const QByteArray before(3 << 20, 'a');
    const QByteArray after(3 << 20, 'b');
    const QString source = file(QStringLiteral("source"), before);
    const QString copy = path(QStringLiteral("copy"));
    int asked = 0;
    ZQError error;
    ASSERT_TRUE(zqCopyPlainly(source, copy, &error, [&] {
        if (++asked == 3) { // something is copied
            write(source, after);
            setTimes(source, asked);
        }
        return false;
    })) << qPrintable(error.localizedDescription());
    EXPECT_TRUE(read(copy) == (asked < 3 ? before : after)) << "two versions in one";

    asked = 0;
    const QString none = path(QStringLiteral("none"));
    const QStringList names = namesIn(path(QString()));
    const bool isCopied = zqCopyPlainly(source, none, &error, [&] {
        setTimes(source, 1000 + ++asked);
        return false;
    });
    if (isCopied) {
        EXPECT_EQ(asked, 1);
        return;
    }
    EXPECT_EQ(error.code, EBUSY);
    EXPECT_EQ(namesIn(path(QString())), names);
}

TEST_F(PlainCopy, NeverTakesANameThatIsTakenAndFollowsNoLinkThere)
{
    const QString source = file(QStringLiteral("source"), "new");
    const QString package = folder(QStringLiteral("package"));
    file(QStringLiteral("package/part"), "part");
    folder(QStringLiteral("there/folder"));
    file(QStringLiteral("there/file"), "old");
    ASSERT_TRUE(QFile::link(path(QStringLiteral("outside")), path(QStringLiteral("there/link"))));
    const QStringList before = namesIn(path(QStringLiteral("there")));
    for (const QString &from : {source, package}) {
        for (const char *name : {"file", "folder", "link"}) {
            ZQError error;
            EXPECT_FALSE(zqCopyPlainly(from, path(QStringLiteral("there/") + QLatin1String(name)), &error)) << name;
            EXPECT_EQ(error.code, EEXIST) << name;
        }
    }
    EXPECT_EQ(namesIn(path(QStringLiteral("there"))), before);
    EXPECT_EQ(read(path(QStringLiteral("there/file"))), "old");
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("outside"))));

    ASSERT_TRUE(zqCopyPlainly(package, path(QStringLiteral("there/new"))));
    EXPECT_EQ(read(path(QStringLiteral("there/new/part"))), "part");
}

TEST_F(PlainCopy, LeavesNothingBehindWhenItFails)
{
    const QString place = folder(QStringLiteral("place"));
    const QString large = file(QStringLiteral("large"), QByteArray(3 << 20, 'x'));
    const QString package = folder(QStringLiteral("package"));
    file(QStringLiteral("package/large"), QByteArray(3 << 20, 'x'));
    ASSERT_EQ(mkfifo(QFile::encodeName(path(QStringLiteral("pipe"))).constData(), 0600), 0);
    ZQError error;
    for (const QString &source : {large, package}) {
        EXPECT_FALSE(zqCopyPlainly(source, place + QStringLiteral("/cancelled"), &error, [] { return true; }));
        EXPECT_EQ(error.code, ECANCELED);
        const FileSizeLimit limit(1 << 20);
        EXPECT_FALSE(zqCopyPlainly(source, place + QStringLiteral("/too large"), &error));
    }
    EXPECT_FALSE(zqCopyPlainly(path(QStringLiteral("pipe")), place + QStringLiteral("/pipe"), &error));
    EXPECT_FALSE(zqCopyPlainly(path(QStringLiteral("gone")), place + QStringLiteral("/gone"), &error));
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_TRUE(namesIn(place).isEmpty()) << namesIn(place).join(u'|').toStdString();

    const ScratchMount disk(place, 1 << 20);
    if (!disk.isMounted()) {
        return skipWithout("the right to mount a file system");
    }
    EXPECT_FALSE(zqCopyPlainly(large, place + QStringLiteral("/full"), &error));
    EXPECT_EQ(error.code, ENOSPC);
    EXPECT_TRUE(namesIn(place).isEmpty());
}

TEST_F(PlainCopy, ContentIsWrittenWholeAndOverNothing)
{
    const QString place = folder(QStringLiteral("place"));
    const QString there = place + QStringLiteral("/there");
    ZQError error;
    EXPECT_TRUE(zqWriteNewFile(there, "first", &error)) << error.localizedDescription().toStdString();
    EXPECT_FALSE(zqWriteNewFile(there, "second", &error));
    EXPECT_EQ(error.code, EEXIST);
    EXPECT_EQ(read(there), QByteArray("first"));
    {
        const FileSizeLimit limit(1 << 20);
        EXPECT_FALSE(zqWriteNewFile(place + QStringLiteral("/large"), QByteArray(3 << 20, 'x'), &error));
        EXPECT_EQ(error.code, EFBIG);
    }
    EXPECT_FALSE(zqWriteNewFile(path(QStringLiteral("gone/a")), "x", &error));
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_EQ(namesIn(place), QStringList{QStringLiteral("there")});
}

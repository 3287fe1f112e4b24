#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Tests/Kit/Files/Scratch.h"

#include <QCryptographicHash>
#include <QDateTime>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

using FileCopy = Scratch;

namespace {
QByteArray sha1(const QByteArray &data)
{
    return QCryptographicHash::hash(data, QCryptographicHash::Sha1).toHex();
}
QByteArray content(qsizetype size)
{
    QByteArray data(size, Qt::Uninitialized);
    for (qsizetype i = 0; i < size; ++i) {
        data[i] = static_cast<char>(i * 7 + (i >> 8));
    }
    return data;
}
} // namespace

TEST_F(FileCopy, KeepsContentModeTimesAndAttributes)
{
    for (const qsizetype size : {0, 1, 1 << 20, (5 << 20) + 3}) {
        const QString source = file(QStringLiteral("source %1").arg(size), content(size));
        ASSERT_TRUE(ZQExtendedAttributes::set(source, QStringLiteral("note"), QByteArray("a\0b", 3)));
        ASSERT_EQ(chmod(QFile::encodeName(source).constData(), 0440), 0);
        const timespec times[] = {{1000000000, 5}, {1234567890, 123456789}};
        ASSERT_EQ(utimensat(AT_FDCWD, QFile::encodeName(source).constData(), times, 0), 0);
        const QString copy = path(QStringLiteral("copy %1").arg(size));
        ZQError error;
        const auto result = zqCopyFile(source, copy, &error);
        ASSERT_TRUE(result) << qPrintable(error.localizedDescription());
        EXPECT_EQ(result->SHA1, sha1(content(size)));
        EXPECT_EQ(result->bytes, size);
        EXPECT_EQ(read(copy), content(size));
        struct stat status = {};
        ASSERT_EQ(stat(QFile::encodeName(copy).constData(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777u, 0440u);
        EXPECT_EQ(status.st_mtim.tv_sec, 1234567890);
        EXPECT_EQ(status.st_mtim.tv_nsec, 123456789);
        EXPECT_EQ(ZQExtendedAttributes::get(copy, QStringLiteral("note")), QByteArray("a\0b", 3));
        EXPECT_EQ(zqSHA1OfFile(copy), result->SHA1);
    }
}

TEST_F(FileCopy, NeverTouchesAnExistingDestination)
{
    const QString source = file(QStringLiteral("a"), "new");
    const QString there = file(QStringLiteral("b"), "old");
    const QString full = folder(QStringLiteral("full"));
    write(full + QStringLiteral("/kept"), "kept");
    ZQError error;
    EXPECT_FALSE(zqCopyFile(source, there, &error));
    EXPECT_EQ(error.code, EEXIST);
    EXPECT_FALSE(zqCopyFile(folder(QStringLiteral("package")), full, &error));
    EXPECT_FALSE(zqLinkOrCopyFile(source, there, &error));
    EXPECT_FALSE(zqMoveNoReplace(source, there, &error));
    EXPECT_EQ(error.code, EEXIST);
    EXPECT_EQ(read(there), "old");
    EXPECT_EQ(read(full + QStringLiteral("/kept")), "kept");
    EXPECT_EQ(read(source), "new");
}

TEST_F(FileCopy, RefusesWhatIsNoFileAndReportsWhatCannotBeRead)
{
    const QString pipe = path(QStringLiteral("pipe"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const struct
    {
        QString source;
        int code;
    } rows[] = {{pipe, EINVAL},
                {QStringLiteral("/dev/zero"), EINVAL},
                {path(QStringLiteral("missing")), ENOENT},
                {QString(), EINVAL},
                {path(QStringLiteral("a")) + QChar::Null + QStringLiteral("b"), EINVAL},
                {path(QString(300, u'x')), ENAMETOOLONG}};
    file(QStringLiteral("a"), "a"); // what the name with a null would be cut to
    for (const auto &row : rows) {
        ZQError error;
        EXPECT_FALSE(zqCopyFile(row.source, path(QStringLiteral("copy")), &error));
        EXPECT_EQ(error.code, row.code) << qPrintable(row.source);
        EXPECT_FALSE(error.localizedDescription().isEmpty());
        EXPECT_FALSE(QFile::exists(path(QStringLiteral("copy"))));
        ZQError digestError;
        EXPECT_TRUE(zqSHA1OfFile(row.source, &digestError).isEmpty());
        EXPECT_FALSE(digestError.isNull());
    }
}

TEST_F(FileCopy, TakesEveryNameTheSystemAllows)
{
    for (const QString &name : {QStringLiteral("line\nbreak"), QStringLiteral(" blank "), QString(255, u'n'),
                                QStringLiteral("ü\u0301💡"), QStringLiteral("-rf *")}) {
        const QString source = file(name, name.toUtf8());
        const QString target = folder(QStringLiteral("to")) + u'/' + name;
        ASSERT_TRUE(zqCopyFile(source, target)) << qPrintable(name);
        EXPECT_EQ(read(target), name.toUtf8());
    }
}

TEST_F(FileCopy, CopiesAPackageWithItsLinksAndOddNames)
{
    const QString package = folder(QStringLiteral("p.sketch"));
    folder(QStringLiteral("p.sketch/inner"));
    write(package + QStringLiteral("/inner/file"), "content");
    const QByteArray raw = QFile::encodeName(package);
    ASSERT_EQ(symlink("inner/file", (raw + "/link").constData()), 0);
    QFile::link(QStringLiteral("/nowhere/at/all"), package + QStringLiteral("/broken"));
    FILE *const odd = fopen((raw + "/bad\xff\xfename").constData(), "w");
    ASSERT_TRUE(odd);
    fclose(odd);
    const QString copy = path(QStringLiteral("copy.sketch"));
    const auto result = zqCopyFile(package + u'/', copy);
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->SHA1.isEmpty());
    EXPECT_EQ(result->bytes, 7);
    EXPECT_EQ(read(copy + QStringLiteral("/inner/file")), "content");
    char target[64] = {};
    EXPECT_EQ(readlink((QFile::encodeName(copy) + "/link").constData(), target, sizeof target), 10);
    EXPECT_STREQ(target, "inner/file");
    EXPECT_EQ(access((QFile::encodeName(copy) + "/bad\xff\xfename").constData(), F_OK), 0);
    EXPECT_FALSE(zqCopyFile(package, package + QStringLiteral("/inner/again")));
    EXPECT_FALSE(QFile::exists(package + QStringLiteral("/inner/again")));
}

TEST_F(FileCopy, LeavesNothingOfAPackageThatCannotBeCopiedWhole)
{
    const QString package = folder(QStringLiteral("p"));
    write(package + QStringLiteral("/file"), "content");
    ASSERT_EQ(mkfifo(QFile::encodeName(package + QStringLiteral("/pipe")).constData(), 0600), 0);
    ZQError error;
    EXPECT_FALSE(zqCopyFile(package, path(QStringLiteral("copy")), &error));
    EXPECT_EQ(error.code, EINVAL);
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("copy"))));
}

TEST_F(FileCopy, ReadsAgainAFileThatChangedAndGivesUpOnOneThatKeepsChanging)
{
    const QString source = file(QStringLiteral("busy"), content(3 << 20));
    const auto changing = [&](int times) {
        return [&, times, asked = 0]() mutable {
            if (asked++ % 4 == 2 && times-- > 0) {
                QFile file(source);
                EXPECT_TRUE(file.open(QIODevice::Append));
                file.write("more");
            }
            return false;
        };
    };
    const auto once = zqCopyFile(source, path(QStringLiteral("once")), nullptr, changing(1));
    ASSERT_TRUE(once);
    EXPECT_EQ(read(path(QStringLiteral("once"))), read(source));
    EXPECT_EQ(once->SHA1, sha1(read(source)));
    ZQError error;
    EXPECT_FALSE(zqCopyFile(source, path(QStringLiteral("never")), &error, changing(1000)));
    EXPECT_EQ(error.code, EBUSY);
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("changed while it was being copied")));
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("never"))));
}

TEST_F(FileCopy, StopsBetweenBlocksWhenCancelled)
{
    const QString source = file(QStringLiteral("big"), content(4 << 20));
    int asked = 0;
    ZQError error;
    EXPECT_FALSE(zqCopyFile(source, path(QStringLiteral("copy")), &error, [&] { return ++asked == 3; }));
    EXPECT_EQ(error.code, ECANCELED);
    EXPECT_EQ(asked, 3);
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("copy"))));
}

TEST_F(FileCopy, RemovesThePartWrittenWhenTheSpaceEnds)
{
    const QString source = file(QStringLiteral("big"), content(4 << 20));
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small = {2 << 20, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    ZQError error;
    const auto result = zqCopyFile(source, path(QStringLiteral("copy")), &error);
    ZQError writeError;
    const QString kept = file(QStringLiteral("kept"), "old");
    const bool written = zqWriteFileAtomically(kept, content(4 << 20), &writeError);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(result);
    EXPECT_EQ(error.code, EFBIG);
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("copy"))));
    EXPECT_FALSE(written);
    EXPECT_EQ(read(kept), "old");
    EXPECT_EQ(QDir(path({})).entryList(QDir::Files | QDir::Hidden).size(), 2);
}

TEST_F(FileCopy, LinksOnOneFileSystem)
{
    const QString source = file(QStringLiteral("a"), "content");
    const auto result = zqLinkOrCopyFile(source, path(QStringLiteral("b")));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->SHA1, sha1("content"));
    struct stat status = {};
    ASSERT_EQ(stat(QFile::encodeName(source).constData(), &status), 0);
    EXPECT_EQ(status.st_nlink, 2u);
}

TEST_F(FileCopy, WritesAtomicallyThroughALink)
{
    const QString real = file(QStringLiteral("real"), "old");
    const QString link = path(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(real, link));
    ASSERT_EQ(chmod(QFile::encodeName(real).constData(), 0640), 0);
    ASSERT_TRUE(zqWriteFileAtomically(link, "new"));
    EXPECT_EQ(read(real), "new");
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    struct stat status = {};
    stat(QFile::encodeName(real).constData(), &status);
    EXPECT_EQ(status.st_mode & 0777u, 0640u);
    ZQError error;
    EXPECT_FALSE(zqWriteFileAtomically(path(QStringLiteral("no/folder")), "x", &error));
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_TRUE(zqSyncFileSystem(real));
}

TEST_F(FileCopy, AnswersAFilesDates)
{
    const QString made = file(QStringLiteral("a"), "a");
    const timespec times[] = {{0, 0}, {1234567890, 123000000}};
    utimensat(AT_FDCWD, QFile::encodeName(made).constData(), times, 0);
    const auto dates = zqFileDates(made);
    ASSERT_TRUE(dates);
    EXPECT_EQ(dates->modification, 1234567890123);
    EXPECT_GT(dates->attributeModification, dates->modification);
    EXPECT_FALSE(zqFileDates(path(QStringLiteral("missing"))));
}

using ExtendedAttributes = Scratch;

TEST_F(ExtendedAttributes, AreSetReadListedAndRemoved)
{
    const QString made = file(QStringLiteral("a"), "a");
    const QString name = QStringLiteral("com.example:tags ü");
    ZQError error;
    EXPECT_EQ(ZQExtendedAttributes::get(made, name, &error), std::nullopt);
    EXPECT_TRUE(error.isNull());
    EXPECT_TRUE(ZQExtendedAttributes::remove(made, name, &error));
    ASSERT_TRUE(ZQExtendedAttributes::set(made, name, "value"));
    ASSERT_TRUE(ZQExtendedAttributes::set(made, QStringLiteral("empty"), ""));
    EXPECT_EQ(ZQExtendedAttributes::get(made, name), QByteArray("value"));
    EXPECT_EQ(ZQExtendedAttributes::get(made, QStringLiteral("empty")), QByteArray(""));
    QStringList names = ZQExtendedAttributes::list(made);
    names.sort();
    EXPECT_EQ(names, QStringList({name, QStringLiteral("empty")}));
    EXPECT_TRUE(ZQExtendedAttributes::remove(made, name));
    EXPECT_EQ(ZQExtendedAttributes::get(made, name), std::nullopt);
}

TEST_F(ExtendedAttributes, ReportMissingFilesAndDoNotFollowLinks)
{
    const QString made = file(QStringLiteral("a"), "a");
    const QString link = path(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(made, link));
    ZQError error;
    EXPECT_FALSE(ZQExtendedAttributes::set(link, QStringLiteral("x"), "y", &error));
    EXPECT_EQ(error.domain, ZQError::posixDomain);
    EXPECT_EQ(ZQExtendedAttributes::get(made, QStringLiteral("x")), std::nullopt);
    EXPECT_FALSE(ZQExtendedAttributes::get(path(QStringLiteral("missing")), QStringLiteral("x"), &error));
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_FALSE(ZQExtendedAttributes::set(made, QString(300, u'x'), "y", &error));
    EXPECT_EQ(error.code, ERANGE);
}

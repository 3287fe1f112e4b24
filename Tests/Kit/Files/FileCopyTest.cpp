#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Tests/Kit/Files/Scratch.h"
#include "Tests/Support/FileSizeLimit.h"

#include <QCryptographicHash>
#include <QDateTime>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

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
    EXPECT_EQ(error.code, EEXIST);
    for (const bool isLink : {true, false}) {
        error = {};
        EXPECT_FALSE(isLink ? zqLinkOrCopyFile(source, there, &error).has_value()
                            : zqMoveNoReplace(source, there, &error));
        EXPECT_EQ(error.code, EEXIST);
        EXPECT_EQ(error.localizedDescription(), there + QStringLiteral(": File exists"));
    }
    EXPECT_EQ(read(there), "old");
    EXPECT_EQ(read(full + QStringLiteral("/kept")), "kept");
    EXPECT_EQ(read(source), "new");
}

TEST_F(FileCopy, RefusesWhatIsNoFileAndReportsWhatCannotBeRead)
{
    const QString pipe = path(QStringLiteral("pipe"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const QString refused = QStringLiteral("“%1” is neither a file nor a folder, so it cannot be copied.");
    const struct
    {
        QString source;
        int code;
        QString text;
    } rows[] = {
        {pipe, EINVAL, refused.arg(pipe)},
        {QStringLiteral("/dev/zero"), EINVAL, refused.arg(QStringLiteral("/dev/zero"))},
        {path(QStringLiteral("missing")), ENOENT,
         path(QStringLiteral("missing")) + QStringLiteral(": No such file or directory")},
        {QString(), EINVAL, QStringLiteral(": Invalid argument")},
        {path(QStringLiteral("a")) + QChar::Null + QStringLiteral("b"), EINVAL,
         path(QStringLiteral("a")) + QChar::Null + QStringLiteral("b: Invalid argument")},
        {path(QString(300, u'x')), ENAMETOOLONG, path(QString(300, u'x')) + QStringLiteral(": File name too long")}};
    file(QStringLiteral("a"), "a"); // what the name with a null would be cut to
    for (const auto &row : rows) {
        SCOPED_TRACE(qPrintable(row.source));
        for (const auto &copy : {zqCopyFile, zqLinkOrCopyFile}) {
            ZQError error;
            EXPECT_FALSE(copy(row.source, path(QStringLiteral("copy")), &error, {}));
            EXPECT_EQ(error.code, row.code);
            EXPECT_EQ(error.localizedDescription(), row.text);
            EXPECT_FALSE(QFile::exists(path(QStringLiteral("copy"))));
        }
        ZQError digestError;
        EXPECT_TRUE(zqSHA1OfFile(row.source, &digestError).isEmpty());
        EXPECT_EQ(digestError.localizedDescription(), row.text);
    }
    for (const auto &copy : {zqCopyFile, zqLinkOrCopyFile}) {
        ZQError error;
        EXPECT_FALSE(copy(path(QStringLiteral("a")), {}, &error, {}));
        EXPECT_EQ(error.code, EINVAL);
        EXPECT_FALSE(copy(path(QStringLiteral("a")), path(QStringLiteral("no/folder")), &error, {}));
        EXPECT_EQ(error.code, ENOENT);
    }
    ZQError error;
    EXPECT_TRUE(zqSHA1OfFile(folder(QStringLiteral("folder")), &error).isEmpty());
    EXPECT_EQ(error.code, EISDIR);
    EXPECT_TRUE(zqSHA1OfFile(QStringLiteral("/proc/self/mem"), &error).isEmpty());
    EXPECT_EQ(error.localizedDescription(), QStringLiteral("/proc/self/mem: Input/output error"));
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
    ZQError error;
    for (const char *const inside : {"/again", "/inner/again"}) {
        EXPECT_FALSE(zqCopyFile(package, package + QLatin1String(inside), &error));
        EXPECT_EQ(error.localizedDescription(), QStringLiteral("“%1” cannot be copied into itself.").arg(package));
        EXPECT_FALSE(QFile::exists(package + QLatin1String(inside)));
    }
    EXPECT_TRUE(zqLinkOrCopyFile(package, package + QStringLiteral("2"))) << "its name only begins the same";
    EXPECT_EQ(read(package + QStringLiteral("2/inner/file")), "content");
}

TEST_F(FileCopy, KeepsWhatFoldersAndLinksInAPackageCarry)
{
    const QString inner = folder(QStringLiteral("p/inner"));
    ASSERT_TRUE(QFile::link(QStringLiteral("nowhere"), inner + QStringLiteral("/link")));
    ASSERT_TRUE(ZQExtendedAttributes::set(inner, QStringLiteral("note"), "n"));
    const timespec times[] = {{1000000000, 5}, {1234567890, 123456789}};
    const auto statusOf = [](const QString &path) {
        struct stat status = {};
        EXPECT_EQ(lstat(QFile::encodeName(path).constData(), &status), 0);
        return status;
    };
    for (const QString &each : {inner + QStringLiteral("/link"), inner, path(QStringLiteral("p"))}) {
        ASSERT_EQ(utimensat(AT_FDCWD, QFile::encodeName(each).constData(), times, AT_SYMLINK_NOFOLLOW), 0);
    }
    ASSERT_EQ(chmod(QFile::encodeName(inner).constData(), 0751), 0);
    ASSERT_TRUE(zqCopyFile(path(QStringLiteral("p")), path(QStringLiteral("copy"))));
    for (const char *const each : {"copy", "copy/inner", "copy/inner/link"}) {
        EXPECT_EQ(statusOf(path(QLatin1String(each))).st_mtim.tv_sec, 1234567890) << each;
        EXPECT_EQ(statusOf(path(QLatin1String(each))).st_mtim.tv_nsec, 123456789) << each;
    }
    EXPECT_EQ(statusOf(path(QStringLiteral("copy/inner"))).st_mode & 0777U, 0751U);
    EXPECT_EQ(ZQExtendedAttributes::get(path(QStringLiteral("copy/inner")), QStringLiteral("note")), QByteArray("n"));
}

TEST_F(FileCopy, MovesAFileOrAFolderAndSaysWhatStoodInTheWay)
{
    const QString made = folder(QStringLiteral("a"));
    write(made + QStringLiteral("/file"), "content");
    ZQError error;
    EXPECT_TRUE(zqMoveNoReplace(made, path(QStringLiteral("b")), &error));
    EXPECT_TRUE(error.isNull());
    EXPECT_EQ(read(path(QStringLiteral("b/file"))), "content");
    EXPECT_FALSE(QFile::exists(made));
    const struct
    {
        QString from;
        QString to;
        int code;
        QString named;
    } rows[] = {{made, path(QStringLiteral("c")), ENOENT, made},
                {path(QStringLiteral("b")), path(QStringLiteral("b/inside")), EINVAL, path(QStringLiteral("b"))},
                {path(QStringLiteral("b")), path(QStringLiteral("no/c")), ENOENT, path(QStringLiteral("b"))},
                {{}, path(QStringLiteral("c")), EINVAL, {}},
                {path(QStringLiteral("b")), {}, EINVAL, {}}};
    for (const auto &row : rows) {
        EXPECT_FALSE(zqMoveNoReplace(row.from, row.to, &error)) << qPrintable(row.from);
        EXPECT_EQ(error.code, row.code) << qPrintable(row.from);
        EXPECT_TRUE(error.localizedDescription().startsWith(row.named + u':')) << qPrintable(row.from);
    }
    EXPECT_EQ(read(path(QStringLiteral("b/file"))), "content");
}

TEST_F(FileCopy, MakesFoldersOnTheWayAndRemovesTreesButNotBehindLinks)
{
    EXPECT_TRUE(zqMakeFolder(path(QStringLiteral("one/two/three//"))));
    EXPECT_TRUE(zqMakeFolder(path(QStringLiteral("one/two"))));
    EXPECT_TRUE(QFileInfo(path(QStringLiteral("one/two/three"))).isDir());
    const QString kept = file(QStringLiteral("kept"), "kept");
    EXPECT_FALSE(zqMakeFolder(kept));
    EXPECT_FALSE(zqMakeFolder(kept + QStringLiteral("/below")));
    EXPECT_FALSE(zqMakeFolder({}));
    folder(QStringLiteral("outside"));
    write(path(QStringLiteral("outside/file")), "outside");
    write(path(QStringLiteral("one/two/.hidden")), "x");
    ASSERT_TRUE(QFile::link(path(QStringLiteral("outside")), path(QStringLiteral("one/link"))));
    zqRemoveTree(QFile::encodeName(path(QStringLiteral("one"))));
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("one"))));
    EXPECT_EQ(read(path(QStringLiteral("outside/file"))), "outside");
    zqRemoveTree(QFile::encodeName(kept));
    zqRemoveTree(QFile::encodeName(kept));
    EXPECT_FALSE(QFile::exists(kept));
    EXPECT_TRUE(zqTemporaryNameBeside("/a/b").startsWith("/a/.zelto-"));
    EXPECT_TRUE(zqTemporaryNameBeside("b").startsWith(".zelto-"));
    EXPECT_NE(zqTemporaryNameBeside("b"), zqTemporaryNameBeside("b"));
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
    const QString kept = file(QStringLiteral("kept"), "old");
    ZQError error;
    {
        const FileSizeLimit limit(2 << 20);
        EXPECT_FALSE(zqCopyFile(source, path(QStringLiteral("copy")), &error));
        EXPECT_FALSE(zqWriteFileAtomically(kept, content(4 << 20), nullptr));
    }
    EXPECT_EQ(error.code, EFBIG);
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("copy"))));
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

    ASSERT_TRUE(zqLinkOrCopyFile(source, path(QStringLiteral("c"))))
        << "who writes to its other name must not reach it";
    ASSERT_EQ(stat(QFile::encodeName(path(QStringLiteral("c"))).constData(), &status), 0);
    EXPECT_EQ(status.st_nlink, 1u);
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
    EXPECT_FALSE(zqWriteFileAtomically({}, "x", &error));
    EXPECT_EQ(error.code, EINVAL);
    EXPECT_FALSE(zqWriteFileAtomically(folder(QStringLiteral("folder")), "x", &error));
    EXPECT_EQ(error.localizedDescription(), path(QStringLiteral("folder: Is a directory")));
    EXPECT_EQ(QDir(path({})).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 4); // TMPDIR too
    ASSERT_TRUE(zqWriteFileAtomically(path(QStringLiteral("new")), "n"));
    EXPECT_EQ(read(path(QStringLiteral("new"))), "n");
    error = {};
    EXPECT_TRUE(zqSyncFileSystem(real, &error));
    EXPECT_TRUE(error.isNull());
    EXPECT_FALSE(zqSyncFileSystem(path(QStringLiteral("missing")), &error));
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_FALSE(zqSyncFileSystem({}, &error));
    EXPECT_EQ(error.code, EINVAL);
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
    EXPECT_TRUE(dates->birth == dates->modification ||
                (dates->birth > dates->modification && dates->birth <= dates->attributeModification));
    EXPECT_FALSE(zqFileDates({}));
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
    for (const qsizetype size : {511, 512, 513, 2000}) {
        ASSERT_TRUE(ZQExtendedAttributes::set(made, name, content(size), &error));
        EXPECT_EQ(ZQExtendedAttributes::get(made, name, &error), content(size));
    }
    names.clear();
    for (int i = 0; i < 12; ++i) { // more names than are read in one go
        names.append(QStringLiteral("%1-").arg(i + 10).leftJustified(100, u'n'));
        ASSERT_TRUE(ZQExtendedAttributes::set(made, names.last(), "", &error))
            << qPrintable(error.localizedDescription());
    }
    names.append({name, QStringLiteral("empty")});
    QStringList found = ZQExtendedAttributes::list(made, &error);
    found.sort();
    names.sort();
    EXPECT_EQ(found, names);
    EXPECT_TRUE(error.isNull());
    EXPECT_TRUE(ZQExtendedAttributes::list(file(QStringLiteral("b"), "b"), &error).isEmpty());
    EXPECT_TRUE(error.isNull());
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
    error = {};
    EXPECT_TRUE(ZQExtendedAttributes::list(path(QStringLiteral("missing")), &error).isEmpty());
    EXPECT_EQ(error.code, ENOENT);
    error = {};
    EXPECT_FALSE(ZQExtendedAttributes::remove(path(QStringLiteral("missing")), QStringLiteral("x"), &error));
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_FALSE(ZQExtendedAttributes::set(made, QString(300, u'x'), "y", &error));
    EXPECT_EQ(error.code, ERANGE);
}

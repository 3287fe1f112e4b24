// By what a file is known again: its reference, its identity, its contents, the names editors give to old ones.

#include "Kit/Files/ZQFileReference.h"
#include "Kit/Files/ZQFileSearch.h"
#include "Tests/Kit/Files/Scratch.h"

#include <QDataStream>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>

namespace {

using FileReference = Scratch;

std::atomic<bool> isEverythingOnFAT = false;

// While it lives all files seem to lie on a file system without birth times, which numbers them anew at each mount.
class OnFAT
{
public:
    OnFAT() { isEverythingOnFAT = true; }
    ~OnFAT() { isEverythingOnFAT = false; }
    OnFAT(const OnFAT &) = delete;
    OnFAT &operator=(const OnFAT &) = delete;
};

QByteArray bytesOf(quint32 magic, quint8 format, const QByteArray &path, const QByteArray &ends = "e",
                   quint32 names = 2)
{
    QByteArray data;
    QDataStream stream(&data, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_0);
    stream << magic << format;
    for (quint64 i = 1; i <= 6; i += 3) {
        stream << i << i + 1 << qint64(i + 2);
    }
    stream << true << path;
    if (format > 1) {
        stream << qint64(77) << ends;
    }
    if (format > 2) {
        stream << names;
    }
    return data;
}

QByteArray system(const QString &path)
{
    return QFile::encodeName(path);
}

} // namespace

extern "C" int statfs(const char *path, struct statfs *status) noexcept
{
    const int result = int(::syscall(SYS_statfs, path, status));
    if (result == 0 && isEverythingOnFAT) {
        status->f_type = MSDOS_SUPER_MAGIC;
    }
    return result;
}

extern "C" int statx(int folder, const char *path, int flags, unsigned int mask, struct statx *status) noexcept
{
    const int result = int(::syscall(SYS_statx, folder, path, flags, mask, status));
    if (result == 0 && isEverythingOnFAT) {
        status->stx_mask &= ~unsigned(STATX_BTIME);
    }
    return result;
}

TEST(FileReferenceData, IsTakenOnlyWholeAndWithinBounds)
{
    constexpr quint32 magic = 0x5a51504c;
    const QByteArray longest = '/' + QByteArray(16384 - bytesOf(magic, 2, "/").size(), 'p');
    const struct
    {
        const char *what;
        QByteArray data;
        bool isTaken;
    } rows[] = {{"whole", bytesOf(magic, 2, "/a/b"), true},
                {"of the first format", bytesOf(magic, 1, "/a/b"), true},
                {"of none", bytesOf(magic, 0, "/a/b"), false},
                {"of the last format", bytesOf(magic, 3, "/a/b"), true},
                {"of a later one", bytesOf(magic, 4, "/a/b"), false},
                {"of something else", bytesOf(magic + 1, 2, "/a/b"), false},
                {"a relative path", bytesOf(magic, 2, "a/b"), false},
                {"no path", bytesOf(magic, 2, ""), false},
                {"a path with an end in it", bytesOf(magic, 2, QByteArray("/a\0b", 4)), false},
                {"the longest digest", bytesOf(magic, 2, "/a", QByteArray(64, 'e')), true},
                {"a longer digest", bytesOf(magic, 2, "/a", QByteArray(65, 'e')), false},
                {"the longest", bytesOf(magic, 2, longest), true},
                {"a longer one", bytesOf(magic, 2, longest + 'p'), false},
                {"more behind", bytesOf(magic, 2, "/a") + 'x', false},
                {"cut", bytesOf(magic, 2, "/a").chopped(1), false},
                {"cut in the last format", bytesOf(magic, 3, "/a").chopped(1), false}};
    for (const auto &row : rows) {
        EXPECT_EQ(ZQFileReference::decoded(row.data).has_value(), row.isTaken) << row.what;
    }
    const auto found = ZQFileReference::decoded(bytesOf(magic, 2, "/a/b", "ends"));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->file.fileSystem, 1U);
    EXPECT_EQ(found->file.inode, 2U);
    EXPECT_EQ(found->file.birth, 3);
    EXPECT_EQ(found->folder.inode, 5U);
    EXPECT_TRUE(found->isFolder);
    EXPECT_EQ(found->path, "/a/b");
    EXPECT_EQ(found->contents.size, 77);
    EXPECT_EQ(found->contents.ends, "ends");
    EXPECT_EQ(found->names, 1U);
    EXPECT_EQ(found->encoded(), bytesOf(magic, 2, "/a/b", "ends")) << "an older version reads it";
    const auto ofSeveral = ZQFileReference::decoded(bytesOf(magic, 3, "/a/b", "ends", 7));
    ASSERT_TRUE(ofSeveral);
    EXPECT_EQ(ofSeveral->names, 7U);
    EXPECT_EQ(ofSeveral->encoded(), bytesOf(magic, 3, "/a/b", "ends", 7));
}

TEST(FileReferenceData, KnowsTheNamesOfOldFilesAndFolders)
{
    ZQFileReference reference;
    reference.path = "/folder/a.png";
    for (const char *const aside : {"a.png~", "a.png.bak", "a.png.backup", "a.png.old", "a.png.orig", "a.png_original",
                                    "#a.png#", ".a.png~", ".a.png.bak", "a.png#"}) {
        EXPECT_TRUE(reference.isPutAside(aside)) << aside;
    }
    for (const char *const other :
         {"a.png", ".a.png", "b.png~", "old a.png", "a.png.bak2", "a.png~~", "..a.png~", "~", ""}) {
        EXPECT_FALSE(reference.isPutAside(other)) << other;
    }
    for (const auto &[path, folder] : std::initializer_list<std::pair<const char *, const char *>>{
             {"/a/b", "/a"}, {"/a", "/"}, {"a", "/"}, {"/", "/"}, {"/a/b/", "/a/b"}, {"", "/"}}) {
        EXPECT_EQ(zqFolderOf(path), folder) << path;
    }
}

TEST(FileReferenceData, AnIdentityIsItsNumberAndBirthOrElseItsFileSystem)
{
    const struct
    {
        ZQFileIdentity one;
        ZQFileIdentity other;
        bool isSame;
    } rows[] = {{{1, 2, 3}, {1, 2, 3}, true},  {{1, 2, 3}, {1, 2, 4}, true}, {{1, 2, 3}, {1, 5, 3}, false},
                {{1, 2, 3}, {2, 2, 3}, false}, {{1, 0, 3}, {1, 0, 3}, true}, {{1, 0, 3}, {1, 0, 4}, false},
                {{1, 0, 3}, {1, 2, 3}, false}, {{0, 0, 0}, {0, 0, 0}, true}};
    for (const auto &row : rows) {
        EXPECT_EQ(row.one.isSameAs(row.other), row.isSame);
        EXPECT_EQ(row.other.isSameAs(row.one), row.isSame);
    }
}

TEST_F(FileReference, ContentsAreKnownByTheirEndsUnlessTheseAreTooPlain)
{
    QByteArray varied;
    for (int i = 0; i < 128; ++i) {
        varied += char(i);
    }
    const auto endsOf = [&](const QByteArray &content) {
        return ZQFileContents::ofFile(system(file(QStringLiteral("file"), content)));
    };
    const QByteArray plain(16384, '\1');
    const struct
    {
        const char *what;
        QByteArray content;
        bool isKnown;
    } rows[] = {{"one byte", "x", true},
                {"empty", "", false},
                {"plain, one end", plain, true},
                {"plain, two ends", plain + plain, true},
                {"plain, and a byte between", plain + 'x' + plain, false},
                {"varied enough at the end", plain + 'x' + plain.chopped(128) + varied, true},
                {"varied enough at the beginning", varied + plain.chopped(128) + 'x' + plain, true},
                {"one value too few", plain + 'x' + plain.chopped(127) + varied.mid(1), false}};
    for (const auto &row : rows) {
        const ZQFileContents contents = endsOf(row.content);
        EXPECT_EQ(!contents.ends.isEmpty(), row.isKnown) << row.what;
        EXPECT_EQ(contents.size, row.content.size()) << row.what;
        EXPECT_EQ(contents.isSavedAs(contents), row.isKnown) << row.what;
    }
    const QByteArray middle = varied + plain + 'x' + plain + varied;
    QByteArray otherMiddle = middle;
    otherMiddle[16384] = 'y';
    EXPECT_TRUE(endsOf(middle).isSavedAs(endsOf(otherMiddle))) << "only the ends are read";
    for (const qsizetype place : {qsizetype(0), qsizetype(16383), middle.size() - 16384, middle.size() - 1}) {
        QByteArray other = middle;
        other[place] = char(other.at(place) ^ 1);
        EXPECT_FALSE(endsOf(middle).isSavedAs(endsOf(other))) << place;
    }
    EXPECT_FALSE(endsOf(middle).isSavedAs(endsOf(middle + 'x')));
    ASSERT_TRUE(QFile::link(path(QStringLiteral("file")), path(QStringLiteral("link"))));
    ASSERT_EQ(mkfifo(system(path(QStringLiteral("pipe"))).constData(), 0600), 0);
    for (const char *const none : {"link", "pipe", "missing", "."}) {
        EXPECT_EQ(ZQFileContents::ofFile(system(path(QLatin1String(none)))).size, 0) << none;
    }
}

TEST_F(FileReference, AFileIsItselfUnderAnyNameAndNoOtherIs)
{
    const QByteArray made = system(file(QStringLiteral("a"), "a"));
    const QByteArray other = system(file(QStringLiteral("b"), "b"));
    ASSERT_TRUE(QFile::link(path(QStringLiteral("a")), path(QStringLiteral("link"))));
    const auto found = zqLookAtFile(made);
    ASSERT_TRUE(found);
    struct stat status = {};
    ASSERT_EQ(stat(made.constData(), &status), 0);
    EXPECT_EQ(found->identity.inode, status.st_ino);
    EXPECT_EQ(found->modification, status.st_mtim.tv_sec * 1000000000 + status.st_mtim.tv_nsec);
    EXPECT_EQ(found->change, status.st_ctim.tv_sec * 1000000000 + status.st_ctim.tv_nsec);
    EXPECT_FALSE(found->isFolder);
    EXPECT_TRUE(zqLookAtFile(system(path({})))->isFolder);
    EXPECT_FALSE(zqLookAtFile(system(path(QStringLiteral("link"))))->isFolder);
    ZQFileIdentity identity = found->identity;
    identity.fileSystem = zqFileSystemOf(made);
    EXPECT_TRUE(zqIsFile(made, identity));
    EXPECT_FALSE(zqIsFile(other, identity));
    EXPECT_FALSE(zqIsFile(system(path(QStringLiteral("link"))), identity));
    EXPECT_FALSE(zqIsFile(system(path(QStringLiteral("missing"))), identity));
    identity.birth += 1;
    EXPECT_FALSE(zqIsFile(made, identity));
    EXPECT_FALSE(zqWouldMount(made));
    EXPECT_EQ(zqFileSystemOf("/no/such/file"), 0U);
}

TEST_F(FileReference, NoFileFollowsAFolderNorAFolderAFile)
{
    const QByteArray made = system(file(QStringLiteral("a"), "a"));
    const QByteArray folder = system(path({}));
    ZQFileReference ofFolder;
    ofFolder.isFolder = true;
    EXPECT_TRUE(ofFolder.isSuccessor(folder)) << "known by its name";
    EXPECT_FALSE(ofFolder.isSuccessor(made));
    EXPECT_FALSE(ofFolder.isSuccessor("/no/such/folder"));
    ZQFileReference ofFile; // without birth or contents, as of the first format
    EXPECT_FALSE(ofFile.isSuccessor(folder));
    EXPECT_FALSE(ofFile.isSuccessor("/no/such/file"));
}

TEST_F(FileReference, WhereNumbersPassOnAMovedFileIsToldByItsContentsIfTheyAreKnown)
{
    const OnFAT everything;
    ZQFileReference reference;
    reference.path = system(file(QStringLiteral("a"), "contents"));
    reference.file = zqLookAtFile(reference.path)->identity;
    reference.file.fileSystem = zqFileSystemOf(reference.path);
    ASSERT_EQ(reference.file.birth, 0);
    const QByteArray moved = system(path(QStringLiteral("moved")));
    ASSERT_EQ(std::rename(reference.path.constData(), moved.constData()), 0);
    EXPECT_TRUE(reference.hasMovedTo(moved)) << "its number is all that is known of it";
    reference.contents = ZQFileContents::ofFile(moved);
    EXPECT_TRUE(reference.hasMovedTo(moved));
    write(path(QStringLiteral("moved")), "of another file");
    EXPECT_FALSE(reference.hasMovedTo(moved)) << "which has the number since the last mount";
    reference.path = moved;
    EXPECT_TRUE(reference.hasMovedTo(moved)) << "where it was, it is the file with what was saved since";
}

TEST_F(FileReference, ASearchStaysInItsReach)
{
    const QString deep = folder(QStringLiteral("one/two"));
    const QString near = file(QStringLiteral("one/near"), "n");
    const QString far = file(QStringLiteral("one/two/far"), "f");
    const auto referenceTo = [](const QString &path) {
        ZQFileReference reference;
        reference.path = system(path);
        reference.file = zqLookAtFile(reference.path)->identity;
        reference.folder = zqLookAtFile(zqFolderOf(reference.path))->identity;
        return reference;
    };
    const ZQFileReference toNear = referenceTo(near);
    const ZQFileReference toFar = referenceTo(far);
    std::atomic<qint64> looked = 0;
    const QByteArray start = system(path(QStringLiteral("one")));
    const auto inFolder = ZQFileSearch({&toNear, &toFar}, looked).run(start, ZQFileSearch::Reach::Folder);
    EXPECT_EQ(inFolder.value(&toNear), toNear.path);
    EXPECT_FALSE(inFolder.contains(&toFar));
    EXPECT_EQ(looked, 2);
    const auto below = ZQFileSearch({&toNear, &toFar}, looked).run(start, ZQFileSearch::Reach::Below);
    EXPECT_EQ(below.value(&toFar), toFar.path);
    EXPECT_EQ(below.size(), 2);
    for (const QString &none : {near, path(QStringLiteral("missing"))}) {
        EXPECT_TRUE(ZQFileSearch({&toNear}, looked).run(system(none), ZQFileSearch::Reach::Below).isEmpty());
    }
}

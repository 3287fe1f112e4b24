#include "Kit/Files/ZQPersistentURL.h"
#include "Tests/Kit/Files/Scratch.h"

#include <random>

using PersistentURL = Scratch;

namespace {
bool rename(const QString &from, const QString &to)
{
    return ::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}
} // namespace

TEST_F(PersistentURL, FindsAFileAfterEachKindOfMove)
{
    const QString start = folder(QStringLiteral("one/two/three"));
    const QString other = folder(QStringLiteral("one/other/deep"));
    const QString first = start + QStringLiteral("/a.png");
    write(first, "a");
    for (int i = 0; i < 50; ++i) {
        write(start + QStringLiteral("/sibling %1").arg(i), "s");
    }
    const QByteArray reference = zqDataForPersistentURL(first);
    ASSERT_FALSE(reference.isEmpty());
    EXPECT_EQ(zqURLFromPersistentData(reference), first);
    const QString renamed = start + QStringLiteral("/b.png");
    ASSERT_TRUE(rename(first, renamed));
    EXPECT_EQ(zqURLFromPersistentData(reference), renamed);
    const QString moved = other + QStringLiteral("/c.png");
    ASSERT_TRUE(rename(renamed, moved));
    EXPECT_EQ(zqFindPersistentURL(reference), moved);
    ASSERT_TRUE(rename(moved, first));
    ASSERT_TRUE(rename(path(QStringLiteral("one/two")), path(QStringLiteral("one/2"))));
    EXPECT_EQ(zqFindPersistentURL(reference), path(QStringLiteral("one/2/three/a.png")));
}

TEST_F(PersistentURL, PrefersTheMovedFileToAnotherAtItsOldPlace)
{
    const QString first = file(QStringLiteral("a"), "mine");
    const QByteArray reference = zqDataForPersistentURL(first);
    const QString moved = path(QStringLiteral("b"));
    ASSERT_TRUE(rename(first, moved));
    write(first, "another");
    EXPECT_EQ(zqURLFromPersistentData(reference), moved);
    ASSERT_TRUE(QFile::remove(moved));
    EXPECT_EQ(zqFindPersistentURL(reference), QString());
    ASSERT_TRUE(QFile::remove(first));
    folder(QStringLiteral("a"));
    EXPECT_EQ(zqFindPersistentURL(reference), QString()); // a folder is no successor of a file
    const QByteArray ofFolder = zqDataForPersistentURL(first);
    ASSERT_TRUE(QDir().rmdir(first));
    ASSERT_TRUE(QDir().mkdir(path(QStringLiteral("another"))) &&
                QDir().mkdir(first)); // from a copy, with another inode
    EXPECT_EQ(zqFindPersistentURL(ofFolder), first);
}

TEST_F(PersistentURL, OfADeletedFileIsNothing)
{
    const QString made = file(QStringLiteral("a"), "a");
    const QByteArray reference = zqDataForPersistentURL(made);
    ASSERT_TRUE(QFile::remove(made));
    for (int i = 0; i < 20; ++i) { // one of these may get its inode number
        file(QStringLiteral("later %1").arg(i), "x");
    }
    EXPECT_EQ(zqFindPersistentURL(reference), QString());
    EXPECT_TRUE(zqDataForPersistentURL(made).isEmpty());
    EXPECT_TRUE(zqDataForPersistentURL({}).isEmpty());
}

TEST_F(PersistentURL, LooksInTheWatchedRoots)
{
    const QString made = folder(QStringLiteral("a/b/c/d/e/f")) + QStringLiteral("/file");
    write(made, "a");
    const QString far = folder(QStringLiteral("root/deep")) + QStringLiteral("/elsewhere");
    const QByteArray reference = zqDataForPersistentURL(made);
    ASSERT_TRUE(rename(made, far));
    EXPECT_EQ(zqFindPersistentURL(reference), QString());
    zqSetPersistentURLRoots({path(QStringLiteral("root"))});
    EXPECT_EQ(zqFindPersistentURL(reference), far);
    zqSetPersistentURLRoots({});
}

TEST_F(PersistentURL, KeepsAFolderAndAnOddName)
{
    for (const QString &name : {QStringLiteral("folder"), QStringLiteral("line\nbreak ü💡")}) {
        const QString made = folder(name);
        const QByteArray reference = zqDataForPersistentURL(made + u'/');
        EXPECT_EQ(zqURLFromPersistentData(reference), made);
    }
}

TEST_F(PersistentURL, SurvivesAnyBytes)
{
    const QString made = file(QStringLiteral("a"), "a");
    const QByteArray reference = zqDataForPersistentURL(made);
    for (qsizetype size = 0; size < reference.size(); ++size) {
        EXPECT_EQ(zqURLFromPersistentData(reference.left(size)), QString());
    }
    EXPECT_EQ(zqURLFromPersistentData(reference + 'x'), QString());
    EXPECT_EQ(zqURLFromPersistentData(QByteArray(1 << 20, '/')), QString());
    std::mt19937 random(1);
    for (int i = 0; i < 500; ++i) {
        QByteArray damaged = reference;
        damaged[static_cast<qsizetype>(random() % static_cast<quint32>(reference.size()))] =
            static_cast<char>(random());
        const QString found = zqURLFromPersistentData(damaged);
        EXPECT_TRUE(found.isEmpty() || QFile::exists(found));
    }
    zqWaitForPersistentURLSearches();
}

#include "Tests/Classes/Tags/TagsFixture.h"

#include <QDirIterator>

class OpenMetaBackupTest : public TagsFixture
{
protected:
    // A new file in place of an old one, as editors save.
    void replace(const QString &file)
    {
        const QString other = newFile(QStringLiteral("new.tmp"), "edited");
        ASSERT_EQ(rename(QFile::encodeName(other).constData(), QFile::encodeName(file).constData()), 0);
    }
    void tag(const QString &file, const QStringList &tags)
    {
        ASSERT_TRUE(OpenMeta::setUserTags(tags, file).isNull());
        OpenMetaBackup::waitUntilAllWritten();
    }
};

TEST_F(OpenMetaBackupTest, AFileSavedByReplacingItGetsItsTagsBack)
{
    if (!hasRoomForMirrors()) {
        GTEST_SKIP() << "This file system has little room for attributes";
    }
    ASSERT_TRUE(OpenMeta::setRating(4, path).isNull());
    ASSERT_TRUE(OpenMeta::setFinderComment(QStringLiteral("noted"), path).isNull());
    tag(path, list("a b"));
    replace(path);
    EXPECT_EQ(OpenMeta::getUserTagsNoRestore(path), std::nullopt);
    EXPECT_EQ(tagsOf(path), list("a b"));
    EXPECT_EQ(OpenMeta::getRating(path), 4);
    EXPECT_EQ(OpenMeta::getFinderComment(path), QStringLiteral("noted"));
    EXPECT_EQ(raw(path, DesktopMirror::tagsName), QByteArray("a,b"));
    OpenMetaBackup::waitUntilAllWritten();
    replace(path);
    EXPECT_EQ(OpenMeta::getRating(path), 4); // and again, whatever is asked for first
}

TEST_F(OpenMetaBackupTest, AnEditorThatPutsTheOldFileAsideCountsAsSavingToo)
{
    tag(path, list("a"));
    ASSERT_TRUE(QFile::rename(path, path + u'~'));
    newFile(QStringLiteral("file.png"), "edited");
    EXPECT_EQ(tagsOf(path), list("a"));
}

TEST_F(OpenMetaBackupTest, RemovedTagsStayRemoved)
{
    tag(path, list("a"));
    tag(path, {});
    replace(path);
    EXPECT_TRUE(tagsOf(path).isEmpty());

    const QString stripped = newFile(QStringLiteral("stripped"));
    tag(stripped, list("a"));
    for (const QString &name : ZQExtendedAttributes::list(stripped)) {
        ASSERT_TRUE(ZQExtendedAttributes::remove(stripped, name));
    }
    EXPECT_TRUE(tagsOf(stripped).isEmpty()); // the very file, so somebody did this
}

TEST_F(OpenMetaBackupTest, AnotherFileAtTheSamePlaceGetsNothing)
{
    tag(path, list("a"));
    ASSERT_TRUE(QFile::rename(path, folder.filePath(QStringLiteral("renamed.png"))));
    newFile(QStringLiteral("file.png"), "newcomer");
    EXPECT_TRUE(tagsOf(path).isEmpty());

    const QString first = newFile(QStringLiteral("first"));
    tag(first, list("b"));
    QDir(folder.path()).mkdir(QStringLiteral("sub"));
    const QString moved = folder.filePath(QStringLiteral("sub/first"));
    ASSERT_TRUE(QFile::rename(first, moved));
    EXPECT_EQ(tagsOf(moved), list("b")); // seen there
    OpenMetaBackup::waitUntilAllWritten();
    newFile(QStringLiteral("first"), "newcomer");
    EXPECT_TRUE(tagsOf(first).isEmpty());
    replace(moved); // and its backup went along
    EXPECT_EQ(tagsOf(moved), list("b"));

    const QString other = newFile(QStringLiteral("other"));
    tag(other, list("c"));
    ASSERT_TRUE(QFile::remove(other));
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("other")));
    EXPECT_TRUE(tagsOf(other).isEmpty()); // a folder now
}

TEST_F(OpenMetaBackupTest, AFileThatAnotherProgramTaggedSinceKeepsThose)
{
    tag(path, list("a"));
    replace(path);
    ASSERT_TRUE(ZQExtendedAttributes::set(path, DesktopMirror::tagsName, "theirs"));
    EXPECT_EQ(tagsOf(path), list("theirs"));
}

TEST_F(OpenMetaBackupTest, BackupsAreFewSmallPropertyListsOfTheOwnerAlone)
{
    for (int i = 0; i < 500; ++i) {
        OpenMeta::setUserTags(list("a"), newFile(QString::number(i)));
    }
    OpenMetaBackup::waitUntilAllWritten();
    int lists = 0;
    int files = 0;
    QDirIterator entries(OpenMetaBackup::folder(), {QStringLiteral("*.plist")});
    while (entries.hasNext()) {
        QFile file(entries.next());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const auto value = ZQPropertyList::fromData(file.readAll());
        ASSERT_TRUE(value);
        const QVariantMap kept = value->toMap().value(QStringLiteral("files")).toMap();
        for (auto it = kept.begin(); it != kept.end(); ++it) {
            files += it.key().startsWith(folder.path()) ? 1 : 0;
        }
        EXPECT_EQ(file.permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
        ++lists;
    }
    EXPECT_LE(lists, 64);
    EXPECT_EQ(files, 500);
}

TEST_F(OpenMetaBackupTest, DamagedBackupsAreNoObstacle)
{
    tag(path, list("a"));
    QDirIterator entries(OpenMetaBackup::folder(), {QStringLiteral("*.plist")});
    while (entries.hasNext()) {
        QFile file(entries.next());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("bplist00 nonsense");
    }
    replace(path);
    EXPECT_TRUE(tagsOf(path).isEmpty());
    tag(path, list("b"));
    replace(path);
    EXPECT_EQ(tagsOf(path), list("b"));
    QDir(OpenMetaBackup::folder()).removeRecursively();
}

#include "Classes/Tags/TagBackupQueue.h"
#include "Tests/Classes/Tags/TagsFixture.h"
#include "Tests/Support/Skip.h"

#include <QDateTime>
#include <QDirIterator>
#include <QLockFile>

class OpenMetaBackupTest : public TagsFixture
{
protected:
    void SetUp() override
    {
        TagsFixture::SetUp();
        newFile(QStringLiteral("file.png"), contents);
    }
    // A new file in place of an old one, as editors save.
    void replace(const QString &file, const QByteArray &with = contents)
    {
        const QString other = newFile(QStringLiteral("new.tmp"), with);
        ASSERT_EQ(rename(QFile::encodeName(other).constData(), QFile::encodeName(file).constData()), 0);
    }
    void tag(const QString &file, const QStringList &tags)
    {
        ASSERT_TRUE(OpenMeta::setUserTags(tags, file).isNull());
        OpenMetaBackup::waitUntilAllWritten();
    }
    static QString notesOf(const QString &process)
    {
        return OpenMetaBackup::folder() + QStringLiteral("/noted-") + process;
    }

    static inline const QByteArray contents = "a picture";
};

TEST_F(OpenMetaBackupTest, AFileSavedByReplacingItGetsItsTagsBack)
{
    if (!hasRoomForMirrors()) {
        return skipWithout("room for several kilobytes of attributes in a file");
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

TEST_F(OpenMetaBackupTest, TheOldFilePutAsideKnowsBetterThanAnOlderCopy)
{
    tag(path, list("a"));
    const QString aside = path + QStringLiteral(".bak");
    ASSERT_TRUE(QFile::rename(path, aside));
    const auto newer = ZQPropertyList::toBinary(list("a b"));
    ASSERT_TRUE(ZQExtendedAttributes::set(aside, OpenMeta::spotlightKey(OpenMeta::userTagsKey), *newer));
    newFile(QStringLiteral("file.png"), "edited");
    EXPECT_EQ(tagsOf(path), list("a b"));
}

TEST_F(OpenMetaBackupTest, ANewcomerUnderTheNameOfADeletedFileGetsNothing)
{
    tag(path, list("a"));
    replace(path, "another picture");
    EXPECT_TRUE(tagsOf(path).isEmpty());

    const QString longFile = newFile(QStringLiteral("long"), QByteArray(50000, 'x') + "end");
    tag(longFile, list("b"));
    replace(longFile, QByteArray(50000, 'x') + "END");
    EXPECT_TRUE(tagsOf(longFile).isEmpty());

    const QString empty = newFile(QStringLiteral("empty"));
    tag(empty, list("c"));
    replace(empty, {});
    EXPECT_TRUE(tagsOf(empty).isEmpty()); // like any other
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

    const QString first = newFile(QStringLiteral("first"), contents);
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

TEST_F(OpenMetaBackupTest, ARatingAloneIsKeptToo)
{
    if (!hasRoomForMirrors()) {
        return skipWithout("room for several kilobytes of attributes in a file");
    }
    tag(path, list("a"));
    ASSERT_TRUE(OpenMeta::setRating(0.5, path).isNull());
    OpenMetaBackup::waitUntilAllWritten();
    replace(path);
    EXPECT_EQ(OpenMeta::getRating(path), 0.5);
    const QString other = newFile(QStringLiteral("unrated"), contents);
    tag(other, list("a"));
    replace(other);
    EXPECT_EQ(tagsOf(other), list("a"));
    EXPECT_FALSE(raw(other, OpenMeta::openmetaTimeKey(OpenMeta::starRatingKey))) << "what there was not, comes not";
    EXPECT_FALSE(raw(other, OpenMeta::spotlightKey(OpenMeta::finderCommentKey)));
}

TEST_F(OpenMetaBackupTest, WhileAnotherProcessHoldsTheListsNothingIsLost)
{
    tag(path, list("a"));
    QLockFile other(OpenMetaBackup::folder() + QStringLiteral("/lock"));
    ASSERT_TRUE(other.tryLock());
    ASSERT_TRUE(OpenMeta::setUserTags(list("b"), path).isNull());
    OpenMetaBackup::waitUntilAllWritten(); // gives up waiting
    EXPECT_EQ(TagBackupStore(OpenMetaBackup::folder()).find(path)->tags, list("a"));
    other.unlock();
    OpenMetaBackup::waitUntilAllWritten();
    EXPECT_EQ(TagBackupStore(OpenMetaBackup::folder()).find(path)->tags, list("b"));
}

TEST_F(OpenMetaBackupTest, AQueueEndsThoughTheListsStayHeldAndLeavesItsNotes)
{
    tag(path, list("a"));
    QLockFile other(OpenMetaBackup::folder() + QStringLiteral("/lock"));
    ASSERT_TRUE(other.tryLock());
    {
        TagBackupQueue queue;
        queue.add(path);
        queue.flush(); // gives up
    }
    bool isNoted = false;
    const QDir lists(OpenMetaBackup::folder());
    for (const QString &name : lists.entryList({QStringLiteral("noted-*")}, QDir::Files)) {
        QFile notes(lists.filePath(name));
        isNoted = isNoted || (notes.open(QIODevice::ReadOnly) && notes.readAll().contains(QFile::encodeName(path)));
    }
    EXPECT_TRUE(isNoted);
}

TEST_F(OpenMetaBackupTest, WhoWaitsForTooLongGoesOnAndNothingIsLost)
{
    QLockFile other(OpenMetaBackup::folder() + QStringLiteral("/lock"));
    tag(path, list("a"));
    ASSERT_TRUE(other.tryLock()); // so that no copy is made
    ASSERT_TRUE(OpenMeta::setUserTags(list("b"), path).isNull());
    OpenMetaBackup::waitUntilAllWritten(std::chrono::milliseconds(0));
    EXPECT_EQ(TagBackupStore(OpenMetaBackup::folder()).find(path)->tags, list("a"));
    other.unlock();
    OpenMetaBackup::waitUntilAllWritten();
    EXPECT_EQ(TagBackupStore(OpenMetaBackup::folder()).find(path)->tags, list("b"));
}

// What is left in the notes of a process that is gone was never copied: the copy is older than the tags were.
TEST_F(OpenMetaBackupTest, WhatAKilledProcessNotedIsCopiedByTheNextOne)
{
    TagBackupStore store(OpenMetaBackup::folder() + QStringLiteral("-of-next"));
    const auto leave = [](const QString &folderPath, const QByteArray &paths) {
        QDir().mkpath(folderPath);
        QFile notes(folderPath + QStringLiteral("/noted-dead"));
        ASSERT_TRUE(notes.open(QIODevice::WriteOnly));
        notes.write(paths);
    };
    leave(OpenMetaBackup::folder() + QStringLiteral("-of-next"), path.toUtf8() + '\0' + "/cut off");
    EXPECT_EQ(store.takeOverNotes(), (QStringList{path, QStringLiteral("/cut off")}));
    EXPECT_TRUE(store.takeOverNotes().isEmpty()); // they are this process's now
    store.setNotes({});

    tag(path, list("a"));
    const QByteArray home = qgetenv("XDG_DATA_HOME");
    const QString otherHome = folder.filePath(QStringLiteral("home"));
    QDir().mkpath(otherHome);
    qputenv("XDG_DATA_HOME", QFile::encodeName(otherHome));
    leave(OpenMetaBackup::folder(), path.toUtf8() + '\0');
    EXPECT_EQ(tagsOf(path), list("a"));
    OpenMetaBackup::waitUntilAllWritten();
    EXPECT_TRUE(TagBackupStore(OpenMetaBackup::folder()).find(path));
    EXPECT_FALSE(QFile::exists(notesOf(QStringLiteral("dead"))));
    qputenv("XDG_DATA_HOME", home);
}

TEST_F(OpenMetaBackupTest, ListsGrowWithTheFilesThereAre)
{
    constexpr int files = 1500;
    TagBackupStore store(OpenMetaBackup::folder(), 4);
    const auto backups = [this](int count, qint64 saved, const char *name) {
        QHash<QString, std::optional<TagBackup>> all;
        for (int i = 0; i < count; ++i) {
            TagBackup backup;
            backup.tags = list("a");
            backup.saved = saved;
            backup.identity = QByteArray(name) + QByteArray::number(i);
            all.insert(folder.filePath(QLatin1String(name) + QString::number(i)), backup);
        }
        return all;
    };
    for (int i = 0; i < files; ++i) {
        newFile(QStringLiteral("there%1").arg(i));
    }
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    ASSERT_TRUE(store.store(backups(files, now - 1000000, "there")));
    ASSERT_TRUE(store.store(backups(files, now, "gone")));
    TagBackupStore again(OpenMetaBackup::folder());
    int there = 0;
    int gone = 0;
    for (int i = 0; i < files; ++i) {
        there += again.contains(folder.filePath(QStringLiteral("there%1").arg(i))) ? 1 : 0;
        gone += again.contains(folder.filePath(QStringLiteral("gone%1").arg(i))) ? 1 : 0;
    }
    EXPECT_EQ(there, files);
    EXPECT_LT(gone, files);
}

TEST_F(OpenMetaBackupTest, WritingTagsAsksForABackupAndTheBareStoreDoesNot)
{
    const QString name = AttributeStore::spotlightKey(AttributeStore::userTagsKey);
    ASSERT_TRUE(AttributeStore::write(QStringList{QStringLiteral("a")}, name, path).isNull());
    OpenMetaBackup::waitUntilAllWritten();
    EXPECT_FALSE(OpenMetaBackup::lastKnown(path));
    ASSERT_TRUE(TagAttributes::setXAttr(QStringList{QStringLiteral("b")}, name, path).isNull());
    OpenMetaBackup::waitUntilAllWritten();
    const auto known = OpenMetaBackup::lastKnown(path);
    ASSERT_TRUE(known);
    EXPECT_EQ(known->tags, QStringList{QStringLiteral("b")});
}

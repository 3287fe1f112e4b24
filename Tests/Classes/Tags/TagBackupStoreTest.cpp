// The lists of backups by themselves: how long they get, and what they do when they cannot be written.

#include "Classes/Tags/TagBackupStore.h"
#include "Tests/Classes/Tags/AttributeFaults.h"
#include "Tests/Classes/Tags/TagsFixture.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QThread>

#include <atomic>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace {

constexpr qint64 day = qint64(24) * 3600 * 1000;

class TagBackupStoreTest : public TagsFixture
{
protected:
    void SetUp() override
    {
        TagsFixture::SetUp();
        ASSERT_TRUE(QDir().mkpath(home));
    }
    // Names that begin so and are kept in one list.
    QStringList ofOneList(const QString &beginning, int count) const
    {
        QStringList found;
        for (int i = 0; found.size() < count; ++i) {
            const QString name = beginning + QString::number(i);
            if (uchar(QCryptographicHash::hash(name.toUtf8(), QCryptographicHash::Md5).at(0)) % 64 == 0) {
                found.append(name);
            }
        }
        return found;
    }
    static std::optional<TagBackup> backup(qint64 saved, const QByteArray &identity)
    {
        TagBackup made;
        made.tags = list("a");
        made.saved = saved;
        made.identity = identity;
        return made;
    }
    static QStringList kept(TagBackupStore &store, const QStringList &paths)
    {
        QStringList found;
        std::copy_if(paths.begin(), paths.end(), std::back_inserter(found),
                     [&store](const QString &each) { return store.contains(each); });
        return found;
    }

    const QString home = folder.filePath(QStringLiteral("home/Zelto/Backups"));
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
};

} // namespace

TEST_F(TagBackupStoreTest, AListKeepsTheYoungestOfTheFilesThatAreGone)
{
    const QStringList gone = ofOneList(folder.filePath(QStringLiteral("gone")), 5);
    TagBackupStore store(home, 3);
    // The oldest in the middle, so that their order is not that of the names.
    const qint64 ages[] = {20, 10, 30, 5, 1};
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(store.store({{gone[i], backup(now - ages[i] * day, QByteArray::number(i))}}));
    }
    EXPECT_EQ(kept(store, gone), gone.mid(0, 3)) << "as many as there may be";
    for (int i = 3; i < 5; ++i) {
        ASSERT_TRUE(store.store({{gone[i], backup(now - ages[i] * day, QByteArray::number(i))}}));
    }
    EXPECT_EQ(kept(store, gone), (QStringList{gone[1], gone[3], gone[4]}));
    TagBackupStore again(home, 3);
    EXPECT_EQ(kept(again, gone), (QStringList{gone[1], gone[3], gone[4]}));
}

TEST_F(TagBackupStoreTest, PathsOfIdentitiesGoOnlyWhenThereAreTooManyAndNothingIsThere)
{
    const QStringList identities = ofOneList(QStringLiteral("id"), 7);
    TagBackupStore store(home, 3);
    QStringList paths;
    for (int i = 0; i < 7; ++i) {
        paths.append(i == 0 ? path : folder.filePath(QStringLiteral("gone %1").arg(i)));
    }
    const auto known = [&] {
        int count = 0;
        for (const QString &identity : identities) {
            count += store.pathOfIdentity(identity.toUtf8()).isEmpty() ? 0 : 1;
        }
        return count;
    };
    for (int i = 0; i < 7; ++i) {
        ASSERT_TRUE(store.store({{paths[i], backup(now, identities[i].toUtf8())}}));
        EXPECT_EQ(known(), i < 6 ? i + 1 : 1);
    }
    EXPECT_EQ(store.pathOfIdentity(identities[0].toUtf8()), path);
}

TEST_F(TagBackupStoreTest, WhatCannotBeWrittenIsToldAndKept)
{
    const QString gone = ofOneList(folder.filePath(QStringLiteral("gone")), 1).first();
    const QString inTheWay = home + QStringLiteral("/00.plist");
    TagBackupStore store(home);
    ASSERT_TRUE(QDir().mkpath(inTheWay));
    EXPECT_FALSE(store.store({{gone, backup(now, "1")}}));
    ASSERT_TRUE(QDir().rmdir(inTheWay));
    EXPECT_FALSE(TagBackupStore(home).contains(gone));
    EXPECT_TRUE(store.store({{gone, backup(now, "1")}}));
    EXPECT_TRUE(TagBackupStore(home).contains(gone));
    EXPECT_TRUE(store.store({{gone, std::nullopt}}));
    EXPECT_FALSE(TagBackupStore(home).contains(gone));
    EXPECT_TRUE(store.store({}));
    QDir(folder.filePath(QStringLiteral("home"))).removeRecursively();
    EXPECT_TRUE(store.store({{gone, backup(now, "1")}}));
    EXPECT_FALSE(QFile::exists(folder.filePath(QStringLiteral("home")))) << "a guest's folder is not made again";
}

TEST_F(TagBackupStoreTest, APipeInThePlaceOfAListOrTheLockHoldsUpNobody)
{
    const QString tagged = folder.filePath(QStringLiteral("tagged"));
    for (int number = 0; number < 64; ++number) {
        const QString list = home + QStringLiteral("/%1.plist").arg(number, 2, 10, QLatin1Char('0'));
        ASSERT_EQ(::mkfifo(QFile::encodeName(list).constData(), 0600), 0);
    }
    EXPECT_FALSE(TagBackupStore(home).contains(tagged));
    EXPECT_TRUE(TagBackupStore(home).store({{tagged, backup(now, "1")}}));
    EXPECT_TRUE(TagBackupStore(home).contains(tagged));

    const QString lock = home + QStringLiteral("/lock");
    QFile::remove(lock);
    ASSERT_EQ(::mkfifo(QFile::encodeName(lock).constData(), 0600), 0);
    EXPECT_FALSE(TagBackupStore(home).store({{tagged, std::nullopt}}));
    ASSERT_TRUE(QFile::remove(lock));
    EXPECT_TRUE(TagBackupStore(home).store({{tagged, std::nullopt}}));
}

TEST_F(TagBackupStoreTest, EveryValueComesBack)
{
    TagBackup whole = *backup(now, "identity");
    whole.comment = QStringLiteral("noted");
    whole.rating = 0.5;
    whole.inode = (quint64(1) << 60) + 1;
    whole.isFolder = true;
    whole.contents = {qint64(1) << 40, "digest"};
    whole.seen = "record";
    TagBackup bare = *backup(now, "other");
    ASSERT_TRUE(TagBackupStore(home).store({{QStringLiteral("/whole"), whole}, {QStringLiteral("/bare"), bare}}));
    TagBackupStore again(home);
    const TagBackup found = again.find(QStringLiteral("/whole")).value_or(TagBackup());
    EXPECT_EQ(found.tags, whole.tags);
    EXPECT_EQ(found.comment, whole.comment);
    EXPECT_EQ(found.rating, whole.rating);
    EXPECT_EQ(found.identity, whole.identity);
    EXPECT_EQ(found.inode, whole.inode);
    EXPECT_EQ(found.saved, now);
    EXPECT_EQ(found.contents.size, whole.contents.size);
    EXPECT_EQ(found.contents.digest, whole.contents.digest);
    EXPECT_EQ(found.seen, whole.seen);
    EXPECT_TRUE(found.isFolder);
    const TagBackup other = again.find(QStringLiteral("/bare")).value_or(whole);
    EXPECT_TRUE(other.comment.isEmpty() && other.contents.digest.isEmpty() && !other.isFolder);
    EXPECT_EQ(other.rating, 0);
    EXPECT_EQ(other.seen, QByteArray());
}

TEST_F(TagBackupStoreTest, NotesStayWithAProcessUntilTheyAreDone)
{
    const auto notes = [this] { return QDir(home).entryList({QStringLiteral("noted-*")}, QDir::Files); };
    {
        TagBackupStore store(home);
        store.setNotes({}); // there are none
        EXPECT_TRUE(notes().isEmpty());
        store.note(QStringLiteral("/a"));
        store.note(QStringLiteral("/b"));
        ASSERT_EQ(notes().size(), 1);
        EXPECT_TRUE(TagBackupStore(home).takeOverNotes().isEmpty()) << "whose process is there";
        store.setNotes({QStringLiteral("/b")});
    }
    EXPECT_EQ(notes().size(), 1) << "they are still to do";
    {
        TagBackupStore next(home);
        EXPECT_EQ(next.takeOverNotes(), list("/b"));
        EXPECT_EQ(notes().size(), 1);
        next.setNotes({});
        EXPECT_EQ(notes().size(), 1);
    }
    EXPECT_TRUE(notes().isEmpty());
}

TEST_F(TagBackupStoreTest, ABackupIsMadeThoughNobodyWaitsForIt)
{
    for (const char *name : {"first", "second"}) {
        path = newFile(QLatin1String(name));
        ASSERT_TRUE(OpenMeta::setUserTags(list("a"), path).isNull());
        TagBackupStore store(OpenMetaBackup::folder());
        for (int i = 0; i < 3000 && !store.contains(path); ++i) { // given up after half a minute
            QThread::msleep(10);
        }
        EXPECT_TRUE(store.contains(path)) << name;
    }
}

TEST_F(TagBackupStoreTest, WithoutBirthTimesTheDeviceTellsFilesApart)
{
    AttributeFaults faults;
    faults.hideBirthTimes();
    const TagFileIdentity here = TagFileIdentity::ofFile(path);
    EXPECT_TRUE(here.text.startsWith(QByteArray::number(here.inode) + "-d")) << here.text.constData();
    EXPECT_NE(here.text, TagFileIdentity::ofFile(newFile(QStringLiteral("other"))).text);
    EXPECT_EQ(here.text, TagFileIdentity::ofFile(path).text);
    EXPECT_TRUE(TagFileIdentity::ofFile(folder.path()).isFolder);
    EXPECT_TRUE(TagFileIdentity::ofFile(folder.filePath(QStringLiteral("gone"))).text.isEmpty());
    faults.clear();
    EXPECT_NE(here.text, TagFileIdentity::ofFile(path).text);
    EXPECT_TRUE(TagFileContents::ofFile(folder.path()).digest.isEmpty());
}

TEST_F(TagBackupStoreTest, ThoseWhoReadWhileItIsWrittenFindWhatIsNew)
{
    TagBackupStore store(home);
    constexpr int writers = 3;
    constexpr int rounds = 40;
    std::atomic<int> missed = 0;
    std::vector<std::thread> threads;
    for (int writer = 0; writer < writers; ++writer) {
        threads.emplace_back([&, writer] {
            for (int round = 0; round < rounds; ++round) {
                const QString file = QStringLiteral("/w%1/%2").arg(writer).arg(round);
                const QByteArray identity = file.toUtf8();
                missed += store.store({{file, backup(now, identity)}}) ? 0 : 1;
                for (int earlier = 0; earlier <= round; ++earlier) {
                    const QString known = QStringLiteral("/w%1/%2").arg(writer).arg(earlier);
                    missed += store.contains(known) && store.pathOfIdentity(known.toUtf8()) == known ? 0 : 1;
                }
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(missed, 0);
    TagBackupStore next(home); // what is on the disk
    for (int writer = 0; writer < writers; ++writer) {
        for (int round = 0; round < rounds; ++round) {
            EXPECT_TRUE(next.contains(QStringLiteral("/w%1/%2").arg(writer).arg(round)));
        }
    }
}

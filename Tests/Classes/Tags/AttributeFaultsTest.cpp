#include "Tests/Classes/Tags/AttributeFaults.h"
#include "Classes/Tags/FileTags.h"
#include "Classes/Tags/TagBackupStore.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Tests/Classes/Tags/TagsFixture.h"

#include <QDateTime>
#include <QMap>

#include <cerrno>
#include <functional>

namespace {

// What cannot be read is not nothing: whoever writes afterwards must not overwrite what is there.
class AttributeFaultsTest : public TagsFixture
{
protected:
    using M = OpenMeta;
    using Attributes = QMap<QString, QByteArray>;

    static inline const QString tagsName = M::spotlightKey(M::userTagsKey);
    static inline const QString ratingName = M::spotlightKey(M::starRatingKey);
    static inline const QString commentName = M::spotlightKey(M::finderCommentKey);

    Attributes attributes() const
    {
        Attributes all;
        for (const QString &name : ZQExtendedAttributes::list(path)) {
            all.insert(name, raw(path, name).value_or("unreadable"));
        }
        return all;
    }
    void write(const FileTags &library)
    {
        TagFileWriter::Merge merge;
        merge.path = path;
        merge.library = library;
        merge.adopt = [this](const FileTagsChange &) { ++adoptions; };
        TagFileWriter::sharedTagFileWriter().mergeWithFile(merge);
        TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    }
    // Writes, while `name` cannot be read.
    void withUnreadable(const QString &name, const std::function<void()> &write)
    {
        OpenMetaBackup::waitUntilAllWritten();
        faults.failReading(name, EIO);
        write();
        OpenMetaBackup::waitUntilAllWritten();
        faults.clear();
    }

    AttributeFaults faults;
    int adoptions = 0;
};

} // namespace

TEST_F(AttributeFaultsTest, NoWriterOfTagsReplacesTagsThatItCouldNotRead)
{
    const QVariant added = list("b");
    const QMap<const char *, std::function<ZQError()>> writers{
        {"add", [&] { return M::addUserTags(added, path); }},
        {"clear", [&] { return M::clearUserTags(list("a"), path); }},
        {"common", [&] { return M::setCommonUserTags({path}, list("a"), list("b")); }},
        {"array", [&] { return M::addToNSArrayMetaData(added, M::userTagsKey, path); }},
    };
    ASSERT_TRUE(M::setUserTags(list("a x"), path).isNull());
    const Attributes before = attributes();
    for (auto it = writers.cbegin(); it != writers.cend(); ++it) {
        ZQError error;
        withUnreadable(tagsName, [&] { error = it.value()(); });
        EXPECT_EQ(error.code, EIO) << it.key();
        EXPECT_EQ(error.domain, ZQError::posixDomain) << it.key();
        EXPECT_EQ(attributes(), before) << it.key();
    }
    withUnreadable(tagsName, [this] {
        TagFileWriter::sharedTagFileWriter().writeTagsToFile(path, list("b"), std::nullopt);
        TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    });
    EXPECT_EQ(attributes(), before) << "copy";
}

TEST_F(AttributeFaultsTest, ARatingThatCouldNotBeReadStays)
{
    ASSERT_TRUE(M::setRating(4.5, path).isNull());
    withUnreadable(ratingName, [this] {
        TagFileWriter::sharedTagFileWriter().writeTagsToFile(path, {}, std::nullopt, 0);
        TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    });
    EXPECT_EQ(M::getRating(path), 4.5);
    withUnreadable(ratingName, [this] {
        TagFileWriter::Merge merge;
        merge.path = path;
        merge.takesRating = true;
        merge.isLibrarysOwn = true;
        TagFileWriter::sharedTagFileWriter().mergeWithFile(merge);
        TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    });
    EXPECT_EQ(M::getRating(path), 4.5);
    EXPECT_FALSE(raw(path, SeenFileTags::attributeName)); // or it would say that the library held none
}

TEST_F(AttributeFaultsTest, MergingNeedsEveryValueAndTheRecord)
{
    write({list("a b"), QStringLiteral("noted"), 3});
    ASSERT_TRUE(M::setUserTags(list("a x"), path).isNull());
    const Attributes before = attributes();
    for (const QString &name : {tagsName, ratingName, commentName, SeenFileTags::attributeName}) {
        ZQError error;
        std::optional<FileTagsMerge> read;
        withUnreadable(name, [&] {
            write({list("a b y"), QStringLiteral("typed"), 1});
            read = FileTagsMerge::ofFile(path, {list("a b"), {}, 3}, FileTagsMerge::Unknown::TakesFile, false, &error);
        });
        EXPECT_EQ(attributes(), before) << qPrintable(name);
        EXPECT_FALSE(read) << qPrintable(name);
        EXPECT_EQ(error.code, EIO) << qPrintable(name);
    }
    EXPECT_EQ(adoptions, 0);
}

TEST_F(AttributeFaultsTest, AMirrorOrItsRecordThatCannotBeReadIsNoRemoval)
{
    ASSERT_TRUE(M::setUserTags(list("a"), path).isNull());
    ASSERT_TRUE(M::setRating(3, path).isNull());
    ASSERT_TRUE(M::setFinderComment(QStringLiteral("noted"), path).isNull());
    const Attributes before = attributes();
    for (const QString &name :
         {DesktopMirror::tagsName, DesktopMirror::ratingName, DesktopMirror::commentName, DesktopMirror::recordName}) {
        withUnreadable(name, [&] {
            EXPECT_EQ(tagsOf(path), list("a")) << qPrintable(name);
            EXPECT_EQ(M::getRating(path), 3) << qPrintable(name);
            EXPECT_EQ(M::getFinderComment(path), QStringLiteral("noted")) << qPrintable(name);
        });
        EXPECT_EQ(attributes(), before) << qPrintable(name);
    }
    withUnreadable(DesktopMirror::recordName, [this] { ASSERT_TRUE(M::setRating(4, path).isNull()); });
    EXPECT_EQ(raw(path, DesktopMirror::recordName), before.value(DesktopMirror::recordName)); // of tags and comment too
}

TEST_F(AttributeFaultsTest, AnotherProgramsMirrorDoesNotReplaceAValueThatCannotBeRead)
{
    ASSERT_TRUE(M::setRating(3, path).isNull());
    ASSERT_TRUE(M::setFinderComment(QStringLiteral("noted"), path).isNull());
    ASSERT_TRUE(M::setUserTags(list("a"), path).isNull());
    ASSERT_TRUE(ZQExtendedAttributes::set(path, DesktopMirror::tagsName, "theirs"));
    ASSERT_TRUE(ZQExtendedAttributes::set(path, DesktopMirror::ratingName, "10"));
    ASSERT_TRUE(ZQExtendedAttributes::set(path, DesktopMirror::commentName, "said"));
    const Attributes before = attributes();
    withUnreadable(tagsName, [this] { EXPECT_FALSE(DesktopMirror::newer(path).tags); });
    withUnreadable(ratingName, [this] { EXPECT_FALSE(DesktopMirror::newer(path).rating); });
    withUnreadable(commentName, [this] { EXPECT_FALSE(DesktopMirror::newer(path).comment); });
    EXPECT_EQ(attributes(), before);
    EXPECT_EQ(DesktopMirror::newer(path).comment, QStringLiteral("said"));

    // A comment that was never mirrored counts only where the file has none.
    path = newFile(QStringLiteral("elsewhere"));
    ASSERT_TRUE(M::setXAttr(QStringLiteral("ours"), commentName, path).isNull());
    ASSERT_TRUE(ZQExtendedAttributes::set(path, DesktopMirror::commentName, "foreign"));
    EXPECT_EQ(M::getFinderComment(path), QStringLiteral("ours"));
    EXPECT_EQ(raw(path, DesktopMirror::commentName), QByteArray("foreign"));
}

TEST_F(AttributeFaultsTest, OlderTagsNeedToBeReadAsOlder)
{
    const auto older = list("older");
    ASSERT_TRUE(M::setUserTags(list("present"), path).isNull());
    ASSERT_TRUE(M::setXAttr(older, M::openmetaKey(M::olderUserTagsKey), path).isNull());
    ASSERT_TRUE(M::setXAttr(QDateTime::currentDateTimeUtc().addSecs(1), M::openmetaTimeKey(M::olderUserTagsKey), path)
                    .isNull());
    const Attributes before = attributes();
    for (const QString &name : {M::openmetaTimeKey(M::userTagsKey), M::openmetaKey(M::userTagsKey)}) {
        withUnreadable(name, [this] { M::getUserTags(path); });
        EXPECT_EQ(attributes(), before) << qPrintable(name);
    }
}

TEST_F(AttributeFaultsTest, ABackupIsOfAllValuesOrStaysAsItWas)
{
    ASSERT_TRUE(M::setRating(4, path).isNull());
    ASSERT_TRUE(M::setFinderComment(QStringLiteral("noted"), path).isNull());
    ASSERT_TRUE(M::setUserTags(list("a"), path).isNull());
    OpenMetaBackup::waitUntilAllWritten();
    const auto kept = [this] { return TagBackupStore(OpenMetaBackup::folder()).find(path); };
    ASSERT_TRUE(kept());
    for (const QString &name : {tagsName, ratingName, commentName, SeenFileTags::attributeName}) {
        withUnreadable(name, [this] { OpenMetaBackup::backupMetadata(path); });
        ASSERT_TRUE(kept()) << qPrintable(name);
        EXPECT_EQ(kept()->tags, list("a")) << qPrintable(name);
        EXPECT_EQ(kept()->rating, 4) << qPrintable(name);
        EXPECT_EQ(kept()->comment, QStringLiteral("noted")) << qPrintable(name);
    }
}

TEST_F(AttributeFaultsTest, ChangesOfRatingOrCommentAloneAreBackedUp)
{
    ASSERT_TRUE(M::setRating(2, path).isNull());
    OpenMetaBackup::waitUntilAllWritten();
    EXPECT_EQ(TagBackupStore(OpenMetaBackup::folder()).find(path).value_or(TagBackup()).rating, 2);
    path = newFile(QStringLiteral("commented"));
    ASSERT_TRUE(M::setFinderComment(QStringLiteral("noted"), path).isNull());
    OpenMetaBackup::waitUntilAllWritten();
    EXPECT_EQ(TagBackupStore(OpenMetaBackup::folder()).find(path).value_or(TagBackup()).comment,
              QStringLiteral("noted"));
}

TEST_F(AttributeFaultsTest, AFailedMainNameIsTheWritersErrorAndIsNotMirrored)
{
    ASSERT_TRUE(M::setUserTags(list("a"), path).isNull());
    ASSERT_TRUE(M::setRating(3, path).isNull());
    ASSERT_TRUE(M::setFinderComment(QStringLiteral("noted"), path).isNull());
    for (const QString &name : {tagsName, ratingName, commentName}) {
        faults.failWriting(name, EIO);
    }
    EXPECT_EQ(M::setUserTags(list("b"), path).code, EIO);
    EXPECT_EQ(M::setRating(5, path).code, EIO);
    EXPECT_EQ(M::setRating(0, path).code, EIO);
    EXPECT_EQ(M::setFinderComment(QStringLiteral("other"), path).code, EIO);
    EXPECT_EQ(raw(path, DesktopMirror::tagsName), QByteArray("a"));
    EXPECT_EQ(raw(path, DesktopMirror::ratingName), QByteArray("6"));
    EXPECT_EQ(raw(path, DesktopMirror::commentName), QByteArray("noted"));

    // And the record says only what all of the file holds, whichever value did not come.
    faults.clear();
    for (const QString &name : {tagsName, ratingName, commentName}) {
        path = newFile(QStringLiteral("without ") + QString(name).replace(u':', u'-'));
        write({list("a"), QStringLiteral("noted"), 3});
        const auto record = raw(path, SeenFileTags::attributeName);
        faults.failWriting(name, EIO);
        write({list("a b"), QStringLiteral("typed"), 1});
        EXPECT_EQ(raw(path, SeenFileTags::attributeName), record) << qPrintable(name);
        faults.clear();
        write({list("a b"), QStringLiteral("typed"), 1}); // as the next launch does
        EXPECT_EQ(tagsOf(path), list("a b")) << qPrintable(name);
        EXPECT_EQ(M::getRating(path), 1) << qPrintable(name);
        EXPECT_EQ(M::getFinderComment(path), QStringLiteral("typed")) << qPrintable(name);
    }
    // A second name that fails is nobody's business: the main one counts.
    faults.failWriting(M::openmetaKey(M::userTagsKey), EIO);
    EXPECT_TRUE(M::setUserTags(list("c"), path).isNull());
    EXPECT_EQ(tagsOf(path), list("c"));
    path = newFile(QStringLiteral("second name"));
    EXPECT_TRUE(M::setUserTags(list("c"), path).isNull());
    EXPECT_FALSE(raw(path, M::openmetaTimeKey(M::userTagsKey))) << "a time of what was not written";
}

TEST_F(AttributeFaultsTest, TheMirrorsRecordSpeaksOnlyOfWhatIsThere)
{
    ASSERT_TRUE(M::setUserTags(list("a"), path).isNull());
    const Attributes before = attributes();
    faults.failWriting(DesktopMirror::tagsName, EIO);
    ASSERT_TRUE(M::setUserTags(QStringList(), path).isNull());
    EXPECT_EQ(raw(path, DesktopMirror::recordName), before.value(DesktopMirror::recordName));
    EXPECT_EQ(raw(path, DesktopMirror::tagsName), QByteArray("a"));
    ASSERT_TRUE(M::setUserTags(list("b"), path).isNull());
    EXPECT_FALSE(raw(path, DesktopMirror::recordName)) << "which would say that somebody put it back";
    faults.clear();
    EXPECT_EQ(tagsOf(path), list("b a")) << "and then it counts as another program's";

    path = newFile(QStringLiteral("other"));
    faults.failWriting(DesktopMirror::recordName, EIO);
    ASSERT_TRUE(M::setUserTags(list("a"), path).isNull());
    faults.clear();
    EXPECT_FALSE(raw(path, DesktopMirror::recordName));
    EXPECT_EQ(tagsOf(path), list("a"));
}

TEST_F(AttributeFaultsTest, WhatIsWrittenLastSaysThatTheRestIsThere)
{
    write({list("a"), QStringLiteral("noted"), 3});
    EXPECT_EQ(faults.written().last(), SeenFileTags::attributeName);
    faults.clear();
    ASSERT_TRUE(M::setXAttr(list("older"), M::openmetaKey(M::olderUserTagsKey), path).isNull());
    ASSERT_TRUE(M::setXAttr(QDateTime::currentDateTimeUtc().addSecs(60), M::openmetaTimeKey(M::olderUserTagsKey), path)
                    .isNull());
    faults.clear();
    EXPECT_EQ(tagsOf(path).first(), QStringLiteral("older"));
    EXPECT_EQ(faults.written().mid(0, 3),
              (QStringList{M::openmetaKey(M::userTagsKey), tagsName, M::openmetaTimeKey(M::userTagsKey)}));
}

TEST_F(AttributeFaultsTest, AValueIsReadUpToTheLengthThatIsWritten)
{
    QString text(4096, u'a');
    while (ZQPropertyList::toBinary(QStringList{text})->size() > 4096) {
        text.chop(1);
    }
    const QByteArray value = *ZQPropertyList::toBinary(QStringList{text});
    ASSERT_EQ(value.size(), 4096);
    const auto read = [this](ZQError *error) { return M::getXAttr(QStringLiteral("x"), path, error); };
    ZQError error;
    faults.answerReading(QStringLiteral("x"), value);
    EXPECT_TRUE(read(&error).isValid());
    EXPECT_TRUE(error.isNull());
    faults.answerReading(QStringLiteral("x"), value + 'x');
    EXPECT_FALSE(read(&error).isValid());
    EXPECT_EQ(error.code, ERANGE);
    faults.clear();
    error = {};
    faults.failReading(QStringLiteral("x"), EINVAL);
    EXPECT_FALSE(read(&error).isValid());
    EXPECT_TRUE(error.isNull());
}

TEST_F(AttributeFaultsTest, ARecordWithoutRoomIsKeptInTheBackup)
{
    faults.failWriting(SeenFileTags::attributeName, ENOSPC);
    write({list("a"), {}, 3});
    OpenMetaBackup::waitUntilAllWritten();
    faults.clear();
    EXPECT_FALSE(raw(path, SeenFileTags::attributeName));
    const auto kept = TagBackupStore(OpenMetaBackup::folder()).find(path);
    ASSERT_TRUE(kept && kept->seen);
    EXPECT_EQ(SeenFileTags::fromText(*kept->seen), SeenFileTags::of({list("a"), {}, 3}));
}

TEST_F(AttributeFaultsTest, BackupsOfFilesThatAreGoneAgeAndThoseOfFilesThatAreThereDoNot)
{
    const QString home = folder.filePath(QStringLiteral("home/Zelto/Backups"));
    ASSERT_TRUE(QDir().mkpath(home));
    const qint64 day = qint64(24) * 3600 * 1000;
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const auto aged = [](qint64 saved, const char *identity) {
        TagBackup backup;
        backup.tags = list("a");
        backup.saved = saved;
        backup.identity = identity;
        return std::optional(backup);
    };
    const QString gone = folder.filePath(QStringLiteral("gone"));
    const QString recent = folder.filePath(QStringLiteral("gone lately"));
    {
        TagBackupStore store(home);
        // Its own list is looked through when it is written, so each is stored by itself.
        ASSERT_TRUE(store.store({{path, aged(now - 400 * day, "1")}}));
        ASSERT_TRUE(store.store({{gone, aged(now - 183 * day, "2")}}));
        ASSERT_TRUE(store.store({{recent, aged(now - 181 * day, "3")}}));
    }
    TagBackupStore again(home);
    EXPECT_TRUE(again.contains(path));
    EXPECT_FALSE(again.contains(gone));
    EXPECT_TRUE(again.contains(recent));
}

// As a checkout does: the new file has no attributes.
TEST_F(AttributeFaultsTest, AFileThatIsReplacedBetweenTwoAttributesTakesNothingAway)
{
    const FileTags library{list("a b"), {}, 4};
    const auto replace = [this] {
        const QString other = newFile(QStringLiteral("new.tmp"), "other contents");
        ASSERT_EQ(rename(QFile::encodeName(other).constData(), QFile::encodeName(path).constData()), 0);
    };
    write(library);
    ASSERT_TRUE(raw(path, SeenFileTags::attributeName));
    OpenMetaBackup::waitUntilAllWritten();
    faults.beforeReading(tagsName, replace);
    const auto read = FileTagsMerge::ofFile(path, library, FileTagsMerge::Unknown::TakesFile, false, nullptr);
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->change.isEmpty());

    write(library);
    OpenMetaBackup::waitUntilAllWritten();
    faults.beforeWriting(SeenFileTags::attributeName, replace);
    write({list("a b c"), {}, 4});
    EXPECT_EQ(adoptions, 0);
    EXPECT_EQ(tagsOf(path), list("a b c")) << "the file that is there now has them";
    EXPECT_EQ(OpenMeta::getRating(path), 4);
}

#include "Tests/Classes/Tags/TagsFixture.h"
#include "Tests/Support/Skip.h"

class DesktopMirrorTest : public TagsFixture
{
protected:
    // As a file manager does it.
    void otherWrites(const QString &name, const std::optional<QByteArray> &value)
    {
        ASSERT_TRUE(value ? ZQExtendedAttributes::set(path, name, *value) : ZQExtendedAttributes::remove(path, name));
    }
};

TEST_F(DesktopMirrorTest, WhatIsWrittenShowsUnderTheDesktopsNames)
{
    if (!hasRoomForMirrors()) {
        return skipWithout("room for several kilobytes of attributes in a file");
    }
    ASSERT_TRUE(
        OpenMeta::setUserTags(QStringList{QStringLiteral("Logo"), QStringLiteral("Cafe\u0301")}, path).isNull());
    ASSERT_TRUE(OpenMeta::setRating(3.5, path).isNull());
    ASSERT_TRUE(OpenMeta::setFinderComment(QStringLiteral("noted"), path).isNull());
    EXPECT_EQ(raw(path, DesktopMirror::tagsName), QStringLiteral("Logo,Caf\u00e9").toUtf8());
    EXPECT_EQ(raw(path, DesktopMirror::ratingName), QByteArray("7"));
    EXPECT_EQ(raw(path, DesktopMirror::commentName), QByteArray("noted"));

    ASSERT_TRUE(OpenMeta::setUserTags(QStringList(), path).isNull());
    ASSERT_TRUE(OpenMeta::setRating(0.5, path).isNull());
    EXPECT_EQ(raw(path, DesktopMirror::ratingName), QByteArray("1"));
    ASSERT_TRUE(OpenMeta::setRating(0, path).isNull());
    EXPECT_FALSE(raw(path, DesktopMirror::tagsName));
    EXPECT_FALSE(raw(path, DesktopMirror::ratingName));
    EXPECT_EQ(tagsOf(path), QStringList());

    path = newFile(QStringLiteral("bare"));
    ASSERT_TRUE(OpenMeta::setUserTags(QStringList{QStringLiteral("x,y"), QStringLiteral(" z")}, path).isNull());
    EXPECT_FALSE(raw(path, DesktopMirror::recordName)) << "nothing of them can be mirrored";
}

TEST_F(DesktopMirrorTest, TagsOfAFileManagerReplaceThoseThatWereMirrored)
{
    struct Case
    {
        const char *what;
        QStringList ours;
        std::optional<QByteArray> theirs;
        QStringList expected;
    };
    const Case cases[] = {
        {"another tag", list("a b"), "a,c", list("a c")},
        {"the last tag removed", list("a"), std::nullopt, {}},
        {"all removed, as an empty text", list("a b"), "", {}},
        {"nothing changed", list("a b"), "a,b", list("a b")},
        {"another order, blanks", list("a B"), " B , a,", list("a B")},
        {"another case", list("Design"), "design,new", list("design new")},
        {"a tag with a comma is beyond them",
         {QStringLiteral("a"), QStringLiteral("x,y")},
         "b",
         {QStringLiteral("b"), QStringLiteral("x,y")}},
        {"only tags with commas", {QStringLiteral("x,y")}, std::nullopt, {QStringLiteral("x,y")}},
        {"no text at all", list("a"), "\xff\xfe", list("a")},
    };
    for (const Case &c : cases) {
        ASSERT_TRUE(OpenMeta::setUserTags(c.ours, path).isNull());
        otherWrites(DesktopMirror::tagsName, c.theirs);
        EXPECT_EQ(tagsOf(path), c.expected) << c.what;
        EXPECT_EQ(OpenMeta::getUserTagsNoRestore(path), c.expected) << c.what << ": taken in for good";
        EXPECT_EQ(tagsOf(path), c.expected) << c.what << ": and once only";
    }
}

TEST_F(DesktopMirrorTest, AForeignMirrorOfAFileNeverMirroredAddsToItsTags)
{
    otherWrites(DesktopMirror::tagsName, "theirs");
    otherWrites(DesktopMirror::ratingName, "8");
    otherWrites(DesktopMirror::commentName, "said");
    EXPECT_EQ(tagsOf(path), list("theirs"));
    EXPECT_EQ(OpenMeta::getRating(path), 4);
    EXPECT_EQ(OpenMeta::getFinderComment(path), QStringLiteral("said"));

    path = newFile(QStringLiteral("other.png"));
    ASSERT_TRUE(OpenMeta::setXAttr(list("ours"), OpenMeta::spotlightKey(OpenMeta::userTagsKey), path).isNull());
    ASSERT_TRUE(OpenMeta::setXAttr(1.0, OpenMeta::spotlightKey(OpenMeta::starRatingKey), path).isNull());
    otherWrites(DesktopMirror::tagsName, "theirs");
    otherWrites(DesktopMirror::ratingName, "8");
    EXPECT_EQ(tagsOf(path), list("ours theirs"));
    EXPECT_EQ(OpenMeta::getRating(path), 1);
}

TEST_F(DesktopMirrorTest, ATagWrittenByAnotherOpenMetaProgramIsNotUndoneByAnOldMirror)
{
    ASSERT_TRUE(OpenMeta::setUserTags(list("a"), path).isNull());
    ASSERT_TRUE(OpenMeta::setXAttr(list("a b"), OpenMeta::spotlightKey(OpenMeta::userTagsKey), path).isNull());
    EXPECT_EQ(tagsOf(path), list("a b"));
}

TEST_F(DesktopMirrorTest, RatingsAndCommentsOfAFileManagerWin)
{
    struct Case
    {
        std::optional<QByteArray> theirs;
        double expected;
    };
    for (const Case &c : {Case{"10", 5}, Case{"1", 0.5}, Case{"0", 0}, Case{std::nullopt, 0}, Case{"many", 3},
                          Case{"11", 3}, Case{"-2", 3}}) {
        ASSERT_TRUE(OpenMeta::setRating(3, path).isNull());
        otherWrites(DesktopMirror::ratingName, c.theirs);
        EXPECT_EQ(OpenMeta::getRating(path), c.expected) << c.theirs.value_or("none").constData();
    }
    ASSERT_TRUE(OpenMeta::setRating(3.7, path).isNull());
    EXPECT_EQ(OpenMeta::getRating(path), 3.7); // the mirror's halves are no change
    ASSERT_TRUE(OpenMeta::setFinderComment(QStringLiteral("ours"), path).isNull());
    otherWrites(DesktopMirror::commentName, "theirs");
    EXPECT_EQ(OpenMeta::getFinderComment(path), QStringLiteral("theirs"));
    otherWrites(DesktopMirror::commentName, std::nullopt);
    EXPECT_EQ(OpenMeta::getFinderComment(path), QString());
}

TEST_F(DesktopMirrorTest, SwitchedOffNothingIsMirroredNorReadAndOnAgainNothingIsLost)
{
    ASSERT_TRUE(OpenMeta::setUserTags(list("a"), path).isNull());
    ZQUserDefaults::standardUserDefaults().registerDefaults({{DesktopMirror::preferenceKey, false}});
    ASSERT_TRUE(OpenMeta::setUserTags(list("b"), path).isNull());
    EXPECT_EQ(raw(path, DesktopMirror::tagsName), QByteArray("a"));
    EXPECT_EQ(tagsOf(path), list("b"));
    ZQUserDefaults::standardUserDefaults().registerDefaults({{DesktopMirror::preferenceKey, true}});
    EXPECT_EQ(tagsOf(path), list("b")); // the mirror is as we left it, so ours is later
    ASSERT_TRUE(OpenMeta::setUserTags(list("c"), path).isNull());
    EXPECT_EQ(raw(path, DesktopMirror::tagsName), QByteArray("c"));
}

TEST_F(DesktopMirrorTest, WhatAKilledWriterLeavesIsNeverTakenForARemoval)
{
    // Every state between the writes of one change, from tags "a" to tags "b".
    ASSERT_TRUE(OpenMeta::setUserTags(list("a"), path).isNull());
    const auto oldMirror = raw(path, DesktopMirror::tagsName);
    const auto oldRecord = raw(path, DesktopMirror::recordName);
    ASSERT_TRUE(OpenMeta::setUserTags(list("b"), path).isNull());
    otherWrites(DesktopMirror::recordName, oldRecord); // the mirror came, its record did not
    EXPECT_EQ(tagsOf(path), list("b"));
    otherWrites(DesktopMirror::tagsName, oldMirror); // neither came
    EXPECT_EQ(tagsOf(path), list("b"));
}

TEST_F(DesktopMirrorTest, CommonTagsCountWhatAFileManagerWrote)
{
    const QString first = path;
    ASSERT_TRUE(OpenMeta::setUserTags(list("a b"), first).isNull());
    path = newFile(QStringLiteral("second"));
    ASSERT_TRUE(OpenMeta::setUserTags(list("a"), path).isNull());
    otherWrites(DesktopMirror::tagsName, "b");
    EXPECT_EQ(OpenMeta::getCommonUserTags({first, path}), list("b"));
}

#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQPropertyList.h"
#include "Tests/Support/Skip.h"

#include <QDateTime>
#include <QFile>
#include <QPoint>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>

namespace {

class OpenMetaTest : public testing::Test
{
protected:
    void SetUp() override
    {
        path = newFile(QStringLiteral("file.png"));
        if (!ZQExtendedAttributes::set(path, QStringLiteral("probe"), "1")) {
            return skipWithout("extended attributes");
        }
        ZQExtendedAttributes::remove(path, QStringLiteral("probe"));
    }

    QString newFile(const QString &name)
    {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return file.fileName();
    }

    QTemporaryDir folder;
    QString path;
};

// A list of one text whose property list has exactly `bytes` bytes.
QStringList tagsOfSize(qsizetype bytes)
{
    QString text(bytes, u'a');
    while (ZQPropertyList::toBinary(QStringList{text})->size() > bytes) {
        text.chop(1);
    }
    EXPECT_EQ(ZQPropertyList::toBinary(QStringList{text})->size(), bytes);
    return {text};
}

} // namespace

TEST_F(OpenMetaTest, TagsThatDifferInCaseOrCompositionAreOne)
{
    const QString composed = QStringLiteral("Caf\u00e9");
    const QString decomposed = QStringLiteral("Cafe\u0301");
    EXPECT_TRUE(OpenMeta::setUserTags(
                    QStringList{QStringLiteral("Design"), QStringLiteral("design"), composed, decomposed}, path)
                    .isNull());
    EXPECT_EQ(OpenMeta::getUserTags(path), (QStringList{QStringLiteral("Design"), decomposed}));
}

TEST_F(OpenMetaTest, ANumberAmongTagsIsRefusedAndNothingIsWritten)
{
    const ZQError error = OpenMeta::setUserTags(QVariantList{QStringLiteral("a"), 3}, path);
    EXPECT_EQ(error.domain, OpenMeta::errorDomain);
    EXPECT_EQ(error.code, -1);
    EXPECT_EQ(error.userInfo.value(OpenMeta::errorInfoKey), QStringLiteral("Open Meta parameter error"));
    EXPECT_TRUE(ZQExtendedAttributes::list(path).isEmpty());
    EXPECT_EQ(OpenMeta::setUserTags(QStringLiteral("a"), path).code, -1);
    EXPECT_EQ(OpenMeta::setUserTags(QStringList{QStringLiteral("a")}, QString()).code, -1);
}

TEST_F(OpenMetaTest, AFileWithoutTagsHasNoneAndNoError)
{
    ZQError error;
    EXPECT_FALSE(OpenMeta::getUserTags(path, &error));
    EXPECT_TRUE(error.isNull());
}

TEST_F(OpenMetaTest, AMissingFileGivesTheSystemsError)
{
    const QString missing = folder.filePath(QStringLiteral("missing"));
    ZQError error;
    EXPECT_FALSE(OpenMeta::getUserTags(missing, &error));
    EXPECT_EQ(error.domain, ZQError::posixDomain);
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_EQ(OpenMeta::setUserTags(QStringList{QStringLiteral("a")}, missing).code, ENOENT);
    EXPECT_TRUE(error.userInfo.value(OpenMeta::errorInfoKey).toString().startsWith(QStringLiteral("errno error: 2, ")));
}

TEST_F(OpenMetaTest, TagsAreWrittenUnderAllTheirNames)
{
    ASSERT_TRUE(OpenMeta::setUserTags(QStringList{QStringLiteral("a")}, path).isNull());
    for (const QString &name :
         {QStringLiteral("com.apple.metadata:kMDItemOMUserTags"), QStringLiteral("org.openmetainfo:kMDItemOMUserTags"),
          QStringLiteral("com.apple.metadata:kOMUserTags"), QStringLiteral("org.openmetainfo:kOMUserTags")}) {
        EXPECT_EQ(OpenMeta::getXAttr(name, path).toStringList(), QStringList{QStringLiteral("a")})
            << name.toStdString();
    }
    for (const QString &name : {QStringLiteral("org.openmetainfo.time:kMDItemOMUserTags"),
                                QStringLiteral("com.apple.metadata:kMDItemOMUserTagTime")}) {
        EXPECT_EQ(OpenMeta::getXAttr(name, path).typeId(), QMetaType::QDateTime) << name.toStdString();
    }
    EXPECT_FALSE(OpenMeta::getXAttr(QStringLiteral("org.openmetainfo.time:kOMUserTags"), path).isValid());
}

TEST_F(OpenMetaTest, AValueOfMoreThan4096BytesIsRefusedWhole)
{
    const QString name = QStringLiteral("org.openmetainfo:big");
    const ZQError tooBig = OpenMeta::setXAttr(tagsOfSize(4097), name, path);
    EXPECT_EQ(tooBig.domain, OpenMeta::errorDomain);
    EXPECT_EQ(tooBig.code, -5);
    EXPECT_FALSE(OpenMeta::getXAttr(name, path).isValid());
    // The limit of the file system may be lower; that is an error of the system then.
    const ZQError fits = OpenMeta::setXAttr(tagsOfSize(4096), name, path);
    EXPECT_TRUE(fits.isNull() || fits.domain == ZQError::posixDomain) << fits.localizedDescription().toStdString();
}

TEST_F(OpenMetaTest, AValueThatIsNoPropertyListIsAnError)
{
    ASSERT_TRUE(ZQExtendedAttributes::set(path, OpenMeta::spotlightKey(OpenMeta::userTagsKey), "bplist00 nonsense"));
    ZQError error;
    EXPECT_FALSE(OpenMeta::getUserTags(path, &error));
    EXPECT_EQ(error.code, -2);
}

TEST_F(OpenMetaTest, AddingAndClearingTagsKeepsTheOthers)
{
    ASSERT_TRUE(OpenMeta::setUserTags(QStringList{QStringLiteral("a"), QStringLiteral("B")}, path).isNull());
    ASSERT_TRUE(OpenMeta::addUserTags(QStringList{QStringLiteral("b"), QStringLiteral("c")}, path).isNull());
    EXPECT_EQ(OpenMeta::getUserTags(path),
              (QStringList{QStringLiteral("a"), QStringLiteral("B"), QStringLiteral("c")}));
    ASSERT_TRUE(OpenMeta::clearUserTags(QStringList{QStringLiteral("b"), QStringLiteral("x")}, path).isNull());
    EXPECT_EQ(OpenMeta::getUserTags(path), (QStringList{QStringLiteral("a"), QStringLiteral("c")}));
    EXPECT_EQ(OpenMeta::clearUserTags(3, path).code, -1);
    EXPECT_EQ(OpenMeta::addUserTags(3, path).code, -1);
    const QVariant time = OpenMeta::getXAttrMetaData(OpenMeta::userTagTimeKey, path);
    ASSERT_TRUE(OpenMeta::addUserTags(QStringList{QStringLiteral("C")}, path).isNull());
    ASSERT_TRUE(OpenMeta::clearUserTags(QStringList{QStringLiteral("x")}, path).isNull());
    EXPECT_EQ(OpenMeta::getXAttrMetaData(OpenMeta::userTagTimeKey, path), time) << "nothing to write";
}

TEST_F(OpenMetaTest, WhatNamesNoFileAndWhatIsNoValueIsRefused)
{
    for (const QString &none : {QString(), QString(path + QChar(0)), QString(path + QChar(0xd800))}) {
        ZQError error;
        EXPECT_EQ(OpenMeta::setXAttr(1, QStringLiteral("x"), none).code, OpenMeta::ParameterError);
        EXPECT_FALSE(OpenMeta::getXAttr(QStringLiteral("x"), none, &error).isValid());
        EXPECT_EQ(error.code, OpenMeta::ParameterError);
    }
    const ZQError noValue = OpenMeta::setXAttr(QPoint(1, 2), QStringLiteral("x"), path);
    EXPECT_EQ(noValue.domain, OpenMeta::errorDomain);
    EXPECT_EQ(noValue.code, OpenMeta::PropertyListError);
    EXPECT_TRUE(ZQExtendedAttributes::list(path).isEmpty());
    ASSERT_TRUE(ZQExtendedAttributes::set(path, QStringLiteral("empty"), QByteArray("")));
    ZQError error;
    EXPECT_FALSE(OpenMeta::getXAttr(QStringLiteral("empty"), path, &error).isValid());
    EXPECT_TRUE(error.isNull());
}

TEST_F(OpenMetaTest, RatingsAreBoundedAndNoneRemovesThem)
{
    struct Case
    {
        double set;
        double expected;
    };
    for (const Case &c : {Case{7, 5}, Case{3.5, 3.5}, Case{0, 0}, Case{5, 5}, Case{-1, 0}, Case{0.5, 0.5}}) {
        EXPECT_TRUE(OpenMeta::setRating(c.set, path).isNull());
        EXPECT_EQ(OpenMeta::getRating(path), c.expected);
        EXPECT_EQ(OpenMeta::getXAttrMetaData(OpenMeta::starRatingKey, path).isValid(), c.expected > 0);
        EXPECT_EQ(OpenMeta::getXAttrMetaDataNoSpotlightMirror(OpenMeta::starRatingKey, path).isValid(), c.expected > 0);
    }
    EXPECT_TRUE(OpenMeta::getXAttr(OpenMeta::openmetaTimeKey(OpenMeta::starRatingKey), path).isValid());
}

TEST_F(OpenMetaTest, CommonTagsAreThoseOfEveryFileInTheOrderOfTheFirst)
{
    const QString other = newFile(QStringLiteral("other"));
    const QString bare = newFile(QStringLiteral("bare"));
    ASSERT_TRUE(OpenMeta::setUserTags(QStringList{QStringLiteral("B"), QStringLiteral("a"), QStringLiteral("x")}, path)
                    .isNull());
    ASSERT_TRUE(OpenMeta::setUserTags(QStringList{QStringLiteral("a"), QStringLiteral("b")}, other).isNull());
    EXPECT_EQ(OpenMeta::getCommonUserTags({path, other}), (QStringList{QStringLiteral("B"), QStringLiteral("a")}));
    EXPECT_TRUE(OpenMeta::getCommonUserTags({path, bare}).isEmpty());
    EXPECT_EQ(OpenMeta::getCommonUserTags({other}), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
}

TEST_F(OpenMetaTest, ReplacingCommonTagsLeavesEachFileItsOwn)
{
    const QString other = newFile(QStringLiteral("other"));
    ASSERT_TRUE(OpenMeta::setUserTags(QStringList{QStringLiteral("a"), QStringLiteral("b")}, path).isNull());
    ASSERT_TRUE(OpenMeta::setUserTags(QStringList{QStringLiteral("A"), QStringLiteral("c")}, other).isNull());
    const ZQError error = OpenMeta::setCommonUserTags({path, folder.filePath(QStringLiteral("missing")), other},
                                                      {QStringLiteral("a")}, {QStringLiteral("d")});
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_TRUE(OpenMeta::setCommonUserTags({folder.filePath(QStringLiteral("missing"))}, {}, {}).isNull());
    EXPECT_EQ(OpenMeta::getUserTags(path), (QStringList{QStringLiteral("b"), QStringLiteral("d")}));
    EXPECT_EQ(OpenMeta::getUserTags(other), (QStringList{QStringLiteral("c"), QStringLiteral("d")}));
}

TEST_F(OpenMetaTest, NewerTagsUnderTheOlderKeyWin)
{
    const auto older = QStringList{QStringLiteral("older")};
    const auto write = [&](const QDateTime &time) {
        ASSERT_TRUE(OpenMeta::setUserTags(QStringList{QStringLiteral("present")}, path).isNull());
        ASSERT_TRUE(OpenMeta::setXAttr(older, OpenMeta::openmetaKey(OpenMeta::olderUserTagsKey), path).isNull());
        ASSERT_TRUE(OpenMeta::setXAttr(time, OpenMeta::openmetaTimeKey(OpenMeta::olderUserTagsKey), path).isNull());
    };
    write(QDateTime::currentDateTimeUtc());
    EXPECT_EQ(OpenMeta::getUserTags(path), QStringList{QStringLiteral("present")});
    const QDateTime time = QDateTime::fromSecsSinceEpoch(1'500'000'000, Qt::UTC);
    const QString timeName = OpenMeta::openmetaTimeKey(OpenMeta::userTagsKey);
    write(time.addMSecs(1999)); // hardly later
    ASSERT_TRUE(OpenMeta::setXAttr(time, timeName, path).isNull());
    EXPECT_EQ(OpenMeta::getUserTags(path), QStringList{QStringLiteral("present")});
    write(time.addMSecs(2000));
    ASSERT_TRUE(OpenMeta::setXAttr(time, timeName, path).isNull());
    EXPECT_EQ(OpenMeta::getUserTagsNoRestore(path), QStringList{QStringLiteral("present")});
    EXPECT_EQ(OpenMeta::getUserTags(path), older);
    EXPECT_EQ(OpenMeta::getXAttr(OpenMeta::openmetaKey(OpenMeta::userTagsKey), path).toStringList(), older);
    EXPECT_EQ(OpenMeta::getXAttr(timeName, path).toDateTime(), time.addMSecs(2000)) << "and that is done with";
}

TEST_F(OpenMetaTest, AnArrayTakesEachMemberOnceAndNothingButArrays)
{
    const QString key = QStringLiteral("zeltoWhereFroms");
    EXPECT_EQ(OpenMeta::setNSArrayMetaData(QStringLiteral("a"), key, path).code, -1);
    EXPECT_EQ(OpenMeta::addToNSArrayMetaData(QStringLiteral("a"), key, path).code, -1);
    ASSERT_TRUE(OpenMeta::setNSArrayMetaData(QStringList{QStringLiteral("a")}, key, path).isNull());
    ASSERT_TRUE(
        OpenMeta::addToNSArrayMetaData(QStringList{QStringLiteral("a"), QStringLiteral("A")}, key, path).isNull());
    EXPECT_EQ(OpenMeta::getNSArrayMetaData(key, path), (QVariantList{QStringLiteral("a"), QStringLiteral("A")}));
    ASSERT_TRUE(OpenMeta::setString(QStringLiteral("text"), key, path).isNull());
    EXPECT_FALSE(OpenMeta::getNSArrayMetaData(key, path));
    EXPECT_EQ(OpenMeta::getString(key, path), QStringLiteral("text"));
}

TEST_F(OpenMetaTest, TheWriterWritesTagsAndNotesAndLeavesEqualOnesAlone)
{
    TagFileWriter &writer = TagFileWriter::sharedTagFileWriter();
    writer.writeTagsToFile(path, {QStringLiteral("Caf\u00e9")}, QStringLiteral("noted"));
    writer.waitUntilAllWritten();
    EXPECT_EQ(OpenMeta::getUserTags(path), QStringList{QStringLiteral("Cafe\u0301")});
    EXPECT_EQ(OpenMeta::getXAttrMetaData(OpenMeta::finderCommentKey, path), QStringLiteral("noted"));

    const QVariant time = OpenMeta::getXAttrMetaData(OpenMeta::userTagTimeKey, path);
    writer.writeTagsToFile(path, {QStringLiteral("Caf\u00e9")}, std::nullopt);
    writer.waitUntilAllWritten();
    EXPECT_EQ(OpenMeta::getXAttrMetaData(OpenMeta::userTagTimeKey, path), time);
    EXPECT_EQ(OpenMeta::getXAttrMetaData(OpenMeta::finderCommentKey, path), QStringLiteral("noted"));

    writer.writeTagsToFile(path, {}, QString());
    writer.waitUntilAllWritten();
    EXPECT_EQ(OpenMeta::getUserTags(path), QStringList());
    EXPECT_EQ(OpenMeta::getXAttrMetaData(OpenMeta::finderCommentKey, path), QString());
}

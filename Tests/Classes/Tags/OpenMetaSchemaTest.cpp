#include "Classes/Tags/OpenMetaPrefs.h"
#include "Classes/Tags/WhereFroms.h"
#include "Tests/Classes/Tags/TagsFixture.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QPoint>

using OpenMetaSchemaTest = TagsFixture;

TEST_F(OpenMetaSchemaTest, TheUsualKeysAreRegisteredAndTakenAwayAgain)
{
    ASSERT_TRUE(OpenMeta::registerUsualOMAttributes().isNull());
    const QString name = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    QFile file(OpenMeta::schemaDirectory() + u'/' + name + QStringLiteral(".openmetaschema"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const auto schema = ZQPropertyList::fromData(file.readAll());
    ASSERT_TRUE(schema);
    EXPECT_EQ(schema->toMap().keys(), list("kMDItemOMBookmarks kMDItemOMDocumentDate kMDItemOMManaged "
                                           "kMDItemOMUserTagTime kMDItemOMUserTags"));
    EXPECT_EQ(schema->toMap().value(QStringLiteral("kMDItemOMUserTags")).toStringList(), list("openMeta1 openMeta2"));
    EXPECT_EQ(schema->toMap().value(QStringLiteral("kMDItemOMManaged")), QVariant(true));
    QElapsedTimer waiting;
    waiting.start();
    while (QFile::exists(file.fileName()) && waiting.elapsed() < 30000) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    }
    EXPECT_FALSE(QFile::exists(file.fileName()));
}

TEST_F(OpenMetaSchemaTest, OnlySchemaFilesAreRemoved)
{
    EXPECT_FALSE(OpenMeta::removeSchemaFile(path));
    QDir().mkpath(OpenMeta::schemaDirectory());
    const QString outside = OpenMeta::schemaDirectory() + QStringLiteral("/../outside");
    QFile file(outside);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_FALSE(OpenMeta::removeSchemaFile(outside));
    EXPECT_TRUE(file.exists() && QFile::exists(path));
}

TEST_F(OpenMetaSchemaTest, TagsAreOrderedByAHintAndTheRestFollows)
{
    const QHash<QString, QString> tags{{QStringLiteral("a"), QStringLiteral("A")},
                                       {QStringLiteral("b"), QStringLiteral("b")},
                                       {QStringLiteral("c"), QStringLiteral("c")}};
    EXPECT_EQ(OpenMeta::orderedArrayWithDict(tags, list("b x A b")), list("b A c"));
}

TEST_F(OpenMetaSchemaTest, CommonTagsNameATagOnceEvenWhenAFileHasItTwice)
{
    const QString other = newFile(QStringLiteral("other"));
    ASSERT_TRUE(OpenMeta::setXAttrMetaData(list("a A b"), OpenMeta::userTagsKey, path).isNull());
    ASSERT_TRUE(OpenMeta::setUserTags(list("A b"), other).isNull());
    EXPECT_EQ(OpenMeta::getCommonUserTags({path, other}), list("a b"));
    EXPECT_EQ(OpenMeta::getCommonUserTags({path}), list("a A b")) << "of one file they are its own";
    ASSERT_TRUE(OpenMeta::setUserTags(list("c"), other).isNull());
    ZQError error;
    const QStringList three{path, other, folder.filePath(QStringLiteral("gone"))};
    EXPECT_TRUE(OpenMeta::getCommonUserTags(three, &error).isEmpty());
    EXPECT_TRUE(error.isNull()) << "two without a common one say it all";
}

TEST_F(OpenMetaSchemaTest, WhatCannotBeRegisteredIsAnError)
{
    EXPECT_FALSE(
        OpenMeta::registerOMAttributes({{QStringLiteral("a"), QPoint(1, 2)}}, QStringLiteral("wrong")).isNull());
    EXPECT_FALSE(QFile::exists(OpenMeta::schemaDirectory() + QStringLiteral("/wrong.openmetaschema")));
    const QString taken = OpenMeta::schemaDirectory() + QStringLiteral("/taken.openmetaschema");
    QDir().mkpath(taken);
    EXPECT_FALSE(OpenMeta::registerOMAttributes({}, QStringLiteral("taken")).isNull());
    EXPECT_TRUE(QDir().rmdir(taken));
    EXPECT_TRUE(OpenMeta::registerOMAttributes({}, QStringLiteral("some/where/taken")).isNull());
    EXPECT_TRUE(OpenMeta::removeSchemaFile(taken));
    EXPECT_FALSE(OpenMeta::removeSchemaFile({}));
}

TEST_F(OpenMetaSchemaTest, RecentTagsAreTheEnteredOnesFirstEachOnceAndAtMost201)
{
    OpenMetaPrefs::setPrefsFile(QStringLiteral("org.zelto.test/tags"));
    EXPECT_TRUE(OpenMetaPrefs::recentTags().isEmpty());
    EXPECT_FALSE(OpenMetaPrefs::synchPrefsIfItsBeenAWhile()); // just done
    OpenMetaPrefs::updatePrefsRecentTags(list("a"), list("a b C"));
    OpenMetaPrefs::updatePrefsRecentTags(list("a"), list("a"));
    EXPECT_EQ(OpenMetaPrefs::recentTags(), list("b C"));
    OpenMetaPrefs::updatePrefsRecentTags(list("B"), list("d c"));
    EXPECT_EQ(OpenMetaPrefs::recentTags(), list("d c b"));
    OpenMetaPrefs::updatePrefsRecentTags(list("b"), list("B"));
    EXPECT_EQ(OpenMetaPrefs::recentTags(), list("B d c"));

    QStringList many;
    for (int i = 0; i < 300; ++i) {
        many.append(QStringLiteral("t%1").arg(i));
    }
    OpenMetaPrefs::updatePrefsRecentTags({}, many);
    EXPECT_EQ(OpenMetaPrefs::recentTags(), many.mid(0, 201));
    OpenMetaPrefs::setPrefsFile(QStringLiteral("org.zelto.test/tags"));
    EXPECT_EQ(OpenMetaPrefs::recentTags().size(), 201); // as the file has it
    OpenMetaPrefs::setPrefsFile({});
    EXPECT_TRUE(OpenMetaPrefs::recentTags().isEmpty());
}

TEST_F(OpenMetaSchemaTest, TheOriginIsReadFromEveryDesktopsNames)
{
    const auto urls = [this] {
        const WhereFroms found = WhereFroms::urlsOfFile(path);
        return QStringList{found.webURL, found.webPageURL};
    };
    EXPECT_EQ(urls(), (QStringList{QString(), QString()}));
    ASSERT_TRUE(ZQExtendedAttributes::set(path, QStringLiteral("xdg.origin.url"), "https://xdg/a.png"));
    ASSERT_TRUE(ZQExtendedAttributes::set(path, QStringLiteral("xdg.referrer.url"), "https://xdg/"));
    EXPECT_EQ(urls(), list("https://xdg/a.png https://xdg/"));
    ASSERT_TRUE(
        OpenMeta::setXAttr(list("https://mac/a.png"), OpenMeta::spotlightKey(OpenMeta::whereFromsKey), path).isNull());
    EXPECT_EQ(urls(), list("https://mac/a.png https://xdg/"));
    ASSERT_TRUE(
        OpenMeta::setNSArrayMetaData(list("https://own/a.png https://own/"), WhereFroms::ownKey, path).isNull());
    EXPECT_EQ(urls(), list("https://own/a.png https://own/"));
    ASSERT_TRUE(OpenMeta::setNSArrayMetaData(list("https://own/b.png"), WhereFroms::ownKey, path).isNull());
    EXPECT_EQ(urls(), list("https://own/b.png https://xdg/")) << "the page is where there is one";
    ASSERT_TRUE(OpenMeta::setNSArrayMetaData(QVariantList{3, 4}, WhereFroms::ownKey, path).isNull());
    EXPECT_EQ(urls(), (QStringList{QString(), QString()}));
    ASSERT_TRUE(OpenMeta::setNSArrayMetaData(QStringList(), WhereFroms::ownKey, path).isNull());
    ASSERT_TRUE(
        OpenMeta::setXAttr(QStringLiteral("https://text/"), OpenMeta::spotlightKey(OpenMeta::whereFromsKey), path)
            .isNull());
    EXPECT_EQ(urls(), list("https://text/ https://xdg/"));
    ZQExtendedAttributes::remove(path, OpenMeta::spotlightKey(OpenMeta::whereFromsKey));
    ASSERT_TRUE(ZQExtendedAttributes::set(path, QStringLiteral("xdg.origin.url"), " https://xdg/b.png\n"));
    EXPECT_EQ(urls(), list("https://xdg/b.png https://xdg/"));
    path.clear();
    EXPECT_EQ(urls(), (QStringList{QString(), QString()}));
}

#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarSeed.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Tests/Support/ScratchLibrary.h"

#include <gtest/gtest.h>

namespace {

class Tag : public testing::Test
{
protected:
    Tag() { zqSeedFixedSidebar(context); }
    ScratchLibrary library;
    ZQManagedObjectContext &context = library.context();
};

TEST_F(Tag, IsFoundByExactTitleAmongActiveOnes)
{
    const auto tag = ZQSidebarTag::addNewTagWithName(QStringLiteral("Logo"), context);
    EXPECT_EQ(ZQSidebarTag::tagWithTagName(QStringLiteral("Logo"), context).get(), tag.get());
    EXPECT_FALSE(ZQSidebarTag::tagWithTagName(QStringLiteral("logo"), context));
    EXPECT_NE(ZQSidebarTag::getOrCreateTagWithName(QStringLiteral("logo"), context).get(), tag.get());
    EXPECT_EQ(ZQSidebarTag::getOrCreateTagWithName(QStringLiteral("Logo"), context).get(), tag.get());
    tag->deleteSelf();
    EXPECT_FALSE(ZQSidebarTag::tagWithTagName(QStringLiteral("Logo"), context));
    tag->restoreSelf();
    EXPECT_TRUE(ZQSidebarTag::tagWithTagName(QStringLiteral("Logo"), context));
}

TEST_F(Tag, ANewOneIsTheLastBelowTagsWithoutLineBreaksAndTabs)
{
    const auto tag = ZQSidebarTag::addNewTagWithName(QStringLiteral("a\tb\r\nc"), context);
    EXPECT_EQ(tag->title(), QStringLiteral("abc"));
    EXPECT_TRUE(tag->isTag());
    EXPECT_TRUE(tag->isUserTag());
    EXPECT_EQ(tag->sortKeys(), 2);
    EXPECT_EQ(ZQSidebarBaseItem::tagsLabelInManagedObjectContext(context)->orderedChildren().last().get(), tag.get());
    EXPECT_FALSE(ZQSidebarTag::addNewTagWithName(QStringLiteral("\n\t"), context));
}

TEST_F(Tag, TaggingRewritesTheFilesOfWhatChanged)
{
    const auto tag = ZQSidebarTag::addNewTagWithName(QStringLiteral("blueprint"), context);
    const auto first = library.addImage(QStringLiteral("first"));
    const auto second = library.addImage(QStringLiteral("second"));
    tag->addItems({first, second});
    tag->addItems({first}); // has it already
    ASSERT_EQ(library.written.size(), 2);
    EXPECT_EQ(library.written.at(0).path, first->itemURL());
    EXPECT_EQ(library.written.at(0).tags, QStringList{QStringLiteral("blueprint")});
    EXPECT_EQ(tag->numberOfItems(), 2);
    library.written.clear();

    tag->removeItems({second});
    ASSERT_EQ(library.written.size(), 1);
    EXPECT_TRUE(library.written.first().tags.isEmpty());
    EXPECT_EQ(tag->numberOfItems(), 1);
    library.written.clear();

    // A deleted tag leaves the files but keeps what it tags, for undo.
    tag->deleteSelf();
    ASSERT_EQ(library.written.size(), 1);
    EXPECT_TRUE(library.written.first().tags.isEmpty());
    EXPECT_EQ(first->tags().size(), 1);
    EXPECT_TRUE(first->itemTags().isEmpty());
    tag->restoreSelf();
    EXPECT_EQ(library.written.last().tags, QStringList{QStringLiteral("blueprint")});
}

TEST_F(Tag, ColoursHaveCodesAndNames)
{
    const char *const names[] = {"white",  "black", "gray", "red",    "orange",
                                 "yellow", "green", "blue", "purple", "pink"};
    int code = 1000;
    for (const char *name : names) {
        EXPECT_EQ(ZQSidebarTag::colorValueForName(QString::fromLatin1(name)), code);
        EXPECT_EQ(ZQSidebarTag::colorNameForValue(code), QString::fromLatin1(name));
        EXPECT_EQ(ZQSidebarTag::tagForColor(code, context)->title(), QString::fromLatin1(name));
        ++code;
    }
    EXPECT_EQ(ZQSidebarTag::colorValueForName(QStringLiteral("mauve")), -1);
    EXPECT_TRUE(ZQSidebarTag::colorNameForValue(-1).isEmpty());
    EXPECT_FALSE(ZQSidebarTag::tagForColor(1010, context));
    EXPECT_FALSE(ZQSidebarTag::tagForSize(2000, context));
    EXPECT_EQ(ZQSidebarTag::tagForSize(2005, context)->title(), QStringLiteral("vector"));
}

TEST_F(Tag, ReorderingNumbersUserTagsByOrderThenTitle)
{
    const auto sample = ZQSidebarTag::tagWithTagName(QStringLiteral("Sample tag"), context);
    struct Row
    {
        const char *title;
        int order;
    };
    const Row rows[] = {{"z", 5}, {"a10", 7}, {"a9", 7}};
    for (const Row &row : rows) {
        ZQSidebarTag::addNewTagWithName(QString::fromLatin1(row.title), context);
    }
    for (const Row &row : rows) {
        ZQSidebarTag::tagWithTagName(QString::fromLatin1(row.title), context)->setOrder(row.order);
    }
    ZQSidebarTag::reorderAllUserTagsInManagedObjectContext(context);
    QStringList titles;
    qint32 position = 0;
    for (const auto &tag : ZQSidebarBaseItem::tagsLabelInManagedObjectContext(context)->orderedChildren()) {
        EXPECT_EQ(tag->order(), position++);
        titles.append(tag->title());
    }
    EXPECT_EQ(titles, (QStringList{sample->title(), QStringLiteral("z"), QStringLiteral("a9"), QStringLiteral("a10")}));
    EXPECT_EQ(ZQSidebarTag::tagForColor(1003, context)->order(), 3);
}

TEST_F(Tag, DuplicatesAreReportedOnceByTitle)
{
    EXPECT_TRUE(ZQSidebarTag::contextContainsDuplicatedTags(context).isEmpty());
    for (const char *title : {"x", "x", "x", "X", "y"}) {
        ZQSidebarTag::addNewTagWithName(QString::fromLatin1(title), context);
    }
    EXPECT_EQ(ZQSidebarTag::contextContainsDuplicatedTags(context), QStringList{QStringLiteral("x")});
}

TEST_F(Tag, TagsThatCannotBeReadAreNoneAndNothingIsMerged)
{
    const auto first = ZQSidebarTag::addNewTagWithName(QStringLiteral("x"), context);
    ZQSidebarTag::addNewTagWithName(QStringLiteral("x"), context);
    ASSERT_TRUE(context.save());
    library.renameTable("ZQSidebarBaseItem", "away");
    EXPECT_FALSE(ZQSidebarTag::tagsByNameInManagedObjectContext(context).has_value());
    EXPECT_TRUE(ZQSidebarTag::contextContainsDuplicatedTags(context).isEmpty());
    ZQSidebarTag::mergeTagsNamed({QStringLiteral("x")}, context);
    EXPECT_FALSE(context.hasChanges());
    library.renameTable("away", "ZQSidebarBaseItem");
    EXPECT_EQ(ZQSidebarTag::contextContainsDuplicatedTags(context), QStringList{first->title()});
}

// Stores of older versions hold names that came decomposed from a file, and breaks that a rename let in.
TEST_F(Tag, OneNameIsOneTagInWhateverFormItComes)
{
    struct Case
    {
        QString stored;
        QString asked;
        QString name;
    };
    const QString composed = QStringLiteral("Caf\u00e9");
    const QString decomposed = QStringLiteral("Cafe\u0301");
    const Case cases[] = {{composed, decomposed, composed},
                          {decomposed, composed, composed},
                          {decomposed, decomposed, composed},
                          {QStringLiteral("Brand"), QStringLiteral("Br\tand\n"), QStringLiteral("Brand")},
                          {QStringLiteral("Two\nlines"), QStringLiteral("Twolines"), QStringLiteral("Twolines")}};
    for (const Case &c : cases) {
        const auto tag = ZQSidebarTag::addNewTagWithName(QStringLiteral("x"), context);
        tag->setTitle(c.stored);
        EXPECT_EQ(ZQSidebarTag::getOrCreateTagWithName(c.asked, context).get(), tag.get()) << qPrintable(c.asked);
        tag->deletePermanently();
        EXPECT_EQ(ZQSidebarTag::addNewTagWithName(c.asked, context)->title(), c.name);
        ZQSidebarTag::tagWithTagName(c.name, context)->deletePermanently();
    }
    EXPECT_FALSE(ZQSidebarTag::tagWithTagName(QStringLiteral("\t"), context));
}

TEST_F(Tag, TwinsOfOneNameBecomeOneWithTheItemsOfAll)
{
    const QString composed = QStringLiteral("Caf\u00e9");
    const auto first = ZQSidebarTag::addNewTagWithName(QStringLiteral("first"), context);
    const auto second = ZQSidebarTag::addNewTagWithName(QStringLiteral("second"), context);
    const auto upper = ZQSidebarTag::addNewTagWithName(QStringLiteral("CAF\u00c9"), context);
    first->setTitle(QStringLiteral("Cafe\u0301"));
    second->setTitle(QStringLiteral("Ca\tf\u00e9"));
    const auto image = library.addImage(QStringLiteral("a"));
    const auto other = library.addImage(QStringLiteral("b"));
    image->addTagsObject(first.get());
    other->addTagsObject(second.get());
    EXPECT_EQ(ZQSidebarTag::contextContainsDuplicatedTags(context), QStringList{composed});
    ZQSidebarTag::mergeTagsNamed({composed}, context);
    EXPECT_EQ(first->title(), composed);
    EXPECT_EQ(first->taggedItems().size(), 2);
    EXPECT_TRUE(ZQSidebarTag::contextContainsDuplicatedTags(context).isEmpty());
    EXPECT_EQ(ZQSidebarTag::tagWithTagName(upper->title(), context).get(), upper.get());
}

} // namespace

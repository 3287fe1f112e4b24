// Items made of what importers found out, without an import around them.

#include "Classes/Import/ItemInserter.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Tests/Classes/Import/ImportFixture.h"

namespace {

class ItemInserterTest : public ImportFixture
{
protected:
    static QVariantMap data(const QString &title, const QStringList &tags = {})
    {
        return {{QStringLiteral("itemClass"), ZQLibraryImage::entityName()},
                {QStringLiteral("title"), title},
                {QStringLiteral("SHA1"), QStringLiteral("digest of ") + title},
                {QStringLiteral("tags"), tags}};
    }

    void put(ItemInserter &inserter, ItemInserter::Place &place, const QStringList &names)
    {
        for (const QString &name : names) {
            auto inserted = inserter.insert(data(name));
            ASSERT_TRUE(inserted.item);
            inserter.put(inserted, place);
        }
        inserter.putWaiting(place);
    }

    static QStringList members(const ZQSidebarProject &project)
    {
        QStringList found;
        for (const auto &member : project.pItems()) {
            found.append(member->item()->title());
        }
        return found;
    }
};

} // namespace

TEST_F(ItemInserterTest, AnItemGetsItsAttributesItsDigestAndEachTagOnce)
{
    const auto existing = addTag(QStringLiteral("Sky"));
    ItemInserter inserter(context());
    const auto first = inserter.insert(
        data(QStringLiteral("a"), {QStringLiteral("Sky"), QStringLiteral("Sky\n"), QStringLiteral("Sea")}));
    const auto second = inserter.insert(data(QStringLiteral("b"), {QStringLiteral("Sea")}));
    ASSERT_TRUE(first.item && second.item);
    EXPECT_EQ(first.item->title(), QStringLiteral("a"));
    EXPECT_EQ(first.item->SHA1(), QStringLiteral("digest of a"));
    EXPECT_EQ(first.tags, (QStringList{QStringLiteral("Sky"), QStringLiteral("Sea")}));
    EXPECT_EQ(tagTitles(*first.item), (QStringList{QStringLiteral("Sea"), QStringLiteral("Sky")}));
    EXPECT_EQ(zqFetch<ZQSidebarTag>(context(), QStringLiteral("title == %@"), {QStringLiteral("Sea")})->size(), 1);
    EXPECT_EQ(zqFetch<ZQSidebarTag>(context(), QStringLiteral("title == %@"), {QStringLiteral("Sky")})->size(), 1);
    inserter.removeNewTags();
    EXPECT_EQ(tagTitles(*first.item), QStringList{QStringLiteral("Sky")}) << "it was there before";
    EXPECT_TRUE(tagTitles(*second.item).isEmpty());
    EXPECT_FALSE(existing->isDeleted());
}

TEST_F(ItemInserterTest, AKindWithoutItemsMakesNothing)
{
    ItemInserter inserter(context());
    QVariantMap unknown = data(QStringLiteral("a"), {QStringLiteral("Sea")});
    unknown.insert(QStringLiteral("itemClass"), QStringLiteral("LibraryHologram"));
    EXPECT_FALSE(inserter.insert(unknown).item);
    EXPECT_FALSE(context().hasChanges());
}

TEST_F(ItemInserterTest, APlaceTakesItemsOneBehindTheOther)
{
    ItemInserter inserter(context());
    const auto project = addProject(QStringLiteral("P"));
    ItemInserter::Place end{.project = project};
    put(inserter, end, {QStringLiteral("a"), QStringLiteral("b")});
    put(inserter, end, {QStringLiteral("c")});
    ASSERT_TRUE(context().save(nullptr));
    ItemInserter::Place middle{.project = project, .position = 1, .isExplicit = true};
    put(inserter, middle, {QStringLiteral("x"), QStringLiteral("y")});
    put(inserter, middle, {QStringLiteral("z")});
    EXPECT_EQ(members(*project).join(u' '), QStringLiteral("a x y z b c"));
}

TEST_F(ItemInserterTest, ATagTakesItemsAsATagAndTheLibraryAsTheyAre)
{
    ItemInserter inserter(context());
    const auto tag = addTag(QStringLiteral("Sky"));
    auto tagged = inserter.insert(data(QStringLiteral("a")));
    ItemInserter::Place place{.project = tag, .position = 0, .isExplicit = true};
    inserter.put(tagged, place);
    EXPECT_EQ(tagged.tags, QStringList{QStringLiteral("Sky")}) << "it is written to the file with the others";
    EXPECT_EQ(tagTitles(*tagged.item), QStringList{QStringLiteral("Sky")});
    auto plain = inserter.insert(data(QStringLiteral("b")));
    ItemInserter::Place library{.project = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(context())};
    inserter.put(plain, library);
    EXPECT_TRUE(plain.item->projectsItems().isEmpty());
    EXPECT_TRUE(tagged.item->projectsItems().isEmpty());
}

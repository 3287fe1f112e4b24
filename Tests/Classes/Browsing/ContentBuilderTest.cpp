#include "Classes/Browsing/Content/ContentBuilder.h"

#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Browsing/Index/ListOrder.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Tests/Classes/Browsing/BrowsingFixture.h"

#include <QDateTime>

namespace {

class ContentBuilderTest : public BrowsingFixture
{
protected:
    ContentBuilderTest()
    {
        for (const char *title : {"b10", "a", "b9"}) {
            images.append(library.addImage(QLatin1StringView(title)));
        }
        project->addItems({images[0], images[1], images[2]});
        other->addItems({images[1]});
        library.context().save();
    }
    // "title: item item | title: item", as read by a context of its own.
    std::string content(const ContentQuery &query, LibraryIndex *index = nullptr)
    {
        ZQManagedObjectContext context(library.coordinator());
        const auto built = ContentBuilder(query, context, index).content([] { return true; });
        QStringList sections;
        for (qsizetype i = 0; built && i < built->groups.size(); ++i) {
            QStringList items;
            const ContentGroup &group = built->groups[i];
            for (const ZQObjectID &id : built->rows.related.mid(group.first, group.count)) {
                items.append(zqCast<ZQLibraryBaseItem>(context.objectWithID(id))->title());
            }
            sections.append(group.title + QStringLiteral(": ") + items.join(u' '));
        }
        return (built && built->error.isNull() ? sections.join(QStringLiteral(" | ")) : QStringLiteral("error"))
            .toStdString();
    }

    using Images = QList<ZQRef<ZQLibraryImage>>;
    const Item folder = addFolder(QStringLiteral("Folder"));
    const Item project = addProject(QStringLiteral("Project"), folder);
    const Item empty = addProject(QStringLiteral("Empty"), folder);
    const Item other = addProject(QStringLiteral("Other"), folder);
    const Item everything = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(library.context());
    Images images;
};

} // namespace

TEST_F(ContentBuilderTest, SectionsFollowTheSelectionAndEmptyOnesAreLeftOut)
{
    const auto of = [](const QList<Item> &items, ZQSortValue sort = ZQSortValue::Manual, bool isAscending = true) {
        ContentQuery query{{}, {}, sort, isAscending};
        for (const Item &item : items) {
            query.sidebarItems.append(item->objectID());
        }
        return query;
    };
    EXPECT_EQ(content(of({project})), "Project: b10 a b9");
    EXPECT_EQ(content(of({other, empty, project})), "Other: a | Project: b10 a b9");
    EXPECT_EQ(content(of({folder})), "Project: b10 a b9 | Other: a");
    EXPECT_EQ(content(of({project}, ZQSortValue::Title)), "Project: a b9 b10");
    EXPECT_EQ(content(of({project}, ZQSortValue::Title, false)), "Project: b10 b9 a");
    EXPECT_EQ(content(of({everything}, ZQSortValue::Title)), "Library: a b9 b10");
    EXPECT_EQ(content(of({empty})), "");
    EXPECT_EQ(content({}), "");
    other->deleteSelf();
    images[0]->deleteSelf();
    library.context().save();
    EXPECT_EQ(content(of({other, project})), "Project: a b9") << "deleted rows are no sections";
    for (const Item &item : {project, everything}) {
        ContentQuery filtered = of({item}, ZQSortValue::Title);
        filtered.filter = QStringLiteral("B");
        EXPECT_EQ(content(filtered), (item == project ? "Project: b9" : "Library: b9"));
    }
}

TEST_F(ContentBuilderTest, TheIndexAnswersAsTheStoreDoes)
{
    LibraryIndex index(library.coordinator());
    index.follow(library.context());
    ASSERT_TRUE(index.waitUntilCurrent());
    images[0]->setSHA1(QStringLiteral("same"));
    images[2]->setSHA1(QStringLiteral("same"));
    images[1]->setExtension(QStringLiteral("svg"));
    const auto blue = ZQSidebarTag::addNewTagWithName(QStringLiteral("Blue"), library.context());
    images[2]->addTagsObject(blue.get());
    library.context().save();
    int compared = 0;
    for (const QList<Item> &selection :
         {QList<Item>{project}, {everything}, {folder}, {other, project}, {project, everything}, {blue}}) {
        for (const int style : {0, 1, 2, 3, 4}) {
            for (const ZQSortValue sort : {ZQSortValue::Manual, ZQSortValue::Title, ZQSortValue::ModificationDate}) {
                for (const char *filter : {"", "b", "#duplicates", "#tag blue OR #e svg", "-b"}) {
                    ContentQuery query{{}, QLatin1StringView(filter), sort, true, BrowserDisplayStyle(style)};
                    for (const Item &item : selection) {
                        query.sidebarItems.append(item->objectID());
                    }
                    const std::string expected = content(query);
                    EXPECT_EQ(content(query, &index), expected) << filter << " style " << style;
                    compared += expected.empty() ? 0 : 1;
                }
            }
        }
    }
    EXPECT_GT(compared, 100);
}

TEST_F(ContentBuilderTest, EveryColumnOfAListIsAnOrderWithTheIndexAndWithoutIt)
{
    const auto tag = [this](const char *title, const Images &tagged) {
        const auto added = ZQSidebarTag::addNewTagWithName(QLatin1StringView(title), library.context());
        for (const auto &image : tagged) {
            image->addTagsObject(added.get());
        }
    };
    images.append(library.addImage(QStringLiteral("c"), QStringLiteral("JPG"), QByteArray(300, 'x')));
    images.append(library.addImage(QStringLiteral("d"), QStringLiteral("jpg"), QByteArray(20, 'x')));
    images[0]->setExtension(QStringLiteral("svg"));
    images[1]->setExtension(QStringLiteral("jpg"));
    ASSERT_TRUE(QFile::resize(images[1]->itemURL(), 4000));
    ASSERT_TRUE(QFile::remove(images[2]->itemURL()));
    for (const auto &[image, stars] : {std::pair(1, 3), std::pair(2, 5), std::pair(4, 3)}) {
        images[image]->setRating(qint16(stars));
    }
    int date = 0;
    for (const auto &image : images) {
        image->setImport_date(QDateTime::fromSecsSinceEpoch(++date));
    }
    // A tag that a colour or a size brought says nothing here.
    images[0]->addTagsObject(
        zqCast<ZQSidebarTag>(ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind::FirstSize, library.context())).get());
    tag("zebra", {images[1], images[3], images[4]});
    tag("Beach", {images[1], images[4]});
    tag("apple", {images[2], images[3]});
    tag("cat", {images[4]});
    library.context().save();
    LibraryIndex index(library.coordinator());
    ASSERT_TRUE(index.waitUntilOrdered());
    struct Case
    {
        ZQSortValue order;
        const char *ascending;
        const char *descending;
    };
    for (const Case &each : {Case{ListOrder::byKind, "a c d b9 b10", "b10 b9 d c a"},
                             {ListOrder::byRating, "b10 c a d b9", "b9 d a c b10"},
                             {ListOrder::byTags, "b9 c d a b10", "b10 a d c b9"}}) {
        for (LibraryIndex *const by : {&index, static_cast<LibraryIndex *>(nullptr)}) {
            for (const bool isAscending : {true, false}) {
                const ContentQuery query{{everything->objectID()}, {}, each.order, isAscending};
                EXPECT_EQ(content(query, by),
                          std::string("Library: ") + (isAscending ? each.ascending : each.descending))
                    << int(each.order) << (by ? " by the index" : " by the items");
            }
        }
    }
    const ContentQuery grouped{{everything->objectID()}, {}, ListOrder::byTags, true, BrowserDisplayStyle::ByExtension};
    EXPECT_EQ(content(grouped), "JPG: c | jpg: d a | png: b9 | svg: b10");
    EXPECT_EQ(content(grouped, &index), content(grouped));
}

TEST_F(ContentBuilderTest, TheFirstRowsComeAloneWhereTheStoreHasThemAtOnce)
{
    int date = 0;
    for (const auto &image : images) {
        image->setImport_date(QDateTime::fromSecsSinceEpoch(++date));
    }
    library.context().save();
    const auto of = [this](const Item &item, ZQSortValue sort, int firstRows, BrowserDisplayStyle style) {
        ContentQuery query{{item->objectID()}, {}, sort, false, style};
        query.firstRows = firstRows;
        ZQManagedObjectContext context(library.coordinator());
        return *ContentBuilder(query, context).content([] { return true; });
    };
    const auto isBeginning = [&](const Item &item, ZQSortValue sort,
                                 BrowserDisplayStyle style = BrowserDisplayStyle::BySidebarItem) {
        const Content whole = of(item, sort, 0, style);
        const Content first = of(item, sort, 2, style);
        EXPECT_EQ(first.rows.ids, whole.rows.ids.first(first.rows.ids.size()));
        EXPECT_EQ(first.rows.ids.size(), first.isBeginning ? 2 : 3);
        return first.isBeginning;
    };
    EXPECT_TRUE(isBeginning(everything, ZQSortValue::ImportDate));
    EXPECT_TRUE(isBeginning(everything, ZQSortValue::ImportDate, BrowserDisplayStyle::Plain));
    EXPECT_TRUE(isBeginning(project, ZQSortValue::Manual));
    EXPECT_FALSE(isBeginning(everything, ZQSortValue::Title)) << "which takes looking at all of them";
    EXPECT_FALSE(isBeginning(project, ZQSortValue::ImportDate));
    EXPECT_FALSE(isBeginning(everything, ZQSortValue::ImportDate, BrowserDisplayStyle::ByExtension));
    EXPECT_FALSE(of(everything, ZQSortValue::ImportDate, 4, BrowserDisplayStyle::BySidebarItem).isBeginning)
        << "it is all there is";
}

TEST_F(ContentBuilderTest, ASearchIsOneLanguageInEverySection)
{
    images[0]->setSHA1(QStringLiteral("same"));
    images[2]->setSHA1(QStringLiteral("same"));
    images[1]->setNotes(QStringLiteral("b in the notes"));
    library.context().save();
    const auto of = [this](const QList<Item> &items, const char *filter) {
        ContentQuery query{{}, QLatin1StringView(filter), ZQSortValue::Title, true};
        for (const Item &item : items) {
            query.sidebarItems.append(item->objectID());
        }
        return content(query);
    };
    for (const Item &item : {project, everything}) {
        const std::string title = item->title().toStdString();
        EXPECT_EQ(of({item}, "b -#title b"), title + ": a");
        EXPECT_EQ(of({item}, "#duplicates"), title + ": b9 b10");
        EXPECT_EQ(of({item}, "#foo ("), title + ": a b9 b10") << "wholly wrong: everything";
    }
    EXPECT_EQ(of({project, other}, "#duplicates"), "Project: b9 b10") << "one item in two projects is one";
    EXPECT_EQ(of({folder}, "a OR b10"), "Project: a b10 | Other: a");
    EXPECT_EQ(of({other, everything}, "a"), "Other: a | Library: a");
    ZQManagedObjectContext context(library.coordinator());
    const ContentQuery query{{project->objectID()}, QStringLiteral("#live"), ZQSortValue::Title, true};
    EXPECT_EQ(ContentBuilder(query, context).predicateString(nullptr), QStringLiteral(" (  ( item.managed == NO ) )"));
}

TEST_F(ContentBuilderTest, WhatCannotBeReadIsAnErrorAndWhatIsGivenUpIsNothing)
{
    const ContentQuery query{{project->objectID()}, {}, ZQSortValue::Manual, true};
    ZQManagedObjectContext context(library.coordinator());
    EXPECT_FALSE(ContentBuilder(query, context).content([] { return false; }));
    EXPECT_FALSE(ContentBuilder(query, context).rowsWithTitleBeginning(QStringLiteral("a"), [] { return false; }));
    EXPECT_EQ(ContentBuilder(query, context).rowsWithTitleBeginning(QStringLiteral("B"), [] { return true; })->size(),
              2);
    for (const char *table : {"ZQProjectItem", "ZQSidebarBaseItem"}) {
        const auto connection = library.coordinator()->newConnection();
        const auto rename = [&](const char *from, const char *to) {
            ASSERT_TRUE(connection->execute(QStringLiteral("PRAGMA legacy_alter_table=ON; ALTER TABLE %1 RENAME TO %2")
                                                .arg(QLatin1StringView(from), QLatin1StringView(to))));
        };
        rename(table, "away");
        EXPECT_EQ(content(query), "error") << table;
        ZQError error;
        const bool isExplained = ContentBuilder(query, context).predicateString(&error).has_value();
        EXPECT_EQ(isExplained, error.isNull()) << table;
        EXPECT_EQ(isExplained, QLatin1StringView(table) == "ZQProjectItem");
        ZQManagedObjectContext fresh(library.coordinator());
        EXPECT_FALSE(ContentBuilder(query, fresh).rowsWithTitleBeginning(QStringLiteral("a"), [] { return true; }));
        rename("away", table);
    }
}

#include "Classes/Browsing/Index/IndexReader.h"

#include "Classes/Browsing/Index/IndexRequests.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Tests/Classes/Browsing/BrowsingFixture.h"

namespace {

class IndexReaderTest : public BrowsingFixture
{
protected:
    IndexReaderTest()
    {
        const Item label = ZQSidebarBaseItem::tagsLabelInManagedObjectContext(library.context());
        tag = add<ZQSidebarTag>(QStringLiteral("tag"), label);
        item = library.addImage(QStringLiteral("item"));
        item->addTagsObject(zqCast<ZQSidebarTag>(tag).get());
        library.context().save();
        columns = IndexReader::readAll(library.coordinator(), nullptr);
    }
    std::optional<LibraryColumns::Changes> read(const IndexReader::Asked &asked)
    {
        ZQManagedObjectContext context(library.coordinator());
        return IndexReader::read(context, *columns, asked, &error);
    }

    Item tag;
    ZQRef<ZQLibraryImage> item;
    std::unique_ptr<LibraryColumns> columns;
    ZQError error;
};

} // namespace

TEST_F(IndexReaderTest, RowsThatCannotBeReadAreNotTakenForGone)
{
    ASSERT_TRUE(columns);
    const qint64 key = tag->objectID().key;
    const std::pair<const char *, IndexReader::Asked> cases[] = {
        {"ZQSidebarBaseItem", {{}, {key}, {}}},
        {"ZQLibraryBaseItem", {{item->objectID().key}, {}, {}}},
        {"ZQProjectItem", {{}, {}, {1}}},
    };
    for (const auto &[table, asked] : cases) {
        SCOPED_TRACE(table);
        error = {};
        library.renameTable(table, "away");
        EXPECT_FALSE(read(asked));
        EXPECT_FALSE(error.isNull());
        library.renameTable("away", table);
        EXPECT_TRUE(read(asked));
    }
    EXPECT_TRUE(read({{}, {key}, {}})->sidebar.value(key));
}

TEST_F(IndexReaderTest, WithoutAllOfItThereIsNoIndex)
{
    const QByteArray ties = library.coordinator()
                                ->managedObjectModel()
                                ->entity(ZQLibraryBaseItem::entityName())
                                ->relationship(QStringLiteral("tags"))
                                ->joinTable.toLatin1();
    for (const QByteArray &table : {ties, QByteArray("ZQSidebarBaseItem")}) { // and the items can be read
        SCOPED_TRACE(table.constData());
        error = {};
        library.renameTable(table.constData(), "away");
        EXPECT_FALSE(IndexReader::readAll(library.coordinator(), &error));
        EXPECT_FALSE(error.isNull());
        library.renameTable("away", table.constData());
        EXPECT_TRUE(IndexReader::readAll(library.coordinator(), &error));
    }
}

TEST_F(IndexReaderTest, ATagThatWasTakenForGoneIsReadAgainWhenAnItemCarriesIt)
{
    ASSERT_TRUE(columns);
    const qint64 key = tag->objectID().key;
    for (const bool isGone : {false, true}) {
        if (isGone) {
            columns->sidebar.set(key, std::nullopt);
        }
        const auto changes = read({{item->objectID().key}, {}, {}});
        ASSERT_TRUE(changes);
        EXPECT_EQ(changes->sidebar.contains(key), isGone) << "what is known is not read again";
    }
}

TEST(IndexTags, KnowWhereTheTagsEnd)
{
    IndexTags tags;
    tags.build(1, 2, {{0, 0}, {0, 1}});
    tags.removeTag(2);
    EXPECT_EQ(tags.tagsOf(0).size(), 2U);
    tags.removeTag(1);
    ASSERT_EQ(tags.tagsOf(0).size(), 1U);
    EXPECT_EQ(tags.tagsOf(0)[0], 0U);
}

TEST(IndexTags, MayBeNone)
{
    IndexTags tags;
    tags.build(2, 0, {});
    EXPECT_EQ(tags.tagCount(), 0U);
    EXPECT_TRUE(tags.tagsOf(1).empty());
}

TEST(IndexTitles, AreNotOrderedForWorkThatIsGivenUp)
{
    ZQTextBlocks texts;
    texts.append(std::string_view("b"));
    texts.append(std::string_view("a"));
    IndexTitles titles;
    {
        const auto cancellation = std::make_shared<ZQCancellation>();
        const ZQCancellation::Scope scope(cancellation);
        cancellation->cancel();
        EXPECT_FALSE(titles.build(texts));
    }
    EXPECT_FALSE(titles.isBuilt());
    EXPECT_TRUE(titles.build(texts));
    EXPECT_GT(titles.rank(0), titles.rank(1));
}

TEST(IndexOrders, TheLastOnesOfTheLatestStateAreKept)
{
    const auto order = [](quint32 row) {
        return std::make_shared<const std::vector<quint32>>(std::vector<quint32>{row});
    };
    IndexRequests::Orders orders;
    const auto kept = [&orders](quint64 generation) {
        QStringList names;
        for (const char *name : {"a", "b", "c", "d"}) {
            const auto found = orders.find(QLatin1StringView(name), generation);
            names.append(found ? QLatin1StringView(name) + QString::number(found->front()) : QString());
        }
        names.removeAll(QString());
        return names.join(u' ').toStdString();
    };
    orders.keep(QStringLiteral("a"), 1, order(1));
    orders.keep(QStringLiteral("b"), 1, order(2));
    EXPECT_EQ(kept(1), "a1 b2");
    EXPECT_EQ(kept(2), "");
    orders.keep(QStringLiteral("a"), 1, order(3));
    EXPECT_EQ(kept(1), "a3 b2") << "in the place of the one before";
    orders.keep(QStringLiteral("c"), 1, order(4));
    EXPECT_TRUE(orders.find(QStringLiteral("a"), 1));
    orders.keep(QStringLiteral("d"), 1, order(5));
    EXPECT_EQ(kept(1), "a3 c4 d5") << "without the one that was asked for the longest ago";
    orders.keep(QStringLiteral("b"), 2, order(6));
    EXPECT_EQ(kept(1), "") << "of a library that is another one by now";
    EXPECT_EQ(kept(2), "b6");
}

TEST(IndexKeys, AreFoundAmongGapsAndOutOfOrder)
{
    IndexKeys keys;
    EXPECT_FALSE(keys.rowOf(1));
    IndexKeys more;
    for (const qint64 key : {1000, 1001, 3, 1002}) {
        more.append(key);
    }
    const std::vector<qint64> all = {5, 6, 9, 20, 21, 22, 900, 1000, 1001, 3, 1002};
    for (size_t i = 0; i < 7; ++i) {
        keys.append(all[i]);
    }
    keys.appendAll(more);
    for (size_t row = 0; row < all.size(); ++row) {
        EXPECT_EQ(keys.rowOf(all[row]), std::optional(quint32(row))) << all[row];
    }
    for (const qint64 key : {-7, 0, 4, 7, 8, 10, 19, 23, 899, 901, 1003, 100000}) {
        EXPECT_FALSE(keys.rowOf(key)) << key;
    }
    EXPECT_FALSE(keys.rowOf(std::numeric_limits<qint64>::max()));
    EXPECT_FALSE(keys.rowOf(std::numeric_limits<qint64>::min()));
}

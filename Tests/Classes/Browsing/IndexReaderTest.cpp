#include "Classes/Browsing/Index/IndexReader.h"

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
    library.renameTable(ties.constData(), "away"); // and the items can be read
    EXPECT_FALSE(IndexReader::readAll(library.coordinator(), &error));
    EXPECT_FALSE(error.isNull());
    library.renameTable("away", ties.constData());
    EXPECT_TRUE(IndexReader::readAll(library.coordinator(), &error));
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

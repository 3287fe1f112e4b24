#include "Classes/Browsing/Content/SelectionSummary.h"

#include "Classes/Editing/ItemEdits.h"
#include "Tests/Classes/Browsing/BrowsingFixture.h"

#include <QFile>

namespace {

class SelectionSummaryTest : public BrowsingFixture
{
protected:
    SelectionSummary summaryOf(const QList<ZQObjectID> &items)
    {
        return *SelectionSummary::of(items, library.context(), [] { return true; });
    }
};

} // namespace

TEST_F(SelectionSummaryTest, ASummaryTellsWhatItemsShareAndWhatDiffers)
{
    const auto red = ZQSidebarTag::addNewTagWithName(QStringLiteral("Red"), library.context());
    const auto old = ZQSidebarTag::addNewTagWithName(QStringLiteral("Old"), library.context());
    const auto first = library.addImage(QStringLiteral("first"));
    const auto second = library.addImage(QStringLiteral("second"));
    library.context().save();
    const QList<ZQObjectID> items = {first->objectID(), second->objectID()};
    ItemEdits edits(editing);
    edits.changeTags(items, {red->objectID()}, {});
    edits.changeTags({items[0]}, {old->objectID()}, {});
    edits.setLicense(items, QStringLiteral("CC BY 4.0"));
    edits.setSource({items[1]}, QStringLiteral("https://example.org/a"));
    const SelectionSummary summary = summaryOf(items);
    EXPECT_EQ(summary.count, 2);
    EXPECT_EQ(summary.tags, QStringList{QStringLiteral("Red")});
    EXPECT_TRUE(summary.hasOtherTags);
    EXPECT_TRUE(summary.title.differs);
    EXPECT_TRUE(summary.source.differs);
    EXPECT_EQ(summary.license.shown(), QStringLiteral("CC BY 4.0"));
    undoStack.undo();
    undoStack.undo();
    EXPECT_EQ(summaryOf(items).license.shown(), QString());
    EXPECT_FALSE(SelectionSummary::of(items, library.context(), [] { return false; }));
}

TEST_F(SelectionSummaryTest, ASummaryCountsTheFilesThatAreNotThere)
{
    const auto there = library.addImage(QStringLiteral("there"));
    const auto empty = library.addImage(QStringLiteral("empty"), QStringLiteral("png"), "");
    const auto gone = library.addImage(QStringLiteral("gone"));
    library.context().save();
    ASSERT_TRUE(QFile::remove(gone->itemURL()));
    const SelectionSummary summary = summaryOf({there->objectID(), empty->objectID(), gone->objectID()});
    EXPECT_EQ(summary.missing, 1);
    EXPECT_EQ(summary.bytes, 7);
}

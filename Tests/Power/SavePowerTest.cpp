// What a save reports as done is there after a power cut, all of it, and of a save that was under way all or nothing.

#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Tests/Power/PowerFixture.h"

namespace {

class SavePower : public PowerTest
{
protected:
    // The same number in a title, in the members of a project and in the items of a tag.
    void saveNumber(int number)
    {
        const auto item = context().insertNewObject<ZQLibraryImage>();
        item->setTitle(QStringLiteral("item %1").arg(number));
        item->setNotes(QString(noteLength, QChar(u'a' + number % 26)));
        const auto project =
            number == 1 ? context().insertNewObject<ZQSidebarProject>() : first<ZQSidebarProject>("counted");
        project->setTitle(QStringLiteral("counted %1").arg(number));
        project->addItem(item.get());
        const auto tag = number == 1 ? context().insertNewObject<ZQSidebarTag>() : first<ZQSidebarTag>("counted");
        tag->setTitle(QStringLiteral("counted"));
        tag->addTaggedItemsObject(item.get());
        ZQError error;
        ASSERT_TRUE(context().save(&error)) << qPrintable(error.localizedDescription());
        report();
    }
    template <class T>
    ZQRef<T> first(const char *title) const
    {
        return zqFetchFirst<T>(context(), QStringLiteral("title BEGINSWITH %@"), {QString::fromLatin1(title)});
    }

    void expectNumber(int atLeast)
    {
        const auto project = first<ZQSidebarProject>("counted");
        ASSERT_TRUE(project || atLeast == 0) << "the project is gone";
        if (!project) {
            return;
        }
        const auto number = project->title().section(u' ', 1).toLongLong();
        EXPECT_GE(number, atLeast);
        EXPECT_EQ(project->pItems().size(), number);
        EXPECT_EQ(zqCount(context(), {.entityName = ZQLibraryImage::entityName()}), number);
        const auto tag = first<ZQSidebarTag>("counted");
        ASSERT_TRUE(tag);
        EXPECT_EQ(qsizetype(tag->taggedItems().size()), number);
    }

    static constexpr qsizetype noteLength = 60000; // some pages each
    static constexpr int saves = 12;
};

} // namespace

TEST_F(SavePower, KeepsWhatWasReportedAndNoPartOfMore)
{
    ASSERT_NO_FATAL_FAILURE(open());
    begin();
    for (int number = 1; number <= saves; ++number) {
        ASSERT_NO_FATAL_FAILURE(saveNumber(number));
    }
    delegate.reset(); // which writes the rest of the log back
    report();
    cutThePower([this](int reports) {
        ASSERT_NO_FATAL_FAILURE(open());
        expectWholeLibrary();
        expectNumber(std::min(reports, saves));
    });
}

TEST_F(SavePower, KeepsAFirstSaveInALibraryThatIsNew)
{
    begin();
    ASSERT_NO_FATAL_FAILURE(open());
    ASSERT_NO_FATAL_FAILURE(saveNumber(1));
    cutThePower([this](int reports) {
        ASSERT_NO_FATAL_FAILURE(open());
        expectWholeLibrary();
        expectNumber(reports);
    });
}

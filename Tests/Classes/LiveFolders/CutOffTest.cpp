// Removing a live folder, and taking that back, when the process ends between their steps.

#include "Classes/Application/Quit.h"
#include "Classes/Editing/EditContext.h"
#include "Classes/Editing/SidebarRemoval.h"
#include "Kit/Files/ZQOwnChanges.h"
#include "Tests/Classes/LiveFolders/LiveFolderFixture.h"

#include <QDirIterator>

#include <future>

namespace {

class CutOffTest : public LiveFolderTest
{
protected:
    void SetUp() override
    {
        LiveFolderTest::SetUp();
        for (int i = 0; i < count; ++i) {
            writePicture(QStringLiteral("in/%1/%2.png").arg(i % 2).arg(i));
        }
        id = add(root);
        const auto all = items();
        for (const auto &item : all) {
            adorn(context(), item, item->title());
        }
    }
    // What a removal, or a return, does to the rows is in the store; `done` of its items have followed when the process
    // ends.
    void cutOff(bool comes, int done)
    {
        ZQOperationQueue &queue = delegate->editQueue();
        EditContext edits{
            .context = context(), .user = user, .editQueue = queue, .save = [this] { return context().save(); }};
        SidebarRemoval rows(edits, {id});
        if (comes) {
            rows.remove();
        }
        std::promise<void> gate;
        queue.addOperationWithBlock([opened = gate.get_future().share()] { opened.wait(); });
        comes ? rows.putBack() : rows.remove();
        queue.cancelAllOperations();
        gate.set_value();
        queue.waitUntilAllOperationsAreFinished();
        const auto left =
            zqFetch<ZQLibraryBaseItem>(context(), QStringLiteral("managed == NO AND active == %@"), {!comes});
        ASSERT_EQ(left->size(), count);
        for (const auto &item : left->first(done)) {
            item->setActive(comes);
        }
        ASSERT_TRUE(context().save());
        reopen();
    }
    // As the next start finds it before anything was looked at.
    void quitAndOpen()
    {
        EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now);
        reopen();
        // Another process knows nothing of the tags that this one wrote a moment ago.
        for (QDirIterator files(root, QDir::Files, QDirIterator::Subdirectories); files.hasNext();) {
            ZQOwnChanges::sharedOwnChanges().forget(files.next());
        }
    }
    qsizetype itemsInStore() const
    {
        return zqFetch<ZQLibraryBaseItem>(context(), QStringLiteral("managed == NO")).value().size();
    }

    static constexpr int count = 6;
    const QString root = path(QStringLiteral("in"));
    ZQObjectID id;
};

} // namespace

TEST_F(CutOffTest, ARemovalIsCompletedByTheNextStart)
{
    cutOff(false, count / 2);
    ASSERT_EQ(items().size(), count / 2);
    manager->putAwayWhatCameTooLate();
    wait();
    EXPECT_TRUE(items().isEmpty());
    EXPECT_EQ(itemsInStore(), count) << "none is purged before the program quits";
    quitAndOpen();
    EXPECT_EQ(itemsInStore(), 0);
    id = add(root);
    expectInStep(root);
    EXPECT_EQ(items().size(), count);

    for (const int done : {0, count - 1}) {
        cutOff(false, done);
        quitAndOpen(); // too soon for anybody to have looked
        EXPECT_EQ(itemsInStore(), 0) << "without their folder nobody would find them";
        id = add(root);
    }
}

TEST_F(CutOffTest, AReturnBringsEveryItemAsItWas)
{
    for (const int done : {0, count / 2, count - 1}) {
        SCOPED_TRACE(done);
        cutOff(true, done);
        quitAndOpen();
        ASSERT_EQ(itemsInStore(), count) << "those that were not back yet are none that a person deleted";
        sync();
        expectInStep(root);
        const auto all = items();
        ASSERT_EQ(all.size(), count);
        for (const auto &item : all) {
            expectAdorned(item, item->title());
        }
    }
}

#include "Classes/Interface/ContentFetcher.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Tests/Classes/Interface/WindowFixture.h"

#include <QtTest/QTest>

#include <atomic>

namespace {

using Purpose = ContentFetcher::Purpose;

// Work that fetches on and on until a fetch is given up, as one that takes long would be in the middle.
struct LongWork
{
    std::atomic_int begun = 0;
    std::atomic_int givenUp = 0;
    std::atomic_bool mayEnd = false;
    std::atomic_int answers = 0;

    void start(ContentFetcher &fetcher, Purpose purpose)
    {
        fetcher.run(purpose, [this](ZQManagedObjectContext &context, const ContentFetcher::IsWanted &) {
            ++begun;
            ZQError error;
            while (!mayEnd && context.fetchObjectIDs(ZQFetchRequest{ZQLibraryBaseItem::entityName()}, &error)) {
            }
            givenUp += error.code == int(ZQStoreError::Cancelled) ? 1 : 0;
            return [this] { ++answers; };
        });
    }
};

class ContentFetcherTest : public WindowFixture
{
protected:
    ContentFetcherTest()
    {
        library.addImage(QStringLiteral("a"));
        library.context().save();
    }
    ~ContentFetcherTest() override { work.mayEnd = true; }

    static bool waitFor(const std::function<bool()> &condition) { return QTest::qWaitFor(condition, 20000); }
    void fetchItems(Purpose purpose)
    {
        fetcher.fetchObjectIDs(purpose, {ZQFetchRequest{ZQLibraryBaseItem::entityName()}},
                               [this](const ContentFetcher::IDs &ids) { found = ids.first().size(); });
    }

    LongWork work;
    qsizetype found = -1;
};

} // namespace

TEST_F(ContentFetcherTest, ANewRequestInterruptsTheOneBefore)
{
    work.start(fetcher, Purpose::Summary);
    ASSERT_TRUE(waitFor([&] { return work.begun == 1; }));
    fetchItems(Purpose::Summary);
    ASSERT_TRUE(waitFor([&] { return fetcher.isIdle(); })) << "it waits for what nobody wants any more";
    EXPECT_EQ(found, 1);
    EXPECT_EQ(work.givenUp, 1);
    EXPECT_EQ(work.begun, 1);
    EXPECT_EQ(work.answers, 0) << "what was given up has no answer";
}

TEST_F(ContentFetcherTest, WhatMayWaitGivesWayAndIsAnsweredAfterwards)
{
    work.start(fetcher, Purpose::TagCounts);
    ASSERT_TRUE(waitFor([&] { return work.begun == 1; }));
    fetchItems(Purpose::Content);
    ASSERT_TRUE(waitFor([&] { return found == 1 && work.begun == 2; }));
    EXPECT_EQ(work.givenUp, 1);
    work.mayEnd = true;
    ASSERT_TRUE(waitFor([&] { return fetcher.isIdle(); }));
    EXPECT_EQ(work.answers, 1);
}

TEST_F(ContentFetcherTest, WhatMattersMoreIsNotInterrupted)
{
    work.start(fetcher, Purpose::Content);
    ASSERT_TRUE(waitFor([&] { return work.begun == 1; }));
    fetchItems(Purpose::Summary);
    work.mayEnd = true;
    ASSERT_TRUE(waitFor([&] { return fetcher.isIdle(); }));
    EXPECT_EQ(work.givenUp, 0);
    EXPECT_EQ(work.answers, 1);
    EXPECT_EQ(found, 1);
}

TEST_F(ContentFetcherTest, ClosingTheWindowDoesNotWaitForWhatRuns)
{
    {
        ContentFetcher other(library.coordinator());
        work.start(other, Purpose::Content);
        ASSERT_TRUE(waitFor([&] { return work.begun == 1; }));
    }
    EXPECT_EQ(work.givenUp, 1);
}

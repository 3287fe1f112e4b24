#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Tests/Classes/Browsing/BrowsingFixture.h"

#include <QThread>
#include <QtTest/QTest>

#include <atomic>
#include <memory>

namespace {

using Priority = ContentFetcher::Priority;
using Ticket = ContentFetcher::Ticket;

// Work that fetches on and on until a fetch is given up, as one that takes long would be in the middle.
struct LongWork
{
    std::atomic_int begun = 0;
    std::atomic_int givenUp = 0;
    std::atomic_bool mayEnd = false;
    std::atomic_int answers = 0;

    void start(Ticket &ticket)
    {
        ticket.run([this](ZQManagedObjectContext &context, const Ticket::IsWanted &) {
            ++begun;
            ZQError error;
            while (!mayEnd && context.fetchObjectIDs(ZQFetchRequest{ZQLibraryBaseItem::entityName()}, &error)) {
            }
            givenUp += error.code == int(ZQStoreError::Cancelled) ? 1 : 0;
            return [this] { ++answers; };
        });
    }
};

class ContentFetcherTest : public BrowsingFixture
{
protected:
    ContentFetcherTest()
    {
        library.addImage(QStringLiteral("a"));
        library.context().save();
    }
    ~ContentFetcherTest() override { work.mayEnd = true; }

    static bool waitFor(const std::function<bool()> &condition) { return QTest::qWaitFor(condition, 20000); }
    void fetchItems(Ticket &ticket)
    {
        ticket.fetchObjectIDs({ZQFetchRequest{ZQLibraryBaseItem::entityName()}},
                              [this](const Ticket::IDs &ids) { found = ids.first().size(); });
    }

    Ticket content{fetcher, Priority::Content};
    Ticket counts{fetcher, Priority::Counts};
    Ticket summary{fetcher, Priority::Summary};
    LongWork work;
    qsizetype found = -1;
};

} // namespace

TEST_F(ContentFetcherTest, ANewRequestInterruptsTheOneBefore)
{
    work.start(summary);
    ASSERT_TRUE(waitFor([&] { return work.begun == 1; }));
    fetchItems(summary);
    ASSERT_TRUE(waitFor([&] { return fetcher.isIdle(); })) << "it waits for what nobody wants any more";
    EXPECT_EQ(found, 1);
    EXPECT_EQ(work.givenUp, 1);
    EXPECT_EQ(work.begun, 1);
    EXPECT_EQ(work.answers, 0) << "what was given up has no answer";
}

TEST_F(ContentFetcherTest, WhatMayWaitGivesWayAndIsAnsweredAfterwards)
{
    Ticket idle(fetcher, Priority::Idle); // which may take long, and keeps nobody waiting
    for (const auto &[first, other] : {std::pair{&counts, &content}, {&idle, &summary}}) {
        found = -1;
        work.begun = work.givenUp = work.answers = 0;
        work.mayEnd = false;
        work.start(*first);
        ASSERT_TRUE(waitFor([&] { return work.begun == 1; }));
        fetchItems(*other);
        ASSERT_TRUE(waitFor([&] { return found == 1 && work.begun == 2; }));
        EXPECT_EQ(work.givenUp, 1);
        work.mayEnd = true;
        ASSERT_TRUE(waitFor([&] { return fetcher.isIdle(); }));
        EXPECT_EQ(work.answers, 1);
    }
}

TEST_F(ContentFetcherTest, WhatMattersMoreIsNotInterrupted)
{
    work.start(content);
    ASSERT_TRUE(waitFor([&] { return work.begun == 1; }));
    fetchItems(summary);
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
        Ticket ticket(other, Priority::Content);
        work.start(ticket);
        ASSERT_TRUE(waitFor([&] { return work.begun == 1; }));
    }
    EXPECT_EQ(work.givenUp, 1);
}

TEST_F(ContentFetcherTest, WhatIsAskedByAnotherOwnerOfTheSamePriorityWaits)
{
    Ticket others(fetcher, Priority::Counts);
    work.start(counts);
    ASSERT_TRUE(waitFor([&] { return work.begun == 1; }));
    fetchItems(others);
    work.mayEnd = true;
    ASSERT_TRUE(waitFor([&] { return fetcher.isIdle(); }));
    EXPECT_EQ(work.givenUp, 0);
    EXPECT_EQ(work.answers, 1);
    EXPECT_EQ(found, 1);
}

TEST_F(ContentFetcherTest, AnOwnerThatIsGoneGetsNoAnswer)
{
    {
        Ticket running(fetcher, Priority::Content);
        Ticket waiting(fetcher, Priority::Summary);
        work.start(running);
        ASSERT_TRUE(waitFor([&] { return work.begun == 1; }));
        fetchItems(waiting);
    }
    ASSERT_TRUE(waitFor([&] { return fetcher.isIdle(); }));
    EXPECT_EQ(work.givenUp, 1) << "what runs for nobody ends";
    EXPECT_EQ(work.answers, 0);
    EXPECT_EQ(found, -1);
    {
        Ticket answered(fetcher, Priority::Content);
        std::atomic_bool hasRun = false;
        answered.run([&](ZQManagedObjectContext &, const Ticket::IsWanted &) {
            hasRun = true;
            return [this] { found = 0; };
        });
        while (!hasRun) { // the answer waits for the main loop, which does not run
            QThread::yieldCurrentThread();
        }
    }
    ASSERT_TRUE(waitFor([&] { return fetcher.isIdle(); }));
    EXPECT_EQ(found, -1);
}

TEST_F(ContentFetcherTest, WhatTheStoreCannotSayHasNoAnswer)
{
    int answers = 0;
    const auto countItems = [&] {
        counts.count({ZQFetchRequest{ZQLibraryBaseItem::entityName()}}, [&](const QList<qint64> &) { ++answers; });
        return waitFor([&] { return fetcher.isIdle(); });
    };
    library.renameTable("ZQLibraryBaseItem", "away");
    ASSERT_TRUE(countItems());
    EXPECT_EQ(answers, 0);
    library.renameTable("away", "ZQLibraryBaseItem");
    ASSERT_TRUE(countItems());
    EXPECT_EQ(answers, 1);
}

TEST_F(ContentFetcherTest, ATicketMayOutliveTheFetcher)
{
    auto other = std::make_unique<ContentFetcher>(library.coordinator());
    Ticket ticket(*other, Priority::Content);
    other.reset();
    fetchItems(ticket);
    EXPECT_EQ(found, -1);
}

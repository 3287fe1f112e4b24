#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQRowStream.h"
#include "Tests/Kit/Persistence/TestModel.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <sqlite3.h>
#include <thread>

namespace {

constexpr int nodes = 20000;

// Stands in for the function that folds texts: its hundredth call lets another thread cancel, and waits until it has.
struct Fold
{
    explicit Fold(ZQManagedObjectContext &context)
    {
        sqlite3_create_function_v2(ZQObjectAccess::connection(context)->handle(), "zq_fold", 2, SQLITE_UTF8, this, call,
                                   nullptr, nullptr, nullptr);
    }
    static void call(sqlite3_context *context, int, sqlite3_value **values)
    {
        auto *self = static_cast<Fold *>(sqlite3_user_data(context));
        if (++self->calls == 100 && self->cancellation) {
            std::thread([self] { self->cancellation->cancel(); }).join();
        }
        sqlite3_result_value(context, values[0]);
    }

    int calls = 0;
    std::shared_ptr<ZQCancellation> cancellation = std::make_shared<ZQCancellation>();
};

class ZQCancelledFetch : public testing::Test
{
protected:
    ZQCancelledFetch()
    {
        ZQManagedObjectContext context(store.coordinator());
        for (int i = 0; i < nodes; ++i) {
            context.insertNewObject<TestFolder>()->setTitle(QStringLiteral("node %1").arg(i));
        }
        context.save();
        request.predicate =
            ZQPredicate::predicateWithFormat(QStringLiteral("title contains[cd] %@"), {QStringLiteral("node")});
        request.sortDescriptors = {{QStringLiteral("title"), true, ZQSortDescriptor::Comparison::LocalizedStandard}};
    }

    TestStore store;
    ZQFetchRequest request{TestNode::entityName()};
};

using Fetch = std::function<bool(ZQManagedObjectContext &, const ZQFetchRequest &, ZQError *)>;
struct Way
{
    const char *name;
    Fetch fetch;
};
const Way ways[] = {
    {"objects", [](auto &context, auto &request,
                   ZQError *error) { return context.executeFetchRequest(request, error).has_value(); }},
    {"identifiers",
     [](auto &context, auto &request, ZQError *error) { return context.fetchObjectIDs(request, error).has_value(); }},
    {"with related",
     [](auto &context, auto &request, ZQError *error) {
         return context.fetchObjectIDsWithRelated(request, QStringLiteral("parent"), error).has_value();
     }},
    {"count", [](auto &context, auto &request,
                 ZQError *error) { return context.countForFetchRequest(request, error).has_value(); }},
    {"dictionaries",
     [](auto &context, auto &request, ZQError *error) {
         return context.fetchDictionaries(request, {QStringLiteral("title")}, error).has_value();
     }},
};

} // namespace

TEST_F(ZQCancelledFetch, EndsWhileItRunsAndLeavesEverythingUsable)
{
    for (const Way &way : ways) {
        SCOPED_TRACE(way.name);
        ZQManagedObjectContext context(store.coordinator());
        context.setFetchesAreCancellable(true);
        Fold fold(context);
        {
            const ZQCancellation::Scope scope(fold.cancellation);
            ZQError error;
            EXPECT_FALSE(way.fetch(context, request, &error));
            EXPECT_EQ(error.domain, ZQStoreErrorDomain);
            EXPECT_EQ(error.code, int(ZQStoreError::Cancelled));
            EXPECT_LT(fold.calls, nodes / 10) << "what was left to look at was not";
            EXPECT_FALSE(way.fetch(context, request, &error)) << "it is still not wanted";
        }
        fold.cancellation.reset();
        EXPECT_EQ(context.fetchObjectIDs(request)->size(), nodes);
        EXPECT_EQ(context.countForFetchRequest(request), nodes);
    }
    store.close();
    ASSERT_TRUE(store.coordinator());
    EXPECT_FALSE(store.coordinator()->needsCheck()) << "it was no damage";
}

TEST_F(ZQCancelledFetch, ObjectsThatWereNotFilledAreWhenTheyAreWantedAgain)
{
    ZQManagedObjectContext context(store.coordinator());
    context.setFetchesAreCancellable(true);
    const auto ids = context.fetchObjectIDs(ZQFetchRequest{TestNode::entityName()});
    const auto node = zqCast<TestNode>(context.objectWithID(ids->at(7)));
    {
        const auto cancellation = std::make_shared<ZQCancellation>();
        cancellation->cancel();
        const ZQCancellation::Scope scope(cancellation);
        EXPECT_EQ(node->title(), QString());
        context.fillFaults(*ids);
    }
    EXPECT_EQ(node->title(), QStringLiteral("node 7"));
}

TEST_F(ZQCancelledFetch, AStreamOfRowsComesToItsEndOrEndsSoon)
{
    ZQManagedObjectContext context(store.coordinator());
    const auto cancellation = std::make_shared<ZQCancellation>();
    const ZQCancellation::Scope scope(cancellation);
    int seen = 0;
    ZQError error;
    const auto readUntil = [&](int cancelled) {
        seen = 0;
        const auto visit = [&](const ZQRowStream::Row &row) {
            EXPECT_TRUE(row.text(0).starts_with("node "));
            if (++seen == cancelled) {
                cancellation->cancel();
            }
        };
        return ZQRowStream(context).rows(TestNode::entityName(), {QStringLiteral("title")}, {}, visit, &error);
    };
    EXPECT_TRUE(readUntil(nodes + 1)) << qPrintable(error.localizedDescription());
    EXPECT_EQ(seen, nodes);
    EXPECT_FALSE(readUntil(100));
    EXPECT_EQ(error.code, int(ZQStoreError::Cancelled));
    EXPECT_LT(seen, nodes / 2);
}

TEST_F(ZQCancelledFetch, SavesAndOtherContextsGoOn)
{
    const auto cancellation = std::make_shared<ZQCancellation>();
    cancellation->cancel();
    const ZQCancellation::Scope scope(cancellation);
    ZQManagedObjectContext context(store.coordinator());
    context.setFetchesAreCancellable(true);
    const auto parent = context.insertNewObject<TestFolder>();
    for (int i = 0; i < 3000; ++i) { // more steps than lie between two questions
        const auto document = context.insertNewObject<TestDocument>();
        document->setTitle(QStringLiteral("document"));
        document->setParent(parent.get());
    }
    ZQError error;
    ASSERT_TRUE(context.save(&error)) << qPrintable(error.localizedDescription());

    ZQManagedObjectContext other(store.coordinator());
    EXPECT_EQ(other.countForFetchRequest(ZQFetchRequest{TestNode::entityName()}), nodes + 3001);
    EXPECT_FALSE(context.countForFetchRequest(request));
}

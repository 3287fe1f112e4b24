// What rows of a list say of their items, while that changes.

#include "Classes/Interface/Browser/BrowserRowValues.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Tests/Classes/Interface/WindowFixture.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QtTest/QTest>

namespace {

class BrowserRowValuesTest : public WindowFixture
{
protected:
    BrowserRowValuesTest() { library.context().save(); }
    // What was asked was read; its answer has yet to arrive.
    void waitUntilRead()
    {
        QSemaphore read;
        ContentFetcher::Ticket last(fetcher, ContentFetcher::Priority::Summary);
        last.run([&read](auto &, const auto &) {
            read.release();
            return ContentFetcher::Ticket::Answer();
        });
        ASSERT_TRUE(read.tryAcquire(1, 10000));
    }
    // False when nothing had to be asked.
    bool ask()
    {
        values.want({image->objectID()});
        return !fetcher.isIdle();
    }
    void settle()
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return fetcher.isIdle(); }, 10000));
    }
    QStringList tags()
    {
        const auto *found = values.find(image->objectID());
        return found ? found->tags : QStringList{QStringLiteral("not known")};
    }

    ZQRef<ZQLibraryImage> image = library.addImage(QStringLiteral("image"));
    BrowserRowValues values{window};
};

} // namespace

TEST_F(BrowserRowValuesTest, AnAnswerFromBeforeAChangeIsAskedForAgain)
{
    ASSERT_TRUE(ask());
    ASSERT_NO_FATAL_FAILURE(waitUntilRead());
    image->addTagsObject(ZQSidebarTag::addNewTagWithName(QStringLiteral("mine"), library.context()).get());
    library.context().save();
    values.expire();
    ASSERT_NO_FATAL_FAILURE(settle());
    EXPECT_EQ(tags(), QStringList()) << "better than nothing";
    EXPECT_TRUE(ask());
    ASSERT_NO_FATAL_FAILURE(settle());
    EXPECT_EQ(tags(), QStringList{QStringLiteral("mine")});
    EXPECT_FALSE(ask());
}

TEST_F(BrowserRowValuesTest, WhatCannotBeReadIsNotKnownAndAskedForAfterTheNextChange)
{
    library.renameTable("ZQLibraryBaseItem", "away");
    ASSERT_TRUE(ask());
    ASSERT_NO_FATAL_FAILURE(settle());
    EXPECT_EQ(tags(), QStringList{QStringLiteral("not known")});
    EXPECT_FALSE(ask()) << "not with each painting";
    library.renameTable("away", "ZQLibraryBaseItem");
    values.expire();
    EXPECT_TRUE(ask());
    ASSERT_NO_FATAL_FAILURE(settle());
    EXPECT_EQ(tags(), QStringList());
}

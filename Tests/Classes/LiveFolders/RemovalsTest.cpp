#include "Classes/Application/QuestionWithdrawal.h"
#include "Tests/Classes/LiveFolders/LiveFolderFixture.h"

#include <QDir>
#include <QFile>

#include <chrono>

// What becomes of items when much of a live folder is gone at once.

TEST_F(LiveFolderTest, AsksBeforeMuchIsRemovedAtOnce)
{
    for (int i = 0; i < 60; ++i) {
        writePicture(QStringLiteral("in/many/%1.png").arg(i));
    }
    writePicture(QStringLiteral("in/a.png"));
    const QString root = path(QStringLiteral("in"));
    const ZQObjectID id = add(root);
    ASSERT_EQ(items().size(), 61);
    ASSERT_TRUE(QDir(path(QStringLiteral("in/many"))).removeRecursively());

    sync();
    ASSERT_EQ(user.questions.size(), 1);
    const auto active = [this] {
        return zqCount(context(),
                       {ZQLibraryBaseItem::entityName(),
                        ZQPredicate::predicateWithFormat(QStringLiteral("active == YES AND managed == NO"))});
    };
    EXPECT_EQ(active(), 61) << "nobody said yes";
    EXPECT_FALSE(manager->statusOfWatchedFolder(id).reason.isEmpty());
    sync();
    EXPECT_EQ(user.questions.size(), 1) << "once is enough";

    user.answerQuestion = [](const UserQuestion &question) {
        return int(question.buttons.indexOf(QStringLiteral("Remove from Library")));
    };
    sync(true);
    EXPECT_EQ(user.questions.size(), 2);
    EXPECT_EQ(active(), 1);
    expectInStep(root);
}

TEST_F(LiveFolderTest, SaysThatFilesAreGoneUntilTheyAreBackOrRemoved)
{
    const QString many = path(QStringLiteral("in/many"));
    const QString aside = path(QStringLiteral("aside"));
    for (int i = 0; i < 60; ++i) {
        writePicture(QStringLiteral("in/many/%1.png").arg(i));
    }
    writePicture(QStringLiteral("other/a.png"));
    const ZQObjectID id = add(path(QStringLiteral("in")));
    const ZQObjectID other = add(path(QStringLiteral("other")));
    makeFolder(aside);
    const auto carry = [](const QString &from, const QString &to) {
        for (const QString &name : QDir(from).entryList(QDir::Files)) {
            move(from + u'/' + name, to + u'/' + name);
        }
    };
    const auto reason = [&] { return manager->statusOfWatchedFolder(id).reason; };

    carry(many, aside);
    sync();
    ASSERT_EQ(user.questions.size(), 1);
    writePicture(QStringLiteral("in/b.png"));
    sync();
    EXPECT_FALSE(reason().isEmpty()) << "what happens elsewhere in it brings none back";
    carry(aside, many);
    sync();
    EXPECT_EQ(reason(), QString());
    expectInStep(path(QStringLiteral("in")));

    manager->removalQuestions().setQuietTime(std::chrono::hours(1));
    carry(many, aside);
    sync();
    carry(aside, many);
    manager->removalQuestions().setQuietTime(std::chrono::milliseconds(0));
    sync();
    EXPECT_EQ(user.questions.size(), 1) << "they were back before it was quiet";

    carry(many, aside);
    sync();
    EXPECT_EQ(user.questions.size(), 2) << "they were back meanwhile";
    user.answerQuestion = [](const UserQuestion &) { return 1; }; // they may go
    manager->syncRootWatchedFoldersForceSync(true);
    manager->stopSyncingWatchedFolders({other}); // which leaves the rest as it was asked for
    wait();
    EXPECT_EQ(reason(), QString());
    EXPECT_EQ(items().size(), 2);
    expectInStep(path(QStringLiteral("in")));
}

TEST_F(LiveFolderTest, AQuestionThatLostItsReasonIsTakenBack)
{
    const QString root = path(QStringLiteral("in"));
    const QString many = root + QStringLiteral("/many");
    const QString aside = path(QStringLiteral("aside"));
    for (int i = 0; i < 60; ++i) {
        writePicture(QStringLiteral("in/many/%1.png").arg(i));
    }
    writePicture(QStringLiteral("in/a.png"));
    const ZQObjectID id = add(root);
    std::function<void()> meanwhile;
    bool wasShown = true;
    user.answerQuestion = [&](const UserQuestion &question) {
        question.withdrawal->setEnd([&wasShown] { wasShown = false; });
        std::exchange(meanwhile, nullptr)();
        wait();
        return 1; // even so
    };
    const auto askWhile = [&](std::function<void()> what) {
        meanwhile = std::move(what);
        wasShown = true;
        move(many, aside);
        sync();
        EXPECT_FALSE(wasShown);
    };

    askWhile([&] {
        move(aside, many);
        manager->syncRootWatchedFolders();
    });
    EXPECT_EQ(items().size(), 61) << "they were back";
    expectInStep(root);

    askWhile([&] {
        move(root + QStringLiteral("/a.png"), path(QStringLiteral("a.png")));
        manager->syncRootWatchedFolders();
    });
    EXPECT_TRUE(folder(id)->is_missing());
    move(path(QStringLiteral("a.png")), root + QStringLiteral("/a.png"));
    move(aside, many);
    sync();
    EXPECT_EQ(items().size(), 61) << "its place was out of reach";

    askWhile([&] {
        folder(id)->deactivateFolder();
        EXPECT_TRUE(context().save());
        manager->watchedFoldersDidChange({id});
    });
    EXPECT_EQ(user.questions.size(), 3);
}

TEST_F(LiveFolderTest, ManySmallRemovalsInARowAreAskedAboutAsOne)
{
    const QString root = path(QStringLiteral("in"));
    for (int i = 0; i < 80; ++i) {
        writePicture(QStringLiteral("in/%1.png").arg(i));
    }
    add(root);
    const auto remove = [&](const QString &prefix, int first, int end) {
        for (int i = first; i < end; ++i) {
            ASSERT_TRUE(QFile::remove(root + u'/' + prefix + QString::number(i) + QStringLiteral(".png")));
        }
        sync();
    };
    remove({}, 0, 30);
    remove({}, 30, 50);
    EXPECT_TRUE(user.questions.isEmpty());
    EXPECT_EQ(items().size(), 30);
    remove({}, 50, 51);
    EXPECT_EQ(user.questions.size(), 1);
    EXPECT_EQ(items().size(), 30) << "nobody said yes";

    user.answerQuestion = [](const UserQuestion &) { return 1; }; // they may go
    sync(true);
    EXPECT_EQ(user.questions.size(), 2);
    EXPECT_EQ(items().size(), 29);
    remove({}, 51, 53);
    EXPECT_EQ(user.questions.size(), 2) << "the person knows of it";

    for (int i = 0; i < 60; ++i) {
        writePicture(QStringLiteral("in/new %1.png").arg(i));
    }
    sync();
    remove(QStringLiteral("new "), 0, 40);
    remove(QStringLiteral("new "), 40, 55);
    EXPECT_EQ(user.questions.size(), 2) << "these were not there before the first went";
    expectInStep(root);
}

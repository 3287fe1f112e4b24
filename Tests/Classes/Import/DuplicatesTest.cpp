#include "Classes/Import/TemporaryFolder.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Tests/Classes/Import/ImportFixture.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>

namespace {

class Duplicates : public ImportFixture
{
protected:
    void SetUp() override
    {
        ImportFixture::SetUp();
        source = writeImage(QStringLiteral("a.png"), {20, 20});
        import({source});
        existing = item(QStringLiteral("a"));
        ASSERT_TRUE(existing);
        again = path(QStringLiteral("again.png"));
        ASSERT_TRUE(QFile::copy(source, again));
    }

    void answer(DuplicateChoice choice)
    {
        user.answerDuplicates = [choice](const QList<DuplicatePair> &pairs) {
            return QList<DuplicateChoice>(pairs.size(), choice);
        };
    }

    QString source;
    QString again;
    ZQRef<ZQLibraryBaseItem> existing;
};

} // namespace

TEST_F(Duplicates, TheQuestionShowsWhatIsThereAndWhatIsNew)
{
    answer(DuplicateChoice::Discard);
    import({again, writeImage(QStringLiteral("other.png"), {21, 21})});
    ASSERT_EQ(user.duplicates.size(), 1);
    const DuplicatePair &pair = user.duplicates.first();
    EXPECT_EQ(pair.existingTitle, QStringLiteral("a"));
    EXPECT_EQ(pair.existingPath, existing->itemURL());
    EXPECT_EQ(pair.newTitle, QStringLiteral("again"));
    EXPECT_EQ(pair.bytes, QFileInfo(again).size());
    EXPECT_EQ(pair.pixelWidth, 20);
}

TEST_F(Duplicates, TheQuestionShowsWhereTheExistingOneIsAndBothPictures)
{
    ZQUserDefaults::standardUserDefaults().setObjectForKey(true, QStringLiteral("AlwaysMakeThumbsWhileImporting"));
    const QString large = writeImage(QStringLiteral("large.png"), {700, 30});
    const auto project = addProject(QStringLiteral("Place"));
    import({large}, project.get());
    const auto there = item(QStringLiteral("large"));
    const QString copy = path(QStringLiteral("copy.png"));
    ASSERT_TRUE(there && QFile::copy(large, copy));
    user.answerDuplicates = [&](const QList<DuplicatePair> &pairs) {
        EXPECT_TRUE(QFile::exists(pairs.first().newThumbPath));
        EXPECT_TRUE(pairs.first().newThumbPath.endsWith(QStringLiteral("/copy_thumb.png")));
        return QList<DuplicateChoice>(); // shorter than the question: what is not answered is kept
    };
    import({copy});
    ZQUserDefaults::standardUserDefaults().removeObjectForKey(QStringLiteral("AlwaysMakeThumbsWhileImporting"));
    ASSERT_EQ(user.duplicates.size(), 1);
    const DuplicatePair &pair = user.duplicates.first();
    EXPECT_EQ(pair.existingPlaces, QStringList{QStringLiteral("Place")});
    EXPECT_EQ(pair.existingThumbPath, there->thumbURL());
    EXPECT_EQ(pair.existingImportDate, there->import_date());
    EXPECT_EQ(pair.newPath, copy);
    EXPECT_EQ(pair.pixelHeight, 30);
    EXPECT_TRUE(item(QStringLiteral("copy")));
}

TEST_F(Duplicates, EveryCopyInTheBatchIsDecidedAboutAndTheQuestionsFollowTheDrop)
{
    const QString b = writeImage(QStringLiteral("b.png"), {30, 30});
    import({b});
    const QString third = path(QStringLiteral("third.png"));
    const QString otherB = path(QStringLiteral("other b.png"));
    ASSERT_TRUE(QFile::copy(source, third) && QFile::copy(b, otherB));
    user.answerDuplicates = [](const QList<DuplicatePair> &pairs) {
        return QList<DuplicateChoice>{DuplicateChoice::KeepBoth} +
               QList<DuplicateChoice>(pairs.size() - 1, DuplicateChoice::Discard);
    };
    const auto operation = import({otherB, again, third});
    ASSERT_EQ(user.duplicates.size(), 2);
    EXPECT_EQ(user.duplicates.first().newPath, otherB);
    EXPECT_EQ(titles(items()), (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("other b")}));
    EXPECT_EQ(itemDirectories().size(), 3);
    QStringList dropped = droppedPaths(operation->report());
    EXPECT_EQ(dropped, (QStringList{again, third}));
}

TEST_F(Duplicates, AreFoundAmongMoreThanOneQueryTakes)
{
    constexpr int count = 520;
    QStringList sources;
    for (int i = 0; i < count; ++i) {
        sources.append(writeImage(QStringLiteral("many/%1.png").arg(i), {2, 2}));
        const auto there = context().insertNewObject<ZQLibraryImage>();
        there->setSHA1(QString::fromLatin1(zqSHA1OfFile(sources.last())));
        there->setBundleID(QStringLiteral("there %1").arg(i));
        there->setActive(true);
    }
    delegate->saveAction();
    answer(DuplicateChoice::Discard);
    import(sources);
    EXPECT_EQ(user.duplicates.size(), count);
    EXPECT_EQ(itemDirectories().size(), 1);
}

TEST_F(Duplicates, AnOpenQuestionHoldsUpNoCaptureButWhatMayAskItself)
{
    const QString behind = writeImage(QStringLiteral("behind.png"), {21, 21});
    const QString capture = writeImage(QStringLiteral("capture.png"), {22, 22});
    const auto project = addProject(QStringLiteral("P"));
    project->setEnabled(false); // as one of the batch that asks
    delegate->saveAction();
    AImportManager &manager = AImportManager::sharedAImportManager();
    QStringList whileAsked;
    user.answerDuplicates = [&](const QList<DuplicatePair> &pairs) {
        ImportEnd end{ImportEnd::Kind::Failed, {}, {}};
        bool didEnd = false;
        manager.startImport({.paths = {behind}});
        manager.importFile(capture, {}, {}, [&](const ImportEnd &how) {
            end = how;
            didEnd = true;
        });
        QDeadlineTimer patience(std::chrono::seconds(30)); // a queue that holds it up would wait for this answer
        zqRunMainLoopUntil([&] { return didEnd || patience.hasExpired(); });
        EXPECT_TRUE(end.kind == ImportEnd::Kind::Imported) << qPrintable(end.reason);
        whileAsked = titles(items());
        EXPECT_FALSE(project->enabled());
        return QList<DuplicateChoice>(pairs.size(), DuplicateChoice::KeepBoth);
    };
    import({again});
    EXPECT_TRUE(whileAsked.contains(QStringLiteral("capture")));
    EXPECT_FALSE(whileAsked.contains(QStringLiteral("behind")));
    EXPECT_EQ(titles(items()), (QStringList{QStringLiteral("a"), QStringLiteral("again"), QStringLiteral("behind"),
                                            QStringLiteral("capture")}));
    EXPECT_EQ(itemDirectories().size(), 4);
    EXPECT_TRUE(project->enabled());
}

TEST_F(Duplicates, DiscardingLeavesOneItemAndOneDirectory)
{
    answer(DuplicateChoice::Discard);
    const auto operation = import({again});
    EXPECT_EQ(titles(items()), QStringList{QStringLiteral("a")});
    EXPECT_EQ(itemDirectories().size(), 1);
    EXPECT_EQ(droppedPaths(operation->report()), QStringList{again});
    EXPECT_TRUE(operation->report().imported().isEmpty());
    EXPECT_TRUE(user.notifications.isEmpty());
}

TEST_F(Duplicates, KeepingBothKeepsBoth)
{
    answer(DuplicateChoice::KeepBoth);
    import({again});
    EXPECT_EQ(items().size(), 2);
    EXPECT_EQ(itemDirectories().size(), 2);
}

TEST_F(Duplicates, RelinkingPutsTheOldItemAtTheDropPosition)
{
    const auto project = addProject(QStringLiteral("P"));
    import({writeImage(QStringLiteral("x.png"), {22, 22}), writeImage(QStringLiteral("y.png"), {23, 23})},
           project.get());
    answer(DuplicateChoice::Relink);
    import({again}, project.get(), 1);
    QStringList order;
    for (const auto &member : project->pItems()) {
        order.append(member->item()->title() + QString::number(member->order()));
    }
    EXPECT_EQ(order.join(u' '), QStringLiteral("x0 a1 y2"));
    EXPECT_EQ(itemDirectories().size(), 3);
}

TEST_F(Duplicates, RelinkingIntoATagTagsTheOldItem)
{
    const auto tag = addTag(QStringLiteral("T"));
    answer(DuplicateChoice::Relink);
    import({again}, tag.get());
    EXPECT_EQ(items().size(), 1);
    EXPECT_TRUE(tagTitles(*existing).contains(QStringLiteral("T")));
}

TEST_F(Duplicates, CancellingTheQuestionCancelsTheBatch)
{
    const auto operation = import({again, writeImage(QStringLiteral("other.png"), {21, 21})});
    EXPECT_EQ(titles(items()), QStringList{QStringLiteral("a")});
    EXPECT_EQ(itemDirectories().size(), 1);
    EXPECT_EQ(operation->report().dropped().size(), 2);
    EXPECT_EQ(user.notificationTexts(), QStringList{QStringLiteral("Import cancelled")});
}

TEST_F(Duplicates, AnInactiveItemIsNoDuplicate)
{
    existing->deleteSelf();
    delegate->saveAction();
    import({again});
    EXPECT_TRUE(user.duplicates.isEmpty());
    EXPECT_EQ(titles(items()), QStringList{QStringLiteral("again")});
}

TEST_F(Duplicates, TheSameFileTwiceInOneBatchIsNotAskedAbout)
{
    const QString other = writeImage(QStringLiteral("twin.png"), {24, 24});
    const QString copy = path(QStringLiteral("twin copy.png"));
    ASSERT_TRUE(QFile::copy(other, copy));
    import({other, copy});
    EXPECT_TRUE(user.duplicates.isEmpty());
    EXPECT_EQ(items().size(), 3);
}

TEST_F(Duplicates, ADiscardedTemporaryFileIsNotTakenAway)
{
    const QString temporary = path(QStringLiteral("TMPDIR/ZeltoTemporaryFolder"));
    ASSERT_FALSE(TemporaryFolder::temporaryDirectory().isEmpty());
    const QString copy = temporary + QStringLiteral("/copy.png");
    ASSERT_TRUE(QFile::copy(source, copy));
    answer(DuplicateChoice::Discard);
    import({copy});
    EXPECT_TRUE(QFile::exists(copy));
    EXPECT_EQ(items().size(), 1);
}

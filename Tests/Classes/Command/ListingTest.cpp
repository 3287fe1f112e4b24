// What commands print, in which order, and what they refuse or cannot do.

#include "Classes/Command/AbandonWatch.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Command/CommandFixture.h"

#include <QThread>

#include <atomic>

namespace {

class ListingTest : public CommandTest
{
protected:
    ZQManagedObjectContext &store() { return *delegate->managedObjectContext(); }
    ZQRef<ZQLibraryBaseItem> item(const QString &title)
    {
        return zqFetchFirst<ZQLibraryBaseItem>(store(), QStringLiteral("title == %@"), {title});
    }
    // A row of the store that another process has changed since it was read here.
    void changeElsewhere(const ZQRef<ZQLibraryBaseItem> &changed)
    {
        ZQManagedObjectContext other(delegate->persistentStoreCoordinator());
        const auto same = other.existingObjectWithID(changed->objectID());
        ASSERT_TRUE(same);
        same->setValueForKey(QStringLiteral("elsewhere"), QStringLiteral("license"));
        ASSERT_TRUE(other.save());
    }
    QStringList lines() const { return QString::fromUtf8(context.output).split(u'\n', Qt::SkipEmptyParts); }
};

} // namespace

TEST_F(ListingTest, ItemsComeByTheirImportDateAndDeletedOnesOnlyWhenAskedFor)
{
    picture(QStringLiteral("in/b.png"), qRgb(1, 2, 3));
    picture(QStringLiteral("in/a.png"), qRgb(4, 5, 6));
    picture(QStringLiteral("in/c.png"), qRgb(7, 8, 9));
    ASSERT_EQ(run("import in --json"), 0) << context.errors.constData();
    const QDateTime now = QDateTime::currentDateTimeUtc();
    for (const auto &[title, minutes] : {std::pair{"b", 1}, {"c", 2}, {"a", 3}}) {
        ASSERT_TRUE(item(QLatin1String(title)));
        item(QLatin1String(title))->setImport_date(now.addSecs(60 * minutes));
    }
    delegate->saveAction();
    ASSERT_EQ(run("items"), 0);
    ASSERT_EQ(lines().size(), 3);
    EXPECT_EQ(lines().at(1), item(QStringLiteral("c"))->bundleID() + QStringLiteral("\tc.png"));
    EXPECT_TRUE(lines().at(0).endsWith(QStringLiteral("\tb.png")) && lines().at(2).endsWith(QStringLiteral("\ta.png")));

    item(QStringLiteral("c"))->deleteSelf();
    delegate->saveAction();
    EXPECT_EQ((run("items --in PROJECTS/in"), lines().size()), 2);
    ASSERT_EQ(run("items --in PROJECTS/in --deleted"), 0);
    ASSERT_EQ(lines().size(), 1);
    EXPECT_TRUE(lines().first().endsWith(QStringLiteral("\tc.png")));
}

TEST_F(ListingTest, TheSidebarIsATreeInTheOrderOfTheWindow)
{
    picture(QStringLiteral("Brand/logo.png"), qRgb(1, 2, 3));
    ASSERT_EQ(run("import Brand"), 0);
    ASSERT_EQ(run("sidebar"), 0);
    QStringList top;
    for (const QString &line : lines()) {
        if (!line.startsWith(u' ')) {
            top.append(line);
        }
    }
    EXPECT_EQ(top.join(u' '), QStringLiteral("LIBRARY PROJECTS LIVE FOLDERS TAGS SIZES COLORS"));
    EXPECT_EQ(lines().at(lines().indexOf(QStringLiteral("LIBRARY")) + 1), QStringLiteral("  Library  (1)"));
    EXPECT_TRUE(lines().contains(QStringLiteral("  Brand  (1)")));
    ASSERT_EQ(run("sidebar --json"), 0);
    EXPECT_EQ(array().size(), 6);
    EXPECT_EQ(array().at(1).toObject().value(QStringLiteral("children")).toArray().size(), 2);
}

TEST_F(ListingTest, ImportedItemsGoToTheIndexWithValuesOfTheirType)
{
    for (const char *name : {"a", "b", "c"}) {
        picture(QStringLiteral("in/%1.png").arg(QLatin1String(name)), qRgb(int(name[0]), 5, 6));
    }
    ASSERT_EQ(run("import in/a.png in/b.png --into PROJECTS/Missing"), 2) << "there is no such project";
    ASSERT_EQ(run("import in/a.png --into PROJECTS"), 2) << "the window refuses that drop, too";
    EXPECT_TRUE(context.errors.contains("A folder takes folders and archives.")) << context.errors.constData();
    const QStringList into{QStringLiteral("--into"), QStringLiteral("PROJECTS/Sample project")};
    ASSERT_EQ(run(QStringList{QStringLiteral("import"), QStringLiteral("in/a.png"), QStringLiteral("in/b.png")} + into),
              0)
        << context.errors.constData();
    ASSERT_EQ(run(QStringList{QStringLiteral("import"), QStringLiteral("in/c.png"), QStringLiteral("--index"),
                              QStringLiteral("1"), QStringLiteral("--set"), QStringLiteral("nsfw=false"),
                              QStringLiteral("--set"), QStringLiteral("creation_date=2020-02-03T04:05:06Z")} +
                  into),
              0)
        << context.errors.constData();
    ASSERT_EQ(
        run(QStringList{QStringLiteral("items"), QStringLiteral("--in"), QStringLiteral("PROJECTS/Sample project")}),
        0);
    QStringList order;
    for (const QString &line : lines()) {
        order.append(line.section(u'\t', 1));
    }
    EXPECT_EQ(order.join(u' '), QStringLiteral("a.png c.png b.png"));
    EXPECT_FALSE(item(QStringLiteral("c"))->nsfw());
    EXPECT_EQ(item(QStringLiteral("c"))->creation_date(), QDateTime(QDate(2020, 2, 3), QTime(4, 5, 6), Qt::UTC));
    for (const char *wrong : {"creation_date=yesterday", "nsfw=perhaps", "itemURLData=x", "nothing"}) {
        EXPECT_EQ(run(QStringList{QStringLiteral("import"), QStringLiteral("in/a.png"), QStringLiteral("--set"),
                                  QLatin1String(wrong)}),
                  2)
            << wrong;
    }
}

TEST_F(ListingTest, ADocumentThatIsAFolderIsNoFolderAndABrokenLinkIsTold)
{
    QDir().mkpath(world.filePath(QStringLiteral("Old.sketch/QuickLook")));
    ASSERT_TRUE(QFile::copy(picture(QStringLiteral("in/p.png"), qRgb(9, 9, 9)),
                            world.filePath(QStringLiteral("Old.sketch/QuickLook/Preview.png"))));
    QFile data(world.filePath(QStringLiteral("Old.sketch/Data")));
    ASSERT_TRUE(data.open(QIODevice::WriteOnly) && data.write("data") == 4);
    data.close();
    ASSERT_TRUE(QFile::link(world.filePath(QStringLiteral("gone")), world.filePath(QStringLiteral("broken.png"))));
    EXPECT_EQ(run("import Old.sketch broken.png --json"), 0) << context.errors.constData();
    EXPECT_EQ(object().value(QStringLiteral("imported")).toArray().size(), 1);
    EXPECT_EQ(object().value(QStringLiteral("dropped")).toArray().size(), 1);
    EXPECT_EQ(run("verify --deep"), 0) << context.output.constData();
}

TEST_F(ListingTest, VerifyKnowsDeletedItemsAndThoseOutOfReachAndMissesThumbnails)
{
    picture(QStringLiteral("in/a.png"), qRgb(1, 2, 3));
    ASSERT_EQ(run("import in/a.png"), 0);
    item(QStringLiteral("a"))->setThumbName(QStringLiteral("lost_thumb.png"));
    const auto folder = store().insertNewObject<ZQSidebarWatchedFolder>();
    folder->setIs_missing(true);
    const auto away =
        zqCast<ZQLibraryBaseItem>(store().insertNewObjectForEntityForName(QStringLiteral("ZQLibraryImage")));
    away->setActive(true);
    away->setWatchingFolder(folder.get());
    const auto deleted =
        zqCast<ZQLibraryBaseItem>(store().insertNewObjectForEntityForName(QStringLiteral("ZQLibraryImage")));
    deleted->setActive(false);
    deleted->setBundleID(QStringLiteral("DELETED"));
    delegate->saveAction();
    QDir().mkpath(deleted->bundleURL());
    EXPECT_EQ(run("verify --json"), 1);
    const QJsonArray problems = object().value(QStringLiteral("problems")).toArray();
    ASSERT_EQ(problems.size(), 1);
    EXPECT_TRUE(problems.first().toString().contains(QStringLiteral("thumbnail")));
    EXPECT_TRUE(object().value(QStringLiteral("orphans")).toArray().isEmpty());
    EXPECT_EQ(object().value(QStringLiteral("items")).toInt(), 1);
}

TEST_F(ListingTest, VerifyLooksAtEveryItemOfALargeLibrary)
{
    for (int i = 0; i < 501; ++i) {
        const auto lost =
            zqCast<ZQLibraryBaseItem>(store().insertNewObjectForEntityForName(QStringLiteral("ZQLibraryImage")));
        lost->setActive(true);
    }
    delegate->saveAction();
    EXPECT_EQ(run("verify --json"), 1);
    EXPECT_EQ(object().value(QStringLiteral("items")).toInt(), 501);
    EXPECT_EQ(object().value(QStringLiteral("problems")).toArray().size(), 501);
}

TEST_F(ListingTest, AChangeThatCannotBeSavedIsTakenBack)
{
    picture(QStringLiteral("in/a.png"), qRgb(1, 2, 3));
    ASSERT_EQ(run("import in/a.png"), 0);
    const auto made = item(QStringLiteral("a"));
    const auto connection = delegate->persistentStoreCoordinator()->newConnection();
    ASSERT_TRUE(connection->execute(QStringLiteral("CREATE TRIGGER refuse BEFORE UPDATE ON ZQLibraryBaseItem "
                                                   "BEGIN SELECT RAISE(ABORT, 'full'); END")));
    EXPECT_NE(run(QStringList{QStringLiteral("delete"), made->bundleID()}), 0);
    EXPECT_FALSE(context.errors.isEmpty());
    EXPECT_FALSE(store().hasChanges());
    EXPECT_EQ((run("items --json"), array().size()), 1);
    ASSERT_TRUE(connection->execute(QStringLiteral("DROP TRIGGER refuse")));
    ASSERT_NO_FATAL_FAILURE(changeElsewhere(made));
    EXPECT_EQ(run(QStringList{QStringLiteral("delete"), made->bundleID()}), 0) << "it sees what others saved";
    EXPECT_EQ((run("items --json"), array().size()), 0);
}

TEST_F(ListingTest, WhoGaveUpIsSeenInWhateverLoopRuns)
{
    bool isGone = false;
    int cancelled = 0;
    context = {};
    context.isAbandoned = [&isGone] { return isGone; };
    const AbandonWatch watch(context, [&cancelled] { ++cancelled; });
    zqRunMainLoopFor(std::chrono::milliseconds(60));
    EXPECT_EQ(cancelled, 0);
    isGone = true;
    zqRunMainLoopUntil([&cancelled] { return cancelled > 1; });
    EXPECT_GT(cancelled, 1) << "also when the first time was too early";
}

TEST_F(ListingTest, AnImportThatItsAskerGaveUpKeepsNothing)
{
    picture(QStringLiteral("in/a.png"), qRgb(1, 2, 3));
    CommandLine commandLine;
    context = {};
    context.delegate = delegate.get();
    context.workingDirectory = world.path();
    std::atomic<int> asked = 0;
    context.isAbandoned = [&asked] { return ++asked > 0; };
    delegate->backgroundOperationQueue().addOperationWithBlock([&asked] { // until it was told for certain
        while (asked < 2) {
            QThread::msleep(1);
        }
    });
    int status = 0;
    ASSERT_TRUE(commandLine.parse({QStringLiteral("import"), QStringLiteral("in/a.png")}, context, &status));
    EXPECT_NE(commandLine.run(context), 0);
    EXPECT_TRUE(context.errors.contains("cancelled")) << context.errors.constData();
    EXPECT_EQ((run("items --json"), array().size()), 0);
}

TEST_F(ListingTest, AnImportThatIsGivenUpOnItsWayNamesNotEveryFile)
{
    QStringList arguments = {QStringLiteral("import")};
    for (int i = 0; i < 150; ++i) {
        arguments.append(picture(QStringLiteral("in/%1.png").arg(i), qRgb(i, 2, 3)));
    }
    CommandLine commandLine;
    context = {};
    context.delegate = delegate.get();
    context.workingDirectory = world.path();
    context.isAbandoned = [library = delegate->libraryDirectory()] { // once it has begun
        return !QDir(library).entryList(QDir::Dirs | QDir::NoDotAndDotDot).isEmpty();
    };
    int status = 0;
    ASSERT_TRUE(commandLine.parse(arguments, context, &status));
    EXPECT_NE(commandLine.run(context), 0);
    EXPECT_TRUE(context.output.contains(" files: The import was cancelled.")) << context.output.constData();
    EXPECT_LT(context.output.count('\n'), 20);
}

#include "Classes/Application/RatingFiller.h"
#include "Classes/Tags/OpenMeta.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Kit/Persistence/ZQStoreIndexes.h"
#include "Models/DataModel/ZQModel.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Models/DataModel/_ZQEntities.h"
#include "Tests/Classes/Application/ApplicationFixture.h"
#include "Tests/Support/DamagedStore.h"

#include <QFile>
#include <QTimer>

#include <algorithm>
#include <optional>

namespace {

class OlderLibrary : public ApplicationTest
{
protected:
    QString store() const { return defaultBundle() + QStringLiteral("/storedata"); }
    QString file(int number) const { return world.filePath(QStringLiteral("file %1.png").arg(number)); }
    // A library that the model `version` wrote: items that refer to `file(0)` and on, titled "file 0" and on.
    void makeLibrary(const char *version, int count)
    {
        zqRegisterEntities();
        QDir().mkpath(defaultBundle() + QStringLiteral("/Library"));
        ZQError error;
        const auto coordinator =
            ZQPersistentStoreCoordinator::open(zqModelVersion(QLatin1String(version)), store(), {}, &error);
        ASSERT_TRUE(coordinator) << qPrintable(error.localizedDescription());
        ZQManagedObjectContext context(coordinator);
        for (int i = 0; i < count; ++i) {
            QFile made(file(i));
            ASSERT_TRUE(made.open(QIODevice::WriteOnly));
            ASSERT_TRUE(made.setFileTime(QDateTime::currentDateTimeUtc().addYears(-1), QFile::FileModificationTime));
            const auto item = context.insertNewObject<ZQLibraryImage>();
            item->setTitle(QStringLiteral("file %1").arg(i));
            item->setManaged(false);
            item->setActive(true);
            item->setItemURLData(zqDataForPersistentURL(file(i)));
        }
        ASSERT_TRUE(context.save(&error)) << qPrintable(error.localizedDescription());
    }
    // One that Version7 wrote, with `count` items of one file that is rated 3.
    void makeRatedLibrary(int count)
    {
        makeLibrary("Version7", 1);
        OpenMeta::setRating(3, file(0));
        ZQManagedObjectContext context(
            ZQPersistentStoreCoordinator::open(zqModelVersion(QStringLiteral("Version7")), store()));
        const QByteArray reference = zqDataForPersistentURL(file(0));
        for (int i = 1; i < count; ++i) {
            const auto item = context.insertNewObject<ZQLibraryImage>();
            item->setManaged(false);
            item->setItemURLData(reference);
        }
        ASSERT_TRUE(context.save());
    }
    // In the order of their keys.
    static QList<ZQObjectID> identifiers(ZQManagedObjectContext &context)
    {
        auto ids = context.fetchObjectIDs({ZQLibraryBaseItem::entityName()}).value_or(QList<ZQObjectID>());
        std::sort(ids.begin(), ids.end(), [](const auto &a, const auto &b) { return a.key < b.key; });
        return ids;
    }
    static int ratingOf(const ZQObjectID &id, ZQManagedObjectContext &context)
    {
        const auto item = zqCast<ZQLibraryBaseItem>(context.objectWithID(id));
        return item ? item->rating() : -1;
    }
    static void rate(const ZQObjectID &id, qint16 rating, ZQManagedObjectContext &context)
    {
        zqCast<ZQLibraryBaseItem>(context.objectWithID(id))->setRating(rating);
        ASSERT_TRUE(context.save());
    }
    static QList<ZQRef<ZQLibraryBaseItem>> items(tamberin_AppDelegate &delegate)
    {
        return delegate.managedObjectContext()
            ->fetch<ZQLibraryBaseItem>({ZQLibraryBaseItem::entityName(), {}, {{QStringLiteral("title")}}})
            .value_or(QList<ZQRef<ZQLibraryBaseItem>>());
    }
    static QDateTime birthOf(const QString &path)
    {
        return QDateTime::fromMSecsSinceEpoch(zqFileDates(path)->birth, Qt::UTC);
    }
    QStringList copies() const
    {
        return QDir(defaultBundle()).entryList({QStringLiteral("storedata.before-*")}, QDir::Files);
    }
    static QStringList pending(const ZQPersistentStoreCoordinator &coordinator)
    {
        return coordinator.pendingVersions().value_or(QStringList{QStringLiteral("?")});
    }
    static QStringList pending(tamberin_AppDelegate &delegate)
    {
        return pending(*delegate.persistentStoreCoordinator());
    }
};

} // namespace

TEST_F(OlderLibrary, GetsWhatEveryVersionItPassedBrought)
{
    makeLibrary("Version5", 3);
    QFile::remove(file(2));
    int progresses = 0;
    user.onBeginProgress = [&](const auto &) { ++progresses; };
    const auto delegate = launched();
    const auto all = items(*delegate);
    ASSERT_EQ(all.size(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(all[i]->thumbName(), QStringLiteral("file %1_thumb.png").arg(i));
        EXPECT_EQ(all[i]->creation_date(), i == 2 ? QDateTime() : birthOf(file(i))) << i;
    }
    EXPECT_GE(progresses, 3) << "for the store itself and for each version";
    zqRunMainLoopUntil([&] { return pending(*delegate).isEmpty(); });
    zqRunMainLoopUntil([&] { return copies().isEmpty(); });
}

TEST_F(OlderLibrary, OneThatOnlyLacksSmartFoldersHasNothingToBeFilledIn)
{
    makeLibrary("Version8", 2);
    const auto delegate = launched();
    EXPECT_EQ(items(*delegate).size(), 2);
    EXPECT_EQ(pending(*delegate), QStringList());
    EXPECT_EQ(copies(), QStringList());
}

TEST_F(OlderLibrary, OneWhosePicturesWereNeverLookedAtOpensWithoutWaitingForThat)
{
    makeLibrary("Version9", 2);
    const auto delegate = launched();
    for (const auto &item : items(*delegate)) {
        EXPECT_TRUE(item->pictureHash().isNull());
        item->setPictureHash(QByteArray(""));
    }
    EXPECT_EQ(pending(*delegate), QStringList());
    EXPECT_EQ(copies(), QStringList()) << "nothing of the old form is needed for it";
    delegate->saveAction();
    ZQManagedObjectContext again(delegate->persistentStoreCoordinator());
    const auto left = again.fetchObjectIDs(
        {ZQLibraryBaseItem::entityName(), ZQPredicate::predicateWithFormat(QStringLiteral("pictureHash == nil"))});
    ASSERT_TRUE(left);
    EXPECT_TRUE(left->isEmpty()) << "what shows nothing is not what was not looked at";
}

TEST_F(OlderLibrary, ALargeOneIsGivenItsIndexesWhileTheWindowAnswers)
{
    makeLibrary("Version10", 1);
    auto writer = ZQSQLiteConnection::open(store(), ZQSQLiteConnection::Mode::ReadWrite, nullptr);
    ASSERT_TRUE(writer->execute(QStringLiteral("DROP INDEX zq_index_ZQLibraryBaseItem_SHA1; "
                                               "UPDATE ZQLibraryBaseItem SET itemURLData = zeroblob(40000000)")));
    writer->value(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
    // Making it has to wait until the main loop lets it.
    ASSERT_TRUE(writer->execute(QStringLiteral("BEGIN IMMEDIATE")));
    user.onBeginProgress = [&writer](const auto &) { QTimer::singleShot(1000, [&writer] { writer.reset(); }); };
    const auto delegate = application();
    const auto coordinator = delegate->persistentStoreCoordinator();
    ASSERT_TRUE(coordinator);
    EXPECT_FALSE(writer) << "the window did not answer meanwhile";
    EXPECT_TRUE(zqHasIndexes(*coordinator->newConnection(), *zqCurrentModel()));
}

TEST_F(OlderLibrary, OneWhoseMigrationIsCancelledIsAsItWasAndMigratesTheNextTime)
{
    makeLibrary("Version5", 3);
    {
        const auto writer = ZQSQLiteConnection::open(store(), ZQSQLiteConnection::Mode::ReadWrite, nullptr);
        ASSERT_TRUE(writer->execute(QStringLiteral("UPDATE ZQLibraryBaseItem SET itemURLData = zeroblob(40000000) "
                                                   "WHERE title = 'file 2'")));
        writer->value(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
    }
    const auto before = ZQPersistentStoreCoordinator::metadataForStoreAtPath(store());
    ASSERT_TRUE(before);
    for (const bool byPerson : {true, false}) {
        ApplicationParts parts = partsOfAll();
        user.onBeginProgress = {};
        if (byPerson) {
            user.onBeginProgress = [](const std::function<void()> &cancel) { cancel(); };
        } else {
            parts.isEndWanted = [] { return true; };
        }
        tamberin_AppDelegate delegate(parts);
        EXPECT_FALSE(delegate.managedObjectContext());
        EXPECT_TRUE(user.errors.isEmpty()) << "nothing failed";
        const auto after = ZQPersistentStoreCoordinator::metadataForStoreAtPath(store());
        EXPECT_TRUE(after && after->entityVersionHashes == before->entityVersionHashes);
        EXPECT_EQ(copies(), QStringList());
    }
    user.onBeginProgress = {};
    const auto delegate = launched();
    EXPECT_EQ(items(*delegate).size(), 3);
    EXPECT_EQ(items(*delegate).value(0)->thumbName(), QStringLiteral("file 0_thumb.png"));
}

TEST_F(OlderLibrary, WhatIsFilledInEndsWithABatchWhenCancelled)
{
    constexpr int moreThanOneSave = 1001;
    makeLibrary("Version6", moreThanOneSave);
    const auto named = [](tamberin_AppDelegate &delegate) {
        const auto all = items(delegate);
        return std::count_if(all.begin(), all.end(), [](const auto &item) { return !item->thumbName().isEmpty(); });
    };
    {
        user.onBeginProgress = [](const std::function<void()> &cancel) { cancel(); };
        const auto delegate = application();
        delegate->checkModelMigration();
        EXPECT_EQ(named(*delegate), moreThanOneSave - 1);
        EXPECT_TRUE(pending(*delegate).contains(QStringLiteral("Version7")));
    }
    user.onBeginProgress = {};
    const auto delegate = application();
    delegate->checkModelMigration();
    EXPECT_EQ(named(*delegate), moreThanOneSave);
    EXPECT_FALSE(pending(*delegate).contains(QStringLiteral("Version7")));
}

TEST_F(OlderLibrary, GetsItForEveryItemAlsoOfMoreThanOneSave)
{
    constexpr int moreThanOneSave = 1001;
    makeLibrary("Version6", moreThanOneSave);
    const auto delegate = application();
    delegate->checkModelMigration();
    const auto all = items(*delegate);
    EXPECT_EQ(all.size(), moreThanOneSave);
    for (const auto &item : all) {
        ASSERT_EQ(item->thumbName(), item->title() + QStringLiteral("_thumb.png"));
    }
}

TEST_F(OlderLibrary, StopsAtTheFirstStepThatCannotBeSavedAndSaysSo)
{
    makeLibrary("Version5", 2);
    ASSERT_TRUE(ZQPersistentStoreCoordinator::open(zqCurrentModel(), store())); // migrated, and all is still to do
    {
        const auto delegate = application();
        const auto coordinator = delegate->persistentStoreCoordinator();
        std::optional<RefusingStore> refusing; // during the first step alone
        int steps = 0;
        user.onBeginProgress = [&](const auto &) {
            refusing.reset();
            if (++steps == 1) {
                refusing.emplace(store(), QStringList{QStringLiteral("ZQLibraryBaseItem")});
            }
        };
        delegate->checkModelMigration();
        refusing.reset();
        user.onBeginProgress = {};
        EXPECT_EQ(user.errors.size(), 1);
        EXPECT_TRUE(items(*delegate).first()->thumbName().isEmpty());
        EXPECT_FALSE(copies().isEmpty());
    }
    const auto delegate = application();
    delegate->checkModelMigration();
    EXPECT_EQ(items(*delegate).first()->creation_date(), birthOf(file(0)));
    EXPECT_EQ(items(*delegate).first()->thumbName(), QStringLiteral("file 0_thumb.png"));
}

TEST_F(OlderLibrary, FindsFilesThatMovedIntoALiveFolder)
{
    makeLibrary("Version5", 1);
    const QString deep = world.filePath(QStringLiteral("a/b/c/d/e"));
    const QString live = world.filePath(QStringLiteral("live"));
    ASSERT_TRUE(QDir().mkpath(deep) && QDir().mkpath(live));
    ASSERT_TRUE(QFile::rename(file(0), deep + QStringLiteral("/file.png")));
    {
        ZQManagedObjectContext context(
            ZQPersistentStoreCoordinator::open(zqModelVersion(QStringLiteral("Version5")), store()));
        const auto item = context.fetch<ZQLibraryBaseItem>({ZQLibraryBaseItem::entityName()})->first();
        item->setItemURLData(zqDataForPersistentURL(deep + QStringLiteral("/file.png")));
        const auto folder = ZQSidebarWatchedFolder::newSidebarWatchedFolderForPath(live, context);
        folder->setIs_root(true);
        folder->setActive(true);
        ASSERT_TRUE(context.save());
    }
    const QString moved = world.filePath(QStringLiteral("live by now"));
    ASSERT_TRUE(QFile::rename(live, moved));
    ASSERT_TRUE(QFile::rename(deep + QStringLiteral("/file.png"), moved + QStringLiteral("/other.png")));
    const auto delegate = application();
    delegate->checkModelMigration();
    EXPECT_EQ(items(*delegate).first()->creation_date(), birthOf(moved + QStringLiteral("/other.png")));
    EXPECT_TRUE(items(*delegate).first()->itemURL().isEmpty()) << "only for as long as the library is brought along";
}

TEST_F(OlderLibrary, KeepsWhatItsOwnVersionHad)
{
    const QDateTime date = QDateTime::fromSecsSinceEpoch(1'000'000, Qt::UTC);
    makeLibrary("Version6", 1);
    {
        ZQManagedObjectContext context(
            ZQPersistentStoreCoordinator::open(zqModelVersion(QStringLiteral("Version6")), store()));
        context.fetch<ZQLibraryBaseItem>({ZQLibraryBaseItem::entityName()})->first()->setCreation_date(date);
        ASSERT_TRUE(context.save());
    }
    const auto delegate = launched();
    const auto item = items(*delegate).first();
    EXPECT_EQ(item->creation_date(), date);
    EXPECT_EQ(item->thumbName(), QStringLiteral("file 0_thumb.png"));
}

TEST_F(OlderLibrary, IsFinishedByTheNextLaunchWhenOneWasCutOff)
{
    makeLibrary("Version5", 3);
    {
        // The store was migrated; of what belongs in it one item was done, and another came since.
        ZQManagedObjectContext context(ZQPersistentStoreCoordinator::open(zqCurrentModel(), store()));
        const auto first = context.fetch<ZQLibraryBaseItem>(
            {ZQLibraryBaseItem::entityName(), ZQPredicate::predicateWithFormat(QStringLiteral("title == 'file 0'"))});
        first->first()->setThumbName(QStringLiteral("own.jpg"));
        context.insertNewObject<ZQLibraryImage>()->setTitle(QStringLiteral("new"));
        ASSERT_TRUE(context.save());
    }
    EXPECT_EQ(copies(), QStringList{QStringLiteral("storedata.before-Version5")});
    const auto delegate = launched();
    const auto all = items(*delegate);
    ASSERT_EQ(all.size(), 4);
    EXPECT_EQ(all[0]->thumbName(), QStringLiteral("own.jpg"));
    EXPECT_EQ(all[0]->creation_date(), birthOf(file(0)));
    EXPECT_EQ(all[1]->thumbName(), QStringLiteral("file 1_thumb.png"));
    EXPECT_TRUE(all[3]->thumbName().isEmpty()) << "it never lacked what the migration brought";
    zqRunMainLoopUntil([&] { return copies().isEmpty(); });
}

TEST_F(OlderLibrary, KeepsTheCopyFromBeforeUntilTheLastOfItIsFilledIn)
{
    makeLibrary("Version5", 2);
    const QStringList copy{QStringLiteral("storedata.before-Version5")};
    const auto delegate = application();
    delegate->checkModelMigration();
    EXPECT_EQ(pending(*delegate), QStringList{RatingFiller::version});
    EXPECT_EQ(copies(), copy);
    const auto coordinator = delegate->persistentStoreCoordinator();
    RatingFiller filler(coordinator, [](const ZQContextDidSave &) {});
    EXPECT_FALSE(filler.run([] { return false; }));
    EXPECT_EQ(copies(), copy);
    EXPECT_TRUE(filler.run([] { return true; }));
    EXPECT_TRUE(pending(*delegate).isEmpty());
    EXPECT_TRUE(copies().isEmpty());
}

TEST_F(OlderLibrary, IsLeftToALaterLaunchWhileItCannotSayWhatItOwes)
{
    makeLibrary("Version5", 2);
    OpenMeta::setRating(4, file(1));
    ASSERT_TRUE(ZQPersistentStoreCoordinator::open(zqCurrentModel(), store()));
    for (const char *key : {"pendingVersions", "lastKeysBeforeMigration"}) {
        SCOPED_TRACE(key);
        makeEntriesUnreadable({QLatin1String(key)}, store());
        {
            const auto delegate = application();
            delegate->checkModelMigration();
            RatingFiller filler(delegate->persistentStoreCoordinator(), [](const ZQContextDidSave &) {});
            EXPECT_FALSE(filler.run([] { return true; }));
        }
        makeEntriesReadable(store());
        EXPECT_EQ(copies().size(), 1);
    }
    const auto delegate = application();
    delegate->checkModelMigration();
    RatingFiller filler(delegate->persistentStoreCoordinator(), [](const ZQContextDidSave &) {});
    EXPECT_TRUE(filler.run([] { return true; }));
    const auto all = items(*delegate);
    EXPECT_EQ(all[0]->creation_date(), birthOf(file(0)));
    EXPECT_EQ(all[1]->rating(), 4);
}

TEST_F(OlderLibrary, TakesTheRatingsOfItsFilesBesideTheWindowAndGoesOnWhereItStopped)
{
    makeLibrary("Version7", 3);
    for (int i = 0; i < 3; ++i) {
        OpenMeta::setRating(3 + i % 2, file(i));
    }
    {
        const auto coordinator = ZQPersistentStoreCoordinator::open(zqCurrentModel(), store());
        ZQManagedObjectContext context(coordinator);
        const auto first = context.fetch<ZQLibraryBaseItem>(
            {ZQLibraryBaseItem::entityName(), ZQPredicate::predicateWithFormat(QStringLiteral("title == 'file 0'"))});
        first->first()->setRating(1);
        ASSERT_TRUE(context.save());
        RatingFiller filler(coordinator, [](const ZQContextDidSave &) {});
        EXPECT_FALSE(filler.run([] { return false; }));
        EXPECT_TRUE(pending(*coordinator).contains(RatingFiller::version));
    }
    const auto delegate = launched();
    const auto all = items(*delegate);
    zqRunMainLoopUntil([&] { return pending(*delegate).isEmpty() && all[2]->rating() != 0; });
    EXPECT_EQ(all[0]->rating(), 1);
    EXPECT_EQ(all[1]->rating(), 4);
    EXPECT_EQ(all[2]->rating(), 3);
    EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now);
}

TEST_F(OlderLibrary, TakesNoRatingTwiceAndNoneForLaterItems)
{
    makeRatedLibrary(650);
    const auto delegate = application();
    const auto coordinator = delegate->persistentStoreCoordinator();
    RatingFiller filler(coordinator, [](const ZQContextDidSave &) {});
    int files = 0;
    EXPECT_FALSE(filler.run([&] { return ++files <= 450; })); // in the midst of the second save's
    ZQManagedObjectContext context(coordinator);
    const QList<ZQObjectID> ids = identifiers(context);
    ASSERT_EQ(ids.size(), 650);
    EXPECT_EQ(coordinator->pendingProgress(RatingFiller::version), ids[299].key);
    EXPECT_EQ(ratingOf(ids[300], context), 0);
    rate(ids[299], 0, context); // by a person, who meant it
    const auto later = context.insertNewObject<ZQLibraryImage>();
    later->setManaged(false);
    later->setItemURLData(zqDataForPersistentURL(file(0)));
    ASSERT_TRUE(context.save());
    EXPECT_TRUE(filler.run([] { return true; }));
    context.reset();
    EXPECT_EQ(ratingOf(ids[298], context), 3);
    EXPECT_EQ(ratingOf(ids[299], context), 0);
    EXPECT_EQ(ratingOf(ids[300], context), 3);
    EXPECT_EQ(ratingOf(ids[649], context), 3);
    EXPECT_EQ(ratingOf(identifiers(context)[650], context), 0);
    EXPECT_FALSE(pending(*coordinator).contains(RatingFiller::version));
}

TEST_F(OlderLibrary, NotesNowAndThenHowFarItsRatingsAre)
{
    makeRatedLibrary(3301);
    const auto delegate = application();
    const auto coordinator = delegate->persistentStoreCoordinator();
    QList<qint64> notes;
    const auto look = [&](const ZQContextDidSave &) {
        const qint64 note = coordinator->pendingProgress(RatingFiller::version).value_or(-1);
        if (!notes.contains(note)) {
            notes.append(note);
        }
    };
    EXPECT_TRUE(RatingFiller(coordinator, look).run([] { return true; }));
    ZQManagedObjectContext context(coordinator);
    EXPECT_EQ(notes, (QList<qint64>{0, identifiers(context)[2999].key}))
        << "a killed process loses little, and a library is not written twice";
}

TEST_F(OlderLibrary, YieldsToAPersonWhoChangesAnItemMeanwhile)
{
    for (const int changes : {2, 3}) {
        SCOPED_TRACE(changes);
        QFile::remove(store());
        makeRatedLibrary(1);
        const auto delegate = application();
        const auto coordinator = delegate->persistentStoreCoordinator();
        ZQManagedObjectContext person(coordinator);
        const ZQObjectID id = identifiers(person).first();
        int reads = 0;
        const bool isDone = RatingFiller(coordinator, [](const ZQContextDidSave &) {}).run([&] {
            if (++reads <= changes) {
                zqCast<ZQLibraryBaseItem>(person.objectWithID(id))->setTitle(QString::number(reads));
                EXPECT_TRUE(person.save());
            }
            return true;
        });
        EXPECT_EQ(isDone, changes < 3);
        ZQManagedObjectContext context(coordinator);
        EXPECT_EQ(ratingOf(id, context), isDone ? 3 : 0);
        EXPECT_EQ(pending(*coordinator).contains(RatingFiller::version), !isDone);
    }
}

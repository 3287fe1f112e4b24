#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQStoreCheck.h"
#include "Kit/Persistence/ZQStoreReplacement.h"
#include "Tests/Kit/Persistence/TestModel.h"
#include "Tests/Support/DamagedStore.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QtEndian>

#include <chrono>
#include <csignal>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

const QString wal = QStringLiteral("-wal");

void damageTag(const QString &path, int number)
{
    damagePageHolding("tag " + QByteArray::number(number) + " tag", StorePage::Table, path);
}

qint64 countOf(TestStore &store, const char *entity)
{
    ZQManagedObjectContext context(store.coordinator());
    return context.countForFetchRequest({QLatin1String(entity)}).value_or(-1);
}

QStringList filesOf(const TestStore &store)
{
    return QDir(store.folder.path()).entryList(QDir::Files, QDir::Name);
}

// The first leaf of each tree in which what a many-to-many relationship ties is kept.
void damageFirstLinks(const QString &path)
{
    const auto pages = [&path] {
        QList<qint64> roots;
        const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
        ZQSQLiteStatement tree = connection->prepare(QStringLiteral(
            "SELECT rootpage FROM sqlite_master WHERE tbl_name LIKE 'zq\\_join%' ESCAPE '\\' AND rootpage > 0"));
        while (tree.next()) {
            roots.append(tree.int64(0));
        }
        return roots;
    }();
    ASSERT_FALSE(pages.isEmpty());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const QByteArray all = file.readAll();
    for (const qint64 root : pages) {
        constexpr int interiorOfIndex = 2;
        constexpr int firstCell = 12; // where it begins
        const char *const page = all.constData() + (root - 1) * storePageSize;
        ASSERT_EQ(page[0], interiorOfIndex);
        const auto leaf = qFromBigEndian<quint32>(page + qFromBigEndian<quint16>(page + firstCell));
        ASSERT_TRUE(file.seek((qint64(leaf) - 1) * storePageSize));
        ASSERT_EQ(file.write(QByteArray(storePageSize, '\x5A')), storePageSize);
    }
}

} // namespace

TEST(ZQStoreDamage, WhatAKilledRecoveryLeftGoesWithTheNextOpeningOfTheStore)
{
    TestStore store;
    QStringList left;
    for (const char *name : {".recovering", ".recovering-wal", ".recovering-shm", ".recovering-journal",
                             ".recovering-source", ".recovering-source-wal"}) {
        left.append(QStringLiteral("storedata") + QLatin1String(name));
    }
    left.append(QStringLiteral("storedata.recovering-mine"));
    for (const QString &name : std::as_const(left)) {
        QFile file(store.folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    left.sort();
    fillTestTags(store, 1);
    store.close();
    EXPECT_EQ(filesOf(store), QStringList{QStringLiteral("storedata")} + left)
        << "beside no store it may be all there is";
    ASSERT_TRUE(store.coordinator());
    store.close();
    EXPECT_EQ(filesOf(store), (QStringList{QStringLiteral("storedata"), QStringLiteral("storedata.recovering-mine")}));
}

TEST(ZQStoreDamage, AStoreCutShortIsReportedAndRecovered)
{
    TestStore store;
    fillTestTags(store, 2000);
    store.close();
    const qint64 size = QFileInfo(store.path).size();
    ASSERT_TRUE(QFile::resize(store.path, size * 2 / 3));
    EXPECT_FALSE(store.coordinator());
    EXPECT_EQ(store.error.code, int(ZQStoreError::Damaged)) << qPrintable(store.error.localizedDescription());
    const QByteArray before = contentOfFile(store.path);
    ZQError error;
    const auto report = ZQPersistentStoreCoordinator::recoverStoreAtPath(store.model, store.path, &error);
    ASSERT_TRUE(report) << qPrintable(error.localizedDescription());
    EXPECT_EQ(contentOfFile(report->keptPath), before);
    ASSERT_TRUE(store.coordinator()) << qPrintable(store.error.localizedDescription());
    EXPECT_TRUE(store.coordinator()->checkIntegrity().isEmpty());
    ZQManagedObjectContext context(store.coordinator());
    const auto tags = context.fetch<TestTag>({QStringLiteral("TestTag")});
    EXPECT_GT(tags->size(), 100);
    EXPECT_LT(tags->size(), 2000);
    for (const auto &tag : *tags) {
        EXPECT_EQ(tag->name(), QStringLiteral("tag %1 ").arg(tag->weight()).repeated(20));
    }
    const auto next = context.insertNewObject<TestTag>();
    next->setName(QStringLiteral("next"));
    EXPECT_TRUE(context.save());
}

TEST(ZQStoreDamage, PagesOverwrittenInTheMiddleCostOnlyTheirRowsAndNoKeyIsUsedAgain)
{
    TestStore store;
    fillTestTags(store, 2000);
    store.close();
    damageTag(store.path, 700);
    damageTag(store.path, 1999);
    ZQError error;
    const auto report = ZQPersistentStoreCoordinator::recoverStoreAtPath(store.model, store.path, &error);
    ASSERT_TRUE(report) << qPrintable(error.localizedDescription());
    const qint64 lost = report->unreadable.value(QStringLiteral("TestTag"));
    EXPECT_GT(lost, 2);
    EXPECT_EQ(report->rows.value(QStringLiteral("TestTag")) + lost, 2000);
    EXPECT_EQ(report->rows.value(QStringLiteral("TestDocument")), 2000);
    ASSERT_TRUE(store.coordinator());
    EXPECT_TRUE(store.coordinator()->checkIntegrity().isEmpty());
    EXPECT_EQ(countOf(store, "TestTag"), 2000 - lost);
    ZQManagedObjectContext context(store.coordinator());
    const auto next = context.insertNewObject<TestTag>();
    next->setName(QStringLiteral("next"));
    ASSERT_TRUE(context.save());
    EXPECT_GT(next->objectID().key, 2000) << "the lost tags had the last keys";
}

TEST(ZQStoreDamage, TagsBehindADamagedPageStayWithTheirDocuments)
{
    TestStore store;
    fillTestTags(store, 2000);
    store.close();
    ASSERT_NO_FATAL_FAILURE(damageFirstLinks(store.path));
    ZQError error;
    const auto report = ZQPersistentStoreCoordinator::recoverStoreAtPath(store.model, store.path, &error);
    ASSERT_TRUE(report) << qPrintable(error.localizedDescription());
    ASSERT_TRUE(store.coordinator()) << qPrintable(store.error.localizedDescription());
    EXPECT_EQ(countOf(store, "TestTag"), 2000);
    ZQManagedObjectContext context(store.coordinator());
    const auto tagged = context.countForFetchRequest(
        {QStringLiteral("TestTag"), ZQPredicate::predicateWithFormat(QStringLiteral("documents.@count == 1"))});
    ASSERT_TRUE(tagged);
    EXPECT_GT(*tagged, 1000);
    EXPECT_LT(*tagged, 2000) << "those on the page are lost";
}

TEST(ZQStoreDamage, AfterAnUncleanEndTheStoreIsLookedAtBeforeItIsTakenOver)
{
    TestStore store;
    fillTestTags(store, 2000);
    store.close();
    damageTag(store.path, 1000);
    ASSERT_TRUE(store.coordinator()) << "a proper end is believed";
    store.close();
    markStoreUnclean(store.path);
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_FALSE(store.coordinator());
        EXPECT_EQ(store.error.code, int(ZQStoreError::Damaged));
        EXPECT_TRUE(store.error.localizedDescription().contains(QStringLiteral("zelto recover")));
        EXPECT_EQ(
            storeValue(store.path, QStringLiteral("SELECT value FROM zq_metadata WHERE key = 'inUseBy'")).toString(),
            QStringLiteral("999999999:1"));
    }
    const auto problems = ZQPersistentStoreCoordinator::checkStoreAtPath(store.path);
    EXPECT_FALSE(problems.isSound());
    EXPECT_TRUE(problems.isComplete);
}

TEST(ZQStoreDamage, OnlyAWholeCheckSettlesAnUncleanEnd)
{
    TestStore store;
    {
        ZQManagedObjectContext context(store.coordinator());
        constexpr qsizetype tooMuchForAQuickLook = 25 * 1024 * 1024;
        context.insertNewObject<TestDocument>()->setBlob(QByteArray(tooMuchForAQuickLook, 'b'));
        ASSERT_TRUE(context.save());
    }
    EXPECT_FALSE(store.coordinator()->needsCheck());
    store.close();
    markStoreUnclean(store.path);
    EXPECT_TRUE(store.coordinator()->wasUncleanlyClosed());
    EXPECT_TRUE(store.coordinator()->needsCheck());
    store.close(); // a proper end, before the check was over
    EXPECT_FALSE(store.coordinator()->wasUncleanlyClosed());
    EXPECT_TRUE(store.coordinator()->needsCheck());
    std::stop_source stop;
    stop.request_stop();
    EXPECT_FALSE(store.coordinator()->check(stop.get_token()).isComplete);
    store.close();
    EXPECT_TRUE(store.coordinator()->needsCheck());
    EXPECT_TRUE(store.coordinator()->check().isSound());
    EXPECT_FALSE(store.coordinator()->needsCheck());
    store.close();
    EXPECT_FALSE(store.coordinator()->needsCheck());
}

TEST(ZQStoreDamage, DamageThatWasMetIsRememberedUntilTheNextOpening)
{
    for (const bool byACheck : {false, true}) {
        TestStore store;
        fillTestTags(store, 2000);
        store.close();
        damageTag(store.path, 1000);
        {
            const auto coordinator = store.coordinator();
            ASSERT_TRUE(coordinator);
            ZQManagedObjectContext context(coordinator);
            if (byACheck) {
                EXPECT_FALSE(coordinator->check().isSound());
            } else {
                ZQError error;
                EXPECT_FALSE(context.executeFetchRequest({QStringLiteral("TestTag")}, &error));
                EXPECT_EQ(error.code, int(ZQStoreError::Damaged));
            }
        }
        store.close();
        EXPECT_FALSE(store.coordinator());
        EXPECT_EQ(store.error.code, int(ZQStoreError::Damaged));
    }
}

TEST(ZQStoreDamage, AQuickLookIsIncompleteButSeesWhatItReads)
{
    TestStore store;
    fillTestTags(store, 2000);
    store.close();
    const auto look = [&](int milliseconds, qint64 wholeBytes) {
        const auto connection = ZQSQLiteConnection::open(store.path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
        return zqCheckStoreQuickly(*connection, std::chrono::milliseconds(milliseconds), wholeBytes);
    };
    constexpr int ample = 60'000;
    EXPECT_TRUE(look(ample, qint64(1) << 40).isSound());
    EXPECT_FALSE(look(ample, 0).isComplete);
    EXPECT_TRUE(look(ample, 0).problems.isEmpty());
    damageTag(store.path, 1000);
    EXPECT_FALSE(look(ample, 0).problems.isEmpty());
}

TEST(ZQStoreDamage, TheLogGoesWithTheDamagedStoreAndIsNeverReplayedOverTheNewOne)
{
    TestStore source;
    fillTestTags(source, 500);
    TestStore store;
    {
        // What a killed process leaves: the last saves are in the log alone.
        ZQManagedObjectContext context(source.coordinator());
        ZQObjectAccess::connection(context)->execute(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
        const auto late = context.insertNewObject<TestTag>();
        late->setName(QStringLiteral("late"));
        ASSERT_TRUE(context.save());
        ASSERT_TRUE(QFile::copy(source.path, store.path));
        ASSERT_TRUE(QFile::copy(source.path + wal, store.path + wal));
    }
    damageTag(store.path, 250);
    const QByteArray log = contentOfFile(store.path + wal);
    ASSERT_FALSE(log.isEmpty());
    ZQError error;
    const auto report = ZQPersistentStoreCoordinator::recoverStoreAtPath(store.model, store.path, &error);
    ASSERT_TRUE(report) << qPrintable(error.localizedDescription());
    EXPECT_EQ(contentOfFile(report->keptPath + wal), log);
    EXPECT_FALSE(QFile::exists(store.path + wal));
    ASSERT_TRUE(store.coordinator());
    EXPECT_TRUE(store.coordinator()->checkIntegrity().isEmpty());
    EXPECT_EQ(countOf(store, "TestTag"), 501 - report->unreadable.value(QStringLiteral("TestTag")));
    ZQManagedObjectContext context(store.coordinator());
    EXPECT_EQ(context.countForFetchRequest(
                  {QStringLiteral("TestTag"), ZQPredicate::predicateWithFormat(QStringLiteral("name == 'late'"))}),
              1);
}

TEST(ZQStoreDamage, AnInterruptedReplacementIsFinishedWhereverItStopped)
{
    enum Stopped { BeforeAnything, AfterKeeping, AfterTheLogWent, WithAnotherStorePutBack, WithAnotherLogMade };
    for (const Stopped stopped :
         {BeforeAnything, AfterKeeping, AfterTheLogWent, WithAnotherStorePutBack, WithAnotherLogMade}) {
        TestStore recovered;
        fillTestTags(recovered, 3);
        recovered.close();
        TestStore store;
        fillTestTags(store, 10);
        store.close();
        const QByteArray old = contentOfFile(store.path);
        const QString kept = store.path + QStringLiteral(".damaged-20250101-120000");
        ASSERT_TRUE(QFile::copy(recovered.path, store.path + QStringLiteral(".recovered-20250101-120000")));
        QFile log(store.path + wal);
        ASSERT_TRUE(log.open(QIODevice::WriteOnly) && log.write("not the new store's") > 0);
        log.close();
        if (stopped == AfterKeeping || stopped == AfterTheLogWent) {
            ASSERT_EQ(::link(qPrintable(store.path), qPrintable(kept)), 0);
            ASSERT_EQ(::link(qPrintable(store.path + wal), qPrintable(kept + wal)), 0);
        }
        if (stopped == AfterTheLogWent) {
            ASSERT_TRUE(QFile::remove(store.path + wal));
        }
        if (stopped == WithAnotherStorePutBack) {
            QFile other(kept);
            ASSERT_TRUE(other.open(QIODevice::WriteOnly) && other.write("the only copy of something") > 0);
        }
        if (stopped == WithAnotherLogMade) { // by another program that opened the damaged store meanwhile
            ASSERT_EQ(::link(qPrintable(store.path), qPrintable(kept)), 0);
            QFile first(kept + wal);
            ASSERT_TRUE(first.open(QIODevice::WriteOnly) && first.write("the first log") > 0);
        }
        EXPECT_EQ(countOf(store, "TestTag"), 3) << stopped;
        store.close();
        const QString place = stopped >= WithAnotherStorePutBack ? kept + QStringLiteral("-2") : kept;
        EXPECT_TRUE(stopped != WithAnotherLogMade || contentOfFile(kept + wal) == "the first log");
        EXPECT_EQ(contentOfFile(place), old) << stopped;
        EXPECT_EQ(contentOfFile(place + wal), "not the new store's") << stopped;
        EXPECT_EQ(QFile::exists(kept), true);
        EXPECT_TRUE(filesOf(store).filter(QStringLiteral("recovered-")).isEmpty());
    }
}

TEST(ZQStoreDamage, AReplacementThatCannotBeMadeLeavesTheDamagedStore)
{
    TestStore store;
    fillTestTags(store, 10);
    store.close();
    const QByteArray old = contentOfFile(store.path);
    ZQError error;
    EXPECT_FALSE(zqReplaceStore(store.path, store.folder.filePath(QStringLiteral("missing")), &error));
    EXPECT_FALSE(error.isNull());
    EXPECT_EQ(contentOfFile(store.path), old);
    EXPECT_EQ(filesOf(store), QStringList{QStringLiteral("storedata")});
}

TEST(ZQStoreDamage, AProcessKilledWhileRecoveringLeavesOneOfTheTwoStoresWhole)
{
    constexpr int rounds = 12;
    constexpr int most = 120; // on a busy machine many come too early or too late
    constexpr int enough = rounds / 4;
    std::chrono::microseconds whole{0}; // what a recovery takes here; the kills are spread over it
    int interrupted = 0;
    for (int round = 0; round <= rounds || (interrupted < enough && round <= most); ++round) {
        TestStore store;
        fillTestTags(store, 600);
        store.close();
        damageTag(store.path, 300);
        const auto start = std::chrono::steady_clock::now();
        const pid_t child = fork();
        if (child == 0) {
            ZQPersistentStoreCoordinator::recoverStoreAtPath(store.model, store.path);
            _exit(0);
        }
        if (round > 0) {
            std::this_thread::sleep_for(whole * ((round - 1) % rounds) / rounds);
            kill(child, SIGKILL);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        const auto took =
            std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);
        if (round == 0 || (WIFEXITED(status) && took < whole)) {
            whole = took;
        }
        const bool hasBegun = filesOf(store).size() > 1;
        interrupted += WIFSIGNALED(status) && hasBegun ? 1 : 0;
        if (!ZQPersistentStoreCoordinator::checkStoreAtPath(store.path).isSound()) {
            ZQError error;
            ASSERT_TRUE(ZQPersistentStoreCoordinator::recoverStoreAtPath(store.model, store.path, &error))
                << qPrintable(error.localizedDescription());
        }
        ASSERT_TRUE(store.coordinator()) << qPrintable(store.error.localizedDescription());
        EXPECT_TRUE(store.coordinator()->wasRecovered());
        EXPECT_EQ(countOf(store, "TestDocument"), 600);
        EXPECT_GT(countOf(store, "TestTag"), 550);
        EXPECT_EQ(filesOf(store).filter(QRegularExpression(QStringLiteral("damaged-[0-9-]+$"))).size(), 1);
    }
    EXPECT_GE(interrupted, enough) << "kills that interrupt nothing prove nothing";
}

TEST(ZQStoreDamage, AStoreOfWhichNothingCanBeReadMakesWayForAnEmptyOneAndIsKept)
{
    const auto zeroHeader = [](const QString &path) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        file.write(QByteArray(4096, '\0'));
    };
    const auto foreign = [](const QString &path) {
        QFile::remove(path);
        const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::Create, nullptr);
        ASSERT_TRUE(connection && connection->execute(QStringLiteral("CREATE TABLE something(x)")));
    };
    for (const auto &spoil : {std::function<void(const QString &)>(zeroHeader), {foreign}}) {
        TestStore store;
        ASSERT_TRUE(store.coordinator());
        store.close();
        spoil(store.path);
        const QByteArray before = contentOfFile(store.path);
        ZQError error;
        const auto report = ZQPersistentStoreCoordinator::recoverStoreAtPath(store.model, store.path, &error);
        ASSERT_TRUE(report) << qPrintable(error.localizedDescription());
        EXPECT_TRUE(report->rows.isEmpty());
        EXPECT_EQ(contentOfFile(report->keptPath), before);
        const auto coordinator = store.coordinator();
        ASSERT_TRUE(coordinator) << qPrintable(store.error.localizedDescription());
        EXPECT_TRUE(coordinator->wasRecovered());
        EXPECT_TRUE(coordinator->checkIntegrity().isEmpty());
    }
}

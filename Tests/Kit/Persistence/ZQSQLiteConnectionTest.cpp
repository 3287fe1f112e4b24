#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Tests/Kit/Persistence/TestModel.h"

#include <QDir>

#include <sqlite3.h>

namespace {

using Mode = ZQSQLiteConnection::Mode;

class ZQSQLite : public testing::Test
{
protected:
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("100% #1?.db"));
    std::unique_ptr<ZQSQLiteConnection> connection = ZQSQLiteConnection::open(path, Mode::Create, nullptr);
};

} // namespace

TEST_F(ZQSQLite, ValuesComeBackByTheirStoredClass)
{
    const QString echo = QStringLiteral("SELECT ?");
    const QDateTime date = QDateTime::fromMSecsSinceEpoch(-5, Qt::UTC);
    const std::pair<QVariant, QVariant> cases[] = {
        {QStringLiteral("\u00FC\0x"), QStringLiteral("\u00FC\0x")},
        {QStringLiteral(""), QStringLiteral("")},
        {QByteArray("\0x", 2), QByteArray("\0x", 2)},
        {QByteArray(""), QByteArray("")},
        {0.5, 0.5},
        {0.5F, 0.5},
        {true, 1LL},
        {std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::min()},
        {date, -5LL},
        {QDateTime(), {}},
        {QVariant::fromValue(ZQObjectID{nullptr, 7}), 7LL},
        {QVariantList{1}, {}},
        {{}, {}},
    };
    for (const auto &[given, expected] : cases) {
        const QVariant value = connection->value(echo, {given});
        EXPECT_EQ(value, expected) << given.typeName();
        EXPECT_EQ(value.metaType(), expected.metaType()) << given.typeName();
        EXPECT_EQ(value.isNull(), expected.isNull());
    }
    ZQSQLiteStatement nulls = connection->prepare(QStringLiteral("SELECT ?, ?, 3"));
    nulls.bind(0, QString());
    nulls.bind(1, QByteArray());
    ASSERT_TRUE(nulls.next());
    EXPECT_EQ(nulls.columnCount(), 3);
    EXPECT_TRUE(nulls.isNull(0) && nulls.isNull(1) && !nulls.isNull(2));
    EXPECT_TRUE(nulls.text(0).isNull() && nulls.blob(1).isNull());
    EXPECT_EQ(nulls.real(2), 3.0);
    EXPECT_EQ(connection->rowsRead(), qint64(std::size(cases)) + 1);
}

TEST_F(ZQSQLite, AStatementInUseIsNotSharedAndTheUnusedOnesAreForgotten)
{
    const QString numbers = QStringLiteral("SELECT value FROM json_each('[1,2,3]')");
    ZQSQLiteStatement outer = connection->prepare(numbers);
    ASSERT_TRUE(outer.next());
    {
        ZQSQLiteStatement inner = connection->prepare(numbers);
        ASSERT_TRUE(inner.next() && inner.next());
        EXPECT_EQ(inner.int64(0), 2);
        for (int i = 0; i < 400; ++i) { // more than are kept
            EXPECT_EQ(connection->value(QStringLiteral("SELECT %1").arg(i)), QVariant(qlonglong(i)));
        }
        EXPECT_TRUE(inner.next());
        EXPECT_EQ(inner.int64(0), 3);
        EXPECT_FALSE(inner.next() || inner.failed());
    }
    ASSERT_TRUE(outer.next());
    EXPECT_EQ(outer.int64(0), 2);
    int kept = 0;
    for (sqlite3_stmt *each = nullptr; (each = sqlite3_next_stmt(connection->handle(), each));) {
        ++kept;
    }
    EXPECT_LE(kept, 161);
    EXPECT_GT(kept, 1);
    ZQSQLiteStatement moved(std::move(outer));
    EXPECT_FALSE(outer.isValid()); // NOLINT(bugprone-use-after-move)
    ASSERT_TRUE(moved.next());
    EXPECT_EQ(moved.int64(0), 3);
    moved = connection->prepare(QStringLiteral("SELECT ?"));
    moved.bind(0, 9);
    EXPECT_TRUE(moved.next());
    moved = {};
    EXPECT_FALSE(connection->value(QStringLiteral("SELECT ?")).isValid()) << "what was bound is bound no more";
    const int before = connection->preparedUses();
    connection->value(numbers);
    connection->execute(QStringLiteral("SELECT 1"));
    EXPECT_EQ(connection->preparedUses(), before + 2);
    EXPECT_EQ(sqlite3_next_stmt(connection->handle(), nullptr) != nullptr, true);
    EXPECT_EQ(connection->value(QStringLiteral("PRAGMA wal_checkpoint")), QVariant(0LL)) << "nothing is being read";
}

TEST_F(ZQSQLite, WhatFailsIsReportedAndOnlyThat)
{
    EXPECT_FALSE(connection->prepare(QStringLiteral("SELECT absent")).isValid());
    EXPECT_EQ(connection->errorCode(), SQLITE_ERROR);
    EXPECT_FALSE(connection->value(QStringLiteral("SELECT absent")).isValid());
    EXPECT_FALSE(connection->execute(QStringLiteral("SELECT absent")));
    ZQError error = connection->error();
    EXPECT_EQ(error.code, int(ZQStoreError::Other));
    const QString message = error.userInfo.value(QStringLiteral("sqliteMessage")).toString();
    EXPECT_TRUE(message.startsWith(QStringLiteral("no such column: absent"))) << qPrintable(message);
    EXPECT_EQ(error.localizedDescription(), QStringLiteral("The library's database reported an error. ") + message);
    EXPECT_EQ(error.userInfo.value(QStringLiteral("path")), path);
    ASSERT_TRUE(connection->execute(QStringLiteral("CREATE TABLE t(x UNIQUE); INSERT INTO t VALUES (1), (2)")));
    EXPECT_EQ(connection->changedRows(), 2);
    ZQSQLiteStatement insert = connection->prepare(QStringLiteral("INSERT INTO t VALUES (?)"));
    insert.bind(0, 1);
    EXPECT_FALSE(insert.run());
    EXPECT_TRUE(insert.failed());
    EXPECT_EQ(connection->errorCode(), SQLITE_CONSTRAINT_UNIQUE);
    insert.bind(0, 3);
    EXPECT_TRUE(insert.run());
    ZQSQLiteStatement none;
    EXPECT_FALSE(none.next() || none.run());
    EXPECT_TRUE(none.failed());
    EXPECT_FALSE(connection->execute(QStringLiteral("SELECT \"absent\""))) << "a name in quotes is never a text";
    EXPECT_FALSE(connection->execute(QStringLiteral("CREATE TABLE u(x CHECK (x <> \"absent\"))")));
    EXPECT_FALSE(connection->execute(
        QStringLiteral("PRAGMA writable_schema=ON; UPDATE sqlite_master SET sql = sql WHERE name = 't'")));
    EXPECT_EQ(connection->value(QStringLiteral("PRAGMA trusted_schema")), QVariant(0LL));
    EXPECT_EQ(connection->value(QStringLiteral("PRAGMA busy_timeout")), QVariant(5000LL));
    EXPECT_EQ(connection->value(QStringLiteral("PRAGMA foreign_keys")), QVariant(1LL));
    EXPECT_EQ(connection->value(QStringLiteral("PRAGMA synchronous")), QVariant(2LL));
    EXPECT_EQ(connection->value(QStringLiteral("PRAGMA temp_store")), QVariant(2LL));
    EXPECT_EQ(connection->value(QStringLiteral("PRAGMA cache_size")), QVariant(-8192LL));
}

TEST_F(ZQSQLite, AModeAllowsWhatItSays)
{
    const QString create = QStringLiteral("CREATE TABLE IF NOT EXISTS t(x)");
    ZQError error;
    EXPECT_FALSE(ZQSQLiteConnection::open(folder.filePath(QStringLiteral("none")), Mode::ReadWrite, &error));
    EXPECT_EQ(error.code, int(ZQStoreError::CannotOpen));
    EXPECT_FALSE(ZQSQLiteConnection::open(folder.filePath(QStringLiteral("none")), Mode::ReadOnly, nullptr));
    ASSERT_TRUE(connection->execute(create));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{QStringLiteral("100% #1?.db")});
    for (const Mode mode : {Mode::ReadWrite, Mode::Create, Mode::ReadOnly, Mode::Immutable}) {
        const auto other = ZQSQLiteConnection::open(path, mode, &error);
        ASSERT_TRUE(other) << qPrintable(error.localizedDescription());
        EXPECT_EQ(other->path(), path);
        EXPECT_TRUE(other->value(QStringLiteral("SELECT count(*) FROM t")).isValid());
        const bool isWriter = mode == Mode::ReadWrite || mode == Mode::Create;
        EXPECT_EQ(other->execute(QStringLiteral("INSERT INTO t VALUES (1)")), isWriter);
        EXPECT_TRUE(isWriter || other->error().code == int(ZQStoreError::ReadOnly));
    }
}

TEST_F(ZQSQLite, ATransactionIsTakenBackUnlessItIsCommitted)
{
    const auto count = [&] { return connection->value(QStringLiteral("SELECT count(*) FROM t")).toInt(); };
    ASSERT_TRUE(connection->execute(QStringLiteral("CREATE TABLE t(x)")));
    {
        ZQSQLiteTransaction transaction(*connection);
        EXPECT_TRUE(transaction.isOpen() && connection->isInTransaction());
        ASSERT_TRUE(connection->execute(QStringLiteral("INSERT INTO t VALUES (1)")));
        ZQSQLiteTransaction within(*connection);
        EXPECT_FALSE(within.isOpen() || within.commit());
    }
    EXPECT_FALSE(connection->isInTransaction());
    EXPECT_EQ(count(), 0);
    {
        ZQSQLiteTransaction transaction(*connection);
        ASSERT_TRUE(connection->execute(QStringLiteral("INSERT INTO t VALUES (1)")));
        EXPECT_TRUE(transaction.commit());
        EXPECT_FALSE(transaction.isOpen() || transaction.commit());
    }
    EXPECT_EQ(count(), 1);
    const auto other = ZQSQLiteConnection::open(path, Mode::ReadWrite, nullptr);
    connection->value(QStringLiteral("PRAGMA busy_timeout=1"));
    const ZQSQLiteTransaction writing(*other);
    const ZQSQLiteTransaction reading(*connection, ZQSQLiteTransaction::Kind::Read);
    EXPECT_TRUE(reading.isOpen()) << "who only reads waits for no writer";
}

TEST_F(ZQSQLite, ACopyIsWholeOrAnError)
{
    ASSERT_TRUE(connection->execute(QStringLiteral("CREATE TABLE t(x); INSERT INTO t VALUES (5)")));
    const QString copy = folder.filePath(QStringLiteral("copy"));
    ZQError error;
    ASSERT_TRUE(connection->copyTo(copy, &error)) << qPrintable(error.localizedDescription());
    EXPECT_EQ(ZQSQLiteConnection::open(copy, Mode::ReadOnly, nullptr)->value(QStringLiteral("SELECT x FROM t")),
              QVariant(5LL));
    const QString place = folder.filePath(QStringLiteral("place"));
    ASSERT_TRUE(QDir().mkpath(place));
    EXPECT_FALSE(connection->copyTo(place, &error));
    EXPECT_EQ(error.code, int(ZQStoreError::CannotOpen));
    const auto reader = ZQSQLiteConnection::open(copy, Mode::ReadWrite, nullptr);
    const ZQSQLiteTransaction busy(*reader);
    error = {};
    EXPECT_FALSE(connection->copyTo(copy, &error)) << "somebody else writes there";
    EXPECT_EQ(error.code, int(ZQStoreError::Locked));
    EXPECT_EQ(error.userInfo.value(QStringLiteral("path")), copy);
}

TEST(ZQSQLiteError, SaysWhatHappenedAndWhatToDo)
{
    struct
    {
        int code;
        ZQStoreError error;
        const char *start;
        const char *end;
    } const cases[] = {
        {SQLITE_BUSY_SNAPSHOT, ZQStoreError::Locked, "The library is being written", "then try again."},
        {SQLITE_LOCKED, ZQStoreError::Locked, "The library is being written", "then try again."},
        {SQLITE_FULL, ZQStoreError::DiskFull, "There is not enough room", "is lost."},
        {SQLITE_READONLY_DBMOVED, ZQStoreError::ReadOnly, "The library cannot be written.", "mounted read-only."},
        {SQLITE_PERM, ZQStoreError::ReadOnly, "The library cannot be written.", "mounted read-only."},
        {SQLITE_CORRUPT, ZQStoreError::Damaged, "The library's database is damaged.", "from a backup."},
        {SQLITE_NOTADB, ZQStoreError::Damaged, "The library's database is damaged from its first", "from a backup."},
        {SQLITE_CANTOPEN, ZQStoreError::CannotOpen, "The library's database cannot be opened.", "write there."},
        {SQLITE_INTERRUPT, ZQStoreError::Cancelled, "The request was cancelled.", "when it is needed."},
        {SQLITE_IOERR_READ, ZQStoreError::Other, "The disk reported an error", "then try again."},
        {SQLITE_MISUSE, ZQStoreError::Other, "The library's database reported an error.", "why"},
    };
    for (const auto &each : cases) {
        const ZQError error = zqStoreErrorForSQLite(each.code, QStringLiteral("why"), QStringLiteral("/p"));
        EXPECT_EQ(error.code, int(each.error)) << each.code;
        EXPECT_EQ(error.domain, ZQStoreErrorDomain);
        EXPECT_TRUE(error.localizedDescription().startsWith(QLatin1String(each.start))) << each.code;
        EXPECT_TRUE(error.localizedDescription().endsWith(QLatin1String(each.end))) << each.code;
        EXPECT_EQ(error.userInfo.value(QStringLiteral("sqliteCode")), each.code);
    }
    EXPECT_EQ(zqQuoted(QStringLiteral("a\"b")), QStringLiteral("\"a\"\"b\""));
}

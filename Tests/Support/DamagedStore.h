#pragma once

#include "Kit/Persistence/ZQSQLiteConnection.h"

#include <QFile>

#include <gtest/gtest.h>

// Faults in a store that nobody has open.

inline constexpr int storePageSize = 4096;
enum class StorePage : char { Table = 0x0D, Index = 0x0A };

// Overwrites the first page of this kind that holds `text`.
inline void damagePageHolding(const QByteArray &text, StorePage kind, const QString &path)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const QByteArray all = file.readAll();
    for (qsizetype at = all.indexOf(text); at >= 0; at = all.indexOf(text, at + 1)) {
        const qsizetype page = at / storePageSize * storePageSize;
        if (all.at(page) == char(kind)) {
            ASSERT_TRUE(file.seek(page));
            ASSERT_EQ(file.write(QByteArray(storePageSize, '\x5A')), storePageSize);
            return;
        }
    }
    FAIL() << "no such page holds " << text.constData();
}

inline QVariant storeValue(const QString &path, const QString &sql)
{
    const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
    return connection ? connection->value(sql) : QVariant();
}

// Entries of the metadata that cannot be read, while everything else can and all can be written, until
// `makeEntriesReadable`.
inline void makeEntriesUnreadable(const QStringList &keys, const QString &path)
{
    const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
    for (const QString &key : keys) { // an absent one would be read as absent
        ASSERT_TRUE(
            connection->execute(QStringLiteral("INSERT OR IGNORE INTO zq_metadata VALUES ('%1', '')").arg(key)));
    }
    ASSERT_TRUE(connection->execute(
        QStringLiteral("ALTER TABLE zq_metadata RENAME TO kept_metadata; "
                       "CREATE VIEW zq_metadata AS SELECT key, CASE WHEN key IN ('%1') "
                       "THEN abs(-9223372036854775807 - 1) ELSE value END AS value FROM kept_metadata; "
                       "CREATE TRIGGER zq_written INSTEAD OF INSERT ON zq_metadata BEGIN "
                       "INSERT OR REPLACE INTO kept_metadata VALUES (new.key, new.value); END")
            .arg(keys.join(QStringLiteral("', '")))));
}

inline void makeEntriesReadable(const QString &path)
{
    const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
    ASSERT_TRUE(
        connection->execute(QStringLiteral("DROP VIEW zq_metadata; ALTER TABLE kept_metadata RENAME TO zq_metadata")));
}

// As a killed process leaves it.
inline void markStoreUnclean(const QString &path)
{
    const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
    ASSERT_TRUE(connection->execute(QStringLiteral("REPLACE INTO zq_metadata VALUES ('inUseBy', '999999999:1')")));
}

// A store that takes no change of these tables, for as long as this lives; at once, unlike one that another process
// holds.
class RefusingStore
{
public:
    RefusingStore(const QString &path, const QStringList &tables)
        : m_connection(ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::ReadWrite, nullptr)), m_tables(tables)
    {
        for (const QString &table : tables) {
            for (const char *change : {"INSERT", "UPDATE", "DELETE"}) {
                EXPECT_TRUE(m_connection->execute(
                    QStringLiteral("CREATE TRIGGER zq_refused_%1_%2 BEFORE %2 ON \"%1\" BEGIN SELECT RAISE(ABORT, "
                                   "'the store is as it is'); END")
                        .arg(table, QLatin1String(change))));
            }
        }
    }
    ~RefusingStore()
    {
        for (const QString &table : m_tables) {
            for (const char *change : {"INSERT", "UPDATE", "DELETE"}) {
                EXPECT_TRUE(m_connection->execute(
                    QStringLiteral("DROP TRIGGER IF EXISTS zq_refused_%1_%2").arg(table, QLatin1String(change))));
            }
        }
    }
    RefusingStore(const RefusingStore &) = delete;
    RefusingStore &operator=(const RefusingStore &) = delete;

private:
    decltype(ZQSQLiteConnection::open({}, ZQSQLiteConnection::Mode::ReadWrite, nullptr)) m_connection;
    QStringList m_tables;
};

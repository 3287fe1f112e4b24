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

// As a killed process leaves it.
inline void markStoreUnclean(const QString &path)
{
    const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
    ASSERT_TRUE(connection->execute(QStringLiteral("REPLACE INTO zq_metadata VALUES ('inUseBy', '999999999:1')")));
}

// A damaged store with a log beside it, as a power cut leaves both: what a recovery makes of the two, and that the log
// belongs to neither afterwards.

#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Tests/Kit/Persistence/TestModel.h"
#include "Tests/Support/DamagedStore.h"

#include <QFile>
#include <QSet>

namespace {

class ZQRecoveryLog : public testing::Test
{
protected:
    // The first tags are in the store, of which a page is damaged; later ones, and changes of earlier ones, are in the
    // log alone.
    void SetUp() override
    {
        TestStore source;
        fillTestTags(source, written);
        ZQManagedObjectContext context(source.coordinator());
        ZQObjectAccess::connection(context)->execute(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
        const auto tags = context.fetch<TestTag>(
            {QStringLiteral("TestTag"), ZQPredicate::predicateWithFormat(QStringLiteral("weight < 5"))});
        ASSERT_TRUE(tags);
        for (const auto &tag : *tags) {
            context.deleteObject(tag.get());
        }
        for (int i = 0; i < late; ++i) {
            const auto tag = context.insertNewObject<TestTag>();
            tag->setName(QStringLiteral("late %1").arg(i));
            const auto document = context.insertNewObject<TestDocument>();
            document->setTitle(QStringLiteral("late %1").arg(i));
            document->addTag(tag.get());
        }
        ASSERT_TRUE(context.save());
        ASSERT_TRUE(QFile::copy(source.path, store.path));
        ASSERT_TRUE(QFile::copy(source.path + wal, store.path + wal));
        damagePageHolding("tag 250 tag", StorePage::Table, store.path);
    }
    void recover()
    {
        ZQError error;
        const auto report = ZQPersistentStoreCoordinator::recoverStoreAtPath(store.model, store.path, &error);
        ASSERT_TRUE(report) << qPrintable(error.localizedDescription());
        lost = report->unreadable.value(QStringLiteral("TestTag"));
    }
    QVariant value(const QString &sql) const { return storeValue(store.path, sql); }

    static constexpr int written = 500;
    static constexpr int late = 40;
    static constexpr int deletedLate = 5;
    const QString wal = QStringLiteral("-wal");
    TestStore store;
    qint64 lost = 0;
};

} // namespace

TEST_F(ZQRecoveryLog, WhatTheLogHoldsIsRecoveredAndWhatItDeletedStaysAway)
{
    ASSERT_NO_FATAL_FAILURE(recover());
    EXPECT_FALSE(QFile::exists(store.path + wal)) << "it would be replayed over the new store";
    ASSERT_TRUE(store.coordinator()) << qPrintable(store.error.localizedDescription());
    EXPECT_TRUE(store.coordinator()->checkIntegrity().isEmpty());
    ZQManagedObjectContext context(store.coordinator());
    const auto tags = context.fetch<TestTag>({QStringLiteral("TestTag")});
    ASSERT_TRUE(tags);
    QSet<QString> names;
    for (const auto &tag : *tags) {
        names.insert(tag->name());
        if (!tag->name().startsWith(QStringLiteral("late"))) {
            EXPECT_EQ(tag->name(), QStringLiteral("tag %1 ").arg(tag->weight()).repeated(20));
        }
        EXPECT_EQ(tag->documents().size(), 1) << qPrintable(tag->name());
    }
    EXPECT_GT(lost, 0);
    EXPECT_EQ(tags->size(), written - deletedLate - lost + late);
    EXPECT_TRUE(names.contains(QStringLiteral("late 0")) && names.contains(QStringLiteral("late 39")));
    EXPECT_FALSE(names.contains(QStringLiteral("tag 1 ").repeated(20)));
}

TEST_F(ZQRecoveryLog, NoKeyIsEverGivenOutAgain)
{
    ASSERT_NO_FATAL_FAILURE(recover());
    for (const char *table : {"TestTag", "TestNode"}) {
        const QString name = QString::fromLatin1(table);
        const qint64 last =
            value(QStringLiteral("SELECT last FROM zq_sequence WHERE name = '%1'").arg(name)).toLongLong();
        EXPECT_EQ(last, written + late) << table;
        EXPECT_LE(value(QStringLiteral("SELECT max(id) FROM ") + name).toLongLong(), last) << table;
    }
    {
        ZQManagedObjectContext context(store.coordinator());
        for (int i = 0; i < 3; ++i) {
            const auto tag = context.insertNewObject<TestTag>();
            tag->setName(QStringLiteral("new"));
            ASSERT_TRUE(context.save());
            EXPECT_EQ(tag->objectID().key, written + late + 1 + i) << "the lost and the deleted ones had those before";
        }
    }
    store.close();
    ASSERT_NO_FATAL_FAILURE(recover()); // of a sound store changes nothing
    EXPECT_EQ(value(QStringLiteral("SELECT last FROM zq_sequence WHERE name = 'TestTag'")).toLongLong(),
              written + late + 3);
    EXPECT_EQ(value(QStringLiteral("SELECT count(*) FROM TestTag WHERE name = 'new'")).toInt(), 3);
}

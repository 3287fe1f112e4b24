// A power cut while a damaged store is recovered: what the recovery brings is there in the end, and the damaged store,
// which may hold more than it, is never lost.

#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQModel.h"
#include "Tests/Power/PowerFixture.h"
#include "Tests/Support/DamagedStore.h"

#include <QDir>
#include <QFile>

#include <algorithm>

namespace {

class RecoveryPower : public PowerTest
{
protected:
    // As a power cut leaves a store: what was saved last is in the log alone, and a page is damaged.
    void damageStore()
    {
        ASSERT_NO_FATAL_FAILURE(open());
        addItems(0, written);
        close();
        ASSERT_NO_FATAL_FAILURE(open());
        addItems(written, written + inTheLog);
        const QString aside = path(QStringLiteral("aside"));
        ASSERT_TRUE(QFile::copy(store(), aside) && QFile::copy(store() + log, aside + log));
        close();
        QFile::remove(store());
        ASSERT_TRUE(QFile::rename(aside, store()) && QFile::rename(aside + log, store() + log));
        damagePageHolding("picture 100", StorePage::Table, store());
        m_damaged = contentOf(store());
        m_log = contentOf(store() + log);
    }
    void addItems(int first, int end)
    {
        for (int i = first; i < end; ++i) {
            const auto item = context().insertNewObject<ZQLibraryImage>();
            item->setBundleID(QStringLiteral("item-%1").arg(i));
            item->setTitle(QStringLiteral("picture %1").arg(i));
        }
        ASSERT_TRUE(context().save());
    }
    static std::optional<ZQStoreRecovery> recover()
    {
        ZQError error;
        const auto recovery = ZQPersistentStoreCoordinator::recoverStoreAtPath(zqCurrentModel(), store(), &error);
        EXPECT_TRUE(recovery) << qPrintable(error.localizedDescription());
        return recovery;
    }
    QStringList titles() const
    {
        QStringList found;
        const auto rows = context().fetchDictionaries({ZQLibraryImage::entityName()}, {QStringLiteral("title")});
        for (const QVariantMap &row : rows.value_or(QList<QVariantMap>())) {
            found.append(row.value(QStringLiteral("title")).toString());
        }
        found.sort();
        return found;
    }
    static bool isKept(const QByteArray &content)
    {
        const QDir folder(library());
        const QStringList names = folder.entryList({QStringLiteral("storedata*")}, QDir::Files);
        return std::any_of(names.begin(), names.end(),
                           [&](const QString &name) { return contentOf(folder.filePath(name)) == content; });
    }
    void recoverWhileThePowerFails(bool fileSystemHasLinks)
    {
        ASSERT_NO_FATAL_FAILURE(damageStore());
        begin();
        disk().setHasLinks(fileSystemHasLinks);
        ASSERT_TRUE(recover());
        report();
        ASSERT_NO_FATAL_FAILURE(open());
        const QStringList expected = titles();
        ASSERT_GT(expected.size(), written / 2);
        ASSERT_LT(expected.size(), written);
        ASSERT_TRUE(expected.contains(QStringLiteral("picture %1").arg(written))) << "the log was read";
        addItems(afterwards, afterwards + 1);
        report();
        cutThePower([&](int reports) {
            EXPECT_TRUE(isKept(m_damaged));
            EXPECT_TRUE(isKept(m_log));
            const bool isDamaged = contentOf(store()) == m_damaged;
            EXPECT_FALSE(isDamaged && reports > 0) << "what else reads the store finds the damaged one";
            if (isDamaged && QDir(library()).entryList({QStringLiteral("storedata.recovered-*")}).isEmpty()) {
                // the next launch finds it damaged, and recovers it once more
                ASSERT_TRUE(recover());
            }
            ASSERT_NO_FATAL_FAILURE(open());
            QStringList found = titles();
            const bool hasNewItem = found.removeOne(QStringLiteral("picture %1").arg(afterwards));
            EXPECT_TRUE(hasNewItem || reports < 2);
            EXPECT_EQ(found, expected);
            EXPECT_TRUE(isKept(m_damaged));
            EXPECT_TRUE(isKept(m_log));
            expectWholeLibrary();
        });
    }

    const QString log = QStringLiteral("-wal");
    static constexpr int written = 300;
    static constexpr int inTheLog = 5;
    static constexpr int afterwards = 1000;
    QByteArray m_damaged;
    QByteArray m_log;
};

} // namespace

TEST_F(RecoveryPower, EndsWithTheRecoveredStoreAndKeepsTheDamagedOne)
{
    recoverWhileThePowerFails(true);
}

TEST_F(RecoveryPower, DoesSoWhereAFileCannotHaveTwoNames)
{
    recoverWhileThePowerFails(false);
}

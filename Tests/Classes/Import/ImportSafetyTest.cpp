// What an import must not lose, whatever happens to the store or lies beside its sources.

#include "Kit/Files/ZQPropertyList.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Import/ImportFixture.h"
#include "Tests/Support/DamagedStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <optional>

namespace {

class ImportSafetyTest : public ImportFixture
{
protected:
    // So many that the batch saves on its way.
    QStringList writeMany(const QString &folder)
    {
        QFile one(writeImage(QStringLiteral("one.png"), {4, 4}));
        EXPECT_TRUE(one.open(QIODevice::ReadOnly));
        const QByteArray picture = one.readAll();
        QStringList sources;
        for (int i = 0; i < 1100; ++i) {
            sources.append(writeFile(folder + QStringLiteral("/%1.png").arg(i, 5, 10, QLatin1Char('0')), picture));
        }
        return sources;
    }

    void expectEveryItemHasItsFile() const
    {
        for (const auto &made : items()) {
            EXPECT_TRUE(QFileInfo::exists(made->itemURL())) << made->title().toStdString();
        }
        EXPECT_EQ(itemDirectories().size(), items().size());
    }

    // A store that takes nothing more until `release`.
    void lockStore()
    {
        if (!m_refusing) {
            m_refusing.emplace(delegate->persistentStoreCoordinator()->path(),
                               QStringList{QStringLiteral("ZQLibraryBaseItem")});
        }
    }
    void releaseStore() { m_refusing.reset(); }

private:
    std::optional<RefusingStore> m_refusing;
};

QStringList titlesByImportDate(ZQManagedObjectContext &context)
{
    const auto all = zqFetch<ZQLibraryBaseItem>(context, QStringLiteral("active == YES"), {},
                                                {{.keyPath = QStringLiteral("import_date")}});
    QStringList titles;
    QDateTime last;
    for (const auto &item : all.value_or(QList<ZQRef<ZQLibraryBaseItem>>())) {
        EXPECT_TRUE(!last.isValid() || item->import_date() > last) << item->title().toStdString();
        EXPECT_EQ(item->sort_date(), item->import_date());
        last = item->import_date();
        titles.append(item->title());
    }
    return titles;
}

} // namespace

TEST_F(ImportSafetyTest, WhatCannotBeTakenOutOfTheStoreKeepsItsFiles)
{
    ZQUserDefaults::standardUserDefaults().setObjectForKey(false, QStringLiteral("UseAutoTagging"));
    const QStringList sources = writeMany(QStringLiteral("many"));
    std::function<void()> cancel;
    user.onBeginProgress = [&](const std::function<void()> &block) { cancel = block; };
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(AImportManager::didFinishImportOperation,
                                                                         nullptr, [&](const ZQNotification &) {
                                                                             lockStore(); // after the first chunk
                                                                             cancel();
                                                                         });
    const auto operation = import(sources);
    releaseStore();
    ZQUserDefaults::standardUserDefaults().removeObjectForKey(QStringLiteral("UseAutoTagging"));
    EXPECT_FALSE(items().isEmpty());
    expectEveryItemHasItsFile();
    EXPECT_EQ(operation->report().imported().size(), items().size());
    EXPECT_EQ(operation->report().dropped().size(), sources.size() - items().size());
    ASSERT_EQ(user.errors.size(), 1); // said once
}

TEST_F(ImportSafetyTest, DiscardedDuplicatesOfSavedChunksGoOnlyWithTheirRows)
{
    ZQUserDefaults::standardUserDefaults().setObjectForKey(false, QStringLiteral("UseAutoTagging"));
    const QStringList sources = writeMany(QStringLiteral("many"));
    import({sources.first()});
    for (const bool isLocked : {true, false}) {
        user.answerDuplicates = [&](const QList<DuplicatePair> &pairs) {
            if (isLocked) {
                lockStore();
            }
            return QList<DuplicateChoice>(pairs.size(), DuplicateChoice::Discard);
        };
        const auto operation = import(sources);
        if (isLocked) {
            releaseStore();
            EXPECT_GT(items().size(), 256);
            EXPECT_EQ(operation->report().imported().size(), items().size() - 1);
            expectEveryItemHasItsFile();
            for (const auto &made : items()) { // as before, for the round without a lock
                if (made->bundleID() != items().last()->bundleID()) {
                    QDir(made->bundleURL()).removeRecursively();
                    made->deletePermanently();
                }
            }
            delegate->saveAction();
        } else {
            EXPECT_EQ(items().size(), 1);
            EXPECT_TRUE(operation->report().imported().isEmpty());
            expectEveryItemHasItsFile();
        }
    }
    ZQUserDefaults::standardUserDefaults().removeObjectForKey(QStringLiteral("UseAutoTagging"));
}

TEST_F(ImportSafetyTest, AFileOfALiveFolderStaysWhereverThatLies)
{
    const QString place = path(QStringLiteral("ZeltoTemporaryFolder/pictures"));
    const QString own = writeImage(QStringLiteral("ZeltoTemporaryFolder/pictures/deep/own.png"), {20, 20});
    const QString moved = writeImage(QStringLiteral("ZeltoTemporaryFolder/pictures2/moved.png"), {21, 20});
    const auto root = ZQSidebarWatchedFolder::newSidebarWatchedFolderForPath(place, context());
    root->setIs_root(true);
    ASSERT_TRUE(context().save());
    ASSERT_EQ(import({own, moved})->report().imported().size(), 2);
    EXPECT_TRUE(QFileInfo::exists(own));
    EXPECT_FALSE(QFileInfo::exists(moved));
}

TEST_F(ImportSafetyTest, OnlyWhatBecameAnItemLeavesTheTemporaryFolder)
{
    const QString folder = QStringLiteral("ZeltoTemporaryFolder/t.1/");
    const QString picture = writeImage(folder + QStringLiteral("Shot.snap/In/q.png"), {40, 30});
    const QString beside = writeImage(folder + QStringLiteral("Shot.snap/p.png"), {40, 30});
    const QString info =
        writeFile(folder + QStringLiteral("Shot.snap/Info.plist"),
                  ZQPropertyList::toBinary(QVariantMap{{QStringLiteral("imageGrabPath"), QStringLiteral("In/q.png")}})
                      .value_or(QByteArray()));
    const QString inFolder = writeImage(folder + QStringLiteral("Folder/a.png"), {20, 20});
    const QString unsupported = writeFile(folder + QStringLiteral("Folder/letter.txt"), "text");
    const QString changed = writeImage(folder + QStringLiteral("Folder/b.png"), {21, 20});
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(
        AImportManager::didFinishImportOperation, nullptr, [&](const ZQNotification &) {
            QFile file(changed); // a program saves into it while the import ends
            if (!items().isEmpty() && file.size() < 1000) {
                QFile::remove(changed);
                EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(QByteArray(2000, 'x')) == 2000);
                file.setFileTime(QDateTime::currentDateTimeUtc().addSecs(5), QFileDevice::FileModificationTime);
            }
        });
    const auto operation = import({path(folder + QStringLiteral("Shot.snap")), path(folder + QStringLiteral("Folder"))},
                                  projectsLabel().get());
    ASSERT_EQ(operation->report().imported().size(), 3);
    for (const QString &gone : {picture, inFolder}) {
        EXPECT_FALSE(QFile::exists(gone)) << gone.toStdString();
    }
    for (const QString &kept : {beside, info, unsupported, changed}) {
        EXPECT_TRUE(QFile::exists(kept)) << kept.toStdString();
    }
}

TEST_F(ImportSafetyTest, ImportDatesFollowTheDrop)
{
    // Large ones first: they are finished after the small ones that follow.
    QStringList flat;
    for (int i = 0; i < 12; ++i) {
        const int side = i % 3 == 0 ? 1500 : 8;
        flat.append(writeImage(QStringLiteral("flat/%1.png").arg(QChar(u'm' - i)), {side, side}));
    }
    import(flat);
    QStringList expected;
    for (const QString &file : flat) {
        expected.append(QFileInfo(file).completeBaseName());
    }
    EXPECT_EQ(titlesByImportDate(context()), expected);

    const QString last = writeImage(QStringLiteral("mixed/z2.png"), {800, 800});
    writeImage(QStringLiteral("mixed/Folder/x1.png"), {900, 900});
    writeImage(QStringLiteral("mixed/Folder/x2.png"), {8, 8});
    const QString first = writeImage(QStringLiteral("mixed/z1.png"), {8, 8});
    import({first, path(QStringLiteral("mixed/Folder")), last}, projectsLabel().get());
    expected += {QStringLiteral("z1"), QStringLiteral("x1"), QStringLiteral("x2"), QStringLiteral("z2")};
    EXPECT_EQ(titlesByImportDate(context()), expected);
}

// Files of unmanaged items that were moved away by another program.

#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Tests/Classes/Application/ApplicationFixture.h"

#include <QFile>

namespace {

class MovedFile : public ApplicationTest
{
protected:
    ~MovedFile() override { zqSetPersistentURLsWait(false); }

    // An item of a file that lies far from where it was.
    ZQRef<ZQLibraryImage> addMovedItem(tamberin_AppDelegate &delegate)
    {
        const QString first = world.filePath(QStringLiteral("files/one/two/three/a.png"));
        QDir().mkpath(QFileInfo(first).path());
        QDir().mkpath(QFileInfo(moved).path());
        QFile file(first);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write("a") == 1);
        file.close();
        const auto item = addItem(delegate, QStringLiteral("A"));
        item->setManaged(false);
        item->setItemURLData(zqDataForPersistentURL(first));
        delegate.saveAction();
        EXPECT_TRUE(QFile::rename(first, moved));
        return item;
    }

    const QString moved = world.filePath(QStringLiteral("files/one/other/b.png"));
};

} // namespace

TEST_F(MovedFile, IsFoundBesideTheWindowAndTheStoreKnowsWhere)
{
    const auto delegate = launched();
    const auto item = addMovedItem(*delegate);
    int updates = 0;
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(
        ZQLibraryBaseItem::dataDidUpdateNotification, nullptr, [&](const ZQNotification &) { ++updates; });
    EXPECT_EQ(item->itemURL(), QString());
    zqWaitForPersistentURLSearches();
    zqRunMainLoopUntil([&] { return updates > 0; });
    EXPECT_EQ(item->itemURLData(), zqDataForPersistentURL(moved));
    EXPECT_EQ(item->itemURL(), moved);
    EXPECT_FALSE(delegate->managedObjectContext()->hasChanges());
    zqRunMainLoopFor(std::chrono::milliseconds(20));
    EXPECT_EQ(updates, 1);
}

TEST_F(MovedFile, GetsWhatItsItemWasGivenMeanwhile)
{
    const auto delegate = launched();
    const auto item = addMovedItem(*delegate);
    item->setRating(4);
    delegate->saveAction();
    item->writeRatingToDisk();
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    EXPECT_EQ(OpenMeta::getRating(moved), 4);
}

TEST_F(MovedFile, AllOfAMovedFolderGetWhatWasGivenAtOnceAndDeletedOnesHoldNothingUp)
{
    const auto delegate = launched();
    const QString folder = world.filePath(QStringLiteral("files/one/folder"));
    QDir().mkpath(folder);
    QList<ZQRef<ZQLibraryImage>> items;
    constexpr int count = 40;
    for (int i = 0; i < count; ++i) {
        const QString path = folder + QStringLiteral("/%1.png").arg(i);
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("a") == 1);
        file.close();
        items.append(addItem(*delegate, QString::number(i)));
        items.last()->setManaged(false);
        items.last()->setItemURLData(zqDataForPersistentURL(path));
    }
    delegate->saveAction();
    ASSERT_TRUE(QFile::remove(folder + QStringLiteral("/0.png")));
    const QString elsewhere = world.filePath(QStringLiteral("files/two"));
    ASSERT_TRUE(QDir().rename(folder, elsewhere));
    for (const auto &item : items) {
        item->setRating(5);
    }
    delegate->saveAction();
    for (const auto &item : items) {
        item->writeRatingToDisk();
    }
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    for (int i = 1; i < count; ++i) {
        EXPECT_EQ(OpenMeta::getRating(elsewhere + QStringLiteral("/%1.png").arg(i)), 5) << i;
    }
    QFile journal(delegate->libraryBundleDirectory() + QStringLiteral("/pending-tags"));
    EXPECT_EQ(journal.size(), 0) << "the store has what the files got";
    items.last()->setNotes(QStringLiteral("not saved yet"));
    items.last()->writeOpenMetaToDisk();
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    EXPECT_GT(journal.size(), 0);
    delegate->saveAction();
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    EXPECT_EQ(journal.size(), 0);
}

TEST_F(MovedFile, GetsTheTagsOfItsItemWhenItsReferenceIsRenewed)
{
    const auto delegate = launched();
    const auto item = addMovedItem(*delegate);
    item->setRating(3); // as written by a process that did not find the file
    delegate->saveAction();
    EXPECT_EQ(item->itemURL(), QString());
    zqWaitForPersistentURLSearches();
    zqRunMainLoopUntil([&] { return item->itemURLData() == zqDataForPersistentURL(moved); });
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    EXPECT_EQ(OpenMeta::getRating(moved), 3);
}

TEST_F(MovedFile, IsTakenInLaterWhenTheStoreCannotBeReadNow)
{
    const auto delegate = launched();
    const auto item = addMovedItem(*delegate);
    const QByteArray before = item->itemURLData();
    EXPECT_EQ(item->itemURL(), QString());
    zqWaitForPersistentURLSearches();
    const auto other = ZQSQLiteConnection::open(delegate->libraryBundleDirectory() + QStringLiteral("/storedata"),
                                                ZQSQLiteConnection::Mode::ReadWrite, nullptr);
    ASSERT_TRUE(other && other->execute(QStringLiteral("ALTER TABLE \"ZQLibraryBaseItem\" RENAME TO away")));
    zqRunMainLoopFor(std::chrono::milliseconds(50));
    ASSERT_TRUE(other->execute(QStringLiteral("ALTER TABLE away RENAME TO \"ZQLibraryBaseItem\"")));
    EXPECT_EQ(item->itemURLData(), before);
    EXPECT_EQ(item->itemURL(), moved);
    zqWaitForPersistentURLSearches();
    zqRunMainLoopUntil([&] { return item->itemURLData() != before; });
    EXPECT_EQ(item->itemURLData(), zqDataForPersistentURL(moved));
}

TEST_F(MovedFile, IsNotTakenForWhatTheItemGotMeanwhile)
{
    const auto delegate = launched();
    const auto item = addMovedItem(*delegate);
    EXPECT_EQ(item->itemURL(), QString());
    const QByteArray chosen = zqDataForPersistentURL(world.path());
    item->setItemURLData(chosen);
    zqWaitForPersistentURLSearches();
    zqRunMainLoopFor(std::chrono::milliseconds(20));
    EXPECT_EQ(item->itemURLData(), chosen);
}

TEST_F(MovedFile, IsWaitedForByACommandAndByBackgroundWork)
{
    const auto delegate = application();
    ZQError error;
    ASSERT_TRUE(delegate->openLibraryForCommand(&error));
    const auto item = addMovedItem(*delegate);
    EXPECT_EQ(item->itemURL(), moved);
    zqSetPersistentURLsWait(false);
    zqForgetPersistentURLs();
    EXPECT_EQ(item->findItemURL(), moved);
}

// Files of unmanaged items that were moved away by another program.

#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Operations/ZQNotificationCenter.h"
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

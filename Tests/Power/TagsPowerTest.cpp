// A power cut while tags go into files: the library keeps what it had saved, and the files come to hold it.

#include "Classes/Import/AImportManager.h"
#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/TagFileJournal.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Tests/Power/PowerFixture.h"

#include <QCoreApplication>

namespace {

class TagsPower : public PowerTest
{
protected:
    void importPictures()
    {
        ASSERT_NO_FATAL_FAILURE(open());
        QStringList files;
        for (int i = 0; i < items; ++i) {
            files.append(writePicture(QStringLiteral("in/%1.png").arg(i), i));
        }
        AImportManager::sharedAImportManager().startImport(
            {files,
             ZQSidebarBaseItem::projectsLabelInManagedObjectContext(context())->objectID(),
             ZQSidebarBaseItem::appendIndex,
             {}});
        zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
        QCoreApplication::processEvents();
        TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
        ASSERT_EQ(all().size(), items);
    }
    QList<ZQRef<ZQLibraryBaseItem>> all() const
    {
        return zqFetch<ZQLibraryBaseItem>(context(), QStringLiteral("active == YES"), {},
                                          {{.keyPath = QStringLiteral("title")}})
            .value_or(QList<ZQRef<ZQLibraryBaseItem>>());
    }
    static QStringList storedTags(const ZQLibraryBaseItem &item)
    {
        QStringList tags;
        for (const auto &tag : item.itemTags()) {
            tags.append(tag->title());
        }
        tags.sort();
        return tags;
    }
    static QStringList tagsInFile(const ZQLibraryBaseItem &item)
    {
        QStringList tags = OpenMeta::getUserTagsNoRestore(item.itemURL()).value_or(QStringList());
        tags.sort();
        return tags;
    }
    // As the window does it: the files are written at once, the store is saved when it comes to it.
    void tag(const QStringList &add, const QStringList &remove)
    {
        for (const auto &item : all()) {
            item->changeTags(add, remove);
            item->writeOpenMetaToDisk();
        }
    }
    void save()
    {
        ASSERT_TRUE(context().save());
        report();
    }
    // As many are edited beside the window: their files are written once their batch is saved.
    void tagBeside(const QStringList &add, const QStringList &remove)
    {
        ZQManagedObjectContext beside(delegate->persistentStoreCoordinator());
        const auto found = zqFetch<ZQLibraryBaseItem>(beside, QStringLiteral("active == YES")).value();
        QStringList bundleIDs;
        for (const auto &item : found) {
            item->changeTags(add, remove);
            bundleIDs.append(item->bundleID());
        }
        const auto announced = ZQLibraryEnvironment::current().willWriteTagsOfItems(bundleIDs);
        ASSERT_TRUE(beside.save());
        report();
        for (const auto &item : found) {
            item->writeOpenMetaToDisk();
        }
    }

    static constexpr int items = 3;
};

} // namespace

TEST_F(TagsPower, StoreAndFilesAgreeAfterTheNextLaunch)
{
    ASSERT_NO_FATAL_FAILURE(importPictures());
    const QString harbour = QStringLiteral("harbour");
    const QString night = QStringLiteral("night");
    begin();
    tag({harbour}, {});
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten(); // before the store has it
    save();
    tag({night}, {harbour});
    save();
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    report();
    tagBeside({}, {night});
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    cutThePower([&](int reports) {
        ASSERT_NO_FATAL_FAILURE(open());
        close(); // until then what a file alone holds has come into the store
        ASSERT_NO_FATAL_FAILURE(open());
        TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
        for (const auto &item : all()) {
            const QStringList stored = storedTags(*item);
            const bool hasHarbour = stored.contains(harbour);
            const bool hasNight = stored.contains(night);
            switch (reports) {
            case 0:
                EXPECT_FALSE(hasNight);
                break;
            case 1:
                EXPECT_TRUE(hasHarbour != hasNight) << "one was saved, the other takes its place";
                break;
            case 2:
            case 3:
                EXPECT_TRUE(hasNight || reports == 3);
                EXPECT_FALSE(hasHarbour);
                break;
            default:
                EXPECT_FALSE(hasHarbour || hasNight);
            }
            EXPECT_EQ(tagsInFile(*item), stored) << qPrintable(item->title());
        }
    });
}

TEST_F(TagsPower, ALineThatWasBroughtToTheDiskIsThere)
{
    const QString journal = path(QStringLiteral("pending-tags"));
    begin();
    TagFileJournal writer(journal);
    writer.bringToDisk(writer.willWrite(QStringLiteral("A")));
    report();
    writer.bringToDisk(writer.willWrite(QStringLiteral("B")));
    report();
    const QStringList all{QStringLiteral("A"), QStringLiteral("B")};
    cutThePower([&](int reports) {
        const QStringList found = TagFileJournal(journal).interrupted();
        EXPECT_EQ(found.first(std::min<qsizetype>(reports, found.size())), all.first(reports));
    });
}

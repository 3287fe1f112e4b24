// Files that other programs replace while the library has something for them.

#include "Classes/Import/AImportManager.h"
#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Tests/Classes/LiveFolders/LiveFolderFixture.h"
#include "Tests/Support/Skip.h"

#include <future>

namespace {

class ReplacedFilesTest : public LiveFolderTest
{
protected:
    void SetUp() override
    {
        LiveFolderTest::SetUp();
        file = writePicture(QStringLiteral("in/a.png"));
        add(path(QStringLiteral("in")));
        TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
        if (!OpenMeta::addUserTags(QStringList{QStringLiteral("probe")}, path(QStringLiteral("in"))).isNull()) {
            return skipWithout("extended attributes");
        }
    }
    void giveTag(const QString &tag)
    {
        const auto item = itemAt(file);
        ASSERT_TRUE(item);
        item->changeTags({tag}, {});
        ASSERT_TRUE(context().save());
        item->writeOpenMetaToDisk();
    }
    void replace(const QStringList &tags = {}) const
    {
        const QString other = writePicture(QStringLiteral("other.png"));
        if (!tags.isEmpty()) {
            ASSERT_TRUE(OpenMeta::setUserTags(tags, other).isNull());
        }
        move(other, file);
    }
    QStringList tagsOfItem() const { return itemAt(file) ? itemAt(file)->userTagTitles() : QStringList(); }

    QString file;
    const QString mine = QStringLiteral("mine");
    const QString theirs = QStringLiteral("theirs");
};

} // namespace

TEST_F(ReplacedFilesTest, ATagThatIsOnItsWayOutlivesAFileThatNeverHadIt)
{
    for (const QStringList &brought : {QStringList(), QStringList{theirs}}) {
        SCOPED_TRACE(qPrintable(brought.join(u' ')));
        const QString tag = mine + QString::number(brought.size());
        std::promise<void> gate;
        TagFileWriter::sharedTagFileWriter().afterWrites([opened = gate.get_future().share()] { opened.wait(); });
        giveTag(tag);
        replace(brought);
        bool isOpen = false;
        {
            const auto saved = ZQNotificationCenter::defaultCenter().addObserver(
                AImportManager::didFinishImportOperation, &AImportManager::sharedAImportManager(),
                [&](const ZQNotification &) {
                    if (!std::exchange(isOpen, true)) {
                        gate.set_value(); // what the run found is in the store
                    }
                });
            sync();
        }
        ASSERT_TRUE(isOpen);
        TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
        sync();
        EXPECT_TRUE(tagsOfItem().contains(tag));
        EXPECT_TRUE(OpenMeta::getUserTags(file).value_or(QStringList()).contains(tag));
        for (const QString &other : brought) {
            EXPECT_TRUE(tagsOfItem().contains(other));
        }
    }
}

TEST_F(ReplacedFilesTest, ANewFileGetsTheTagsOfTheOneItReplacedWhoeverFoundItFirst)
{
    giveTag(mine);
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    const auto item = itemAt(file);
    ASSERT_TRUE(item);
    replace();
    item->updateFileURLsForURL(file); // as when the window showed it before the run
    ASSERT_TRUE(context().save());
    sync();
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    EXPECT_TRUE(tagsOfItem().contains(mine));
    EXPECT_TRUE(OpenMeta::getUserTagsNoRestore(file).value_or(QStringList()).contains(mine));
}

#include "Classes/Browsing/Content/FileTagReader.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Classes/Browsing/BrowsingFixture.h"
#include "Tests/Classes/Editing/EditQueueGate.h"

namespace {

class FileTagReaderTest : public BrowsingFixture
{
protected:
    QList<ZQObjectID> addItems(int count)
    {
        QList<ZQRef<ZQLibraryBaseItem>> made;
        for (int i = 0; i < count; ++i) {
            made.append(library.context().insertNewObject<ZQLibraryImage>());
            made.last()->setTitle(QString::number(i));
        }
        library.context().save();
        QList<ZQObjectID> ids;
        for (const auto &item : made) {
            ids.append(item->objectID());
        }
        return ids;
    }
    void waitUntilRead()
    {
        zqRunMainLoopUntil([this] { return !library.filesToTakeIn.isEmpty(); });
    }

    QList<ZQObjectID> selected;
    QList<ZQObjectID> onScreen;
    FileTagReader reader{editing, [this] { return selected; }, [this] { return onScreen; }};
};

} // namespace

TEST_F(FileTagReaderTest, FilesAreReadWhenSelectedAndWhenTheWindowComesToTheFront)
{
    const QList<ZQObjectID> items = addItems(int(FileTagReader::mostAtOnce) + 2);
    selected = {items[1]};
    reader.selectionDidChange();
    EXPECT_EQ(library.filesToTakeIn, QStringList()) << "it may go on";
    selected = {items[2]};
    reader.selectionDidChange();
    waitUntilRead();
    EXPECT_EQ(library.filesToTakeIn, QStringList{QStringLiteral("2")});

    library.filesToTakeIn.clear();
    onScreen = {items[0], items[1]};
    reader.windowDidActivate();
    EXPECT_EQ(library.filesToTakeIn, (QStringList{QStringLiteral("0"), QStringLiteral("1")}));

    library.filesToTakeIn.clear();
    selected = items;
    reader.selectionDidChange();
    waitUntilRead();
    EXPECT_EQ(library.filesToTakeIn.size(), FileTagReader::mostAtOnce);
}

TEST_F(FileTagReaderTest, NothingOfTheSelectionIsReadWhileItIsEdited)
{
    selected = addItems(1);
    const EditQueueGate gate(editQueue);
    reader.selectionDidChange();
    zqRunMainLoopFor(std::chrono::milliseconds(500));
    EXPECT_EQ(library.filesToTakeIn, QStringList());
    gate.open();
    waitUntilRead();
}

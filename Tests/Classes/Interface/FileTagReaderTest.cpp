#include "Classes/Interface/Window/FileTagReader.h"
#include "Classes/Editing/ItemEdits.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/InfoPanel/InfoPanelViewController.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQGridView.h"
#include "Tests/Classes/Editing/EditQueueGate.h"
#include "Tests/Classes/Interface/WindowFixture.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPlainTextEdit>

class FileTagReaderTest : public WindowFixture
{
};

TEST_F(FileTagReaderTest, FilesAreReadWhenSelectedAndWhenTheWindowComesToTheFront)
{
    const Item project = addProject(QStringLiteral("Brand"));
    const auto first = library.addImage(QStringLiteral("first"));
    const auto second = library.addImage(QStringLiteral("second"));
    project->addItems({first, second});
    library.context().save();
    QWidget front;
    front.resize(800, 600);
    auto *browser = new BrowserViewController(window, &front);
    browser->resize(800, 600);
    auto *reader = new FileTagReader(window, *browser, &front);
    EXPECT_EQ(reader->parent(), &front);
    front.show();
    browser->showSidebarItems({project->objectID()});
    zqRunMainLoopUntil([&] { return fetcher.isIdle() && browser->content().count() == 2; });
    library.filesToTakeIn.clear();

    browser->grid().setSelection(ZQIndexSet(1, 1));
    zqRunMainLoopUntil([this] { return !library.filesToTakeIn.isEmpty(); });
    EXPECT_EQ(library.filesToTakeIn, QStringList{QStringLiteral("second")});

    library.filesToTakeIn.clear();
    QEvent activate(QEvent::WindowActivate);
    QCoreApplication::sendEvent(&front, &activate);
    EXPECT_EQ(library.filesToTakeIn, (QStringList{QStringLiteral("first"), QStringLiteral("second")}));
}

TEST_F(FileTagReaderTest, NothingOfTheSelectionIsReadWhileItIsEdited)
{
    const Item project = addProject(QStringLiteral("Brand"));
    QList<ZQRef<ZQLibraryBaseItem>> many;
    for (qsizetype i = 0; i <= ItemEdits::mostAtOnce; ++i) {
        many.append(library.context().insertNewObject<ZQLibraryImage>());
    }
    project->addItems(many);
    library.context().save();
    QWidget front;
    auto *browser = new BrowserViewController(window, &front);
    auto *panel = new InfoPanelViewController(window, *browser, &front);
    new FileTagReader(window, *browser, &front);
    browser->showSidebarItems({project->objectID()});
    zqRunMainLoopUntil([&] { return fetcher.isIdle() && browser->content().count() == many.size(); });
    library.filesToTakeIn.clear();

    const EditQueueGate gate(editQueue);
    browser->grid().selectAll();
    EXPECT_FALSE(panel->refresh()) << "it is to be asked again";
    EXPECT_TRUE(fetcher.isIdle());
    zqRunMainLoopFor(std::chrono::milliseconds(500));
    EXPECT_EQ(library.filesToTakeIn, QStringList());
    gate.open();
    zqRunMainLoopUntil([this] { return editQueue.operationCount() == 0; });
    EXPECT_TRUE(panel->refresh());
    EXPECT_FALSE(fetcher.isIdle());
    zqRunMainLoopUntil([this] { return fetcher.isIdle() && !library.filesToTakeIn.isEmpty(); });
}

TEST_F(FileTagReaderTest, NotesThatComeFromTheFileWhileThePersonTypesStayBelow)
{
    const Item project = addProject(QStringLiteral("Brand"));
    const auto image = library.addImage(QStringLiteral("mark"));
    image->setNotes(QStringLiteral("n"));
    project->addItems({image});
    library.context().save();
    QWidget front;
    auto *browser = new BrowserViewController(window, &front);
    auto *panel = new InfoPanelViewController(window, *browser, &front);
    browser->showSidebarItems({project->objectID()});
    zqRunMainLoopUntil([&] { return fetcher.isIdle() && browser->content().count() == 1; });
    browser->grid().setSelection(ZQIndexSet(0, 0));
    struct Case
    {
        QString typed;
        QString said;
        QString merged;
    };
    for (const Case &c : {Case{QStringLiteral("typed"), QStringLiteral("said"), QStringLiteral("typed\nsaid")},
                          Case{QString(), QStringLiteral("said"), QStringLiteral("said")},
                          Case{QStringLiteral("typed"), QStringLiteral("typed on"), QStringLiteral("typed on")}}) {
        image->setNotes(QStringLiteral("n"));
        panel->refresh();
        panel->findChild<QPlainTextEdit *>()->setPlainText(c.typed);
        image->setNotes(c.said);
        panel->refresh();
        EXPECT_EQ(image->notes(), c.merged);
    }
}

#include "Classes/Editing/ItemEdits.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/InfoPanel/InfoPanelViewController.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQGridView.h"
#include "Tests/Classes/Editing/EditQueueGate.h"
#include "Tests/Classes/Interface/WindowFixture.h"

#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>

#include <algorithm>

namespace {

class InfoPanelRefreshTest : public WindowFixture
{
protected:
    void show(const QList<ZQRef<ZQLibraryBaseItem>> &items)
    {
        const Item project = addProject(QStringLiteral("Brand"));
        project->addItems(items);
        library.context().save();
        browser.showSidebarItems({project->objectID()});
        zqRunMainLoopUntil([&] { return fetcher.isIdle() && browser.content().count() == items.size(); });
    }

    QWidget front;
    BrowserViewController &browser = *new BrowserViewController(window, &front);
    InfoPanelViewController &panel = *new InfoPanelViewController(window, browser, &front);
};

} // namespace

TEST_F(InfoPanelRefreshTest, ManyAreNotSummedUpWhileTheyAreEdited)
{
    QList<ZQRef<ZQLibraryBaseItem>> many;
    for (qsizetype i = 0; i <= ItemEdits::mostAtOnce; ++i) {
        many.append(library.context().insertNewObject<ZQLibraryImage>());
    }
    show(many);
    const EditQueueGate gate(editQueue);
    browser.grid().selectAll();
    EXPECT_FALSE(panel.refresh()) << "it is to be asked again";
    EXPECT_TRUE(fetcher.isIdle());
    gate.open();
    zqRunMainLoopUntil([this] { return editQueue.operationCount() == 0; });
    EXPECT_TRUE(panel.refresh());
    EXPECT_FALSE(fetcher.isIdle());
    zqRunMainLoopUntil([this] { return fetcher.isIdle(); });
}

TEST_F(InfoPanelRefreshTest, AFileIsMissingOnceItWasMissedForAWhile)
{
    const QString path = library.path(QStringLiteral("a.png"));
    const auto write = [&path] {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write("picture") > 0;
    };
    ASSERT_TRUE(write());
    show({library.addReferencedImage(path)});
    browser.grid().setSelection(ZQIndexSet(0, 0));
    panel.refresh();
    const auto saysMissing = [this] {
        const auto labels = panel.findChildren<QLabel *>();
        return std::any_of(labels.begin(), labels.end(),
                           [](const QLabel *label) { return label->text().contains(QStringLiteral("is missing")); });
    };
    ASSERT_TRUE(QFile::remove(path));
    panel.refresh();
    EXPECT_FALSE(saysMissing()) << "a program may be replacing it";
    zqRunMainLoopUntil(saysMissing);
    ASSERT_TRUE(write());
    panel.refresh();
    EXPECT_FALSE(saysMissing());
}

TEST_F(InfoPanelRefreshTest, NotesThatComeFromTheFileWhileThePersonTypesStayBelow)
{
    const auto image = library.addImage(QStringLiteral("mark"));
    image->setNotes(QStringLiteral("n"));
    show({image});
    browser.grid().setSelection(ZQIndexSet(0, 0));
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
        panel.refresh();
        panel.findChild<QPlainTextEdit *>()->setPlainText(c.typed);
        image->setNotes(c.said);
        panel.refresh();
        EXPECT_EQ(image->notes(), c.merged);
    }
}

#include "Classes/Interface/Browser/BrowserViewController.h"

#include "Kit/Persistence/ZQContextPrivate.h"
#include "Tests/Classes/Interface/WindowFixture.h"

#include <QFile>
#include <QMimeData>
#include <QSemaphore>
#include <QSignalSpy>
#include <QtTest/QTest>

class ShownContentTest : public WindowFixture
{
protected:
    ShownContentTest() : project(addProject(QStringLiteral("Project")))
    {
        for (const char *name : {"a", "b", "c", "d"}) {
            const auto image = library.addImage(QLatin1StringView(name));
            images.append(image);
            project->addItem(image.get());
        }
        library.context().save();
    }
    void settle()
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return fetcher.isIdle(); }, 10000));
    }
    QStringList shown(BrowserContent &content) const
    {
        QStringList result;
        content.willShow(0, content.count() - 1);
        for (qint64 i = 0; i < content.count(); ++i) {
            result.append(content.item(i).title);
        }
        return result;
    }
    Item project;
    QList<ZQRef<ZQLibraryImage>> images;
};

TEST_F(ShownContentTest, ADragCarriesEveryItemAndIsReadInOneGo)
{
    constexpr int many = 5200; // more than another program gets files of
    for (int i = 0; i < many; ++i) {
        library.context().insertNewObject<ZQLibraryImage>();
    }
    library.context().save();
    const Item everything = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(library.context());
    BrowserContent content(window);
    content.setSidebarItems({everything->objectID()});
    settle();
    content.willShow(0, 9);
    EXPECT_FALSE(content.libraryItem(9)->isFault()) << "all that is seen is read in one go";
    EXPECT_TRUE(content.libraryItem(10)->isFault());
    ZQIndexSet all;
    all.insert(0, content.count() - 1);
    const ZQSQLiteConnection *connection = ZQObjectAccess::connection(library.context());
    int before = connection->preparedUses();
    std::unique_ptr<QMimeData> data(content.mimeData(all));
    EXPECT_LE(connection->preparedUses() - before, 12) << "batches of 500";
    before = connection->preparedUses();
    const QList<ZQObjectID> dropped = BrowserContent::itemsOfMimeData(data.get(), window);
    EXPECT_EQ(connection->preparedUses() - before, 1);
    EXPECT_EQ(QSet<ZQObjectID>(dropped.begin(), dropped.end()).size(), many + images.size());
    const QByteArray foreign = project->UUID().toUtf8() + "\nx-zelto://nothing/ZQLibraryImage/p1\nx\n";
    library.renameTable("ZQLibraryBaseItem", "away");
    EXPECT_TRUE(BrowserContent::itemsOfMimeData(data.get(), window).isEmpty());
    EXPECT_EQ(user.errors.size(), 1) << "not as if nothing had been dragged";
    library.renameTable("away", "ZQLibraryBaseItem");
    data->setData(BrowserContent::itemsMimeType, foreign);
    EXPECT_TRUE(BrowserContent::itemsOfMimeData(data.get(), window).isEmpty());
}

TEST_F(ShownContentTest, TheBrowserShowsWhatTheSidebarItemHolds)
{
    BrowserContent content(window);
    content.setSidebarItems({project->objectID()});
    settle();
    EXPECT_EQ(shown(content), (QStringList{"a", "b", "c", "d"}));
    EXPECT_TRUE(content.groups().isEmpty());
    EXPECT_TRUE(content.tab().browserCanManuallySort());

    const Item folder = addFolder(QStringLiteral("Folder"));
    const Item first = addProject(QStringLiteral("One"), folder);
    const Item second = addProject(QStringLiteral("Two"), folder);
    addProject(QStringLiteral("Empty"), folder);
    first->addItem(images[2].get());
    second->addItem(images[0].get());
    library.context().save();
    content.setSidebarItems({folder->objectID()});
    settle();
    EXPECT_EQ(shown(content), (QStringList{"c", "a"}));
    ASSERT_EQ(content.groups().size(), 2) << "an empty project has no group";
    EXPECT_EQ(content.groups()[1].title, QStringLiteral("Two"));

    const Item everything = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(library.context());
    everything->setSortKeys(2);
    everything->setSortDirection(true);
    library.context().save();
    content.setSidebarItems({everything->objectID()});
    settle();
    EXPECT_EQ(shown(content), (QStringList{"a", "b", "c", "d"}));
    everything->setSortDirection(false);
    images[1]->deleteSelf();
    library.context().save();
    content.reload();
    settle();
    EXPECT_EQ(shown(content), (QStringList{"d", "c", "a"}));
    QSignalSpy found(&content, &BrowserContent::typingFound);
    content.indexForTyping(QStringLiteral("A"), 0);
    settle();
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found[0][0].toLongLong(), 2);
}

TEST_F(ShownContentTest, TheFilterKeepsTitlesThatContainIt)
{
    images[0]->setTitle(QStringLiteral("Été"));
    images[1]->setTitle(QStringLiteral("winter ete"));
    library.context().save();
    BrowserContent content(window);
    content.setSidebarItems({project->objectID()});
    content.setFilter(QStringLiteral("ete"));
    settle();
    EXPECT_EQ(shown(content), (QStringList{"Été", "winter ete"}));
    content.setFilter(QStringLiteral("nothing like it"));
    settle();
    EXPECT_EQ(content.count(), 0);
    EXPECT_TRUE(content.emptyText().contains(QStringLiteral("nothing like it")));
    content.setFilter(QString());
    settle();
    EXPECT_EQ(content.count(), 4);
}

TEST_F(ShownContentTest, AQuickSuccessionOfRequestsEndsWithTheLastOne)
{
    BrowserContent content(window);
    for (const char *text : {"a", "b", "c"}) {
        content.setFilter(QLatin1StringView(text));
        content.setSidebarItems({project->objectID()});
    }
    settle();
    EXPECT_EQ(shown(content), QStringList{"c"});
}

TEST_F(ShownContentTest, ATabThatComesBackShowsItsRowsAtOnceAndRecentOnesAnew)
{
    for (const auto &image : std::as_const(images)) {
        image->setImport_date(zqNow());
    }
    library.context().save();
    BrowserContent content(window);
    const auto tab = std::make_shared<TabState>(window, QList<ZQObjectID>{project->objectID()});
    const auto recent = std::make_shared<TabState>(
        window,
        QList<ZQObjectID>{ZQSidebarBaseItem::recentProjectInManagedObjectContext(library.context())->objectID()});
    content.setTab(tab);
    settle();
    const QStringList rows = shown(content);
    content.setTab(recent);
    settle();
    EXPECT_EQ(content.count(), 4);
    content.setTab(tab);
    EXPECT_FALSE(content.isLoading());
    EXPECT_EQ(shown(content), rows);
    images[0]->setImport_date(zqNow().addDays(-30));
    images[0]->setModification_date(zqNow().addDays(-30));
    library.context().save();
    content.setTab(recent);
    EXPECT_EQ(content.count(), 4) << "as it was";
    settle();
    EXPECT_EQ(content.count(), 3);
}

TEST_F(ShownContentTest, APictureStaysWhileAProgramReplacesItsFile)
{
    const QString path = library.path(QStringLiteral("live.png"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("picture") > 0);
    file.close();
    project->addItem(library.addReferencedImage(path).get());
    library.context().save();
    BrowserContent content(window);
    content.setSidebarItems({project->objectID()});
    settle();
    const qint64 last = content.count() - 1;
    const ZQThumbnailRequest shown = content.item(last).thumbnail;
    EXPECT_EQ(shown.path, path);
    ASSERT_TRUE(file.remove());
    content.dropObjects();
    EXPECT_EQ(content.item(last).thumbnail, shown);
}

TEST_F(ShownContentTest, RowsOfThePlaceBeforeAreNobodysAndGoWhenTheirsAreLate)
{
    const Item other = addProject(QStringLiteral("Other"));
    other->addItem(images[1].get());
    library.context().save();
    BrowserViewController browser(window);
    BrowserContent &content = browser.content();
    browser.showSidebarItems({project->objectID()});
    settle();
    browser.grid().selectAll();
    EXPECT_EQ(browser.selectedItems().size(), 4);

    QSemaphore isFree;
    ContentFetcher::Ticket busy(fetcher, ContentFetcher::Priority::Content);
    busy.run([&isFree](auto &, const auto &) {
        isFree.acquire();
        return ContentFetcher::Ticket::Answer();
    });
    QSignalSpy changed(&content, &BrowserContent::changed);
    QSignalSpy waited(&content, &BrowserContent::waited);
    browser.showSidebarItems({other->objectID()});
    EXPECT_EQ(content.count(), 4) << "a quick answer is one change";
    browser.grid().selectAll();
    EXPECT_EQ(browser.selectionCount(), 0);
    browser.grid().setCurrentIndex(2);
    browser.openDetail(false);
    EXPECT_FALSE(browser.isDetailOpen());
    EXPECT_TRUE(content.libraryItemIDs(ZQIndexSet(0, 3)).isEmpty());
    EXPECT_TRUE(content.indexesOfLibraryItems({images[0]->objectID()}).isEmpty());
    EXPECT_TRUE(QTest::qWaitFor([&] { return waited.count() == 1; }, 10000));
    EXPECT_EQ(content.count(), 0);
    EXPECT_EQ(content.emptyText(), QString());
    EXPECT_TRUE(QTest::qWaitFor([&] { return waited.count() == 2; }, 10000));
    EXPECT_EQ(content.emptyText(), QStringLiteral("Reading…"));
    EXPECT_EQ(changed.count(), 0);
    isFree.release();
    settle();
    EXPECT_EQ(shown(content), QStringList{QStringLiteral("b")});
    browser.grid().selectAll();
    EXPECT_EQ(browser.selectedItems(), QList<ZQObjectID>{images[1]->objectID()});
    EXPECT_EQ(waited.count(), 2);
}

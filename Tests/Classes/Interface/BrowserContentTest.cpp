#include "Classes/Interface/Browser/BrowserViewController.h"

#include "Classes/Interface/Browser/EmptyState.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Interface/WindowFixture.h"

#include <QPushButton>

#include <sqlite3.h>
#include <vector>

namespace {

class BrowserContentTest : public WindowFixture
{
protected:
    BrowserContentTest()
    {
        QObject::connect(&content, &BrowserContent::changed, [this] { ++changes; });
        for (const char *title : {"Alpha", "Beta", "Gamma"}) {
            const auto item = library.context().insertNewObject<ZQLibraryImage>();
            item->setTitle(QString::fromLatin1(title));
            item->setActive(true);
            items.append(item);
        }
        library.context().save();
    }
    void show(const Item &item)
    {
        content.setSidebarItems({item->objectID()});
        wait();
    }
    void wait()
    {
        zqRunMainLoopUntil([this] { return fetcher.isIdle(); });
    }
    QStringList shown()
    {
        content.willShow(0, content.count() - 1);
        QStringList titles;
        for (qint64 i = 0; i < content.count(); ++i) {
            titles.append(content.item(i).title);
        }
        return titles;
    }

    BrowserContent content{window};
    QList<ZQRef<ZQLibraryBaseItem>> items;
    int changes = 0;
};

} // namespace

TEST_F(BrowserContentTest, RowsOfAProjectStandForTheirItems)
{
    const Item project = addProject(QStringLiteral("Brand"));
    project->addItems({items[2], items[0]});
    library.context().save();
    show(project);
    EXPECT_EQ(shown(), (QStringList{QStringLiteral("Gamma"), QStringLiteral("Alpha")}));
    EXPECT_EQ(content.libraryItemIDs(ZQIndexSet(0, 1)),
              (QList<ZQObjectID>{items[2]->objectID(), items[0]->objectID()}));
    EXPECT_EQ(content.rowIDs(ZQIndexSet(0, 1)).first().entity->name, ZQProjectItem::entityName());
    EXPECT_EQ(content.indexOfLibraryItem(items[0]->objectID()), 1);
    EXPECT_EQ(content.indexOfLibraryItem(items[1]->objectID()), -1);
}

TEST_F(BrowserContentTest, IndexesGoOverAllSections)
{
    const Item first = addProject(QStringLiteral("First"));
    const Item empty = addProject(QStringLiteral("Empty"));
    const Item last = addProject(QStringLiteral("Last"));
    first->addItems({items[0]});
    last->addItems({items[1], items[2]});
    library.context().save();
    content.setSidebarItems({first->objectID(), empty->objectID(), last->objectID()});
    wait();
    ASSERT_EQ(content.count(), 3);
    const QList<ZQObjectID> all = content.libraryItemIDs(ZQIndexSet(0, 2));
    EXPECT_EQ(QSet<ZQObjectID>(all.begin(), all.end()).size(), 3);
    EXPECT_EQ(content.libraryItemIDs(ZQIndexSet(1, 1)), all.mid(1, 1));
    EXPECT_EQ(content.libraryItemIDs(ZQIndexSet(1, 9)), all.mid(1));
    for (qint64 i = 0; i < 3; ++i) {
        EXPECT_EQ(content.indexOfLibraryItem(all[i]), i);
        EXPECT_EQ(content.indexesOfRows(content.rowIDs(ZQIndexSet(i, i))), ZQIndexSet(i, i));
    }
}

TEST_F(BrowserContentTest, TellsOnlyOfRowsThatCameWentOrMoved)
{
    const Item project = addProject(QStringLiteral("Brand"));
    project->addItems({items[0], items[1]});
    library.context().save();
    show(project);
    EXPECT_EQ(changes, 1);

    items[0]->setTitle(QStringLiteral("Renamed"));
    library.context().save();
    content.dropObjects();
    content.reload();
    wait();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(shown().first(), QStringLiteral("Renamed"));

    project->addItems({items[2]});
    library.context().save();
    content.reload();
    wait();
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(content.count(), 3);

    content.setFilter(QStringLiteral("a")); // all three
    wait();
    EXPECT_EQ(changes, 3) << "a filter that leaves the rows as they are is still answered";
}

TEST_F(BrowserContentTest, TypingFindsTheNextTitleRoundTheEndAndWithoutAccents)
{
    const Item project = addProject(QStringLiteral("Brand"));
    items[1]->setTitle(QStringLiteral("Éclair"));
    project->addItems(items);
    library.context().save();
    show(project);
    std::vector<qint64> found;
    QObject::connect(&content, &BrowserContent::typingFound, [&](qint64 index) { found.push_back(index); });
    struct Case
    {
        const char *text;
        qint64 from;
        qint64 found; // -1: nothing
    };
    for (const Case &each : {Case{"ga", 0, 2},
                             {"ecl", 0, 1},
                             {"ÉCLAIR", 2, 1},
                             {"al", 0, 0},
                             {"al", 2, 0},
                             {"g", 2, 2},
                             {"lpha", 0, -1}}) {
        found.clear();
        EXPECT_EQ(content.indexForTyping(QString::fromUtf8(each.text), each.from), -1) << "it comes later";
        wait();
        EXPECT_EQ(found, each.found < 0 ? std::vector<qint64>() : std::vector<qint64>{each.found})
            << each.text << " from " << each.from;
    }
    found.clear();
    EXPECT_EQ(content.indexForTyping(QStringLiteral("3d"), 0), -1);
    wait();
    EXPECT_TRUE(found.empty()) << "a digit rates";
}

TEST_F(BrowserContentTest, RowsThatCannotBeReadAreAnErrorAndNotAnEmptyList)
{
    const Item project = addProject(QStringLiteral("Brand"));
    project->addItems({items[0]});
    library.context().save();
    show(project);
    ASSERT_EQ(content.count(), 1);
    const auto connection = library.coordinator()->newConnection();
    const auto rename = [&](const char *from, const char *to) {
        ASSERT_TRUE(connection->execute(QStringLiteral("PRAGMA legacy_alter_table=ON; ALTER TABLE %1 RENAME TO %2")
                                            .arg(QLatin1String(from), QLatin1String(to))));
    };
    rename("ZQProjectItem", "away");
    changes = 0;
    content.reload();
    wait();
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(content.error().isNull());
    EXPECT_EQ(content.count(), 0);
    EXPECT_TRUE(content.emptyText().startsWith(QStringLiteral("The library could not be read\n\n")));
    EXPECT_GT(content.emptyText().size(), QStringLiteral("The library could not be read\n\n").size());
    rename("away", "ZQProjectItem");
    content.reload();
    wait();
    EXPECT_TRUE(content.error().isNull());
    EXPECT_EQ(content.count(), 1);
}

TEST_F(BrowserContentTest, IntoALiveFolderThatWasNotThereNothingIsImported)
{
    const auto live = zqCast<ZQSidebarWatchedFolder>(add<ZQSidebarWatchedFolder>(
        QStringLiteral("Live"), ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(library.context())));
    const Item project = addProject(QStringLiteral("Empty"));
    BrowserViewController browser(window);
    for (const bool isEnabled : {true, false}) {
        live->setIs_enabled(isEnabled);
        library.context().save();
        for (const QList<ZQObjectID> &shown : {QList{live->objectID()}, QList{project->objectID(), live->objectID()}}) {
            browser.showSidebarItems(shown);
            wait();
            EXPECT_EQ(browser.emptyState().isVisibleTo(&browser), isEnabled && shown.size() == 1);
            const QString text = browser.content().emptyText();
            EXPECT_EQ(text.contains(shown.size() > 1 ? QStringLiteral("A live folder") : QStringLiteral("is off")),
                      !isEnabled);
        }
    }
}

TEST_F(BrowserContentTest, ADamagedStoreIsOfferedToBeRecoveredWhereItsRowsWouldBe)
{
    const Item project = addProject(QStringLiteral("Brand"));
    project->addItems({items[0]});
    library.context().save();
    BrowserViewController browser(window);
    auto *recover = browser.findChild<QPushButton *>(QStringLiteral("Recover"));
    ASSERT_NE(recover, nullptr);
    int requests = 0;
    QObject::connect(&browser, &BrowserViewController::recoveryRequested, [&] { ++requests; });
    browser.showSidebarItems({project->objectID()});
    wait();
    ASSERT_EQ(browser.content().count(), 1);
    EXPECT_FALSE(recover->isVisibleTo(&browser));

    const auto connection = library.coordinator()->newConnection();
    sqlite3_db_config(connection->handle(), SQLITE_DBCONFIG_DEFENSIVE, 0, nullptr);
    const int version = connection->value(QStringLiteral("PRAGMA schema_version")).toInt();
    ASSERT_TRUE(connection->execute(QStringLiteral("PRAGMA writable_schema=ON; UPDATE sqlite_master SET rootpage = "
                                                   "999999 WHERE name = 'ZQProjectItem'; PRAGMA schema_version=%1")
                                        .arg(version + 1)));
    browser.content().reload();
    wait();
    EXPECT_EQ(browser.content().error().code, int(ZQStoreError::Damaged));
    EXPECT_TRUE(recover->isVisibleTo(&browser));
    EXPECT_TRUE(recover->focusPolicy() & Qt::TabFocus);
    EXPECT_FALSE(recover->accessibleName().isEmpty());
    recover->click();
    EXPECT_EQ(requests, 1);
}

// What smart folders show, of the store and of the index, and the numbers beside the entries of the sidebar.

#include "Classes/Browsing/Content/SidebarContents.h"

#include "Classes/Browsing/Content/ContentBuilder.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Browsing/Tabs/TabState.h"
#include "Classes/Editing/SidebarCommands.h"
#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Browsing/BrowsingFixture.h"

namespace {

class SidebarContentsTest : public BrowsingFixture
{
protected:
    SidebarContentsTest()
    {
        index.follow(library.context());
        const QDateTime now = QDateTime::currentDateTimeUtc();
        int number = 0;
        for (const char *title : {"logo", "mark", "poster", "sketch", "gone"}) {
            const auto image = library.addImage(QLatin1StringView(title), QStringLiteral("png"), title);
            image->setImport_date(number < 2 ? now : now.addDays(-10 - number));
            image->setRating(qint16(number++));
            image->setSHA1(QLatin1StringView(title));
            images.append(image);
        }
        images[2]->setSHA1(images[3]->SHA1());
        images[4]->setActive(false);
        red = ZQSidebarTag::addNewTagWithName(QStringLiteral("red"), library.context());
        images[1]->addTagsObject(red.get());
        project->addItems({images[0], images[2]});
        library.context().save();
    }
    Item smart(const QString &text, const Item &in = {})
    {
        return SidebarCommands(editing).addSmartFolder(text, QStringLiteral("Smart"), in);
    }
    void waitForIndex() { ASSERT_TRUE(index.waitUntilCurrent()); }
    // The titles in order, as a context of its own reads them.
    std::string shown(const ContentQuery &query, LibraryIndex *from)
    {
        ZQManagedObjectContext context(library.coordinator());
        const auto content = ContentBuilder(query, context, from).content([] { return true; });
        QStringList titles;
        for (const ZQObjectID &id : content ? content->rows.related : QList<ZQObjectID>()) {
            titles.append(zqCast<ZQLibraryBaseItem>(context.objectWithID(id))->title());
        }
        return content && content->error.isNull() ? titles.join(u' ').toStdString() : "error";
    }
    // The same of both, which have to agree.
    std::string found(const QString &text, const QString &filter = {}, bool edits = false)
    {
        const ContentQuery query{{smart(text)->objectID()},  filter, ZQSortValue::Title, true,
                                 BrowserDisplayStyle::Plain, edits};
        waitForIndex();
        const std::string ofStore = shown(query, nullptr);
        EXPECT_EQ(shown(query, &index), ofStore) << text.toStdString();
        return ofStore;
    }

    LibraryIndex index{library.coordinator()};
    const Item folder = addFolder(QStringLiteral("Folder"));
    const Item project = addProject(QStringLiteral("Project"), folder);
    QList<ZQRef<ZQLibraryImage>> images;
    ZQRef<ZQSidebarTag> red;
};

} // namespace

TEST_F(SidebarContentsTest, ASmartFolderShowsWhatItsTextFindsInTheWholeLibrary)
{
    const auto of = [](const char *text) { return QString::fromUtf8(text); };
    for (const auto &[text, titles] : {std::pair{"o", "logo poster"},
                                       {"#r>1", "poster sketch"},
                                       {"#di=today", "logo mark"},
                                       {"#tag red OR #r>2", "mark sketch"},
                                       {"-#project Project", "mark sketch"},
                                       {"#duplicates", "poster sketch"},
                                       {"gone", ""},
                                       {"", ""},
                                       {"   ", ""},
                                       {"#d=31/02", ""},
                                       {"( ) OR", ""},
                                       {"#d=31/02 logo", "logo"}}) {
        EXPECT_EQ(found(of(text)), titles) << text;
    }
    EXPECT_EQ(found(of("#r<2"), of("mark")), "mark") << "the field narrows it";
    EXPECT_EQ(found(of("#r>1"), of("#duplicates")), "poster sketch");
    EXPECT_EQ(found(of("#r>1"), of("logo")), "");
    EXPECT_EQ(found(of("#r>1"), of("logo"), true), "logo") << "while its text is edited, the field stands for it";
    images[0]->setRating(5);
    library.context().save();
    EXPECT_EQ(found(of("#r>1")), "logo poster sketch");
}

TEST_F(SidebarContentsTest, ItStandsInFoldersAndBesideProjectsAsTheyDo)
{
    const Item saved = smart(QStringLiteral("mark"), folder);
    waitForIndex();
    for (LibraryIndex *from : {static_cast<LibraryIndex *>(nullptr), &index}) {
        EXPECT_EQ(shown({{folder->objectID()}, {}, ZQSortValue::None, true}, from), "logo poster mark");
        EXPECT_EQ(shown({{project->objectID(), saved->objectID()}, {}, ZQSortValue::None, true}, from),
                  "logo poster mark");
        EXPECT_EQ(
            shown({{saved->objectID(), project->objectID()}, {}, ZQSortValue::Title, true, BrowserDisplayStyle::Plain},
                  from),
            "logo mark poster");
    }
}

TEST_F(SidebarContentsTest, WhatATextNamesMayGo)
{
    const Item live = add<ZQSidebarWatchedFolder>(
        QStringLiteral("Pictures"), ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(library.context()));
    images[3]->setWatchingFolder(zqCast<ZQSidebarWatchedFolder>(live).get());
    library.context().save();
    const QString text = QStringLiteral("#tag red OR #folder pictures");
    EXPECT_EQ(found(text), "mark sketch");
    live->deleteSelf();
    library.context().save();
    EXPECT_EQ(found(text), "mark");
    SidebarCommands(editing).deleteListItems({red});
    ZQSidebarBaseItem::permanentlyDeleteInactiveObjectinManagedObjectContext(library.context());
    library.context().save();
    EXPECT_EQ(found(text), "");
}

TEST_F(SidebarContentsTest, NumbersAreThoseOfTheStoreWhoeverCounts)
{
    smart(QStringLiteral("o"));
    smart(QStringLiteral("#duplicates"), folder);
    smart({});
    addProject(QStringLiteral("Empty"));
    ZQSidebarBaseItem::screenshotProjectInManagedObjectContext(library.context())->addItems({images[1], images[3]});
    const Item live = add<ZQSidebarWatchedFolder>(
        QStringLiteral("Pictures"), ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(library.context()));
    images[0]->setWatchingFolder(zqCast<ZQSidebarWatchedFolder>(live).get());
    library.context().save();
    waitForIndex();
    QList<SidebarContents::Entry> entries;
    const auto all = zqFetch<ZQSidebarBaseItem>(library.context(), QStringLiteral("is_Label == NO"), {});
    for (const auto &item : *all) {
        if (!item->isFolder()) {
            entries.append(SidebarContents::entryFor(*item));
        }
    }
    const auto counts = [&](LibraryIndex *from) {
        ZQManagedObjectContext context(library.coordinator());
        return SidebarContents(context, from).counts(entries, [] { return true; });
    };
    const auto ofStore = counts(nullptr);
    ASSERT_TRUE(ofStore);
    EXPECT_EQ(ofStore->size(), entries.size());
    QHash<QString, qint64> texts;
    for (const SidebarContents::Entry &entry : std::as_const(entries)) {
        const auto item = editing.sidebarItem(entry.item);
        if (entry.isSmart) {
            texts.insert(entry.searchText, ofStore->value(entry.item));
        } else {
            EXPECT_EQ(ofStore->value(entry.item), item->numberOfItems()) << item->title().toStdString();
        }
    }
    EXPECT_EQ(texts, (QHash<QString, qint64>{{QStringLiteral("o"), 2}, {QStringLiteral("#duplicates"), 2}, {{}, 0}}));
    const auto ofIndex = counts(&index);
    ASSERT_TRUE(ofIndex);
    EXPECT_EQ(*ofIndex, *ofStore);
    // Where the index answers for them, the lists of the store are not read.
    library.renameTable("ZQProjectItem", "away");
    EXPECT_TRUE(counts(&index));
    EXPECT_FALSE(counts(nullptr));
    library.renameTable("away", "ZQProjectItem");
    ZQManagedObjectContext context(library.coordinator());
    EXPECT_FALSE(SidebarContents(context).counts(entries, [] { return false; })) << "given up";
}

TEST_F(SidebarContentsTest, TheIndexAndTheStoreMeanTheSamePicturesByAName)
{
    const auto picture = [](quint64 number) { return ZQPictureHash{{number, 2, 3, 4}}; };
    for (qsizetype i = 0; i < images.size(); ++i) {
        images[i]->setTitle(QStringLiteral("dawn"));
        images[i]->setPictureHash(picture(quint64(i)).bytes());
    }
    images[1]->setTitle(images[0]->bundleID()); // the bundleID goes first
    images[2]->setTitle(QStringLiteral("dusk"));
    images[3]->setActive(false);
    library.context().save();
    waitForIndex();
    for (LibraryIndex *from : {static_cast<LibraryIndex *>(nullptr), &index}) {
        ZQManagedObjectContext context(library.coordinator());
        const auto named = SidebarContents(context, from).searchContext(ZQListRows::LibraryItems, {}).picturesNamed;
        EXPECT_EQ(named(images[0]->bundleID()), QList{picture(0)});
        EXPECT_EQ(named(images[1]->bundleID()), QList{picture(1)});
        EXPECT_EQ(named(QStringLiteral("DUSK")), QList{picture(2)});
        EXPECT_EQ(named(images[3]->bundleID()), QList<ZQPictureHash>());
        EXPECT_EQ(named(QStringLiteral("night")), QList<ZQPictureHash>());
    }
}

TEST_F(SidebarContentsTest, ALiveFolderCountsWithAllBelowIt)
{
    const Item live = add<ZQSidebarWatchedFolder>(
        QStringLiteral("Pictures"), ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(library.context()));
    const Item sub = add<ZQSidebarWatchedFolder>(QStringLiteral("Sub"), live);
    const Item deep = add<ZQSidebarWatchedFolder>(QStringLiteral("Deep"), sub);
    const Item empty = add<ZQSidebarWatchedFolder>(QStringLiteral("Empty"), live);
    images[0]->setWatchingFolder(zqCast<ZQSidebarWatchedFolder>(live).get());
    images[1]->setWatchingFolder(zqCast<ZQSidebarWatchedFolder>(deep).get());
    images[2]->setWatchingFolder(zqCast<ZQSidebarWatchedFolder>(deep).get());
    library.context().save();
    waitForIndex();
    for (LibraryIndex *from : {static_cast<LibraryIndex *>(nullptr), &index}) {
        const auto counts =
            SidebarContents(library.context(), from)
                .countsWithBelow({live->objectID(), sub->objectID(), empty->objectID()}, [] { return true; });
        ASSERT_TRUE(counts);
        EXPECT_EQ(*counts,
                  (SidebarContents::Counts{{live->objectID(), 3}, {sub->objectID(), 2}, {empty->objectID(), 0}}));
    }
}

TEST_F(SidebarContentsTest, TheStoreCountsAllOfAKindTogether)
{
    constexpr int many = 60;
    const Item live = ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(library.context());
    QList<SidebarContents::Entry> entries;
    QHash<ZQObjectID, qint64> expected;
    for (int i = 0; i < many; ++i) {
        const auto tag = ZQSidebarTag::addNewTagWithName(QStringLiteral("t%1").arg(i), library.context());
        const Item made = addProject(QStringLiteral("p%1").arg(i));
        const Item watched = add<ZQSidebarWatchedFolder>(QStringLiteral("f%1").arg(i), live);
        if (i < 3) {
            images[i]->addTagsObject(tag.get());
            images[4]->addTagsObject(tag.get()); // which is deleted
            made->addItems({images[i], images[4]});
            images[4]->setActive(false);
            images[i]->setWatchingFolder(zqCast<ZQSidebarWatchedFolder>(watched).get());
        }
        ASSERT_TRUE(library.context().save());
        for (const Item &item : {Item(tag), made, watched}) {
            entries.append(SidebarContents::entryFor(*item));
            expected.insert(item->objectID(), i < 3 ? 1 : 0);
        }
    }
    ZQManagedObjectContext context(library.coordinator());
    const ZQSQLiteConnection *connection = ZQObjectAccess::connection(context);
    const int before = connection->preparedUses();
    EXPECT_EQ(SidebarContents(context).counts(entries, [] { return true; }), expected);
    EXPECT_LE(connection->preparedUses() - before, 3);
    zqCast<ZQLibraryBaseItem>(context.objectWithID(images[0]->objectID()))->setActive(false);
    for (qsizetype i = 0; i < 3; ++i) {
        expected[entries[i].item] = 0;
    }
    EXPECT_EQ(SidebarContents(context).counts(entries, [] { return true; }), expected) << "before it is saved";
}

TEST_F(SidebarContentsTest, ATabThatShowsASavedSearchLooksAgainAfterAnyChange)
{
    const Item saved = smart(QStringLiteral("nothing yet"), folder);
    for (const Item &selected : {saved, folder}) {
        const auto tab = std::make_shared<TabState>(editing, QList{selected->objectID()});
        EXPECT_TRUE(tab->showsSavedSearch());
        tab->setContent({});
        const auto token = library.context().observeDidSave([&](const ZQContextDidSave &s) { tab->evaluateCache(s); });
        images[3]->setNotes(QStringLiteral("nothing yet"));
        images[3]->setRating(images[3]->rating() == 1 ? 2 : 1);
        library.context().save();
        EXPECT_FALSE(tab->content());
    }
    const auto tab = std::make_shared<TabState>(editing, QList{saved->objectID()});
    tab->setSearchString(QStringLiteral("text"));
    tab->setEditsSearch(true);
    EXPECT_TRUE(tab->contentQuery().editsSearch);
    tab->goToSidebarItems({project->objectID()});
    EXPECT_FALSE(tab->contentQuery().editsSearch);
    EXPECT_TRUE(tab->searchString().isEmpty()) << "it was the text of another";
    EXPECT_FALSE(tab->showsSavedSearch());
}

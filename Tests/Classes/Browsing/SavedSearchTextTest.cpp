// What a search is saved as, and what that finds of what was shown, by the store and by the index.

#include "Classes/Browsing/Content/SavedSearchText.h"

#include "Classes/Browsing/Content/ContentBuilder.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Classes/Editing/SidebarCommands.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Browsing/BrowsingFixture.h"

namespace {

class SavedSearchTextTest : public BrowsingFixture
{
protected:
    SavedSearchTextTest() { index.follow(library.context()); }
    // An old item of no place.
    ZQRef<ZQLibraryImage> addImage(const char *title)
    {
        const auto image = library.addImage(QLatin1StringView(title), QStringLiteral("png"), title);
        const QDateTime old = QDateTime::currentDateTimeUtc().addDays(-100);
        image->setImport_date(old);
        image->setModification_date(old);
        image->setSHA1(QLatin1StringView(title));
        return image;
    }
    // With "e…" in it, which a search for "e" finds, and something else.
    Item filled(const Item &place, const char *title)
    {
        place->addItem(addImage(title).get());
        place->addItem(addImage("x").get());
        library.context().save();
        return place;
    }
    Item addTag(const QString &title) { return ZQSidebarTag::addNewTagWithName(title, library.context()); }
    Item special(ZQSidebarKind kind) { return ZQSidebarBaseItem::specialItemOfKind(kind, library.context()); }
    Item smart(const QString &text, const Item &in = {})
    {
        return SidebarCommands(editing).addSmartFolder(text, QStringLiteral("Smart"), in);
    }
    static ContentQuery queryOf(const QList<Item> &selection, const QString &filter)
    {
        ContentQuery query{.sidebarItems = {}, .filter = filter};
        for (const Item &item : selection) {
            query.sidebarItems.append(item->objectID());
        }
        return query;
    }
    std::string textOf(const QList<Item> &selection, const char *filter = "#tt e")
    {
        return SavedSearchText::forQuery(queryOf(selection, QString::fromUtf8(filter)), library.context())
            .toStdString();
    }
    SavedSearchText::Comparison compared(const SavedSearchText::Shown &shown, const QString &text)
    {
        library.context().save();
        EXPECT_TRUE(index.waitUntilCurrent());
        const auto by = [&](LibraryIndex *from) {
            ZQManagedObjectContext context(library.coordinator());
            const auto result = SavedSearchText::compare(shown, text, context, from, [] { return true; });
            EXPECT_TRUE(result);
            return result.value_or(SavedSearchText::Comparison{-1, -2, -3});
        };
        const auto ofStore = by(nullptr);
        const auto ofIndex = by(&index);
        EXPECT_TRUE(ofIndex.shown == ofStore.shown && ofIndex.found == ofStore.found &&
                    ofIndex.common == ofStore.common)
            << text.toStdString();
        return ofStore;
    }
    // "SHOWN FOUND COMMON" of a search that is saved there.
    std::string numbers(const QList<Item> &selection, const char *filter = "#tt e")
    {
        const ContentQuery query = queryOf(selection, QString::fromUtf8(filter));
        const auto result = compared({query}, SavedSearchText::forQuery(query, library.context()));
        return QStringLiteral("%1 %2 %3").arg(result.shown).arg(result.found).arg(result.common).toStdString();
    }

    LibraryIndex index{library.coordinator()};
    const ZQRef<ZQLibraryImage> elsewhere = addImage("elsewhere");
};

} // namespace

TEST_F(SavedSearchTextTest, EachPlaceIsNamedAndTheTextFindsTheSameRows)
{
    const Item live =
        add<ZQSidebarWatchedFolder>(QStringLiteral("Live (1)"), special(ZQSidebarKind::WatchedFoldersLabel));
    const Item below = add<ZQSidebarWatchedFolder>(QStringLiteral("below"), live);
    filled(below, "ebelow");
    const Item folder = addFolder(QStringLiteral("Folder"));
    const Item one = filled(addProject(QStringLiteral("One"), folder), "eone");
    const Item two = filled(addProject(QStringLiteral("Two"), addFolder(QStringLiteral("Deep"), folder)), "etwo");
    const Item tag = filled(addTag(QStringLiteral("tag")), "etag");
    const Item red = filled(ZQSidebarTag::tagForColor(1003, library.context()), "ered");
    zqFetchFirst<ZQLibraryImage>(library.context(), QStringLiteral("title == \"ered\""), {})->setMainColor(1003);
    const Item icon = filled(ZQSidebarTag::tagForSize(2001, library.context()), "eicon");
    const auto small = zqFetchFirst<ZQLibraryImage>(library.context(), QStringLiteral("title == \"eicon\""), {});
    small->setPixelWidth(16);
    small->setPixelHeight(16);
    const auto modified = addImage("emodified");
    modified->setModification_date(QDateTime::currentDateTimeUtc());

    const Item found = smart(QStringLiteral("#tt eone OR #tt etag"), folder);
    const Item nothing = smart(QStringLiteral("#d=31/02"), folder);
    struct Case
    {
        QList<Item> selection;
        const char *text;
        const char *numbers;
    };
    const Case cases[] = {
        {{special(ZQSidebarKind::Library)}, "#tt e", "8 8 8"},
        {{one, special(ZQSidebarKind::Library)}, "#tt e", "8 8 8"},
        {{one}, "#tt e #project One", "1 1 1"},
        {{tag}, "#tt e #tag tag", "1 1 1"},
        {{red}, "#tt e #color red", "1 1 1"},
        {{icon}, "#tt e #size icon", "1 1 1"},
        {{live}, "#tt e #folder \"Live (1)\"", "1 1 1"},
        {{below}, "#tt e #folder below", "1 1 1"},
        {{special(ZQSidebarKind::Recent)}, "#tt e (#di>7d OR #date>7d)", "1 1 1"},
        {{tag, red, icon}, "#tt e (#tag tag OR #color red OR #size icon)", "3 3 3"},
        {{two, live}, "#tt e (#project Two OR #folder \"Live (1)\")", "2 2 2"},
        {{folder}, "#tt e (#project One OR #project Two OR (#tt eone OR #tt etag))", "3 3 3"},
        {{nothing}, "#d=31/02 #tt e", "0 8 0"},
    };
    for (const Case &each : cases) {
        EXPECT_EQ(textOf(each.selection), each.text);
        EXPECT_EQ(numbers(each.selection), each.numbers) << each.text;
    }
    filled(special(ZQSidebarKind::Screenshots), "escreen");
    EXPECT_EQ(textOf({special(ZQSidebarKind::Screenshots)}), "#tt e #project Screenshots");
    EXPECT_EQ(numbers({special(ZQSidebarKind::Screenshots)}), "1 1 1");
    EXPECT_EQ(textOf({found}), "(#tt eone OR #tt etag) #tt e");
    EXPECT_EQ(textOf({one}, "a OR b) c"), "(a OR b() c) #project One") << "the bracket closes nothing of the whole";
    EXPECT_EQ(textOf({one, tag, live}), "#tt e #folder \"Live (1)\"") << "the two trees are no place together";
    EXPECT_EQ(numbers({one, tag, live}), "1 1 1");
    ContentQuery edited = queryOf({found}, QStringLiteral("e"));
    edited.editsSearch = true;
    EXPECT_EQ(SavedSearchText::forQuery(edited, library.context()), QStringLiteral("e"));
}

TEST_F(SavedSearchTextTest, ATitleOfAnyCharactersAsksForItself)
{
    for (const char *title : {"a*b", "a?b", "a\\b", "a\\", "\\*", "AND", "#x", "(a) b", "=", "==", "-a", ":a"}) {
        const QString name = QLatin1StringView(title);
        filled(addTag(QStringLiteral("axb")), "edecoy");
        const Item tag = filled(addTag(name), "etag");
        const Item project = filled(addProject(name), "eproject");
        EXPECT_EQ(numbers({tag}), "1 1 1") << title;
        EXPECT_EQ(numbers({project}), "1 1 1") << title;
        for (const Item &item : {tag, project}) {
            item->deletePermanently();
        }
    }
    // What no quotes hold stands for anything, so that nothing is lost.
    const Item tag = filled(addTag(QStringLiteral("the \"best\"")), "etag");
    const Item project = filled(addProject(QStringLiteral("the \"best\"\nof")), "eproject");
    EXPECT_EQ(textOf({tag}), "#tt e #tag \"the ?best?\"");
    EXPECT_EQ(textOf({project}), "#tt e #project \"the \" #project best #project of");
    EXPECT_EQ(numbers({tag}), "1 1 1");
    EXPECT_EQ(numbers({project}), "1 1 1");
    EXPECT_EQ(textOf({addProject(QStringLiteral("\"\""))}), "#tt e") << "nothing that could be asked for";
}

TEST_F(SavedSearchTextTest, ManyPlacesAreTheWholeLibraryAndSoIsWhatIsTooLong)
{
    const Item folder = addFolder(QStringLiteral("Folder"));
    for (qsizetype number = 0; number < SavedSearchText::mostPlaces; ++number) {
        addProject(QStringLiteral("P%1").arg(number), folder);
    }
    addProject(QStringLiteral("P1"), folder);
    EXPECT_EQ(textOf({folder}).find("#tt e (#project P0 OR "), 0U) << "one title is named once";
    const Item last = addProject(QStringLiteral("Q"), folder);
    EXPECT_EQ(textOf({folder}), "#tt e");
    const QString filter = QString(SearchManager::longestText - 5, u'e');
    EXPECT_EQ(SavedSearchText::forQuery(queryOf({last}, filter), library.context()), filter);
}

TEST_F(SavedSearchTextTest, WhatIsFoundBesidesOrNotIsCounted)
{
    const Item rar = filled(addProject(QStringLiteral("Rar")), "eone");
    filled(addProject(QStringLiteral("Rar 5")), "etwo");
    EXPECT_EQ(numbers({rar}), "1 2 1");
    EXPECT_EQ(numbers({rar}, "#duplicates"), "0 2 0") << "twice in the library, not in the project";
    rar->addItem(addImage("x").get());
    EXPECT_EQ(numbers({rar}, "#duplicates"), "2 3 2");
    // An item in several groups is one.
    const Item folder = addFolder(QStringLiteral("Folder"));
    for (const char *title : {"Twice", "Again"}) {
        addProject(QLatin1StringView(title), folder)->addItem(elsewhere.get());
    }
    EXPECT_EQ(numbers({folder}), "1 1 1");
    // Of a smart folder that has its new text already, what was shown is what was known of it.
    const Item saved = smart(QStringLiteral("#tt eone"));
    const auto found = compared({queryOf({saved}, QStringLiteral("e")), QList{elsewhere->objectID()}},
                                QStringLiteral("#tt e #tt eone"));
    EXPECT_EQ(found.shown, 1);
    EXPECT_EQ(found.found, 1);
    EXPECT_EQ(found.common, 0);
    EXPECT_FALSE(found.isSame());

    using Comparison = SavedSearchText::Comparison;
    const QString start = QStringLiteral("The smart folder looks in the whole library: it finds ");
    EXPECT_EQ((Comparison{3, 4031, 3}.sentence()), start + QStringLiteral("4,031 items; 3 are shown here."));
    EXPECT_EQ((Comparison{1, 2, 1}.sentence()), start + QStringLiteral("2 items; 1 is shown here."));
    EXPECT_EQ((Comparison{2, 1, 1}.sentence()), start + QStringLiteral("1 item; 2 are shown here."));
    EXPECT_EQ(found.sentence(), start + QStringLiteral("1 item, and shows 0 of those that are shown here."));

    library.renameTable("ZQLibraryBaseItem", "away");
    ZQManagedObjectContext context(library.coordinator());
    EXPECT_FALSE(SavedSearchText::compare({queryOf({rar}, QStringLiteral("e"))}, QStringLiteral("e"), context, nullptr,
                                          [] { return true; }))
        << "an error is no number";
    library.renameTable("away", "ZQLibraryBaseItem");
}

#include "Classes/Browsing/Tabs/OpenTabsFile.h"

#include "Classes/Browsing/Index/ListOrder.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Classes/Browsing/Tabs/TabStateArchive.h"
#include "Kit/Files/ZQKeyedArchive.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"
#include "Tests/Classes/Browsing/BrowsingFixture.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QLoggingCategory>

#include <sys/stat.h>

#include <random>

using ZQKeyedArchive::Object;

namespace {

class OpenTabsFileTest : public BrowsingFixture
{
protected:
    OpenTabsFileTest() { QLoggingCategory::setFilterRules(QStringLiteral("zelto.interface.warning=false")); }
    ~OpenTabsFileTest() override { QLoggingCategory::setFilterRules({}); }
    // A tab of every property, and one of none.
    OpenTabsFile::Tabs everyProperty()
    {
        auto full = std::make_shared<TabState>(editing, QList<ZQObjectID>{a->objectID(), b->objectID()});
        full->setSearchString(QStringLiteral("wörds"));
        full->setSortKeys(ListOrder::byTags);
        full->setSortDirection(false);
        full->setZoom(0.445);
        full->setBrowserDisplayStyle(BrowserDisplayStyle::BySize);
        full->view.scroll = QPointF(0, 12345678);
        full->view.selectionIndexes.insert(2, 5);
        full->view.selectionIndexes.insert(900000);
        full->view.detailItem = image->objectID();
        full->view.detailZoom = 2.5;
        full->view.detailScroll = QPointF(10.5, 20.25);
        full->view.infoPanelOpen = false;
        full->view.infoPanelHeight = 320;
        full->view.exportPanelOpen = true;
        full->view.showsList = true;
        return {{full, std::make_shared<TabState>(editing, QList<ZQObjectID>{b->objectID()})}, 1};
    }
    QByteArray written()
    {
        EXPECT_TRUE(OpenTabsFile(path).write(everyProperty(), editing));
        return ScratchLibrary::readFile(path);
    }
    bool reads(const QByteArray &data)
    {
        library.writeFile(QStringLiteral("opened_tabs.plist"), data);
        return OpenTabsFile(path).read(editing).has_value();
    }
    QStringList aside() const
    {
        return QDir(library.path(QStringLiteral("."))).entryList({QStringLiteral("opened_tabs (*")});
    }
    void removeAside()
    {
        for (const QString &name : aside()) {
            QFile::remove(library.path(name));
        }
    }
    static QByteArray archive(const QVariant &tabs, const QVariant &index = 0)
    {
        return *ZQKeyedArchive::toData(
            QVariantMap{{QStringLiteral("tabs"), tabs}, {QStringLiteral("indexOfSelectedTab"), index}});
    }
    static ZQPredicate predicateOf(const char *text)
    {
        return SearchManager::predicateForSearchString(QString::fromUtf8(text), {.rows = ZQListRows::LibraryItems});
    }
    static QByteArray tabWith(const char *key, const QVariant &value, const char *className = "TabState")
    {
        return archive(QVariantList{
            QVariant::fromValue(Object{QString::fromLatin1(className), {{QString::fromLatin1(key), value}}})});
    }

    const QString path = library.path(QStringLiteral("opened_tabs.plist"));
    const Item a = addProject(QStringLiteral("A"));
    const Item b = addProject(QStringLiteral("B"));
    const ZQRef<ZQLibraryBaseItem> image = library.addImage(QStringLiteral("image"));
    const bool isSaved = library.context().save();
};

} // namespace

TEST_F(OpenTabsFileTest, NothingIsSaidOfAFileThatIsNotThere)
{
    static QStringList told;
    told.clear();
    QLoggingCategory::setFilterRules({});
    const auto before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &text) { told.append(text); });
    const bool isThere = OpenTabsFile(path).read(editing).has_value();
    const QStringList ofNone = told;
    const bool isWhole = reads("damaged");
    qInstallMessageHandler(before);
    EXPECT_FALSE(isThere || isWhole);
    EXPECT_EQ(ofNone, QStringList());
    EXPECT_EQ(told.filter(QStringLiteral("cannot be read")).size(), 1);
}

TEST_F(OpenTabsFileTest, TextsOfSmartFoldersThatAreBeingEditedAreKept)
{
    const auto smart = zqCast<ZQSidebarSmartFolder>(add<ZQSidebarSmartFolder>(QStringLiteral("S"), a->father()));
    smart->setSearchText(QStringLiteral("twice"));
    const auto again = [this](const std::shared_ptr<TabState> &tab) {
        EXPECT_TRUE(OpenTabsFile(path).write({{tab}, 0}, editing));
        const auto back = OpenTabsFile(path).read(editing);
        return back ? back->tabs.first() : std::make_shared<TabState>(editing, QList<ZQObjectID>());
    };
    auto tab = std::make_shared<TabState>(editing, QList<ZQObjectID>{smart->objectID()});
    tab->setSearchString(QStringLiteral("narrower"));
    EXPECT_FALSE(again(tab)->editsSearch());
    tab->setEditsSearch(true);
    tab->setSearchString(QStringLiteral("trefoil"));
    tab = again(tab);
    EXPECT_TRUE(tab->editsSearch());
    EXPECT_EQ(tab->searchString(), QStringLiteral("trefoil"));
    EXPECT_FALSE(tab->filterPredicate().isNull()) << "what the text asks for";
    tab->goToSidebarItems({a->objectID()});
    EXPECT_EQ(tab->searchString(), QString());
    tab = again(tab);
    tab->goToSidebarItems({smart->objectID()});
    EXPECT_TRUE(tab->editsSearch());
    EXPECT_EQ(tab->searchString(), QStringLiteral("trefoil"));
}

TEST_F(OpenTabsFileTest, WhatATextAsksForIsMadeOfTheTextWhateverTheFileSays)
{
    const QString old = QStringLiteral("title == \"of another day\"");
    const auto restored = [&](const QString &text) {
        QVariantMap fields{{QStringLiteral("filterPredicate"), old}};
        if (!text.isEmpty()) {
            fields.insert(QStringLiteral("searchString"), text);
        }
        EXPECT_TRUE(reads(archive(QVariantList{QVariant::fromValue(Object{QStringLiteral("TabState"), fields})})));
        return OpenTabsFile(path).read(editing)->tabs.first();
    };
    EXPECT_TRUE(restored({})->filterPredicate() == ZQPredicate::predicateWithFormat(old));
    const auto tab = restored(QStringLiteral("wörds"));
    EXPECT_TRUE(tab->filterPredicate() == predicateOf("wörds"));
    ASSERT_TRUE(OpenTabsFile(path).write({{tab}, 0}, editing));
    EXPECT_FALSE(ScratchLibrary::readFile(path).contains("another day"));
    tab->setSearchString({});
    EXPECT_TRUE(tab->filterPredicate().isNull()) << "nothing is left of it";
}

TEST_F(OpenTabsFileTest, EveryPropertyComesBackAndWhatIsUnsetStaysUnset)
{
    const QByteArray data = written();
    const auto fields = [&data](int tab) {
        return ZQKeyedArchive::fromData(data)
            ->toMap()
            .value(QStringLiteral("tabs"))
            .toList()
            .at(tab)
            .value<Object>()
            .fields;
    };
    EXPECT_EQ(
        fields(0).keys().join(u' ').toStdString(),
        "browserDisplayStyle browserShowsList detailObjectIDString detailScroll detailZoom editsSearch exportPanelOpen "
        "filterPredicate "
        "infoPanelHeight infoPanelOpen scroll searchString selectionIndexes sidebarSelectedItemIDStrings "
        "sortDirection sortKeys tabName unsavedSearchItemIDStrings unsavedSearchStrings zoom");
    const QString asked = predicateOf("wörds").predicateFormat();
    EXPECT_EQ(fields(0).value(QStringLiteral("filterPredicate")), asked);
    EXPECT_EQ(fields(0).value(QStringLiteral("tabName")), QStringLiteral("2 items selected"));
    for (const char *key : {"zoom", "sortKeys", "filterPredicate", "searchString", "selectionIndexes", "scroll"}) {
        EXPECT_FALSE(fields(1).value(QLatin1StringView(key)).isValid()) << key;
    }

    const auto back = OpenTabsFile(path).read(editing);
    ASSERT_TRUE(back);
    ASSERT_EQ(back->tabs.size(), 2);
    EXPECT_EQ(back->indexOfSelectedTab, 1);
    const TabState &full = *back->tabs[0];
    EXPECT_EQ(full.sidebarSelectedItems(), (QList<ZQObjectID>{a->objectID(), b->objectID()}));
    EXPECT_EQ(full.searchString(), QStringLiteral("wörds"));
    EXPECT_EQ(full.filterPredicate().predicateFormat(), asked);
    EXPECT_EQ(full.sortKeys(), ListOrder::byTags);
    EXPECT_EQ(full.sortDirection(), false);
    EXPECT_EQ(full.zoom(), 0.445);
    EXPECT_EQ(full.browserDisplayStyle(), BrowserDisplayStyle::BySize);
    EXPECT_EQ(full.view.scroll, QPointF(0, 12345678));
    EXPECT_EQ(full.view.selectionIndexes.count(), 5);
    EXPECT_EQ(full.view.detailItem, image->objectID());
    EXPECT_EQ(full.view.detailZoom, 2.5);
    EXPECT_EQ(full.view.detailScroll, QPointF(10.5, 20.25));
    EXPECT_EQ(full.view.infoPanelOpen, false);
    EXPECT_EQ(full.view.infoPanelHeight, 320);
    EXPECT_EQ(full.view.exportPanelOpen, true);
    EXPECT_EQ(full.view.showsList, true);
    const TabState &empty = *back->tabs[1];
    EXPECT_FALSE(empty.sortKeys() || empty.sortDirection() || empty.zoom() || empty.browserDisplayStyle());
    EXPECT_FALSE(empty.view.showsList.has_value());
    EXPECT_FALSE(empty.view.scroll || empty.view.detailZoom || empty.view.infoPanelOpen);
    EXPECT_TRUE(empty.view.selectionIndexes.isEmpty() && empty.view.detailItem.isNull());
    EXPECT_EQ(aside(), QStringList());
}

TEST_F(OpenTabsFileTest, WhatIsTooMuchToReadIsNotWritten)
{
    OpenTabsFile::Tabs tabs;
    for (int i = 0; i < 3; ++i) {
        tabs.tabs.append(std::make_shared<TabState>(editing, QList<ZQObjectID>(1500, a->objectID())));
        for (qint64 index = 0; index < (i == 2 ? 40000 : 100000); index += 2) {
            tabs.tabs[i]->view.selectionIndexes.insert(index);
        }
    }
    ASSERT_TRUE(OpenTabsFile(path).write(tabs, editing));
    const auto back = OpenTabsFile(path).read(editing);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->tabs.size(), 3);
    EXPECT_EQ(back->tabs[0]->sidebarSelectedItems().size(), 1000);
    EXPECT_TRUE(back->tabs[0]->view.selectionIndexes.isEmpty());
    EXPECT_EQ(back->tabs[2]->view.selectionIndexes, tabs.tabs[2]->view.selectionIndexes)
        << "in 20000 pieces it is kept";
}

TEST_F(OpenTabsFileTest, WhatHasNoLastingIdentifierIsSavedFirst)
{
    const auto fresh = library.context().insertNewObject<ZQSidebarProject>();
    fresh->setTitle(QStringLiteral("Fresh"));
    fresh->setActive(true);
    ASSERT_TRUE(fresh->objectID().isTemporary());
    const auto tab = std::make_shared<TabState>(editing, QList<ZQObjectID>{fresh->objectID()});
    ASSERT_TRUE(OpenTabsFile(path).write({{tab}, 0}, editing));
    EXPECT_FALSE(fresh->objectID().isTemporary());
    EXPECT_EQ(tab->sidebarSelectedItems(), QList<ZQObjectID>{fresh->objectID()});
    EXPECT_EQ(OpenTabsFile(path).read(editing)->tabs.first()->tabName(), QStringLiteral("Fresh"));
}

TEST_F(OpenTabsFileTest, WhatIsGoneIsLeftOutAndTabsOfAnotherLibraryAreNotOpened)
{
    written();
    a->deleteSelf();
    image->setActive(false);
    library.context().save();
    const auto back = OpenTabsFile(path).read(editing);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->tabs[0]->tabName(), QStringLiteral("B"));
    EXPECT_TRUE(back->tabs[0]->view.detailItem.isNull());
    ScratchLibrary other;
    EditContext there{other.context(), user, editQueue, [] { return true; }};
    EXPECT_FALSE(OpenTabsFile(path).read(there));
    EXPECT_EQ(aside(), QStringList());
    EXPECT_FALSE(reads(*ZQKeyedArchive::toData(QVariantMap())));
    EXPECT_FALSE(reads(archive(QVariantList())));
    EXPECT_EQ(aside(), QStringList()) << "nothing was kept, which is no damage";
    EXPECT_EQ(OpenTabsFile(library.path(QStringLiteral("nowhere/tabs.plist"))).read(editing).has_value(), false);
}

TEST_F(OpenTabsFileTest, TabsWhoseItemsAreAllGoneStayWithWhatWasSearchedInThem)
{
    written();
    a->deleteSelf();
    b->deleteSelf();
    library.context().save();
    const auto back = OpenTabsFile(path).read(editing);
    ASSERT_TRUE(back);
    ASSERT_EQ(back->tabs.size(), 2);
    EXPECT_EQ(back->indexOfSelectedTab, 1);
    EXPECT_TRUE(back->tabs[0]->sidebarSelectedItems().isEmpty());
    EXPECT_EQ(back->tabs[0]->searchString(), QStringLiteral("wörds"));
}

TEST_F(OpenTabsFileTest, EveryLibraryGetsItsOwnTabsBack)
{
    ScratchLibrary other;
    EditContext there{other.context(), user, editQueue, [] { return true; }};
    const auto project = other.context().insertNewObject<ZQSidebarProject>();
    project->setTitle(QStringLiteral("There"));
    project->setActive(true);
    ASSERT_TRUE(other.context().save());
    const OpenTabsFile::Tabs othersTabs{{std::make_shared<TabState>(there, QList<ZQObjectID>{project->objectID()})}, 0};
    const auto kept = [this](const ScratchLibrary &of) {
        return library.path(
            QStringLiteral("opened_tabs-%1.plist").arg(of.coordinator()->storeUUID().toString(QUuid::WithoutBraces)));
    };

    const QByteArray ours = written();
    OpenTabsFile thereFile(path);
    EXPECT_FALSE(thereFile.read(there));
    EXPECT_EQ(ScratchLibrary::readFile(path), ours) << "opening changes nothing";
    ASSERT_TRUE(thereFile.write(othersTabs, there));
    EXPECT_EQ(ScratchLibrary::readFile(kept(library)), ours);
    const QByteArray theirs = ScratchLibrary::readFile(path);

    OpenTabsFile hereFile(path);
    auto back = hereFile.read(editing);
    ASSERT_TRUE(back);
    ASSERT_EQ(back->tabs.size(), 2);
    EXPECT_EQ(back->tabs[0]->searchString(), QStringLiteral("wörds"));
    EXPECT_TRUE(QFile::exists(kept(library))) << "it is not written yet";
    ASSERT_TRUE(hereFile.write(*back, editing));
    EXPECT_FALSE(QFile::exists(kept(library)));
    EXPECT_EQ(ScratchLibrary::readFile(kept(other)), theirs);
    back->tabs[1]->setZoom(0.1);
    ASSERT_TRUE(hereFile.write(*back, editing));
    EXPECT_EQ(ScratchLibrary::readFile(kept(other)), theirs);

    // Where the other one's cannot be kept, they are not overwritten.
    library.writeFile(QStringLiteral("opened_tabs.plist"), theirs);
    QFile::remove(kept(other));
    QDir().mkpath(kept(other));
    EXPECT_FALSE(OpenTabsFile(path).write(*back, editing));
    EXPECT_EQ(ScratchLibrary::readFile(path), theirs);
    QDir().rmdir(kept(other));

    // A file that names nothing may be anyone's: what is known to be this library's comes first.
    library.writeFile(QFileInfo(kept(library)).fileName(), ours);
    library.writeFile(QStringLiteral("opened_tabs.plist"), tabWith("sortDirection", true));
    EXPECT_EQ(OpenTabsFile(path).read(editing)->tabs.size(), 2);
    library.writeFile(QFileInfo(kept(library)).fileName(), "damaged");
    EXPECT_EQ(OpenTabsFile(path).read(editing)->tabs.size(), 1);
    EXPECT_FALSE(QFile::exists(kept(library))) << "set aside";
}

TEST_F(OpenTabsFileTest, TabsOfManyLibrariesAreKeptAndNoOtherFileEverGoes)
{
    const auto of = [](const QUuid &store) {
        return tabWith(
            "sidebarSelectedItemIDStrings",
            QVariantList{QStringLiteral("x-zelto://%1/SidebarProject/p1").arg(store.toString(QUuid::WithoutBraces))});
    };
    const QStringList foreign{QStringLiteral("opened_tabs-mine.plist"), QStringLiteral("opened_tabs (damaged 1).plist"),
                              QStringLiteral("opened_tabs-%1.plist").arg(QUuid::createUuid().toString())};
    for (const QString &name : foreign) {
        library.writeFile(name, "a person's");
        QFile file(library.path(name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite) &&
                    file.setFileTime(QDateTime::fromSecsSinceEpoch(1), QFileDevice::FileModificationTime));
    }
    QUuid last;
    for (int number = 0; number < OpenTabsFile::mostOthers + 3; ++number) {
        last = QUuid::createUuid();
        library.writeFile(QStringLiteral("opened_tabs.plist"), of(last));
        ASSERT_TRUE(OpenTabsFile(path).write(everyProperty(), editing));
    }
    const auto kept =
        QDir(library.path(QStringLiteral("."))).entryList({QStringLiteral("opened_tabs-[0-9a-f]*.plist")});
    EXPECT_EQ(kept.size(), OpenTabsFile::mostOthers);
    EXPECT_TRUE(kept.contains(QStringLiteral("opened_tabs-%1.plist").arg(last.toString(QUuid::WithoutBraces))));
    for (const QString &name : foreign) {
        EXPECT_TRUE(QFile::exists(library.path(name))) << name.toStdString();
    }
}

TEST_F(OpenTabsFileTest, AFileCutAnywhereIsSetAsideAndNeverReadAsAnother)
{
    const QByteArray whole = written();
    EXPECT_TRUE(reads(whole));
    for (qsizetype size = 0; size < whole.size(); ++size) {
        ASSERT_FALSE(reads(whole.first(size))) << size;
        ASSERT_EQ(aside().size(), 1) << size;
        ASSERT_EQ(ScratchLibrary::readFile(library.path(aside().first())), whole.first(size));
        ASSERT_FALSE(QFile::exists(path)) << size;
        removeAside();
    }
}

TEST_F(OpenTabsFileTest, FlippedBitsGiveTabsOrAreSetAside)
{
    const QByteArray whole = written();
    std::mt19937 random(3);
    int kept = 0;
    for (int round = 0; round < 1500; ++round) {
        QByteArray damaged = whole;
        for (auto flips = 1 + random() % 4; flips > 0; --flips) {
            const auto at = qsizetype(random() % size_t(damaged.size()));
            damaged[at] = char(damaged.at(at) ^ (1 << random() % 8));
        }
        library.writeFile(QStringLiteral("opened_tabs.plist"), damaged);
        const auto tabs = OpenTabsFile(path).read(editing);
        ASSERT_TRUE(!tabs || (!tabs->tabs.isEmpty() && tabs->indexOfSelectedTab < tabs->tabs.size()));
        ASSERT_TRUE(!tabs || !QFile::exists(path) == !aside().isEmpty());
        kept += aside().isEmpty() ? 0 : 1;
        removeAside();
    }
    EXPECT_GT(kept, 0);
}

TEST_F(OpenTabsFileTest, HostileFilesAreSetAsideAndNeverOverEachOther)
{
    QVariantList many(OpenTabsFile::mostTabs + 1, QVariant::fromValue(Object{QStringLiteral("TabState"), {}}));
    QVariantList uris(1001, a->objectID().URIRepresentation(library.coordinator()->storeUUID()));
    const QByteArray hostile[] = {
        {},
        "no list at all",
        QByteArray(1000, '\0'),
        archive(QStringLiteral("tabs")),
        archive(many),
        archive(QVariantList{QStringLiteral("tab")}),
        archive(QVariantList{QVariant::fromValue(Object{QStringLiteral("TabState"), {}})}, QStringLiteral("one")),
        *ZQKeyedArchive::toData(QVariantList()),
        tabWith("zoom", 0.5, "Other"),
        tabWith("zoom", QStringLiteral("0.5")),
        tabWith("zoom", 1.5),
        tabWith("browserShowsList", 2),
        tabWith("browserShowsList", QStringLiteral("1")),
        tabWith("zoom", std::numeric_limits<double>::quiet_NaN()),
        tabWith("sortKeys", -1),
        tabWith("sortKeys", 1.5),
        tabWith("sortDirection", 2),
        tabWith("browserDisplayStyle", 5),
        tabWith("searchString", 5),
        tabWith("searchString", QString(70000, u'x')),
        tabWith("scroll", QStringLiteral("{0, 0}")),
        tabWith("scroll", QPointF(0, 1e300)),
        tabWith("selectionIndexes", QVariantList{1}),
        tabWith("sidebarSelectedItemIDStrings", QStringLiteral("uri")),
        tabWith("sidebarSelectedItemIDStrings", QVariantList{1}),
        tabWith("sidebarSelectedItemIDStrings", uris),
        tabWith("detailObjectIDString", 7),
        tabWith("tabName", QVariantList()),
    };
    int row = 0;
    for (const QByteArray &data : hostile) {
        EXPECT_FALSE(reads(data)) << row;
        EXPECT_EQ(aside().size(), 1) << row;
        removeAside();
        ++row;
    }
    EXPECT_TRUE(reads(tabWith("filterPredicate", QStringLiteral("no ( predicate")))) << "searched anew from the text";
    EXPECT_TRUE(reads(tabWith("sortDirection", true)));
    for (const int other : {8, 99, 105, 106}) {
        library.writeFile(QStringLiteral("opened_tabs.plist"), tabWith("sortKeys", other));
        const auto tabs = OpenTabsFile(path).read(editing);
        ASSERT_TRUE(tabs) << "an order of another version: " << other;
        EXPECT_EQ(tabs->tabs.first()->sortKeys(), std::nullopt) << other;
    }
    EXPECT_TRUE(reads(tabWith("tabName", QString(70000, u'x')))) << "a title may be as long as it likes";

    for (int number = 1; number <= OpenTabsFile::mostSetAside + 2; ++number) {
        EXPECT_FALSE(reads("damaged " + QByteArray::number(number)));
        EXPECT_EQ(aside().size(), std::min(number, OpenTabsFile::mostSetAside));
    }
    for (int number = 1; number <= OpenTabsFile::mostSetAside; ++number) {
        EXPECT_EQ(ScratchLibrary::readFile(library.path(QStringLiteral("opened_tabs (damaged %1).plist").arg(number))),
                  "damaged " + QByteArray::number(number));
    }
    removeAside();
    QFile::remove(path);
    QDir().mkpath(path);
    EXPECT_FALSE(OpenTabsFile(path).read(editing)) << "a folder";
    EXPECT_EQ(aside().size(), 1);
    removeAside();
    ASSERT_EQ(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    EXPECT_FALSE(OpenTabsFile(path).read(editing));
    EXPECT_EQ(
        QDir(library.path(QStringLiteral("."))).entryList({QStringLiteral("opened_tabs (*")}, QDir::System).size(), 1);
}

TEST_F(OpenTabsFileTest, WhatATextAsksForIsMadeOnceForAllWritings)
{
    const auto smart = zqCast<ZQSidebarSmartFolder>(add<ZQSidebarSmartFolder>(QStringLiteral("S"), a->father()));
    TabState tab(editing, {a->objectID()});
    const auto kept = [&] {
        return TabStateArchive::archived(tab, editing).fields.value(QStringLiteral("filterPredicate")).toString();
    };
    EXPECT_TRUE(kept().isEmpty());
    tab.setUnsavedSearch(smart->objectID(), QStringLiteral("left"));
    tab.goToSidebarItems({smart->objectID()}); // which brings a text
    EXPECT_TRUE(kept().contains(QStringLiteral("\"left\""))) << qPrintable(kept());
    tab.setSearchString(QStringLiteral("one"));
    const QString first = kept();
    EXPECT_TRUE(first.contains(QStringLiteral("\"one\"")) && !first.contains(QStringLiteral("left")));
    tab.setZoom(0.25);
    tab.setSearchString(QStringLiteral(" one "));
    EXPECT_EQ(static_cast<const void *>(kept().constData()), static_cast<const void *>(first.constData()))
        << "the very same text";
    tab.setFilterPredicate(ZQPredicate::predicateWithFormat(QStringLiteral("rating == 3")));
    EXPECT_EQ(kept(), first) << "a text says more than what was made of one";
    tab.setSearchString(QStringLiteral("two"));
    EXPECT_TRUE(kept().contains(QStringLiteral("\"two\"")));
    tab.setSearchString(QStringLiteral("one"));
    EXPECT_EQ(kept(), first);
}

TEST_F(OpenTabsFileTest, NothingIsWrittenAnewThatIsThereAlready)
{
    OpenTabsFile file(path);
    const OpenTabsFile::Tabs tabs = everyProperty();
    ASSERT_TRUE(file.write(tabs, editing));
    QFile::remove(path);
    EXPECT_TRUE(file.write(tabs, editing));
    EXPECT_FALSE(QFile::exists(path));
    tabs.tabs[0]->setZoom(0.1);
    EXPECT_TRUE(file.write(tabs, editing));
    EXPECT_TRUE(QFile::exists(path));
    library.writeFile(QStringLiteral("blocked"), "a file");
    EXPECT_FALSE(OpenTabsFile(library.path(QStringLiteral("blocked/tabs.plist"))).write(tabs, editing));
}

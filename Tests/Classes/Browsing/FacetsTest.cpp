#include "Classes/Browsing/Content/FacetCounts.h"

#include "Classes/Browsing/Content/SidebarContents.h"
#include "Classes/Browsing/Content/StoreSearch.h"
#include "Classes/Browsing/Index/ItemCount.h"
#include "Classes/Browsing/Index/KindNames.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Classes/Browsing/Search/SearchNames.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Browsing/BrowsingFixture.h"
#include "Tests/Support/Skip.h"

#include <sys/time.h>
#include <time.h>

#include <random>

namespace {

thread_local time_t secondsAhead = 0; // of the clock, for who asks for the day

} // namespace

extern "C" int gettimeofday(timeval *now, void *) noexcept
{
    timespec time = {};
    const int result = ::clock_gettime(CLOCK_REALTIME, &time);
    *now = {time.tv_sec + secondsAhead, time.tv_nsec / 1000};
    return result;
}

namespace {

const std::vector<const char *> tagNames = {"draft", "Dráft", "final", "a*b", "axb", "summer 2026", "=odd", "NOT"};
const std::vector<const char *> extensions = {"", "png", "PNG", "jpg", "jpeg", "svg", "ai", "zz"};
const std::vector<const char *> texts = {"",
                                         "logo",
                                         "#kind png",
                                         "#tag draft",
                                         "logo #c red",
                                         "#r>2 #size large",
                                         "-#kind png #c blue",
                                         "#kind png OR logo",
                                         "(#tag final) #r>1",
                                         "#di=7d #tag draft",
                                         "#f outer",
                                         "#e jpg #d=",
                                         "#duplicates"};

// A library at random, and what somebody counts in it who goes from item to item.
class FacetsTest : public BrowsingFixture
{
protected:
    FacetsTest()
    {
        const Item label = ZQSidebarBaseItem::tagsLabelInManagedObjectContext(library.context());
        for (const char *name : tagNames) {
            tags.append(add<ZQSidebarTag>(QString::fromUtf8(name), label));
            tags.last()->setIs_Tag(true);
        }
        const Item live = ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(library.context());
        folders.append(add<ZQSidebarWatchedFolder>(QStringLiteral("Outer"), live));
        folders.append(add<ZQSidebarWatchedFolder>(QStringLiteral("Inner"), folders.first()));
        folders.append(add<ZQSidebarWatchedFolder>(QStringLiteral("outermost"), live));
        for (int i = 0; i < 120; ++i) {
            addItem(i);
        }
        library.context().save();
        index = std::make_unique<LibraryIndex>(library.coordinator());
        index->follow(library.context());
    }

    template <class T>
    T oneOf(const std::vector<T> &values)
    {
        return values[random() % values.size()];
    }
    bool oneIn(unsigned count) { return random() % count == 0; }
    void addItem(int number)
    {
        const auto item = library.context().insertNewObject<ZQLibraryImage>();
        item->setTitle(oneIn(3) ? QStringLiteral("Logo %1").arg(number) : QStringLiteral("shape %1").arg(number));
        item->setExtension(QLatin1StringView(oneOf(extensions)));
        item->setActive(!oneIn(10));
        item->setRating(qint16(random() % 6));
        item->setMainColor(oneIn(4) ? 0 : qint32(1000 + random() % 10));
        item->setPixelWidth(oneOf(std::vector<qint32>{0, 16, 100, 512, 513, 4000}));
        item->setPixelHeight(oneOf(std::vector<qint32>{0, 16, 100, 512, 2000}));
        item->setSHA1(QString::number(random() % 90));
        item->setImport_date(
            QDateTime::currentDateTimeUtc().addDays(-qint64(oneOf(std::vector<int>{0, 1, 3, 20, 200, 500, 3000}))));
        if (oneIn(3)) {
            item->setWatchingFolder(zqCast<ZQSidebarWatchedFolder>(folders[qsizetype(random() % 3)]).get());
        }
        for (const Item &tag : std::as_const(tags)) {
            if (oneIn(4)) {
                item->addTagsObject(zqCast<ZQSidebarTag>(tag).get());
            }
        }
        if (oneIn(8)) {
            item->setValueForKey({}, oneIn(2) ? QStringLiteral("rating") : QStringLiteral("mainColor"));
        }
        if (item->active() && oneIn(2)) {
            project->addItem(item.get());
        }
        if (item->active() && oneIn(3)) {
            other->addItem(item.get());
        }
        items.append(item);
    }

    std::optional<QList<Facet>> facets(const ContentQuery &query)
    {
        EXPECT_TRUE(index->waitUntilCurrent());
        return FacetCounts::of(query, library.context(), *index, [] { return true; });
    }
    // Titles of what is shown there, as the view gets them, each item once.
    QSet<QString> shown(ContentQuery query, const QString &text)
    {
        query.filter = text;
        QSet<QString> found;
        const auto content = ContentBuilder(query, library.context()).content([] { return true; });
        for (const ZQObjectID &id : content ? content->rows.related : QList<ZQObjectID>()) {
            found.insert(zqCast<ZQLibraryBaseItem>(library.context().objectWithID(id))->title());
        }
        return found;
    }
    static const Facet *facetOf(const QList<Facet> &all, FacetKind kind)
    {
        const auto found =
            std::find_if(all.begin(), all.end(), [kind](const Facet &each) { return each.kind == kind; });
        return found != all.end() ? &*found : nullptr;
    }
    static std::string lineOf(const QList<Facet> &all, FacetKind kind)
    {
        QStringList parts;
        const Facet *facet = facetOf(all, kind);
        for (const FacetValue &value : facet ? facet->values : QList<FacetValue>()) {
            parts.append((value.isChosen ? u'+' + value.token : value.token) + u' ' + QString::number(value.count));
        }
        return parts.join(QStringLiteral(", ")).toStdString();
    }

    std::mt19937 random{14};
    const Item project = addProject(QStringLiteral("Brand"));
    const Item other = addProject(QStringLiteral("Other"));
    const Item everything = ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind::Library, library.context());
    QList<Item> tags;
    QList<Item> folders;
    QList<ZQRef<ZQLibraryImage>> items;
    std::unique_ptr<LibraryIndex> index;
};

} // namespace

TEST_F(FacetsTest, EachCountIsWhatIsShownOnceItsValueIsChosen)
{
    tags[2]->deleteSelf(); // items still carry it
    library.context().save();
    const QList<QList<ZQObjectID>> places = {{everything->objectID()},
                                             {project->objectID()},
                                             {project->objectID(), other->objectID()},
                                             {tags[0]->objectID()},
                                             {folders[0]->objectID()}};
    qsizetype compared = 0;
    for (const QList<ZQObjectID> &place : places) {
        for (const char *text : texts) {
            ContentQuery query{.sidebarItems = place, .filter = QString::fromUtf8(text)};
            const auto counted = facets(query);
            ASSERT_TRUE(counted) << text;
            const FacetText read(query.filter);
            for (const Facet &facet : *counted) {
                for (const FacetValue &value : facet.values) {
                    const QSet<QString> found = value.isChosen ? shown(query, query.filter) & shown(query, value.token)
                                                               : shown(query, read.toggled(facet.kind, value.token));
                    EXPECT_EQ(value.count, found.size()) << text << " with " << value.token.toStdString();
                    EXPECT_EQ(read.contains(facet.kind, value.token), value.isChosen) << value.token.toStdString();
                    EXPECT_FALSE(value.title.isEmpty());
                    ++compared;
                }
            }
        }
    }
    EXPECT_GT(compared, 1000);
}

TEST_F(FacetsTest, NothingThatIsThereIsLeftOut)
{
    ContentQuery query;
    query.sidebarItems = {everything->objectID()};
    const auto counted = facets(query);
    ASSERT_TRUE(counted);
    std::map<FacetKind, qint64> sums;
    for (const Facet &facet : *counted) {
        for (const FacetValue &value : facet.values) {
            sums[facet.kind] += value.count;
        }
    }
    qint64 withExtension = 0;
    qint64 active = 0;
    for (const auto &item : std::as_const(items)) {
        active += item->active() ? 1 : 0;
        withExtension += item->active() && !item->extension().isEmpty() ? 1 : 0;
    }
    EXPECT_EQ(sums[FacetKind::Color], active);
    EXPECT_GE(sums[FacetKind::Kind], withExtension);
    EXPECT_GE(sums[FacetKind::Size], active / 2);
    QStringList kinds;
    for (const FacetValue &value : facetOf(*counted, FacetKind::Kind)->values) {
        kinds.append(value.title);
    }
    kinds.sort();
    EXPECT_EQ(kinds.join(u'|').toStdString(), "AI|JPEG|PNG|SVG|ZZ")
        << "files of one kind are one, whatever they end in";
    QStringList names;
    const Facet *tagFacet = facetOf(*counted, FacetKind::Tag);
    ASSERT_TRUE(tagFacet);
    for (const FacetValue &value : tagFacet->values) {
        names.append(value.title);
    }
    names.sort();
    EXPECT_EQ(names.join(u'|').toStdString(), "=odd|NOT|a*b|axb|draft|final|summer 2026") << "one of equal names";
    EXPECT_TRUE(std::is_sorted(tagFacet->values.begin(), tagFacet->values.end(),
                               [](const auto &a, const auto &b) { return a.count > b.count; }));
    EXPECT_EQ(facetOf(*counted, FacetKind::Folder)->values.size(), 3);
    EXPECT_EQ(facetOf(*counted, FacetKind::Rating)->values.first().stars, 5);
}

TEST_F(FacetsTest, OfManyNamesThatArePatternsNoneIsOfferedWithoutItsCount)
{
    constexpr int many = 25; // more than are looked for one by one
    const Item label = ZQSidebarBaseItem::tagsLabelInManagedObjectContext(library.context());
    const auto item = *std::find_if(items.begin(), items.end(), [](const auto &each) { return each->active(); });
    for (int i = 0; i < many; ++i) {
        const auto tag = zqCast<ZQSidebarTag>(add<ZQSidebarTag>(QStringLiteral("p*%1").arg(100 + i), label));
        tag->setIs_Tag(true);
        item->addTagsObject(tag.get());
    }
    library.context().save();
    ContentQuery query;
    query.sidebarItems = {everything->objectID()};
    const auto counted = facets(query);
    const Facet *tagFacet = counted ? facetOf(*counted, FacetKind::Tag) : nullptr;
    ASSERT_TRUE(tagFacet);
    const auto arePatterns = [](const FacetValue &value) { return value.title.startsWith(u'p'); };
    EXPECT_GT(std::count_if(tagFacet->values.begin(), tagFacet->values.end(), arePatterns), 0);
    for (const FacetValue &value : tagFacet->values) {
        EXPECT_GT(value.count, 0) << value.token.toStdString();
    }
}

TEST_F(FacetsTest, WhatIsChosenStaysThereWithNothingToFind)
{
    ContentQuery query{.sidebarItems = {everything->objectID()}, .filter = QStringLiteral("nosuch #kind tiff #t no*")};
    const auto counted = facets(query);
    ASSERT_TRUE(counted);
    EXPECT_EQ(lineOf(*counted, FacetKind::Kind), "+#kind tiff 0");
    EXPECT_EQ(lineOf(*counted, FacetKind::Tag), "+#t no* 0");
    EXPECT_FALSE(facetOf(*counted, FacetKind::Color));
    query.filter = QStringLiteral("nosuch #c blue #r>2");
    const auto others = facets(query);
    ASSERT_TRUE(others);
    EXPECT_EQ(lineOf(*others, FacetKind::Color), "+#color blue 0");
    EXPECT_EQ(lineOf(*others, FacetKind::Rating), "+#rating>2 0");
    EXPECT_EQ(facetOf(*others, FacetKind::Rating)->values.first().stars, 3);
    EXPECT_EQ(facetOf(*others, FacetKind::Color)->values.first().color, 1007);
    query.sidebarItems = {};
    query.filter.clear();
    EXPECT_EQ(facets(query), QList<Facet>());
}

TEST_F(FacetsTest, AnExtensionThatFindsAllOfAKindIsThatKind)
{
    ContentQuery query;
    query.sidebarItems = {everything->objectID()};
    const auto chosen = [&](const char *text, const char *title) {
        query.filter = QString::fromUtf8(text);
        const auto counted = facets(query);
        QStringList found;
        for (const FacetValue &value : counted ? facetOf(*counted, FacetKind::Kind)->values : QList<FacetValue>()) {
            if (value.title.compare(QLatin1StringView(title), Qt::CaseInsensitive) == 0 || value.isChosen) {
                found.append((value.isChosen ? u'+' + value.token : value.token));
                EXPECT_EQ(value.count, shown(query, value.token).size()) << value.token.toStdString();
            }
        }
        return found.join(u'|').toStdString();
    };
    EXPECT_EQ(chosen("#e png", "PNG"), "+#e png");
    EXPECT_EQ(chosen("logo OR #ext PNG", "PNG"), "+#ext PNG");
    EXPECT_EQ(chosen("#kind png", "PNG"), "+#kind png");
    EXPECT_EQ(chosen("-#e png", "PNG"), "") << "left out is not chosen";
    EXPECT_EQ(chosen("#e png #kind PNG", "PNG"), "+#e png #kind PNG") << "twice the same is one value";
    EXPECT_EQ(chosen("(#e svg OR logo) #kind svg", "SVG"), "+#e svg #kind svg") << "the only one of its kind here";
    EXPECT_EQ(chosen("#e jpg", "JPEG"), "+#e jpg|#kind \"jpeg image\"") << "jpeg is there too";
    EXPECT_EQ(FacetText(QStringLiteral("#e png")).toggled(FacetKind::Kind, QStringLiteral("#e png")), QString());
}

TEST_F(FacetsTest, ThisMonthIsOfferedUnlessTheLastDaysHoldAsManyFromItsFirstOn)
{
    const QDateTime noon(QDate(2040, 1, 5), QTime(12, 0));
    for (const auto &item : std::as_const(items)) {
        item->setImport_date(noon.toUTC());
    }
    library.context().save();
    ContentQuery query;
    query.sidebarItems = {everything->objectID()};
    const auto offered = [&](int day) {
        const QDate date(2040, 1, day);
        secondsAhead = time_t(QDateTime::currentDateTime().secsTo(QDateTime(date, QTime(12, 0))));
        const auto counted = QDate::currentDate() == date ? facets(query) : std::nullopt;
        secondsAhead = 0;
        const Facet *facet = counted ? facetOf(*counted, FacetKind::Imported) : nullptr;
        QStringList titles;
        for (const FacetValue &value : facet ? facet->values : QList<FacetValue>()) {
            titles.append(value.title);
        }
        return titles;
    };
    const QDate nextYear = QDate::currentDate().addYears(1);
    secondsAhead = time_t(366) * 86400;
    const bool isClockSet = QDate::currentDate() >= nextYear;
    secondsAhead = 0;
    if (!isClockSet) {
        return skipWithout("a clock that a test can set");
    }
    EXPECT_TRUE(offered(7).contains(QStringLiteral("last 7 days")));
    EXPECT_TRUE(offered(7).contains(QStringLiteral("this month"))) << "the last days begin before it";
    EXPECT_TRUE(offered(8).contains(QStringLiteral("last 7 days")));
    EXPECT_FALSE(offered(8).contains(QStringLiteral("this month"))) << "it says no more than the last days";
}

TEST_F(FacetsTest, CountsFollowTheStoreAndEndWhenNobodyWantsThem)
{
    ContentQuery query{.sidebarItems = {project->objectID()}, .filter = QStringLiteral("#tag summer*")};
    const auto before = facets(query);
    for (const auto &item : std::as_const(items)) {
        item->setMainColor(1003);
    }
    library.context().save();
    const auto after = facets(query);
    ASSERT_TRUE(before && after);
    EXPECT_NE(before, after);
    EXPECT_EQ(facetOf(*after, FacetKind::Color)->values.size(), 1);
    EXPECT_EQ(FacetCounts::of(query, library.context(), *index, [] { return false; }), std::nullopt);
}

TEST_F(FacetsTest, NamesOfTheLibraryComeInTheOrderOfTheirUse)
{
    const auto always = [] { return true; };
    const auto named = [&](SearchField field, LibraryIndex *with) {
        return SearchNames::of(field, library.context(), with, always).value_or(QList<SearchCompletion>());
    };
    const auto textsOf = [](const QList<SearchCompletion> &names) {
        QStringList all;
        for (const SearchCompletion &name : names) {
            all.append(name.text);
        }
        return all.join(u'|').toStdString();
    };
    for (int i = 0; i < 200; ++i) {
        items[i % items.size()]->addTagsObject(zqCast<ZQSidebarTag>(tags[5]).get());
    }
    library.context().save();
    ASSERT_TRUE(index->waitUntilCurrent());
    const auto byUse = named(SearchField::Tag, index.get());
    EXPECT_EQ(byUse.value(0).text, QStringLiteral("summer 2026"));
    EXPECT_TRUE(byUse.value(0).meaning.endsWith(QStringLiteral(" items")));
    EXPECT_EQ(textsOf(named(SearchField::Project, nullptr)), "Brand|Other");
    const auto branded = add<ZQSidebarProject>(QStringLiteral("Old brand"), project->father());
    for (qsizetype i = 0; i < items.size(); i += 3) {
        branded->addItem(items[i].get());
    }
    for (const char16_t *title : {u"\u0301", u"\uffffodd\uffff", u"\uffff"}) {
        add<ZQSidebarProject>(QString::fromUtf16(title), project->father())->addItem(items.first().get());
    }
    const auto found = [&](const QString &text) {
        const auto whole = SidebarContents::wholeLibrary();
        const auto search = StoreSearch::context(ZQListRows::LibraryItems, {whole}, library.context());
        return library.context()
            .countForFetchRequest({.entityName = whole.entityName,
                                   .predicate = ZQPredicate::andPredicate(
                                       {whole.predicate, SearchManager::predicateForSearchString(text, search)})})
            .value_or(-1);
    };
    library.context().save();
    ASSERT_TRUE(index->waitUntilCurrent());
    int compared = 0;
    for (const SearchField field : {SearchField::Tag, SearchField::Project, SearchField::Folder}) {
        for (const SearchCompletion &name : named(field, index.get())) {
            const QString text = SearchToken::ofField(field).name() + u' ' + SearchManager::quoted(name.text);
            const bool isPattern = name.text.contains(u'*');
            if (!name.meaning.isEmpty() && !isPattern) {
                EXPECT_EQ(name.meaning, zqItemCount(found(text))) << text.toStdString();
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 8);
    EXPECT_EQ(textsOf(named(SearchField::Folder, nullptr)), "Inner|Outer|outermost");
    EXPECT_EQ(textsOf(named(SearchField::Kind, nullptr)), "") << "only the index knows them";
    EXPECT_NE(textsOf(named(SearchField::Extension, index.get())).find("svg"), std::string::npos);
    EXPECT_TRUE(SearchNames::has(SearchField::Tag));
    EXPECT_FALSE(SearchNames::has(SearchField::Width));
    EXPECT_EQ(textsOf(SearchNames::matching(named(SearchField::Folder, nullptr), QStringLiteral("OUT"), 5)),
              "Outer|outermost");
    EXPECT_EQ(textsOf(SearchNames::matching(named(SearchField::Folder, nullptr), QStringLiteral("n"), 5)), "Inner");
    EXPECT_EQ(textsOf(SearchNames::matching(named(SearchField::Folder, nullptr), QString(), 2)), "Inner|Outer");
    EXPECT_EQ(SearchNames::of(SearchField::Tag, library.context(), nullptr, [] { return false; }), std::nullopt);
}

TEST(FacetTextTest, AValueTakesThePlaceOfAnotherWhereThatIsClear)
{
    struct Case
    {
        FacetKind kind;
        const char *text, *token, *toggled;
    };
    static constexpr Case cases[] = {
        {FacetKind::Kind, "", "#kind png", "#kind png"},
        {FacetKind::Kind, "logo #kind svg", "#kind png", "logo #kind png"},
        {FacetKind::Kind, "logo #kind png", "#kind png", "logo"},
        {FacetKind::Kind, "#e PNG logo", "#kind png", "logo"}, // all of that kind, and no other
        {FacetKind::Kind, "#e png OR logo", "#kind png", "logo"},
        {FacetKind::Kind, "#e png logo #kind png", "#kind png", "logo"},
        {FacetKind::Kind, "#e svg logo #kind svg", "#e svg #kind svg", "logo"},
        {FacetKind::Kind, "#e jpg", "#kind \"jpeg image\"", "#kind \"jpeg image\""},
        {FacetKind::Kind, "#e pn?", "#kind png", "#kind png"},
        {FacetKind::Kind, "#e svg logo", "#kind png", "logo #kind png"},
        {FacetKind::Kind, "-#kind svg", "#kind png", "-#kind svg #kind png"},
        {FacetKind::Kind, "#kind svg OR a", "#kind png", "(#kind svg OR a) #kind png"},
        {FacetKind::Kind, "(#kind svg a)", "#kind png", "(#kind svg a) #kind png"},
        {FacetKind::Kind, "#kind svg #d=31/02", "#kind png", "#kind svg #d=31/02 #kind png"},
        {FacetKind::Tag, "#t a", "#tag b", "#t a #tag b"},
        {FacetKind::Tag, "#t a x", "#tag A", "x"},
        {FacetKind::Rating, "#r>1 #r<5 x", "#rating>3", "x #rating>3"},
        {FacetKind::Color, "#c blue", "#color red", "#color red"},
        {FacetKind::Imported, "#d=2025 #di=2024", "#di=today", "#d=2025 #di=today"},
    };
    for (const Case &each : cases) {
        const FacetText text(QLatin1StringView(each.text));
        EXPECT_EQ(text.toggled(each.kind, QLatin1StringView(each.token)).toStdString(), each.toggled) << each.text;
    }
    EXPECT_EQ(FacetText(QStringLiteral("NOT NOT #t a -#t b #t c")).tokens(FacetKind::Tag).size(), 2);
}

TEST(FacetTextTest, APartIsTakenOutWithWhatOnlyJoinedIt)
{
    struct Case
    {
        const char *text;
        qsizetype index;
        const char *without;
    };
    static constexpr Case cases[] = {
        {"a #d=31/02 b", 1, "a b"},
        {"a OR b", 2, "a"},
        {"(a) b", 1, "b"},
        {"a #nosuch", 1, "a"},
        {"-#tag x y", 0, "y"},
        {"a", 0, ""},
        {"  a   #c red", 0, "  #c red"},
        {"a b", 7, "a b"},
        {"a b", -1, "a b"},
        {"x \"open", 1, "x"},
    };
    for (const Case &each : cases) {
        EXPECT_EQ(SearchManager::without(QLatin1StringView(each.text), each.index).toStdString(), each.without)
            << each.text;
    }
}

TEST(FacetTextTest, TheWordOfAKindFindsTheKindAndNoOther)
{
    EXPECT_EQ(KindNames::wordOfExtension(QStringLiteral("JPG")), QStringLiteral("jpeg image"))
        << "JPEG 2000 is another";
    EXPECT_EQ(KindNames::wordOfExtension(QStringLiteral("jpeg")), QStringLiteral("jpeg image"));
    EXPECT_EQ(KindNames::wordOfExtension(QStringLiteral("zz")), QStringLiteral("zz"));
    EXPECT_EQ(KindNames::wordOfExtension(QStringLiteral("abr")), QStringLiteral("photoshop brush"))
        << "a Photoshop picture is another";
    for (const char *extension : {"png", "svg", "psd", "pdf", "gif", "tiff", "otf", "webp"}) {
        const QString word = KindNames::wordOfExtension(QLatin1StringView(extension));
        EXPECT_TRUE(KindNames::extensionsOfKind(word).contains(QLatin1StringView(extension))) << extension;
    }
}

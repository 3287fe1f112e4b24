// What a tab shows, against the plain way over objects in memory.

#include "Classes/Browsing/Content/ContentBuilder.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarRecent.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Browsing/BrowsingFixture.h"

#include <algorithm>
#include <random>

namespace {

using Image = ZQRef<ZQLibraryBaseItem>;

struct Row
{
    Image item;
    ZQRef<ZQProjectItem> membership; // null where the row is the item
    QString part;                    // title of the sidebar item that brought it
};
using Rows = QList<Row>;

ZQObjectID idOf(const Row &row)
{
    return row.membership ? row.membership->objectID() : row.item->objectID();
}

Rows eachOnce(const Rows &rows)
{
    Rows result;
    QSet<ZQObjectID> seen;
    for (const Row &row : rows) {
        if (!seen.contains(idOf(row))) {
            seen.insert(idOf(row));
            result.append(row);
        }
    }
    return result;
}

class ContentGroupsTest : public BrowsingFixture
{
protected:
    Item special(ZQSidebarKind kind) { return ZQSidebarBaseItem::specialItemOfKind(kind, library.context()); }
    Image addImage(int number, const QString &extension, QSize size, int color)
    {
        const auto image = library.addImage(QStringLiteral("%1 %2").arg(QChar(u'a' + number % 7)).arg(number));
        image->setExtension(extension);
        image->setPixelWidth(size.width());
        image->setPixelHeight(size.height());
        image->setPixelTotal(qint64(size.width()) * size.height());
        image->setMainColor(color);
        image->setSHA1(QString::number(number * 7919 % 104729));
        const QDateTime now = zqNow();
        const qint64 ages[] = {600, 108000, 345600, 1728000}; // ten minutes to twenty days
        image->setImport_date(now.addSecs(-ages[number % 4]).addMSecs(number));
        image->setModification_date(now.addSecs(-ages[number * 5 % 4]).addMSecs(-number));
        image->setCreation_date(now.addSecs(-number * 977 % 5000));
        return image;
    }
    void populate(std::mt19937 &random);
    Item any(const QList<Item> &of, std::mt19937 &random) { return of[qsizetype(random() % size_t(of.size()))]; }

    // The plain way.
    Rows rowsOf(const Item &item, bool asItems, ZQSortValue sort, bool ascending);
    Rows allRows(const QList<Item> &selection, BrowserDisplayStyle style, ZQSortValue sort, bool ascending);
    static void sortByItems(Rows &rows, ZQSortValue sort, bool ascending);
    QString expected(const QList<Item> &selection, ContentQuery query);
    QString found(const ContentQuery &query, LibraryIndex *with = nullptr);

    QList<Item> places; // what can be selected
    QList<Image> images;
};

void ContentGroupsTest::populate(std::mt19937 &random)
{
    const Item folder = addFolder(QStringLiteral("Folder"));
    const Item nested = addFolder(QStringLiteral("Nested"), folder);
    const QList<Item> projectItems = {addProject(QStringLiteral("One")), addProject(QStringLiteral("Two"), folder),
                                      addProject(QStringLiteral("Three"), nested),
                                      addProject(QStringLiteral("Empty"), folder)};
    const Item liveLabel = special(ZQSidebarKind::WatchedFoldersLabel);
    const Item live = add<ZQSidebarWatchedFolder>(QStringLiteral("Live"), liveLabel);
    const Item below = add<ZQSidebarWatchedFolder>(QStringLiteral("Below"), live);
    const Item tags[] = {ZQSidebarTag::addNewTagWithName(QStringLiteral("first"), library.context()),
                         ZQSidebarTag::addNewTagWithName(QStringLiteral("second"), library.context())};
    const QString extensions[] = {QStringLiteral("png"), QStringLiteral("PNG"), QStringLiteral("svg"),
                                  QStringLiteral("ai"),  QStringLiteral("jpg"), QString()};
    const int sides[] = {0, 1, 32, 33, 128, 129, 512, 513};
    const int colors[] = {0, 1000, 1003, 1009, 5};
    for (int number = 0; number < 40; ++number) {
        const auto side = [&] { return sides[random() % std::size(sides)]; };
        const Image image = addImage(number, extensions[random() % std::size(extensions)], QSize(side(), side()),
                                     colors[random() % std::size(colors)]);
        images.append(image);
        for (const Item &project : projectItems.first(3)) {
            if (random() % 3 == 0) {
                project->addItem(image.get(), quint32(random() % 5));
            }
        }
        for (const Item &tag : tags) {
            if (random() % 4 == 0) {
                tag->addItem(image.get());
            }
        }
        if (random() % 5 == 0) {
            (random() % 2 == 0 ? live : below)->addItem(image.get());
        }
        image->setActive(random() % 8 != 0);
    }
    library.context().save();
    places = projectItems + QList<Item>{folder,
                                        nested,
                                        live,
                                        below,
                                        tags[0],
                                        tags[1],
                                        projects,
                                        liveLabel,
                                        special(ZQSidebarKind::Library),
                                        special(ZQSidebarKind::Recent),
                                        special(ZQSidebarKind::Screenshots)};
}

void ContentGroupsTest::sortByItems(Rows &rows, ZQSortValue sort, bool ascending)
{
    const auto descriptors = ZQSidebarBaseItem::sortDescriptorsForSortValue(sort, ascending, ZQListRows::LibraryItems);
    std::stable_sort(rows.begin(), rows.end(), [&](const Row &a, const Row &b) {
        for (const ZQSortDescriptor &key : descriptors) {
            const int order =
                zqCompareValues(a.item->valueForKey(key.keyPath), b.item->valueForKey(key.keyPath), key.comparison);
            if (order != 0) {
                return (order < 0) == key.ascending;
            }
        }
        // Rows of one item: memberships in the order they were made, the item itself behind.
        const qint64 last = std::numeric_limits<qint64>::max();
        return (a.membership ? a.membership->objectID().key : last) <
               (b.membership ? b.membership->objectID().key : last);
    });
}

Rows ContentGroupsTest::rowsOf(const Item &item, bool asItems, ZQSortValue sort, bool ascending)
{
    Rows rows;
    if (item->hasOrderedMembers()) {
        for (const auto &membership : item->pItems()) {
            rows.append({membership->item(), asItems ? ZQRef<ZQProjectItem>() : membership, item->title()});
        }
    } else {
        for (const auto &image : item->items()) {
            rows.append({image, {}, item->title()});
        }
    }
    if (sort != ZQSortValue::Manual && sort != ZQSortValue::None) {
        sortByItems(rows, sort, ascending);
    }
    return rows;
}

Rows ContentGroupsTest::allRows(const QList<Item> &selection, BrowserDisplayStyle style, ZQSortValue sort,
                                bool ascending)
{
    QList<Item> projectSet;
    QList<Item> watched;
    const auto addOnce = [](const Item &item, QList<Item> &into) {
        if (!into.contains(item)) {
            into.append(item);
        }
    };
    const std::function<void(const Item &)> addWatched = [&](const Item &item) {
        addOnce(item, watched);
        for (const Item &child : item->orderedChildren()) {
            addWatched(child);
        }
    };
    const std::function<void(const Item &)> addBelow = [&](const Item &item) {
        for (const Item &child : item->orderedChildren()) {
            child->isFolder()          ? addBelow(child)
            : child->isWatchedFolder() ? addWatched(child)
                                       : addOnce(child, projectSet);
        }
    };
    bool hasTags = false;
    for (const Item &item : selection) {
        hasTags = hasTags || item->isTag();
        item->isFolder() ? addBelow(item) : item->isWatchedFolder() ? addWatched(item) : addOnce(item, projectSet);
    }
    const bool isSpecial =
        selection.size() == 1 && selection.first()->isSpecial() && !selection.first()->isScreenshot();
    const bool isByItem = isSpecial || (!projectSet.isEmpty() && projectSet.first()->isTag());
    if (!isByItem && hasTags) {
        projectSet.clear();
    }
    Rows rows;
    for (const Item &item : projectSet + watched) {
        rows += rowsOf(item, isByItem || style == BrowserDisplayStyle::Plain, sort, ascending);
    }
    return rows;
}

QString ContentGroupsTest::expected(const QList<Item> &selection, ContentQuery query)
{
    query.settleOrder();
    Rows rows = allRows(selection, query.displayStyle, query.sortValue, query.isAscending);
    rows.removeIf([&](const Row &row) { return !row.item->title().contains(query.filter, Qt::CaseInsensitive); });
    const auto size = [](const Row &row) { return std::max(row.item->pixelWidth(), row.item->pixelHeight()); };
    const auto hasSize = [](const Row &row) { return row.item->pixelWidth() > 0 && row.item->pixelHeight() > 0; };
    const auto isVector = [](const Row &row) {
        return QStringList{QStringLiteral("ai"), QStringLiteral("sketch"), QStringLiteral("svg")}.contains(
            row.item->extension());
    };
    QList<std::pair<QString, std::function<bool(const Row &)>>> groups;
    if (query.displayStyle == BrowserDisplayStyle::BySidebarItem) {
        const bool isRecent = selection.size() == 1 && selection.first()->isRecent();
        for (const Row &row : std::as_const(rows)) {
            if (!isRecent && (groups.isEmpty() || groups.last().first != row.part)) {
                groups.append({row.part, [part = row.part](const Row &each) { return each.part == part; }});
            }
        }
        for (const auto &group : isRecent ? ZQSidebarRecent::groups() : QList<ZQSidebarRecent::Group>()) {
            groups.append({group.title,
                           [group](const Row &each) { return group.predicate.evaluateWithObject(each.item.get()); }});
        }
    } else {
        rows = eachOnce(rows);
        sortByItems(rows, query.sortValue, query.isAscending);
    }
    switch (query.displayStyle) {
    case BrowserDisplayStyle::ByExtension:
        for (const char *extension : {"", "ai", "jpg", "PNG", "png", "svg"}) {
            const QString text = QLatin1StringView(extension);
            groups.append({text.isEmpty() ? QStringLiteral("None") : text,
                           [text](const Row &each) { return each.item->extension() == text; }});
        }
        break;
    case BrowserDisplayStyle::ByColor:
        for (const auto &[color, title] :
             {std::pair(0, "None"), {5, "None"}, {1000, "White"}, {1003, "Red"}, {1009, "Pink"}}) {
            groups.append({QString::fromLatin1(title),
                           [color = color](const Row &each) { return each.item->mainColor() == color; }});
        }
        break;
    case BrowserDisplayStyle::BySize:
        groups = {
            {QStringLiteral("None"), [=](const Row &each) { return !hasSize(each) && !isVector(each); }},
            {QStringLiteral("Icon"), [=](const Row &each) { return hasSize(each) && size(each) <= 32; }},
            {QStringLiteral("Small"), [=](const Row &each) { return size(each) > 32 && size(each) <= 128; }},
            {QStringLiteral("Medium"), [=](const Row &each) { return size(each) > 128 && size(each) <= 512; }},
            {QStringLiteral("Large"), [=](const Row &each) { return size(each) >= 512; }},
            {QStringLiteral("Vector"), isVector},
        };
        break;
    default:
        break;
    }
    QString text;
    const auto say = [&text](const Row &row) {
        text += QStringLiteral(" %1%2").arg(row.membership ? u'm' : u'i').arg(idOf(row).key);
        text += u'=' + row.item->title();
    };
    for (const auto &[title, holds] : std::as_const(groups)) {
        Rows members;
        std::copy_if(rows.begin(), rows.end(), std::back_inserter(members), holds);
        if (!members.isEmpty()) {
            text += QStringLiteral("\n%1 %2:").arg(title).arg(members.size());
            std::for_each(members.begin(), members.end(), say);
        }
    }
    if (query.displayStyle == BrowserDisplayStyle::Plain) {
        std::for_each(rows.begin(), rows.end(), say);
    }
    return text;
}

QString ContentGroupsTest::found(const ContentQuery &query, LibraryIndex *with)
{
    ZQManagedObjectContext context(library.coordinator());
    const auto content = ContentBuilder(query, context, with).content([] { return true; });
    if (!content || !content->error.isNull()) {
        return QStringLiteral("error");
    }
    QString text;
    const auto say = [&](qint64 index) {
        const ZQObjectID &row = content->rows.ids[index];
        const auto item = zqCast<ZQLibraryBaseItem>(context.objectWithID(content->rows.related[index]));
        const bool isMembership = bool(zqCast<ZQProjectItem>(context.objectWithID(row)));
        text += QStringLiteral(" %1%2").arg(isMembership ? u'm' : u'i').arg(row.key);
        text += u'=' + item->title();
    };
    qint64 next = 0;
    for (const ContentGroup &group : content->groups) {
        EXPECT_EQ(group.first, next);
        text += QStringLiteral("\n%1 %2:").arg(group.title).arg(group.count);
        for (; next < group.first + group.count; ++next) {
            say(next);
        }
    }
    for (; next < content->rows.ids.size(); ++next) {
        say(next);
    }
    return text;
}

} // namespace

TEST_F(ContentGroupsTest, EverySelectionStyleAndOrderIsAsThePlainWayHasIt)
{
    std::mt19937 random(20);
    populate(random);
    qsizetype longest = 0;
    for (int round = 0; round < 400; ++round) {
        QList<Item> selection;
        for (auto count = random() % 4 == 0 ? 1 + random() % 4 : 1; count > 0; --count) {
            if (const Item item = any(places, random); !selection.contains(item)) {
                selection.append(item);
            }
        }
        ContentQuery query;
        QStringList names;
        for (const Item &item : selection) {
            query.sidebarItems.append(item->objectID());
            names.append(item->title());
        }
        query.displayStyle = BrowserDisplayStyle(random() % 5);
        query.sortValue = ZQSortValue(random() % 8);
        query.isAscending = random() % 2 == 0;
        query.filter = random() % 4 == 0 ? QStringLiteral("B") : QString();
        const QString plain = expected(selection, query);
        ASSERT_EQ(found(query).toStdString(), plain.toStdString())
            << names.join(u'+').toStdString() << " style " << int(query.displayStyle) << " sort "
            << int(query.sortValue) << (query.isAscending ? " up" : " down");
        longest = std::max(longest, plain.size());
    }
    EXPECT_GT(longest, 300) << "there was something to show";
}

TEST_F(ContentGroupsTest, FoldersOfALiveFolderAreListedByTheIndexAsByTheStore)
{
    std::mt19937 random(7);
    populate(random);
    const Item live = places[6];
    ASSERT_EQ(live->title(), QStringLiteral("Live"));
    for (const char *name : {"2024", "2025"}) {
        const Item year = add<ZQSidebarWatchedFolder>(QLatin1StringView(name), live);
        const Item raw = add<ZQSidebarWatchedFolder>(QStringLiteral("raw"), year);
        add<ZQSidebarWatchedFolder>(QStringLiteral("empty"), raw);
        for (qsizetype i = random() % 3; i < images.size(); i += 3) {
            (random() % 2 == 0 ? year : raw)->addItem(images[i].get());
        }
    }
    library.context().save();
    LibraryIndex index(library.coordinator());
    index.follow(library.context());
    ASSERT_TRUE(index.waitUntilOrdered());
    for (const char *filter : {"", "B", "#ext png OR #ext svg"}) {
        for (int sort = 0; sort < 8; ++sort) {
            const ContentQuery query{.sidebarItems = {places.first()->objectID(), live->objectID()},
                                     .filter = QString::fromLatin1(filter),
                                     .sortValue = ZQSortValue(sort),
                                     .isAscending = sort % 2 == 0,
                                     .displayStyle = BrowserDisplayStyle::BySidebarItem};
            const QString byStore = found(query);
            EXPECT_EQ(found(query, &index).toStdString(), byStore.toStdString()) << filter << " sort " << sort;
            if (!*filter) {
                EXPECT_TRUE(byStore.contains(QStringLiteral("\nLive / 2024 / raw ")));
                EXPECT_TRUE(byStore.contains(QStringLiteral("\nLive / 2025 / raw ")));
                EXPECT_TRUE(byStore.contains(QStringLiteral("\n2025 "))) << "which is told apart as it is";
                EXPECT_FALSE(byStore.contains(QStringLiteral("empty")));
            }
        }
    }
}

TEST_F(ContentGroupsTest, ExtensionsAreOrderedAsWordsWhoeverAnswers)
{
    int number = 0;
    const Item project = addProject(QStringLiteral("Extensions"));
    for (const char *extension : {"jpg", "3fr", "JP2", "jpeg", "10x", "JPG", "", "jp2"}) {
        project->addItem(addImage(number++, QLatin1StringView(extension), {1, 1}, 0).get());
    }
    library.context().save();
    LibraryIndex index(library.coordinator());
    index.follow(library.context());
    ASSERT_TRUE(index.waitUntilCurrent());
    for (LibraryIndex *with : {static_cast<LibraryIndex *>(nullptr), &index}) {
        const ContentQuery query{
            .sidebarItems = {project->objectID()}, .filter = {}, .displayStyle = BrowserDisplayStyle::ByExtension};
        const auto content = ContentBuilder(query, library.context(), with).content([] { return true; });
        ASSERT_TRUE(content);
        QStringList titles;
        for (const ContentGroup &group : content->groups) {
            titles.append(group.title);
        }
        EXPECT_EQ(titles.join(u' ').toStdString(), "None 10x 3fr JP2 jp2 jpeg JPG jpg") << (with ? "index" : "store");
    }
}

TEST_F(ContentGroupsTest, SizeClassesMeetAtTheirBounds)
{
    struct Case
    {
        const char *extension;
        QSize size;
        QList<const char *> groups;
    };
    const Case cases[] = {{"png", {512, 300}, {"medium", "large"}},
                          {"png", {32, 32}, {"icon"}},
                          {"png", {33, 10}, {"small"}},
                          {"svg", {0, 0}, {"vector"}},
                          {"png", {0, 0}, {"none"}},
                          {"svg", {600, 10}, {"large", "vector"}},
                          {"png", {0, 10}, {"none"}},
                          {"png", {129, 1}, {"medium"}}};
    const Item project = addProject(QStringLiteral("Sizes"));
    int number = 0;
    for (const Case &each : cases) {
        project->addItem(addImage(number++, QLatin1StringView(each.extension), each.size, 0).get());
    }
    library.context().save();
    const auto content =
        ContentBuilder(
            {.sidebarItems = {project->objectID()}, .filter = {}, .displayStyle = BrowserDisplayStyle::BySize},
            library.context())
            .content([] { return true; });
    ASSERT_TRUE(content);
    QHash<QString, QStringList> groupsOf;
    for (const ContentGroup &group : content->groups) {
        EXPECT_TRUE(group.sidebarItem.isNull());
        EXPECT_EQ(group.title, group.value.toString().left(1).toUpper() + group.value.toString().mid(1));
        for (const ZQObjectID &id : content->rows.related.mid(group.first, group.count)) {
            groupsOf[zqCast<ZQLibraryBaseItem>(library.context().objectWithID(id))->title()].append(
                group.value.toString());
        }
    }
    for (number = 0; const Case &each : cases) {
        QStringList expected;
        for (const char *group : each.groups) {
            expected.append(QString::fromLatin1(group));
        }
        EXPECT_EQ(groupsOf.value(QStringLiteral("%1 %2").arg(QChar(u'a' + number % 7)).arg(number)), expected)
            << number;
        ++number;
    }
}

TEST_F(ContentGroupsTest, AFilterClosesUpTheGroupsAndDropsEmptyOnes)
{
    const auto group = [](const char *title, qint64 first, qint64 count) {
        return ContentGroup{QString::fromLatin1(title), first, count, {}, QString::fromLatin1(title)};
    };
    const Content content{{}, {group("A", 0, 2), group("B", 2, 1), group("C", 3, 3)}};
    EXPECT_EQ(content.filteredGroups({true, true, true, true, true, true}), content.groups);
    EXPECT_EQ(content.filteredGroups({false, true, false, true, false, true}),
              (QList<ContentGroup>{group("A", 0, 1), group("C", 1, 2)}));
    EXPECT_EQ(content.filteredGroups({false, false, false, false, false, false}), QList<ContentGroup>());
    EXPECT_EQ(content.filteredGroups({}), QList<ContentGroup>());
}

// What searching, ordering and grouping a library costs, without a window. Prints "NAME VALUE" a line; the limits are
// those of Benchmarks/browse.
//
// zelto_browse_bench make STORE ITEMS
// zelto_browse_bench measure STORE ITEMS

#include "Classes/Browsing/Content/ContentBuilder.h"
#include "Classes/Browsing/Content/FacetCounts.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Browsing/Index/ListOrder.h"
#include "Models/DataModel/ZQModel.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/_ZQEntities.h"
#include "Tests/Support/SyntheticLibrary.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>

#include <algorithm>
#include <cstdio>
#include <map>
#include <sqlite3.h>

namespace {

constexpr int runs = 5;

void print(const char *name, double value)
{
    std::printf("%s %.4f\n", name, value);
    std::fflush(stdout);
}

[[noreturn]] void giveUp(const QString &why)
{
    std::fprintf(stderr, "%s\n", qPrintable(why));
    std::exit(1);
}

double millisecondsFor(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

double medianMilliseconds(const std::function<void()> &work)
{
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        times.push_back(millisecondsFor(work));
    }
    std::nth_element(times.begin(), times.begin() + runs / 2, times.end());
    return times[runs / 2];
}

QString wordClause(const QString &word)
{
    return QStringLiteral("item.title contains[cd] \"%1\" OR item.notes contains[cd] \"%1\" OR "
                          "item.extension contains[cd] \"%1\" OR ANY item.tags.title contains[cd] \"%1\"")
        .arg(word);
}

// The library, its index, and the lists of its sidebar.
class Bench
{
public:
    explicit Bench(std::shared_ptr<ZQPersistentStoreCoordinator> coordinator)
        : m_coordinator(std::move(coordinator)), m_context(m_coordinator)
    {
    }

    void measure(const QString &path);

private:
    ZQRef<ZQSidebarBaseItem> titled(const QString &title)
    {
        const auto found = zqFetch<ZQSidebarBaseItem>(m_context, QStringLiteral("title == %@"), {title});
        if (!found || found->isEmpty()) {
            giveUp(QStringLiteral("there is no ") + title);
        }
        return found->first();
    }
    // From the text of a predicate to the count and the identifiers of its rows, newest first.
    qsizetype search(const QString &format) { return list({m_library}, format); }
    qsizetype list(const QList<ZQFetchRequest> &requests, const QString &format = {})
    {
        const ZQPredicate search = format.isEmpty() ? ZQPredicate() : ZQPredicate::predicateWithFormat(format);
        const auto reading = m_index->read();
        const auto rows = reading->rows(requests, search);
        if (!rows) {
            giveUp(QStringLiteral("no column for ") + format);
        }
        qsizetype count = 0;
        for (const IndexRows &each : *rows) {
            count += reading->ids(each).ids.size();
        }
        return count;
    }
    void measureKeys(sqlite3 *database);
    void measureTokens();
    void measureOrders();
    void measureLists();
    void measureFacets();

    std::shared_ptr<ZQPersistentStoreCoordinator> m_coordinator;
    ZQManagedObjectContext m_context;
    std::unique_ptr<LibraryIndex> m_index;
    ZQFetchRequest m_library;
};

qint64 bareSearch(sqlite3 *database, const QString &word, const ZQRelationshipDescription &tags)
{
    const QString sql =
        QStringLiteral(
            "SELECT id FROM ZQLibraryBaseItem t WHERE active = 1 AND (title LIKE ?1 OR notes LIKE ?1 OR "
            "extension LIKE ?1 OR EXISTS (SELECT 1 FROM \"%1\" j JOIN ZQSidebarBaseItem s ON s.id = j.\"%3\" "
            "WHERE j.\"%2\" = t.id AND s.title LIKE ?1))")
            .arg(tags.joinTable, tags.joinOwnColumn, tags.joinOtherColumn);
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(database, sql.toUtf8().constData(), -1, &statement, nullptr) != SQLITE_OK) {
        giveUp(QString::fromUtf8(sqlite3_errmsg(database)));
    }
    const QByteArray pattern = '%' + word.toUtf8() + '%';
    sqlite3_bind_text(statement, 1, pattern.constData(), -1, SQLITE_TRANSIENT);
    qint64 count = 0;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        ++count;
    }
    sqlite3_finalize(statement);
    return count;
}

void Bench::measureKeys(sqlite3 *database)
{
    const ZQRelationshipDescription &tags =
        *m_context.model().entity(QStringLiteral("ZQLibraryBaseItem"))->relationship(QStringLiteral("tags"));
    double slowest = 0;
    double peerOfSlowest = 0;
    double worstRatio = 0;
    double peerOfWorst = 0;
    double ownOfWorst = 0;
    for (const char *word : {"e", "lo", "logo", "screenshot 12", "harbour", "zzz", "portrait 77"}) {
        const QString text = QString::fromUtf8(word);
        qsizetype own = 0;
        qint64 theirs = 0;
        const double time = medianMilliseconds([&] { own = search(wordClause(text)); });
        const double peer = millisecondsFor([&] { theirs = bareSearch(database, text, tags); });
        if (qint64(own) < theirs) { // which knows no accents, so that it may find less
            giveUp(QStringLiteral("\"%1\": %2 found, the peer %3").arg(text).arg(own).arg(theirs));
        }
        std::fprintf(stderr, "    %-14s %9lld rows %9.2f ms, LIKE %9.2f ms\n", word, qlonglong(own), time, peer);
        if (time > slowest) {
            slowest = time;
            peerOfSlowest = peer;
        }
        if (time / peer > worstRatio) {
            worstRatio = time / peer;
            ownOfWorst = time;
            peerOfWorst = peer;
        }
    }
    print("key-ms", slowest);
    print("key-like-ms", peerOfSlowest);
    print("key-worst-ms", ownOfWorst);
    print("key-worst-like-ms", peerOfWorst);
}

void Bench::measureTokens()
{
    const QString tokens[] = {
        QStringLiteral("item.title contains[cd] \"final\""),
        QStringLiteral("item.notes contains[cd] \"final\""),
        QStringLiteral("item.extension LIKE[cd] \"PNG\""),
        QStringLiteral("ANY item.tags.title LIKE[cd] \"photo\""),
        QStringLiteral("ANY item.tags.title LIKE[cd] \"*a*\""),
        QStringLiteral("ANY item.projectsItems.project.title contains[cd] \"logo\""),
        QStringLiteral("item.SHA1 == \"0000000000000000000000000000000000000010\""),
        QStringLiteral("item.pixelWidth > 1000"),
        QStringLiteral("item.pixelHeight == 512"),
        QStringLiteral("item.modification_date > CAST(600000000.000000, \"NSDate\")"),
        QStringLiteral("item.import_date >= CAST(600000000.000000, \"NSDate\") AND (item.import_date <= "
                       "CAST(600086399.000000, \"NSDate\"))"),
        QStringLiteral("item.managed == NO"),
        QStringLiteral("ALL item.tags.is_Special == YES"),
        QStringLiteral("item.tags.@count == 0"),
        QStringLiteral("item.projectsItems.@count == 0 OR ALL item.projectsItems.project.active == NO"),
        QStringLiteral("( item.watchingFolder.title contains[cd] \"down\" ) OR "
                       "( item.watchingFolder.father.title contains[cd] \"down\" )"),
        QStringLiteral("item.rating > 3"),
        QStringLiteral("item.mainColor == 1003"),
    };
    double slowest = 0;
    for (const QString &token : tokens) {
        qsizetype count = 0;
        const double time = medianMilliseconds([&] { count = search(token); });
        std::fprintf(stderr, "    %9lld rows %9.2f ms  %s\n", qlonglong(count), time, qPrintable(token.left(70)));
        slowest = std::max(slowest, time);
    }
    const double digests = medianMilliseconds([&] {
        const auto reading = m_index->read();
        if (reading->repeatedDigests(reading->active()).isEmpty()) {
            giveUp(QStringLiteral("nothing is there twice"));
        }
    });
    print("token-ms", slowest);
    print("duplicates-ms", digests);
    const QString clause = QStringLiteral(" ( %1 )");
    const QString several = clause.arg(wordClause(QStringLiteral("logo"))) + QStringLiteral(" OR") +
                            clause.arg(wordClause(QStringLiteral("city"))) + QStringLiteral(" AND NOT") +
                            clause.arg(wordClause(QStringLiteral("draft"))) + QStringLiteral(" AND") +
                            clause.arg(tokens[7]) + QStringLiteral(" OR NOT") + clause.arg(tokens[3]);
    print("several-ms", medianMilliseconds([&] { search(several); }));
}

void Bench::measureOrders()
{
    // One after another, so that none is still there from the time before.
    std::map<int, std::vector<double>> times;
    for (int run = 0; run < runs; ++run) {
        for (const int value :
             {1, 2, 3, 4, 6, 7, int(ListOrder::byKind), int(ListOrder::byRating), int(ListOrder::byTags)}) {
            ZQFetchRequest request = m_library;
            request.sortDescriptors =
                ListOrder::descriptors(ZQSortValue(value), run % 2 == 0, ZQListRows::LibraryItems);
            times[value].push_back(millisecondsFor([&] { list({request}); }));
        }
    }
    double slowest = 0;
    for (auto &[value, taken] : times) {
        std::nth_element(taken.begin(), taken.begin() + runs / 2, taken.end());
        std::fprintf(stderr, "    sort value %d %9.2f ms\n", value, taken[runs / 2]);
        slowest = std::max(slowest, taken[runs / 2]);
    }
    print("sort-ms", slowest);
    slowest = 0;
    ContentQuery query;
    query.sidebarItems = {ZQSidebarBaseItem::libraryProjectInManagedObjectContext(m_context)->objectID()};
    query.sortValue = ZQSortValue::ImportDate;
    for (const BrowserDisplayStyle style :
         {BrowserDisplayStyle::ByExtension, BrowserDisplayStyle::ByColor, BrowserDisplayStyle::BySize}) {
        query.displayStyle = style;
        const double time = medianMilliseconds([&] {
            const auto content = ContentBuilder(query, m_context, m_index.get()).content([] { return true; });
            if (!content || content->groups.isEmpty()) {
                giveUp(QStringLiteral("no groups"));
            }
        });
        std::fprintf(stderr, "    grouping %d %9.2f ms\n", int(style), time);
        slowest = std::max(slowest, time);
    }
    print("group-ms", slowest);
}

void Bench::measureLists()
{
    const auto project = titled(SyntheticLibrary::largeProject())->contentRequest();
    const auto tag = titled(SyntheticLibrary::largeTag())->contentRequest();
    print("project-ms", medianMilliseconds([&] { list({project}); }));
    print("tag-ms", medianMilliseconds([&] { list({tag}); }));
    const auto folder = titled(SyntheticLibrary::largeFolder());
    const double reading = millisecondsFor([&] { ZQSidebarFolder::expandedProjects({folder}); });
    QList<ZQFetchRequest> requests;
    for (const auto &each : ZQSidebarFolder::expandedProjects({folder})) {
        requests.append(each->contentRequest());
    }
    print("folder-projects", double(requests.size()));
    print("folder-sidebar-ms", reading);
    print("folder-ms", medianMilliseconds([&] { list(requests); }));
}

void Bench::measureFacets()
{
    ContentQuery query;
    query.sidebarItems = {ZQSidebarBaseItem::libraryProjectInManagedObjectContext(m_context)->objectID()};
    const auto counted = [&] {
        const auto facets = FacetCounts::of(query, m_context, *m_index, [] { return true; });
        if (!facets || facets->isEmpty()) {
            giveUp(QStringLiteral("nothing counted"));
        }
    };
    counted(); // what kinds are called is read once
    print("facets-ms", medianMilliseconds(counted));
    query.filter = QStringLiteral("logo #rating>2");
    print("facets-searched-ms", medianMilliseconds(counted));
}

void Bench::measure(const QString &path)
{
    m_library = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(m_context)->contentRequest();
    m_library.sortDescriptors =
        ZQSidebarBaseItem::sortDescriptorsForSortValue(ZQSortValue::ImportDate, false, ZQListRows::LibraryItems);
    print("build-ms", millisecondsFor([&] {
              m_index = std::make_unique<LibraryIndex>(m_coordinator);
              if (!m_index->waitUntilCurrent()) {
                  giveUp(QStringLiteral("the index cannot be built"));
              }
          }));
    m_index->waitUntilOrdered();
    print("bytes-an-item", double(m_index->bytes()) / double(m_index->read()->items().count()));
    sqlite3 *database = nullptr;
    sqlite3_open_v2(path.toUtf8().constData(), &database, SQLITE_OPEN_READONLY, nullptr);
    measureKeys(database);
    sqlite3_close(database);
    measureTokens();
    measureOrders();
    measureLists();
    measureFacets();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    zqRegisterEntities();
    const QStringList arguments = QCoreApplication::arguments();
    const QString path = arguments.value(2);
    const qint64 items = arguments.value(3).toLongLong();
    if (arguments.value(1) == QStringLiteral("make") && items > 0) {
        return SyntheticLibrary{items}.make(path) ? 0 : 1;
    }
    if (arguments.value(1) != QStringLiteral("measure") || !QFileInfo(path).isFile()) {
        std::fprintf(stderr, "zelto_browse_bench make|measure STORE ITEMS\n");
        return 2;
    }
    ZQError error;
    auto coordinator = ZQPersistentStoreCoordinator::open(zqCurrentModel(), path, {}, &error);
    if (!coordinator) {
        giveUp(error.localizedDescription());
    }
    Bench(std::move(coordinator)).measure(path);
    return 0;
}

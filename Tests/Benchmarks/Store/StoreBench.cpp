// What a large library costs. Prints "NAME VALUE" a line; the limits are those of Benchmarks/store.
//
// zelto_store_bench make STORE ITEMS [VERSION]   a store to measure on, of the current model or of an older one
// zelto_store_bench MEASUREMENT STORE ITEMS      changes the store it is given

#include "Classes/Editing/LibraryCommands.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQModel.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarLibrary.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/_ZQEntities.h"
#include "Tests/Benchmarks/Store/LeftoversBench.h"
#include "Tests/Support/ScratchLibrary.h"
#include "Tests/Support/ScriptedUser.h"
#include "Tests/Support/StoreLibrary.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QUndoStack>

#include <algorithm>
#include <cstdio>
#include <sqlite3.h>
#include <sys/resource.h>
#include <thread>

namespace {

constexpr int runs = 21;
constexpr int digests = 500;

void print(const char *name, double value)
{
    std::printf("%s %.4f\n", name, value);
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

double highestMemory() // of this process so far, in MB
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024;
}

[[noreturn]] void giveUp(const QString &why)
{
    std::fprintf(stderr, "%s\n", qPrintable(why));
    std::exit(1);
}

std::shared_ptr<ZQPersistentStoreCoordinator> opened(const QString &path)
{
    ZQError error;
    auto coordinator = ZQPersistentStoreCoordinator::open(zqCurrentModel(), path, {}, &error);
    if (!coordinator) {
        giveUp(error.localizedDescription());
    }
    return coordinator;
}

// What the library does not have, and every so often one that it has.
QStringList digestsToLookFor(const QString &path, qint64 items, int round)
{
    const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::ReadOnly, nullptr);
    QStringList result;
    for (int i = 0; i < digests; ++i) {
        const qint64 key = 1 + (qint64(i) * 7919 + round) * 104729 % items;
        result.append(i % 2
                          ? connection->value(QStringLiteral("SELECT lower(hex(randomblob(20)))")).toString()
                          : connection->value(QStringLiteral("SELECT SHA1 FROM ZQLibraryBaseItem WHERE id = ?"), {key})
                                .toString());
    }
    return result;
}

qint64 bareLookUp(sqlite3 *database, const QStringList &wanted)
{
    QByteArray sql = "SELECT * FROM ZQLibraryBaseItem WHERE active = 1 AND SHA1 IN (?";
    for (qsizetype i = 1; i < wanted.size(); ++i) {
        sql += ",?";
    }
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(database, sql + ')', -1, &statement, nullptr);
    for (qsizetype i = 0; i < wanted.size(); ++i) {
        sqlite3_bind_text(statement, int(i + 1), wanted.at(i).toUtf8().constData(), -1, SQLITE_TRANSIENT);
    }
    qint64 found = 0;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        for (int column = 0; column < sqlite3_column_count(statement); ++column) {
            static_cast<void>(sqlite3_column_blob(statement, column));
        }
        ++found;
    }
    sqlite3_finalize(statement);
    return found;
}

void measureDuplicates(const QString &path, qint64 items)
{
    const auto coordinator = opened(path);
    ZQManagedObjectContext context(coordinator);
    sqlite3 *database = nullptr;
    sqlite3_open_v2(path.toUtf8().constData(), &database, SQLITE_OPEN_READONLY, nullptr);
    QList<QStringList> rounds;
    for (int round = 0; round < runs; ++round) {
        rounds.append(digestsToLookFor(path, items, round));
    }
    qsizetype ours = 0;
    qint64 theirs = 0;
    int round = 0;
    // The other one reads what is on the disk first, so that what is compared is work.
    const double bare = medianMilliseconds([&] { theirs += bareLookUp(database, rounds.at(round++)); });
    round = 0;
    const double own = medianMilliseconds([&] {
        const auto found = zqFetch<ZQLibraryBaseItem>(
            context, {.entityName = ZQLibraryBaseItem::entityName(),
                      .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("SHA1 in %@ AND active == YES"),
                                                                    {rounds.at(round++)}),
                      .includesPendingChanges = false});
        ours += found->size();
    });
    sqlite3_close(database);
    if (ours != theirs || ours == 0) {
        giveUp(QStringLiteral("found %1 items, the peer %2").arg(ours).arg(theirs));
    }
    print("duplicates-ms", own);
    print("duplicates-bare-ms", bare);
}

void measureCount(const QString &path, qint64)
{
    const auto coordinator = opened(path);
    ZQManagedObjectContext context(coordinator);
    for (int i = 0; i < 1000; ++i) {
        context.insertNewObject<ZQLibraryImage>()->setTitle(QStringLiteral("New"));
    }
    const auto project = context.insertNewObject<ZQSidebarProject>();
    qint64 count = 0;
    print("count-ms", medianMilliseconds([&] { count += project->numberOfItems(); }));
    if (count != 0) {
        giveUp(QStringLiteral("an empty project has %1 items").arg(count));
    }
}

// The longest that a list nobody wants any more goes on, in milliseconds, given up at several stages of it.
double longestGivingUp(ZQManagedObjectContext &context, const ZQFetchRequest &request)
{
    double longest = 0;
    context.setFetchesAreCancellable(true);
    for (const int stage : {20, 100, 300, 600, 1000, 1500, 2000, 3000}) {
        const auto cancellation = std::make_shared<ZQCancellation>();
        const ZQCancellation::Scope scope(cancellation);
        QElapsedTimer sinceCancelled;
        std::thread canceller([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(stage));
            sinceCancelled.start();
            cancellation->cancel();
        });
        const bool isGivenUp = !context.fetchObjectIDs(request);
        const qint64 ended = isGivenUp ? sinceCancelled.nsecsElapsed() : 0;
        canceller.join();
        longest = std::max(longest, double(ended) / 1e6);
    }
    context.setFetchesAreCancellable(false);
    return longest;
}

void measureLists(const QString &path, qint64)
{
    const auto coordinator = opened(path);
    ZQManagedObjectContext context(coordinator);
    const auto library = context.insertNewObject<ZQSidebarLibrary>();
    const ZQFetchRequest all = library->contentRequest();
    context.reset();
    qsizetype count = 0;
    print("list-ms", millisecondsFor([&] { count = context.fetchObjectIDs(all)->size(); }));
    ZQFetchRequest some = all;
    some.predicate = ZQPredicate::andPredicate(
        {all.predicate,
         ZQPredicate::predicateWithFormat(QStringLiteral("title contains[cd] %@"), {QStringLiteral("99")})});
    print("filter-ms", millisecondsFor([&] { count = context.fetchObjectIDs(some)->size(); }));
    print("total-count-ms", millisecondsFor([&] { count = zqCount(context, all); }));
    print("listed", double(count));
    ZQFetchRequest byTitle = all;
    byTitle.sortDescriptors =
        ZQSidebarBaseItem::sortDescriptorsForSortValue(ZQSortValue::Title, true, ZQListRows::LibraryItems);
    print("by-title-ms", millisecondsFor([&] { count = context.fetchObjectIDs(byTitle)->size(); }));
    print("given-up-ms", longestGivingUp(context, byTitle));
}

void measureUndo(const QString &path, qint64)
{
    ScratchLibrary environment;
    const auto coordinator = opened(path);
    ZQManagedObjectContext context(coordinator);
    ScriptedUser user;
    QUndoStack stack;
    ZQOperationQueue queue(QStringLiteral("edits"), 1);
    EditContext editing{context, user, queue, [&context] { return context.save(); }, &stack};
    const ZQObjectID project{context.model().entity(ZQSidebarProject::entityName()), StoreLibrary::firstProject};
    const qint64 before = editing.sidebarItem(project)->numberOfItems();
    QList<ZQObjectID> removed;
    for (qint64 key = 1; key <= 30; ++key) {
        removed.append({context.model().entity(ZQLibraryImage::entityName()), key * (before / 40) + 1});
    }
    const auto settle = [&queue] {
        QCoreApplication::sendPostedEvents();
        zqRunMainLoopUntil([&queue] { return queue.operationCount() == 0; }, std::chrono::milliseconds(1));
        QCoreApplication::sendPostedEvents(); // what was saved there is merged into the window's context
    };
    LibraryCommands(editing).removeItems(removed, project);
    settle();
    const qint64 between = editing.sidebarItem(project)->numberOfItems();
    print("undo-ms", millisecondsFor([&] {
              stack.undo();
              settle();
          }));
    const qint64 after = editing.sidebarItem(project)->numberOfItems();
    if (between != before - removed.size() || after != before) {
        giveUp(QStringLiteral("%1 members, %2 without those removed, %3 after the undo")
                   .arg(before)
                   .arg(between)
                   .arg(after));
    }
}

void measureMigration(const QString &path, qint64 items)
{
    const double before = highestMemory();
    print("migration-s", millisecondsFor([&] {
                             const auto coordinator = opened(path);
                             const auto pending = coordinator->pendingVersions();
                             if (!pending || pending->isEmpty()) {
                                 giveUp(QStringLiteral("nothing was migrated"));
                             }
                         }) / 1000);
    print("migration-mb", highestMemory() - before);
    const auto coordinator = opened(path);
    if (ZQManagedObjectContext(coordinator).countForFetchRequest({.entityName = ZQLibraryBaseItem::entityName()}) !=
        items) {
        giveUp(QStringLiteral("items were lost"));
    }
}

void measureLeftoverCheck(const QString &path, qint64)
{
    if (!measureLeftovers(path)) {
        giveUp(QStringLiteral("the check did not find everything in order"));
    }
}

void makeDirectories(const QString &path, qint64)
{
    if (!makeItemDirectories(path)) {
        giveUp(QStringLiteral("the item directories cannot be made"));
    }
}

void measureIndexes(const QString &path, qint64)
{
    const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
    QStringList names;
    {
        ZQSQLiteStatement select = connection->prepare(
            QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'index' AND name LIKE 'zq%'"));
        while (select.next()) {
            names.append(select.text(0));
        }
    }
    for (const QString &name : std::as_const(names)) {
        connection->execute(QStringLiteral("DROP INDEX ") + zqQuoted(name));
    }
    const double before = highestMemory();
    print("indexes-s", millisecondsFor([&] { opened(path); }) / 1000);
    print("indexes-mb", highestMemory() - before);
}

struct Measurement
{
    const char *name;
    void (*take)(const QString &path, qint64 items);
};
constexpr Measurement measurements[] = {
    {"duplicates", measureDuplicates},
    {"count", measureCount},
    {"lists", measureLists},
    {"undo", measureUndo},
    {"migration", measureMigration},
    {"indexes", measureIndexes},
    {"leftovers", measureLeftoverCheck},
    {"directories", makeDirectories},
};

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    zqRegisterEntities();
    const QStringList arguments = QCoreApplication::arguments();
    const qint64 items = arguments.value(3).toLongLong();
    const auto *measurement =
        std::find_if(std::begin(measurements), std::end(measurements),
                     [&](const Measurement &each) { return arguments.value(1) == QLatin1String(each.name); });
    if (arguments.value(1) == QStringLiteral("make") && items > 0) {
        const auto model = arguments.size() > 4 ? zqModelVersion(arguments.at(4)) : zqCurrentModel();
        return model && StoreLibrary{items}.make(model, arguments.at(2)) ? 0 : 1;
    }
    if (measurement == std::end(measurements) || items < 1000 || !QFileInfo(arguments.at(2)).isFile()) {
        std::fprintf(stderr, "zelto_store_bench make|MEASUREMENT STORE ITEMS [VERSION]\n");
        return 2;
    }
    measurement->take(arguments.at(2), items);
    return 0;
}

#include "Kit/Persistence/ZQContextPrivate.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQModel.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarLibrary.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarRecent.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Models/DataModel/_ZQEntities.h"
#include "Tests/Support/StoreLibrary.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sqlite3.h>

namespace {

constexpr qint64 items = 5000;

// How the database would run what `work` asks of it, one text a statement.
QStringList plansOf(ZQManagedObjectContext &context, const std::function<void()> &work)
{
    ZQSQLiteConnection &connection = *ZQObjectAccess::connection(context);
    QStringList statements;
    const auto note = [](unsigned, void *list, void *statement, void *) {
        static_cast<QStringList *>(list)->append(
            QString::fromUtf8(sqlite3_sql(static_cast<sqlite3_stmt *>(statement))));
        return 0;
    };
    sqlite3_trace_v2(connection.handle(), SQLITE_TRACE_STMT, note, &statements);
    work();
    sqlite3_trace_v2(connection.handle(), 0, nullptr, nullptr);
    QStringList plans;
    for (const QString &sql : std::as_const(statements)) {
        QStringList steps;
        ZQSQLiteStatement explain = connection.prepare(QStringLiteral("EXPLAIN QUERY PLAN ") + sql);
        while (explain.next()) {
            steps.append(explain.text(3));
        }
        plans.append(steps.join(QStringLiteral("; ")));
    }
    return plans;
}

struct Question
{
    const char *name;
    std::function<void(ZQManagedObjectContext &)> ask;
    const char *index;    // what it goes by
    bool isSorted = true; // no second sorting of the whole
    bool isList = false;  // of all there is, so that all is passed
};

// The request of the sidebar's entry for `T`, as the browser shows it.
template <class T>
ZQFetchRequest contentOf(ZQManagedObjectContext &context)
{
    const auto item = context.insertNewObject<T>();
    const ZQFetchRequest request = item->contentRequest();
    context.reset();
    return request;
}

QVariant objectOf(const ZQManagedObjectContext &context, const QString &entity, qint64 key)
{
    return QVariant::fromValue(ZQObjectID{context.model().entity(entity), key});
}

ZQFetchRequest matching(const QString &entity, const char *format, const QVariantList &arguments,
                        const QList<ZQSortDescriptor> &order = {})
{
    return {.entityName = entity,
            .predicate = ZQPredicate::predicateWithFormat(QLatin1String(format), arguments),
            .sortDescriptors = order};
}

QStringList digests()
{
    QStringList result;
    for (int i = 0; i < 500; ++i) {
        result.append(QString::number(i));
    }
    return result;
}

const QList<ZQSortDescriptor> byOrder = {{QStringLiteral("order")}};

const Question questions[] = {
    {"library", [](auto &context) { context.fetchObjectIDs(contentOf<ZQSidebarLibrary>(context)); },
     "USING COVERING INDEX zq_index_ZQLibraryBaseItem_import_date_descending_title_active_covering", true, true},
    {"library, oldest first",
     [](auto &context) {
         ZQFetchRequest request = contentOf<ZQSidebarLibrary>(context);
         request.sortDescriptors =
             ZQSidebarBaseItem::sortDescriptorsForSortValue(ZQSortValue::ImportDate, true, ZQListRows::LibraryItems);
         context.fetchObjectIDs(request);
     },
     "USING COVERING INDEX zq_index_ZQLibraryBaseItem_import_date_descending_title_active_covering", true, true},
    {"library, by title",
     [](auto &context) {
         ZQFetchRequest request = contentOf<ZQSidebarLibrary>(context);
         request.sortDescriptors =
             ZQSidebarBaseItem::sortDescriptorsForSortValue(ZQSortValue::Title, true, ZQListRows::LibraryItems);
         context.fetchObjectIDs(request);
     },
     "USING COVERING INDEX zq_index_ZQLibraryBaseItem_import_date_descending_title_active_covering", false, true},
    {"library, last changed first",
     [](auto &context) {
         ZQFetchRequest request = contentOf<ZQSidebarLibrary>(context);
         request.sortDescriptors = ZQSidebarBaseItem::sortDescriptorsForSortValue(ZQSortValue::ModificationDate, false,
                                                                                  ZQListRows::LibraryItems);
         context.fetchObjectIDs(request);
     },
     "USING INDEX zq_index_ZQLibraryBaseItem_modification_date", true, true},
    {"library, filtered",
     [](auto &context) {
         ZQFetchRequest request = contentOf<ZQSidebarLibrary>(context);
         request.predicate = ZQPredicate::andPredicate(
             {request.predicate, ZQPredicate::predicateWithFormat(QStringLiteral("title contains[cd] %@"), {"9"})});
         context.fetchObjectIDs(request);
     },
     "USING COVERING INDEX zq_index_ZQLibraryBaseItem_import_date_descending_title_active_covering", true, true},
    {"library, counted", [](auto &context) { context.countForFetchRequest(contentOf<ZQSidebarLibrary>(context)); },
     "USING COVERING INDEX", true, true},
    {"recent", [](auto &context) { context.fetchObjectIDs(contentOf<ZQSidebarRecent>(context)); },
     "zq_index_ZQLibraryBaseItem_modification_date (modification_date>?)", false},
    {"today", [](auto &context) { ZQLibraryBaseItem::libraryItemsForTodayInManagedObjectContext(context); },
     "zq_index_ZQLibraryBaseItem_import_date_descending_title_active_covering (import_date>?)", false},
    {"duplicates",
     [](auto &context) {
         context.executeFetchRequest(
             matching(ZQLibraryBaseItem::entityName(), "SHA1 in %@ AND active == YES", {digests()}));
     },
     "USING INDEX zq_index_ZQLibraryBaseItem_SHA1 (SHA1=?)", false},
    {"a digest", [](auto &context) { ZQLibraryBaseItem::libraryItemsWithSHA1(QStringLiteral("1"), context); },
     "USING INDEX zq_index_ZQLibraryBaseItem_SHA1 (SHA1=?)"},
    {"an item directory",
     [](auto &context) { ZQLibraryBaseItem::libraryItemsForBundleID(QStringLiteral("1"), context); },
     "USING INDEX zq_index_ZQLibraryBaseItem_bundleID (bundleID=?)"},
    {"what is deleted for good",
     [](auto &context) {
         context.executeFetchRequest(matching(ZQLibraryBaseItem::entityName(), "active == %@", {false}));
     },
     "USING INDEX zq_index_ZQLibraryBaseItem_active_where_active_0 (active=?)"},
    {"pictures to be looked at",
     [](auto &context) { context.fetchObjectIDs(matching(ZQLibraryBaseItem::entityName(), "pictureHash == nil", {})); },
     "USING COVERING INDEX zq_index_ZQLibraryBaseItem_pictureHash_covering_without_pictureHash (pictureHash=?)"},
    {"a live folder",
     [](auto &context) {
         context.fetchObjectIDs(matching(ZQLibraryBaseItem::entityName(), "watchingFolder == %@ AND active == YES",
                                         {objectOf(context, ZQSidebarWatchedFolder::entityName(), 1)}));
     },
     "zq_index_ZQLibraryBaseItem_watchingFolder_with_watchingFolder (watchingFolder"},
    {"a tag, counted",
     [](auto &context) {
         context.countForFetchRequest(matching(ZQLibraryBaseItem::entityName(), "ANY tags == %@ AND active == YES",
                                               {objectOf(context, ZQSidebarTag::entityName(), 1)}));
     },
     "SEARCH t USING INTEGER PRIMARY KEY"},
    {"a project",
     [](auto &context) {
         context.fetchObjectIDsWithRelated(matching(ZQProjectItem::entityName(), "project == %@ AND item.active == YES",
                                                    {objectOf(context, ZQSidebarProject::entityName(), 1)}, byOrder),
                                           QStringLiteral("item"));
     },
     "SEARCH t USING INDEX zq_index_ZQProjectItem_project_order (project=?)"},
    {"a project's last place",
     [](auto &context) {
         ZQFetchRequest last =
             matching(ZQProjectItem::entityName(), "project == %@",
                      {objectOf(context, ZQSidebarProject::entityName(), 1)}, {{QStringLiteral("order"), false}});
         last.fetchLimit = 1;
         context.executeFetchRequest(last);
     },
     "SEARCH t USING INDEX zq_index_ZQProjectItem_project_order (project=?)"},
    {"members among some items",
     [](auto &context) {
         const QVariantList some = {objectOf(context, ZQLibraryImage::entityName(), 1),
                                    objectOf(context, ZQLibraryImage::entityName(), 2)};
         context.executeFetchRequest(matching(ZQProjectItem::entityName(), "project == %@ AND item IN %@",
                                              {objectOf(context, ZQSidebarProject::entityName(), 1), some}));
     },
     "USING INDEX zq_index_ZQProjectItem_item_project (item=?", false},
    {"an item's projects",
     [](auto &context) {
         zqCast<ZQLibraryBaseItem>(context.objectWithID({context.model().entity(ZQLibraryImage::entityName()), 1}))
             ->projectsItems();
     },
     "zq_index_ZQProjectItem_item_project (item=?)", false},
    {"a tag by its name",
     [](auto &context) {
         zqFetchFirst<ZQSidebarTag>(context, QStringLiteral("title = %@ AND active = YES"), {QStringLiteral("logo")});
     },
     "zq_index_ZQSidebarBaseItem_title_where_active_1 (title=?)"},
    {"the sidebar's roots",
     [](auto &context) {
         context.executeFetchRequest(
             matching(ZQSidebarBaseItem::entityName(), "father == nil && active == YES", {}, byOrder));
     },
     "USING INDEX zq_index_ZQSidebarBaseItem_father_order (father=?)"},
    {"deleted entries",
     [](auto &context) {
         context.executeFetchRequest(matching(ZQSidebarBaseItem::entityName(), "active == %@", {false}));
     },
     "USING INDEX zq_index_ZQSidebarBaseItem_active_where_active_0 (active=?)"},
};

} // namespace

TEST(StorePlans, WhatTheProgramAsksIsAnsweredByAnIndexWithAndWithoutStatistics)
{
    zqRegisterEntities();
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("storedata"));
    ASSERT_TRUE(StoreLibrary{items}.make(zqCurrentModel(), path));
    const auto coordinator = ZQPersistentStoreCoordinator::open(zqCurrentModel(), path);
    ASSERT_TRUE(coordinator);
    for (const bool hasStatistics : {true, false}) {
        if (!hasStatistics) {
            ASSERT_TRUE(coordinator->newConnection()->execute(QStringLiteral("DELETE FROM sqlite_stat1")));
        }
        for (const Question &question : questions) {
            SCOPED_TRACE(std::string(question.name) + (hasStatistics ? "" : ", without statistics"));
            ZQManagedObjectContext context(coordinator);
            const QStringList plans = plansOf(context, [&] { question.ask(context); });
            ASSERT_FALSE(plans.isEmpty());
            const QString all = plans.join(QStringLiteral("\n"));
            EXPECT_TRUE(all.contains(QLatin1String(question.index))) << qPrintable(all);
            if (question.isSorted) {
                EXPECT_FALSE(all.contains(QStringLiteral("TEMP B-TREE FOR ORDER BY"))) << qPrintable(all);
            }
            if (!question.isList) {
                EXPECT_FALSE(all.contains(QStringLiteral("SCAN t"))) << qPrintable(all);
            }
        }
    }
}

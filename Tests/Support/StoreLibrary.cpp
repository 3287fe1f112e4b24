#include "Tests/Support/StoreLibrary.h"

#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Kit/Persistence/ZQStoreIndexes.h"
#include "Kit/Persistence/ZQStoreSchema.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarProject.h"

#include <QList>

#include <cstdio>

namespace {

struct Value
{
    const char *column;
    const char *sql; // of the row's number, `i`
};

// What an imported picture has; five years of imports.
constexpr Value itemValues[] = {
    {"SHA1", "lower(hex(randomblob(20)))"},
    {"active", "i % 1000 != 0"},
    {"animated", "0"},
    {"bundleID",
     "hex(randomblob(4)) || '-' || hex(randomblob(2)) || '-' || hex(randomblob(2)) || '-' || hex(randomblob(8))"},
    {"color_model", "'RGB'"},
    {"creation_date", "1500000000000 + abs(random()) % 200000000000"},
    {"extension", "'png'"},
    {"import_date", "1577836800000 + i * (157680000000 / total)"},
    {"itemURLData", "randomblob(240)"},
    {"mainColor", "1000 + i % 10"},
    {"managed", "1"},
    {"modification_date", "1500000000000 + abs(random()) % 200000000000"},
    {"nsfw", "0"},
    {"originalExtension", "'png'"},
    {"palette", "randomblob(20)"},
    {"pictureHash", "randomblob(32)"},
    {"pixelDepth", "8"},
    {"pixelDpi", "72"},
    {"pixelHeight", "600 + i % 3000"},
    {"pixelWidth", "800 + i % 4000"},
    {"pixelTotal", "(600 + i % 3000) * (800 + i % 4000)"},
    {"rating", "i % 6"},
    {"sort_date", "1577836800000 + i * (157680000000 / total)"},
    {"thumbName", "'Screenshot ' || i || '_thumb.jpg'"},
    {"thumbVersion", "1"},
    {"title", "'Screenshot ' || i"},
};

constexpr Value projectValues[] = {
    {"title", "'Project ' || i"},
    {"kind", "0"},
    {"\"order\"", "i"},
    {"active", "1"},
    {"enabled", "1"},
    {"expanded", "0"},
};

QString numbered(const QString &into, const QString &columns, const QString &values, qint64 count)
{
    return QStringLiteral(
               "WITH RECURSIVE numbers(i, total) AS (SELECT 1, %4 UNION ALL SELECT i + 1, total FROM numbers "
               "WHERE i < total) INSERT INTO \"%1\" (%2) SELECT %3 FROM numbers")
        .arg(into, columns, values)
        .arg(count);
}

// Of an older model only what it has.
template <std::size_t count>
QString rows(const ZQEntityDescription &entity, const Value (&values)[count], qint64 total)
{
    QString columns = QStringLiteral("\"id\", \"entity\", \"version\"");
    QString sources = QStringLiteral("i, %1, 1").arg(entity.code);
    for (const Value &value : values) {
        const QString column = QString::fromLatin1(value.column);
        if (entity.attribute(QString(column).remove(u'"'))) {
            columns += QStringLiteral(", ") + column;
            sources += QStringLiteral(", ") + QLatin1String(value.sql);
        }
    }
    return numbered(entity.tableName, columns, sources, total);
}

} // namespace

QString StoreLibrary::itemsStatement(const ZQManagedObjectModel &model) const
{
    return rows(*model.entity(ZQLibraryImage::entityName()), itemValues, items);
}

QString StoreLibrary::projectsStatement(const ZQManagedObjectModel &model) const
{
    return rows(*model.entity(ZQSidebarProject::entityName()), projectValues, projects());
}

QString StoreLibrary::membershipsStatement(const ZQManagedObjectModel &model) const
{
    const ZQEntityDescription &entity = *model.entity(ZQProjectItem::entityName());
    const QString isFirst = QStringLiteral("i <= %1").arg(itemsOfFirstProject());
    const QString place = QStringLiteral("(i - %1 - 1)").arg(itemsOfFirstProject());
    return numbered(entity.tableName,
                    QStringLiteral("\"id\", \"entity\", \"version\", \"item\", \"project\", \"order\""),
                    QStringLiteral("i, %1, 1, i, CASE WHEN %2 THEN %3 ELSE %3 + 1 + %4 / %5 END, "
                                   "CASE WHEN %2 THEN i - 1 ELSE %4 % %5 END")
                        .arg(entity.code)
                        .arg(isFirst)
                        .arg(firstProject)
                        .arg(place)
                        .arg(itemsOfAnother),
                    items);
}

bool StoreLibrary::make(const std::shared_ptr<const ZQManagedObjectModel> &model, const QString &path) const
{
    ZQError error;
    const auto coordinator = ZQPersistentStoreCoordinator::open(model, path, {}, &error);
    const auto connection = coordinator ? coordinator->newConnection(&error) : nullptr;
    if (!connection) {
        std::fprintf(stderr, "%s\n", qPrintable(error.localizedDescription()));
        return false;
    }
    QStringList statements{QStringLiteral("PRAGMA synchronous=OFF"), QStringLiteral("PRAGMA cache_size=-262144")};
    for (const ZQStoreIndex &index : zqIndexesOfModel(*model)) { // random keys are put in order at the end
        statements.append(QStringLiteral("DROP INDEX ") + zqQuoted(index.name));
    }
    statements +=
        {QStringLiteral("BEGIN"), itemsStatement(*model), projectsStatement(*model), membershipsStatement(*model)};
    for (const ZQEntityDescription *root : zqRootEntities(*model)) {
        statements.append(
            QStringLiteral("INSERT OR REPLACE INTO zq_sequence SELECT '%1', max(id) FROM \"%1\"").arg(root->tableName));
    }
    statements.append(QStringLiteral("COMMIT"));
    if (!zqExecuteAll(*connection, statements) || !zqUpdateIndexes(*connection, *model)) {
        std::fprintf(stderr, "%s\n",
                     qPrintable(connection->error().userInfo.value(QStringLiteral("sqliteMessage")).toString()));
        return false;
    }
    return true;
}

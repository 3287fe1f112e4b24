#include "Kit/Persistence/ZQStoreIndexes.h"

#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Kit/Persistence/ZQStoreSchema.h"

#include <QSet>

#include <algorithm>

namespace {

using Condition = ZQIndexDescription::Condition;

const QString ownPrefix = QStringLiteral("zq_index_");

// How many entries of an index are looked at. Enough to tell unique from common, little enough to read in milliseconds.
constexpr int sampledEntries = 1000;
// Below this, every plan is quick.
constexpr qint64 rowsWorthStatistics = 1000;
constexpr qint64 growthThatOutdates = 4;
const QString statisticsKey = QStringLiteral("statisticsTakenAt"); // the last keys then, added up

QString conditionText(const Condition &condition)
{
    switch (condition.kind) {
    case Condition::Kind::IsNull:
        return zqQuoted(condition.column) + QStringLiteral(" IS NULL");
    case Condition::Kind::IsNotNull:
        return zqQuoted(condition.column) + QStringLiteral(" IS NOT NULL");
    case Condition::Kind::IsValue:
        break;
    }
    return zqQuoted(condition.column) + QStringLiteral(" IS ") + QString::number(condition.value);
}

QString conditionName(const Condition &condition)
{
    switch (condition.kind) {
    case Condition::Kind::IsNull:
        return QStringLiteral("_without_") + condition.column;
    case Condition::Kind::IsNotNull:
        return QStringLiteral("_with_") + condition.column;
    case Condition::Kind::IsValue:
        break;
    }
    return QStringLiteral("_where_%1_%2").arg(condition.column).arg(condition.value);
}

ZQStoreIndex indexOf(const QString &table, const ZQIndexDescription &description)
{
    QString name = ownPrefix + table;
    QStringList columns;
    for (const ZQIndexDescription::Column &column : description.columns) {
        name += u'_' + column.name + (column.descending ? QStringLiteral("_descending") : QString());
        columns.append(zqQuoted(column.name) + (column.descending ? QStringLiteral(" DESC") : QString()));
    }
    if (description.isCovering) {
        name += QStringLiteral("_covering");
        columns += {zqQuoted(QStringLiteral("id")), zqQuoted(QStringLiteral("entity"))};
    }
    QStringList conditions;
    for (const Condition &condition : description.conditions) {
        name += conditionName(condition);
        conditions.append(conditionText(condition));
    }
    QString sql = QStringLiteral("CREATE INDEX %1 ON %2(%3)")
                      .arg(zqQuoted(name), zqQuoted(table), columns.join(QStringLiteral(", ")));
    if (!conditions.isEmpty()) {
        sql += QStringLiteral(" WHERE ") + conditions.join(QStringLiteral(" AND "));
    }
    return {name, sql};
}

ZQStoreIndex plainIndex(const QString &table, const QString &column)
{
    return indexOf(table, {.columns = {{column}}, .conditions = {}});
}

// A lookup of a value finds the same rows by `declared` as by a plain index of the column.
bool replacesPlainIndex(const ZQIndexDescription &declared, const QString &column)
{
    return declared.columns.front().name == column &&
           std::all_of(declared.conditions.begin(), declared.conditions.end(), [&column](const Condition &condition) {
               return condition.kind == Condition::Kind::IsNotNull && condition.column == column;
           });
}

std::vector<ZQIndexDescription> declaredIndexes(const ZQManagedObjectModel &model, const ZQEntityDescription *root)
{
    std::vector<ZQIndexDescription> declared;
    for (const auto &entity : model.entities()) {
        if (entity->root == root) {
            declared.insert(declared.end(), entity->indexes.begin(), entity->indexes.end());
        }
    }
    return declared;
}

// Name to definition of those that are there; nothing after an error.
std::optional<QHash<QString, QString>> ownIndexes(ZQSQLiteConnection &connection)
{
    ZQSQLiteStatement select =
        connection.prepare(QStringLiteral("SELECT \"name\", \"sql\" FROM sqlite_master WHERE \"type\" = 'index'"));
    QHash<QString, QString> found;
    while (select.next()) {
        if (select.text(0).startsWith(ownPrefix)) {
            found.insert(select.text(0), select.text(1));
        }
    }
    return select.failed() ? std::nullopt : std::optional(found);
}

struct Difference
{
    QStringList missing;  // statements that make them
    QStringList needless; // names
};

std::optional<Difference> differenceFrom(ZQSQLiteConnection &connection, const ZQManagedObjectModel &model)
{
    auto there = ownIndexes(connection);
    if (!there) {
        return std::nullopt;
    }
    Difference difference;
    for (const ZQStoreIndex &index : zqIndexesOfModel(model)) {
        if (const auto found = there->constFind(index.name); found != there->cend() && *found == index.sql) {
            there->erase(found);
        } else if (found == there->cend()) {
            difference.missing.append(index.sql);
        } else {
            // Somebody else's definition under a name of ours.
            difference.missing += {QStringLiteral("DROP INDEX ") + zqQuoted(index.name), index.sql};
            there->erase(found);
        }
    }
    difference.needless = there->keys();
    return difference;
}

// Keys are never given twice, so the last ones tell how much was ever added, without counting rows.
qint64 lastKeys(ZQSQLiteConnection &connection, const ZQManagedObjectModel &model)
{
    qint64 sum = 0;
    for (const ZQEntityDescription *root : zqRootEntities(model)) {
        sum += connection.value(QStringLiteral("SELECT max(\"id\") FROM ") + zqQuoted(root->tableName)).toLongLong();
    }
    return sum;
}

bool areStatisticsOutdated(ZQSQLiteConnection &connection, const ZQManagedObjectModel &model)
{
    const bool isTable =
        connection.value(QStringLiteral("SELECT count(*) FROM sqlite_master WHERE \"name\" = 'sqlite_stat1'")).toInt() >
        0;
    const bool areThere = isTable && connection.value(QStringLiteral("SELECT count(*) FROM sqlite_stat1")).toInt() > 0;
    const qint64 keys = lastKeys(connection, model);
    const qint64 noted = zqReadMetadata(connection, statisticsKey).value_or(QVariant()).toLongLong();
    return keys > rowsWorthStatistics && (!areThere || keys / growthThatOutdates > noted);
}

} // namespace

QList<ZQStoreIndex> zqIndexesOfModel(const ZQManagedObjectModel &model)
{
    QList<ZQStoreIndex> indexes;
    QSet<QString> names;
    const auto add = [&](const ZQStoreIndex &index) {
        if (!names.contains(index.name)) {
            names.insert(index.name);
            indexes.append(index);
        }
    };
    for (const ZQEntityDescription *root : zqRootEntities(model)) {
        if (!root->subentities.empty()) {
            add(plainIndex(root->tableName, QStringLiteral("entity")));
        }
        const std::vector<ZQIndexDescription> declared = declaredIndexes(model, root);
        for (const ZQStoreColumn &column : zqColumnsOfFamily(model, root)) {
            if (column.indexed && std::none_of(declared.begin(), declared.end(), [&column](const auto &index) {
                    return replacesPlainIndex(index, column.name);
                })) {
                add(plainIndex(root->tableName, column.name));
            }
        }
        for (const ZQIndexDescription &index : declared) {
            add(indexOf(root->tableName, index));
        }
    }
    for (const ZQJoinTable &join : zqJoinTables(model)) {
        add(plainIndex(join.relationship->joinTable, join.relationship->joinOtherColumn));
    }
    return indexes;
}

bool zqCreateIndexes(ZQSQLiteConnection &connection, const ZQManagedObjectModel &model)
{
    const QList<ZQStoreIndex> indexes = zqIndexesOfModel(model);
    return std::all_of(indexes.begin(), indexes.end(),
                       [&connection](const ZQStoreIndex &index) { return connection.execute(index.sql); });
}

bool zqHasIndexes(ZQSQLiteConnection &connection, const ZQManagedObjectModel &model)
{
    const auto difference = differenceFrom(connection, model);
    return !difference || (difference->missing.isEmpty() && difference->needless.isEmpty());
}

bool zqUpdateIndexes(ZQSQLiteConnection &connection, const ZQManagedObjectModel &model)
{
    const auto difference = differenceFrom(connection, model);
    if (!difference) {
        return false;
    }
    if (difference->missing.isEmpty() && difference->needless.isEmpty()) {
        return true;
    }
    if (!zqForgetStatistics(connection) || // or nobody takes them when this is cut off behind the last index
        !connection.execute(QStringLiteral("PRAGMA temp_store=FILE"))) { // what is sorted has the size of the index
        return false;
    }
    QStringList statements = difference->missing;
    for (const QString &name : difference->needless) {
        statements.append(QStringLiteral("DROP INDEX ") + zqQuoted(name));
    }
    const bool isDone = zqExecuteAll(connection, statements);
    return connection.execute(QStringLiteral("PRAGMA temp_store=MEMORY")) && isDone &&
           zqGatherStatistics(connection, model);
}

// `PRAGMA optimize` would look at less: only at tables that its own connection asked, which before closing are none.
// And it would undo the second step: the number of entries is an estimate from one look at each index, so that of two
// of a table with as many entries the one with the luckier look seems shorter, and lists are read along it.
bool zqGatherStatistics(ZQSQLiteConnection &connection, const ZQManagedObjectModel &model)
{
    if (!connection.execute(QStringLiteral("PRAGMA analysis_limit=%1").arg(sampledEntries))) {
        return false;
    }
    ZQSQLiteTransaction transaction(connection);
    return transaction.isOpen() && connection.execute(QStringLiteral("ANALYZE")) &&
           connection.execute(QStringLiteral(
               "UPDATE sqlite_stat1 SET \"stat\" = (SELECT max(CAST(o.\"stat\" AS INTEGER)) FROM sqlite_stat1 o "
               "WHERE o.\"tbl\" = sqlite_stat1.\"tbl\") || substr(\"stat\", instr(\"stat\" || ' ', ' ')) "
               "WHERE \"idx\" NOT IN (SELECT i.\"name\" FROM sqlite_master m, pragma_index_list(m.\"name\") i "
               "WHERE m.\"type\" = 'table' AND i.\"partial\")")) &&
           connection.execute(QStringLiteral("ANALYZE sqlite_master")) &&
           zqWriteMetadata(connection, statisticsKey, lastKeys(connection, model)) && transaction.commit();
}

bool zqForgetStatistics(ZQSQLiteConnection &connection)
{
    return zqWriteMetadata(connection, statisticsKey, 0);
}

bool zqUpdateStatistics(ZQSQLiteConnection &connection, const ZQManagedObjectModel &model)
{
    return !areStatisticsOutdated(connection, model) || zqGatherStatistics(connection, model);
}

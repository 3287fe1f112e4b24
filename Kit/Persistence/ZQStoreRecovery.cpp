#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Kit/Persistence/ZQStoreReplacement.h"
#include "Kit/Persistence/ZQStoreSchema.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <functional>
#include <limits>
#include <vector>

#include <sqlite3.h>

namespace {

// Where nothing tells the last key, so many keys without a row are taken for the end.
constexpr qint64 longestGap = 100'000;

const QStringList companions{QString(), QStringLiteral("-wal"), QStringLiteral("-shm")};

// Reads one damaged database into a sound one, row by row where it must.
class Recovery
{
public:
    Recovery(ZQSQLiteConnection &damaged, ZQSQLiteConnection &sound, const ZQManagedObjectModel &model)
        : m_damaged(damaged), m_sound(sound), m_model(model)
    {
    }
    bool run();
    const ZQStoreRecovery &report() const { return m_report; }
    bool foundTables() const { return m_foundTables; }

private:
    bool copyFamily(const ZQEntityDescription *root);
    bool copyRows(const ZQEntityDescription *root, const QStringList &columns, qint64 highest);
    qint64 missingKeys(const ZQEntityDescription *root, qint64 *highest);
    bool copyMetadata();
    bool scan(const QString &sql, const QVariantList &bindings, const std::function<void(ZQSQLiteStatement &)> &row);
    bool copyJoin(const ZQJoinTable &join);
    bool clearDanglingReferences();
    QStringList sharedColumns(const ZQEntityDescription *root);

    ZQSQLiteConnection &m_damaged;
    ZQSQLiteConnection &m_sound;
    const ZQManagedObjectModel &m_model;
    ZQStoreRecovery m_report;
    bool m_foundTables = false;
};

// Calls `row` for every row that can be read; false when an error ended the scan.
bool Recovery::scan(const QString &sql, const QVariantList &bindings,
                    const std::function<void(ZQSQLiteStatement &)> &row)
{
    ZQSQLiteStatement statement = m_damaged.prepare(sql);
    statement.bindVariants(0, bindings);
    while (statement.next()) {
        row(statement);
    }
    return !statement.failed();
}

QStringList Recovery::sharedColumns(const ZQEntityDescription *root)
{
    QStringList there;
    scan(QStringLiteral("SELECT name FROM pragma_table_info(?)"), {root->tableName},
         [&](ZQSQLiteStatement &row) { there.append(row.text(0)); });
    if (!there.contains(QStringLiteral("id")) || !there.contains(QStringLiteral("entity"))) {
        return {};
    }
    QStringList columns{QStringLiteral("id"), QStringLiteral("entity")};
    for (const ZQStoreColumn &column : zqColumnsOfFamily(m_model, root)) {
        if (there.contains(column.name)) {
            columns.append(column.name);
        }
    }
    return columns;
}

bool Recovery::copyFamily(const ZQEntityDescription *root)
{
    const QStringList columns = sharedColumns(root);
    if (columns.isEmpty()) {
        return true;
    }
    m_foundTables = true;
    const QVariant sequence =
        m_damaged.value(QStringLiteral("SELECT \"last\" FROM \"zq_sequence\" WHERE \"name\" = ?"), {root->tableName});
    qint64 highest = sequence.toLongLong();
    if (!copyRows(root, columns, highest)) {
        return false;
    }
    if (const qint64 missing = missingKeys(root, &highest); missing > 0) {
        m_report.unreadable.insert(root->name, missing);
    }
    highest = std::max(
        highest, m_sound.value(QStringLiteral("SELECT max(\"id\") FROM ") + zqQuoted(root->tableName)).toLongLong());
    // Keys are never used twice, those of lost rows included.
    highest += sequence.isValid() ? 0 : longestGap;
    ZQSQLiteStatement write = m_sound.prepare(QStringLiteral("INSERT OR REPLACE INTO \"zq_sequence\" VALUES (?, ?)"));
    write.bindVariants(0, {root->tableName, highest});
    return write.run();
}

bool Recovery::copyRows(const ZQEntityDescription *root, const QStringList &columns, qint64 highest)
{
    QStringList quoted;
    for (const QString &column : columns) {
        quoted.append(zqQuoted(column));
    }
    const QString list = quoted.join(QStringLiteral(", "));
    const QString table = zqQuoted(root->tableName);
    const QString places = QStringList(columns.size(), QStringLiteral("?")).join(u',');
    ZQSQLiteStatement insert =
        m_sound.prepare(QStringLiteral("INSERT OR IGNORE INTO %1 (%2) VALUES (%3)").arg(table, list, places));
    bool isWritten = true;
    qint64 lastRead = 0;
    const auto copy = [&](ZQSQLiteStatement &row) {
        lastRead = row.int64(0);
        const ZQEntityDescription *entity = m_model.entityWithCode(int(row.int64(1)));
        if (!isWritten || lastRead <= 0 || !entity || entity->root != root) {
            return;
        }
        for (int i = 0; i < columns.size(); ++i) {
            insert.bindVariant(i, row.variant(i));
        }
        isWritten = insert.run();
        m_report.rows[entity->name] += m_sound.changedRows();
    };
    const QString select = QStringLiteral("SELECT %1 FROM %2 NOT INDEXED ").arg(list, table);
    if (scan(select + QStringLiteral("ORDER BY \"id\""), {}, copy)) {
        return isWritten;
    }
    const qint64 beforeGap = lastRead;
    lastRead = 0;
    scan(select + QStringLiteral("ORDER BY \"id\" DESC"), {}, copy);
    const bool isEndKnown = lastRead > 0 || highest > 0;
    const qint64 afterGap = lastRead > 0 ? lastRead : isEndKnown ? highest + 1 : std::numeric_limits<qint64>::max();
    lastRead = beforeGap;
    for (qint64 key = beforeGap + 1; key < afterGap && isWritten; ++key) {
        scan(select + QStringLiteral("WHERE \"id\" = ?"), {key}, copy);
        if (!isEndKnown && key - lastRead > longestGap) {
            break;
        }
    }
    return isWritten;
}

// How many rows the indexes of the damaged table still name that could not be copied; at least so many are lost.
qint64 Recovery::missingKeys(const ZQEntityDescription *root, qint64 *highest)
{
    QStringList indexes;
    scan(QStringLiteral("SELECT name FROM pragma_index_list(?) WHERE NOT \"partial\""), {root->tableName},
         [&](ZQSQLiteStatement &row) { indexes.append(row.text(0)); });
    std::vector<qint64> named;
    const QString table = zqQuoted(root->tableName);
    for (const QString &index : std::as_const(indexes)) {
        const auto sizeBefore = named.size();
        const bool isWhole = scan(QStringLiteral("SELECT \"id\" FROM %1 INDEXED BY %2").arg(table, zqQuoted(index)), {},
                                  [&](ZQSQLiteStatement &row) {
                                      if (row.int64(0) > 0) {
                                          named.push_back(row.int64(0));
                                      }
                                  });
        std::sort(named.begin(), named.end());
        named.erase(std::unique(named.begin(), named.end()), named.end());
        if (isWhole && named.size() > sizeBefore) {
            break; // one whole index names every row
        }
    }
    if (named.empty()) {
        return 0;
    }
    *highest = std::max(*highest, named.back());
    qint64 known = 0;
    ZQSQLiteStatement all = m_sound.prepare(QStringLiteral("SELECT \"id\" FROM %1").arg(table));
    while (all.next()) {
        known += std::binary_search(named.begin(), named.end(), all.int64(0)) ? 1 : 0;
    }
    return qint64(named.size()) - known;
}

bool Recovery::copyJoin(const ZQJoinTable &join)
{
    const QString own = zqQuoted(join.relationship->joinOwnColumn);
    const QString other = zqQuoted(join.relationship->joinOtherColumn);
    const QString table = zqQuoted(join.relationship->joinTable);
    ZQSQLiteStatement insert =
        m_sound.prepare(QStringLiteral("INSERT OR IGNORE INTO %1 (%2, %3) VALUES (?, ?)").arg(table, own, other));
    bool isWritten = true;
    const auto copy = [&](ZQSQLiteStatement &row) {
        insert.bind(0, row.int64(0));
        insert.bind(1, row.int64(1));
        isWritten = isWritten && insert.run();
        m_report.rows[join.relationship->joinTable] += m_sound.changedRows();
    };
    const QString select = QStringLiteral("SELECT %1, %2 FROM %3 ").arg(own, other, table);
    if (!scan(select, {}, copy)) {
        QList<qint64> owners;
        ZQSQLiteStatement all =
            m_sound.prepare(QStringLiteral("SELECT \"id\" FROM ") + zqQuoted(join.owner->tableName));
        while (all.next()) {
            owners.append(all.int64(0));
        }
        for (const qint64 owner : owners) {
            scan(select + QStringLiteral("WHERE %1 = ?").arg(own), {owner}, copy);
        }
    }
    return isWritten;
}

bool Recovery::clearDanglingReferences()
{
    bool isDone = true;
    for (const ZQEntityDescription *root : zqRootEntities(m_model)) {
        for (const ZQStoreColumn &column : zqColumnsOfFamily(m_model, root)) {
            if (!column.referencedTable.isEmpty()) {
                isDone = isDone && m_sound.execute(
                                       QStringLiteral("UPDATE %1 SET %2 = NULL WHERE %2 NOT IN (SELECT \"id\" FROM %3)")
                                           .arg(zqQuoted(root->tableName), zqQuoted(column.name),
                                                zqQuoted(column.referencedTable)));
            }
        }
    }
    for (const ZQJoinTable &join : zqJoinTables(m_model)) {
        isDone =
            isDone &&
            m_sound.execute(QStringLiteral("DELETE FROM %1 WHERE %2 NOT IN (SELECT \"id\" FROM %3) "
                                           "OR %4 NOT IN (SELECT \"id\" FROM %5)")
                                .arg(zqQuoted(join.relationship->joinTable), zqQuoted(join.relationship->joinOwnColumn),
                                     zqQuoted(join.owner->tableName), zqQuoted(join.relationship->joinOtherColumn),
                                     zqQuoted(join.relationship->destination->tableName)));
    }
    return isDone;
}

bool Recovery::run()
{
    for (const ZQEntityDescription *root : zqRootEntities(m_model)) {
        if (!copyFamily(root)) {
            return false;
        }
    }
    for (const ZQJoinTable &join : zqJoinTables(m_model)) {
        if (!copyJoin(join)) {
            return false;
        }
    }
    return clearDanglingReferences() && copyMetadata();
}

// What was still to be done for the damaged store is to be done for this one.
bool Recovery::copyMetadata()
{
    QStringList keys{zqPendingVersionsKey, zqProgressKey, zqLastKeysKey};
    if (zqReadMetadata(m_damaged, zqPendingVersionsKey)) {
        keys.append(zqPendingCopiesKey); // named beside no pending version they would go
    }
    for (const QString &key : std::as_const(keys)) {
        const QVariant value = zqReadMetadata(m_damaged, key).value_or(QVariant());
        if (value.isValid() && !zqWriteMetadata(m_sound, key, value)) {
            return false;
        }
    }
    return zqWriteMetadata(m_sound, zqRecoveredKey, QDateTime::currentMSecsSinceEpoch());
}

std::unique_ptr<ZQSQLiteConnection> openDamaged(const QString &path, ZQError *error)
{
    for (const auto mode : {ZQSQLiteConnection::Mode::ReadOnly, ZQSQLiteConnection::Mode::Immutable}) {
        auto connection = ZQSQLiteConnection::open(path, mode, error);
        if (!connection) {
            continue;
        }
        // A file shorter than its header says is readable only for someone who may repair the schema.
        sqlite3_db_config(connection->handle(), SQLITE_DBCONFIG_DEFENSIVE, 0, nullptr);
        connection->execute(QStringLiteral("PRAGMA writable_schema=ON; PRAGMA cell_size_check=ON"));
        if (connection->value(QStringLiteral("SELECT count(*) FROM sqlite_master")).isValid()) {
            return connection;
        }
        zqSetError(error, connection->error());
    }
    return nullptr;
}

void removeDatabase(const QString &path)
{
    for (const QString &companion : companions) {
        QFile::remove(path + companion);
    }
}

// A file that ends within a page holds half a page of torn rows, which look like rows ending in zeros. The answer is
// the path of a copy without it, or `path` itself; empty when the copy cannot be made.
QString withoutTornPage(const QString &path, const QString &copy)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return path;
    }
    const QByteArray header = file.read(18);
    const int stored = header.size() == 18 ? (quint8(header.at(16)) << 8 | quint8(header.at(17))) : 0;
    const qint64 pageSize = stored == 1 ? 65536 : stored;
    if (pageSize < 512 || file.size() % pageSize == 0) {
        return path;
    }
    const QString wal = QStringLiteral("-wal");
    const bool isCopied =
        QFile::copy(path, copy) && (!QFile::exists(path + wal) || QFile::copy(path + wal, copy + wal));
    return isCopied && QFile::resize(copy, file.size() / pageSize * pageSize) ? copy : QString();
}

bool isInWriteAheadMode(ZQSQLiteConnection &connection)
{
    return connection.value(QStringLiteral("PRAGMA journal_mode=WAL")).toString() == QStringLiteral("wal");
}

// Makes `target` a store without a row: what the damaged one listed is to be found by its traces on the disk.
std::optional<ZQStoreRecovery> fillWithNothing(const QString &target, const ZQManagedObjectModel &model, ZQError *error)
{
    removeDatabase(target);
    const auto sound = ZQSQLiteConnection::open(target, ZQSQLiteConnection::Mode::Create, error);
    if (!sound) {
        return std::nullopt;
    }
    if (!zqCreateStore(*sound, model, QUuid::createUuid()) ||
        !zqWriteMetadata(*sound, zqRecoveredKey, QDateTime::currentMSecsSinceEpoch()) || !isInWriteAheadMode(*sound)) {
        zqSetError(error, sound->error());
        return std::nullopt;
    }
    return ZQStoreRecovery{};
}

// Fills `target` from the store at `path`, whole and closed; nothing with the error when nothing was to be read or
// written.
std::optional<ZQStoreRecovery> fillFrom(const QString &path, const QString &target,
                                        const ZQManagedObjectModel &givenModel, ZQError *error)
{
    ZQError cause;
    const auto damaged = openDamaged(path, &cause);
    if (!damaged && cause.code == int(ZQStoreError::Damaged)) {
        return fillWithNothing(target, givenModel, error);
    }
    if (!damaged) {
        zqSetError(error, cause);
        return std::nullopt;
    }
    // An older store is recovered in its own form; opening it migrates it.
    const auto metadata = zqReadStoreMetadata(*damaged, nullptr);
    const auto ownModel = metadata ? ZQManagedObjectModel::modelFromJSON(metadata->modelJSON) : nullptr;
    const ZQManagedObjectModel &model = ownModel ? *ownModel : givenModel;
    auto sound = ZQSQLiteConnection::open(target, ZQSQLiteConnection::Mode::Create, error);
    if (!sound) {
        return std::nullopt;
    }
    // The file is thrown away unless it comes to its end, so it needs no journal of its own until then.
    sound->value(QStringLiteral("PRAGMA journal_mode=MEMORY"));
    sound->execute(QStringLiteral("PRAGMA foreign_keys=OFF; PRAGMA synchronous=OFF"));
    Recovery recovery(*damaged, *sound, model);
    {
        ZQSQLiteTransaction transaction(*sound);
        if (!transaction.isOpen() ||
            !zqCreateStore(*sound, model, metadata ? metadata->storeUUID : QUuid::createUuid()) || !recovery.run() ||
            (recovery.foundTables() && !transaction.commit())) {
            zqSetError(error, sound->error());
            return std::nullopt;
        }
    }
    if (!recovery.foundTables()) {
        sound.reset();
        return fillWithNothing(target, givenModel, error);
    }
    if (!isInWriteAheadMode(*sound)) {
        zqSetError(error, sound->error());
        return std::nullopt;
    }
    return recovery.report();
}

} // namespace

std::optional<ZQStoreRecovery>
ZQPersistentStoreCoordinator::recoverStoreAtPath(std::shared_ptr<const ZQManagedObjectModel> model, const QString &path,
                                                 ZQError *error)
{
    zqFinishReplacingStore(path);
    zqRemoveUnfinishedRecovery(path);
    const QString target = zqUnfinishedStore(path);
    const QString copy = zqUnfinishedSource(path);
    const auto failed = [&](const ZQError &cause) {
        zqRemoveUnfinishedRecovery(path);
        zqSetError(error, cause);
        return std::nullopt;
    };
    if (!model || !QFile::exists(path)) {
        return failed(ZQError::with(ZQStoreErrorDomain, int(ZQStoreError::CannotOpen),
                                    zqLocalized("There is no library database at this place."),
                                    zqLocalized("Choose another library.")));
    }
    const QString source = withoutTornPage(path, copy);
    if (source.isEmpty()) {
        return failed(zqStoreErrorForSQLite(SQLITE_FULL, QString(), copy));
    }
    ZQError cause;
    std::optional<ZQStoreRecovery> report = fillFrom(source, target, *model, &cause);
    if (!report) {
        return failed(cause);
    }
    if (QFile::exists(target + QStringLiteral("-wal"))) { // not all of it reached the file itself
        return failed(zqStoreErrorForSQLite(SQLITE_FULL, QString(), target));
    }
    const std::optional<QString> kept = zqReplaceStore(path, target, &cause);
    if (!kept) {
        return failed(cause);
    }
    zqRemoveUnfinishedRecovery(path);
    report->keptPath = *kept;
    qCInfo(zqLogStore, "recovered the store; the damaged one is %s", qUtf8Printable(*kept));
    return report;
}

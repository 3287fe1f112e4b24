#include "Tests/Kit/Persistence/PredicateDatabase.h"

#include <gtest/gtest.h>

namespace {

void bind(sqlite3_stmt *statement, int index, const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        sqlite3_bind_null(statement, index);
        break;
    case QMetaType::QString: {
        const QByteArray text = value.toString().toUtf8();
        sqlite3_bind_text(statement, index, text.constData(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
        break;
    }
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        sqlite3_bind_blob(statement, index, bytes.constData(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT);
        break;
    }
    case QMetaType::Double:
        sqlite3_bind_double(statement, index, value.toDouble());
        break;
    case QMetaType::QDateTime:
        sqlite3_bind_int64(statement, index, value.toDateTime().toMSecsSinceEpoch());
        break;
    default:
        sqlite3_bind_int64(statement, index, value.toLongLong());
    }
}

QVariant columnValue(sqlite3_stmt *statement, int column)
{
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        return static_cast<qint64>(sqlite3_column_int64(statement, column));
    case SQLITE_TEXT:
        return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, column)));
    default:
        return {};
    }
}

} // namespace

PredicateDatabase::PredicateDatabase() : m_model(ZQManagedObjectModel::modelFromJSON(testModelJSON))
{
    sqlite3_open(":memory:", &m_connection);
    EXPECT_EQ(zqRegisterSQLFunctions(m_connection), SQLITE_OK);
    execute(QStringLiteral("CREATE TABLE TestNode (id INTEGER PRIMARY KEY, entity INTEGER, version INTEGER, title TEXT,"
                           " flag INTEGER, small INTEGER, medium INTEGER, large INTEGER, ratio REAL, exact REAL,"
                           " date INTEGER, blob BLOB, parent INTEGER, path TEXT, author TEXT)"));
    execute(QStringLiteral("CREATE INDEX byTitle ON TestNode (title)"));
    execute(QStringLiteral("CREATE INDEX byDate ON TestNode (date)"));
    execute(QStringLiteral("CREATE INDEX byParent ON TestNode (parent)"));
    execute(QStringLiteral("CREATE TABLE TestTag (id INTEGER PRIMARY KEY, entity INTEGER, version INTEGER, name TEXT,"
                           " weight INTEGER)"));
    execute(QStringLiteral("CREATE TABLE TestNote (id INTEGER PRIMARY KEY, entity INTEGER, version INTEGER, text TEXT,"
                           " node INTEGER)"));
    const ZQRelationshipDescription *tags = document()->relationship(QStringLiteral("tags"));
    execute(QStringLiteral("CREATE TABLE \"%1\" (\"%2\" INTEGER, \"%3\" INTEGER, PRIMARY KEY (\"%2\", \"%3\"))")
                .arg(tags->joinTable, tags->joinOwnColumn, tags->joinOtherColumn));
}

QVariantList PredicateDatabase::query(const QString &sql, const QVariantList &bindings)
{
    sqlite3_stmt *statement = nullptr;
    const QByteArray text = sql.toUtf8();
    QVariantList result;
    if (sqlite3_prepare_v2(m_connection, text.constData(), -1, &statement, nullptr) != SQLITE_OK) {
        ADD_FAILURE() << sqlite3_errmsg(m_connection) << "\n" << text.left(2000).constData();
        return result;
    }
    EXPECT_EQ(sqlite3_bind_parameter_count(statement), bindings.size()) << text.constData();
    for (qsizetype i = 0; i < bindings.size(); ++i) {
        bind(statement, static_cast<int>(i) + 1, bindings[i]);
    }
    int code = SQLITE_ROW;
    while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
        result.append(columnValue(statement, sqlite3_column_count(statement) == 4 ? 3 : 0));
    }
    EXPECT_EQ(code, SQLITE_DONE) << sqlite3_errmsg(m_connection);
    sqlite3_finalize(statement);
    return result;
}

void PredicateDatabase::addNode(qint64 key, const Node &node)
{
    m_nodes[key] = node;
    execute(QStringLiteral("INSERT INTO TestNode (id, entity, version, parent) VALUES (?, ?, 1, ?)"),
            {key, document()->code, node.parent ? QVariant(node.parent) : QVariant()});
    for (auto value = node.values.begin(); value != node.values.end(); ++value) {
        execute(QStringLiteral("UPDATE TestNode SET \"%1\" = ? WHERE id = ?").arg(value.key()), {value.value(), key});
    }
    const QString joinTable = document()->relationship(QStringLiteral("tags"))->joinTable;
    for (const qint64 tagKey : node.tags) {
        const ZQRelationshipDescription *tags = document()->relationship(QStringLiteral("tags"));
        execute(QStringLiteral("INSERT INTO \"%1\" (\"%2\", \"%3\") VALUES (?, ?)")
                    .arg(joinTable, tags->joinOwnColumn, tags->joinOtherColumn),
                {key, tagKey});
    }
}

void PredicateDatabase::addTag(qint64 key, const QVariant &name, const QVariant &weight)
{
    m_tags[key] = {{QStringLiteral("name"), name}, {QStringLiteral("weight"), weight}};
    execute(QStringLiteral("INSERT INTO TestTag (id, entity, version, name, weight) VALUES (?, ?, 1, ?, ?)"),
            {key, tag()->code, name, weight});
}

void PredicateDatabase::addNote(qint64 key, const QVariant &text, qint64 node)
{
    m_notes[key] = {{QStringLiteral("text"), text}};
    m_nodes[node].notes.append(key);
    execute(QStringLiteral("INSERT INTO TestNote (id, entity, version, text, node) VALUES (?, ?, 1, ?, ?)"),
            {key, m_model->entity(QStringLiteral("TestNote"))->code, text, node});
}

std::optional<QVariantList> PredicateDatabase::keysMatching(const ZQPredicate &predicate, ZQError *error)
{
    const auto sql = zqSQLForPredicate(predicate, document(), QStringLiteral("t0"), error);
    if (!sql) {
        return std::nullopt;
    }
    return query(QStringLiteral("SELECT id FROM TestNode AS t0 WHERE %1 ORDER BY id").arg(sql->text), sql->bindings);
}

QVariantList PredicateDatabase::results(const ZQPredicate &predicate, ZQError *error)
{
    const auto sql = zqSQLForPredicate(predicate, document(), QStringLiteral("t0"), error);
    return sql ? query(QStringLiteral("SELECT (%1) FROM TestNode AS t0 ORDER BY id").arg(sql->text), sql->bindings)
               : QVariantList();
}

QString PredicateDatabase::plan(const ZQPredicate &predicate)
{
    const auto sql = zqSQLForPredicate(predicate, document(), QStringLiteral("t0"));
    QStringList lines;
    for (const QVariant &line :
         query(QStringLiteral("EXPLAIN QUERY PLAN SELECT id FROM TestNode AS t0 WHERE %1").arg(sql->text),
               sql->bindings)) {
        lines.append(line.toString());
    }
    return lines.join(u'\n');
}

QVariantMap PredicateDatabase::mapOf(qint64 key, int depth) const
{
    const auto found = m_nodes.find(key);
    const Node node = found == m_nodes.end() ? Node() : found->second;
    QVariantMap map = node.values;
    QVariantList tags;
    QVariantList notes;
    QVariantList children;
    for (const qint64 tagKey : node.tags) {
        tags.append(m_tags.at(tagKey));
    }
    for (const qint64 noteKey : node.notes) {
        notes.append(m_notes.at(noteKey));
    }
    if (depth > 0) {
        for (const auto &[childKey, child] : m_nodes) {
            if (key && child.parent == key) {
                children.append(mapOf(childKey, depth - 1));
            }
        }
        map.insert(QStringLiteral("parent"), mapOf(node.parent, depth - 1));
    }
    map.insert(QStringLiteral("tags"), tags);
    map.insert(QStringLiteral("notes"), notes);
    map.insert(QStringLiteral("children"), children);
    return map;
}

QList<qint64> PredicateDatabase::keys() const
{
    QList<qint64> result;
    for (const auto &[key, node] : m_nodes) {
        result.append(key);
    }
    return result;
}

#include "Kit/Persistence/ZQRowStream.h"

#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQSQLList.h"

#include <sqlite3.h>

namespace {

ZQError unknown(const QString &what)
{
    return ZQError::with(ZQStoreErrorDomain, int(ZQStoreError::Other),
                         zqLocalized("The request cannot be carried out."), what);
}

QString condition(const QString &column, const ZQRowStream::Keys &keys)
{
    return keys.list ? column + QStringLiteral(" IN (SELECT value FROM json_each(?))")
                     : column + QStringLiteral(" >= ? AND ") + column + QStringLiteral(" < ?");
}

QVariantList bindings(const ZQRowStream::Keys &keys)
{
    return keys.list ? QVariantList{zqKeysAsJSON(*keys.list)} : QVariantList{keys.first, keys.end};
}

} // namespace

bool ZQRowStream::Row::isNull(int property) const
{
    return m_statement->isNull(property + 2);
}

qint64 ZQRowStream::Row::number(int property) const
{
    return m_statement->int64(property + 2);
}

std::string_view ZQRowStream::Row::text(int property) const
{
    return m_statement->utf8(property + 2);
}

std::string_view ZQRowStream::Row::data(int property) const
{
    return m_statement->bytes(property + 2);
}

ZQRowStream::ZQRowStream(ZQManagedObjectContext &context) : m_context(ZQObjectAccess::parts(context))
{
    m_context.store.assertThread();
    if (ZQSQLiteConnection *connection = m_context.store.connection()) {
        m_transaction = std::make_unique<ZQSQLiteTransaction>(*connection, ZQSQLiteTransaction::Kind::Read);
    }
}

ZQRowStream::~ZQRowStream() = default;

bool ZQRowStream::step(const QString &sql, const Keys &keys, const std::function<bool(ZQSQLiteStatement &)> &visit,
                       ZQError *error)
{
    constexpr int rowsBetweenLooks = 1024;
    if (!m_transaction || !m_transaction->isOpen()) {
        zqSetError(error, m_context.store.error());
        return false;
    }
    ZQSQLiteStatement select = m_context.store.prepare(sql);
    select.bindVariants(0, bindings(keys));
    for (int row = 0; select.next(); ++row) {
        if (row % rowsBetweenLooks == 0 && ZQCancellation::isCurrentCancelled()) {
            zqSetError(error, zqStoreErrorForSQLite(SQLITE_INTERRUPT, {}, m_context.store.coordinator()->path()));
            return false;
        }
        if (!visit(select)) {
            break;
        }
    }
    if (select.failed() || !select.isValid()) {
        zqSetError(error, m_context.store.error());
        return false;
    }
    return true;
}

bool ZQRowStream::rows(const QString &entityName, const QStringList &properties, const Keys &keys,
                       const std::function<void(const Row &)> &visit, ZQError *error)
{
    const ZQEntityDescription *entity = m_context.rows.plan().model().entity(entityName);
    QString columns = QStringLiteral("\"id\", \"entity\"");
    for (const QString &name : properties) {
        const ZQAttributeDescription *attribute = entity ? entity->attribute(name) : nullptr;
        const ZQRelationshipDescription *relationship = entity ? entity->relationship(name) : nullptr;
        if (!attribute && (!relationship || relationship->toMany)) {
            zqSetError(error, unknown(QStringLiteral("%1 has no value \"%2\" to read.").arg(entityName, name)));
            return false;
        }
        columns += QStringLiteral(", ") + zqQuoted(attribute ? attribute->columnName : relationship->columnName);
    }
    if (!entity) {
        zqSetError(error, unknown(QStringLiteral("There is no entity \"%1\".").arg(entityName)));
        return false;
    }
    const QString sql = QStringLiteral("SELECT %1 FROM %2 WHERE %3 ORDER BY \"id\"")
                            .arg(columns, zqQuoted(entity->tableName), condition(QStringLiteral("\"id\""), keys));
    Row row;
    qint64 code = 0; // of the row before, which nearly always is of the same entity
    return step(
        sql, keys,
        [&](ZQSQLiteStatement &select) {
            if (const qint64 own = select.int64(1); !row.m_statement || own != code) {
                const ZQEntityDescription *found = m_context.rows.plan().model().entityWithCode(int(own));
                row.entity = found && found->isKindOf(entity) ? found : nullptr;
                row.m_statement = &select;
                code = own;
            }
            if (row.entity) {
                row.key = select.int64(0);
                visit(row);
            }
            return true;
        },
        error);
}

bool ZQRowStream::links(const QString &entityName, const QString &relationship, const Keys &keys,
                        const std::function<void(qint64, qint64)> &visit, ZQError *error)
{
    const ZQEntityDescription *entity = m_context.rows.plan().model().entity(entityName);
    const ZQRelationshipDescription *many = entity ? entity->relationship(relationship) : nullptr;
    if (!many || !many->isManyToMany()) {
        zqSetError(error, unknown(QStringLiteral("%1 has no join table \"%2\".").arg(entityName, relationship)));
        return false;
    }
    const QString sql = QStringLiteral("SELECT %1, %2 FROM %3 WHERE %4")
                            .arg(zqQuoted(many->joinOwnColumn), zqQuoted(many->joinOtherColumn),
                                 zqQuoted(many->joinTable), condition(zqQuoted(many->joinOwnColumn), keys));
    return step(
        sql, keys,
        [&](ZQSQLiteStatement &select) {
            visit(select.int64(0), select.int64(1));
            return true;
        },
        error);
}

std::optional<qint64> ZQRowStream::highestKey(const QString &entityName, ZQError *error)
{
    const ZQEntityDescription *entity = m_context.rows.plan().model().entity(entityName);
    if (!entity) {
        zqSetError(error, unknown(QStringLiteral("There is no entity \"%1\".").arg(entityName)));
        return std::nullopt;
    }
    qint64 highest = 0;
    const QString sql = QStringLiteral("SELECT max(\"id\") FROM %1 WHERE %2")
                            .arg(zqQuoted(entity->tableName), condition(QStringLiteral("\"id\""), {}));
    const bool isRead = step(
        sql, {},
        [&](ZQSQLiteStatement &select) {
            highest = select.int64(0);
            return true;
        },
        error);
    return isRead ? std::optional(highest) : std::nullopt;
}

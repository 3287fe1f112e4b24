#pragma once

#include "Kit/Persistence/ZQRowCache.h"

struct ZQFetchRequest;

// A request as SQL, in the parts its uses put together.
struct ZQFetchQuery
{
    const ZQEntityDescription *entity = nullptr;
    ZQRowCache::Root *root = nullptr;
    QString where; // with the keyword, or empty
    QString joins;
    QString order; // with the keyword
    QVariantList bindings;

    // Takes the request apart; false when it names what the model does not have. Of an empty query only.
    bool prepare(const ZQFetchRequest &request, ZQRowCache &rows, ZQError *error);
    QString from() const { return QStringLiteral(" FROM %1 t ").arg(zqQuoted(entity->tableName)); }
    QString select(const QString &columns, qint64 limit, qint64 offset) const
    {
        return QStringLiteral("SELECT ") + columns + from() + joins + where + order +
               QStringLiteral(" LIMIT %1 OFFSET %2").arg(limit).arg(offset);
    }
    void addCondition(const QString &condition, const QVariantList &values)
    {
        where += (where.isEmpty() ? QStringLiteral(" WHERE ") : QStringLiteral(" AND ")) + condition;
        bindings += values;
    }
};

// The objects about which the store alone would answer wrongly, and how they are left out of its answer.
struct ZQPendingCorrection
{
    QList<ZQRef<ZQManagedObject>> matching; // match as they are now; in the order of the request when that counts
    QList<qint64> excluded;                 // rows whose stored state does not count
};

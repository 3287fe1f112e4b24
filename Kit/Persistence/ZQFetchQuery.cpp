#include "Kit/Persistence/ZQFetchQuery.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQFetchRequest.h"
#include "Kit/Persistence/ZQSQLList.h"

bool ZQFetchQuery::prepare(const ZQFetchRequest &request, ZQRowCache &rows, ZQError *error)
{
    entity = rows.plan().model().entity(request.entityName);
    if (!entity) {
        zqSetError(error, ZQError::with(ZQStoreErrorDomain, int(ZQStoreError::Other),
                                        zqLocalized("The request cannot be carried out."),
                                        QStringLiteral("There is no entity \"%1\".").arg(request.entityName)));
        return false;
    }
    root = &rows.rootOf(entity);
    QStringList conditions;
    const QList<int> codes =
        request.includesSubentities ? entity->codesIncludingSubentities() : QList<int>{entity->code};
    if (codes.size() < qsizetype(root->plan->entities.size())) {
        QStringList texts;
        for (const int code : codes) {
            texts.append(QString::number(code));
        }
        conditions.append(QStringLiteral("t.\"entity\" IN (%1)").arg(texts.join(u',')));
    }
    if (!request.predicate.isNull()) {
        const auto fragment = zqSQLForPredicate(request.predicate, entity, QStringLiteral("t"), error);
        if (!fragment) {
            return false;
        }
        conditions.append(u'(' + fragment->text + u')');
        bindings = fragment->bindings;
    }
    const auto sorting = zqSQLForSortDescriptors(request.sortDescriptors, entity, QStringLiteral("t"), error);
    if (!sorting) {
        return false;
    }
    joins = sorting->joins;
    order = QStringLiteral(" ORDER BY ") + sorting->orderBy;
    if (!conditions.isEmpty()) {
        where = QStringLiteral(" WHERE ") + conditions.join(QStringLiteral(" AND "));
    }
    return true;
}

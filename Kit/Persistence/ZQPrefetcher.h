#pragma once

#include "Kit/Persistence/ZQContextPrivate.h"

// Reads for many objects at once what each of them would ask for by a query of its own. What could not be read is read
// when it is asked for. On the context's thread.
class ZQPrefetcher
{
public:
    using Object = ZQRef<ZQManagedObject>;

    explicit ZQPrefetcher(ZQManagedObjectContext::Private &context) : m_context(context) {}

    // Reads what `keys` lead to from `objects`, of one root, in a few queries; the answer keeps it in memory. Without
    // the last: only what is needed to say which objects these are.
    QList<Object> prefetch(const QList<Object> &objects, const QStringList &keys, bool includesLast);

private:
    void fillFaults(const QList<Object> &objects);
    // What the relationship leads to from `objects`, all of one entity.
    void addTargets(const QList<Object> &objects, const ZQPlanProperty &property, bool isWanted,
                    QHash<const ZQEntityDescription *, QSet<qint64>> &targets);

    ZQManagedObjectContext::Private &m_context;
};

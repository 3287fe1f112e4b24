#pragma once

#include "Kit/Persistence/ZQPredicate.h"
#include "Kit/Persistence/ZQSortDescriptor.h"

#include <QString>

// What to fetch: the rows of one entity that match a predicate, in an order.
struct ZQFetchRequest
{
    QString entityName;
    ZQPredicate predicate = {}; // null: everything
    QList<ZQSortDescriptor> sortDescriptors = {};
    bool includesSubentities = true;
    bool includesPendingChanges = true; // unsaved changes of the context count
    int fetchLimit = 0;                 // 0: all
    int fetchOffset = 0;
};

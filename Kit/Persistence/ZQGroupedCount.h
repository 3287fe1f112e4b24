#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QHash>

#include <optional>

// What is counted: rows of a root entity, by the objects that they lead to.
struct ZQGroupedCount
{
    QString entityName;
    QString keyPath;           // a to-one or many-to-many relationship, or a to-many with a to-one behind it
    QList<ZQObjectID> related; // the objects there that are asked for
    ZQPredicate excluded = {}; // rows that do not count; null: all count
};

// How many rows lead to each; 0 for those that none leads to. In one statement, which reads what the relationship is
// kept in and counts off what is excluded: quick where few rows are, and an index knows them, since no other row is
// looked at. Saved state only, on the context's thread. Nothing after an error.
std::optional<QHash<ZQObjectID, qint64>> zqCountByRelated(ZQManagedObjectContext &context, const ZQGroupedCount &wanted,
                                                          ZQError *error = nullptr);

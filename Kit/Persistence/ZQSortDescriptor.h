#pragma once

#include "Kit/Persistence/ZQObjectID.h"
#include "Kit/Persistence/ZQPredicate.h"

#include <QList>
#include <QString>

// One key of a sort order. Null sorts before every value; ties fall to the next descriptor, at last to the object's
// key, so that an order is total and both back ends agree.
struct ZQSortDescriptor
{
    enum class Comparison {
        Standard,         // numbers, dates by value; strings by code point
        LocalizedStandard // strings as a person orders them: ICU root collation of the locale, digits as numbers
    };

    QString keyPath; // an attribute, or to-one relationships leading to one
    bool ascending = true;
    Comparison comparison = Comparison::Standard;
};

// The text for ORDER BY (without the keyword), and the LEFT JOINs that must follow the FROM clause.
struct ZQSQLOrder
{
    QString joins;
    QString orderBy;
};
std::optional<ZQSQLOrder> zqSQLForSortDescriptors(const QList<ZQSortDescriptor> &descriptors,
                                                  const ZQEntityDescription *entity, const QString &alias,
                                                  ZQError *error = nullptr);

// Negative, zero or positive as `a` comes before, with or after `b`.
int zqCompareObjects(const ZQManagedObject *a, const ZQManagedObject *b, const QList<ZQSortDescriptor> &descriptors);
int zqCompareValues(const QVariant &a, const QVariant &b, ZQSortDescriptor::Comparison comparison);
// The order of objects that no descriptor tells apart: saved ones by key, new ones after them as they were made.
int zqCompareObjectIDs(const ZQObjectID &a, const ZQObjectID &b);

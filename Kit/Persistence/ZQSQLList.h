#pragma once

#include "Kit/Persistence/ZQPredicate.h"
#include "Kit/Persistence/ZQSQLPath.h"
#include "Kit/Persistence/ZQScalar.h"

// The condition, 0 or 1, that `value` is one of `set`. A long list is one JSON text, so that its length has no limit.
ZQSQLFragment zqSQLForMembership(const ZQSQLFragment &value, ZQSQLType type, const ZQEntityDescription *root,
                                 bool isNeverNull, const ZQScalarSet &set);

// For "IN (SELECT value FROM json_each(?))": any number of keys as one value.
QString zqKeysAsJSON(const QList<qint64> &keys);

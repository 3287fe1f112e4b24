#pragma once

#include "Kit/Persistence/ZQObjectID.h"

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <optional>
#include <unordered_set>
#include <variant>

// One value as predicates and sort orders see it, in a normal form: equal values have equal alternatives.
//
// Booleans and whole doubles are qint64, a not-a-number is null, dates are milliseconds since 1970 UTC, and null
// strings, null data, invalid dates and null identifiers are null.
struct ZQDateValue
{
    qint64 milliseconds = 0;
    friend bool operator==(const ZQDateValue &, const ZQDateValue &) = default;
};
using ZQScalar = std::variant<std::monostate, qint64, double, QString, ZQDateValue, QByteArray, ZQObjectID>;

inline bool zqIsNull(const ZQScalar &value)
{
    return value.index() == 0;
}

// `isKnown` becomes false, and the answer null, for a type that cannot be compared.
ZQScalar zqScalarFromVariant(const QVariant &value, bool *isKnown = nullptr);
ZQScalar zqScalarFromDouble(double value);
// The elements when `value` is a list of any kind.
std::optional<QVariantList> zqListFromVariant(const QVariant &value);

// Negative, zero, positive for two numbers, strings (by code point), dates or data; nothing for any other pair.
std::optional<int> zqOrderOfScalars(const ZQScalar &a, const ZQScalar &b);
int zqCompareByCodePoint(QStringView a, QStringView b);

struct ZQScalarHash
{
    size_t operator()(const ZQScalar &value) const;
};
using ZQScalarSet = std::unordered_set<ZQScalar, ZQScalarHash>;

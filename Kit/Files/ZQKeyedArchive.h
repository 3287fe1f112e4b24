#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QVariant>

#include <optional>

// Keyed archives, the form in which programs of another desktop keep objects: a binary property list of "$archiver",
// "$version", "$top" and "$objects", whose members name each other by number. The root is "root".
//
// Values as variants: nothing (an invalid one), QString, bool, qlonglong, double, QByteArray, QDateTime, QVariantList,
// QVariantMap (an archived dictionary with texts as keys), QPointF (a point value), ZQIndexSet, and `Object` for
// everything with a class of its own. Any thread.
namespace ZQKeyedArchive {

struct Object
{
    QString className;
    QVariantMap fields;
};

constexpr int deepest = 64;
constexpr int mostValues = 500000; // counted as if shared ones were written out, so that few bytes stay few values

// Nothing, with an error, for a value of another type and for one that is too deep.
std::optional<QByteArray> toData(const QVariant &root, ZQError *error = nullptr);
// Trusts nothing: what is damaged, goes in circles, is too deep or too much, or is a value that makes no sense gives an
// error.
std::optional<QVariant> fromData(const QByteArray &data, ZQError *error = nullptr);

} // namespace ZQKeyedArchive

Q_DECLARE_METATYPE(ZQKeyedArchive::Object)

#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Persistence/ZQObjectID.h"

#include <QString>
#include <QVariant>

#include <memory>
#include <optional>

class ZQManagedObject;
class ZQEntityDescription;
struct ZQPredicateNode;

// A condition on objects, parsed from the format language into one tree with two back ends that agree on every input:
// evaluation over objects in memory, and translation into SQL.
//
// Language: comparisons (= == != <> < <= > >= and their [c] [d] [cd] options), BEGINSWITH, ENDSWITH, CONTAINS, LIKE
// (with ? and *), MATCHES, IN, BETWEEN, RESEMBLES (data, and a text that `ZQResemblance` knows); ANY, ALL, NONE, SOME;
// AND OR NOT && || !; key paths ("item.title"), "tags.@count",
// "@distinctUnionOfObjects"; CAST(x, "NSDate") with x in seconds since 2001-01-01T00:00Z; SELF; literals in single or
// double quotes, numbers, YES NO TRUE FALSE, nil NULL, {a, b}; arguments %@ %d %ld %f %K. Keywords ignore case.
//
// Null follows the object world, in both back ends: null equals only null, null != value is true, every other
// comparison with null is false, and NOT is the plain opposite (two-valued logic). Immutable and cheap to copy; may
// cross threads. Arguments may be QString, numbers, bool, QDateTime, QByteArray, ZQObjectID, QVariantList, QStringList,
// an invalid QVariant for nil, and a ZQPredicate, whose %@ stands for that whole condition.
class ZQPredicate
{
public:
    ZQPredicate() = default; // null: matches everything
    explicit ZQPredicate(std::shared_ptr<const ZQPredicateNode> root) : m_root(std::move(root)) {}
    // Null with `error` set when the format cannot be parsed, or an argument is missing.
    static ZQPredicate predicateWithFormat(const QString &format, const QVariantList &arguments = {},
                                           ZQError *error = nullptr);
    static ZQPredicate andPredicate(const QList<ZQPredicate> &parts); // null parts are left out; none: null
    static ZQPredicate orPredicate(const QList<ZQPredicate> &parts);
    static ZQPredicate notPredicate(const ZQPredicate &part);

    bool isNull() const { return !m_root; }
    // Parses back to an equal predicate. Object identifiers have no text; each stands as a %@ whose value is in
    // `predicateFormatArguments`, in order.
    QString predicateFormat() const;
    QVariantList predicateFormatArguments() const;
    friend bool operator==(const ZQPredicate &a, const ZQPredicate &b);

    // Whether `object` matches; follows relationships by faulting them in on the object's context.
    bool evaluateWithObject(const ZQManagedObject *object) const;
    // The same for a plain value, which is SELF: a string, number, date or object identifier. A key of a QVariantMap is
    // its entry.
    bool evaluateWithObject(const QVariant &value) const;

    const ZQPredicateNode *root() const { return m_root.get(); }

private:
    std::shared_ptr<const ZQPredicateNode> m_root;
};

// SQL text for a condition, with its values in order for the ? placeholders.
struct ZQSQLFragment
{
    QString text;
    QVariantList bindings;
};

// Translates `predicate` for rows of `entity`, whose table is aliased as `alias` in the surrounding statement. Answers
// nothing, with an error naming the key path, when the predicate names a property the entity does not have.
// The statement's connection needs `zqRegisterSQLFunctions`.
std::optional<ZQSQLFragment> zqSQLForPredicate(const ZQPredicate &predicate, const ZQEntityDescription *entity,
                                               const QString &alias, ZQError *error = nullptr);

// Registers the functions and collations that translated predicates and sort descriptors use ("zq_fold", "zq_like",
// "zq_matches", the collation "zq_localized", …) on an open connection. 0, or the SQLite error code.
struct sqlite3;
int zqRegisterSQLFunctions(sqlite3 *connection);

// The folding of [c] (case), [d] (diacritics): the one function both back ends use.
QString zqFold(const QString &text, bool caseInsensitive = true, bool diacriticInsensitive = true);

#pragma once

#include "Kit/Persistence/ZQPredicate.h"
#include "Models/DataModel/ZQListRows.h"

#include <QStringList>

// The classes by which the pixels of items are grouped and searched: what each is called and asks for. An item whose
// longer side is exactly the limit of "medium" is in "large" too. Any thread.
class SizeClasses
{
public:
    // Pixels of the longer side, from the user defaults.
    struct Limits
    {
        qint64 icon = 32;
        qint64 small = 128;
        qint64 medium = 512;

        static Limits current();
    };

    static const QStringList &keys(); // in the order of their groups: "none", "icon", … "vector"
    static const QStringList &vectorExtensions();
    // A key by its name, as it is or localised, in any case; empty for none.
    static QString keyForName(const QString &name);
    static QString titleForKey(const QString &key); // localised and capitalised
    // The condition as a text that stands alone. Empty for no key.
    static QString queryForKey(const QString &key, ZQListRows rows, const Limits &limits);
    static ZQPredicate predicateForKey(const QString &key, ZQListRows rows, const Limits &limits);

private:
    // With a %@ for the vector list where that is asked for.
    static QString formatForKey(const QString &key, ZQListRows rows, const Limits &limits);
};

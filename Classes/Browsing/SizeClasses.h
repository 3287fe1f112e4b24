#pragma once

#include <QList>
#include <QString>
#include <QVariant>

// A class of pictures by size, as the tab groups and the user defaults bound them. The condition is in the format
// language, with %1 before each key for what leads to the item. "medium" and "large" meet in the pictures whose larger
// side is exactly the bound: these are in both.
struct SizeClass
{
    const char *titleKey;
    QString format;
    QVariantList arguments;
};

// "none", "icon", "small", "medium", "large", "vector". Any thread.
QList<SizeClass> zqSizeClasses();

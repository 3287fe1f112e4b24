#pragma once

#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QList>
#include <QString>
#include <QStringList>

// One fact of several items that are compared: of each item its parts, as "JPEG image" and "310 KB" of the file.
struct CompareFact
{
    QString name; // localised
    QString separator;
    bool isNamed;             // its name is needed to know what it is
    QList<QStringList> parts; // one list an item

    // Whether another item does not have this part.
    bool differs(const QString &part) const;
    bool differs() const; // any of them
};

// What is known of the items beside their pictures, in the order in which it is shown. On the thread of their context;
// asks the disk for the sizes of the files.
QList<CompareFact> zqCompareFacts(const QList<ZQRef<ZQLibraryBaseItem>> &items);

#include "Models/DataModel/ZQListRows.h"

#include "Models/DataModel/ZQProjectItem.h"

namespace {
const QString itemPrefix = QStringLiteral("item.");
}

ZQListRows zqListRowsOfEntity(const QString &entityName)
{
    return entityName == ZQProjectItem::entityName() ? ZQListRows::Memberships : ZQListRows::LibraryItems;
}

QString zqItemKeyPath(ZQListRows rows, const QString &key)
{
    return rows == ZQListRows::Memberships ? itemPrefix + key : key;
}

QString zqItemKey(const QString &keyPath)
{
    return keyPath.startsWith(itemPrefix) ? keyPath.mid(itemPrefix.size()) : keyPath;
}

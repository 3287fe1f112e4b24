#pragma once

#include "Models/DataModel/_ZQSidebarLibrary.h"

// The whole library: every active item.
class ZQSidebarLibrary : public _ZQSidebarLibrary
{
public:
    bool isLibrary() const override { return true; }
    QString typeString() const override;
    QString icon() const override { return QStringLiteral("library"); }
    ZQFetchRequest contentRequest() const override;
    // An item is in the library by existing: adding restores it, removing does nothing.
    using ZQSidebarBaseItem::addItem;
    using ZQSidebarBaseItem::containsItem;
    bool addItem(ZQLibraryBaseItem *item, quint32 atIndex, bool rearrangeOtherItems, bool checkForDuplicate) override;
    bool addItems(const QList<ZQRef<ZQLibraryBaseItem>> &items, const QList<quint32> &atIndexes = {},
                  ZQError *error = nullptr) override;
    bool containsItem(const ZQLibraryBaseItem *item) const override;
};

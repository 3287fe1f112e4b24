#pragma once

#include "Models/DataModel/_ZQSidebarSmartFolder.h"

// A saved search: it shows the items of the whole library that its text finds at the moment. It holds nothing itself,
// and what a text means is not known down here, so its own `contentRequest` is empty and nothing can be put into it.
class ZQSidebarSmartFolder : public _ZQSidebarSmartFolder
{
public:
    static constexpr qsizetype longestSearchText = 1 << 16; // characters

    bool isSmartFolder() const override { return true; }
    QString typeString() const override;
    QString icon() const override { return QStringLiteral("smart"); }
    ZQFetchRequest contentRequest() const override;
    using ZQSidebarBaseItem::addItem;
    using ZQSidebarBaseItem::containsItem;
    bool addItem(ZQLibraryBaseItem *item, quint32 atIndex, bool rearrangeOtherItems, bool checkForDuplicate) override;
    bool addItems(const QList<ZQRef<ZQLibraryBaseItem>> &items, const QList<quint32> &atIndexes = {},
                  ZQError *error = nullptr) override;
    void removeItems(const QList<ZQRef<ZQLibraryBaseItem>> &items) override;
    bool containsItem(const ZQLibraryBaseItem *item) const override;
    void awakeFromInsert() override; // newest first, until the person sorts otherwise
};

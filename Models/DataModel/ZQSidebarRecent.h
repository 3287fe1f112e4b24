#pragma once

#include "Models/DataModel/_ZQSidebarRecent.h"

// What was imported or modified within the last week.
class ZQSidebarRecent : public _ZQSidebarRecent
{
public:
    // A stretch of time with its title; each item is in the first that holds it.
    struct Group
    {
        QString title;
        ZQPredicate predicate; // of library items
    };
    static QList<Group> groups();
    static constexpr int days = 7;

    bool isRecent() const override { return true; }
    QString typeString() const override;
    QString icon() const override { return QStringLiteral("recent"); }
    ZQFetchRequest contentRequest() const override;
    using ZQSidebarBaseItem::addItem;
    using ZQSidebarBaseItem::containsItem;
    bool addItem(ZQLibraryBaseItem *item, quint32 atIndex, bool rearrangeOtherItems, bool checkForDuplicate) override;
    bool addItems(const QList<ZQRef<ZQLibraryBaseItem>> &items, const QList<quint32> &atIndexes = {},
                  ZQError *error = nullptr) override;
    bool containsItem(const ZQLibraryBaseItem *item) const override;
};

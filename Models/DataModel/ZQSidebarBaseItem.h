#pragma once

#include <optional>

#include "Models/DataModel/ZQListRows.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/_ZQSidebarBaseItem.h"

#include <QSet>

class ZQLibraryBaseItem;

// What `kind` says of the fixed entries; items a person made have 0, as the LIBRARY label has.
enum class ZQSidebarKind : qint16 {
    LibraryLabel = 0,
    Library = 1,
    Recent = 2,
    Screenshots = 3,
    ProjectsLabel = 101,
    WatchedFoldersLabel = 102,
    TagsLabel = 201,
    SizesLabel = 202,
    ColorsLabel = 203,
    FirstColor = 1000,
    LastColor = 1009,
    FirstSize = 2001,
    LastSize = 2005,
};

// One node of the sidebar. A node with members (project, Screenshots) holds them through ordered `ZQProjectItem`s; the
// other kinds say what they contain by `contentRequest`. Deleting clears `active`; the purge at quit removes what
// stayed inactive.
class ZQSidebarBaseItem : public _ZQSidebarBaseItem
{
public:
    // As an index: at the end.
    static constexpr quint32 appendIndex = 4294967295U;

    // The fixed entries; null when there is none or the fetch failed (logged; then `failure` is set).
    static ZQRef<ZQSidebarBaseItem>
    specialItemOfKind(ZQSidebarKind kind, ZQManagedObjectContext &inManagedObjectContext, ZQError *failure = nullptr);
    static ZQRef<ZQSidebarBaseItem> libraryProjectInManagedObjectContext(ZQManagedObjectContext &context);
    static ZQRef<ZQSidebarBaseItem> recentProjectInManagedObjectContext(ZQManagedObjectContext &context);
    static ZQRef<ZQSidebarBaseItem> screenshotProjectInManagedObjectContext(ZQManagedObjectContext &context);
    static ZQRef<ZQSidebarBaseItem> projectsLabelInManagedObjectContext(ZQManagedObjectContext &context);
    static ZQRef<ZQSidebarBaseItem> watchedFolderLabelInManagedObjectContext(ZQManagedObjectContext &context);
    static ZQRef<ZQSidebarBaseItem> tagsLabelInManagedObjectContext(ZQManagedObjectContext &context);
    static ZQRef<ZQSidebarBaseItem> sizeLabelInManagedObjectContext(ZQManagedObjectContext &context);
    static ZQRef<ZQSidebarBaseItem> colorsLabelInManagedObjectContext(ZQManagedObjectContext &context);

    // The keys of a sort value for rows of that kind; none for `None` and for what is no value.
    static QList<ZQSortDescriptor> sortDescriptorsForSortValue(ZQSortValue sortValue, bool ascending,
                                                               ZQListRows itemKind);
    // Removes every inactive sidebar item with everything below it.
    static void permanentlyDeleteInactiveObjectinManagedObjectContext(ZQManagedObjectContext &context);

    // Membership. Adding an inactive item restores it. With rearranging, the members from `atIndex` on move up by one.
    // False when the item is there already (and that is checked) or null.
    bool addItem(ZQLibraryBaseItem *item); // at the end
    bool addItem(ZQLibraryBaseItem *item, quint32 atIndex) { return addItem(item, atIndex, true, true); }
    bool addItem(ZQLibraryBaseItem *item, quint32 atIndex, bool rearrangeOtherItems)
    {
        return addItem(item, atIndex, rearrangeOtherItems, true);
    }
    virtual bool addItem(ZQLibraryBaseItem *item, quint32 atIndex, bool rearrangeOtherItems, bool checkForDuplicate);
    // As one `addItem(item, index)` after another, for as little as one pass; no indexes: at the end. False after an
    // error, when nobody was added, since nobody is to be a member twice.
    virtual bool addItems(const QList<ZQRef<ZQLibraryBaseItem>> &items, const QList<quint32> &atIndexes = {},
                          ZQError *error = nullptr);
    virtual void removeItems(const QList<ZQRef<ZQLibraryBaseItem>> &items);
    // Takes back what `removeItems` did: each item gets the order again that its membership had. False after an error,
    // when nothing was changed.
    bool restoreItems(const QList<ZQRef<ZQLibraryBaseItem>> &items, const QList<qint32> &orders,
                      ZQError *error = nullptr);
    // The memberships of those of `items` that are members, one an item; a query for every 500. Nothing after an error,
    // which is not the same as none.
    ZQFetched<ZQProjectItem> membershipsOfItems(const QList<ZQRef<ZQLibraryBaseItem>> &items,
                                                ZQError *error = nullptr) const;
    void removeItem(ZQLibraryBaseItem *item);
    void removeProjectItem(ZQProjectItem *projectItem);
    virtual bool containsItem(const ZQLibraryBaseItem *item) const;
    qint32 orderOfItem(const ZQLibraryBaseItem *item) const; // -1 for none

    // What the item shows: rows of library items, or of memberships whose key paths start with "item."; active ones, in
    // order. For lists too long for objects, fetch its identifiers.
    virtual ZQFetchRequest contentRequest() const;
    bool hasOrderedMembers() const; // holds its items through memberships
    QList<ZQRef<ZQLibraryBaseItem>> items() const;
    // The keys may carry the "item." prefix or not.
    QList<ZQRef<ZQLibraryBaseItem>> itemsWithSortDescriptors(const QList<ZQSortDescriptor> &sortDescriptors) const;
    qint64 numberOfItems() const;                                          // one COUNT
    qint64 numberOfItemsWithPredicate(const ZQPredicate &predicate) const; // of the rows of `contentRequest`
    QList<ZQRef<ZQProjectItem>> pItems() const;                            // of active items, by order
    QList<ZQRef<ZQProjectItem>> pItemsWithActiveItemsOnly(bool activeItemsOnly) const; // by order

    // Tree. Children are the active ones; a node is never put below itself.
    void addChild(ZQSidebarBaseItem *child, quint32 atIndex);
    void appendChild(ZQSidebarBaseItem *child) { addChild(child, appendIndex); }
    void removeFromFather();
    QList<ZQRef<ZQSidebarBaseItem>> childsItems() const;
    qint32 numberofChilds() const;
    QList<ZQRef<ZQSidebarBaseItem>> orderedChildren() const;
    QList<ZQRef<ZQSidebarBaseItem>> alphabeticOrderedChildren() const;
    void reorderChildren(); // numbers them from 0 in their order
    bool isDescendantOfItem(const ZQSidebarBaseItem *item) const;

    virtual bool isProject() const { return false; }
    virtual bool isFolder() const { return false; }
    virtual bool isWatchedFolder() const { return false; }
    virtual bool isSmartFolder() const { return false; }
    virtual bool isLibrary() const { return false; }
    virtual bool isRecent() const { return false; }
    virtual bool isScreenshot() const { return false; }
    bool isTag() const { return is_Tag(); }
    // Made by the program, not by a person: special, a label, or a tag that is measured.
    bool isFixed() const { return is_Special() || is_Label() || kind() != 0; }
    bool isSpecial() const { return is_Special(); }
    bool isLabel() const { return is_Label(); }
    bool isDroppableLabel() const;              // takes dropped items: PROJECTS, LIVE FOLDERS, TAGS
    virtual QString typeString() const;         // "Project", …, localised
    virtual QString icon() const { return {}; } // the name of an icon of the interface; empty for none

    virtual void deleteSelf();
    virtual void restoreSelf();
    void deletePermanently();

    QString UUID() const; // one within one store
    void awakeFromInsert() override;

protected:
    // The first half of `addItem` where membership has no order: restores the item, and tells whether it is to be
    // added.
    bool prepareToAddItem(ZQLibraryBaseItem *item) const;
    void addEachItem(const QList<ZQRef<ZQLibraryBaseItem>> &items);

private:
    ZQFetchRequest membershipRequest() const; // by order, of inactive items too
    // Those of `items` that are no members yet, with their positions in `items`.
    ZQFetched<ZQLibraryBaseItem> itemsToInsert(const QList<ZQRef<ZQLibraryBaseItem>> &items,
                                               QList<qsizetype> &positions, ZQError *error) const;
    bool insertAt(const QList<ZQRef<ZQLibraryBaseItem>> &items, const QList<quint32> &indexes, ZQError *error);
    void insertMembership(ZQLibraryBaseItem *item, qint32 order);
    std::optional<qint32> appendOrder(ZQError *error) const;
};

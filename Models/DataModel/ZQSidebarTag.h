#pragma once

#include "Models/DataModel/_ZQSidebarTag.h"

#include <QHash>

#include <optional>

// A tag: a label on library items that their files carry too.
class ZQSidebarTag : public _ZQSidebarTag
{
public:
    // What a text is as the name of a tag, and the form in which names are compared: without line breaks and tabs,
    // composed. Upper and lower case stay apart. Empty when nothing remains.
    static QString tagNameForText(const QString &text);
    // The active tag of exactly this name, also one that an older version stored in another form.
    static ZQRef<ZQSidebarTag> tagWithTagName(const QString &name, ZQManagedObjectContext &inManagedObjectContext);
    // A new last child of the TAGS label; null for an empty name.
    static ZQRef<ZQSidebarTag> addNewTagWithName(const QString &name, ZQManagedObjectContext &inManagedObjectContext);
    // Null for a name of nothing, and after an error, which was logged: a tag that was not found is made, one that
    // could not be looked for is not. `isNew`: whether it was made.
    static ZQRef<ZQSidebarTag>
    getOrCreateTagWithName(const QString &name, ZQManagedObjectContext &inManagedObjectContext, bool *isNew = nullptr);
    // The generated tag of a size code 2001 to 2005 or a colour code 1000 to 1009, made when missing. Null for another
    // code.
    static ZQRef<ZQSidebarTag> tagForSize(int size, ZQManagedObjectContext &inManagedObjectContext);
    static ZQRef<ZQSidebarTag> tagForColor(int color, ZQManagedObjectContext &inManagedObjectContext);
    // A colour's code by its name, as it is or localised; -1 for none.
    static int colorValueForName(const QString &name);
    static QString colorNameForValue(int value); // localised; empty for none
    // Numbers the children of TAGS from 0 in their present order, equal ones by title.
    static void reorderAllUserTagsInManagedObjectContext(ZQManagedObjectContext &context);
    // The names that more than one active tag has.
    static QStringList contextContainsDuplicatedTags(ZQManagedObjectContext &context);
    // The active tags that aren't labels, by name; nothing after an error, which was logged.
    static std::optional<QHash<QString, QList<ZQRef<ZQSidebarTag>>>>
    tagsByNameInManagedObjectContext(ZQManagedObjectContext &context);
    // For each name the first of its active tags takes the items of the others, which are then deleted for good.
    static void mergeTagsNamed(const QStringList &names, ZQManagedObjectContext &inManagedObjectContext);

    bool isUserTag() const { return is_Tag() && !is_Label() && kind() == 0; }
    QString typeString() const override;
    QString icon() const override;
    ZQFetchRequest contentRequest() const override;

    // These also rewrite the tags of the files concerned.
    void deleteSelf() override;
    void restoreSelf() override;
    using ZQSidebarBaseItem::addItem;
    using ZQSidebarBaseItem::containsItem;
    bool addItem(ZQLibraryBaseItem *item, quint32 atIndex, bool rearrangeOtherItems, bool checkForDuplicate) override;
    bool addItems(const QList<ZQRef<ZQLibraryBaseItem>> &items, const QList<quint32> &atIndexes = {},
                  ZQError *error = nullptr) override;
    void removeItems(const QList<ZQRef<ZQLibraryBaseItem>> &items) override;
    bool containsItem(const ZQLibraryBaseItem *item) const override;
    // Every item of `items` gets this tag in the store; files are left as they are.
    void addTaggedItems(const QList<ZQRef<ZQLibraryBaseItem>> &items);

private:
    // By its name as `tagNameForText` gives it: null when there is none, nothing after an error.
    static std::optional<ZQRef<ZQSidebarTag>> lookUp(const QString &title, ZQManagedObjectContext &context);
    void rewriteFileTags();
};

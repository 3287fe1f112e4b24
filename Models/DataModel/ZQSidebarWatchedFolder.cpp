#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Files/ZQPropertyList.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QFileInfo>

#include <algorithm>

namespace {

const QString syncDateAttribute = QStringLiteral("com.apple.metadata:kMDItemOMUserTagTime");

void appendFolders(const ZQSidebarBaseItem *parent, QSet<qint64> &seen, QList<ZQRef<ZQSidebarWatchedFolder>> &folders)
{
    for (const ZQRef<ZQSidebarBaseItem> &child : parent->orderedChildren()) {
        auto folder = zqCast<ZQSidebarWatchedFolder>(child);
        if (folder && !seen.contains(folder->objectID().key)) {
            seen.insert(folder->objectID().key);
            folders.append(folder);
            appendFolders(folder.get(), seen, folders);
        }
    }
}

} // namespace

ZQFetched<ZQSidebarWatchedFolder>
ZQSidebarWatchedFolder::watchedFoldersInManagedObjectContext(ZQManagedObjectContext &context)
{
    return zqFetch<ZQSidebarWatchedFolder>(context, QStringLiteral("active == YES"));
}

ZQFetched<ZQSidebarWatchedFolder>
ZQSidebarWatchedFolder::rootWatchedFoldersInManagedObjectContext(ZQManagedObjectContext &context)
{
    return zqFetch<ZQSidebarWatchedFolder>(context, QStringLiteral("is_root == YES AND active == YES"));
}

ZQFetched<ZQSidebarWatchedFolder> ZQSidebarWatchedFolder::watchedFoldersWithTitle(const QString &title,
                                                                                  ZQManagedObjectContext &context)
{
    return zqFetch<ZQSidebarWatchedFolder>(context, QStringLiteral("title == %@ AND active == YES"), {title});
}

ZQRef<ZQSidebarWatchedFolder> ZQSidebarWatchedFolder::watchedFolderWithPath(const QString &path,
                                                                            ZQManagedObjectContext &context)
{
    return zqFetchFirst<ZQSidebarWatchedFolder>(context, QStringLiteral("folderPath == %@ AND active == YES"), {path});
}

ZQFetched<ZQSidebarWatchedFolder> ZQSidebarWatchedFolder::watchedFoldersWithPathPrefix(const QString &prefix,
                                                                                       ZQManagedObjectContext &context)
{
    return zqFetch<ZQSidebarWatchedFolder>(context, QStringLiteral("folderPath BEGINSWITH %@ AND active == YES"),
                                           {prefix});
}

ZQRef<ZQSidebarWatchedFolder> ZQSidebarWatchedFolder::newSidebarWatchedFolderForPath(const QString &path,
                                                                                     ZQManagedObjectContext &context)
{
    auto folder = context.insertNewObject<ZQSidebarWatchedFolder>();
    folder->updateWatchedFolderBookmark(path);
    return folder;
}

std::optional<ZQSidebarWatchedFolder::SubfolderItems>
ZQSidebarWatchedFolder::subfolderChildsItemsWithSortDescriptors(const QList<ZQSortDescriptor> &sortDescriptors,
                                                                const QList<ZQRef<ZQSidebarBaseItem>> &subFolders,
                                                                ZQManagedObjectContext &)
{
    QSet<qint64> seen;
    QList<ZQRef<ZQSidebarWatchedFolder>> folders;
    for (const ZQRef<ZQSidebarBaseItem> &item : subFolders) {
        auto folder = zqCast<ZQSidebarWatchedFolder>(item);
        if (folder && !seen.contains(folder->objectID().key)) {
            seen.insert(folder->objectID().key);
            folders.append(folder);
            appendFolders(folder.get(), seen, folders);
        }
    }
    SubfolderItems result;
    for (const ZQRef<ZQSidebarWatchedFolder> &folder : folders) {
        const auto folderItems = folder->itemsWithSortDescriptors(sortDescriptors);
        result.sortedResults += folderItems;
        result.subprojects.append(folder);
        result.projectsCounts.append(folderItems.size());
    }
    return result;
}

ZQSidebarWatchedFolder::Standing ZQSidebarWatchedFolder::standing() const
{
    const auto own = [](const ZQSidebarWatchedFolder &folder) {
        return folder.is_missing()   ? Standing::Missing
               : folder.is_trashed() ? Standing::Trashed
               : folder.is_enabled() ? Standing::Followed
                                     : Standing::Off;
    };
    Standing standing = own(*this);
    QSet<qint64> seen = {objectID().key}; // a damaged tree may be a circle
    for (auto above = zqCast<ZQSidebarWatchedFolder>(father()); above && !seen.contains(above->objectID().key);
         above = zqCast<ZQSidebarWatchedFolder>(above->father())) {
        seen.insert(above->objectID().key);
        standing = std::max(standing, own(*above));
    }
    return standing;
}

QString ZQSidebarWatchedFolder::folderURL() const
{
    const QString path = folderURLSecureData().isEmpty() ? folderPath() : zqFindPersistentURL(folderURLSecureData());
    return QFileInfo(path).isDir() ? path : QString();
}

void ZQSidebarWatchedFolder::updateWatchedFolderBookmark(const QString &path)
{
    const QByteArray reference = zqDataForPersistentURL(path);
    if (!reference.isEmpty()) {
        setFolderURLSecureData(reference);
    }
    setFolderPath(path);
    setTitle(QFileInfo(path).fileName());
}

QList<ZQRef<ZQSidebarWatchedFolder>> ZQSidebarWatchedFolder::orderedChildrenAndSubChildren() const
{
    QSet<qint64> seen = {objectID().key};
    QList<ZQRef<ZQSidebarWatchedFolder>> folders;
    appendFolders(this, seen, folders);
    return folders;
}

void ZQSidebarWatchedFolder::setItemsActive(bool activeItems)
{
    setItemsActive(watchedItems(), activeItems);
}

void ZQSidebarWatchedFolder::setItemsActive(const QList<ZQRef<ZQLibraryBaseItem>> &items, bool activeItems)
{
    if (activeItems) {
        ZQLibraryBaseItem::lookForFiles(items);
    }
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        if (item->active() == activeItems) {
            continue;
        }
        if (activeItems) {
            const QString path = item->findItemURL();
            if (path.isEmpty() || QFileInfo(path).fileName().startsWith(QLatin1Char('.'))) {
                continue; // its file is gone, or a person deleted it
            }
        }
        item->setActive(activeItems);
    }
}

ZQPredicate ZQSidebarWatchedFolder::predicateOfItemsLeftBehind(Left left)
{
    return ZQPredicate::predicateWithFormat(
        left == Left::Removed ? QStringLiteral("managed == NO AND active == YES AND watchingFolder.active == NO")
                              : QStringLiteral("managed == NO AND active == YES AND (watchingFolder.active == NO OR "
                                               "watchingFolder.is_enabled == NO)"));
}

bool ZQSidebarWatchedFolder::putAwayItemsLeftBehind(ZQManagedObjectContext &context)
{
    const auto removed =
        context.countForFetchRequest({entityName(), ZQPredicate::predicateWithFormat(QStringLiteral("active == NO"))});
    if (removed == 0) { // as nearly always, and the items are many
        return true;
    }
    const auto items =
        zqFetch<ZQLibraryBaseItem>(context, ZQFetchRequest{.entityName = ZQLibraryBaseItem::entityName(),
                                                           .predicate = predicateOfItemsLeftBehind(Left::Removed)});
    for (const ZQRef<ZQLibraryBaseItem> &item : items.value_or(QList<ZQRef<ZQLibraryBaseItem>>())) {
        item->setActive(false);
    }
    return items.has_value();
}

void ZQSidebarWatchedFolder::deactivateFolder()
{
    setIs_enabled(false);
    setItemsActive(false);
    for (const ZQRef<ZQSidebarWatchedFolder> &folder : orderedChildrenAndSubChildren()) {
        folder->setIs_enabled(false);
        folder->setItemsActive(false);
    }
}

void ZQSidebarWatchedFolder::reActivateFolder()
{
    setIs_enabled(true);
    setItemsActive(true);
    for (const ZQRef<ZQSidebarWatchedFolder> &folder : orderedChildrenAndSubChildren()) {
        folder->setIs_enabled(true);
        folder->setItemsActive(true);
    }
}

void ZQSidebarWatchedFolder::deleteSelf()
{
    for (const ZQRef<ZQSidebarWatchedFolder> &folder : orderedChildrenAndSubChildren()) {
        folder->setItemsActive(false);
    }
    setItemsActive(false);
    ZQSidebarBaseItem::deleteSelf();
}

void ZQSidebarWatchedFolder::restoreSelf()
{
    ZQSidebarBaseItem::restoreSelf();
    if (is_missing() || is_trashed()) {
        return; // its items return when the folder does
    }
    QList<ZQRef<ZQSidebarWatchedFolder>> folders = orderedChildrenAndSubChildren();
    folders.prepend(ZQRef<ZQSidebarWatchedFolder>(this));
    for (const ZQRef<ZQSidebarWatchedFolder> &folder : folders) {
        if (folder->is_enabled()) {
            folder->setItemsActive(true);
        }
    }
}

QHash<QString, ZQRef<ZQManagedObject>> ZQSidebarWatchedFolder::pathAndItemDictionary() const
{
    QHash<QString, ZQRef<ZQManagedObject>> paths;
    for (const ZQRef<ZQSidebarBaseItem> &child : childsItems()) {
        if (const auto folder = zqCast<ZQSidebarWatchedFolder>(child)) {
            paths.insert(folder->folderPath(), folder);
        }
    }
    const QList<ZQRef<ZQLibraryBaseItem>> items = watchedItems();
    ZQLibraryBaseItem::lookForFiles(items);
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        const QString path = item->active() ? item->findItemURL() : QString();
        if (!path.isEmpty()) {
            paths.insert(path, item);
        }
    }
    return paths;
}

void ZQSidebarWatchedFolder::updateFolderOpenMetaSyncDate()
{
    const QString path = folderPath();
    if (path.isEmpty()) {
        qCWarning(zqLogTags, "folder path is not a string!!");
        return;
    }
    // A link has no attributes; where it points to has.
    const QFileInfo place(path);
    const QString folder = place.isSymLink() ? place.canonicalFilePath() : path;
    if (folder.isEmpty()) {
        return;
    }
    ZQError error;
    const auto date = ZQPropertyList::toBinary(zqNow(), &error);
    if (!date || !ZQExtendedAttributes::set(folder, syncDateAttribute, *date, &error)) {
        const QString text =
            zqFormat(QStringLiteral("OpenMeta error on trying to set the sync data on folder: %@ error: %@"),
                     {path, error.localizedDescription()});
        qCWarning(zqLogTags, "%s", qUtf8Printable(text));
    }
}

QString ZQSidebarWatchedFolder::typeString() const
{
    return zqLocalized("Live Folder");
}

ZQFetchRequest ZQSidebarWatchedFolder::contentRequest() const
{
    return {.entityName = ZQLibraryBaseItem::entityName(),
            .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("watchingFolder == %@ AND active == YES"),
                                                          {QVariant::fromValue(objectID())}),
            .sortDescriptors = {{QStringLiteral("title"), true, ZQSortDescriptor::Comparison::LocalizedStandard}}};
}

bool ZQSidebarWatchedFolder::containsItem(const ZQLibraryBaseItem *item) const
{
    return item && item->watchingFolder().get() == this;
}

bool ZQSidebarWatchedFolder::addItem(ZQLibraryBaseItem *item, quint32, bool, bool)
{
    if (!prepareToAddItem(item)) {
        return false;
    }
    item->setWatchingFolder(this);
    return true;
}

bool ZQSidebarWatchedFolder::addItems(const QList<ZQRef<ZQLibraryBaseItem>> &items, const QList<quint32> &, ZQError *)
{
    addEachItem(items);
    return true;
}

void ZQSidebarWatchedFolder::removeItems(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        if (containsItem(item.get())) {
            item->setWatchingFolder(nullptr);
        }
    }
}

bool zqIsSubFolder(const ZQSidebarBaseItem &item)
{
    const auto father = item.isWatchedFolder() ? item.father() : ZQRef<ZQSidebarBaseItem>();
    return father && father->isWatchedFolder();
}

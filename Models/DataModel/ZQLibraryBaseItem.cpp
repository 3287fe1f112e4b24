#include "Models/DataModel/ZQLibraryBaseItem.h"

#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQHiddenFile.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QFileInfo>

#include <algorithm>
#include <iterator>

namespace {

// What is called when the file of an item is found elsewhere.
std::function<void(const QString &path)> renewalOf(const ZQObjectID &item, const QByteArray &reference)
{
    return [item, reference](const QString &path) {
        const QByteArray renewed = zqDataForPersistentURL(path); // here, since it reads the file
        zqOnMainThread([item, reference, renewed] {
            if (!ZQLibraryEnvironment::current().fileOfItemDidMove(item, reference, renewed)) {
                zqTellPersistentURLAgain(reference);
            }
        });
    };
}

// What a live folder took out of sight returns with it; of a disabled one, and of one that came back and was not looked
// at since, all but what a person deleted.
bool mayGo(const ZQRef<ZQLibraryBaseItem> &item)
{
    const ZQRef<ZQSidebarWatchedFolder> folder = item->watchingFolder();
    const bool isInStep = folder && folder->is_enabled() && folder->lastSyncDate().isValid();
    if (!folder || (!folder->is_missing() && !folder->is_trashed() && isInStep)) {
        return true;
    }
    return !folder->is_missing() && !folder->is_trashed() &&
           (!folder->active() || zqIsHiddenByLibrary(item->findItemURL()));
}

} // namespace

ZQFetched<ZQLibraryBaseItem> ZQLibraryBaseItem::libraryItemsWithSHA1(const QString &SHA1,
                                                                     ZQManagedObjectContext &context)
{
    return zqFetch<ZQLibraryBaseItem>(context, QStringLiteral("SHA1 == %@"), {SHA1});
}

ZQFetched<ZQLibraryBaseItem> ZQLibraryBaseItem::libraryItemsForSHA1s(const QStringList &SHA1s,
                                                                     ZQManagedObjectContext &context)
{
    // In pieces, since one statement takes only so many values.
    constexpr qsizetype pieceSize = 500;
    QList<ZQRef<ZQLibraryBaseItem>> all;
    for (qsizetype start = 0; start < SHA1s.size(); start += pieceSize) {
        const auto piece =
            zqFetch<ZQLibraryBaseItem>(context, QStringLiteral("SHA1 in %@"), {SHA1s.mid(start, pieceSize)});
        if (!piece) {
            return std::nullopt;
        }
        all += *piece;
    }
    return all;
}

QList<ZQRef<ZQLibraryBaseItem>> ZQLibraryBaseItem::itemsWithIDs(const QList<ZQObjectID> &ids,
                                                                ZQManagedObjectContext &context)
{
    QList<ZQRef<ZQLibraryBaseItem>> items;
    items.reserve(ids.size());
    for (const ZQObjectID &id : ids) {
        if (auto item = zqCast<ZQLibraryBaseItem>(context.objectWithID(id))) {
            items.append(std::move(item));
        }
    }
    context.fillFaults(ids);
    // One without a row would say of itself that it is unrated, untagged and deleted.
    items.removeIf([](const ZQRef<ZQLibraryBaseItem> &item) { return item->isFault(); });
    return items;
}

ZQRef<ZQLibraryBaseItem> ZQLibraryBaseItem::libraryItemsForBundleID(const QString &bundleID,
                                                                    ZQManagedObjectContext &context)
{
    const auto items = zqFetch<ZQLibraryBaseItem>(context, QStringLiteral("bundleID == %@"), {bundleID});
    return items && !items->isEmpty() ? items->last() : ZQRef<ZQLibraryBaseItem>();
}

ZQPredicate ZQLibraryBaseItem::predicateFromDate(const QDateTime &fromDate, const QDateTime &)
{
    return ZQPredicate::predicateWithFormat(
        QStringLiteral("((import_date >= %@) OR (modification_date >= %@))  AND active == %@"),
        {fromDate, fromDate, true});
}

ZQFetched<ZQLibraryBaseItem> ZQLibraryBaseItem::libraryItemsFromDate(const QDateTime &fromDate, const QDateTime &toDate,
                                                                     ZQManagedObjectContext &context)
{
    return zqFetch<ZQLibraryBaseItem>(
        context, ZQFetchRequest{.entityName = entityName(), .predicate = predicateFromDate(fromDate, toDate)});
}

static QDateTime startOfDay(int daysAgo)
{
    return QDate::currentDate().addDays(-daysAgo).startOfDay().toUTC();
}

ZQFetched<ZQLibraryBaseItem>
ZQLibraryBaseItem::libraryItemsForTodayInManagedObjectContext(ZQManagedObjectContext &context)
{
    return libraryItemsFromDate(startOfDay(0), zqNow(), context);
}

ZQFetched<ZQLibraryBaseItem>
ZQLibraryBaseItem::libraryItemsForYesterdayInManagedObjectContext(ZQManagedObjectContext &context)
{
    return libraryItemsFromDate(startOfDay(1), zqNow(), context);
}

ZQFetched<ZQLibraryBaseItem>
ZQLibraryBaseItem::libraryItemsForLastHourInManagedObjectContext(ZQManagedObjectContext &context)
{
    return libraryItemsFromDate(zqNow().addSecs(-3600), zqNow(), context);
}

ZQFetched<ZQLibraryBaseItem>
ZQLibraryBaseItem::libraryItemsForLastWeekInManagedObjectContext(ZQManagedObjectContext &context)
{
    return libraryItemsFromDate(zqNow().addDays(-7), zqNow(), context);
}

std::optional<QStringList>
ZQLibraryBaseItem::permanentlyDeleteInactiveObjectinManagedObjectContext(ZQManagedObjectContext &context)
{
    const auto inactive = zqFetch<ZQLibraryBaseItem>(context, QStringLiteral("active == %@"), {false});
    if (!inactive) {
        return std::nullopt;
    }
    QList<ZQRef<ZQLibraryBaseItem>> gone;
    std::copy_if(inactive->begin(), inactive->end(), std::back_inserter(gone), mayGo);
    QStringList directories;
    const auto memberships = zqPrefetch(gone, QStringLiteral("projectsItems"));
    const auto tags = zqPrefetch(gone, QStringLiteral("tags"));
    lookForFiles(gone);
    for (const ZQRef<ZQLibraryBaseItem> &item : gone) {
        const QString bundleID = item->bundleID();
        if (item->deletePermanently() && !bundleID.isEmpty()) {
            directories.append(bundleID + itemDirectoryExtension);
        }
    }
    return directories;
}

QString ZQLibraryBaseItem::bundleURL() const
{
    const QString library = ZQLibraryEnvironment::current().libraryDirectory();
    return library.isEmpty() || bundleID().isEmpty() ? QString()
                                                     : library + QLatin1Char('/') + bundleID() + itemDirectoryExtension;
}

QString ZQLibraryBaseItem::managedItemURL() const
{
    const QString directory = bundleURL();
    if (directory.isEmpty() || title().isEmpty() || originalExtension().isEmpty()) {
        return {};
    }
    return directory + QLatin1Char('/') + title() + QLatin1Char('.') + originalExtension();
}

QString ZQLibraryBaseItem::itemURL() const
{
    if (managed()) {
        return managedItemURL();
    }
    const QByteArray reference = itemURLData();
    return reference.isEmpty() ? QString() : zqURLFromPersistentData(reference, renewalOf(objectID(), reference));
}

void ZQLibraryBaseItem::lookForFiles(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    QList<ZQPersistentURL> references;
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        const QByteArray reference = !item || item->managed() ? QByteArray() : item->itemURLData();
        if (!reference.isEmpty()) {
            references.append({reference, renewalOf(item->objectID(), reference)});
        }
    }
    zqLookForPersistentURLs(references);
}

QString ZQLibraryBaseItem::findItemURL() const
{
    return managed() ? managedItemURL() : zqFindPersistentURL(itemURLData());
}

QString ZQLibraryBaseItem::managedThumbURL() const
{
    const QString directory = bundleURL();
    return directory.isEmpty() || thumbName().isEmpty() ? QString() : directory + QLatin1Char('/') + thumbName();
}

QString ZQLibraryBaseItem::detailItemURL() const
{
    if (!hasRepresentationBitmap()) {
        return itemURL();
    }
    const QString directory = bundleURL();
    return directory.isEmpty() ? QString() : directory + QLatin1Char('/') + representationBitmapName;
}

QList<ZQRef<ZQSidebarBaseItem>> ZQLibraryBaseItem::projects() const
{
    QList<ZQRef<ZQSidebarBaseItem>> projects;
    for (const ZQRef<ZQProjectItem> &membership : projectsItems()) {
        if (auto project = membership->project()) {
            projects.append(project);
        }
    }
    return projects;
}

ZQRef<ZQProjectItem> ZQLibraryBaseItem::projectItemForSidebarItem(const ZQSidebarBaseItem *sidebarItem) const
{
    if (sidebarItem) {
        for (const ZQRef<ZQProjectItem> &membership : projectsItems()) {
            if (membership->projectKey() == sidebarItem->objectID().key) {
                return membership;
            }
        }
    }
    return {};
}

QList<ZQRef<ZQSidebarTag>> ZQLibraryBaseItem::itemTags() const
{
    QList<ZQRef<ZQSidebarTag>> active;
    for (const ZQRef<ZQSidebarTag> &tag : tags()) {
        if (tag->active()) {
            active.append(tag);
        }
    }
    return active;
}

QSet<ZQRef<ZQSidebarTag>> ZQLibraryBaseItem::itemTagsSet() const
{
    const auto list = itemTags();
    return {list.begin(), list.end()};
}

QStringList ZQLibraryBaseItem::userTagTitles() const
{
    QStringList titles;
    for (const auto &tag : itemTags()) {
        if (tag->isUserTag()) {
            titles.append(tag->title());
        }
    }
    titles.sort(Qt::CaseInsensitive);
    return titles;
}

QList<ZQRef<ZQSidebarBaseItem>> ZQLibraryBaseItem::sidebarItems() const
{
    QList<ZQRef<ZQSidebarBaseItem>> all = projects();
    for (const ZQRef<ZQSidebarTag> &tag : tags()) {
        all.append(tag);
    }
    if (auto folder = watchingFolder()) {
        all.append(folder);
    }
    return all;
}

ZQBitmap ZQLibraryBaseItem::renderRepresentationBitmap(const QString &, ZQError *) const
{
    return {};
}

QString ZQLibraryBaseItem::invalidImageMessage() const
{
    return QStringLiteral("file %@ is not a valid image");
}

ZQExportRepresentation ZQLibraryBaseItem::exportRepresentation() const
{
    const QString detail = detailItemURL();
    return {!detail.isEmpty() && QFileInfo::exists(detail) ? detail : thumbURL()};
}

ZQBitmap ZQLibraryBaseItem::exportImageRep(ZQError *error) const
{
    const ZQExportRepresentation representation = exportRepresentation();
    if (representation.path.isEmpty()) {
        zqSetError(error, ZQError::with(QStringLiteral("zelto.model"), 1,
                                        zqFormat(zqLocalized("The file of \"%@\" is missing."), {title()})));
        return {};
    }
    return representation.bitmap(error);
}

QString ZQLibraryBaseItem::pixelSizeString() const
{
    return pixelWidth() > 0 && pixelHeight() > 0 ? QStringLiteral("%1 × %2").arg(pixelWidth()).arg(pixelHeight())
                                                 : QString();
}

qint64 ZQLibraryBaseItem::byteSize() const
{
    const QString path = itemURL();
    return path.isEmpty() ? 0 : QFileInfo(path).size();
}

QString ZQLibraryBaseItem::description() const
{
    QString text = ZQManagedObject::description();
    for (const ZQRef<ZQProjectItem> &membership : projectsItems()) {
        const ZQRef<ZQSidebarBaseItem> project = membership->project();
        text += zqFormat(QStringLiteral("\n\n%@: %@"), {project ? project->title() : QString(), membership->order()});
    }
    return text;
}

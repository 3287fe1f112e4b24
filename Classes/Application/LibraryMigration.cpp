#include "Classes/Application/LibraryMigration.h"

#include "Classes/Application/CoreDataMigrationWindowController.h"
#include "Classes/Application/LibraryPlaces.h"
#include "Classes/Application/LibraryStore.h"
#include "Classes/Application/RatingFiller.h"
#include "Classes/Application/RunningParts.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QFileInfo>
#include <QTimeZone>

#include <algorithm>

namespace {

struct FixUp
{
    const char *version;
    const char *missing; // what it has not been done for
    bool findsFiles;     // resolves references, also those into live folders
    void (*apply)(ZQLibraryBaseItem &item);
};
constexpr FixUp fixUps[] = {
    {"Version6", "creation_date == nil", true,
     [](ZQLibraryBaseItem &item) {
         const QString path = zqFindPersistentURL(item.itemURLData());
         if (const auto dates = path.isEmpty() ? std::nullopt : zqFileDates(path)) {
             item.setCreation_date(QDateTime::fromMSecsSinceEpoch(dates->birth, Qt::UTC));
         }
     }},
    {"Version7", "thumbName == nil", false,
     [](ZQLibraryBaseItem &item) { item.setThumbName(item.title() + QStringLiteral("_thumb.png")); }},
};
constexpr qsizetype itemsPerSave = 1000;

// While it lives, files are also looked for in the root live folders, wherever those are by now.
class LiveFolderRoots
{
public:
    explicit LiveFolderRoots(ZQManagedObjectContext &context)
    {
        QStringList roots;
        const auto folders = ZQSidebarWatchedFolder::rootWatchedFoldersInManagedObjectContext(context);
        for (const auto &folder : folders.value_or(QList<ZQRef<ZQSidebarWatchedFolder>>())) {
            if (const QString path = folder->folderURL(); !path.isEmpty()) {
                roots.append(path);
            }
        }
        zqSetPersistentURLRoots(roots);
    }
    ~LiveFolderRoots() { zqSetPersistentURLRoots({}); }
    LiveFolderRoots(const LiveFolderRoots &) = delete;
    LiveFolderRoots &operator=(const LiveFolderRoots &) = delete;
};

// The items that were there before the migration and still lack it; nothing after an error, which was logged.
std::optional<QList<ZQObjectID>> itemsLacking(const FixUp &fixUp, ZQManagedObjectContext &context)
{
    ZQError error;
    auto ids = context.fetchObjectIDs(
        {ZQLibraryBaseItem::entityName(), ZQPredicate::predicateWithFormat(QLatin1String(fixUp.missing))}, &error);
    if (!ids) {
        zqLogFetchError(error);
        return std::nullopt;
    }
    const QString table = context.model().entity(ZQLibraryBaseItem::entityName())->root->tableName;
    const auto last = context.persistentStoreCoordinator()->lastKeyBeforeMigration(table);
    if (!last) {
        return std::nullopt;
    }
    ids->removeIf([last](const ZQObjectID &id) { return id.key > *last; });
    return ids;
}

bool applyTo(const QList<ZQObjectID> &batch, const FixUp &fixUp, ZQManagedObjectContext &context, ZQError *error)
{
    {
        QList<ZQRef<ZQManagedObject>> objects;
        for (const ZQObjectID &id : batch) {
            objects.append(context.objectWithID(id));
        }
        context.fillFaults(batch);
        for (const ZQRef<ZQManagedObject> &object : std::as_const(objects)) {
            if (const auto item = zqCast<ZQLibraryBaseItem>(object)) {
                fixUp.apply(*item);
            }
        }
        if (!context.save(error)) {
            return false;
        }
    }
    context.reset(); // a library of any size in the memory of one batch
    return true;
}

} // namespace

LibraryMigration::LibraryMigration(LibraryPlaces &places, LibraryStore &store, RunningParts &running)
    : m_places(places), m_store(store), m_running(running)
{
}

void LibraryMigration::checkModelMigration()
{
    const QString bundle = m_places.libraryBundleDirectory();
    const QString path = m_places.storePath();
    if (bundle.isEmpty() || !QFileInfo::exists(path)) {
        return;
    }
    const auto metadata = ZQPersistentStoreCoordinator::metadataForStoreAtPath(path);
    if (!metadata || (ZQPersistentStoreCoordinator::isModelCompatible(*m_store.managedObjectModel(), *metadata) &&
                      metadata->pendingVersions.isEmpty())) {
        return;
    }
    const auto coordinator = m_store.persistentStoreCoordinator();
    if (!coordinator) {
        return;
    }
    const QStringList pending = coordinator->pendingVersions().value_or(QStringList());
    for (const QString &version : pending) {
        if (!migrateToModelVersion(version)) {
            return; // it is still noted as pending, and the copy from before stays
        }
    }
}

bool LibraryMigration::migrateToModelVersion(const QString &version)
{
    const auto *fixUp = std::find_if(std::begin(fixUps), std::end(fixUps),
                                     [&](const FixUp &each) { return version == QLatin1String(each.version); });
    const auto coordinator = m_store.persistentStoreCoordinator();
    if (!coordinator) {
        return false;
    }
    if (fixUp == std::end(fixUps)) {
        return version == RatingFiller::version || coordinator->clearPendingVersion(version);
    }
    CoreDataMigrationWindowController window(m_running.userInteraction(), m_running.parts().isEndWanted);
    window.showWindow();
    ZQManagedObjectContext context(coordinator);
    const auto ids = itemsLacking(*fixUp, context);
    if (!ids) {
        return false;
    }
    const auto merging = context.observeDidSave([this](const ZQContextDidSave &saved) { m_store.mergeSaved(saved); });
    window.setMaximum(static_cast<double>(ids->size()));
    std::optional<LiveFolderRoots> roots;
    if (fixUp->findsFiles) {
        roots.emplace(context);
    }
    for (qsizetype first = 0; first < ids->size(); first += itemsPerSave) {
        const QList<ZQObjectID> batch = ids->mid(first, itemsPerSave);
        ZQError error;
        if (!applyTo(batch, *fixUp, context, &error)) {
            window.hideWindow();
            m_running.userInteraction().presentError(error);
            return false;
        }
        window.advanceBy(static_cast<double>(batch.size()));
        if (window.isCancelled() && first + itemsPerSave < ids->size()) {
            return false;
        }
    }
    return coordinator->clearPendingVersion(version);
}

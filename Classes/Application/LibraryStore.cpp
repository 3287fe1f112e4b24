#include "Classes/Application/LibraryStore.h"

#include "Classes/Application/BackupRecord.h"
#include "Classes/Application/CoreDataMigrationWindowController.h"
#include "Classes/Application/LibraryLock.h"
#include "Classes/Application/LibraryMove.h"
#include "Classes/Application/LibraryPlaces.h"
#include "Classes/Application/RunningParts.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQModel.h"

#include <QFileInfo>

LibraryStore::LibraryStore(LibraryPlaces &places, RunningParts &running) : m_places(places), m_running(running) {}

LibraryStore::~LibraryStore() = default;

std::shared_ptr<const ZQManagedObjectModel> LibraryStore::managedObjectModel()
{
    if (!m_model) {
        m_model = zqCurrentModel();
        Q_ASSERT_X(m_model, "managedObjectModel", "Managed object model is nil");
    }
    return m_model;
}

bool LibraryStore::lockLibrary(ZQError *error)
{
    const QString bundle = m_places.libraryBundleDirectory();
    if (!m_lock && !bundle.isEmpty()) {
        m_lock = LibraryLock::lockBundle(bundle, error);
        if (m_lock && !BackupRecord::noteOpening(bundle, error)) {
            m_lock.reset();
        }
        if (m_lock) {
            LibraryMove::removeInterruptedCopy(bundle);
        }
    }
    if (bundle.isEmpty()) {
        zqSetError(error, ZQError::with(LibraryLock::errorDomain, LibraryLock::NotWritable,
                                        zqFormat(zqLocalized("The library “%@” can't be created."),
                                                 {m_places.requestedBundleDirectory()}),
                                        zqLocalized("Check that its folder exists and can be written.")));
    }
    return m_lock != nullptr;
}

bool LibraryStore::open(ZQError *error)
{
    if (m_coordinator) {
        return true;
    }
    if (!lockLibrary(error)) {
        return false;
    }
    const QString path = m_places.storePath();
    ZQError opening;
    {
        std::optional<CoreDataMigrationWindowController> window; // a large library takes its time
        const auto metadata = QFileInfo::exists(path) ? ZQPersistentStoreCoordinator::metadataForStoreAtPath(path)
                                                      : std::optional<ZQStoreMetadata>();
        const auto model = managedObjectModel();
        const bool isSlow = metadata && ZQPersistentStoreCoordinator::opensSlowly(*model, path);
        if (isSlow || (metadata && !ZQPersistentStoreCoordinator::isModelCompatible(*model, *metadata))) {
            window.emplace(m_running.userInteraction(), m_running.parts().isEndWanted);
            window->showWindow();
        }
        const auto openIt = [&] { m_coordinator = ZQPersistentStoreCoordinator::open(model, path, {}, &opening); };
        if (isSlow) {
            window->showWhile(openIt);
        } else {
            openIt();
        }
    }
    const bool isDamaged =
        opening.domain == ZQStoreErrorDomain && opening.code == static_cast<int>(ZQStoreError::Damaged);
    if (!m_coordinator && isDamaged && offerRecovery(opening)) {
        m_coordinator = ZQPersistentStoreCoordinator::open(managedObjectModel(), path, {}, &opening);
    }
    if (!m_coordinator) {
        zqSetError(error, opening);
        return false;
    }
    return true;
}

std::shared_ptr<ZQPersistentStoreCoordinator> LibraryStore::persistentStoreCoordinator()
{
    ZQError error;
    if (!m_coordinator && !m_hasFailed && !open(&error)) {
        m_hasFailed = true; // presented once; every later call answers nothing
        m_wasCancelled = error.domain == ZQStoreErrorDomain && error.code == int(ZQStoreError::Cancelled);
        if (!error.isNull() && !m_wasCancelled) {
            m_running.userInteraction().presentError(error);
        }
    }
    return m_coordinator;
}

ZQManagedObjectContext *LibraryStore::managedObjectContext()
{
    if (m_context) {
        return m_context.get();
    }
    const bool failedBefore = m_hasFailed;
    const auto coordinator = persistentStoreCoordinator();
    if (!coordinator) {
        if (!failedBefore && !m_wasCancelled) {
            m_running.userInteraction().presentError(
                ZQError::with(QStringLiteral("YOUR_ERROR_DOMAIN"), 9999, zqLocalized("Failed to initialize the store"),
                              zqLocalized("There was an error building up the data file.")));
        }
        return nullptr;
    }
    m_context = std::make_unique<ZQManagedObjectContext>(coordinator, ZQMergePolicy::Error);
    return m_context.get();
}

void LibraryStore::saveAction()
{
    if (!m_context) {
        return;
    }
    if (m_running.window() && !m_running.window()->commitEditing()) {
        qCWarning(zqLogApplication).noquote()
            << zqFormat(QStringLiteral("%@:%@ unable to commit editing before saving"),
                        {QStringLiteral("tamberin_AppDelegate"), QStringLiteral("saveAction:")});
    }
    ZQError error;
    if (!m_context->save(&error)) {
        qCWarning(zqLogStore).noquote() << error.localizedDescription();
    }
}

void LibraryStore::mergeSaved(const ZQContextDidSave &notification)
{
    if (m_context) {
        m_context->mergeChangesFromContextDidSaveNotification(notification);
    }
}

std::optional<LibraryRecovery> LibraryStore::recoverLibrary(ZQError *error)
{
    if (m_coordinator) {
        zqSetError(error, ZQError::with(QStringLiteral("zelto.library"), 4, zqLocalized("The library is open."),
                                        zqLocalized("Quit Zelto, then recover it.")));
        return std::nullopt;
    }
    if (!lockLibrary(error)) {
        return std::nullopt;
    }
    const QString path = m_places.storePath();
    const auto report = ZQPersistentStoreCoordinator::recoverStoreAtPath(managedObjectModel(), path, error);
    return report ? std::optional(LibraryRecovery::of(*report, *managedObjectModel())) : std::nullopt;
}

bool LibraryStore::offerRecovery(const ZQError &damage)
{
    const bool isAgreed = damage.userInfo.value(QStringLiteral("recoveryWanted")).toBool();
    if (!isAgreed && m_running.userInteraction().ask(
                         {zqLocalized("The library is damaged"),
                          zqLocalized("Zelto can copy everything that can still be read into a new store. The damaged "
                                      "one is kept beside it."),
                          {zqLocalized("Recover"), zqLocalized("Cancel")},
                          {},
                          false}) != 0) {
        return false;
    }
    ZQError error;
    const auto recovery = recoverLibrary(&error);
    if (!recovery) {
        m_running.userInteraction().presentError(error);
        return false;
    }
    m_running.userInteraction().ask(
        {zqLocalized("The library was recovered"), recovery->text(), {zqLocalized("OK")}, {}, false});
    return true;
}

void LibraryStore::close()
{
    m_context.reset();
    m_coordinator.reset();
}

std::unique_ptr<LibraryLock> LibraryStore::takeLock()
{
    return std::move(m_lock);
}

void LibraryStore::unlock()
{
    m_lock.reset();
}

void LibraryStore::stayClosed()
{
    m_hasFailed = true;
}

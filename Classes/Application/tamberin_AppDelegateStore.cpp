// The store of the library: opening and saving.

#include "Classes/Application/CoreDataMigrationWindowController.h"
#include "Classes/Application/LibraryLock.h"
#include "Classes/Application/LibraryMove.h"
#include "Classes/Application/ModelEnvironment.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Models/DataModel/ZQModel.h"

#include <QFileInfo>

namespace {
const QString storeName = QStringLiteral("/storedata");
} // namespace

std::shared_ptr<const ZQManagedObjectModel> tamberin_AppDelegate::managedObjectModel()
{
    if (!m_model) {
        m_model = zqCurrentModel();
        Q_ASSERT_X(m_model, "managedObjectModel", "Managed object model is nil");
    }
    return m_model;
}

bool tamberin_AppDelegate::lockLibrary(ZQError *error)
{
    const QString bundle = libraryBundleDirectory();
    if (!m_lock && !bundle.isEmpty()) {
        m_lock = LibraryLock::lockBundle(bundle, error);
        if (m_lock) {
            LibraryMove::removeInterruptedCopy(bundle);
        }
    }
    if (bundle.isEmpty()) {
        zqSetError(error, ZQError::with(
                              LibraryLock::errorDomain, LibraryLock::NotWritable,
                              zqFormat(zqLocalized("The library “%@” can't be created."), {m_requestedBundleDirectory}),
                              zqLocalized("Check that its folder exists and can be written.")));
    }
    return m_lock != nullptr;
}

bool tamberin_AppDelegate::openStore(ZQError *error)
{
    if (m_coordinator) {
        return true;
    }
    if (!lockLibrary(error)) {
        return false;
    }
    const QString path = libraryBundleDirectory() + storeName;
    ZQError opening;
    {
        std::optional<CoreDataMigrationWindowController> window; // a large library takes its time
        const auto metadata = QFileInfo::exists(path) ? ZQPersistentStoreCoordinator::metadataForStoreAtPath(path)
                                                      : std::optional<ZQStoreMetadata>();
        const auto model = managedObjectModel();
        const bool isSlow = metadata && ZQPersistentStoreCoordinator::opensSlowly(*model, path);
        if (isSlow || (metadata && !ZQPersistentStoreCoordinator::isModelCompatible(*model, *metadata))) {
            window.emplace(userInteraction());
            window->showWindow();
        }
        const auto open = [&] { m_coordinator = ZQPersistentStoreCoordinator::open(model, path, {}, &opening); };
        if (isSlow) {
            window->showWhile(open);
        } else {
            open();
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

std::shared_ptr<ZQPersistentStoreCoordinator> tamberin_AppDelegate::persistentStoreCoordinator()
{
    ZQError error;
    if (!m_coordinator && !m_storeFailed && !openStore(&error)) {
        m_storeFailed = true; // presented once; every later call answers nothing
        if (!error.isNull()) {
            userInteraction().presentError(error);
        }
    }
    return m_coordinator;
}

ZQManagedObjectContext *tamberin_AppDelegate::managedObjectContext()
{
    if (m_context) {
        return m_context.get();
    }
    const bool failedBefore = m_storeFailed;
    const auto coordinator = persistentStoreCoordinator();
    if (!coordinator) {
        if (!failedBefore) {
            userInteraction().presentError(ZQError::with(QStringLiteral("YOUR_ERROR_DOMAIN"), 9999,
                                                         zqLocalized("Failed to initialize the store"),
                                                         zqLocalized("There was an error building up the data file.")));
        }
        return nullptr;
    }
    m_context = std::make_unique<ZQManagedObjectContext>(coordinator, ZQMergePolicy::Error);
    return m_context.get();
}

void tamberin_AppDelegate::removeManagedObjectContext()
{
    m_environment->closeTagFiles(); // the journal lies in the bundle, which is about to move
    stopStoreWork();
    m_context.reset();
    m_coordinator.reset();
    m_lock.reset();
    m_libraryBundleDirectory.clear();
    m_libraryDirectory.clear();
}

void tamberin_AppDelegate::saveAction()
{
    if (!m_context) {
        return;
    }
    if (m_mainWindowController && !m_mainWindowController->commitEditing()) {
        qCWarning(zqLogApplication).noquote()
            << zqFormat(QStringLiteral("%@:%@ unable to commit editing before saving"),
                        {QStringLiteral("tamberin_AppDelegate"), QStringLiteral("saveAction:")});
    }
    ZQError error;
    if (!m_context->save(&error)) {
        qCWarning(zqLogStore).noquote() << error.localizedDescription();
    }
}

// The store of the library: opening, migrating, repairing, saving, and what belongs to no item any more.

#include "Classes/Application/CoreDataMigrationWindowController.h"
#include "Classes/Application/LibraryLock.h"
#include "Classes/Application/LibraryMove.h"
#include "Classes/Application/ModelEnvironment.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQModel.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QTimeZone>

namespace {
QString storePath(const QString &bundle)
{
    return bundle + QStringLiteral("/storedata");
}

QString fetchErrorText(const ZQError &error)
{
    const QString description = error.localizedDescription();
    return zqFormat(QStringLiteral("Error while fetching\n%@"),
                    {description.isEmpty() ? QStringLiteral("Unknown Error") : description});
}
} // namespace

std::shared_ptr<const ZQManagedObjectModel> tamberin_AppDelegate::managedObjectModel()
{
    if (!m_model) {
        m_model = zqCurrentModel();
        Q_ASSERT_X(m_model, "managedObjectModel", "Managed object model is nil");
    }
    return m_model;
}

bool tamberin_AppDelegate::offerRecovery(const QString &path, const ZQError &damage)
{
    const int answer = userInteraction().ask(
        {zqLocalized("The library is damaged"),
         zqFormat(zqLocalized("%@ Zelto can copy everything that can still be read into a new store. "
                              "The damaged one is kept beside it."),
                  {damage.localizedDescription()}),
         {zqLocalized("Recover"), zqLocalized("Cancel")},
         {},
         false});
    if (answer != 0) {
        return false;
    }
    ZQError error;
    const std::optional<QString> kept =
        ZQPersistentStoreCoordinator::recoverStoreAtPath(managedObjectModel(), path, &error);
    if (!kept) {
        userInteraction().presentError(error);
    }
    return kept.has_value();
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
    const QString bundle = libraryBundleDirectory();
    ZQError opening;
    m_coordinator = ZQPersistentStoreCoordinator::open(managedObjectModel(), storePath(bundle), {}, &opening);
    const bool isDamaged =
        opening.domain == ZQStoreErrorDomain && opening.code == static_cast<int>(ZQStoreError::Damaged);
    if (!m_coordinator && isDamaged && offerRecovery(storePath(bundle), opening)) {
        m_coordinator = ZQPersistentStoreCoordinator::open(managedObjectModel(), storePath(bundle), {}, &opening);
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

void tamberin_AppDelegate::checkModelMigration()
{
    const QString bundle = libraryBundleDirectory();
    if (bundle.isEmpty() || !QFileInfo::exists(storePath(bundle))) {
        return;
    }
    const auto metadata = ZQPersistentStoreCoordinator::metadataForStoreAtPath(storePath(bundle));
    if (!metadata || ZQPersistentStoreCoordinator::isModelCompatible(*managedObjectModel(), *metadata)) {
        return;
    }
    const QStringList identifiers = managedObjectModel()->versionIdentifiers();
    if (!identifiers.isEmpty()) {
        migrateToModelVersion(identifiers.first());
    }
}

void tamberin_AppDelegate::migrateToModelVersion(const QString &version)
{
    struct FixUp
    {
        const char *version;
        void (*apply)(ZQLibraryBaseItem &item);
    };
    static constexpr FixUp fixUps[] = {
        {"Version6",
         [](ZQLibraryBaseItem &item) {
             const QString path = zqURLFromPersistentData(item.itemURLData());
             if (const auto dates = path.isEmpty() ? std::nullopt : zqFileDates(path)) {
                 item.setCreation_date(QDateTime::fromMSecsSinceEpoch(dates->birth, Qt::UTC));
             }
         }},
        {"Version7", [](ZQLibraryBaseItem &item) { item.setThumbName(item.title() + QStringLiteral("_thumb.png")); }},
    };

    for (const FixUp &fixUp : fixUps) {
        if (version != QLatin1String(fixUp.version)) {
            continue;
        }
        CoreDataMigrationWindowController window(userInteraction());
        window.showWindow();
        ZQManagedObjectContext *context = managedObjectContext();
        if (!context) {
            return;
        }
        ZQError error;
        const auto items = context->fetch<ZQLibraryBaseItem>({ZQLibraryBaseItem::entityName()}, &error);
        if (!items) {
            window.hideWindow();
            qCWarning(zqLogStore).noquote() << fetchErrorText(error);
            return;
        }
        window.setMaximum(static_cast<double>(items->size()));
        for (const ZQRef<ZQLibraryBaseItem> &item : *items) {
            fixUp.apply(*item);
            window.advance();
        }
        saveAction();
        window.hideWindow();
    }
}

void tamberin_AppDelegate::checkStoreAfterUncleanEnd()
{
    const auto coordinator = m_coordinator;
    if (!coordinator || !coordinator->wasUncleanlyClosed()) {
        return;
    }
    backgroundOperationQueue().addOperationWithBlock([coordinator] {
        const QStringList problems = coordinator->checkIntegrity();
        if (problems.isEmpty()) {
            return;
        }
        zqOnMainThread([problems] {
            if (tamberin_AppDelegate *delegate = sharedDelegate()) {
                delegate->userInteraction().presentError(ZQError::with(
                    ZQStoreErrorDomain, static_cast<int>(ZQStoreError::Damaged), zqLocalized("The library is damaged"),
                    zqFormat(zqLocalized("%@. Quit Zelto and open it again to recover what can be read."),
                             {problems.first()})));
            }
        });
    });
}

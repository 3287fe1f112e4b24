#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Persistence/ZQManagedObjectModel.h"

#include <QDateTime>
#include <QUuid>

#include <atomic>
#include <memory>
#include <optional>
#include <stop_token>

class ZQSQLiteConnection;

// What a store says of itself, readable without opening it as a store.
struct ZQStoreMetadata
{
    QUuid storeUUID;
    QStringList versionIdentifiers;
    QHash<QString, QByteArray> entityVersionHashes;
    QByteArray modelJSON;
    bool isFormKnown = true;     // false: versions, hashes or model could not be read
    QStringList pendingVersions; // see `ZQPersistentStoreCoordinator::pendingVersions`
};

struct ZQStoreOptions
{
    bool migratePersistentStoresAutomatically = true;
    bool inferMappingModelAutomatically = true;
};

enum class ZQStoreError {
    CannotOpen = 1,  // missing folder, permissions, not a database
    Damaged,         // the file is a database but does not pass its checks
    NewerVersion,    // made by a later version of the application
    NeedsMigration,  // older, and migration was not asked for
    MigrationFailed, // the old store is untouched
    Locked,          // another process writes and did not finish within the busy timeout
    DiskFull,
    ReadOnly,
    Conflict,   // a save met rows changed by others; `userInfo["conflicts"]` holds the identifiers
    Validation, // a required attribute was null
    Other,
    Cancelled, // a fetch that is not wanted any more; says nothing of the store
};
inline const QString ZQStoreErrorDomain = QStringLiteral("ZQStore");

// What a look for damage found. Sound is only what is complete and has no problems.
struct ZQStoreCheckResult
{
    QStringList problems;
    bool isComplete = false;
    bool isSound() const { return isComplete && problems.isEmpty(); }
};

// What a recovery brought back.
struct ZQStoreRecovery
{
    QString keptPath;                  // the damaged store, with its log beside it
    QHash<QString, qint64> rows;       // by the entity's name; by the table's for many-to-many relationships
    QHash<QString, qint64> unreadable; // by the root entity's name: at least so many
};

// One SQLite store and the way to its connections. Shared by the contexts of all threads; every function may be called
// from any thread.
class ZQPersistentStoreCoordinator : public std::enable_shared_from_this<ZQPersistentStoreCoordinator>
{
public:
    // Opens `path`, making an empty store when there is no file. An older store is migrated by inference inside one
    // transaction after a copy was put beside it (PATH.before-VERSION, which stays while
    // `pendingVersions` has any); a failed migration leaves it as it was. A store of a newer version is refused.
    // After an unclean end the store is looked at for about a second first, and refused as Damaged, unchanged, when
    // that finds something. What a killed recovery left is finished or removed, so nobody may be recovering it. The
    // thread's ZQCancellation ends a migration, which leaves the store as it was, and what comes behind it, which goes
    // on at the next opening. Null with `error` (domain ZQStoreErrorDomain).
    static std::shared_ptr<ZQPersistentStoreCoordinator> open(std::shared_ptr<const ZQManagedObjectModel> model,
                                                              const QString &path, const ZQStoreOptions &options = {},
                                                              ZQError *error = nullptr);
    ~ZQPersistentStoreCoordinator();

    // Reads a store's metadata without migrating or changing it. Nothing when `path` is no store.
    static std::optional<ZQStoreMetadata> metadataForStoreAtPath(const QString &path, ZQError *error = nullptr);
    static bool isModelCompatible(const ZQManagedObjectModel &model, const ZQStoreMetadata &metadata);
    // Whether `open` would first work through all of a large store, to migrate it or to make the indexes of the model.
    static bool opensSlowly(const ZQManagedObjectModel &model, const QString &path);

    // Looks for damage in a store that need not be one that can be opened. Linear in the store. Nobody may have it
    // open.
    static ZQStoreCheckResult checkStoreAtPath(const QString &path);
    // Copies what can be read of a damaged store into a new one, which takes its place; the damaged one is kept beside
    // it. A process killed meanwhile leaves one of the two at `path`, whole. Nothing, and nothing changed, after an
    // error.
    static std::optional<ZQStoreRecovery> recoverStoreAtPath(std::shared_ptr<const ZQManagedObjectModel> model,
                                                             const QString &path, ZQError *error = nullptr);

    const std::shared_ptr<const ZQManagedObjectModel> &managedObjectModel() const { return m_model; }
    QString path() const { return m_path; }
    QUuid storeUUID() const { return m_storeUUID; }
    // When this store's file was made: as a new store, by a recovery, or by being put here from a copy. What lies in
    // the bundle since before then may be known to a store that was lost, so later is the careful answer where it is
    // unsure.
    QDateTime creationDate() const { return m_creationDate; }
    // Whether this store is what a recovery could read of a damaged one, and what that cost was not seen to yet.
    bool wasRecovered() const { return m_wasRecovered; }
    bool clearRecovered(); // false: it could not be written, and is asked about again at the next launch

    // Whether the last process that wrote this store ended without closing it.
    bool wasUncleanlyClosed() const { return m_wasUnclean; }
    // Whether an unclean end, of whichever process, was not followed by a whole check yet.
    bool needsCheck() const { return m_needsCheck; }
    // The whole check, linear in the store; settles `needsCheck`. A store that fails is refused by the next `open`. A
    // stop, from any thread, ends it within moments without an answer.
    ZQStoreCheckResult check(const std::stop_token &stop = {});
    // Has the next `open` refuse the store with `userInfo["recoveryWanted"]`, when its check confirms the damage.
    void requestRecovery();
    // The problems it finds; an empty list is a sound store.
    QStringList checkIntegrity() { return check().problems; }

    // The versions this store was migrated past whose content is not filled in yet, oldest first. Noted in the
    // migration's own transaction. Nothing, of these three, when the note cannot be read: then whoever fills something
    // in must leave it pending.
    std::optional<QStringList> pendingVersions() const;
    // The last key of the table that rows had before it, 0 for none; what came later owes nothing.
    std::optional<qint64> lastKeyBeforeMigration(const QString &tableName) const;
    // How far filling in has come: the key of the last row done; 0 at first.
    std::optional<qint64> pendingProgress(const QString &version) const;
    // False: it was not written, and nothing changed.
    bool setPendingProgress(const QString &version, qint64 key);
    // Once what it brought is saved. With the last one the copies from before the migration go.
    bool clearPendingVersion(const QString &version);

    // For contexts: a connection of their own, with the functions registered and foreign keys on.
    std::unique_ptr<ZQSQLiteConnection> newConnection(ZQError *error = nullptr) const;
    // For contexts: a read met damage.
    void noteDamage() { m_isDamaged = true; }
    // For contexts, after a save, while they hold the lock: keeps the planner's statistics in step with the store.
    void noteSavedRows(ZQSQLiteConnection &connection, qsizetype rows) ZQ_REQUIRES(m_writeLock);
    // For contexts: held while a save writes, so that saves of one process queue instead of meeting the busy timeout.
    ZQMutex &writeLock() const ZQ_RETURN_CAPABILITY(m_writeLock) { return m_writeLock; }

private:
    ZQPersistentStoreCoordinator() = default;
    bool prepareStore(ZQSQLiteConnection &connection, const ZQStoreOptions &options, ZQError *error);
    bool bringUpToDate(ZQSQLiteConnection &connection, const ZQStoreMetadata &metadata, const ZQStoreOptions &options,
                       ZQError *error);
    // `otherwise` when no line has the name.
    std::optional<qint64> numberNamed(const QString &name, const QString &metadataKey,
                                      std::optional<qint64> otherwise) const;
    void removeNeedlessCopies(ZQSQLiteConnection &connection) const;
    bool checkAfterUncleanEnd(ZQSQLiteConnection &connection, ZQError *error);
    bool readOrigin(ZQSQLiteConnection &connection, ZQError *error);
    void markInUse(ZQSQLiteConnection &connection);

    std::shared_ptr<const ZQManagedObjectModel> m_model;
    QString m_path;
    QUuid m_storeUUID;
    QDateTime m_creationDate;
    std::atomic<bool> m_wasRecovered = false;
    bool m_wasUnclean = false;
    std::atomic<bool> m_needsCheck = false;
    std::atomic<bool> m_isDamaged = false;
    std::atomic<bool> m_isRecoveryWanted = false;
    bool m_isMarked = false;
    mutable ZQMutex m_writeLock;
    qint64 m_savedRows ZQ_GUARDED_BY(m_writeLock) = 0; // since the statistics were last looked at
};

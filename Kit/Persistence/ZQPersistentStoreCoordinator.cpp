#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"

#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Kit/Persistence/ZQStoreCheck.h"
#include "Kit/Persistence/ZQStoreIndexes.h"
#include "Kit/Persistence/ZQStoreInterruption.h"
#include "Kit/Persistence/ZQStoreMigration.h"
#include "Kit/Persistence/ZQStoreReplacement.h"
#include "Kit/Persistence/ZQStoreSchema.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>

namespace {

const QString inUseKey = QStringLiteral("inUseBy");
const QString uncleanMark = QStringLiteral("unclean");
const QString damagedMark = QStringLiteral("damaged");
const QString recoverMark = QStringLiteral("recover");

// "PID:START" of a running process, where START tells processes apart that got the same number; empty when none runs.
QString processMark(qint64 pid)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    const QByteArray stat = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    // The name in parentheses may hold blanks; the start time is the 20th field after it.
    const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    return fields.size() > 19 ? QStringLiteral("%1:%2").arg(pid).arg(QString::fromLatin1(fields.at(19))) : QString();
}

// `mark` is not empty.
bool isRunning(const QString &mark)
{
    return processMark(mark.section(u':', 0, 0).toLongLong()) == mark;
}

// When a file appeared at its place; now where the file system does not keep that.
QDateTime birthOfFile(const QString &path)
{
    struct statx info = {};
    if (::statx(AT_FDCWD, QFile::encodeName(path).constData(), 0, STATX_BTIME, &info) != 0 ||
        !(info.stx_mask & STATX_BTIME)) {
        return QDateTime::currentDateTimeUtc();
    }
    return QDateTime::fromMSecsSinceEpoch(qint64(info.stx_btime.tv_sec) * 1000 + info.stx_btime.tv_nsec / 1000000,
                                          Qt::UTC);
}

// The lines of an entry; nothing after an error, which is logged.
std::optional<QStringList> linesNoted(ZQSQLiteConnection &connection, const QString &key)
{
    const auto value = zqReadMetadata(connection, key);
    if (!value) {
        qCWarning(zqLogStore, "%s not read: %s", qUtf8Printable(key),
                  qUtf8Printable(connection.error().localizedDescription()));
        return std::nullopt;
    }
    return value->toString().split(u'\n', Qt::SkipEmptyParts);
}

void removeLinesNaming(const QString &name, QStringList &lines)
{
    lines.removeIf([&](const QString &line) { return line.startsWith(name + u'='); });
}

ZQError storeError(ZQStoreError code, const char *description, const char *advice, const QString &path)
{
    ZQError error = ZQError::with(ZQStoreErrorDomain, int(code), zqLocalized(description), zqLocalized(advice));
    error.userInfo.insert(QStringLiteral("path"), path);
    return error;
}

} // namespace

std::shared_ptr<ZQPersistentStoreCoordinator>
ZQPersistentStoreCoordinator::open(std::shared_ptr<const ZQManagedObjectModel> model, const QString &path,
                                   const ZQStoreOptions &options, ZQError *error)
{
    if (!model) {
        zqSetError(error, storeError(ZQStoreError::CannotOpen, zqKey("The library has no data model."),
                                     zqKey("Install the application again."), path));
        return nullptr;
    }
    if (!QFileInfo(QFileInfo(path).absolutePath()).isDir()) {
        zqSetError(error, storeError(ZQStoreError::CannotOpen, zqKey("The folder of the library does not exist."),
                                     zqKey("Connect the volume it is on, or choose another library."), path));
        return nullptr;
    }
    std::shared_ptr<ZQPersistentStoreCoordinator> coordinator(new ZQPersistentStoreCoordinator);
    coordinator->m_model = std::move(model);
    coordinator->m_path = path;
    zqFinishReplacingStore(path);
    if (QFileInfo::exists(path)) {
        zqRemoveUnfinishedRecovery(path);
    }
    const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::Create, error);
    if (!connection || !coordinator->prepareStore(*connection, options, error) ||
        !coordinator->readOrigin(*connection, error)) {
        return nullptr;
    }
    coordinator->markInUse(*connection);
    coordinator->removeNeedlessCopies(*connection); // a process may have ended before it came to that
    return coordinator;
}

bool ZQPersistentStoreCoordinator::prepareStore(ZQSQLiteConnection &connection, const ZQStoreOptions &options,
                                                ZQError *error)
{
    const auto failed = [&] {
        zqSetError(error, connection.error());
        return false;
    };
    const QVariant objects = connection.value(QStringLiteral("SELECT count(*) FROM sqlite_master"));
    if (!objects.isValid()) {
        return failed();
    }
    if (objects.toInt() == 0) {
        // The journal mode is kept in the file; it cannot change inside a transaction.
        connection.value(QStringLiteral("PRAGMA journal_mode=WAL"));
        ZQSQLiteTransaction transaction(connection);
        if (!transaction.isOpen()) {
            return failed();
        }
        const bool isEmpty = connection.value(QStringLiteral("SELECT count(*) FROM sqlite_master")).toInt() == 0;
        if (isEmpty && (!zqCreateStore(connection, *m_model, QUuid::createUuid()) || !transaction.commit())) {
            return failed();
        }
    }
    const std::optional<ZQStoreMetadata> metadata = zqReadStoreMetadata(connection, error);
    if (!metadata) {
        return false;
    }
    if (!metadata->isFormKnown) {
        return failed(); // or it would be taken for an older one, and migrated
    }
    m_storeUUID = metadata->storeUUID;
    if (!checkAfterUncleanEnd(connection, error)) {
        return false;
    }
    return bringUpToDate(connection, *metadata, options, error);
}

bool ZQPersistentStoreCoordinator::bringUpToDate(ZQSQLiteConnection &connection, const ZQStoreMetadata &metadata,
                                                 const ZQStoreOptions &options, ZQError *error)
{
    const ZQStoreInterruption interruption(connection);
    const bool isMigrated = !isModelCompatible(*m_model, metadata);
    if (isMigrated && !zqMigrateStore(connection, metadata, *m_model, options, error)) {
        return false;
    }
    // A store that cannot be written works without them.
    if (!zqUpdateIndexes(connection, *m_model) ||
        !(isMigrated ? zqGatherStatistics(connection, *m_model) : zqUpdateStatistics(connection, *m_model))) {
        qCInfo(zqLogStore, "indexes as they were: %s", qUtf8Printable(connection.error().localizedDescription()));
    }
    // What is committed stays; the rest is made at the next opening.
    if (ZQCancellation::isCurrentCancelled()) {
        zqSetError(error, zqStoreErrorForSQLite(SQLITE_INTERRUPT, {}, m_path));
        return false;
    }
    return true;
}

bool ZQPersistentStoreCoordinator::opensSlowly(const ZQManagedObjectModel &model, const QString &path)
{
    constexpr qint64 quickBytes = qint64(32) << 20;
    if (QFileInfo(path).size() < quickBytes) {
        return false;
    }
    const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::ReadOnly, nullptr);
    const auto metadata = connection ? zqReadStoreMetadata(*connection, nullptr) : std::nullopt;
    return metadata && (!isModelCompatible(model, *metadata) || !zqHasIndexes(*connection, model));
}

bool ZQPersistentStoreCoordinator::readOrigin(ZQSQLiteConnection &connection, ZQError *error)
{
    // A store put back from a backup says when it was first made; its file, when it came back. Between the two there
    // may have been items that only the lost store knew.
    const QDateTime birth = birthOfFile(m_path);
    const auto kept = zqReadMetadata(connection, zqCreatedKey);
    const auto recovered = kept ? zqReadMetadata(connection, zqRecoveredKey) : std::nullopt;
    if (!kept || !recovered) {
        zqSetError(error, connection.error()); // what may be removed depends on both
        return false;
    }
    if (kept->toLongLong() > 0) {
        m_creationDate = std::max(birth, QDateTime::fromMSecsSinceEpoch(kept->toLongLong(), Qt::UTC));
    } else {
        m_creationDate = birth;
        zqWriteMetadata(connection, zqCreatedKey, birth.toMSecsSinceEpoch());
    }
    m_wasRecovered = recovered->toLongLong() > 0;
    return true;
}

bool ZQPersistentStoreCoordinator::clearRecovered()
{
    const ZQLockGuard guard(m_writeLock);
    const auto connection = newConnection();
    if (!connection || !zqWriteMetadata(*connection, zqRecoveredKey, 0)) {
        return false;
    }
    m_wasRecovered = false;
    return true;
}

bool ZQPersistentStoreCoordinator::checkAfterUncleanEnd(ZQSQLiteConnection &connection, ZQError *error)
{
    const QString own = processMark(QCoreApplication::applicationPid());
    const auto user = zqReadMetadata(connection, inUseKey);
    const auto suspected = user ? zqReadMetadata(connection, zqSuspicionKey) : std::nullopt;
    if (!user || !suspected) {
        zqSetError(error, connection.error());
        return false;
    }
    const QString mark = user->toString();
    const QString suspicion = suspected->toString();
    m_wasUnclean = !mark.isEmpty() && mark != own && !isRunning(mark);
    if (!m_wasUnclean && suspicion.isEmpty()) {
        return true;
    }
    const ZQStoreCheckResult result = suspicion == damagedMark || suspicion == recoverMark
                                          ? zqCheckStore(connection, {})
                                          : zqCheckStoreQuickly(connection);
    m_needsCheck = !result.isComplete;
    if (result.problems.isEmpty()) {
        return true;
    }
    zqLogDamage(result.problems);
    ZQError damage = zqStoreErrorForSQLite(SQLITE_CORRUPT, result.problems.first(), m_path);
    damage.userInfo.insert(QStringLiteral("recoveryWanted"), suspicion == recoverMark);
    zqSetError(error, damage);
    return false;
}

void ZQPersistentStoreCoordinator::markInUse(ZQSQLiteConnection &connection)
{
    const QString own = processMark(QCoreApplication::applicationPid());
    // Before this process becomes the one whose end tells: the suspicion outlives an end that is proper.
    const QString suspicion = m_needsCheck ? uncleanMark : QStringLiteral("");
    const auto noted = zqReadMetadata(connection, zqSuspicionKey);
    const bool isKept =
        (noted && noted->toString() == suspicion) || zqWriteMetadata(connection, zqSuspicionKey, suspicion);
    m_isMarked = isKept && zqWriteMetadata(connection, inUseKey, own);
    if (m_isMarked) {
        return;
    }
    qCInfo(zqLogStore, "opened for reading: %s", qUtf8Printable(connection.error().localizedDescription()));
}

ZQPersistentStoreCoordinator::~ZQPersistentStoreCoordinator()
{
    if (!m_isMarked) {
        return;
    }
    const auto connection = ZQSQLiteConnection::open(m_path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
    if (!connection) {
        return;
    }
    if (!m_isDamaged) {
        zqUpdateStatistics(*connection, *m_model);
    }
    connection->value(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
    const QString suspicion = m_isRecoveryWanted ? recoverMark : damagedMark;
    if ((m_isDamaged || m_isRecoveryWanted) && !zqWriteMetadata(*connection, zqSuspicionKey, suspicion)) {
        return; // an end that looks unclean is checked as well
    }
    const auto user = zqReadMetadata(*connection, inUseKey);
    if (user && user->toString() == processMark(QCoreApplication::applicationPid())) {
        zqWriteMetadata(*connection, inUseKey, QString(QLatin1String("")));
    }
}

std::optional<ZQStoreMetadata> ZQPersistentStoreCoordinator::metadataForStoreAtPath(const QString &path, ZQError *error)
{
    if (!QFileInfo(path).isFile()) {
        zqSetError(error, storeError(ZQStoreError::CannotOpen, zqKey("There is no library database at this place."),
                                     zqKey("Choose another library."), path));
        return std::nullopt;
    }
    // A folder that cannot be written has no room for the shared index of the log; then the file is read as it is.
    for (const auto mode : {ZQSQLiteConnection::Mode::ReadOnly, ZQSQLiteConnection::Mode::Immutable}) {
        const auto connection = ZQSQLiteConnection::open(path, mode, error);
        if (!connection) {
            continue;
        }
        std::optional<ZQStoreMetadata> metadata = zqReadStoreMetadata(*connection, error);
        if (metadata || (connection->errorCode() & 0xFF) == 0) {
            return metadata;
        }
    }
    return std::nullopt;
}

bool ZQPersistentStoreCoordinator::isModelCompatible(const ZQManagedObjectModel &model, const ZQStoreMetadata &metadata)
{
    return model.entityVersionHashes() == metadata.entityVersionHashes;
}

ZQStoreCheckResult ZQPersistentStoreCoordinator::checkStoreAtPath(const QString &path)
{
    zqFinishReplacingStore(path);
    ZQError error;
    const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::ReadWrite, &error);
    if (!connection || !zqReadStoreMetadata(*connection, &error)) {
        return {{error.localizedDescription()}, true};
    }
    return zqCheckStore(*connection, {});
}

ZQStoreCheckResult ZQPersistentStoreCoordinator::check(const std::stop_token &stop)
{
    ZQError error;
    const auto connection = newConnection(&error);
    if (!connection) {
        return {{error.localizedDescription()}, false};
    }
    const ZQStoreCheckResult result = zqCheckStore(*connection, stop);
    if (!result.isComplete) {
        return result;
    }
    const bool isSettled = m_needsCheck && result.isSound() && !m_isDamaged;
    if (!result.isSound()) {
        noteDamage();
    }
    if (isSettled || !result.isSound()) {
        const ZQLockGuard guard(m_writeLock);
        if (zqWriteMetadata(*connection, zqSuspicionKey, isSettled ? QStringLiteral("") : damagedMark)) {
            m_needsCheck = !isSettled;
        }
    }
    return result;
}

void ZQPersistentStoreCoordinator::requestRecovery()
{
    m_isRecoveryWanted = true;
    const ZQLockGuard guard(m_writeLock);
    if (const auto connection = newConnection()) {
        zqWriteMetadata(*connection, zqSuspicionKey, recoverMark);
    }
}

std::optional<QStringList> ZQPersistentStoreCoordinator::pendingVersions() const
{
    const auto connection = newConnection();
    return connection ? linesNoted(*connection, zqPendingVersionsKey) : std::nullopt;
}

bool ZQPersistentStoreCoordinator::clearPendingVersion(const QString &version)
{
    const ZQLockGuard guard(m_writeLock);
    const auto connection = newConnection();
    if (!connection) {
        return false;
    }
    {
        ZQSQLiteTransaction transaction(*connection);
        auto pending = linesNoted(*connection, zqPendingVersionsKey);
        auto progress = linesNoted(*connection, zqProgressKey);
        if (!transaction.isOpen() || !pending || !progress) {
            return false;
        }
        pending->removeAll(version);
        removeLinesNaming(version, *progress);
        if (!zqWriteMetadata(*connection, zqPendingVersionsKey, pending->join(u'\n')) ||
            !zqWriteMetadata(*connection, zqProgressKey, progress->join(u'\n')) || !transaction.commit()) {
            return false;
        }
    }
    removeNeedlessCopies(*connection);
    return true;
}

std::optional<qint64> ZQPersistentStoreCoordinator::numberNamed(const QString &name, const QString &metadataKey,
                                                                std::optional<qint64> otherwise) const
{
    const auto connection = newConnection();
    const auto lines = connection ? linesNoted(*connection, metadataKey) : std::nullopt;
    if (!lines) {
        return std::nullopt;
    }
    for (const QString &line : *lines) {
        if (line.startsWith(name + u'=')) {
            bool isNumber = false;
            const qint64 number = line.mid(name.size() + 1).toLongLong(&isNumber);
            return isNumber ? std::optional(number) : std::nullopt;
        }
    }
    return otherwise;
}

std::optional<qint64> ZQPersistentStoreCoordinator::pendingProgress(const QString &version) const
{
    return numberNamed(version, zqProgressKey, 0);
}

std::optional<qint64> ZQPersistentStoreCoordinator::lastKeyBeforeMigration(const QString &tableName) const
{
    return numberNamed(tableName, zqLastKeysKey, std::nullopt);
}

bool ZQPersistentStoreCoordinator::setPendingProgress(const QString &version, qint64 key)
{
    const ZQLockGuard guard(m_writeLock);
    const auto connection = newConnection();
    if (!connection) {
        return false;
    }
    ZQSQLiteTransaction transaction(*connection);
    auto lines = linesNoted(*connection, zqProgressKey);
    if (!transaction.isOpen() || !lines) {
        return false;
    }
    removeLinesNaming(version, *lines);
    lines->append(QStringLiteral("%1=%2").arg(version).arg(key));
    return zqWriteMetadata(*connection, zqProgressKey, lines->join(u'\n')) && transaction.commit();
}

void ZQPersistentStoreCoordinator::removeNeedlessCopies(ZQSQLiteConnection &connection) const
{
    const auto pending = linesNoted(connection, zqPendingVersionsKey);
    const auto names = linesNoted(connection, zqPendingCopiesKey);
    if (!pending || !pending->isEmpty() || !names || names->isEmpty()) {
        return;
    }
    const QFileInfo store(m_path);
    bool areGone = true;
    for (const QString &name : *names) {
        // The list is read from a file: only what a migration itself names may go.
        if (name.startsWith(store.fileName() + QStringLiteral(".before-")) && !name.contains(u'/')) {
            const QString copy = store.absolutePath() + u'/' + name;
            areGone = (QFile::remove(copy) || !QFileInfo::exists(copy)) && areGone;
        }
    }
    if (areGone) {
        zqWriteMetadata(connection, zqPendingCopiesKey, QStringLiteral(""));
    }
}

void ZQPersistentStoreCoordinator::noteSavedRows(ZQSQLiteConnection &connection, qsizetype rows)
{
    constexpr qint64 rowsBetweenLooks = 10000;
    m_savedRows += rows;
    if (m_savedRows >= rowsBetweenLooks) {
        m_savedRows = 0;
        zqUpdateStatistics(connection, *m_model);
    }
}

std::unique_ptr<ZQSQLiteConnection> ZQPersistentStoreCoordinator::newConnection(ZQError *error) const
{
    return ZQSQLiteConnection::open(m_path, ZQSQLiteConnection::Mode::ReadWrite, error);
}

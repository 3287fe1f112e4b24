#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Kit/Persistence/ZQStoreMigration.h"
#include "Kit/Persistence/ZQStoreSchema.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

const QString inUseKey = QStringLiteral("inUseBy");

// "PID:START" of a running process, where START tells processes apart that got the same number; empty when none runs.
QString processMark(qint64 pid)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray stat = file.readAll();
    // The name in parentheses may hold blanks; the start time is the 20th field after it.
    const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    return fields.size() > 19 ? QStringLiteral("%1:%2").arg(pid).arg(QString::fromLatin1(fields.at(19))) : QString();
}

bool isRunning(const QString &mark)
{
    const qint64 pid = mark.section(u':', 0, 0).toLongLong();
    return pid > 0 && processMark(pid) == mark;
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
        zqSetError(error, storeError(ZQStoreError::CannotOpen, "The library has no data model.",
                                     "Install the application again.", path));
        return nullptr;
    }
    if (!QFileInfo(QFileInfo(path).absolutePath()).isDir()) {
        zqSetError(error, storeError(ZQStoreError::CannotOpen, "The folder of the library does not exist.",
                                     "Connect the volume it is on, or choose another library.", path));
        return nullptr;
    }
    std::shared_ptr<ZQPersistentStoreCoordinator> coordinator(new ZQPersistentStoreCoordinator);
    coordinator->m_model = std::move(model);
    coordinator->m_path = path;
    const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::Create, error);
    if (!connection || !coordinator->prepareStore(*connection, options, error)) {
        return nullptr;
    }
    coordinator->readOrigin(*connection);
    coordinator->markInUse(*connection);
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
    m_storeUUID = metadata->storeUUID;
    if (isModelCompatible(*m_model, *metadata)) {
        // Indexes are not part of a row's form, so a compatible model may want others. A store that cannot be written
        // works without them.
        if (!zqExecuteAll(connection, zqIndexStatements(*m_model))) {
            qCInfo(zqLogStore, "no indexes added: %s", qUtf8Printable(connection.error().localizedDescription()));
        }
        return true;
    }
    return zqMigrateStore(connection, *metadata, *m_model, options, error);
}

void ZQPersistentStoreCoordinator::readOrigin(ZQSQLiteConnection &connection)
{
    // A store put back from a backup says when it was first made; its file, when it came back. Between the two there
    // may have been items that only the lost store knew.
    const QDateTime birth = birthOfFile(m_path);
    const QVariant kept = zqReadMetadata(connection, zqCreatedKey);
    if (kept.toLongLong() > 0) {
        m_creationDate = std::max(birth, QDateTime::fromMSecsSinceEpoch(kept.toLongLong(), Qt::UTC));
    } else {
        m_creationDate = birth;
        zqWriteMetadata(connection, zqCreatedKey, birth.toMSecsSinceEpoch());
    }
    m_wasRecovered = zqReadMetadata(connection, zqRecoveredKey).toLongLong() > 0;
}

bool ZQPersistentStoreCoordinator::clearRecovered()
{
    const std::lock_guard guard(m_writeLock);
    const auto connection = newConnection();
    if (!connection || !zqWriteMetadata(*connection, zqRecoveredKey, 0)) {
        return false;
    }
    m_wasRecovered = false;
    return true;
}

void ZQPersistentStoreCoordinator::markInUse(ZQSQLiteConnection &connection)
{
    const QString own = processMark(QCoreApplication::applicationPid());
    const QString mark = zqReadMetadata(connection, inUseKey).toString();
    m_wasUnclean = !mark.isEmpty() && mark != own && !isRunning(mark);
    m_isMarked = zqWriteMetadata(connection, inUseKey, own);
    if (!m_isMarked) {
        qCInfo(zqLogStore, "opened for reading: %s", qUtf8Printable(connection.error().localizedDescription()));
    }
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
    connection->value(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
    if (zqReadMetadata(*connection, inUseKey).toString() == processMark(QCoreApplication::applicationPid())) {
        zqWriteMetadata(*connection, inUseKey, QString(QLatin1String("")));
    }
}

std::optional<ZQStoreMetadata> ZQPersistentStoreCoordinator::metadataForStoreAtPath(const QString &path, ZQError *error)
{
    if (!QFileInfo(path).isFile()) {
        zqSetError(error, storeError(ZQStoreError::CannotOpen, "There is no library database at this place.",
                                     "Choose another library.", path));
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

QStringList ZQPersistentStoreCoordinator::checkIntegrity() const
{
    ZQError error;
    const auto connection = newConnection(&error);
    if (!connection) {
        return {error.localizedDescription()};
    }
    QStringList problems;
    ZQSQLiteStatement check = connection->prepare(QStringLiteral("PRAGMA quick_check"));
    while (check.isValid() && check.next()) {
        if (check.text(0) != QStringLiteral("ok")) {
            problems.append(check.text(0));
        }
    }
    ZQSQLiteStatement references = connection->prepare(QStringLiteral("PRAGMA foreign_key_check"));
    while (references.isValid() && references.next()) {
        problems.append(QStringLiteral("%1 row %2 refers to a missing row of %3")
                            .arg(references.text(0), references.text(1), references.text(2)));
    }
    if (!check.isValid() || check.failed() || !references.isValid() || references.failed()) {
        problems.append(connection->error().localizedDescription());
    }
    return problems;
}

std::unique_ptr<ZQSQLiteConnection> ZQPersistentStoreCoordinator::newConnection(ZQError *error) const
{
    return ZQSQLiteConnection::open(m_path, ZQSQLiteConnection::Mode::ReadWrite, error);
}

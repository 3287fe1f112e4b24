#include "Kit/Persistence/ZQSQLiteConnection.h"

#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQObjectID.h"
#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"
#include "Kit/Persistence/ZQPredicate.h"

#include <QDateTime>
#include <QFileInfo>
#include <QUrl>

#include <sqlite3.h>

namespace {

constexpr int busyTimeoutMilliseconds = 5000;
constexpr qsizetype cachedStatements = 160;
// Each connection keeps so much of the file. A million items have some 4 MB of inner pages, which every look-up passes;
// with the leaves of a save of a thousand items that fits, and a save does not spill into the log before its end. What
// is more comes from the system's cache in microseconds. The file is not mapped instead: where its disk goes away, a
// mapping ends the process, reading is an error.
constexpr int cacheKibibytes = 8192;
constexpr int stepsBetweenChecks = 1000; // some tens of microseconds

thread_local bool isInCancellableStep = false;

struct Sentence
{
    int code;
    ZQStoreError error;
    const char *description;
    const char *advice;
};
constexpr Sentence sentences[] = {
    {SQLITE_BUSY, ZQStoreError::Locked, zqKey("The library is being written by another process."),
     zqKey("Wait until it has finished, then try again.")},
    {SQLITE_LOCKED, ZQStoreError::Locked, zqKey("The library is being written by another process."),
     zqKey("Wait until it has finished, then try again.")},
    {SQLITE_FULL, ZQStoreError::DiskFull, zqKey("There is not enough room on the disk to save."),
     zqKey("Free some space, then save again; nothing of your changes is lost.")},
    {SQLITE_READONLY, ZQStoreError::ReadOnly, zqKey("The library cannot be written."),
     zqKey("Check the permissions of its folder and whether the volume is mounted read-only.")},
    {SQLITE_PERM, ZQStoreError::ReadOnly, zqKey("The library cannot be written."),
     zqKey("Check the permissions of its folder and whether the volume is mounted read-only.")},
    {SQLITE_CORRUPT, ZQStoreError::Damaged, zqKey("The library's database is damaged."),
     zqKey("Recover it with `zelto recover`, or put back a copy from a backup.")},
    {SQLITE_NOTADB, ZQStoreError::Damaged, zqKey("The library's database is damaged from its first byte."),
     zqKey("Recover it with `zelto recover`, or put back a copy from a backup.")},
    {SQLITE_CANTOPEN, ZQStoreError::CannotOpen, zqKey("The library's database cannot be opened."),
     zqKey("Check that its folder exists and that you may read and write there.")},
    {SQLITE_INTERRUPT, ZQStoreError::Cancelled, zqKey("The request was cancelled."),
     zqKey("Ask again when it is needed.")},
    {SQLITE_IOERR, ZQStoreError::Other, zqKey("The disk reported an error while the library was used."),
     zqKey("Check that the volume is still connected and has room, then try again.")},
};

} // namespace

QString zqQuoted(const QString &name)
{
    return u'"' + QString(name).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

ZQError zqStoreErrorForSQLite(int code, const QString &message, const QString &path)
{
    const int primary = code & 0xFF;
    ZQError error = ZQError::with(ZQStoreErrorDomain, int(ZQStoreError::Other),
                                  zqLocalized("The library's database reported an error."), message);
    for (const Sentence &sentence : sentences) {
        if (sentence.code == primary) {
            error = ZQError::with(ZQStoreErrorDomain, int(sentence.error), zqLocalized(sentence.description),
                                  zqLocalized(sentence.advice));
            break;
        }
    }
    error.userInfo.insert(QStringLiteral("path"), path);
    error.userInfo.insert(QStringLiteral("sqliteCode"), code);
    error.userInfo.insert(QStringLiteral("sqliteMessage"), message);
    return error;
}

ZQSQLiteStatement::ZQSQLiteStatement(ZQSQLiteConnection *connection, sqlite3_stmt *statement, bool *inUse)
    : m_connection(connection), m_statement(statement), m_inUse(inUse)
{
}

ZQSQLiteStatement::ZQSQLiteStatement(ZQSQLiteStatement &&other) noexcept
    : m_connection(other.m_connection), m_statement(std::exchange(other.m_statement, nullptr)),
      m_inUse(std::exchange(other.m_inUse, nullptr)), m_code(other.m_code)
{
}

ZQSQLiteStatement &ZQSQLiteStatement::operator=(ZQSQLiteStatement &&other) noexcept
{
    if (this != &other) {
        finish();
        m_connection = other.m_connection;
        m_statement = std::exchange(other.m_statement, nullptr);
        m_inUse = std::exchange(other.m_inUse, nullptr);
        m_code = other.m_code;
    }
    return *this;
}

ZQSQLiteStatement::~ZQSQLiteStatement()
{
    finish();
}

void ZQSQLiteStatement::finish()
{
    if (!m_statement) {
        return;
    }
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
    if (m_inUse) {
        *m_inUse = false;
    } else {
        sqlite3_finalize(m_statement);
    }
    m_statement = nullptr;
}

void ZQSQLiteStatement::bind(int parameter, qint64 value)
{
    sqlite3_bind_int64(m_statement, parameter + 1, value);
}

void ZQSQLiteStatement::bind(int parameter, double value)
{
    sqlite3_bind_double(m_statement, parameter + 1, value);
}

void ZQSQLiteStatement::bind(int parameter, const QString &value)
{
    if (value.isNull()) {
        bindNull(parameter);
        return;
    }
    sqlite3_bind_text64(m_statement, parameter + 1, reinterpret_cast<const char *>(value.utf16()),
                        sqlite3_uint64(value.size()) * sizeof(char16_t), SQLITE_STATIC, SQLITE_UTF16);
}

void ZQSQLiteStatement::bind(int parameter, const QByteArray &value)
{
    if (value.isNull()) {
        bindNull(parameter);
        return;
    }
    sqlite3_bind_blob64(m_statement, parameter + 1, value.constData(), sqlite3_uint64(value.size()), SQLITE_STATIC);
}

void ZQSQLiteStatement::bindNull(int parameter)
{
    sqlite3_bind_null(m_statement, parameter + 1);
}

void ZQSQLiteStatement::bindVariant(int parameter, const QVariant &value)
{
    const int type = value.metaType().id();
    if (type == QMetaType::QString) {
        const QByteArray text = value.toString().toUtf8();
        sqlite3_bind_text64(m_statement, parameter + 1, text.constData(), sqlite3_uint64(text.size()), SQLITE_TRANSIENT,
                            SQLITE_UTF8);
    } else if (type == QMetaType::QByteArray) {
        const QByteArray bytes = value.toByteArray();
        sqlite3_bind_blob64(m_statement, parameter + 1, bytes.constData(), sqlite3_uint64(bytes.size()),
                            SQLITE_TRANSIENT);
    } else if (type == QMetaType::QDateTime) {
        value.toDateTime().isValid() ? bind(parameter, value.toDateTime().toMSecsSinceEpoch()) : bindNull(parameter);
    } else if (type == qMetaTypeId<ZQObjectID>()) {
        bind(parameter, value.value<ZQObjectID>().key);
    } else if (type == QMetaType::Double || type == QMetaType::Float) {
        bind(parameter, value.toDouble());
    } else if (value.isValid() && value.canConvert<qlonglong>()) {
        bind(parameter, value.toLongLong());
    } else {
        bindNull(parameter);
    }
}

void ZQSQLiteStatement::bindVariants(int firstParameter, const QVariantList &values)
{
    for (qsizetype i = 0; i < values.size(); ++i) {
        bindVariant(firstParameter + int(i), values.at(i));
    }
}

bool ZQSQLiteStatement::next()
{
    if (!m_statement) {
        m_code = SQLITE_MISUSE;
        return false;
    }
    const int code = m_connection->step(m_statement);
    m_code = code == SQLITE_ROW || code == SQLITE_DONE ? 0 : code;
    if (m_code) {
        m_connection->noteCode(m_code);
    }
    m_connection->m_rowsRead += code == SQLITE_ROW ? 1 : 0;
    return code == SQLITE_ROW;
}

bool ZQSQLiteStatement::run()
{
    while (next()) {
    }
    if (m_statement) {
        sqlite3_reset(m_statement);
    }
    return !failed();
}

int ZQSQLiteStatement::columnCount() const
{
    return sqlite3_column_count(m_statement);
}

bool ZQSQLiteStatement::isNull(int column) const
{
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

qint64 ZQSQLiteStatement::int64(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

double ZQSQLiteStatement::real(int column) const
{
    return sqlite3_column_double(m_statement, column);
}

QString ZQSQLiteStatement::text(int column) const
{
    if (isNull(column)) {
        return {};
    }
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    const int size = sqlite3_column_bytes(m_statement, column);
    return bytes && size > 0 ? QString::fromUtf8(bytes, size) : QStringLiteral("");
}

std::string_view ZQSQLiteStatement::utf8(int column) const
{
    const auto *bytes = m_statement ? sqlite3_column_text(m_statement, column) : nullptr;
    return bytes ? std::string_view(reinterpret_cast<const char *>(bytes),
                                    size_t(sqlite3_column_bytes(m_statement, column)))
                 : std::string_view();
}

std::string_view ZQSQLiteStatement::bytes(int column) const
{
    const void *bytes = m_statement ? sqlite3_column_blob(m_statement, column) : nullptr;
    return bytes ? std::string_view(static_cast<const char *>(bytes), size_t(sqlite3_column_bytes(m_statement, column)))
                 : std::string_view();
}

QByteArray ZQSQLiteStatement::blob(int column) const
{
    if (isNull(column)) {
        return {};
    }
    const auto *bytes = static_cast<const char *>(sqlite3_column_blob(m_statement, column));
    const int size = sqlite3_column_bytes(m_statement, column);
    return bytes && size > 0 ? QByteArray(bytes, size) : QByteArray("");
}

QVariant ZQSQLiteStatement::variant(int column) const
{
    switch (sqlite3_column_type(m_statement, column)) {
    case SQLITE_INTEGER:
        return QVariant::fromValue<qlonglong>(int64(column));
    case SQLITE_FLOAT:
        return real(column);
    case SQLITE_TEXT:
        return text(column);
    case SQLITE_BLOB:
        return blob(column);
    default:
        return {};
    }
}

std::unique_ptr<ZQSQLiteConnection> ZQSQLiteConnection::open(const QString &path, Mode mode, ZQError *error)
{
    for (const char *ending : {"", "-wal", "-shm", "-journal"}) {
        const QString file = path + QLatin1StringView(ending);
        if (const QFileInfo info(file); info.exists() && !info.isFile()) { // SQLite would wait for a pipe
            zqSetError(error, ZQError::with(ZQStoreErrorDomain, int(ZQStoreError::CannotOpen),
                                            zqLocalized("The library cannot be opened: there is something that is no "
                                                        "file in the place of one of its files."),
                                            file));
            return nullptr;
        }
    }
    std::unique_ptr<ZQSQLiteConnection> connection(new ZQSQLiteConnection);
    connection->m_path = path;
    int flags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_URI;
    const bool isWriter = mode == Mode::ReadWrite || mode == Mode::Create;
    flags |= isWriter ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY;
    flags |= mode == Mode::Create ? SQLITE_OPEN_CREATE : 0;
    QByteArray uri = QByteArrayLiteral("file:") + QUrl::toPercentEncoding(path, QByteArrayLiteral("/"));
    if (mode == Mode::Immutable) {
        uri += "?immutable=1";
    }
    const int code = sqlite3_open_v2(uri.constData(), &connection->m_handle, flags, nullptr);
    if (code != SQLITE_OK) {
        connection->noteCode(code);
        zqSetError(error, connection->error());
        return nullptr;
    }
    return connection->configure(isWriter, error) ? std::move(connection) : nullptr;
}

bool ZQSQLiteConnection::configure(bool isWriter, ZQError *error)
{
    sqlite3_extended_result_codes(m_handle, 1);
    sqlite3_busy_timeout(m_handle, busyTimeoutMilliseconds);
    // A file that came from elsewhere must not run functions through its schema.
    sqlite3_db_config(m_handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(m_handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(m_handle, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(m_handle, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    const int code = zqRegisterSQLFunctions(m_handle);
    // Settings that only matter to writers would read the schema, which a damaged file may not have.
    if (code == SQLITE_OK &&
        (!isWriter ||
         execute(QStringLiteral("PRAGMA foreign_keys=ON; PRAGMA synchronous=FULL; PRAGMA temp_store=MEMORY; "
                                "PRAGMA cache_size=-%1")
                     .arg(cacheKibibytes)))) {
        return true;
    }
    if (code != SQLITE_OK) {
        noteCode(code);
    }
    zqSetError(error, this->error());
    return false;
}

ZQSQLiteConnection::~ZQSQLiteConnection()
{
    for (const std::shared_ptr<Cached> &cached : std::as_const(m_cache)) {
        sqlite3_finalize(cached->statement);
    }
    sqlite3_close_v2(m_handle);
}

void ZQSQLiteConnection::setReadsAreCancellable(bool areCancellable)
{
    m_readsAreCancellable = areCancellable;
    const auto ask = [](void *) { return zqIsStatementCancelled() ? 1 : 0; };
    sqlite3_progress_handler(m_handle, areCancellable ? stepsBetweenChecks : 0, areCancellable ? +ask : nullptr,
                             nullptr);
}

// Not sqlite3_interrupt, which from another thread ends whatever the connection does by the time it comes.
int ZQSQLiteConnection::step(sqlite3_stmt *statement)
{
    const bool isCancellable = m_readsAreCancellable && !isInTransaction() && sqlite3_stmt_readonly(statement);
    isInCancellableStep = isCancellable;
    const int code = sqlite3_step(statement);
    // What was put in order after the cancellation is in none.
    const bool isVoid = (code == SQLITE_ROW || code == SQLITE_DONE) && zqIsStatementCancelled();
    isInCancellableStep = false;
    return isVoid ? SQLITE_INTERRUPT : code;
}

bool zqIsStatementCancelled()
{
    return isInCancellableStep && ZQCancellation::isCurrentCancelled();
}

void ZQSQLiteConnection::noteCode(int code)
{
    m_lastCode = code;
    m_lastMessage = m_handle ? QString::fromUtf8(sqlite3_errmsg(m_handle)) : QString::fromUtf8(sqlite3_errstr(code));
}

ZQError ZQSQLiteConnection::error() const
{
    return zqStoreErrorForSQLite(m_lastCode, m_lastMessage, m_path);
}

ZQSQLiteStatement ZQSQLiteConnection::prepare(const QString &sql)
{
    ++m_uses;
    std::shared_ptr<Cached> cached = m_cache.value(sql);
    if (cached && !cached->inUse) {
        cached->inUse = true;
        return {this, cached->statement, &cached->inUse};
    }
    sqlite3_stmt *statement = nullptr;
    const QByteArray text = sql.toUtf8();
    const int code = sqlite3_prepare_v3(m_handle, text.constData(), int(text.size()),
                                        cached ? 0 : SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    if (code != SQLITE_OK) {
        noteCode(code);
        qCWarning(zqLogStore, "%s: %s", qUtf8Printable(m_lastMessage), text.constData());
        return {};
    }
    if (cached) {
        return {this, statement, nullptr};
    }
    if (m_cache.size() >= cachedStatements) {
        trimCache();
    }
    cached = std::make_shared<Cached>(Cached{statement, true});
    m_cache.insert(sql, cached);
    return {this, statement, &cached->inUse};
}

void ZQSQLiteConnection::trimCache()
{
    m_cache.removeIf([](const auto &entry) {
        if (entry.value()->inUse) {
            return false;
        }
        sqlite3_finalize(entry.value()->statement);
        return true;
    });
}

bool ZQSQLiteConnection::execute(const QString &sql)
{
    ++m_uses;
    const int code = sqlite3_exec(m_handle, sql.toUtf8().constData(), nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) {
        noteCode(code);
    }
    return code == SQLITE_OK;
}

QVariant ZQSQLiteConnection::value(const QString &sql, const QVariantList &bindings)
{
    ZQSQLiteStatement statement = prepare(sql);
    statement.bindVariants(0, bindings);
    return statement.next() ? statement.variant(0) : QVariant();
}

int ZQSQLiteConnection::changedRows() const
{
    return sqlite3_changes(m_handle);
}

bool ZQSQLiteConnection::isInTransaction() const
{
    return !sqlite3_get_autocommit(m_handle);
}

bool ZQSQLiteConnection::hasDanglingReferences() const
{
    int dangling = 0;
    int highest = 0;
    sqlite3_db_status(m_handle, SQLITE_DBSTATUS_DEFERRED_FKS, &dangling, &highest, 0);
    return dangling != 0;
}

bool ZQSQLiteConnection::copyTo(const QString &path, ZQError *error)
{
    const auto target = open(path, Mode::Create, error);
    if (!target) {
        return false;
    }
    sqlite3_backup *backup = sqlite3_backup_init(target->m_handle, "main", m_handle, "main");
    int code = backup ? SQLITE_OK : sqlite3_errcode(target->m_handle);
    if (backup) {
        constexpr int pagesBetweenChecks = 4096;
        do {
            code = ZQCancellation::isCurrentCancelled() ? SQLITE_INTERRUPT
                                                        : sqlite3_backup_step(backup, pagesBetweenChecks);
        } while (code == SQLITE_OK);
        sqlite3_backup_finish(backup);
    }
    if (code != SQLITE_DONE) {
        zqSetError(error, zqStoreErrorForSQLite(code, QString::fromUtf8(sqlite3_errstr(code)), path));
        return false;
    }
    return true;
}

ZQSQLiteTransaction::ZQSQLiteTransaction(ZQSQLiteConnection &connection, Kind kind)
    : m_connection(connection),
      m_isOpen(connection.execute(kind == Kind::Write ? QStringLiteral("BEGIN IMMEDIATE") : QStringLiteral("BEGIN")))
{
}

ZQSQLiteTransaction::~ZQSQLiteTransaction()
{
    // Some failures (a full disk, a broken page) have taken the transaction back already.
    if (m_isOpen && m_connection.isInTransaction()) {
        sqlite3_exec(m_connection.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
    }
}

bool ZQSQLiteTransaction::commit()
{
    if (!m_isOpen || !m_connection.execute(QStringLiteral("COMMIT"))) {
        return false;
    }
    m_isOpen = false;
    return true;
}

#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QVariant>

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;
class ZQSQLiteConnection;

// One use of a prepared statement. Gives the statement back to its connection, reset, when it goes out of scope, so
// that no read transaction outlives the reading. Parameters and columns count from 0.
class ZQSQLiteStatement
{
public:
    ZQSQLiteStatement() = default;
    ZQSQLiteStatement(ZQSQLiteStatement &&other) noexcept;
    ZQSQLiteStatement &operator=(ZQSQLiteStatement &&other) noexcept;
    ~ZQSQLiteStatement();

    bool isValid() const { return m_statement != nullptr; }

    void bind(int parameter, qint64 value);
    void bind(int parameter, int value) { bind(parameter, qint64(value)); }
    void bind(int parameter, double value);
    void bind(int parameter, const QString &value); // null QString: NULL; the text must live until the statement ran
    void bind(int parameter,
              const QByteArray &value); // null QByteArray: NULL; the bytes must live until the statement ran
    void bindNull(int parameter);
    // Strings, bytes, numbers, booleans, dates (milliseconds since 1970), object identifiers (their key); others are
    // NULL. Copies.
    void bindVariant(int parameter, const QVariant &value);
    void bindVariants(int firstParameter, const QVariantList &values);

    // Steps to the next row; false at the end or after an error, which `failed` then tells.
    bool next();
    // Runs a statement without rows and makes it ready for other values. False after an error.
    bool run();
    bool failed() const { return m_code != 0; }

    int columnCount() const;
    bool isNull(int column) const;
    qint64 int64(int column) const;
    double real(int column) const;
    QString text(int column) const;
    std::string_view utf8(int column) const;  // the text as it is stored, until the next step
    std::string_view bytes(int column) const; // of a blob, until the next step
    QByteArray blob(int column) const;
    QVariant variant(int column) const; // by the stored class: qlonglong, double, QString, QByteArray or invalid

private:
    friend class ZQSQLiteConnection;
    ZQSQLiteStatement(ZQSQLiteConnection *connection, sqlite3_stmt *statement, bool *inUse);
    void finish();

    ZQSQLiteConnection *m_connection = nullptr;
    sqlite3_stmt *m_statement = nullptr;
    bool *m_inUse = nullptr; // null for a statement of its own
    int m_code = 0;
};

// A connection to one database file, with its prepared statements. One thread at a time.
class ZQSQLiteConnection
{
public:
    enum class Mode { ReadWrite, Create, ReadOnly, Immutable };

    // Foreign keys on, functions of predicates registered, five seconds of patience. Null with an error of the store's
    // domain.
    static std::unique_ptr<ZQSQLiteConnection> open(const QString &path, Mode mode, ZQError *error);
    ~ZQSQLiteConnection();
    ZQSQLiteConnection(const ZQSQLiteConnection &) = delete;
    ZQSQLiteConnection &operator=(const ZQSQLiteConnection &) = delete;

    // A statement for `sql`, from the cache when it was used before. Invalid after an error.
    ZQSQLiteStatement prepare(const QString &sql);
    bool execute(const QString &sql); // any number of statements without results worth reading
    // The first column of the first row; invalid when there is none or after an error.
    QVariant value(const QString &sql, const QVariantList &bindings = {});

    int changedRows() const;
    bool isInTransaction() const;
    // Whether the open transaction holds references to rows that do not exist (yet).
    bool hasDanglingReferences() const;
    // A consistent copy of the whole database; ends with the thread's ZQCancellation.
    bool copyTo(const QString &path, ZQError *error);

    // The last error as the store's: domain, code, and sentences that say what to do.
    ZQError error() const;
    int errorCode() const { return m_lastCode; }
    void noteCode(int code);

    // Whether statements that only read, outside of transactions, end with SQLITE_INTERRUPT once the thread's
    // ZQCancellation is cancelled. What writes never does. No by default: who works on after a cancellation reads on.
    void setReadsAreCancellable(bool areCancellable);

    int preparedUses() const { return m_uses; }    // how many statements ran; for tests of batching
    qint64 rowsRead() const { return m_rowsRead; } // that statements gave
    sqlite3 *handle() const { return m_handle; }
    QString path() const { return m_path; }

private:
    friend class ZQSQLiteStatement;
    ZQSQLiteConnection() = default;
    bool configure(bool isWriter, ZQError *error);
    void trimCache();
    int step(sqlite3_stmt *statement);

    struct Cached
    {
        sqlite3_stmt *statement = nullptr;
        bool inUse = false;
    };

    QString m_path;
    sqlite3 *m_handle = nullptr;
    QHash<QString, std::shared_ptr<Cached>> m_cache;
    int m_lastCode = 0;
    QString m_lastMessage;
    int m_uses = 0;
    bool m_readsAreCancellable = false;
    qint64 m_rowsRead = 0;
};

// Whether the thread is within a statement that was cancelled, so that what it still computes is thrown away.
bool zqIsStatementCancelled();

// A transaction that takes itself back unless it is committed.
class ZQSQLiteTransaction
{
public:
    enum class Kind { Read, Write };
    explicit ZQSQLiteTransaction(ZQSQLiteConnection &connection, Kind kind = Kind::Write);
    ~ZQSQLiteTransaction();
    ZQSQLiteTransaction(const ZQSQLiteTransaction &) = delete;
    ZQSQLiteTransaction &operator=(const ZQSQLiteTransaction &) = delete;

    bool isOpen() const { return m_isOpen; }
    bool commit();

private:
    ZQSQLiteConnection &m_connection;
    bool m_isOpen = false;
};

// A name as an SQL identifier.
QString zqQuoted(const QString &name);

// The store's error for an SQLite result code.
ZQError zqStoreErrorForSQLite(int code, const QString &message, const QString &path);

#include "Kit/Persistence/ZQStoreCheck.h"

#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"

#include <condition_variable>
#include <thread>

#include <sqlite3.h>

namespace {

constexpr int mostProblems = 20;
constexpr int samplesPerTable = 200;

bool isInterruption(const ZQSQLiteConnection &connection)
{
    return (connection.errorCode() & 0xFF) == SQLITE_INTERRUPT;
}

// Interrupts whatever a connection does once the time is over. A check of pages looks at nothing else.
class Alarm
{
public:
    Alarm(sqlite3 *handle, std::chrono::milliseconds patience)
        : m_thread([this, handle, latest = std::chrono::steady_clock::now() + patience] {
              const ZQLockGuard guard(m_lock);
              bool isInTime = true;
              while (!m_isOver && isInTime) {
                  isInTime = m_wake.waitUntil(m_lock, latest);
              }
              if (!m_isOver) {
                  m_rang = true;
                  sqlite3_interrupt(handle);
              }
          })
    {
    }
    ~Alarm()
    {
        {
            const ZQLockGuard guard(m_lock);
            m_isOver = true;
        }
        m_wake.notifyAll();
        m_thread.join();
    }
    Alarm(const Alarm &) = delete;
    Alarm &operator=(const Alarm &) = delete;
    bool rang() const { return m_rang; }

private:
    ZQMutex m_lock;
    ZQCondition m_wake;
    bool m_isOver ZQ_GUARDED_BY(m_lock) = false;
    std::atomic<bool> m_rang = false;
    std::thread m_thread; // last: it uses the others
};

QStringList tableNames(ZQSQLiteConnection &connection)
{
    QStringList names;
    ZQSQLiteStatement tables = connection.prepare(QStringLiteral(
        "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite%' ORDER BY name"));
    while (tables.isValid() && tables.next()) {
        names.append(tables.text(0));
    }
    return names;
}

// Runs `sql` to its end or to the interruption; false when the database could not be read.
bool reads(ZQSQLiteConnection &connection, const QString &sql, const QVariantList &bindings = {})
{
    ZQSQLiteStatement statement = connection.prepare(sql);
    if (!statement.isValid()) {
        return isInterruption(connection);
    }
    statement.bindVariants(0, bindings);
    while (statement.next()) {
    }
    return !statement.failed() || isInterruption(connection);
}

bool readsSamples(ZQSQLiteConnection &connection, const QString &table)
{
    const QString quoted = zqQuoted(table);
    const QVariant highest = connection.value(QStringLiteral("SELECT ifnull(max(\"id\"), 0) FROM ") + quoted);
    const qint64 last = highest.toLongLong();
    const QString next = QStringLiteral("SELECT * FROM %1 WHERE \"id\" >= ? ORDER BY \"id\" LIMIT 1").arg(quoted);
    for (int i = 0; i < samplesPerTable && last > 0; ++i) {
        if (!reads(connection, next, {last * i / samplesPerTable})) {
            return false;
        }
    }
    return highest.isValid() || isInterruption(connection);
}

bool hasKeys(ZQSQLiteConnection &connection, const QString &table)
{
    return connection
               .value(QStringLiteral("SELECT count(*) FROM pragma_table_info(?) WHERE name = 'id' AND pk = 1"), {table})
               .toInt() == 1;
}

QStringList unreadableTables(ZQSQLiteConnection &connection, const Alarm &alarm)
{
    QStringList problems;
    const auto note = [&](const QString &table) {
        problems.append(QStringLiteral("%1: %2").arg(table, QString::fromUtf8(sqlite3_errmsg(connection.handle()))));
    };
    const QStringList tables = tableNames(connection);
    for (const QString &table : tables) {
        if (hasKeys(connection, table) && !readsSamples(connection, table)) {
            note(table);
        }
    }
    for (const QString &table : tables) {
        if (problems.isEmpty() && !alarm.rang() &&
            !reads(connection, QStringLiteral("SELECT * FROM %1 NOT INDEXED").arg(zqQuoted(table)))) {
            note(table);
        }
    }
    return problems;
}

QStringList findings(ZQSQLiteConnection &connection)
{
    QStringList problems;
    ZQSQLiteStatement check = connection.prepare(QStringLiteral("PRAGMA integrity_check(%1)").arg(mostProblems));
    while (check.isValid() && check.next()) {
        if (check.text(0) != QStringLiteral("ok")) {
            problems.append(check.text(0));
        }
    }
    const bool isRead = check.isValid() && !check.failed();
    check = {};
    ZQSQLiteStatement references = connection.prepare(QStringLiteral("PRAGMA foreign_key_check"));
    while (references.isValid() && problems.size() < mostProblems && references.next()) {
        problems.append(QStringLiteral("%1 row %2 refers to a missing row of %3")
                            .arg(references.text(0), references.text(1), references.text(2)));
    }
    if (!isRead || !references.isValid() || references.failed()) {
        problems.append(connection.error().localizedDescription());
    }
    return problems;
}

} // namespace

ZQStoreCheckResult zqCheckStore(ZQSQLiteConnection &connection, const std::stop_token &stop)
{
    const std::stop_callback interrupt(stop, [handle = connection.handle()] { sqlite3_interrupt(handle); });
    if (stop.stop_requested()) {
        return {};
    }
    const QStringList problems = findings(connection);
    return stop.stop_requested() ? ZQStoreCheckResult() : ZQStoreCheckResult{problems, true};
}

ZQStoreCheckResult zqCheckStoreQuickly(ZQSQLiteConnection &connection, std::chrono::milliseconds patience,
                                       qint64 wholeBytes)
{
    const qint64 bytes = connection.value(QStringLiteral("PRAGMA page_count")).toLongLong() *
                         connection.value(QStringLiteral("PRAGMA page_size")).toLongLong();
    const Alarm alarm(connection.handle(), patience);
    QStringList problems = unreadableTables(connection, alarm);
    if (!problems.isEmpty() || bytes > wholeBytes || alarm.rang()) {
        return {problems, false};
    }
    problems = findings(connection);
    return alarm.rang() ? ZQStoreCheckResult() : ZQStoreCheckResult{problems, true};
}

void zqLogDamage(const QStringList &problems)
{
    // One problem may be many lines, of which the first names the database that is the only one here.
    QStringList lines = problems.join(u'\n').split(u'\n', Qt::SkipEmptyParts);
    lines.removeIf([](const QString &line) { return line.startsWith(QStringLiteral("*** in database")); });
    if (lines.isEmpty()) {
        return;
    }
    qCWarning(zqLogStore, "damaged: %s", qUtf8Printable(lines.takeFirst()));
    for (const QString &line : std::as_const(lines)) {
        qCDebug(zqLogStore, "damaged: %s", qUtf8Printable(line));
    }
}

#include "Classes/Import/ThumbGenerator.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Imaging/ZQImageSource.h"

#include <QFileInfo>
#include <QTemporaryFile>
#include <QUrl>

#include <sqlite3.h>

#include <chrono>
#include <memory>
#include <thread>

// An Acorn document is a database whose image attributes include the flattened picture.

namespace {

constexpr int maximumAttempts = 102;
constexpr std::chrono::microseconds pauseBetweenAttempts{50};
constexpr char compositeQuery[] = "select value from image_attributes where name = 'composite'";

struct DatabaseClose
{
    void operator()(sqlite3 *database) const { sqlite3_close(database); }
};
struct StatementFinalize
{
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, DatabaseClose>;
using Statement = std::unique_ptr<sqlite3_stmt, StatementFinalize>;

// "Immutable" keeps SQLite from making journal files beside the document, but passes over a log that holds its latest
// content; then it is opened in the ordinary way, still only for reading.
Database openDocument(const QString &path)
{
    const bool hasLog = QFileInfo(path + QStringLiteral("-wal")).size() > 0;
    QByteArray name = "file:" + QUrl::toPercentEncoding(QFileInfo(path).absoluteFilePath(), "/") + "?mode=ro";
    if (!hasLog) {
        name += "&immutable=1";
    }
    sqlite3 *database = nullptr;
    const int result = sqlite3_open_v2(name.constData(), &database, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr);
    Database owned(database);
    if (result != SQLITE_OK) {
        qCWarning(zqLogImport, "error opening!: %d", result);
        return nullptr;
    }
    return owned;
}

Statement prepareQuery(sqlite3 *database)
{
    for (int attempt = 0; attempt < maximumAttempts; ++attempt) {
        sqlite3_stmt *statement = nullptr;
        const int result = sqlite3_prepare_v2(database, compositeQuery, -1, &statement, nullptr);
        Statement owned(statement);
        if (result == SQLITE_OK) {
            return owned;
        }
        if (result != SQLITE_BUSY && result != SQLITE_LOCKED) {
            qCWarning(zqLogImport, "%s", sqlite3_errmsg(database));
            return nullptr;
        }
        std::this_thread::sleep_for(pauseBetweenAttempts);
    }
    qCWarning(zqLogImport, "Database too busy, returning nil data");
    return nullptr;
}

} // namespace

QByteArray ThumbGenerator::grabAcornCompositeDataAtPath(const QString &path)
{
    const Database database = openDocument(path);
    const Statement statement = database ? prepareQuery(database.get()) : nullptr;
    if (!statement || sqlite3_step(statement.get()) != SQLITE_ROW) {
        return {};
    }
    const void *blob = sqlite3_column_blob(statement.get(), 0);
    return QByteArray(static_cast<const char *>(blob), sqlite3_column_bytes(statement.get(), 0));
}

ZQBitmap ThumbGenerator::grabAcornBitmapImageRepAtPath(const QString &path, ZQError *error)
{
    const QByteArray composite = grabAcornCompositeDataAtPath(path);
    QTemporaryFile file;
    if (composite.isEmpty() || !file.open() || file.write(composite) != composite.size() || !file.flush()) {
        zqSetError(error, ZQError::with(QStringLiteral("zelto.import"), 2,
                                        zqFormat(zqLocalized("Acorn %@ is not a valid image"), {path})));
        return {};
    }
    return ZQImageSource::bitmapOfFile(file.fileName(), error);
}

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Imaging/Decoders/ZQImageDecoding.h"
#include "Kit/Imaging/Decoders/ZQImageFormat.h"
#include "Kit/Imaging/ZQRenderProtocol.h"

#include <sqlite3.h>

#include <array>
#include <chrono>
#include <memory>
#include <thread>

// An Acorn document is a database whose image attributes include the flattened picture. What its schema says is a
// stranger's program: only a plain table is read, in memory, with an end to the steps, the lengths and the memory.

namespace {

constexpr int maximumAttempts = 102;
constexpr std::chrono::microseconds pauseBetweenAttempts{50};
constexpr char compositeQuery[] = "select value from image_attributes where name = 'composite'";

constexpr sqlite3_int64 mostMemory = sqlite3_int64(512) << 20;
constexpr int stepsBetweenCalls = 1'000'000;
constexpr int mostCalls = 50; // the attributes of a real document take a few hundred steps

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

int stopAfterManySteps(void *calls)
{
    return ++*static_cast<int *>(calls) > mostCalls;
}

struct Setting
{
    int option;
    int value;
};

constexpr std::array configurations{Setting{SQLITE_DBCONFIG_DEFENSIVE, 1}, Setting{SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
                                    Setting{SQLITE_DBCONFIG_ENABLE_TRIGGER, 0},
                                    Setting{SQLITE_DBCONFIG_ENABLE_VIEW, 0}};
constexpr std::array limits{Setting{SQLITE_LIMIT_LENGTH, int(zqRenderMaximumBytes)},
                            Setting{SQLITE_LIMIT_EXPR_DEPTH, 100}, Setting{SQLITE_LIMIT_VDBE_OP, 25'000},
                            Setting{SQLITE_LIMIT_ATTACHED, 0}};

void restrict(sqlite3 *database, int &calls)
{
    sqlite3_hard_heap_limit64(mostMemory);
    for (const Setting &setting : configurations) {
        sqlite3_db_config(database, setting.option, setting.value, nullptr);
    }
    for (const Setting &setting : limits) {
        sqlite3_limit(database, setting.option, setting.value);
    }
    sqlite3_drop_modules(database, nullptr); // no virtual tables
    sqlite3_progress_handler(database, stepsBetweenCalls, stopAfterManySteps, &calls);
}

// The document's bytes as a database that nobody writes to. `bytes` and `calls` have to outlive it.
Database openDocument(ZQSourceFile::Bytes &bytes, int &calls)
{
    constexpr size_t headerBytes = 100;
    constexpr size_t writeVersion = 18;
    constexpr size_t readVersion = 19;
    uchar *const data = bytes.data();
    if (!data || bytes.size() < headerBytes) {
        return nullptr;
    }
    // A database in memory has no log beside it, so that one which would keep one has to be said not to.
    data[writeVersion] = 1;
    data[readVersion] = 1;
    sqlite3 *opened = nullptr;
    int result = sqlite3_open_v2(":memory:", &opened, SQLITE_OPEN_READWRITE, nullptr);
    Database database(opened);
    if (result == SQLITE_OK) {
        restrict(opened, calls);
        const auto size = sqlite3_int64(bytes.size());
        result = sqlite3_deserialize(opened, "main", data, size, size, SQLITE_DESERIALIZE_READONLY);
    }
    if (result != SQLITE_OK) {
        qCWarning(zqLogImaging, "error opening!: %d", result);
        return nullptr;
    }
    return database;
}

int prepareQuery(sqlite3 *database, Statement &out)
{
    int result = SQLITE_BUSY;
    for (int attempt = 0; attempt < maximumAttempts; ++attempt) {
        sqlite3_stmt *statement = nullptr;
        result = sqlite3_prepare_v2(database, compositeQuery, -1, &statement, nullptr);
        out.reset(statement);
        if (result != SQLITE_BUSY && result != SQLITE_LOCKED) {
            return result;
        }
        std::this_thread::sleep_for(pauseBetweenAttempts);
    }
    qCWarning(zqLogImaging, "Database too busy, returning nil data");
    return result;
}

ZQError errorForResult(int result, const QString &name)
{
    switch (result) {
    case SQLITE_INTERRUPT:
        return zqImagingError(ZQImagingErrorCode::TookTooLong, name, zqLocalized("It takes too long to read."));
    case SQLITE_TOOBIG:
    case SQLITE_NOMEM:
        return zqImagingError(ZQImagingErrorCode::TooMuchMemory, name,
                              zqLocalized("There is not enough memory to show it."));
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_CANTOPEN:
        return zqDamagedError(name);
    default:
        return zqImagingError(
            ZQImagingErrorCode::UnknownFormat, name,
            zqLocalized("It holds no picture of itself. Save it again in its own application and import it anew."));
    }
}

// The composite as a file of its own, under the document's name; not open, with `error` filled, when there is none.
ZQSourceFile compositeFile(const ZQSourceFile &document, ZQError *error)
{
    const QByteArray composite = zqAcornComposite(document, error);
    if (composite.isEmpty()) {
        return {};
    }
    ZQSourceFile file = ZQSourceFile::ofBytes(composite, document.name());
    // No document inside a document: they could go on for ever.
    if (zqImageFormatOfFile(file) == ZQImageFormat::Acorn) {
        zqSetError(error, zqDamagedError(document.name()));
        return {};
    }
    return file;
}

std::optional<ZQImageProperties> properties(const ZQSourceFile &document, ZQError *error)
{
    const ZQSourceFile file = compositeFile(document, error);
    return file.isOpen() ? zqPropertiesOfFile(file, error) : std::nullopt;
}

ZQBitmap decode(const ZQDecodeRequest &request, ZQError *error)
{
    if (request.frame > 0) {
        zqSetError(error, zqNoSuchFrameError(request.file.name(), request.frame));
        return {};
    }
    ZQDecodeRequest composite = request;
    composite.file = compositeFile(request.file, error);
    return composite.file.isOpen() ? zqDecodeFile(composite, error) : ZQBitmap();
}

} // namespace

QByteArray zqAcornComposite(const ZQSourceFile &file, ZQError *error)
{
    ZQSourceFile::Bytes bytes(file);
    int calls = 0;
    const Database database = openDocument(bytes, calls);
    Statement statement;
    int result = database ? prepareQuery(database.get(), statement) : SQLITE_NOTADB;
    if (result == SQLITE_OK) {
        result = sqlite3_step(statement.get());
    }
    const void *blob = result == SQLITE_ROW ? sqlite3_column_blob(statement.get(), 0) : nullptr;
    if (!blob) {
        const int failure = result == SQLITE_ROW ? sqlite3_errcode(database.get()) : result;
        qCDebug(zqLogImaging, "%s: %s", qUtf8Printable(file.name()), sqlite3_errstr(failure));
        zqSetError(error, errorForResult(failure, file.name()));
        return {};
    }
    return QByteArray(static_cast<const char *>(blob), sqlite3_column_bytes(statement.get(), 0));
}

const ZQDecoder zqAcornDecoder{properties, decode};

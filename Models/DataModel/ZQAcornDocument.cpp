#include "Models/DataModel/ZQAcornDocument.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Imaging/ZQImageSource.h"

#include <QTemporaryFile>

#include <sqlite3.h>

#include <chrono>
#include <memory>
#include <thread>

namespace {

constexpr int maximumAttempts = 102;
constexpr std::chrono::microseconds pauseBetweenAttempts(50);

struct Closer
{
    void operator()(sqlite3 *database) const { sqlite3_close(database); }
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, Closer>;
using Statement = std::unique_ptr<sqlite3_stmt, Closer>;

Statement prepareComposite(sqlite3 *database)
{
    for (int attempt = 0; attempt < maximumAttempts; ++attempt) {
        sqlite3_stmt *statement = nullptr;
        const int status = sqlite3_prepare_v2(database, "select value from image_attributes where name = 'composite'",
                                              -1, &statement, nullptr);
        if (status == SQLITE_OK) {
            return Statement(statement);
        }
        if (status != SQLITE_BUSY && status != SQLITE_LOCKED) {
            return nullptr;
        }
        std::this_thread::sleep_for(pauseBetweenAttempts);
    }
    qCWarning(zqLogImaging, "Database too busy, returning nil data");
    return nullptr;
}

} // namespace

std::optional<QByteArray> zqAcornCompositeData(const QString &path)
{
    sqlite3 *opened = nullptr;
    const int status = sqlite3_open_v2(path.toUtf8().constData(), &opened, SQLITE_OPEN_READONLY, nullptr);
    const Database database(opened);
    if (status != SQLITE_OK) {
        qCWarning(zqLogImaging, "error opening!: %d", status);
        return std::nullopt;
    }
    const Statement statement = prepareComposite(database.get());
    if (!statement || sqlite3_step(statement.get()) != SQLITE_ROW) {
        return std::nullopt;
    }
    const void *bytes = sqlite3_column_blob(statement.get(), 0);
    const int length = sqlite3_column_bytes(statement.get(), 0);
    if (!bytes || length <= 0) {
        return std::nullopt;
    }
    return QByteArray(static_cast<const char *>(bytes), length);
}

ZQBitmap zqAcornCompositeImage(const QString &path, ZQError *error)
{
    const auto data = zqAcornCompositeData(path);
    // Through a file, since the decoder takes only files: strangers' data is decoded in its worker.
    QTemporaryFile file;
    if (!data || !file.open() || file.write(*data) != data->size() || !file.flush()) {
        zqSetError(error,
                   ZQError::with(QStringLiteral("zelto.model"), 6,
                                 zqFormat(zqLocalized("\"%@\" holds no picture of itself. Save it again in its own "
                                                      "application and import it anew."),
                                          {path})));
        return {};
    }
    return ZQImageSource::bitmapOfFile(file.fileName(), error);
}

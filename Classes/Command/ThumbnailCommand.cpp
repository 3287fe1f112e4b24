#include "Classes/Application/LibraryLocation.h"
#include "Classes/Command/Commands.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageDestination.h"
#include "Kit/Imaging/ZQPreviewService.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QPainter>

#include <algorithm>
#include <optional>
#include <utility>

namespace {

constexpr qsizetype mostLookedAt = 4000; // item directories; a file manager waits
constexpr qsizetype mostTried = 16;      // of which a picture is drawn
constexpr qsizetype tiles = 4;

// The newest of those that are seen first, newest first.
QStringList newestItemDirectories(const QString &library)
{
    QList<std::pair<QDateTime, QString>> found;
    QDirIterator directories(library + QStringLiteral("/Library"), {QStringLiteral("*.ztlibraryitem")},
                             QDir::Dirs | QDir::NoSymLinks);
    while (directories.hasNext() && found.size() < mostLookedAt) {
        const QString path = directories.next();
        found.append({directories.fileInfo().lastModified(), path});
    }
    std::sort(found.begin(), found.end(), [](const auto &a, const auto &b) { return a.first > b.first; });
    QStringList out;
    for (const auto &entry : std::as_const(found)) {
        out.append(entry.second);
    }
    return out;
}

// The file that shows an item soonest.
QString pictureIn(const QString &directory)
{
    const QDir item(directory);
    for (const char *pattern : {"*_thumb.jpg", "*_thumb.png", "___itemBitmap.png", "*"}) {
        const QStringList names =
            item.entryList({QString::fromLatin1(pattern)}, QDir::Files | QDir::NoSymLinks, QDir::Name);
        if (!names.isEmpty()) {
            return item.filePath(names.first());
        }
    }
    return {};
}

QImage filling(const QImage &picture, int side)
{
    const QImage scaled = picture.scaled(side, side, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    return scaled.copy((scaled.width() - side) / 2, (scaled.height() - side) / 2, side, side);
}

ZQBitmap tiled(const QList<QImage> &pictures, int size)
{
    const int gap = std::max(1, size / 32);
    const int side = std::max(1, (size - gap) / 2);
    QImage out(size, size, QImage::Format_RGBA8888);
    out.fill(Qt::transparent);
    QPainter painter(&out);
    for (int i = 0; i < pictures.size(); ++i) {
        painter.drawImage((i % 2) * (size - side), (i / 2) * (size - side), filling(pictures.at(i), side));
    }
    return ZQBitmap(out);
}

// Without the store, which another process may have open, or a newer version may have written.
ZQBitmap pictureOfLibrary(const QString &library, int size, ZQError *error)
{
    QList<QImage> pictures;
    const QStringList newest = newestItemDirectories(library).mid(0, mostTried);
    for (const QString &directory : newest) {
        const QString picture = pictureIn(directory);
        const ZQBitmap bitmap =
            picture.isEmpty() ? ZQBitmap() : ZQPreviewService::previewOfFile(picture, QSize(size, size), error);
        if (!bitmap.isNull()) {
            pictures.append(bitmap.image());
        }
        if (pictures.size() == tiles) {
            break;
        }
    }
    return pictures.isEmpty()        ? ZQBitmap()
           : pictures.size() < tiles ? ZQBitmap(pictures.first()).scaledToFit(QSize(size, size))
                                     : tiled(pictures, size);
}

// Why nothing may be written there; nothing when it may.
std::optional<QString> refusal(const ThumbnailRequest &request, const QFileInfo &file, const QFileInfo &out)
{
    if (!file.exists()) {
        return zqFormat(zqLocalized("there is no file “%@”"), {request.file});
    }
    if (!out.exists() && !out.isSymLink()) {
        return std::nullopt;
    }
    if (!out.isFile() || (out.canonicalFilePath() == file.canonicalFilePath())) {
        return zqFormat(zqLocalized("“%@” can't be written over; name another file"), {request.out});
    }
    return request.force ? std::nullopt
                         : std::optional(zqFormat(zqLocalized("“%@” is there already; with --force it is replaced"),
                                                  {request.out}));
}

} // namespace

int zqRunThumbnail(const ThumbnailRequest &request, CommandContext &context)
{
    const QFileInfo file(context.absolutePath(request.file));
    const QFileInfo out(context.absolutePath(request.out));
    if (const auto refused = refusal(request, file, out)) {
        return context.fail(*refused);
    }
    const bool isLibrary = file.isDir() && file.fileName().endsWith(LibraryLocation::suffix, Qt::CaseInsensitive);
    const QSize box(request.size, request.size);
    ZQError error;
    const ZQBitmap picture =
        isLibrary ? pictureOfLibrary(file.absoluteFilePath(), request.size, &error)
                  : ZQPreviewService::previewOfFile(file.absoluteFilePath(), box, &error).scaledToFit(box);
    if (picture.isNull()) {
        return context.fail(error.isNull() ? zqFormat(zqLocalized("“%@” holds no picture yet"), {request.file})
                                           : error.localizedDescription());
    }
    return ZQImageDestination::writePNG(picture, out.absoluteFilePath(), &error)
               ? 0
               : context.fail(error.localizedDescription());
}

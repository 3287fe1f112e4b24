#include "Classes/Export/LayeredDocument.h"

#include "Classes/Export/PSDWriter.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQNewFile.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageSource.h"

#include <QFile>
#include <QFileInfo>

#include <unistd.h>

#include <cerrno>
#include <optional>
#include <utility>

namespace {

constexpr int firstTurned = 5; // from here on an orientation changes width and height

bool fail(LayeredDocument::Code code, const QString &description, ZQError *error, const QString &reason = {})
{
    zqSetError(error, ZQError::with(LayeredDocument::errorDomain, code, description, reason));
    return false;
}

bool alreadyThere(const QString &path, ZQError *error)
{
    return fail(LayeredDocument::AlreadyThere, zqFormat(zqLocalized("There is a file “%@” already."), {path}), error);
}

ZQBitmap bitmapOf(const LayeredPicture &picture, ZQError *error)
{
    ZQError reason;
    const ZQBitmap bitmap = ZQImageSource::bitmapOfFile(picture.path, &reason);
    if (bitmap.isNull() || bitmap.isIncomplete()) {
        const QString format = bitmap.isNull() ? zqLocalized("“%@” can't be read as a picture.")
                                               : zqLocalized("“%@” is damaged: only a part of the picture is there.");
        fail(LayeredDocument::CannotRead, zqFormat(format, {picture.path}), error, reason.localizedDescription());
        return {};
    }
    return bitmap;
}

std::optional<QByteArray> documentOf(const QList<LayeredPicture> &pictures, QSize canvas,
                                     const std::function<void()> &didAdd, ZQError *error)
{
    PSDWriter writer(canvas);
    for (const LayeredPicture &picture : pictures) {
        const ZQBitmap bitmap = ZQCancellation::isCurrentCancelled() ? ZQBitmap() : bitmapOf(picture, error);
        if (ZQCancellation::isCurrentCancelled()) {
            fail(LayeredDocument::Cancelled, zqLocalized("The export was cancelled."), error);
            return std::nullopt;
        }
        if (bitmap.isNull()) {
            return std::nullopt;
        }
        writer.addLayerWithCGImage(bitmap, picture.name, picture.opacity, picture.offset);
        if (didAdd) {
            didAdd();
        }
    }
    return writer.createPSDData();
}

bool writeNew(const QString &path, const QByteArray &document, ZQError *error)
{
    auto file = ZQNewFile::make(path, error);
    if (!file) {
        return false;
    }
    if (!zqWriteAll(file->descriptor(), document.constData(), document.size()) || fsync(file->descriptor()) != 0) {
        return zqFailWithErrno(error, QFile::encodeName(path));
    }
    ZQError failure;
    if (!file->place(&failure)) {
        zqSetError(error, failure);
        return failure.code == EEXIST ? alreadyThere(path, error) : false;
    }
    zqSyncFolder(QFileInfo(path).absolutePath());
    return true;
}

} // namespace

QSize LayeredDocument::largestSize(QList<LayeredPicture> &pictures, QStringList *leftOut)
{
    QSize largest(0, 0);
    QList<LayeredPicture> readable;
    for (const LayeredPicture &picture : std::as_const(pictures)) {
        ZQError error;
        const auto properties = ZQImageSource::propertiesOfFile(picture.path, &error);
        if (!properties) {
            if (leftOut) {
                leftOut->append(QStringLiteral("%1: %2").arg(picture.name, error.localizedDescription()));
            }
            continue;
        }
        QSize size(properties->pixelWidth, properties->pixelHeight);
        if (properties->orientation >= firstTurned) {
            size.transpose();
        }
        largest = largest.expandedTo(size);
        readable.append(picture);
    }
    pictures = readable;
    return largest;
}

bool LayeredDocument::write(const QList<LayeredPicture> &pictures, QSize canvas, const QString &path, bool replaces,
                            const std::function<void()> &didAdd, ZQError *error)
{
    const QFileInfo target(path);
    if (target.isDir() || (!replaces && (target.exists() || target.isSymLink()))) {
        return alreadyThere(path, error);
    }
    for (const LayeredPicture &picture : pictures) {
        const QString source = QFileInfo(picture.path).canonicalFilePath();
        if (!source.isEmpty() && source == target.canonicalFilePath()) {
            return fail(AlreadyThere, zqFormat(zqLocalized("“%@” is one of the layers: choose another name."), {path}),
                        error);
        }
    }
    try {
        if (const auto refused = PSDWriter::refusal(canvas, pictures.size())) {
            return fail(DoesNotFit, refused->reason(), error);
        }
        const auto document = documentOf(pictures, canvas, didAdd, error);
        if (!document) {
            return false;
        }
        return replaces ? zqWriteFileAtomically(path, *document, error) : writeNew(path, *document, error);
    } catch (const PSDException &refused) {
        return fail(DoesNotFit, refused.reason(), error);
    }
}

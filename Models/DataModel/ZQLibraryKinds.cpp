// How the kinds of library items are rendered, measured and exported.

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Imaging/ZQPreviewService.h"
#include "Models/DataModel/ZQLibraryAcorn.h"
#include "Models/DataModel/ZQLibraryEPS.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQLibraryPDF.h"
#include "Models/DataModel/ZQLibraryQuickLookImage.h"
#include "Models/DataModel/ZQLibrarySVG.h"
#include "Models/DataModel/ZQLibrarySketch.h"

#include <QDirIterator>
#include <QFileInfo>

namespace {

constexpr QSize previewBox(1000, 1000);

} // namespace

ZQExportRepresentation ZQLibraryImage::exportRepresentation() const
{
    const QString path = itemURL();
    if (path.isEmpty() || !QFileInfo::exists(path)) {
        return ZQLibraryBaseItem::exportRepresentation();
    }
    // Vector documents kept as images (AI) may need the preview service.
    return {path, ZQExportRepresentation::Drawing::PictureOrPreview};
}

ZQExportRepresentation ZQLibraryPDF::exportRepresentation() const
{
    const QString path = itemURL();
    if (path.isEmpty() || !QFileInfo::exists(path)) {
        return ZQLibraryBaseItem::exportRepresentation();
    }
    return {path, ZQExportRepresentation::Drawing::Page};
}

ZQBitmap ZQLibraryEPS::renderRepresentationBitmap(const QString &path, ZQError *error) const
{
    const ZQBitmap bitmap = ZQImageSource::bitmapOfFile(path);
    return bitmap.isNull() ? ZQPreviewService::previewOfFile(path, previewBox, error) : bitmap;
}

ZQBitmap ZQLibrarySVG::renderRepresentationBitmap(const QString &path, ZQError *error) const
{
    return ZQPreviewService::previewOfFile(path, previewBox, error);
}

QString ZQLibrarySVG::pixelSizeString() const
{
    return zqLocalized("vector");
}

ZQBitmap ZQLibraryQuickLookImage::renderRepresentationBitmap(const QString &path, ZQError *error) const
{
    return ZQPreviewService::previewOfFile(path, previewBox, error);
}

ZQBitmap ZQLibraryAcorn::renderRepresentationBitmap(const QString &path, ZQError *error) const
{
    return ZQImageSource::bitmapOfFile(path, error);
}

QString ZQLibrarySketch::detailItemURL() const
{
    const QString document = itemURL();
    const bool showsItself = document.isEmpty() || QFileInfo(document).isFile();
    return showsItself ? document : document + QStringLiteral("/QuickLook/Preview.png");
}

QString ZQLibrarySketch::pixelSizeString() const
{
    return zqLocalized("vector");
}

qint64 ZQLibrarySketch::folderSizeAtURL(const QString &path)
{
    const QFileInfo document(path);
    if (!document.isDir()) {
        return document.size();
    }
    qint64 bytes = 0;
    QDirIterator files(path, QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        files.next();
        bytes += files.fileInfo().size();
    }
    return bytes;
}

qint64 ZQLibrarySketch::byteSize() const
{
    const QString path = itemURL();
    return path.isEmpty() ? 0 : folderSizeAtURL(path);
}

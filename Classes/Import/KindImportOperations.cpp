#include "Classes/Import/KindImportOperations.h"

#include "Classes/Import/ThumbGenerator.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Imaging/ZQPreviewService.h"
#include "Models/DataModel/ZQLibraryAcorn.h"
#include "Models/DataModel/ZQLibraryEPS.h"
#include "Models/DataModel/ZQLibraryPDF.h"
#include "Models/DataModel/ZQLibraryQuickLookImage.h"
#include "Models/DataModel/ZQLibrarySVG.h"
#include "Models/DataModel/ZQLibrarySketch.h"

namespace {
constexpr QSize previewBox(1000, 1000);
}

QString PDFImportOperation::itemClass() const
{
    return ZQLibraryPDF::entityName();
}
QString QuickLookImportOperation::itemClass() const
{
    return ZQLibraryQuickLookImage::entityName();
}
QString SVGImportOperation::itemClass() const
{
    return ZQLibrarySVG::entityName();
}
QString EPSImportOperation::itemClass() const
{
    return ZQLibraryEPS::entityName();
}
QString AcornImportOperation::itemClass() const
{
    return ZQLibraryAcorn::entityName();
}
QString SketchImportOperation::itemClass() const
{
    return ZQLibrarySketch::entityName();
}

void QuickLookImportOperation::createRepresentationBitmap()
{
    ZQError error;
    const ZQBitmap bitmap = ZQPreviewService::previewOfFile(filePath(), previewBox, &error);
    if (writeRepresentationBitmap(bitmap, zqKey("file %@ is not a valid image"), error)) {
        m_fileData->insert({{QStringLiteral("pixelWidth"), bitmap.width()},
                            {QStringLiteral("pixelHeight"), bitmap.height()},
                            {QStringLiteral("pixelTotal"), qint64(bitmap.width()) * bitmap.height()}});
    }
}

void SVGImportOperation::createRepresentationBitmap()
{
    ZQError error;
    const ZQBitmap bitmap = ZQPreviewService::previewOfFile(filePath(), previewBox, &error);
    keepRepresentation(bitmap, zqKey("SVG %@ is not a valid image"), error);
}

void EPSImportOperation::createRepresentationBitmap()
{
    ZQError error;
    const ZQBitmap bitmap = ZQImageSource::bitmapOfFile(filePath(), &error);
    keepRepresentation(bitmap, zqKey("EPS %@ is not a valid image"), error);
}

void AcornImportOperation::createRepresentationBitmap()
{
    ZQError error;
    const ZQBitmap bitmap = ThumbGenerator::grabAcornBitmapImageRepAtPath(filePath(), &error);
    keepRepresentation(bitmap, zqKey("Acorn %@ is not a valid image"), error);
}

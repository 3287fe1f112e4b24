#include "Models/DataModel/ZQExportRepresentation.h"

#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Imaging/ZQPreviewService.h"

namespace {
constexpr QSize pageBox(2048, 2048);
} // namespace

ZQBitmap ZQExportRepresentation::preview(ZQError *error) const
{
    return ZQPreviewService::previewOfFile(path, pageBox, error);
}

ZQBitmap ZQExportRepresentation::bitmap(ZQError *error) const
{
    if (drawing == Drawing::Page) {
        return preview(error);
    }
    const ZQBitmap bitmap = ZQImageSource::bitmapOfFile(path, error);
    return bitmap.isNull() && drawing == Drawing::PictureOrPreview ? preview(error) : bitmap;
}

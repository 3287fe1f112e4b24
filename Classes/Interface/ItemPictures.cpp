#include "Classes/Interface/ItemPictures.h"

#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Imaging/ZQPreviewService.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

namespace ItemPictures {

ZQThumbnailRequest thumbnailOf(const ZQLibraryBaseItem &item)
{
    const QString thumb = item.thumbURL();
    if (!thumb.isEmpty()) {
        return {thumb, item.thumbVersion(), false};
    }
    const QString file = item.detailItemURL();
    return {file, item.thumbVersion(), true};
}

QImage pictureFor(const ZQThumbnailRequest &request, int pixels)
{
    const ZQBitmap made = request.isForeign ? ZQBitmap() : ZQImageSource::thumbnailOfFile(request.path, pixels);
    return made.isNull() ? ZQPreviewService::previewOfFile(request.path, QSize(pixels, pixels)).image() : made.image();
}

} // namespace ItemPictures

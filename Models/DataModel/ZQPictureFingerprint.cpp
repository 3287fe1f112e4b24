#include "Models/DataModel/ZQPictureFingerprint.h"

#include "Kit/Imaging/ZQBitmap.h"
#include "Kit/Imaging/ZQPalette.h"
#include "Kit/Imaging/ZQPictureHash.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

ZQPictureFingerprint ZQPictureFingerprint::of(const ZQBitmap &bitmap)
{
    ZQPictureFingerprint fingerprint;
    if (bitmap.isNull()) {
        return fingerprint;
    }
    if (const auto hash = ZQPictureHash::of(bitmap)) {
        fingerprint.pictureHash = hash->bytes();
    }
    fingerprint.palette = ZQPalette::of(bitmap).bytes();
    return fingerprint;
}

void ZQPictureFingerprint::applyTo(ZQLibraryBaseItem &item) const
{
    item.setPictureHash(pictureHash);
    item.setPalette(palette);
}

void ZQPictureFingerprint::removeFrom(ZQLibraryBaseItem &item)
{
    item.setPictureHash({});
    item.setPalette({});
}

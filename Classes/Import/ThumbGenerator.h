#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Imaging/ZQBitmap.h"
#include "Kit/Imaging/ZQImageSource.h"

#include <QByteArray>
#include <QString>

// Makes the thumbnails that item bundles keep, at most 512 pixels on the longer side. Any thread, several at once.
class ThumbGenerator
{
public:
    static constexpr int thumbnailSize = 512;

    // Whether the desktop shows files of this kind (by extension) well enough by itself.
    static bool willUseNativeQuicklookThumbnailForURL(const QString &path);

    // Makes the thumbnail of `path` in the directory `thumbDestinationPath` and answers where: "NAME_thumb.jpg" for
    // JPEG and camera raw, "NAME_thumb.png" otherwise. Empty, with `error` filled, when the file gives no picture. When
    // only writing fails, `error` is filled, there is no file, and the path is answered all the same. `madeBitmap`
    // receives the picture.
    static QString thumbPathForImageURL(const QString &path, const QString &thumbDestinationPath,
                                        ZQBitmap *madeBitmap = nullptr, ZQError *error = nullptr);
    // The same in two steps: the picture, along with what the file says of itself, and the file that is made of it.
    static ZQBitmap newThumbForImageURL(const QString &path, std::optional<ZQImageProperties> *properties,
                                        ZQError *error = nullptr);
    static QString writeThumb(const ZQBitmap &thumb, const QString &path, const QString &thumbDestinationPath,
                              ZQError *error = nullptr);

    // The makers by kind; null when the file gives no picture.
    static ZQBitmap newThumbForAIFileAtURL(const QString &path, ZQError *error = nullptr);
    static ZQBitmap newThumbForRawFileAtURL(const QString &path, ZQError *error = nullptr);
    static ZQBitmap newThumbForEPSFileAtURL(const QString &path, ZQError *error = nullptr);
    static ZQBitmap newThumbForSketchFileAtURL(const QString &path, ZQError *error = nullptr);
    static ZQBitmap newThumbForAcornFileAtURL(const QString &path, ZQError *error = nullptr);

    // The previews that documents carry, at their own size.
    static ZQBitmap sketchBitmapImageRepAtPath(const QString &path, ZQError *error = nullptr);
    static ZQBitmap grabAcornBitmapImageRepAtPath(const QString &path, ZQError *error = nullptr);
    // The encoded composite of an Acorn document, read without touching the document. Empty for none; why is logged.
    static QByteArray grabAcornCompositeDataAtPath(const QString &path);
};

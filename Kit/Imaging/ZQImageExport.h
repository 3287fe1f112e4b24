#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Imaging/ZQBitmap.h"

#include <QList>
#include <QSize>
#include <QSizeF>
#include <QString>

#include <optional>

// Pictures out: a file decoded, turned upright, brought to sRGB, scaled and encoded in one request to a worker process.
// No pixels cross: the worker writes the encoded picture into a file that the application made.

// The size asked for. Both empty: as it is.
struct ZQExportSize
{
    std::optional<double> percentage; // of both sides; above 100 enlarges
    std::optional<QSizeF> size;       // pixels; a side of 0 is not given; never enlarges; not used with a percentage
};

// The size in pixels that an upright picture of `pixels` gets, its ratio kept; nothing when it is not scaled.
std::optional<QSize> zqExportPixelSize(QSize pixels, const ZQExportSize &asked);

enum ZQImageFileType {
    TIFF = 0,
    BMP = 1,
    GIF = 2,
    JPEG = 3,
    PNG = 4,
    JPEG2000 = 5,
    WebP = 101,
    AVIF = 102,
    TIFFWithExtension = 103
};

struct ZQExportEncoding
{
    int fileType = PNG;         // a ZQImageFileType
    std::optional<int> quality; // 1 to 100, where the type has one; else, and for types without, what the encoder takes
    ZQExportSize size;
};

struct ZQExportedImage
{
    QSize pixelSize;
    bool isIncomplete = false;     // only a part of the picture was in its file; what is missing is empty
    bool isFirstOfSeveral = false; // frames or pages; the others were left out
    bool isReduced = false;        // to 8 bits a channel
};

QList<int> zqFileTypes(); // all that can be encoded, those first that people look for first
bool zqCanEncode(int fileType);
// What a number that is no type answers: nothing, an empty text, and false.
QString zqNameOfFileType(int fileType);      // "JPEG 2000", as people call it
QString zqExtensionOfFileType(int fileType); // "tif", "bmp", "gif", "jpg", "png", "jp2", "webp", "avif"
bool zqFileTypeNamesItself(int fileType);    // files get its extension; of others they keep the one they had
bool zqFileTypeHasQuality(int fileType);     // a person chooses one

// Writes sRGB, untagged and without metadata, of 8 bits; of a PNG or TIFF with 16 bits a channel a PNG or TIFF keeps
// them. The file is written beside `path` and takes that name only when it
// is whole, and never over a file that is there: that is an error of the domain "POSIX" with the code EEXIST, as a full
// disk is one with ENOSPC. Nothing is flushed to disk: whoever needs that calls `zqSyncFileSystem` once for all files.
// What is wrong with the picture is an error of the domain "zelto.imaging". Transparency goes white where the type has
// none (JPEG, BMP); GIF keeps it as on or off. Of a picture that ends too early comes what is there. Any thread,
// several at once. ZQCancellation ends it early, without a file.
std::optional<ZQExportedImage> zqExportImageFile(const QString &source, const ZQExportEncoding &encoding,
                                                 const QString &path, ZQError *error = nullptr);
// For a picture that is no file.
std::optional<ZQExportedImage> zqExportBitmap(const ZQBitmap &bitmap, const ZQExportEncoding &encoding,
                                              const QString &path, ZQError *error = nullptr);

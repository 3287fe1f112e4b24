#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Imaging/ZQBitmap.h"
#include "Kit/Imaging/ZQPackedPicture.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// What an image file says of itself, without decoding its pixels.
struct ZQImageProperties
{
    int pixelWidth = 0; // as stored, before orientation
    int pixelHeight = 0;
    int orientation = 1; // EXIF 1 to 8
    int bitsPerSample = 8;
    int dpi = 0;               // 0: not said
    int frameCount = 1;        // or pages
    QList<int> frameDurations; // milliseconds, one a frame; empty when the frames are no animation
    bool hasAlpha = false;
    bool isVector = false; // a drawing, sharp at any size
    QString colorModel;    // "RGB", "Gray", "CMYK", "Lab"
    QStringList keywords;  // IPTC "Keywords"
};

// An image file: its properties, and its pixels no larger than asked for. Reads JPEG, JPEG 2000, TIFF, GIF, PNG, ICNS,
// BMP, ICO, TGA, PSD, WebP, HEIC, AVIF, JPEG XL, AI (its PDF or PostScript part), Acorn and Sketch in one file (the
// picture they hold) and camera raw. The content decides how it is read, not the extension, except where a format has
// no mark.
//
// Orientation is applied, colours are converted to sRGB, 16-bit and CMYK come out as 8-bit RGB. Sizes are checked
// before memory is taken
// (`maximumPixels`). Any thread; several at once. Errors are of the domain "zelto.imaging" with a text a person
// understands.
class ZQImageSource
{
public:
    // A picture with more pixels than this is not decoded.
    static constexpr qint64 maximumPixels = qint64(1) << 31;

    // Header only; of PDF and SVG, too. Nothing when the file is no image that can be read.
    static std::optional<ZQImageProperties> propertiesOfFile(const QString &path, ZQError *error = nullptr);
    // The first frame (or `frame`), at most `maximumSize` pixels on the longer side (never enlarged).
    // `properties`, when given, receives what the file says of itself, also when it gives no picture: together they
    // take little more than one of them.
    static ZQBitmap thumbnailOfFile(const QString &path, int maximumSize, ZQError *error = nullptr, int frame = 0,
                                    std::optional<ZQImageProperties> *properties = nullptr);
    // At full size.
    static ZQBitmap bitmapOfFile(const QString &path, ZQError *error = nullptr, int frame = 0);

    // At full size, in planes that the worker packed: what of the upright picture is within the window.
    static std::optional<ZQPackedPicture> planesOfFile(const QString &path, const QRect &window,
                                                       ZQError *error = nullptr);

    // The encoded picture that a document (Acorn) holds of itself, as stored. Empty when it has none.
    static QByteArray embeddedPictureOfFile(const QString &path, ZQError *error = nullptr);

    // Extensions (lower case) of what the decoder reads, for open panels.
    static QStringList supportedExtensions();
    // Once per process, before threads; harmless again.
    static void initialize(const char *programName);
};

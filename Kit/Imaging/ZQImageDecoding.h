#pragma once

#include "Kit/Imaging/ZQBitmap.h"
#include "Kit/Imaging/ZQImageSource.h"

// What the decoders share. Private to this folder.

enum class ZQImagingErrorCode { CannotRead = 1, Empty, UnknownFormat, Damaged, TooBig, NoSuchFrame, ToolFailed };

// An error of the domain "zelto.imaging"; `reason` is a text a person understands.
ZQError zqImagingError(ZQImagingErrorCode code, const QString &path, const QString &reason);
ZQError zqDamagedError(const QString &path);
ZQError zqTooBigError(const QString &path, qint64 width, qint64 height);
ZQError zqNoSuchFrameError(const QString &path, int frame);

// What a picture may have when its codec needs all of it in memory, and what comes out at full size: 2 GiB of RGBA.
constexpr qint64 zqMaximumPixelsInMemory = qint64(1) << 29;

enum class ZQPaper { White, Transparent };

// What to decode and how large.
struct ZQDecodeRequest
{
    QString path;
    QSize box; // what the picture has to fit into; invalid: full size
    int frame = 0;
    bool fillBox = false; // a drawing (not a photograph) is enlarged to its box
    ZQPaper paper = ZQPaper::White;

    bool isFullSize() const { return !box.isValid(); }
};

// The size of `size` made to fit the request: never enlarged, at least one pixel a side.
QSize zqFittedSize(QSize size, const ZQDecodeRequest &request);

// Whether a picture of that size may be decoded; fills `error` when not.
bool zqCheckSize(const QString &path, qint64 width, qint64 height, qint64 limit, ZQError *error);

// One way of decoding. Both functions fill `error` when they fail.
struct ZQDecoder
{
    std::optional<ZQImageProperties> (*properties)(const QString &path, ZQError *error);
    ZQBitmap (*decode)(const ZQDecodeRequest &request, ZQError *error);
};

extern const ZQDecoder zqVipsDecoder;       // JPEG, PNG, GIF, TIFF, WebP, JPEG 2000
extern const ZQDecoder zqPDFDecoder;        // PDF, and AI files that hold one
extern const ZQDecoder zqSVGDecoder;        // used by the preview service only
extern const ZQDecoder zqPostScriptDecoder; // EPS, and AI files of old
extern const ZQDecoder zqIconDecoder;       // ICO and ICNS; frame 0 is the largest
extern const ZQDecoder zqBMPDecoder;
extern const ZQDecoder zqTGADecoder;
extern const ZQDecoder zqPSDDecoder;
extern const ZQDecoder zqRawDecoder;

// Decodes a file of any known format by its content.
ZQBitmap zqDecodeFile(const ZQDecodeRequest &request, ZQError *error);
// What a document is drawn on: artwork on nothing, pages on white.
ZQPaper zqPaperOfFile(const QString &path);

// Decodes an encoded picture (JPEG, PNG) held in memory, turned by `orientation`, or by its own when none is given.
ZQBitmap zqDecodeBytes(const QByteArray &bytes, QSize box, std::optional<int> orientation);
// `image` turned upright; orientations outside 1 to 8 change nothing.
QImage zqOrientedImage(const QImage &image, int orientation);
// Interleaved 8-bit CMYK (0: no ink) of width × 4 bytes a row → sRGB. Null when memory is short.
ZQBitmap zqBitmapOfCMYK(const QByteArray &pixels, QSize size);
// Interleaved 8-bit L, a, b as PSD stores them (a and b biased by 128).
ZQBitmap zqBitmapOfLab(const QByteArray &pixels, QSize size);

// IPTC keywords of a file; empty when there are none or the file cannot be read.
QStringList zqKeywordsOfFile(const QString &path);

#pragma once

#include "Kit/Imaging/Decoders/ZQSourceFile.h"
#include "Kit/Imaging/ZQBitmap.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Imaging/ZQImagingError.h"

// What the decoders share. They read files from strangers, so they run in the worker process only.

ZQError zqDamagedError(const QString &name);
ZQError zqTooBigError(const QString &name, qint64 width, qint64 height);
ZQError zqNoSuchFrameError(const QString &name, int frame);

// What a picture may have when its codec needs all of it in memory, and what comes out at full size: 2 GiB of RGBA.
constexpr qint64 zqMaximumPixelsInMemory = qint64(1) << 29;

enum class ZQPaper { White, Transparent };

// What to decode and how large.
struct ZQDecodeRequest
{
    ZQSourceFile file;
    QSize box; // what the picture has to fit into; invalid: full size
    int frame = 0;
    bool fillBox = false; // a drawing (not a photograph) is enlarged to its box
    ZQPaper paper = ZQPaper::White;

    bool isFullSize() const { return !box.isValid(); }
};

// The size of `size` made to fit the request: never enlarged, at least one pixel a side.
QSize zqFittedSize(QSize size, const ZQDecodeRequest &request);

// Whether a picture of that size may be decoded; fills `error` when not.
bool zqCheckSize(const QString &name, qint64 width, qint64 height, qint64 limit, ZQError *error);

// Whether what is there of a damaged picture is a part worth drawing: a hundredth of its rows. One whose header
// promises much more than its file holds is refused before memory is taken for it.
bool zqIsPartOfPicture(qint64 rows, qint64 height);

// One way of decoding. Both functions fill `error` when they fail. What of a damaged picture cannot be read is left
// empty, and the bitmap says that it is incomplete.
struct ZQDecoder
{
    std::optional<ZQImageProperties> (*properties)(const ZQSourceFile &file, ZQError *error);
    ZQBitmap (*decode)(const ZQDecodeRequest &request, ZQError *error);
};

extern const ZQDecoder zqVipsDecoder;       // JPEG, PNG, GIF, TIFF, WebP, JPEG 2000
extern const ZQDecoder zqHEIFDecoder;       // HEIC and AVIF: the primary picture, upright as the file has it
extern const ZQDecoder zqJPEGXLDecoder;     // upright as the file has it
extern const ZQDecoder zqPNGDecoder;        // what is plain and small directly, the rest as above
extern const ZQDecoder zqPDFDecoder;        // PDF, and AI files that hold one
extern const ZQDecoder zqSVGDecoder;        // used by the preview service only
extern const ZQDecoder zqPostScriptDecoder; // EPS, and AI files of old
extern const ZQDecoder zqIconDecoder;       // ICO and ICNS; frame 0 is the largest
extern const ZQDecoder zqBMPDecoder;
extern const ZQDecoder zqTGADecoder;
extern const ZQDecoder zqPSDDecoder;
extern const ZQDecoder zqRawDecoder;
extern const ZQDecoder zqAcornDecoder;  // the picture that the document holds of itself
extern const ZQDecoder zqSketchDecoder; // of a document that is a file: its preview

// What a file of any known format says of itself.
std::optional<ZQImageProperties> zqPropertiesOfFile(const ZQSourceFile &file, ZQError *error);
// Decodes a file of any known format by its content.
ZQBitmap zqDecodeFile(const ZQDecodeRequest &request, ZQError *error);
// The picture of a document within `box`, drawings filling it.
ZQBitmap zqPreviewOfFile(const ZQSourceFile &file, QSize box, int frame, ZQError *error);
// What a document is drawn on: artwork on nothing, pages on white.
ZQPaper zqPaperOfName(const QString &name);

// The encoded picture that an Acorn document holds of itself, as stored; empty, with `error` filled, when there is
// none.
QByteArray zqAcornComposite(const ZQSourceFile &file, ZQError *error);

// Decodes an encoded picture (JPEG, PNG) held in memory, turned by `orientation`, or by its own when none is given.
ZQBitmap zqDecodeBytes(const QByteArray &bytes, QSize box, std::optional<int> orientation);
// `image` turned upright; orientations outside 1 to 8 change nothing.
QImage zqOrientedImage(const QImage &image, int orientation);
// Interleaved 8-bit CMYK (0: no ink) of width × 4 bytes a row → sRGB. Null when memory is short.
ZQBitmap zqBitmapOfCMYK(const QByteArray &pixels, QSize size);
// Interleaved 8-bit L, a, b as PSD stores them (a and b biased by 128).
ZQBitmap zqBitmapOfLab(const QByteArray &pixels, QSize size);

// IPTC keywords of a file; empty when there are none or the file cannot be read.
QStringList zqKeywordsOfFile(const ZQSourceFile &source);

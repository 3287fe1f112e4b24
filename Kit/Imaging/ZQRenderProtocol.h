#pragma once

#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Imaging/ZQImageExport.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Imaging/ZQImagingError.h"

#include <QByteArray>
#include <QRect>
#include <QSize>

#include <chrono>
#include <optional>

// What the application and its worker processes say to each other: one message a question and one an answer, over a
// socket that keeps messages apart. Private to this folder. The reading side of an answer takes nothing for granted: a
// worker has read a file from a stranger.

// Descriptors that a worker is born with.
namespace ZQRenderDescriptor {
constexpr int socket = 3;
constexpr int area = 4;        // shared memory for pictures that fit
constexpr int thumbnailed = 5; // the file a worker for one thumbnailer may read
} // namespace ZQRenderDescriptor

constexpr qsizetype zqRenderAreaBytes = qsizetype(1024) * 1024 * 4;
constexpr qsizetype zqRenderMaximumMessage = 60000;
// What is believed of a picture: as much as libraries can say of a real one.
constexpr int zqRenderLongestSide = 10'000'000;
constexpr int zqRenderMostFrames = 100'000;
// What an encoded picture inside a document may have at most.
constexpr qint64 zqRenderMaximumBytes = qint64(256) << 20;
// What a picture may have at most: 2 GiB of RGBA.
constexpr qint64 zqRenderMaximumPixels = qint64(1) << 29;
// How a worker ends that ran out of memory, and one whose drawing program would not end.
constexpr int zqRenderExitOutOfMemory = 77;
constexpr int zqRenderExitTookTooLong = 78;

struct ZQRenderRequest
{
    enum class Kind { Properties, Bitmap, Preview, Thumbnailer, EmbeddedPicture, Export, Planes };

    Kind kind = Kind::Properties;
    QSize box; // invalid: full size
    int frame = 0;
    QString name;                   // of the file; its path for a thumbnailer
    bool withProperties = false;    // what the file says of itself comes with its picture, or with why there is none
    ZQExportEncoding encoding = {}; // Export; the file that it is written into comes after the one that is read
    QRect window = {};              // Planes: what of the upright picture is wanted; it may reach beyond
};

struct ZQRenderAnswer
{
    enum class Kind {
        Hello,
        Properties,
        PixelsInArea,
        PixelsInFile,
        Error,
        BytesInFile,
        Exported,
        CannotWrite,
        PlanesInFile
    };

    Kind kind = Kind::Error;
    ZQImageProperties properties;
    bool hasProperties = false;    // besides what the kind says
    QSize size;                    // of the picture
    bool isIncomplete = false;     // only a part of it could be drawn
    bool isFirstOfSeveral = false; // Exported: see ZQExportedImage
    bool isReduced = false;
    ZQImagingErrorCode code = ZQImagingErrorCode::Damaged;
    QString reason;
    bool hasThumbnailer = false; // an error, but a thumbnailer knows the kind
    bool restrictsFiles = true;  // Hello: what the system let the worker give up
    bool restrictsCalls = true;
    int systemError = 0; // CannotWrite: why the system refused
};

QByteArray zqEncode(const ZQRenderRequest &request);
std::optional<ZQRenderRequest> zqDecodeRequestMessage(const QByteArray &message);
QByteArray zqEncode(const ZQRenderAnswer &answer);
// Nothing when the message is no answer, or one that cannot be true.
std::optional<ZQRenderAnswer> zqDecodeAnswerMessage(const QByteArray &message);

// Sends a message, with the descriptors that are given. False, with errno, when the other side is gone.
bool zqSendMessage(int socket, const QByteArray &message, int descriptor = -1, int second = -1);

struct ZQRenderMessage
{
    QByteArray bytes; // empty: the other side is gone
    ZQFileDescriptor descriptor;
    ZQFileDescriptor second;
};
ZQRenderMessage zqReceiveMessage(int socket);

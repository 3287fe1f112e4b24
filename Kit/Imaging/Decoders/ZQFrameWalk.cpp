#include "Kit/Imaging/Decoders/ZQFrameWalk.h"
#include "Kit/Imaging/Decoders/ZQByteWalker.h"
#include "Kit/Imaging/Decoders/ZQJPEG2000Layout.h"

namespace {

quint64 colorTableBytes(uchar flags)
{
    return flags & 0x80 ? quint64(3) << ((flags & 7) + 1) : 0;
}

quint64 afterSubBlocks(ZQByteWalker &walker, quint64 at)
{
    while (const auto length = walker.value<uchar>(at)) {
        at += quint64(length) + 1;
    }
    return at + 1;
}

// A file without a trailer is whole when nothing that it begins is missing.
bool gifEndsEarly(ZQByteWalker &walker)
{
    constexpr quint64 headerBytes = 13;
    quint64 at = headerBytes + colorTableBytes(walker.value<uchar>(10));
    bool hasImage = false;
    while (!walker.isPastEnd()) {
        if (at == walker.size() && hasImage) {
            return false;
        }
        switch (walker.value<uchar>(at)) {
        case '!':
            at = afterSubBlocks(walker, at + 2);
            break;
        case ',':
            at = afterSubBlocks(walker, at + 11 + colorTableBytes(walker.value<uchar>(at + 9)));
            hasImage = true;
            break;
        default: // the trailer, or what no reader looks at
            return walker.isPastEnd();
        }
    }
    return true;
}

bool tiffEndsEarly(ZQByteWalker &walker)
{
    constexpr int mostPages = 100'000; // they may go round in a circle
    const bool big = walker.value<uchar>(0) == 'M';
    const bool isWide = walker.value<quint16>(2, big) == 43;
    quint64 at = isWide ? walker.value<quint64>(8, big) : walker.value<quint32>(4, big);
    for (int page = 0; page < mostPages && at != 0 && !walker.isPastEnd(); ++page) {
        const quint64 entries = isWide ? walker.value<quint64>(at, big) : walker.value<quint16>(at, big);
        if (entries > walker.size()) {
            return true;
        }
        at += isWide ? 8 + entries * 20 : 2 + entries * 12;
        at = isWide ? walker.value<quint64>(at, big) : walker.value<quint32>(at, big);
    }
    return walker.isPastEnd();
}

} // namespace

bool zqEndsBeforeLastFrame(const ZQSourceFile &file, ZQImageFormat format)
{
    if (format == ZQImageFormat::JPEG2000) {
        const std::optional<ZQJPEG2000Layout> layout = zqLayoutOfJPEG2000(ZQSourceFile::Bytes(file));
        return layout && !layout->isWhole;
    }
    if (format != ZQImageFormat::GIF && format != ZQImageFormat::TIFF) {
        return false;
    }
    const ZQSourceFile::Bytes bytes(file);
    ZQByteWalker walker(bytes.data(), bytes.size());
    return format == ZQImageFormat::GIF ? gifEndsEarly(walker) : tiffEndsEarly(walker);
}

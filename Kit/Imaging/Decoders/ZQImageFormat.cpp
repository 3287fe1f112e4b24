#include "Kit/Imaging/Decoders/ZQImageFormat.h"

#include <QByteArray>
#include <QFile>

#include <algorithm>
#include <array>
#include <string_view>

namespace {

using namespace std::string_view_literals;

struct Mark
{
    int offset;
    std::string_view bytes;
    ZQImageFormat format;
};

// In order: a more exact mark comes before a looser one.
constexpr std::array marks{
    Mark{0, "\xff\xd8\xff"sv, ZQImageFormat::JPEG},
    Mark{0, "\x89PNG\r\n\x1a\n"sv, ZQImageFormat::PNG},
    Mark{0, "GIF87a"sv, ZQImageFormat::GIF},
    Mark{0, "GIF89a"sv, ZQImageFormat::GIF},
    Mark{8, "WEBPVP8"sv, ZQImageFormat::WebP},
    Mark{0, "\0\0\0\x0cjP  \r\n\x87\n"sv, ZQImageFormat::JPEG2000},
    Mark{0, "\xff\x4f\xff\x51"sv, ZQImageFormat::JPEG2000},
    Mark{0, "\0\0\0\x0cJXL \r\n\x87\n"sv, ZQImageFormat::JPEGXL},
    Mark{0, "\xff\x0a"sv, ZQImageFormat::JPEGXL},
    Mark{0, "8BPS"sv, ZQImageFormat::PSD},
    Mark{0, "SQLite format 3\0"sv, ZQImageFormat::Acorn},
    Mark{0, "icns"sv, ZQImageFormat::ICNS},
    Mark{0, "%!PS"sv, ZQImageFormat::PostScript},
    Mark{0, "\xc5\xd0\xd3\xc6"sv, ZQImageFormat::PostScript},
    Mark{0, "FUJIFILMCCD-RAW"sv, ZQImageFormat::CameraRaw},
    Mark{0, "IIRO"sv, ZQImageFormat::CameraRaw},
    Mark{0, "IIRS"sv, ZQImageFormat::CameraRaw},
    Mark{0, "MMOR"sv, ZQImageFormat::CameraRaw},
    Mark{0, "IIU\0"sv, ZQImageFormat::CameraRaw},
    Mark{0, "\0MRM"sv, ZQImageFormat::CameraRaw},
    Mark{0, "FOVb"sv, ZQImageFormat::CameraRaw},
    Mark{4, "ftypcrx "sv, ZQImageFormat::CameraRaw},
    Mark{6, "HEAPCCDR"sv, ZQImageFormat::CameraRaw},
    Mark{0, "II*\0"sv, ZQImageFormat::TIFF},
    Mark{0, "MM\0*"sv, ZQImageFormat::TIFF},
    Mark{0, "II+\0"sv, ZQImageFormat::TIFF},
    Mark{0, "MM\0+"sv, ZQImageFormat::TIFF},
};

// What a container of that kind may call itself first; which coding is in it, it says further on.
constexpr std::array heifBrands{"heic"sv, "heix"sv, "heim"sv, "heis"sv, "hevc"sv, "hevx"sv, "hevm"sv, "hevs"sv,
                                "mif1"sv, "mif2"sv, "msf1"sv, "miaf"sv, "avif"sv, "avis"sv, "1pic"sv};

// Raw formats whose container is a TIFF.
constexpr std::array rawTIFFExtensions{"3fr"sv, "arw"sv, "cr2"sv, "crw"sv, "dcr"sv, "dng"sv, "erf"sv,
                                       "fff"sv, "iiq"sv, "k25"sv, "kdc"sv, "mef"sv, "mos"sv, "nef"sv,
                                       "nrw"sv, "pef"sv, "raw"sv, "rwl"sv, "sr2"sv, "srf"sv, "srw"sv};

QByteArray extensionOf(const QString &path)
{
    const qsizetype dot = path.lastIndexOf(u'.');
    return dot < 0 || path.indexOf(u'/', dot) >= 0 ? QByteArray() : path.mid(dot + 1).toLower().toUtf8();
}

quint32 littleEndian(std::string_view head, size_t offset, size_t bytes)
{
    quint32 value = 0;
    for (size_t i = 0; i < bytes && offset + i < head.size(); ++i) {
        value |= quint32(uchar(head[offset + i])) << (8 * i);
    }
    return value;
}

bool isHEIF(std::string_view head)
{
    return head.size() >= 12 && head.substr(4, 4) == "ftyp" &&
           std::find(heifBrands.begin(), heifBrands.end(), head.substr(8, 4)) != heifBrands.end();
}

bool isBMP(std::string_view head)
{
    if (head.size() < 30 || !head.starts_with("BM")) {
        return false;
    }
    const quint32 headerSize = littleEndian(head, 14, 4);
    return headerSize == 12 || (headerSize >= 40 && headerSize <= 256);
}

bool isICO(std::string_view head)
{
    return head.size() >= 22 && head.starts_with("\0\0"sv) && (head[2] == 1 || head[2] == 2) && head[3] == 0 &&
           littleEndian(head, 4, 2) > 0 && head[9] == 0 && littleEndian(head, 14, 4) > 0;
}

bool isTGAHeader(std::string_view head)
{
    if (head.size() < 18) {
        return false;
    }
    const int type = head[2];
    const int depth = uchar(head[16]);
    const bool knownType = type == 1 || type == 2 || type == 3 || type == 9 || type == 10 || type == 11;
    const bool knownDepth = depth == 8 || depth == 15 || depth == 16 || depth == 24 || depth == 32;
    return knownType && knownDepth && uchar(head[1]) <= 1 && littleEndian(head, 12, 2) > 0 &&
           littleEndian(head, 14, 2) > 0;
}

bool isTGA(const ZQSourceFile &source, std::string_view head, const QByteArray &extension)
{
    if (!isTGAHeader(head)) {
        return false;
    }
    if (extension == "tga" || extension == "targa") {
        return true;
    }
    QFile file;
    return source.openIn(file) && file.size() > 44 && file.seek(file.size() - 18) &&
           file.read(16) == "TRUEVISION-XFILE";
}

bool isRawTIFF(std::string_view head, const QByteArray &extension)
{
    if (head.size() > 10 && head.substr(8, 2) == "CR") {
        return true;
    }
    for (const std::string_view raw : rawTIFFExtensions) {
        if (extension == QByteArrayView(raw.data(), qsizetype(raw.size()))) {
            return true;
        }
    }
    return false;
}

} // namespace

ZQImageFormat zqImageFormatOfFile(const ZQSourceFile &source)
{
    const QByteArray &start = source.start();
    const std::string_view head(start.constData(), size_t(qMin(start.size(), ZQSourceFile::sniffedBytes)));
    const QByteArray extension = extensionOf(source.name());
    for (const Mark &mark : marks) {
        if (head.size() >= size_t(mark.offset) + mark.bytes.size() &&
            head.substr(size_t(mark.offset), mark.bytes.size()) == mark.bytes) {
            const bool raw = mark.format == ZQImageFormat::TIFF && isRawTIFF(head, extension);
            return raw ? ZQImageFormat::CameraRaw : mark.format;
        }
    }
    if (isHEIF(head)) {
        return ZQImageFormat::HEIF;
    }
    if (extension == "sketch") {
        return ZQImageFormat::Sketch;
    }
    if (isBMP(head)) {
        return ZQImageFormat::BMP;
    }
    if (isICO(head)) {
        return ZQImageFormat::ICO;
    }
    // Readers of PDF allow other bytes ahead of the mark.
    if (head.substr(0, 1024).find("%PDF-") != std::string_view::npos) {
        return ZQImageFormat::PDF;
    }
    return isTGA(source, head, extension) ? ZQImageFormat::TGA : ZQImageFormat::Unknown;
}

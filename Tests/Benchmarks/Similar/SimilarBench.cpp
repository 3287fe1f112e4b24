// What the import knows of a picture's looks, and what that costs.
//
//   zelto_similar_bench <LIST    for each file that LIST names, one a line: its hash in hexadecimal ("-" for none), the
//                                milliseconds of the hash and of the palette, and the palette as #RRGGBB:SHARE
//   zelto_similar_bench --alike  how far apart the same pictures may be

#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Imaging/ZQPalette.h"
#include "Kit/Imaging/ZQPictureHash.h"
#include "Kit/Imaging/ZQPreviewService.h"

#include <QCoreApplication>
#include <QFile>

#include <chrono>
#include <cstdio>
#include <iostream>
#include <string>

namespace {

constexpr QSize thumbnailBox(512, 512); // as the import makes them

double millisecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

bool printFile(const QString &path)
{
    ZQError error;
    const ZQBitmap bitmap = ZQPreviewService::previewOfFile(path, thumbnailBox, &error);
    if (bitmap.isNull()) {
        std::fprintf(stderr, "%s: %s\n", qUtf8Printable(path), qUtf8Printable(error.localizedDescription()));
        return false;
    }
    const auto start = std::chrono::steady_clock::now();
    const std::optional<ZQPictureHash> hash = ZQPictureHash::of(bitmap);
    const double hashing = millisecondsSince(start);
    const auto next = std::chrono::steady_clock::now();
    const ZQPalette palette = ZQPalette::of(bitmap);
    const double clustering = millisecondsSince(next);
    const QByteArray text = hash ? hash->bytes().toHex() : QByteArrayLiteral("-");
    std::printf("%s %.4f %.4f", text.constData(), hashing, clustering);
    for (const ZQPalette::Color &color : palette.colors) {
        std::printf(" #%06X:%d", color.rgb & 0xFFFFFF, int(color.share));
    }
    std::puts("");
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    ZQImageSource::initialize(argv[0]);
    if (argc > 1 && std::string_view(argv[1]) == "--alike") {
        std::printf("%d\n", ZQPictureHash::alikeDistance);
        return 0;
    }
    for (std::string line; std::getline(std::cin, line);) {
        if (!printFile(QFile::decodeName(QByteArray::fromStdString(line)))) {
            return 1;
        }
    }
    return 0;
}

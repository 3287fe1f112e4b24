#include "Kit/Imaging/Decoders/ZQImageDecoding.h"
#include "Kit/Imaging/ZQImageDestination.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <thread>
#include <vector>

// zelto_render_cost [PICTURE…]: prints how long it takes to read headers and make thumbnails of the pictures named, or
// of 2000 small ones it makes, in this process and in the workers, three at a time as an import does.

namespace {

constexpr int smallPictures = 2000;
constexpr int thumbnailSize = 512;
constexpr int rounds = 7;

QStringList makeSmallPictures(const QString &folder)
{
    QStringList out;
    QImage image(320, 240, QImage::Format_RGBA8888);
    for (int i = 0; i < smallPictures; ++i) {
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                image.setPixel(x, y, qRgba((x * 3 + i) % 256, (y * 5) % 256, (x * y + i) % 256, 255));
            }
        }
        out.append(folder + QStringLiteral("/%1.png").arg(i));
        ZQImageDestination::writePNG(ZQBitmap(image), out.last());
    }
    return out;
}

// Milliseconds for all of them.
double timeOf(const QStringList &paths, int threads, const std::function<void(const QString &)> &work)
{
    const auto start = std::chrono::steady_clock::now();
    std::atomic<qsizetype> next{0};
    std::vector<std::thread> all;
    for (int i = 0; i < threads; ++i) {
        all.emplace_back([&] {
            for (qsizetype at = next++; at < paths.size(); at = next++) {
                work(paths.at(at));
            }
        });
    }
    for (std::thread &thread : all) {
        thread.join();
    }
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// The two ways take turns, so that both see the same machine; the best times are printed: other programs only add to
// one.
void compare(const char *what, const QStringList &paths, int threads, const std::function<void(const QString &)> &here,
             const std::function<void(const QString &)> &there)
{
    std::vector<double> inside;
    std::vector<double> outside;
    timeOf(paths.first(1), threads, here);
    timeOf(paths, threads, there);
    for (int i = 0; i < rounds; ++i) {
        inside.push_back(timeOf(paths, threads, here));
        outside.push_back(timeOf(paths, threads, there));
    }
    std::sort(inside.begin(), inside.end());
    std::sort(outside.begin(), outside.end());
    const double left = inside.front();
    const double right = outside.front();
    std::printf("%-26s %5d files, %d threads: %9.1f ms here, %9.1f ms in workers (%+.1f %%, %+.0f us a file)\n", what,
                int(paths.size()), threads, left, right, (right / left - 1) * 100,
                (right - left) * 1000 / double(paths.size()));
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    ZQImageSource::initialize(argv[0]);
    const QTemporaryDir folder;
    const QStringList paths = argc > 1 ? application.arguments().mid(1) : makeSmallPictures(folder.path());
    const QSize square(thumbnailSize, thumbnailSize);
    for (const int threads : {1, 3}) {
        compare(
            "headers", paths, threads,
            [](const QString &path) { zqPropertiesOfFile(ZQSourceFile::open(path), nullptr); },
            [](const QString &path) { ZQImageSource::propertiesOfFile(path); });
        compare(
            "thumbnails", paths, threads,
            [square](const QString &path) {
                zqDecodeFile({ZQSourceFile::open(path), square}, nullptr);
            },
            [](const QString &path) { ZQImageSource::thumbnailOfFile(path, thumbnailSize); });
        compare(
            "headers, thumbnails, PNGs", paths, threads,
            [&](const QString &path) {
                zqPropertiesOfFile(ZQSourceFile::open(path), nullptr);
                ZQImageDestination::writePNG(zqDecodeFile({ZQSourceFile::open(path), square}, nullptr),
                                             folder.filePath(QStringLiteral("out.png")));
            },
            [&](const QString &path) {
                ZQImageSource::propertiesOfFile(path);
                ZQImageDestination::writePNG(ZQImageSource::thumbnailOfFile(path, thumbnailSize),
                                             folder.filePath(QStringLiteral("out.png")));
            });
    }
    return 0;
}

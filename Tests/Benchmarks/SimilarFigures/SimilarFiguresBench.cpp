// What likeness among many pictures costs. Prints "NAME VALUE" a line; the limits are those of
// Benchmarks/similar_figures.py. The pictures are made up: nine of ten at random, the rest altered forms of others.
//
// zelto_similar_figures_bench ITEMS

#include "Classes/Browsing/Index/NearGroups.h"
#include "Classes/Browsing/Index/PictureConditions.h"
#include "Classes/Browsing/Index/SimilarPictures.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>
#include <sys/resource.h>

namespace {

constexpr int runs = 9;
constexpr size_t nearest = 1000;

void print(const char *name, double value)
{
    std::printf("%s %.4f\n", name, value);
    std::fflush(stdout);
}

double millisecondsFor(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

// Of several the quickest: another program that runs meanwhile is not what is measured.
double leastMilliseconds(const std::function<void()> &work)
{
    double least = millisecondsFor(work);
    for (int run = 1; run < runs; ++run) {
        least = std::min(least, millisecondsFor(work));
    }
    return least;
}

double processorSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_utime.tv_sec) + double(usage.ru_utime.tv_usec) / 1e6;
}

double mostMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024;
}

struct MadeUp
{
    IndexPictures pictures;
    ZQPagedVector<HashWords> hashes;
    size_t planted = 0; // that are near to another one
};

MadeUp makeUp(size_t count)
{
    constexpr size_t plantedOf = 10;
    const auto mostChanged = unsigned(ZQPictureHash::alikeDistanceAmong(qint64(count)));
    std::mt19937_64 random(20260101);
    MadeUp result;
    result.hashes.reserve(count);
    result.pictures.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        HashWords hash;
        std::generate(hash.begin(), hash.end(), std::ref(random));
        if (i % plantedOf == plantedOf - 1) {
            hash = result.hashes[random() % i];
            for (auto changes = random() % mostChanged; changes > 0; --changes) {
                const auto bit = random() % ZQPictureHash::bitCount;
                hash[bit / 64] ^= quint64(1) << (bit % 64);
            }
            ++result.planted;
        }
        IndexPictures::Value value{hash, {}};
        for (PictureColor &color : value.colors.colors) {
            const auto rgb = QRgb(random());
            color = PictureColor::of(ZQOklab::of(rgb), quint8(1 + (rgb >> 24) / 8));
        }
        result.hashes.push_back(hash);
        result.pictures.append(value);
    }
    return result;
}

} // namespace

int main(int argc, char *argv[])
{
    const size_t count = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 0;
    if (count < 1000) {
        std::fprintf(stderr, "usage: %s ITEMS, at least 1000\n", argv[0]);
        return 2;
    }
    const MadeUp made = makeUp(count);
    const ZQRowSet all(count, true);
    size_t wanted = 0;
    const auto nextHash = [&] { return ZQPictureHash{made.hashes[wanted = (wanted + 7919) % count]}; };
    print("bytes-a-picture", double(made.pictures.bytes()) / double(count));
    print("order-ms", leastMilliseconds([&] {
              zqNearestPictures(made.pictures, nextHash(), all, nearest, ZQPictureHash::bitCount);
          }));
    print("similar-ms", leastMilliseconds([&] {
              zqNearestPictures(made.pictures, nextHash(), all, nearest, ZQPictureHash::similarDistance);
          }));
    print("color-ms", leastMilliseconds([&] {
              const ColorNearness blue = ColorCondition{0x3366cc}.nearness();
              if (!zqPicturesWithColor(made.pictures, blue, all)) {
                  std::abort();
              }
          }));
    const double before = mostMegabytes();
    const double processorBefore = processorSeconds();
    const int farthest = ZQPictureHash::alikeDistanceAmong(qint64(count));
    std::optional<NearGroups::Groups> groups;
    print("groups-ms", millisecondsFor([&] { groups = NearGroups::of(made.hashes, farthest, nullptr); }));
    print("groups-processor-ms", (processorSeconds() - processorBefore) * 1000);
    print("groups-megabytes", mostMegabytes() - before + double(count * sizeof(HashWords)) / 1e6);
    size_t grouped = 0;
    for (const auto &group : *groups) {
        grouped += group.size();
    }
    print("groups", double(groups->size()));
    print("grouped-of-planted", double(grouped - groups->size()) / double(made.planted));
    return 0;
}

#include "Kit/Imaging/ZQPalette.h"

#include "Kit/Imaging/ZQOklab.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <unordered_map>
#include <vector>

namespace {

constexpr int sampled = 4096;        // pixels at most
constexpr int faint = 16;            // less opaque ones are not seen
constexpr size_t clusterCount = 10;  // more than are kept, so that those that look the same can be joined
constexpr int rounds = 12;           // they hardly move after that
constexpr float sameColor = 0.06F;   // clusters as near as this are one colour to the eye
constexpr double leastShare = 0.004; // what is less is an edge or a speck
constexpr double pureShare = 0.25;   // a colour that makes up so much of its cluster was meant

// Pixels of nearly one colour.
struct Cell
{
    ZQOklab color;
    double weight = 0;
    QRgb commonest = 0; // of the exact colours in it
    double commonestWeight = 0;
    size_t cluster = 0;
};

struct Cluster
{
    ZQOklab color;
    double weight = 0;
    QRgb commonest = 0;
    double commonestWeight = 0;
};

using Weights = std::unordered_map<QRgb, double>;

void countPixel(const uchar *pixel, Weights &weights)
{
    if (pixel[3] >= faint) {
        weights[qRgb(pixel[0], pixel[1], pixel[2])] += pixel[3];
    }
}

// All pixels of a small picture; of others a sample at places that lie evenly and in no grid (additive recurrence of
// the plastic number), since a grid sees nothing of stripes between its lines.
Weights sample(const ZQBitmap &bitmap)
{
    Weights weights;
    weights.reserve(sampled);
    const qint64 pixels = qint64(bitmap.width()) * bitmap.height();
    if (pixels <= sampled) {
        for (int y = 0; y < bitmap.height(); ++y) {
            for (int x = 0; x < bitmap.width(); ++x) {
                countPixel(bitmap.constScanLine(y) + size_t(x) * 4, weights);
            }
        }
        return weights;
    }
    constexpr double plastic = 1.32471795724474602596;
    double across = 0.5;
    double down = 0.5;
    for (int i = 0; i < sampled; ++i) {
        across = std::fmod(across + 1 / plastic, 1.0);
        down = std::fmod(down + 1 / (plastic * plastic), 1.0);
        const int x = std::min(int(across * bitmap.width()), bitmap.width() - 1);
        const int y = std::min(int(down * bitmap.height()), bitmap.height() - 1);
        countPixel(bitmap.constScanLine(y) + size_t(x) * 4, weights);
    }
    return weights;
}

// Sixteen steps a channel, so that the rounds are over hundreds and not thousands; in an order of their own, since the
// sample's is no one's.
std::vector<Cell> cellsOf(const Weights &weights)
{
    struct Sum
    {
        double red = 0, green = 0, blue = 0, weight = 0, commonestWeight = 0;
        QRgb commonest = 0;
    };
    std::vector<Sum> sums(16 * 16 * 16);
    for (const auto &[rgb, weight] : weights) {
        Sum &sum = sums[size_t((qRed(rgb) >> 4 << 8) | (qGreen(rgb) >> 4 << 4) | (qBlue(rgb) >> 4))];
        sum.red += qRed(rgb) * weight;
        sum.green += qGreen(rgb) * weight;
        sum.blue += qBlue(rgb) * weight;
        sum.weight += weight;
        if (weight > sum.commonestWeight || (weight == sum.commonestWeight && rgb < sum.commonest)) {
            sum.commonest = rgb;
            sum.commonestWeight = weight;
        }
    }
    std::vector<Cell> cells;
    for (const Sum &sum : sums) {
        if (sum.weight > 0) {
            const auto mean = [&sum](double channel) { return int(std::lround(channel / sum.weight)); };
            const QRgb rgb = qRgb(mean(sum.red), mean(sum.green), mean(sum.blue));
            cells.push_back({ZQOklab::of(rgb), sum.weight, sum.commonest, sum.commonestWeight, 0});
        }
    }
    return cells;
}

// The first is the heaviest cell; each of the others the one that weighs most by its distance from all before it.
std::vector<Cluster> seeds(const std::vector<Cell> &cells)
{
    std::vector<Cluster> clusters;
    std::vector<float> nearest(cells.size(), 1.F);
    while (clusters.size() < std::min(clusterCount, cells.size())) {
        size_t best = 0;
        double bestValue = 0;
        for (size_t i = 0; i < cells.size(); ++i) {
            const double value = cells[i].weight * double(nearest[i]) * double(nearest[i]);
            if (value > bestValue) {
                bestValue = value;
                best = i;
            }
        }
        if (bestValue <= 0) {
            break;
        }
        clusters.push_back({cells[best].color});
        for (size_t i = 0; i < cells.size(); ++i) {
            nearest[i] = std::min(nearest[i], cells[i].color.distance(cells[best].color));
        }
    }
    return clusters;
}

bool assign(std::vector<Cell> &cells, const std::vector<Cluster> &clusters)
{
    bool changed = false;
    for (Cell &cell : cells) {
        size_t best = 0;
        float bestDistance = std::numeric_limits<float>::max();
        for (size_t i = 0; i < clusters.size(); ++i) {
            const float distance = cell.color.distance(clusters[i].color);
            if (distance < bestDistance) {
                bestDistance = distance;
                best = i;
            }
        }
        changed = changed || cell.cluster != best;
        cell.cluster = best;
    }
    return changed;
}

void addColor(Cluster &cluster, const ZQOklab &color, double weight)
{
    const auto part = float(weight / (cluster.weight + weight));
    cluster.color.L += (color.L - cluster.color.L) * part;
    cluster.color.a += (color.a - cluster.color.a) * part;
    cluster.color.b += (color.b - cluster.color.b) * part;
    cluster.weight += weight;
}

void noteCommonest(Cluster &cluster, QRgb rgb, double weight)
{
    if (weight > cluster.commonestWeight) {
        cluster.commonest = rgb;
        cluster.commonestWeight = weight;
    }
}

void gather(const std::vector<Cell> &cells, std::vector<Cluster> &clusters)
{
    for (Cluster &cluster : clusters) {
        cluster.weight = 0;
        cluster.commonestWeight = 0;
    }
    for (const Cell &cell : cells) {
        addColor(clusters[cell.cluster], cell.color, cell.weight);
        noteCommonest(clusters[cell.cluster], cell.commonest, cell.commonestWeight);
    }
    std::erase_if(clusters, [](const Cluster &cluster) { return cluster.weight <= 0; });
}

// Joins the two nearest until no two look the same.
void joinNear(std::vector<Cluster> &clusters)
{
    for (;;) {
        float least = sameColor;
        size_t left = 0;
        size_t right = 0;
        for (size_t i = 0; i < clusters.size(); ++i) {
            for (size_t j = i + 1; j < clusters.size(); ++j) {
                const float distance = clusters[i].color.distance(clusters[j].color);
                if (distance < least) {
                    least = distance;
                    left = i;
                    right = j;
                }
            }
        }
        if (left == right) {
            return;
        }
        addColor(clusters[left], clusters[right].color, clusters[right].weight);
        noteCommonest(clusters[left], clusters[right].commonest, clusters[right].commonestWeight);
        clusters.erase(clusters.begin() + std::ptrdiff_t(right));
    }
}

std::vector<Cluster> clustersOf(std::vector<Cell> cells)
{
    std::vector<Cluster> clusters = seeds(cells);
    for (int round = 0; round < rounds; ++round) {
        if (!assign(cells, clusters) && round > 0) {
            break;
        }
        gather(cells, clusters);
    }
    joinNear(clusters);
    std::stable_sort(clusters.begin(), clusters.end(),
                     [](const Cluster &left, const Cluster &right) { return left.weight > right.weight; });
    return clusters;
}

} // namespace

ZQPalette ZQPalette::of(const ZQBitmap &bitmap)
{
    ZQPalette palette;
    const std::vector<Cluster> clusters = clustersOf(cellsOf(sample(bitmap)));
    double total = 0;
    for (const Cluster &cluster : clusters) {
        total += cluster.weight;
    }
    for (const Cluster &cluster : clusters) {
        if (palette.colors.size() == maximum || cluster.weight < total * leastShare) {
            break;
        }
        const bool isPure = cluster.commonestWeight >= cluster.weight * pureShare;
        const int share = std::clamp(int(std::lround(cluster.weight / total * 255)), 1, 255);
        palette.colors.append({isPure ? cluster.commonest : cluster.color.rgb(), quint8(share)});
    }
    return palette;
}

ZQPalette ZQPalette::fromBytes(const QByteArray &bytes)
{
    ZQPalette palette;
    if (bytes.size() % bytesOfColor != 0 || bytes.size() > maximum * bytesOfColor) {
        return palette;
    }
    for (qsizetype i = 0; i < bytes.size(); i += bytesOfColor) {
        const auto byte = [&bytes, i](qsizetype offset) { return uchar(bytes[i + offset]); };
        palette.colors.append({qRgb(byte(0), byte(1), byte(2)), byte(3)});
    }
    return palette;
}

QByteArray ZQPalette::bytes() const
{
    QByteArray bytes;
    for (const Color &color : colors) {
        for (const int byte : {qRed(color.rgb), qGreen(color.rgb), qBlue(color.rgb), int(color.share)}) {
            bytes.append(char(byte));
        }
    }
    return bytes;
}

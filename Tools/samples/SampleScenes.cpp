#include "Tools/samples/SampleScenes.h"

#include <QPainter>
#include <QPainterPath>

#include <array>
#include <cmath>
#include <numbers>
#include <random>

namespace {

using std::numbers::pi;

double latticeValue(int x, int y, quint32 seed)
{
    quint32 hash = seed ^ (quint32(x) * 0x8da6b343U) ^ (quint32(y) * 0xd8163841U);
    hash ^= hash >> 15;
    hash *= 0x2c1b3c6dU;
    hash ^= hash >> 12;
    hash *= 0x297a2d39U;
    hash ^= hash >> 15;
    return hash / 4294967295.0;
}

double smoothNoise(double x, double y, quint32 seed)
{
    const double floorX = std::floor(x);
    const double floorY = std::floor(y);
    const auto eased = [](double t) { return t * t * (3 - 2 * t); };
    const double right = eased(x - floorX);
    const double down = eased(y - floorY);
    const int column = int(floorX);
    const int row = int(floorY);
    const double top = std::lerp(latticeValue(column, row, seed), latticeValue(column + 1, row, seed), right);
    const double bottom =
        std::lerp(latticeValue(column, row + 1, seed), latticeValue(column + 1, row + 1, seed), right);
    return std::lerp(top, bottom, down);
}

double fractalNoise(double x, double y, quint32 seed, int octaves)
{
    double sum = 0;
    double weight = 0.5;
    for (int octave = 0; octave < octaves; ++octave, weight /= 2, x *= 2, y *= 2) {
        sum += weight * smoothNoise(x, y, seed + quint32(octave) * 101U);
    }
    return sum;
}

QColor mixed(const QColor &from, const QColor &to, double amount)
{
    const float share = float(qBound(0.0, amount, 1.0));
    return QColor::fromRgbF(std::lerp(from.redF(), to.redF(), share), std::lerp(from.greenF(), to.greenF(), share),
                            std::lerp(from.blueF(), to.blueF(), share));
}

QColor along(const QList<QColor> &palette, double position)
{
    const double scaled = qBound(0.0, position, 1.0) * double(palette.size() - 1);
    const qsizetype index = qMin(qsizetype(scaled), palette.size() - 2);
    return mixed(palette.at(index), palette.at(index + 1), scaled - double(index));
}

class Random
{
public:
    explicit Random(quint32 seed) : m_engine(seed) {}
    // The library's distributions differ between systems; this does not.
    double operator()(double from, double to) { return from + (to - from) * (double(m_engine()) / 4294967295.0); }

private:
    std::mt19937 m_engine;
};

void fillVertically(QPainter &painter, QSize size, const QColor &top, const QColor &bottom)
{
    QLinearGradient gradient(0, 0, 0, size.height());
    gradient.setColorAt(0, top);
    gradient.setColorAt(1, bottom);
    painter.fillRect(QRect(QPoint(0, 0), size), gradient);
}

void paintMountains(QPainter &painter, const QList<QColor> &palette, QSize size, quint32 seed)
{
    constexpr int ridges = 6;
    Random random(seed);
    fillVertically(painter, size, palette.at(0), palette.at(1));
    const double sun = size.height() * random(0.08, 0.14);
    painter.setBrush(palette.at(4));
    painter.drawEllipse(QPointF(size.width() * random(0.2, 0.8), size.height() * random(0.2, 0.4)), sun, sun);
    for (int ridge = 0; ridge < ridges; ++ridge) {
        const double depth = (ridge + 1.0) / ridges;
        QPainterPath path(QPointF(0, size.height()));
        for (int x = 0; x <= size.width(); x += 2) {
            const double height = fractalNoise(x * (1.5 + ridge) / size.width(), ridge * 7.3, seed + quint32(ridge), 6);
            path.lineTo(x, size.height() * (0.25 + 0.62 * depth - 0.42 * height * (1.1 - depth * 0.6)));
        }
        path.lineTo(size.width(), size.height());
        QLinearGradient gradient(0, size.height() * (0.1 + 0.6 * depth), 0, size.height());
        gradient.setColorAt(0, mixed(palette.at(1), palette.at(3), depth));
        gradient.setColorAt(1, mixed(palette.at(2), palette.at(3), depth));
        painter.fillPath(path, gradient);
    }
}

void paintWaves(QPainter &painter, const QList<QColor> &palette, QSize size, quint32 seed)
{
    constexpr int bands = 14;
    Random random(seed);
    fillVertically(painter, size, palette.at(0), palette.at(1));
    const double phase = random(0, 2 * pi);
    for (int band = 0; band < bands; ++band) {
        const double depth = band / (bands - 1.0);
        QPainterPath path(QPointF(0, size.height()));
        for (int x = 0; x <= size.width(); x += 2) {
            const double t = double(x) / size.width();
            const double wave = std::sin(t * pi * (1.4 + depth) + phase + band * 0.55) * (0.05 + 0.07 * depth) +
                                std::sin(t * pi * 5 + band) * 0.012;
            path.lineTo(x, size.height() * (0.18 + 0.85 * depth + wave));
        }
        path.lineTo(size.width(), size.height());
        painter.fillPath(path, along(palette, 0.1 + 0.9 * depth));
    }
}

void paintBokeh(QPainter &painter, const QList<QColor> &palette, QSize size, quint32 seed)
{
    Random random(seed);
    fillVertically(painter, size, palette.at(0), palette.at(1));
    for (int i = 0; i < 70; ++i) {
        const double radius = qMin(size.width(), size.height()) * random(0.02, 0.13);
        const QPointF centre(random(0, size.width()), random(0, size.height()));
        QColor color = along(palette, random(0.4, 1.0));
        QRadialGradient gradient(centre, radius);
        color.setAlphaF(float(random(0.15, 0.5)));
        gradient.setColorAt(0, color);
        gradient.setColorAt(0.9, color);
        color.setAlphaF(0);
        gradient.setColorAt(1, color);
        painter.setBrush(gradient);
        painter.drawEllipse(centre, radius, radius);
    }
}

void paintPoster(QPainter &painter, const QList<QColor> &palette, QSize size, quint32 seed)
{
    Random random(seed);
    painter.fillRect(QRect(QPoint(0, 0), size), palette.at(0));
    const double cell = qMin(size.width(), size.height()) / 4.0;
    for (double top = 0; top < size.height(); top += cell) {
        for (double left = 0; left < size.width(); left += cell) {
            const QRectF square(left, top, cell, cell);
            painter.fillRect(square, palette.at(int(random(0, 3.99))));
            painter.setBrush(palette.at(1 + int(random(0, 3.99))));
            switch (int(random(0, 3.99))) {
            case 0:
                painter.drawEllipse(square.adjusted(cell / 5, cell / 5, -cell / 5, -cell / 5));
                break;
            case 1:
                painter.drawPie(QRectF(left - cell, top - cell, 2 * cell, 2 * cell), 0, -90 * 16);
                break;
            case 2:
                painter.drawPolygon(QPolygonF({square.topLeft(), square.topRight(), square.bottomLeft()}));
                break;
            default:
                painter.drawPie(QRectF(left, top, 2 * cell, 2 * cell), 90 * 16, 90 * 16);
            }
        }
    }
}

QImage meshScene(const QList<QColor> &palette, QSize size, quint32 seed)
{
    Random random(seed);
    std::array<QPointF, 5> places;
    for (QPointF &place : places) {
        place = {random(0, 1), random(0, 1)};
    }
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            std::array<double, 4> sums{};
            for (size_t i = 0; i < places.size(); ++i) {
                const double dx = double(x) / size.width() - places[i].x();
                const double dy = double(y) / size.height() - places[i].y();
                const double weight = 1 / std::pow(dx * dx + dy * dy + 0.01, 1.6);
                const QColor &color = palette.at(qsizetype(i));
                sums = {sums[0] + weight * color.red(), sums[1] + weight * color.green(),
                        sums[2] + weight * color.blue(), sums[3] + weight};
            }
            line[x] = qRgb(int(sums[0] / sums[3]), int(sums[1] / sums[3]), int(sums[2] / sums[3]));
        }
    }
    return image;
}

QImage marbleScene(const QList<QColor> &palette, QSize size, quint32 seed)
{
    QImage image(size, QImage::Format_RGB32);
    const double unit = 3.0 / qMin(size.width(), size.height());
    for (int y = 0; y < size.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const double warp = fractalNoise(x * unit, y * unit, seed, 3);
            const double value = fractalNoise(x * unit + 4 * warp, y * unit + 3 * warp, seed + 9, 4);
            line[x] = along(palette, 0.5 + 0.5 * std::sin(value * 3 * pi)).rgb();
        }
    }
    return image;
}

void addGrain(QImage &image, quint32 seed)
{
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const int grain = int(latticeValue(x, y, seed) * 13) - 6;
            line[x] = qRgb(qBound(0, qRed(line[x]) + grain, 255), qBound(0, qGreen(line[x]) + grain, 255),
                           qBound(0, qBlue(line[x]) + grain, 255));
        }
    }
}

using Paint = void (*)(QPainter &, const QList<QColor> &, QSize, quint32);

QImage painted(Paint paint, const QList<QColor> &palette, QSize size, quint32 seed)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(palette.at(0));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    paint(painter, palette, size, seed);
    return image;
}

} // namespace

QImage SampleScenes::scene(Style style, const QList<QColor> &palette, QSize size, quint32 seed)
{
    switch (style) {
    case Style::Poster:
        return painted(paintPoster, palette, size, seed);
    case Style::Mesh:
        return meshScene(palette, size, seed);
    case Style::Marble:
        return marbleScene(palette, size, seed);
    case Style::Waves:
        return painted(paintWaves, palette, size, seed);
    case Style::Mountains:
    case Style::Bokeh:
        break;
    }
    QImage photo = painted(style == Style::Bokeh ? paintBokeh : paintMountains, palette, size, seed);
    addGrain(photo, seed);
    return photo;
}

QImage SampleScenes::logo(int shape, const QColor &color, const QColor &accent, int side)
{
    QImage image(side, side, QImage::Format_RGBA8888);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.translate(side / 2.0, side / 2.0);
    painter.scale(side / 2.4, side / 2.4);
    painter.setBrush(color);
    if (shape < 4) {
        const int petals = 3 + shape * 2;
        for (int i = 0; i < petals; ++i) {
            painter.drawEllipse(QRectF(-0.24, -1, 0.48, 0.95));
            painter.rotate(360.0 / petals);
        }
        painter.setBrush(accent);
        painter.drawEllipse(QPointF(0, 0), 0.28, 0.28);
        return image;
    }
    painter.drawRoundedRect(QRectF(-1, -1, 2, 2), 0.25 * (shape - 3), 0.25 * (shape - 3));
    painter.setBrush(accent);
    painter.rotate(45 * (shape - 4));
    painter.drawRect(QRectF(-0.55, -0.14, 1.1, 0.28));
    painter.drawEllipse(QPointF(0.4, -0.4), 0.2, 0.2);
    return image;
}

QImage SampleScenes::asymmetricScene(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    const int halfWidth = size.width() / 2;
    const int halfHeight = size.height() / 2;
    painter.fillRect(0, 0, halfWidth, halfHeight, QColor(220, 30, 30));
    painter.fillRect(halfWidth, 0, size.width() - halfWidth, halfHeight, QColor(30, 170, 60));
    painter.fillRect(0, halfHeight, halfWidth, size.height() - halfHeight, QColor(30, 60, 210));
    painter.fillRect(halfWidth, halfHeight, size.width() - halfWidth, size.height() - halfHeight, QColor(240, 210, 30));
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    const double unit = qMin(size.width(), size.height()) / 8.0;
    painter.translate(size.width() / 2.0, size.height() / 2.0);
    painter.drawPolygon(QPolygonF({{0, -2 * unit}, {unit, 0}, {-unit, 0}}));
    painter.drawRect(QRectF(-unit / 3, 0, unit / 1.5, 2 * unit));
    return image;
}

QImage SampleScenes::storedForOrientation(const QImage &upright, int orientation)
{
    const auto turned = [&upright](qreal degrees) { return upright.transformed(QTransform().rotate(degrees)); };
    switch (orientation) {
    case 2:
        return upright.mirrored(true, false);
    case 3:
        return upright.mirrored(true, true);
    case 4:
        return upright.mirrored(false, true);
    case 5:
        return turned(90).mirrored(true, false);
    case 6:
        return turned(-90);
    case 7:
        return turned(90).mirrored(false, true);
    case 8:
        return turned(90);
    default:
        return upright;
    }
}

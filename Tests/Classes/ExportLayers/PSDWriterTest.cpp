// Layered documents, byte by byte, and read back by a small reader of their layout.

#include "Classes/Export/PSDWriter.h"
#include "Classes/Export/PSDBytes.h"
#include "Kit/Imaging/ZQPackBits.h"
#include "Classes/Export/PSDException.h"

#include <QColor>
#include <QtEndian>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>
#include <vector>

namespace {

struct ReadLayer
{
    QByteArray name;
    int opacity = 0;
    QByteArray pixels; // R, G, B, A of the canvas
};

struct ReadDocument
{
    QSize size;
    int channels = 0;
    QList<ReadLayer> layers;
    QByteArray merged;
    bool isWhole = false; // nothing is left, and every length is right
};

class Reader
{
public:
    explicit Reader(const QByteArray &data) : m_data(data) {}
    qint64 number(int length)
    {
        qint64 value = 0;
        for (const char byte : bytes(length)) {
            value = value << 8 | uchar(byte);
        }
        return value;
    }
    QByteArray bytes(qsizetype length) { return m_data.mid(std::exchange(m_at, m_at + length), length); }
    qsizetype at() const { return m_at; }

    // One plane after its counts; every row has to be exactly as long as its count says.
    void plane(const QByteArray &counts, QSize size, int channel, QByteArray &pixels)
    {
        std::vector<uchar> row(std::size_t(size.width()));
        for (int y = 0; y < size.height(); ++y) {
            const QByteArray packed = bytes(qFromBigEndian<quint16>(counts.constData() + 2 * y));
            ZQPackBits::unpack(packed.constData(), packed.constData() + packed.size(), row);
            for (int x = 0; x < size.width(); ++x) {
                pixels[(qsizetype(y) * size.width() + x) * 4 + channel] = char(row[std::size_t(x)]);
            }
        }
    }

private:
    QByteArray m_data;
    qsizetype m_at = 0;
};

ReadDocument read(const QByteArray &data)
{
    ReadDocument document;
    Reader in(data);
    in.bytes(12);
    document.channels = int(in.number(2));
    document.size.setHeight(int(in.number(4)));
    document.size.setWidth(int(in.number(4)));
    const QByteArray canvas(qsizetype(document.size.width()) * document.size.height() * 4, '\0');
    in.bytes(8); // depth, mode and no colour table
    in.bytes(in.number(4));
    const qint64 section = in.number(4);
    const qsizetype sectionStart = in.at();
    const qint64 information = in.number(4);
    document.isWhole = section == information + 4 && information % 2 == 0;
    QList<QList<qint64>> lengths;
    for (qint64 count = in.number(2); count > 0; --count) {
        ReadLayer layer;
        in.bytes(18);
        QList<qint64> ofChannels;
        for (int channel = 0; channel < 4; ++channel) {
            in.number(2);
            ofChannels.append(in.number(4));
        }
        in.bytes(8);
        layer.opacity = int(in.number(1));
        in.bytes(3 + 12);
        layer.name = in.bytes(in.number(1));
        layer.pixels = canvas;
        document.layers.append(layer);
        lengths.append(ofChannels);
    }
    for (qsizetype i = 0; i < document.layers.size(); ++i) {
        for (int channel = 0; channel < 4; ++channel) {
            const qsizetype start = in.at();
            in.number(2);
            const QByteArray counts = in.bytes(2 * document.size.height());
            in.plane(counts, document.size, channel, document.layers[i].pixels);
            document.isWhole = document.isWhole && in.at() - start == lengths[i][channel];
        }
    }
    in.bytes((in.at() - sectionStart) % 2);
    document.isWhole = document.isWhole && in.at() - sectionStart == section && in.number(2) == 1;
    const QByteArray counts = in.bytes(qsizetype(8) * document.size.height());
    document.merged = canvas;
    for (int channel = 0; channel < 4; ++channel) {
        in.plane(counts.mid(qsizetype(2) * document.size.height() * channel), document.size, channel, document.merged);
    }
    document.isWhole = document.isWhole && in.at() == data.size();
    return document;
}

ZQBitmap filled(QSize size, QColor color)
{
    QImage image(size, QImage::Format_RGBA8888);
    image.fill(color);
    return ZQBitmap(image);
}

QString refusalOf(const std::function<void()> &use)
{
    try {
        use();
    } catch (const PSDException &refused) {
        return refused.name() + QStringLiteral(": ") + refused.reason();
    }
    return {};
}

} // namespace

TEST(PSDWriter, WritesTheLayout)
{
    PSDWriter writer(QSizeF(2, 2));
    writer.addLayerWithCGImage(filled({2, 2}, Qt::red), QStringLiteral("Red"), 1, {0, 0});
    const QByteArray plane = "0001 0003 0003 01XXXX 01XXXX"; // two rows of one literal packet each
    const auto channel = [&plane](const char *sample) { return QByteArray(plane).replace("XX", sample); };
    const QByteArray expected =
        "38425053 0001 000000000000 0004 00000002 00000002 0008 0003 00000000"
        "0000002a 3842494d 03ed 0000 00000010 00480000 0001 0001 00480000 0001 0001"
        "3842494d 0400 0000 00000002 0000"
        "00000088 00000084 0001"
        "00000000 00000000 00000002 00000002 0004 0000 0000000c 0001 0000000c 0002 0000000c ffff 0000000c"
        "3842494d 6e6f726d ff 00 01 00 00000018 00000000 00000000 0f 526564202020202020202020202020" +
        channel("ff") + channel("00") + channel("00") + channel("ff") +
        "0001 0003 0003 0003 0003 0003 0003 0003 0003 01ffff01ffff 01000001 0000 01000001 0000 01ffff01ffff";
    EXPECT_EQ(writer.createPSDData().toHex(), QByteArray(expected).replace(" ", ""));
    EXPECT_TRUE(writer.layers().isEmpty());
}

TEST(PSDWriter, KeepsNamesAndOpacities)
{
    struct
    {
        QString name;
        float opacity;
        QByteArray stored;
        int byte;
    } cases[] = {{QStringLiteral("Background layer name"), 1, "Background laye", 255},
                 {QStringLiteral("a"), 0.5F, "a              ", 128},
                 {QStringLiteral("fourteen chars"), 0.2F, "fourteen chars ", 51},
                 {QStringLiteral("fifteen letters"), 0, "fifteen letters", 0},
                 {{}, 0.001F, "               ", 1},
                 {QStringLiteral("Größe\nÅ ﬁ 漢"), 2, "Gro?e?A fi ?   ", 255},
                 {QString(100000, u'n'), -1, "nnnnnnnnnnnnnnn", 0}};
    PSDWriter writer(QSizeF(1, 1));
    for (const auto &test : cases) {
        writer.addLayerWithCGImage(filled({1, 1}, Qt::blue), test.name, test.opacity, {0, 0});
    }
    const ReadDocument document = read(writer.createPSDData());
    ASSERT_EQ(document.layers.size(), qsizetype(std::size(cases)));
    EXPECT_TRUE(document.isWhole);
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        EXPECT_EQ(document.layers[qsizetype(i)].name, cases[i].stored);
        EXPECT_EQ(document.layers[qsizetype(i)].opacity, cases[i].byte) << cases[i].stored.constData();
    }
}

TEST(PSDWriter, CutsLayersToTheCanvas)
{
    const double huge = std::numeric_limits<double>::max();
    struct
    {
        QPointF offset;
        QSize size;
        QRectF rect;
        int firstColumn; // of the image, whose red is its column and green its row
        int firstRow;
    } cases[] = {{{-10, 0}, {100, 2}, {0, 0, 90, 2}, 10, 0},      {{3, 5}, {10, 10}, {3, 5, 10, 10}, 0, 0},
                 {{95, 18}, {10, 10}, {95, 18, 5, 2}, 0, 0},      {{-3, -4}, {200, 50}, {0, 0, 100, 20}, 3, 4},
                 {{-0.5, 0}, {10, 1}, {0, 0, 9.5, 1}, 0, 0},      {{1.75, 2.25}, {3, 3}, {1.75, 2.25, 3, 3}, 0, 0},
                 {{100, 0}, {5, 5}, {0, 0, 0, 0}, 0, 0},          {{0, -5}, {5, 5}, {0, 0, 0, 0}, 0, 0},
                 {{huge, 0}, {5, 5}, {0, 0, 0, 0}, 0, 0},         {{-huge, -huge}, {5, 5}, {0, 0, 0, 0}, 0, 0},
                 {{std::nan(""), 0}, {5, 5}, {0, 0, 0, 0}, 0, 0}, {{0, 0}, {0, 0}, {0, 0, 0, 0}, 0, 0}};
    PSDWriter writer(QSizeF(100, 20));
    for (const auto &test : cases) {
        QImage image(test.size, QImage::Format_RGBA8888);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                image.setPixelColor(x, y, QColor(x, y, 7));
            }
        }
        writer.addLayerWithCGImage(ZQBitmap(image), {}, 1, test.offset);
    }
    const QList<PSDLayer> layers = writer.layers();
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const PSDLayer &layer = layers[qsizetype(i)];
        EXPECT_EQ(layer.rect, cases[i].rect) << i;
        const QSize size(int(cases[i].rect.width()), int(cases[i].rect.height()));
        EXPECT_EQ(layer.imageData.size(), qsizetype(size.width()) * size.height() * 4) << i;
        const QByteArray first = QByteArray(1, char(cases[i].firstColumn)) + char(cases[i].firstRow) + "\7\xff";
        EXPECT_EQ(layer.imageData.left(4), layer.imageData.isEmpty() ? QByteArray() : first) << i;
    }
    EXPECT_TRUE(read(writer.createPSDData()).isWhole);
}

TEST(PSDWriter, SaysWhatIsMissing)
{
    const QString noLayers = QStringLiteral(
        "InvalidUse: Please provide layer data, flattened data and set layer channel count to at least 3.");
    EXPECT_EQ(refusalOf([] { PSDWriter(QSizeF(2, 2)).createPSDData(); }), noLayers);
    PSDWriter writer(QSizeF(2, 2));
    writer.addLayerWithCGImage(filled({2, 2}, Qt::red), {}, 1, {});
    writer.setLayerChannelCount(2);
    EXPECT_EQ(refusalOf([&] { writer.createPSDData(); }), noLayers);
    writer.setLayerChannelCount(4);
    writer.setFlattenedData(QByteArray(15, 'x'));
    EXPECT_EQ(refusalOf([&] { writer.createPSDData(); }), noLayers);
    writer.setFlattenedData(std::nullopt);
    EXPECT_TRUE(read(writer.createPSDData()).isWhole) << "as before";

    for (const QSizeF size : {QSizeF(0, 5), QSizeF(5, 0), QSizeF(), QSizeF(0.5, 5)}) {
        PSDWriter without(size);
        EXPECT_EQ(refusalOf([&] {
                      without.addLayerWithCGImage(filled({1, 1}, Qt::red), {}, 1, {});
                  }),
                  QStringLiteral("InvalidUse: You must specify a non-zero documentSize before calling addLayer:"));
    }
    PSDWriter zero(QSizeF(0, 5));
    refusalOf([&] { zero.addLayerWithCGImage(filled({1, 1}, Qt::red), {}, 1, {}); });
    EXPECT_EQ(zero.layers().size(), 1);
}

TEST(PSDWriter, RefusesLayersBeyondTheCanvas)
{
    const PSDLayer fits{QByteArray(16, 'x'), {}, 1, {0, 0, 2, 2}};
    struct
    {
        QRectF rect;
        const char *refusal;
    } cases[] = {{{-0.5, 0, 2, 2}, "LayerOutOfBounds: Layer 1's x or y origin is negative, which is unsupported"},
                 {{0, -1, 1, 1}, "LayerOutOfBounds: Layer 1's x or y origin is negative, which is unsupported"},
                 {{2, 0, 2, 1},
                  "LayerOutOfBounds: Layer 1's bottom-right corner is beyond the edge of the canvas, which is "
                  "unsupported"},
                 {{0, 1, 1, 3},
                  "LayerOutOfBounds: Layer 1's bottom-right corner is beyond the edge of the canvas, which is "
                  "unsupported"},
                 {{1.9, 1.9, 2.9, 2.9}, ""},
                 {{3, 3, 0, 0}, ""}};
    for (const auto &test : cases) {
        PSDWriter writer(QSizeF(3, 3));
        writer.setLayers({fits, {QByteArray(4, 'y'), {}, 1, test.rect}});
        EXPECT_EQ(refusalOf([&] { writer.createPSDData(); }), QString::fromLatin1(test.refusal));
    }
}

TEST(PSDWriter, RefusesWhatNobodyOpensBeforeItTakesMemory)
{
    const auto refusal = [](QSizeF size, qsizetype layers) {
        const auto refused = PSDWriter::refusal(size, layers);
        return refused ? refused->name() : QString();
    };
    EXPECT_EQ(refusal({30000, 30000}, 1), QString());
    EXPECT_EQ(refusal({30001, 1}, 1), PSDException::documentTooLarge);
    EXPECT_EQ(refusal({1, 1e300}, 1), PSDException::documentTooLarge);
    EXPECT_EQ(refusal({30000, 30000}, 100), PSDException::documentTooLarge);
    EXPECT_EQ(refusal({1, 1}, 32768), PSDException::documentTooLarge);
    PSDWriter writer(QSizeF(30001, 1));
    EXPECT_NE(refusalOf([&] { writer.addLayerWithCGImage(filled({1, 1}, Qt::red), {}, 1, {}); }), QString());
    EXPECT_TRUE(writer.layers().isEmpty());
}

TEST(PSDWriter, OptionsHoldForAllLayersWheneverTheyAreSet)
{
    // What is added has straight alpha. It is kept when that is wanted from the start; else it comes out of what was
    // premultiplied, rounded twice.
    QImage image(2, 2, QImage::Format_RGBA8888);
    const QList<QColor> colors = {QColor(255, 128, 1, 255), QColor(200, 100, 50, 128), QColor(9, 9, 9, 0),
                                  QColor(255, 255, 255, 1)};
    for (int i = 0; i < 4; ++i) {
        image.setPixelColor(i % 2, i / 2, colors[i]);
    }
    const auto layerOf = [&](bool isSetFirst, bool unpremultiplies, bool flips) {
        PSDWriter writer(QSizeF(2, 2));
        const auto set = [&] {
            writer.setShouldUnpremultiplyLayerData(unpremultiplies);
            writer.setShouldFlipLayerData(flips);
        };
        if (isSetFirst) {
            set();
        }
        writer.addLayerWithCGImage(ZQBitmap(image), {}, 1, {});
        set();
        const ReadDocument document = read(writer.createPSDData());
        return document.layers[0].pixels.toHex(' ') + " merged " + document.merged.toHex(' ');
    };
    struct
    {
        bool unpremultiplies;
        bool flips;
        QByteArray setFirst;
        QByteArray setLater;
    } cases[] = {
        {false, false, "ff 80 01 ff 64 32 19 80 00 00 00 00 01 01 01 01",
         "ff 80 01 ff 64 32 19 80 00 00 00 00 01 01 01 01"},
        {true, false, "ff 80 01 ff c8 64 32 80 ff ff ff 00 ff ff ff 01",
         "ff 80 01 ff c7 63 31 80 ff ff ff 00 ff ff ff 01"},
        {false, true, "00 00 00 00 01 01 01 01 ff 80 01 ff 64 32 19 80",
         "00 00 00 00 01 01 01 01 ff 80 01 ff 64 32 19 80"},
        {true, true, "ff ff ff 00 ff ff ff 01 ff 80 01 ff c8 64 32 80",
         "ff ff ff 00 ff ff ff 01 ff 80 01 ff c7 63 31 80"},
    };
    const QByteArray merged = " merged ff 80 01 ff e3 b1 98 ff ff ff ff ff ff ff ff ff";
    for (const auto &test : cases) {
        EXPECT_EQ(layerOf(true, test.unpremultiplies, test.flips), test.setFirst + merged);
        EXPECT_EQ(layerOf(false, test.unpremultiplies, test.flips), test.setLater + merged);
    }
}

TEST(PSDWriter, LayersAreAskedForAndGivenPremultiplied)
{
    PSDWriter writer(QSizeF(1, 1));
    writer.setShouldUnpremultiplyLayerData(true);
    writer.addLayerWithCGImage(filled({1, 1}, QColor(200, 100, 50, 128)), {}, 1, {});
    EXPECT_EQ(writer.layers()[0].imageData.toHex(), "64321980");
    writer.setLayers(writer.layers());
    writer.setShouldUnpremultiplyLayerData(false);
    writer.addLayerWithCGImage(filled({1, 1}, QColor(200, 100, 50, 128)), {}, 1, {});
    writer.setShouldUnpremultiplyLayerData(true);
    writer.addLayerWithCGImage(filled({1, 1}, QColor(200, 100, 50, 128)), {}, 1, {});
    writer.setShouldUnpremultiplyLayerData(false);
    const ReadDocument document = read(writer.createPSDData());
    for (const ReadLayer &layer : document.layers) {
        EXPECT_EQ(layer.pixels.toHex(), "64321980");
    }
}

TEST(PSDWriter, FlipsOnlyWhatIsAsLargeAsTheCanvas)
{
    PSDWriter writer(QSizeF(1, 3));
    writer.setLayers(
        {{QByteArray("aaaabbbb"), {}, 1, {0, 1, 1, 2}}, {QByteArray("aaaabbbbcccc"), {}, 1, {0, 0, 1, 3}}});
    writer.setFlattenedData(QByteArray("ABCDEFGHIJKL"));
    writer.setShouldFlipLayerData(true);
    const ReadDocument document = read(writer.createPSDData());
    EXPECT_EQ(document.layers[0].pixels, QByteArray(4, '\0') + "aaaabbbb");
    EXPECT_EQ(document.layers[1].pixels, QByteArray("ccccbbbbaaaa"));
    EXPECT_EQ(document.merged, "ABCDEFGHIJKL");
}

TEST(PSDWriter, HoldsMoreLayersThanUsual)
{
    PSDWriter writer(QSizeF(3, 1));
    for (int i = 0; i < 300; ++i) {
        writer.addLayerWithCGImage(filled({1, 1}, QColor(i % 256, 0, 0)), QString::number(i), 1, QPointF(i % 3, 0));
    }
    const ReadDocument document = read(writer.createPSDData());
    EXPECT_TRUE(document.isWhole);
    ASSERT_EQ(document.layers.size(), 300);
    EXPECT_EQ(document.layers[299].name.trimmed(), "299");
    EXPECT_EQ(document.merged.toHex(' '), "29 00 00 ff 2a 00 00 ff 2b 00 00 ff");
}

RC_GTEST_PROP(PSDWriter, EveryLayerComesBackAndTheMergedImageIsAllOfThem, ())
{
    const auto side = rc::gen::inRange(1, 40);
    // Wide enough, now and then, that rows are shared among threads.
    const QSize canvas(*rc::gen::oneOf(side, rc::gen::inRange(1000, 3000)), *rc::gen::oneOf(side, rc::gen::just(90)));
    PSDWriter writer(canvas);
    const bool isStraight = *rc::gen::arbitrary<bool>();
    writer.setShouldUnpremultiplyLayerData(isStraight);
    std::vector<QByteArray> expected;
    std::vector<double> merged(std::size_t(canvas.width()) * std::size_t(canvas.height()) * 4, 255.0);
    for (int count = *rc::gen::inRange(1, 5); count > 0; --count) {
        const QSize size(*rc::gen::inRange(1, canvas.width() + 9), *rc::gen::inRange(1, canvas.height() + 9));
        const QPoint at(*rc::gen::inRange(-20, canvas.width() + 5), *rc::gen::inRange(-20, canvas.height() + 5));
        const float opacity = *rc::gen::element(0.0F, 0.25F, 0.5F, 1.0F);
        quint32 noise = *rc::gen::arbitrary<quint32>();
        const quint32 kinds = *rc::gen::element(1U, 2U, 255U); // flat, striped, noisy
        const quint32 alphas = *rc::gen::element(1U, 2U, 255U);
        QImage image(size, QImage::Format_RGBA8888);
        QByteArray pixels(qsizetype(canvas.width()) * canvas.height() * 4, '\0');
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                noise = noise * 1664525U + 1013904223U;
                const int alpha = 255 - int((noise >> 12) % alphas) * (alphas == 2 ? 255 : 1);
                const int color = int((noise >> 16) % kinds) * 200 % 256;
                uchar *pixel = image.scanLine(y) + 4 * x;
                const uchar straight[] = {static_cast<uchar>(color), static_cast<uchar>(255 - color), 17,
                                          static_cast<uchar>(alpha)};
                std::copy_n(straight, 4, pixel);
                const QPoint place = at + QPoint(x, y);
                if (!QRect(QPoint(), canvas).contains(place)) {
                    continue;
                }
                const qsizetype index = (qsizetype(place.y()) * canvas.width() + place.x()) * 4;
                for (int c = 0; c < 4; ++c) {
                    const int multiplied = c == 3 ? alpha : int(std::lround(straight[c] * alpha / 255.0));
                    const int kept = c < 3 && alpha == 0 ? 255 : straight[c];
                    pixels[index + c] = char(isStraight ? kept : multiplied);
                    double &under = merged[std::size_t(index + c)];
                    under = double(multiplied) * double(opacity) + under * (1 - alpha / 255.0 * double(opacity));
                }
            }
        }
        writer.addLayerWithCGImage(ZQBitmap(image), {}, opacity, at);
        expected.push_back(pixels);
    }
    const ReadDocument document = read(writer.createPSDData());
    RC_ASSERT(document.isWhole);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        RC_ASSERT(document.layers[qsizetype(i)].pixels == expected[i]);
    }
    for (std::size_t i = 0; i < merged.size(); ++i) {
        // Each of at most four layers rounds.
        RC_ASSERT(std::abs(uchar(document.merged[qsizetype(i)]) - merged[i]) < 4.0);
    }
}

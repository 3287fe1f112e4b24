#include "Kit/Widgets/ZQArtworkGround.h"

#include "Kit/Widgets/ZQTheme.h"
#include "Tests/Kit/Widgets/ZQGridViewTest.h"

#include <QPainter>

namespace {

// A bar of each colour on a transparent ground; their edges fade.
QImage artwork(const QList<QColor> &colors, QSize size = {120, 90})
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    for (qsizetype i = 0; i < colors.size(); ++i) {
        painter.setBrush(colors[i]);
        painter.drawRect(QRectF(20.5, 20.5 + double(i) * 20, size.width() - 41, 15));
    }
    return image;
}

class Artwork : public Numbers
{
public:
    Artwork() : Numbers(1) {}
    ZQGridItem item(qint64) const override
    {
        return {QStringLiteral("a"), {}, QSize(120, 90), false, {QStringLiteral("/a"), version, false}};
    }
    int version = 0;
};

} // namespace

TEST(ZQArtworkGround, IsWhatTheArtworkStandsOutFrom)
{
    using Ground = ZQArtworkGround;
    struct Case
    {
        const char *what;
        QImage image;
        Ground inDark;
        Ground inLight;
    };
    QImage opaque(60, 60, QImage::Format_RGB32);
    opaque.fill(Qt::black);
    QImage speck = artwork({QColor(120, 120, 125)});
    speck.setPixelColor(30, 30, Qt::black);
    for (const Case &each : {Case{"black", artwork({Qt::black}), Ground::Light, Ground::None},
                             {"navy", artwork({QColor(10, 15, 60)}), Ground::Light, Ground::None},
                             {"white", artwork({Qt::white}), Ground::None, Ground::Dark},
                             {"yellow", artwork({QColor(250, 220, 60)}), Ground::None, Ground::Dark},
                             {"black and white", artwork({Qt::black, Qt::white}), Ground::Middle, Ground::Middle},
                             {"grey stands out anywhere", artwork({QColor(120, 120, 125)}), Ground::None, Ground::None},
                             {"a speck does not count", speck, Ground::None, Ground::None},
                             {"half transparent black", artwork({QColor(0, 0, 0, 120)}), Ground::Light, Ground::None},
                             {"nothing at all", artwork({}), Ground::None, Ground::None},
                             {"opaque", opaque, Ground::None, Ground::None},
                             {"one pixel", artwork({}, {1, 1}), Ground::None, Ground::None},
                             {"large", artwork({Qt::black}, {4000, 300}), Ground::Light, Ground::None},
                             {"none", QImage(), Ground::None, Ground::None}}) {
        const ZQArtworkTone tone = zqArtworkTone(each.image);
        EXPECT_EQ(zqArtworkGround(tone, true), each.inDark) << each.what;
        EXPECT_EQ(zqArtworkGround(tone, false), each.inLight) << each.what;
    }
}

TEST_F(ZQGridViewTest, TransparentArtworkStandsOutInBothThemes)
{
    Artwork shown;
    show(shown);
    const bool wasDark = ZQTheme::current().isDark();
    for (const bool isDark : {true, false}) {
        ZQTheme::current().setDark(isDark);
        for (const QList<QColor> &colors :
             {QList<QColor>{Qt::black}, {Qt::white}, {Qt::black, Qt::white}, {QColor(250, 220, 60)}}) {
            const QImage image = artwork(colors);
            view.thumbnailLoader().setDecoder([image](const ZQThumbnailRequest &, int) { return image; });
            ++shown.version;
            view.viewport()->grab();
            ASSERT_TRUE(QTest::qWaitFor([&] { return view.thumbnailLoader().pendingCount() == 0; }, 20000));
            const QImage drawn = view.viewport()->grab().toImage();
            const QPoint corner = QRect({}, image.size())
                                      .translated(view.visualRect(0).center().x() - 60,
                                                  view.visualRect(0).top() + view.gridLayout().pictureHeight() / 2 - 45)
                                      .topLeft();
            for (qsizetype i = 0; i < colors.size(); ++i) {
                const QPoint inBar = corner + QPoint(60, 28 + int(i) * 20);
                ASSERT_EQ(drawn.pixelColor(inBar), colors[i]);
                for (const QPoint &beside : {QPoint(10, 28), QPoint(110, 28), QPoint(60, 10)}) {
                    EXPECT_GE(ZQTheme::contrast(drawn.pixelColor(corner + beside), colors[i]), 3)
                        << isDark << " " << colors[i].name().toStdString();
                }
            }
        }
    }
    ZQTheme::current().setDark(wasDark);
}

TEST_F(ZQGridViewTest, SmallPicturesKeepTheirPixels)
{
    class Pattern : public Artwork
    {
    public:
        ZQGridItem item(qint64) const override
        {
            return {QStringLiteral("a"), {}, size, false, {QStringLiteral("/a"), version, false}};
        }
        QSize size;
    };
    Pattern shown;
    show(shown);
    struct Case
    {
        QSize size;
        bool fills;
        int factor;
    };
    const QSize room(view.visualRect(0).width() - 12, view.gridLayout().pictureHeight() - 12);
    for (const Case &each : {Case{{16, 16}, false, 1},
                             {{16, 16}, true, room.height() / 16},
                             {{17, 9}, true, room.width() / 17},
                             {{100, 100}, true, 1}}) {
        QImage image(each.size, QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                image.setPixelColor(x, y, (x + y) % 2 == 0 ? QColor(255, 0, 0) : QColor(0, 0, 255));
            }
        }
        view.setFillsCells(each.fills);
        view.thumbnailLoader().setDecoder([image](const ZQThumbnailRequest &, int) { return image; });
        shown.size = each.size;
        ++shown.version;
        view.viewport()->grab();
        ASSERT_TRUE(QTest::qWaitFor([&] { return view.thumbnailLoader().pendingCount() == 0; }, 20000));
        const QImage drawn = view.viewport()->grab().toImage();
        const auto isRed = [&](int x, int y) { return drawn.pixelColor(x, y) == QColor(255, 0, 0); };
        const auto isBlue = [&](int x, int y) { return drawn.pixelColor(x, y) == QColor(0, 0, 255); };
        QRect box;
        qint64 pixels = 0;
        for (int y = 0; y < 200; ++y) {
            for (int x = 0; x < 220; ++x) {
                if (isRed(x, y) || isBlue(x, y)) {
                    box |= QRect(x, y, 1, 1);
                    ++pixels;
                }
            }
        }
        const int radiusOfCorners = each.size.height() < 64 ? 0 : 3;
        EXPECT_EQ(box.size(), each.size * each.factor);
        EXPECT_GE(pixels, qint64(box.width()) * box.height() - 16 * radiusOfCorners) << "no colour in between";
        EXPECT_TRUE(isRed(box.left() + 4 * each.factor, box.top() + 4 * each.factor));
        EXPECT_TRUE(isBlue(box.left() + 5 * each.factor, box.top() + 4 * each.factor));
        EXPECT_TRUE(isRed(box.left() + 5 * each.factor - 1, box.top() + 5 * each.factor - 1)) << "sharp to the edge";
    }
}

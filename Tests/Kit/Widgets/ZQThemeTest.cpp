#include "Kit/Widgets/ZQTheme.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QPainter>

#include <gtest/gtest.h>

namespace {

struct Pair
{
    const char *what;
    ZQColorRole text;
    ZQColorRole ground;
};

const Pair pairs[] = {
    {"title", ZQColorRole::Text, ZQColorRole::Ground},
    {"row", ZQColorRole::Text, ZQColorRole::Sunken},
    {"selected row", ZQColorRole::Text, ZQColorRole::Select},
    {"badge of a selected row", ZQColorRole::TextMuted, ZQColorRole::Select},
    {"section", ZQColorRole::TextFaint, ZQColorRole::Sunken},
    {"extension", ZQColorRole::TextFaint, ZQColorRole::Ground},
    {"sheet", ZQColorRole::TextMuted, ZQColorRole::Raised},
    {"group count", ZQColorRole::TextMuted, ZQColorRole::Raised2},
    {"button", ZQColorRole::Text, ZQColorRole::Raised2},
    {"default button", ZQColorRole::AccentText, ZQColorRole::AccentFill},
    {"destructive button", ZQColorRole::AccentText, ZQColorRole::DangerFill},
};

} // namespace

TEST(ZQTheme, TextStandsOutInBothThemesAndWithAnyAccent)
{
    ZQTheme &theme = ZQTheme::current();
    for (const QColor &accent : {QColor(), QColor(255, 240, 60), QColor(20, 20, 90), QColor(230, 80, 160)}) {
        theme.setAccent(accent);
        for (const bool dark : {true, false}) {
            theme.setDark(dark);
            for (const Pair &pair : pairs) {
                EXPECT_GE(ZQTheme::contrast(theme.color(pair.text), theme.color(pair.ground)), 4.5)
                    << pair.what << (dark ? " dark " : " light ") << accent.name().toStdString();
            }
        }
    }
    theme.setAccent({});
    theme.setDark(true);
}

TEST(ZQTheme, TheStyleSheetNamesOnlyKnownColours)
{
    auto *application = static_cast<QApplication *>(QCoreApplication::instance());
    ZQTheme::current().apply(*application);
    const QString dark = application->styleSheet();
    EXPECT_FALSE(dark.isEmpty());
    EXPECT_FALSE(dark.contains(QStringLiteral(": ;"))) << "a name without a colour";
    EXPECT_FALSE(dark.contains(QStringLiteral("solid ;")));
    ZQTheme::current().setDark(false);
    EXPECT_NE(application->styleSheet(), dark);
    ZQTheme::current().setDark(true);
    EXPECT_EQ(application->styleSheet(), dark);
}

TEST(ZQIcon, EveryIconDrawsInItsColourAtEveryScale)
{
    ASSERT_GE(ZQIcon::names().size(), 20);
    for (const QString &name : ZQIcon::names()) {
        for (const qreal scale : {1.0, 1.5, 2.0}) {
            QImage image(QSize(16, 16) * scale, QImage::Format_ARGB32_Premultiplied);
            image.setDevicePixelRatio(scale);
            image.fill(Qt::transparent);
            QPainter painter(&image);
            ZQIcon::paint(painter, QRectF(0, 0, 16, 16), name, QColor(255, 0, 0));
            painter.end();
            bool drawn = false;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const QColor color = image.pixelColor(x, y);
                    drawn = drawn || color.alpha() > 200;
                    ASSERT_TRUE(color.alpha() == 0 || (color.red() > 240 && color.green() < 16)) << name.toStdString();
                }
            }
            EXPECT_TRUE(drawn) << name.toStdString() << " at " << scale;
        }
    }
}

TEST(ZQTheme, LabelsShowMarkupAsItIsWritten)
{
    auto &application = *qobject_cast<QApplication *>(QCoreApplication::instance());
    ZQTheme::current().apply(application);
    QLabel plain(QStringLiteral("<b>a</b>"));
    QLabel other(QStringLiteral("aaaaaaaa"));
    plain.show();
    EXPECT_EQ(plain.textFormat(), Qt::PlainText);
    EXPECT_GT(plain.sizeHint().width(), other.sizeHint().width() / 2);
}

#include "Kit/Widgets/ZQTheme.h"

#include "Kit/Widgets/ZQIcon.h"
#include "Kit/Widgets/ZQSwatch.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCheckBox>
#include <QGlyphRun>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QRadioButton>
#include <QTextLayout>
#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace {

struct Use
{
    ZQColorRole above;
    QList<ZQColorRole> grounds;
};

using enum ZQColorRole;

// Every role of text, on all that lies under it.
const Use texts[] = {
    {Text, {Ground, Sunken, Raised, Raised2, Hover, Cell, Select}},
    {TextMuted, {Ground, Sunken, Raised, Raised2, Hover, Cell, Select}},
    {TextFaint, {Ground, Sunken, Raised, Raised2, Hover, Cell}},
    {Accent, {Ground, Sunken, Raised, Hover, Cell}},
    {Danger, {Ground, Sunken, Raised}},
    {AccentText, {AccentFill, DangerFill}},
    {MaskLine, {MaskTag}},
};
// What shows where a control is, that it has the focus, or what it is about.
const Use controls[] = {
    {ControlBorder, {Ground, Sunken, Raised}},
    {Accent, {Ground, Sunken, Raised, Raised2, Hover, Cell, Select}},
    {TextFaint, {Select}}, // marks of rows
};

void expectContrast(const Use &use, double least, const std::string &where)
{
    const ZQTheme &theme = ZQTheme::current();
    for (const ZQColorRole ground : use.grounds) {
        EXPECT_GE(ZQTheme::contrast(theme.color(use.above), theme.color(ground)), least)
            << "role " << int(use.above) << " on " << int(ground) << where;
    }
}

} // namespace

TEST(ZQTheme, EveryTextAndControlStandsOutInBothThemesWithAnyAccentAndContrast)
{
    ZQTheme &theme = ZQTheme::current();
    for (const QColor &accent : {QColor(), QColor(255, 240, 60), QColor(20, 20, 90), QColor(230, 80, 160)}) {
        theme.setAccent(accent);
        for (const auto &[dark, isHigh] : {std::pair(true, false), {false, false}, {true, true}, {false, true}}) {
            theme.setDark(dark);
            theme.setHighContrast(isHigh);
            const std::string where =
                (dark ? " dark " : " light ") + accent.name().toStdString() + (isHigh ? " high" : "");
            EXPECT_EQ(theme.textContrast(), isHigh ? 7 : 4.5);
            for (const Use &use : texts) {
                expectContrast(use, theme.textContrast(), where);
            }
            for (const Use &use : controls) {
                expectContrast(use, 3, where);
            }
        }
    }
    theme.setHighContrast(false);
    theme.setAccent({});
    theme.setDark(true);
}

TEST(ZQTheme, LessMotionIsNone)
{
    ZQTheme &theme = ZQTheme::current();
    theme.apply(*static_cast<QApplication *>(QCoreApplication::instance()));
    int changes = 0;
    const auto counted = QObject::connect(&theme, &ZQTheme::changed, [&changes] { ++changes; });
    const int usual = theme.animationMilliseconds();
    EXPECT_GT(usual, 0);
    EXPECT_LT(usual, 150);
    theme.setReducesMotion(true);
    EXPECT_EQ(theme.animationMilliseconds(), 0);
    theme.setReducesMotion(true);
    EXPECT_EQ(changes, 1) << "what is as it was is no news";
    theme.setReducesMotion(false);
    EXPECT_EQ(theme.animationMilliseconds(), usual);
    QObject::disconnect(counted);
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

// The glyphs of a text, by their numbers in the font.
static QList<quint32> glyphsOf(const QString &text, const QFont &font)
{
    QTextLayout layout(text, font);
    layout.beginLayout();
    layout.createLine().setLineWidth(1000);
    layout.endLayout();
    QList<quint32> glyphs;
    for (const QGlyphRun &run : layout.glyphRuns()) {
        glyphs += run.glyphIndexes();
    }
    return glyphs;
}

TEST(ZQTheme, TheXOfASizeInANameStaysAnX)
{
    ZQTheme::current().apply(*qobject_cast<QApplication *>(QCoreApplication::instance()));
    const QFont font = ZQTheme::current().font();
    for (const char *name : {"5120x2880", "wall 1920X1080 dark", "1x2"}) {
        const QString text = QLatin1StringView(name);
        const QFont plain = ZQTheme::fontForName(font, text);
        const qsizetype at = text.toLower().indexOf(u'x');
        EXPECT_EQ(glyphsOf(text, plain).value(at), glyphsOf(text.mid(at, 1), font).value(0)) << name;
    }
    for (const char *name : {"Box", "x2", "2x", "a1xb", "5x y"}) {
        EXPECT_EQ(ZQTheme::fontForName(font, QString::fromLatin1(name)), font) << name << " is shaped as ever";
    }
    QLabel size(QStringLiteral("5120x2880"));
    QLabel crosses(QStringLiteral("5120×2880"));
    for (QLabel *label : {&size, &crosses}) {
        label->setFont(font);
        label->resize(120, 20);
    }
    EXPECT_NE(size.grab().toImage(), crosses.grab().toImage()) << "in a label, too";
}

TEST(ZQTheme, CheckBoxesAndRadioButtonsShowTheFocusInTheThemesColour)
{
    ZQTheme::current().setDark(true);
    ZQTheme::current().apply(*qobject_cast<QApplication *>(QCoreApplication::instance()));
    QWidget window;
    auto *column = new QVBoxLayout(&window);
    QCheckBox box(QStringLiteral("Box"));
    QRadioButton radio(QStringLiteral("Radio"));
    column->addWidget(&box);
    column->addWidget(&radio);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    for (QWidget *widget : {static_cast<QWidget *>(&box), static_cast<QWidget *>(&radio)}) {
        widget->resize(300, 24); // more room than the text takes
        const auto ring = [widget] {
            const QImage image = widget->grab().toImage();
            QRect found;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 20; x < image.width(); ++x) { // right of the mark
                    if (image.pixelColor(x, y) == zqColor(ZQColorRole::Accent)) {
                        found |= QRect(x, y, 1, 1);
                    }
                }
            }
            return found;
        };
        widget->clearFocus();
        EXPECT_TRUE(ring().isEmpty());
        widget->setFocus(Qt::TabFocusReason);
        const int text = widget->fontMetrics().horizontalAdvance(widget == &box ? box.text() : radio.text());
        EXPECT_GT(ring().left(), 20) << "around the text";
        EXPECT_NEAR(ring().width(), text + 8, 3);
        EXPECT_GE(ring().height(), widget->fontMetrics().height());
    }
}

TEST(ZQIcon, TheApplicationHasAnIconAtEverySize)
{
    const QIcon icon = ZQIcon::application();
    for (const int side : {16, 32, 128}) {
        const QImage image = icon.pixmap(side, side).toImage();
        EXPECT_EQ(image.width(), side);
        EXPECT_EQ(image.pixelColor(side / 2, side / 2).alpha(), 255);
        EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << "its corners are round";
    }
}

TEST(ZQIcon, ASelectedRowTakesTheColourItsGroundNeeds)
{
    ZQTheme::current().setDark(false);
    const auto drawn = [](const QIcon &icon) {
        const QImage image = icon.pixmap(QSize(16, 16), QIcon::Selected).toImage();
        QColor strongest(Qt::transparent);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor color = image.pixelColor(x, y);
                strongest = color.alpha() > strongest.alpha() ? color : strongest;
            }
        }
        return strongest.rgb();
    };
    EXPECT_EQ(drawn(ZQIcon::icon(QStringLiteral("plus"))), zqColor(ZQColorRole::AccentText).rgb());
    EXPECT_EQ(drawn(ZQIcon::icon(QStringLiteral("plus"), ZQColorRole::TextMuted, ZQColorRole::Text, ZQColorRole::Text)),
              zqColor(ZQColorRole::Text).rgb());
    ZQTheme::current().setDark(true);
}

TEST(ZQTheme, ASwatchOfTheColorOfItsGroundHasARingThatIsSeen)
{
    const bool wasDark = ZQTheme::current().isDark();
    for (const bool isDark : {true, false}) {
        ZQTheme::current().setDark(isDark);
        for (const ZQColorRole role :
             {ZQColorRole::Raised, ZQColorRole::Raised2, ZQColorRole::Select, ZQColorRole::Sunken}) {
            const QColor ground = zqColor(role);
            for (int code = 1000; code <= 1009; ++code) {
                const double own = ZQTheme::contrast(ZQTheme::swatch(code), ground);
                const double ring = ZQTheme::contrast(zqSwatchRing(code, ground), ground);
                EXPECT_GE(std::max(own, ring), 1.5) << code << (isDark ? " dark" : " light");
            }
        }
        const int hardest = isDark ? 1001 : 1000;
        const QColor ground = zqColor(ZQColorRole::Sunken);
        EXPECT_GE(ZQTheme::contrast(zqSwatchRing(hardest, ground), ground), 3);
        EXPECT_EQ(zqSwatchRing(1003, ground), zqColor(ZQColorRole::Border)) << "red needs none";
    }
    ZQTheme::current().setDark(wasDark);
}

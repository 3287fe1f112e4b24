#include "Kit/Widgets/ZQTheme.h"

#include <QApplication>
#include <QFile>
#include <QFontDatabase>
#include <QLabel>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <QToolButton>

#include <cmath>
#include <utility>

static void initResources()
{
    Q_INIT_RESOURCE(zelto_widgets);
}

namespace {

// Labels and tool tips show names of strangers' files as they are. As rich text, a name could have a picture of any
// file decoded here.
class PlainTextStyle : public QProxyStyle
{
public:
    using QProxyStyle::polish;
    explicit PlainTextStyle(QStyle *base) : QProxyStyle(base) {}

    void polish(QWidget *widget) override
    {
        if (auto *label = qobject_cast<QLabel *>(widget); label && label->textFormat() == Qt::AutoText) {
            label->setTextFormat(Qt::PlainText);
        }
        QProxyStyle::polish(widget);
    }

    void drawItemText(QPainter *painter, const QRect &rect, int flags, const QPalette &palette, bool enabled,
                      const QString &text, QPalette::ColorRole role) const override
    {
        const QFont font = painter->font();
        painter->setFont(ZQTheme::fontForName(font, text));
        QProxyStyle::drawItemText(painter, rect, flags, palette, enabled, text, role);
        painter->setFont(font);
    }

    // What has a border of its own shows the focus there.
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override
    {
        if (element != PE_FrameFocusRect) {
            QProxyStyle::drawPrimitive(element, option, painter, widget);
            return;
        }
        if (qobject_cast<const QPushButton *>(widget) || qobject_cast<const QToolButton *>(widget)) {
            return;
        }
        const auto *box = qobject_cast<const QAbstractButton *>(widget); // with its text beside a mark
        const QRectF ring =
            box ? QRectF(textRect(*box)).adjusted(-4, -1, 4, 1).intersected(box->rect()) : QRectF(option->rect);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(zqColor(ZQColorRole::Accent), 1));
        painter->setBrush(Qt::NoBrush);
        painter->drawRoundedRect(ring.adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
        painter->restore();
    }

private:
    static QRect textRect(const QAbstractButton &box)
    {
        QStyleOptionButton option;
        option.initFrom(&box);
        option.text = box.text();
        const bool isRadio = qobject_cast<const QRadioButton *>(&box) != nullptr;
        const QStyle &style = *box.style(); // with the style sheet's measures
        const QRect contents =
            style.subElementRect(isRadio ? SE_RadioButtonContents : SE_CheckBoxContents, &option, &box);
        const int flags =
            int(visualAlignment(option.direction, Qt::AlignLeft | Qt::AlignVCenter)) | Qt::TextShowMnemonic;
        return style.itemTextRect(option.fontMetrics, contents, flags, true, option.text);
    }
};

struct RoleColors
{
    ZQColorRole role;
    const char *name; // in the style sheet
    QRgb dark;
    QRgb light;
};

constexpr RoleColors roleColors[] = {
    {ZQColorRole::Ground, "ground", 0xff1b1c1f, 0xfffafafa},
    {ZQColorRole::Sunken, "sunken", 0xff151618, 0xfff1f1f3},
    {ZQColorRole::Raised, "raised", 0xff242529, 0xffffffff},
    {ZQColorRole::Raised2, "raised2", 0xff2d2f34, 0xffe6e6ea},
    {ZQColorRole::Hover, "hover", 0xff26282c, 0xffe9e9ec},
    {ZQColorRole::Cell, "cell", 0xff202226, 0xfff2f2f4},
    {ZQColorRole::Border, "border", 0xff33353b, 0xffdcdde1},
    {ZQColorRole::ControlBorder, "controlBorder", 0xff70737c, 0xff85888f},
    {ZQColorRole::Text, "text", 0xffe9eaed, 0xff1d1e21},
    {ZQColorRole::TextMuted, "textMuted", 0xffa2a5ae, 0xff585b63},
    {ZQColorRole::TextFaint, "textFaint", 0xff959aa3, 0xff62656d},
    {ZQColorRole::Accent, "accent", 0xff5b8cff, 0xff1f5cf0},
    {ZQColorRole::AccentFill, "accentFill", 0xff3d6de0, 0xff2a66f5},
    {ZQColorRole::AccentText, "accentText", 0xffffffff, 0xffffffff},
    {ZQColorRole::Select, "select", 0xff2b3a5e, 0xffdbe6ff},
    {ZQColorRole::Danger, "danger", 0xffff6b5e, 0xffc8332a},
    {ZQColorRole::DangerFill, "dangerFill", 0xffc8382b, 0xffc8382b},
    {ZQColorRole::ScrollHandle, "scrollHandle", 0xff3d4047, 0xffc9cad0},
    {ZQColorRole::Shadow, "shadow", 0x59000000, 0x2e000000},
    {ZQColorRole::ArtworkLight, "artworkLight", 0xffe4e5e9, 0xffffffff},
    {ZQColorRole::ArtworkLight2, "artworkLight2", 0xfff2f3f5, 0xffececef},
    {ZQColorRole::ArtworkDark, "artworkDark", 0xff1f2024, 0xff2d2f34},
    {ZQColorRole::ArtworkDark2, "artworkDark2", 0xff2b2d32, 0xff3a3c42},
    {ZQColorRole::ArtworkMiddle, "artworkMiddle", 0xff7b7e86, 0xff7b7e86},
    {ZQColorRole::ArtworkMiddle2, "artworkMiddle2", 0xff878a92, 0xff878a92},
    {ZQColorRole::Mask, "mask", 0x80000000, 0x80000000},
    {ZQColorRole::MaskLine, "maskLine", 0xffffffff, 0xffffffff},
    {ZQColorRole::MaskTag, "maskTag", 0xff151618, 0xff151618},
};

// White, black, gray, red, orange, yellow, green, blue, purple, pink.
constexpr QRgb swatches[] = {0xfff7f5f0, 0xff1a1a1c, 0xff8c8e94, 0xffd2333f, 0xffe8862f,
                             0xfff0c93b, 0xff3a9a5b, 0xff3f6fd8, 0xff8a4fd0, 0xffe779a8};

// What lies under text and is nearest to it, in both themes.
constexpr ZQColorRole hardestGround = ZQColorRole::Raised2;

double channel(double value)
{
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &color)
{
    return 0.2126 * channel(color.redF()) + 0.7152 * channel(color.greenF()) + 0.0722 * channel(color.blueF());
}

QColor mixed(const QColor &a, const QColor &b, double share)
{
    const auto mix = [share](int x, int y) { return int(std::lround(x + (y - x) * share)); };
    return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

} // namespace

ZQTheme::ZQTheme()
{
    initResources();
}

ZQTheme &ZQTheme::current()
{
    static ZQTheme theme;
    return theme;
}

void ZQTheme::setDark(bool dark)
{
    if (dark == m_dark) {
        return;
    }
    m_dark = dark;
    restyle();
    Q_EMIT changed();
}

void ZQTheme::setAccent(const QColor &accent)
{
    m_accent = accent;
    restyle();
    Q_EMIT changed();
}

void ZQTheme::setHighContrast(bool hasHighContrast)
{
    if (std::exchange(m_hasHighContrast, hasHighContrast) != hasHighContrast) {
        restyle();
        Q_EMIT changed();
    }
}

void ZQTheme::setReducesMotion(bool reducesMotion)
{
    if (std::exchange(m_reducesMotion, reducesMotion) != reducesMotion) {
        Q_EMIT changed(); // what turns, stops
    }
}

QColor ZQTheme::ownColor(ZQColorRole role) const
{
    const RoleColors &entry = roleColors[int(role)];
    return QColor::fromRgba(m_dark ? entry.dark : entry.light);
}

QColor ZQTheme::accented(ZQColorRole role) const
{
    switch (role) {
    case ZQColorRole::Accent:
        return withContrast(m_accent, ownColor(hardestGround), textContrast());
    case ZQColorRole::AccentFill:
        return withContrast(m_accent, ownColor(ZQColorRole::AccentText), textContrast());
    case ZQColorRole::Select: {
        double share = m_dark ? 0.3 : 0.16;
        QColor select = mixed(ownColor(ZQColorRole::Ground), m_accent, share);
        while (contrast(select, color(ZQColorRole::TextMuted)) < textContrast() && share > 0.02) {
            share -= 0.02;
            select = mixed(ownColor(ZQColorRole::Ground), m_accent, share);
        }
        return select;
    }
    default:
        return ownColor(role);
    }
}

QColor ZQTheme::color(ZQColorRole role) const
{
    const QColor usual = m_accent.isValid() ? accented(role) : ownColor(role);
    if (!m_hasHighContrast) {
        return usual;
    }
    switch (role) {
    case ZQColorRole::Text:
        return m_dark ? Qt::white : Qt::black;
    case ZQColorRole::TextMuted:
    case ZQColorRole::TextFaint:
    case ZQColorRole::Danger:
    case ZQColorRole::Accent:
        return withContrast(usual, ownColor(hardestGround), textContrast());
    case ZQColorRole::AccentFill:
    case ZQColorRole::DangerFill:
        return withContrast(usual, ownColor(ZQColorRole::AccentText), textContrast());
    case ZQColorRole::Select: // the text on it is made for other grounds
        return mixed(ownColor(ZQColorRole::Ground), usual, 0.4);
    case ZQColorRole::Border:
    case ZQColorRole::ControlBorder:
    case ZQColorRole::ScrollHandle:
        return withContrast(usual, ownColor(hardestGround), controlContrast());
    default:
        return usual;
    }
}

QFont ZQTheme::font(int pixelSize, QFont::Weight weight) const
{
    QFont font = m_family.isEmpty() ? QFont() : QFont(m_family);
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    return font;
}

QFont ZQTheme::fontForName(QFont font, QStringView name)
{
    for (qsizetype i = 1; i + 1 < name.size(); ++i) {
        const bool isBetweenDigits = name[i].toLower() == u'x' && name[i - 1].isDigit() && name[i + 1].isDigit();
        if (isBetweenDigits) {
            font.setStyleStrategy(QFont::StyleStrategy(font.styleStrategy() | QFont::PreferNoShaping));
            break;
        }
    }
    return font;
}

QColor ZQTheme::swatch(int code)
{
    constexpr int first = 1000;
    return code >= first && code < first + int(std::size(swatches)) ? QColor::fromRgb(swatches[code - first])
                                                                    : QColor();
}

double ZQTheme::contrast(const QColor &a, const QColor &b)
{
    const double x = luminance(a);
    const double y = luminance(b);
    return (std::max(x, y) + 0.05) / (std::min(x, y) + 0.05);
}

QColor ZQTheme::withContrast(QColor color, const QColor &ground, double ratio)
{
    const QColor end = luminance(ground) < 0.18 ? QColor(Qt::white) : QColor(Qt::black);
    for (int step = 0; step <= 20 && contrast(color, ground) < ratio; ++step) {
        color = mixed(color, end, 0.08);
    }
    return color;
}

int ZQTheme::animationMilliseconds() const
{
    const bool wanted = !m_reducesMotion &&
                        (!m_application || QApplication::style()->styleHint(QStyle::SH_Widget_Animation_Duration) > 0);
    return wanted ? 140 : 0;
}

void ZQTheme::apply(QApplication &application)
{
    const QString inter = QStringLiteral("Inter");
    if (QFontDatabase::hasFamily(inter)) {
        m_family = inter;
    }
    QStyle *fusion = QStyleFactory::create(QStringLiteral("Fusion"));
    const bool isFirst = !m_application; // afterwards the palette is this theme's own
    m_application = &application;
    const QColor told = application.palette().color(QPalette::Highlight);
    if (isFirst && told != fusion->standardPalette().color(QPalette::Highlight) && told.saturation() > 40) {
        m_accent = told;
    }
    QApplication::setStyle(new PlainTextStyle(fusion));
    restyle();
}

void ZQTheme::restyle()
{
    if (!m_application) {
        return;
    }
    const auto role = [this](ZQColorRole r) { return color(r); };
    QPalette palette;
    palette.setColor(QPalette::Window, role(ZQColorRole::Ground));
    palette.setColor(QPalette::Base, role(ZQColorRole::Raised));
    palette.setColor(QPalette::AlternateBase, role(ZQColorRole::Raised2));
    palette.setColor(QPalette::Button, role(ZQColorRole::Raised2));
    palette.setColor(QPalette::Light, role(ZQColorRole::Raised2));
    palette.setColor(QPalette::Mid, role(ZQColorRole::Border));
    palette.setColor(QPalette::Dark, role(ZQColorRole::Border));
    palette.setColor(QPalette::Shadow, role(ZQColorRole::Sunken));
    palette.setColor(QPalette::ToolTipBase, role(ZQColorRole::Raised2));
    for (const QPalette::ColorRole text :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText, QPalette::BrightText}) {
        palette.setColor(text, role(ZQColorRole::Text));
        palette.setColor(QPalette::Disabled, text, role(ZQColorRole::TextFaint));
    }
    palette.setColor(QPalette::PlaceholderText, role(ZQColorRole::TextMuted));
    palette.setColor(QPalette::Highlight, role(ZQColorRole::AccentFill));
    palette.setColor(QPalette::HighlightedText, role(ZQColorRole::AccentText));
    palette.setColor(QPalette::Link, role(ZQColorRole::Accent));
    QApplication::setPalette(palette);
    QApplication::setFont(font());
    m_application->setStyleSheet(styleSheet());
}

QString ZQTheme::styleSheet() const
{
    QFile file(QStringLiteral(":/zelto/themes/zelto.qss"));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QString text = QString::fromUtf8(file.readAll());
    static const QRegularExpression name(QStringLiteral("@([a-zA-Z0-9]+)"));
    QString sheet;
    qsizetype end = 0;
    for (auto it = name.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        sheet += QStringView(text).mid(end, match.capturedStart() - end);
        end = match.capturedEnd();
        for (const RoleColors &entry : roleColors) {
            if (match.capturedView(1) == QLatin1StringView(entry.name)) {
                sheet += color(entry.role).name(QColor::HexArgb);
            }
        }
    }
    return sheet += QStringView(text).mid(end);
}

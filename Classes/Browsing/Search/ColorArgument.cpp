#include "Classes/Browsing/Search/ColorArgument.h"

#include "Classes/Browsing/Index/PictureConditions.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQPredicate.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <QColor>
#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace {

constexpr int firstCode = int(ZQSidebarKind::FirstColor);
constexpr int lastCode = int(ZQSidebarKind::LastColor);

// What a name means where it is a matter of nearness, in the order of the codes.
constexpr std::array<QRgb, lastCode - firstCode + 1> colorsOfCodes = {0xffffff, 0x000000, 0x808080, 0xe03131, 0xf08c00,
                                                                      0xfcc419, 0x2f9e44, 0x1c6ed4, 0x8e44ad, 0xe64980};

// 0 for "none", nothing for what is no colour.
std::optional<int> codeForName(const QString &text)
{
    const QString name = zqFold(text);
    if (name == u"none" || name == zqFold(zqLocalized("none"))) {
        return 0;
    }
    const int known = ZQSidebarTag::colorValueForName(name == u"grey" ? QStringLiteral("gray") : name);
    if (known != -1) {
        return known;
    }
    for (int code = firstCode; code <= lastCode; ++code) {
        if (name == QString::number(code) || name == zqFold(ZQSidebarTag::colorNameForValue(code))) {
            return code;
        }
    }
    return std::nullopt;
}

std::optional<ColorArgument> colorOf(const QString &text)
{
    if (ColorArgument::isHex(text)) {
        QString digits = text.mid(1);
        if (digits.size() == 3) {
            digits = QString(2, digits[0]) + QString(2, digits[1]) + QString(2, digits[2]);
        }
        return ColorArgument{std::nullopt, digits.toUInt(nullptr, 16), std::nullopt};
    }
    const auto code = codeForName(text);
    if (!code) {
        return std::nullopt;
    }
    const auto rgb = *code ? std::optional(colorsOfCodes[size_t(*code - firstCode)]) : std::nullopt;
    return ColorArgument{code, rgb, std::nullopt};
}

} // namespace

bool ColorArgument::isHex(QStringView text)
{
    const auto isDigit = [](QChar c) {
        return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
    };
    return (text.size() == 4 || text.size() == 7) && text.front() == u'#' &&
           std::all_of(text.begin() + 1, text.end(), isDigit);
}

std::optional<ColorArgument> ColorArgument::of(const QString &text)
{
    static const QRegularExpression withNumber(QStringLiteral("^(.*[^\\s~])\\s*[\\s~]\\s*([0-9]{1,3})$"));
    const QString typed = text.trimmed();
    if (auto plain = colorOf(typed)) {
        return plain;
    }
    const auto match = withNumber.match(typed);
    auto color = match.hasMatch() ? colorOf(match.captured(1)) : std::nullopt;
    const int tolerance = match.captured(2).toInt();
    if (!color || !color->rgb || tolerance > ColorCondition::greatestTolerance) {
        return std::nullopt;
    }
    color->tolerance = tolerance;
    return color;
}

QString ColorArgument::textFor(QRgb color)
{
    return QColor(color).name();
}

QString ColorArgument::textFor(const QString &color, int tolerance)
{
    return color + u'~' + QString::number(tolerance);
}

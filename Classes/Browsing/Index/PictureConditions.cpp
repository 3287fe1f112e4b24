#include "Classes/Browsing/Index/PictureConditions.h"

#include "Kit/Persistence/ZQResemblance.h"

#include <QColor>
#include <QStringList>

namespace {

const QString picture = QStringLiteral("picture");
const QString color = QStringLiteral("color");
const QString within = QStringLiteral("within");

// What stands before and behind "within"; nothing for another text.
struct Parts
{
    QString wanted;
    int limit = 0;
};
std::optional<Parts> partsOf(const QString &text, const QString &name, int greatest)
{
    const QStringList words = text.split(u' ');
    bool isNumber = false;
    const int limit = words.value(3).toInt(&isNumber);
    const bool isRight = words.size() == 4 && words[0] == name && words[2] == within && isNumber;
    return isRight && limit >= 0 && limit <= greatest ? std::optional(Parts{words[1], limit}) : std::nullopt;
}

ZQResemblance pictureTest(const QString &text)
{
    const auto condition = PictureCondition::fromText(text);
    if (!condition) {
        return nullptr;
    }
    return [condition = *condition](std::string_view data) {
        const auto hash = ZQPictureHash::fromBytes(QByteArray::fromRawData(data.data(), qsizetype(data.size())));
        return hash && hash->distance(condition.hash) <= condition.farthest;
    };
}

ZQResemblance colorTest(const QString &text)
{
    const auto condition = ColorCondition::fromText(text);
    if (!condition) {
        return nullptr;
    }
    return [nearness = condition->nearness()](std::string_view data) { return nearness(PictureColors::of(data)); };
}

// Before any store is opened: conditions may come out of a file as well as from a search.
[[maybe_unused]] const bool isRegistered = [] {
    zqRegisterResemblance(picture, pictureTest);
    zqRegisterResemblance(color, colorTest);
    return true;
}();

} // namespace

QString PictureCondition::text() const
{
    return QStringList{picture, QString::fromLatin1(hash.bytes().toHex()), within, QString::number(farthest)}.join(
        u' ');
}

std::optional<PictureCondition> PictureCondition::fromText(const QString &text)
{
    const auto parts = partsOf(text, picture, ZQPictureHash::bitCount);
    const auto hash = parts ? ZQPictureHash::fromBytes(QByteArray::fromHex(parts->wanted.toLatin1())) : std::nullopt;
    return hash ? std::optional(PictureCondition{*hash, parts->limit}) : std::nullopt;
}

QString ColorCondition::text() const
{
    return QStringList{::color, QColor(color).name(), within, QString::number(tolerance)}.join(u' ');
}

std::optional<ColorCondition> ColorCondition::fromText(const QString &text)
{
    const auto parts = partsOf(text, ::color, greatestTolerance);
    bool isColor = false;
    const QRgb rgb = parts ? parts->wanted.mid(1).toUInt(&isColor, 16) : 0;
    const bool isRight = isColor && parts->wanted.size() == 7 && parts->wanted.startsWith(u'#');
    return isRight ? std::optional(ColorCondition{rgb, parts->limit}) : std::nullopt;
}

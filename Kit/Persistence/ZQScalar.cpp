#include "Kit/Persistence/ZQScalar.h"

#include <QDateTime>
#include <QSequentialIterable>

#include <cmath>
#include <cstring>

namespace {

constexpr double twoTo63 = 9223372036854775808.0;

int sign(qint64 a, qint64 b)
{
    return a < b ? -1 : (a > b ? 1 : 0);
}

// Exact, unlike a conversion of the integer: 2^53 + 1 is not 2^53.
int compareWithFraction(qint64 a, double b)
{
    if (b >= twoTo63) {
        return -1;
    }
    if (b < -twoTo63) {
        return 1;
    }
    const qint64 whole = static_cast<qint64>(b);
    if (a != whole) {
        return sign(a, whole);
    }
    const double fraction = b - static_cast<double>(whole);
    return fraction > 0 ? -1 : (fraction < 0 ? 1 : 0);
}

int compareNumbers(const ZQScalar &a, const ZQScalar &b)
{
    const qint64 *wholeA = std::get_if<qint64>(&a);
    const qint64 *wholeB = std::get_if<qint64>(&b);
    if (wholeA) {
        return wholeB ? sign(*wholeA, *wholeB) : compareWithFraction(*wholeA, std::get<double>(b));
    }
    if (wholeB) {
        return -compareWithFraction(*wholeB, std::get<double>(a));
    }
    const double x = std::get<double>(a);
    const double y = std::get<double>(b);
    return x < y ? -1 : (x > y ? 1 : 0);
}

bool isNumber(const ZQScalar &value)
{
    return std::holds_alternative<qint64>(value) || std::holds_alternative<double>(value);
}

ZQScalar scalarFromText(const QString &text)
{
    if (text.isNull()) {
        return {};
    }
    // The store holds UTF-8: text that has no UTF-8 form must look here as it looks there.
    return text.isValidUtf16() ? text : QString::fromUtf8(text.toUtf8());
}

ZQScalar scalarFromUnsigned(qulonglong value)
{
    if (value > static_cast<qulonglong>(std::numeric_limits<qint64>::max())) {
        return static_cast<double>(value);
    }
    return static_cast<qint64>(value);
}

} // namespace

ZQScalar zqScalarFromDouble(double value)
{
    if (std::isnan(value)) {
        return {};
    }
    if (value >= -twoTo63 && value < twoTo63 && value == std::trunc(value)) {
        return static_cast<qint64>(value);
    }
    return value;
}

ZQScalar zqScalarFromVariant(const QVariant &value, bool *isKnown)
{
    if (isKnown) {
        *isKnown = true;
    }
    switch (value.typeId()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        return {};
    case QMetaType::Bool:
        return static_cast<qint64>(value.toBool());
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return value.toLongLong();
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        return scalarFromUnsigned(value.toULongLong());
    case QMetaType::Float:
    case QMetaType::Double:
        return zqScalarFromDouble(value.toDouble());
    case QMetaType::QString:
        return scalarFromText(value.toString());
    case QMetaType::QDateTime: {
        const QDateTime date = value.toDateTime();
        return date.isValid() ? ZQScalar(ZQDateValue{date.toMSecsSinceEpoch()}) : ZQScalar();
    }
    case QMetaType::QByteArray: {
        const QByteArray data = value.toByteArray();
        return data.isNull() ? ZQScalar() : ZQScalar(data);
    }
    default:
        break;
    }
    if (value.metaType() == QMetaType::fromType<ZQObjectID>()) {
        const ZQObjectID id = value.value<ZQObjectID>();
        return id.isNull() ? ZQScalar() : ZQScalar(id);
    }
    if (isKnown) {
        *isKnown = false;
    }
    return {};
}

std::optional<QVariantList> zqListFromVariant(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QVariantList:
        return value.toList();
    case QMetaType::UnknownType:
    case QMetaType::QString:
    case QMetaType::QByteArray:
    case QMetaType::QVariantMap:
    case QMetaType::QVariantHash:
        return std::nullopt;
    default:
        break;
    }
    if (!value.canConvert<QSequentialIterable>()) {
        return std::nullopt;
    }
    QVariantList elements;
    for (const QVariant &element : value.value<QSequentialIterable>()) {
        elements.append(element);
    }
    return elements;
}

int zqCompareByCodePoint(QStringView a, QStringView b)
{
    const qsizetype common = std::min(a.size(), b.size());
    for (qsizetype i = 0; i < common; ++i) {
        const QChar x = a[i];
        const QChar y = b[i];
        if (x == y) {
            continue;
        }
        // Surrogates stand for code points above every other UTF-16 unit.
        if (x.isSurrogate() != y.isSurrogate()) {
            return x.isSurrogate() ? 1 : -1;
        }
        return x < y ? -1 : 1;
    }
    return sign(a.size(), b.size());
}

std::optional<int> zqOrderOfScalars(const ZQScalar &a, const ZQScalar &b)
{
    if (isNumber(a) && isNumber(b)) {
        return compareNumbers(a, b);
    }
    if (a.index() != b.index()) {
        return std::nullopt;
    }
    if (const QString *text = std::get_if<QString>(&a)) {
        return zqCompareByCodePoint(*text, std::get<QString>(b));
    }
    if (const ZQDateValue *date = std::get_if<ZQDateValue>(&a)) {
        return sign(date->milliseconds, std::get<ZQDateValue>(b).milliseconds);
    }
    if (const QByteArray *data = std::get_if<QByteArray>(&a)) {
        const QByteArray &other = std::get<QByteArray>(b);
        const auto common = static_cast<size_t>(std::min(data->size(), other.size()));
        const int order = common ? std::memcmp(data->constData(), other.constData(), common) : 0;
        return order ? order : sign(data->size(), other.size());
    }
    return std::nullopt;
}

size_t ZQScalarHash::operator()(const ZQScalar &value) const
{
    return std::visit(
        [](const auto &held) -> size_t {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, std::monostate>) {
                return 0;
            } else if constexpr (std::is_same_v<Held, ZQDateValue>) {
                return ::qHash(held.milliseconds);
            } else {
                return qHash(held);
            }
        },
        value);
}

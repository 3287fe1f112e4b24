#include "Kit/Files/ZQLegacyText.h"

#include <QStringDecoder>

#include <memory>
#include <optional>
#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>

namespace {

// An encoding in which each character of the language takes two bytes. Its everyday characters begin with a byte of one
// range; a text whose characters lie there is hardly one of another encoding read wrongly.
struct WideEncoding
{
    const char *name;
    QLocale::Language language;
    uchar firstLead;
    uchar lastLead;
    uchar firstTrail;
};

constexpr WideEncoding wideEncodings[] = {
    {"windows-31j", QLocale::Japanese, 0x88, 0x97, 0x40},
    {"GBK", QLocale::Chinese, 0xB0, 0xD7, 0xA1},
    {"windows-949", QLocale::Korean, 0xB0, 0xC8, 0xA1},
    {"windows-950", QLocale::Chinese, 0xA4, 0xC6, 0x40},
};

// Every byte string is valid in these, so the language alone tells them apart.
const char *narrowEncoding(QLocale::Language language)
{
    switch (language) {
    case QLocale::Russian:
    case QLocale::Ukrainian:
    case QLocale::Belarusian:
    case QLocale::Bulgarian:
        return "ibm-866";
    case QLocale::Greek:
        return "ibm-737";
    case QLocale::Polish:
    case QLocale::Czech:
    case QLocale::Slovak:
    case QLocale::Hungarian:
    case QLocale::Croatian:
    case QLocale::Slovenian:
    case QLocale::Romanian:
        return "ibm-852";
    default:
        return "ibm-437";
    }
}

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

Converter openConverter(const char *name)
{
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open(name, &status), ucnv_close);
    if (U_FAILURE(status)) {
        converter.reset();
    }
    return converter;
}

bool isASCIILetter(char byte)
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

constexpr int pointsOfByte = 2;

int pointsOfWide(char32_t character, const uchar *bytes, qsizetype length, const WideEncoding &encoding)
{
    if (character >= 0x3041 && character <= 0x30FE) { // kana
        return int(length) * pointsOfByte;
    }
    const bool isEveryday = length == 2 && bytes[0] >= encoding.firstLead && bytes[0] <= encoding.lastLead &&
                            bytes[1] >= encoding.firstTrail;
    if (isEveryday) {
        return 2 * pointsOfByte;
    }
    const bool isIdeographOrForm = (character >= 0x4E00 && character <= 0x9FFF) || character >= 0xAC00;
    return isIdeographOrForm ? 0 : -pointsOfByte; // signs and graphics stand in few names
}

int pointsOfNarrow(char32_t character)
{
    if (!QChar::isLetter(character)) {
        return -pointsOfByte; // lines and boxes
    }
    const QChar::Script script = QChar::script(character);
    return script == QChar::Script_Latin || script == QChar::Script_Cyrillic || script == QChar::Script_Greek
               ? pointsOfByte
               : 0;
}

// How much `texts` look like text when read in this encoding; nothing when one of them cannot be.
std::optional<int> points(const QList<QByteArray> &texts, const char *name, const WideEncoding *wide)
{
    const Converter converter = openConverter(name);
    UErrorCode status = U_ZERO_ERROR;
    if (converter) {
        ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    }
    if (!converter || U_FAILURE(status)) {
        return std::nullopt;
    }
    int sum = 0;
    for (const QByteArray &text : texts) {
        const char *position = text.constData();
        const char *const end = position + text.size();
        ucnv_resetToUnicode(converter.get());
        while (position < end) {
            const char *const begin = position;
            const auto character = static_cast<char32_t>(ucnv_getNextUChar(converter.get(), &position, end, &status));
            if (U_FAILURE(status)) {
                return std::nullopt;
            }
            if (character < 0x80) {
                continue;
            }
            const int gained =
                wide ? pointsOfWide(character, reinterpret_cast<const uchar *>(begin), position - begin, *wide)
                     : pointsOfNarrow(character);
            // No language puts one ideograph between two Latin letters; an accented letter read wrongly stands so.
            const bool standsBetweenLetters = wide && begin > text.constData() && isASCIILetter(begin[-1]) &&
                                              position < end && isASCIILetter(*position);
            sum += standsBetweenLetters ? -2 * pointsOfByte : gained;
        }
    }
    return sum;
}

bool isUTF8(const QByteArray &text)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString ignored = decoder(text);
    Q_UNUSED(ignored)
    return !decoder.hasError();
}

} // namespace

QByteArray ZQLegacyText::likelyEncoding(const QList<QByteArray> &texts, QLocale::Language language)
{
    QList<QByteArray> unclear;
    for (const QByteArray &text : texts) {
        if (!isUTF8(text)) {
            unclear.append(text);
        }
    }
    if (unclear.isEmpty()) {
        return "UTF-8";
    }
    const char *best = narrowEncoding(language);
    int most = points(unclear, best, nullptr).value_or(0);
    for (const WideEncoding &wide : wideEncodings) {
        std::optional<int> sum = points(unclear, wide.name, &wide);
        if (sum && *sum > 0 && wide.language == language) {
            *sum += *sum / 4 + 1;
        }
        if (sum && *sum > most) {
            best = wide.name;
            most = *sum;
        }
    }
    return best;
}

QString ZQLegacyText::decoded(const QByteArray &text, const QByteArray &encoding)
{
    const Converter converter = openConverter(encoding.constData());
    if (!converter) {
        return QString::fromUtf8(text);
    }
    QString result(text.size() * 2, Qt::Uninitialized); // no byte of these encodings gives more
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucnv_toUChars(converter.get(), reinterpret_cast<UChar *>(result.data()),
                                         int32_t(result.size()), text.constData(), int32_t(text.size()), &status);
    if (U_FAILURE(status)) {
        return QString::fromUtf8(text);
    }
    result.truncate(length);
    return result;
}

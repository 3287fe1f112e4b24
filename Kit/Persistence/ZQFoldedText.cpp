#include "Kit/Persistence/ZQFoldedText.h"

#include "Kit/Persistence/ZQPredicate.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <optional>

namespace {

bool isASCII(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char each) { return static_cast<signed char>(each) >= 0; });
}

char lowered(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? char(letter - 'A' + 'a') : letter;
}

// What one character of the first 65 536 folds to, up to three bytes of UTF-8 in one number.
class FoldedCharacter
{
public:
    explicit FoldedCharacter(quint32 packed) : m_packed(packed) {}
    static FoldedCharacter of(char16_t unit)
    {
        const QString base = zqFold(QString(QChar(unit)), false, true);
        // Some join with what is before them, or change places with it: what they fold to depends on that.
        const bool standsAlone = std::all_of(base.begin(), base.end(), [](QChar each) {
            return !each.isSurrogate() && QChar::combiningClass(each.unicode()) == 0 &&
                   u_getIntPropertyValue(each.unicode(), UCHAR_NFC_QUICK_CHECK) == UNORM_YES;
        });
        const QByteArray bytes = zqFold(QString(QChar(unit))).toUtf8();
        if (QChar(unit).isSurrogate() || !standsAlone || bytes.size() > mostBytes) {
            return FoldedCharacter(dependent);
        }
        quint32 packed = quint32(bytes.size() + 1) << 24;
        for (qsizetype i = 0; i < bytes.size(); ++i) {
            packed |= quint32(quint8(bytes[i])) << (8 * i);
        }
        return FoldedCharacter(packed);
    }

    quint32 packed() const { return m_packed; }
    bool isKnown() const { return m_packed != 0; }
    bool isDependent() const { return m_packed == dependent; }
    void appendTo(std::string &text) const
    {
        for (quint32 i = 0; i + 1 < m_packed >> 24; ++i) {
            text.push_back(char(m_packed >> (8 * i)));
        }
    }

private:
    static constexpr int mostBytes = 3;
    static constexpr quint32 dependent = ~quint32(0);
    quint32 m_packed; // the length and one above the bytes; 0 when nobody asked yet
};

FoldedCharacter foldedCharacter(char16_t unit)
{
    static std::array<std::atomic<quint32>, 65536> known; // 0, which takes no memory, until a character is met
    FoldedCharacter character(known[unit].load(std::memory_order_relaxed));
    if (!character.isKnown()) {
        character = FoldedCharacter::of(unit);
        known[unit].store(character.packed(), std::memory_order_relaxed);
    }
    return character;
}

// The character of two or three bytes at `place`, which moves behind it; nothing for any other.
std::optional<char16_t> nextCharacter(std::string_view text, size_t &place)
{
    const auto byte = [text](size_t at) { return at < text.size() ? quint8(text[at]) : quint8(0); };
    const auto isMore = [&byte](size_t at) { return (byte(at) & 0xc0) == 0x80; };
    const quint8 first = byte(place);
    if ((first & 0xe0) == 0xc0 && isMore(place + 1)) {
        const auto unit = char16_t((first & 0x1f) << 6 | (byte(place + 1) & 0x3f));
        place += 2;
        return unit >= 0x80 ? std::optional(unit) : std::nullopt;
    }
    if ((first & 0xf0) == 0xe0 && isMore(place + 1) && isMore(place + 2)) {
        const auto unit = char16_t((first & 0x0f) << 12 | (byte(place + 1) & 0x3f) << 6 | (byte(place + 2) & 0x3f));
        place += 3;
        return unit >= 0x800 ? std::optional(unit) : std::nullopt;
    }
    return std::nullopt;
}

bool appendFolded(std::string_view text, std::string &buffer)
{
    for (size_t place = 0; place < text.size();) {
        if (static_cast<signed char>(text[place]) >= 0) {
            buffer.push_back(lowered(text[place++]));
            continue;
        }
        const auto unit = nextCharacter(text, place);
        const auto character = unit ? std::optional(foldedCharacter(*unit)) : std::nullopt;
        if (!character || character->isDependent()) {
            return false;
        }
        character->appendTo(buffer);
    }
    return true;
}

} // namespace

std::string_view zqFoldedUTF8(std::string_view text, std::string &buffer)
{
    if (isASCII(text)) {
        buffer.resize(text.size());
        std::transform(text.begin(), text.end(), buffer.begin(), lowered);
        return buffer;
    }
    buffer.clear();
    if (!appendFolded(text, buffer)) {
        buffer = zqFold(QString::fromUtf8(text.data(), qsizetype(text.size()))).toStdString();
    }
    return buffer;
}

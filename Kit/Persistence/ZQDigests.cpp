#include "Kit/Persistence/ZQDigests.h"

#include "Kit/Persistence/ZQScalar.h"

#include <cstring>

namespace {

// The values of hexadecimal digits, -1 for what is none.
constexpr std::array<qint8, 256> hexValues = [] {
    std::array<qint8, 256> values{};
    values.fill(-1);
    for (qint8 i = 0; i < 10; ++i) {
        values[size_t('0' + i)] = i;
    }
    for (qint8 i = 0; i < 6; ++i) {
        values[size_t('a' + i)] = qint8(10 + i);
    }
    return values;
}();

} // namespace

std::optional<ZQDigests::Digest> ZQDigests::digestOf(std::string_view text)
{
    Digest digest{};
    if (text.size() != 2 * digest.size()) {
        return std::nullopt;
    }
    int all = 0; // negative once one of them is none
    for (size_t i = 0; i < digest.size(); ++i) {
        const int high = hexValues[quint8(text[2 * i])];
        const int low = hexValues[quint8(text[2 * i + 1])];
        all |= high | low;
        digest[i] = quint8(quint32(high) << 4 | quint32(low));
    }
    if (all < 0) {
        return std::nullopt;
    }
    return digest;
}

void ZQDigests::append(std::optional<std::string_view> text)
{
    const size_t row = m_digests.size();
    m_digests.emplace_back();
    m_nulls.resize(row + 1);
    m_isOther.resize(row + 1);
    set(row, text);
}

void ZQDigests::set(size_t row, std::optional<std::string_view> text)
{
    const auto digest = text ? digestOf(*text) : std::nullopt;
    m_digests[row] = digest.value_or(Digest{});
    m_nulls.set(row, !text);
    if (m_isOther.contains(row)) {
        m_others.remove(quint32(row));
    }
    m_isOther.set(row, text && !digest);
    if (text && !digest) {
        m_others.insert(quint32(row),
                        text->empty() ? QStringLiteral("") : QString::fromUtf8(text->data(), qsizetype(text->size())));
    }
}

void ZQDigests::appendAll(const ZQDigests &other)
{
    const size_t before = rowCount();
    m_digests.insert(m_digests.end(), other.m_digests.begin(), other.m_digests.end());
    m_nulls.resize(m_digests.size());
    m_isOther.resize(m_digests.size());
    other.m_nulls.forEach([&](size_t row) { m_nulls.insert(before + row); });
    other.m_isOther.forEach([&](size_t row) {
        m_isOther.insert(before + row);
        m_others.insert(quint32(before + row), other.m_others.value(quint32(row)));
    });
}

QString ZQDigests::string(size_t row) const
{
    if (isNull(row)) {
        return {};
    }
    if (isOther(row)) {
        return m_others.value(quint32(row));
    }
    const Digest &digest = m_digests[row];
    return QString::fromLatin1(
        QByteArray::fromRawData(reinterpret_cast<const char *>(digest.data()), qsizetype(digest.size())).toHex());
}

int ZQDigests::compare(size_t a, size_t b) const
{
    if (isNull(a) || isNull(b)) {
        return int(isNull(b)) - int(isNull(a));
    }
    if (isOther(a) || isOther(b)) {
        return zqCompareByCodePoint(string(a), string(b));
    }
    return std::memcmp(m_digests[a].data(), m_digests[b].data(), m_digests[a].size());
}

size_t ZQDigests::bytes() const
{
    return m_digests.capacity() * sizeof(Digest) + m_nulls.bytes() + m_isOther.bytes() +
           size_t(m_others.capacity()) * (sizeof(QString) + sizeof(quint32));
}

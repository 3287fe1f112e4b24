#pragma once

#include "Kit/Foundation/ZQPages.h"
#include "Kit/Persistence/ZQRowSet.h"

#include <QHash>
#include <QString>

#include <array>
#include <cstring>
#include <optional>
#include <string_view>

// Texts that are nearly all the forty lower-case hexadecimal digits of a digest: 20 bytes each.
class ZQDigests
{
public:
    using Digest = std::array<quint8, 20>;

    static std::optional<Digest> digestOf(std::string_view text); // nothing for any other text
    // Of all its bytes, evenly in all bits: not every digest in a library is one of a file.
    static quint64 hashOf(const Digest &digest)
    {
        quint64 first = 0;
        quint64 second = 0;
        quint32 last = 0;
        std::memcpy(&first, digest.data(), sizeof first);
        std::memcpy(&second, digest.data() + sizeof first, sizeof second);
        std::memcpy(&last, digest.data() + sizeof first + sizeof second, sizeof last);
        constexpr quint64 odd = 0x9e3779b97f4a7c15; // 2⁶⁴ by the golden ratio
        const quint64 mixed = (first ^ (second * odd) ^ (quint64(last) << 31)) * odd;
        return (mixed ^ mixed >> 32) * odd;
    }

    size_t rowCount() const { return m_digests.size(); }
    void append(std::optional<std::string_view> text);
    void set(size_t row, std::optional<std::string_view> text);
    void appendAll(const ZQDigests &other);
    void reserve(size_t rows) { m_digests.reserve(rows); }
    void shrink() { zqShrink(m_digests); }

    bool isNull(size_t row) const { return m_nulls.contains(row); }
    bool isOther(size_t row) const { return m_isOther.contains(row); }
    const ZQRowSet &nulls() const { return m_nulls; }
    const ZQRowSet &others() const { return m_isOther; }               // rows whose text is no digest
    const ZQPagedVector<Digest> &digests() const { return m_digests; } // zeros where there is none
    QString string(size_t row) const;                                  // null where there is none
    // As the texts order, by code point; null comes first.
    int compare(size_t a, size_t b) const;
    size_t bytes() const;

private:
    ZQPagedVector<Digest> m_digests;
    ZQRowSet m_nulls;
    ZQRowSet m_isOther;
    QHash<quint32, QString> m_others;
};

#include "Kit/Persistence/ZQRowSet.h"

#include <algorithm>

ZQRowSet::ZQRowSet(size_t rows, bool isFull)
    : m_rows(rows), m_words((rows + 63) / 64, isFull ? ~quint64(0) : quint64(0))
{
    if (isFull && rows % 64) {
        m_words.back() = (quint64(1) << (rows % 64)) - 1;
    }
}

void ZQRowSet::resizeWords(size_t rows)
{
    m_words.resize((rows + 63) / 64);
    if (rows < m_rows && rows % 64) {
        m_words.back() &= (quint64(1) << (rows % 64)) - 1;
    }
}

size_t ZQRowSet::count() const
{
    size_t count = 0;
    for (const quint64 word : m_words) {
        count += size_t(std::popcount(word));
    }
    return count;
}

bool ZQRowSet::isEmpty() const
{
    return std::all_of(m_words.begin(), m_words.end(), [](quint64 word) { return word == 0; });
}

ZQRowSet &ZQRowSet::operator&=(const ZQRowSet &other)
{
    Q_ASSERT(m_rows == other.m_rows);
    for (size_t i = 0; i < m_words.size(); ++i) {
        m_words[i] &= other.m_words[i];
    }
    return *this;
}

ZQRowSet &ZQRowSet::operator|=(const ZQRowSet &other)
{
    Q_ASSERT(m_rows == other.m_rows);
    for (size_t i = 0; i < m_words.size(); ++i) {
        m_words[i] |= other.m_words[i];
    }
    return *this;
}

ZQRowSet &ZQRowSet::operator-=(const ZQRowSet &other)
{
    Q_ASSERT(m_rows == other.m_rows);
    for (size_t i = 0; i < m_words.size(); ++i) {
        m_words[i] &= ~other.m_words[i];
    }
    return *this;
}

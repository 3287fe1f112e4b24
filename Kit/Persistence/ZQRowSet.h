#pragma once

#include <QtGlobal>

#include <bit>
#include <cstddef>
#include <vector>

// A set of rows, by number, one bit each. A value; both sides of an operation have the same number of rows.
class ZQRowSet
{
public:
    ZQRowSet() = default;
    explicit ZQRowSet(size_t rows, bool isFull = false);

    size_t rowCount() const { return m_rows; }
    void resize(size_t rows) // new rows are not in it
    {
        if (rows < m_rows || (rows + 63) / 64 != m_words.size()) {
            resizeWords(rows);
        }
        m_rows = rows;
    }
    bool contains(size_t row) const { return (m_words[row / 64] >> (row % 64)) & 1U; }
    void insert(size_t row) { m_words[row / 64] |= quint64(1) << (row % 64); }
    void remove(size_t row) { m_words[row / 64] &= ~(quint64(1) << (row % 64)); }
    void set(size_t row, bool isIn) { isIn ? insert(row) : remove(row); }
    size_t count() const;
    bool isEmpty() const;

    ZQRowSet &operator&=(const ZQRowSet &other);
    ZQRowSet &operator|=(const ZQRowSet &other);
    ZQRowSet &operator-=(const ZQRowSet &other);
    friend bool operator==(const ZQRowSet &, const ZQRowSet &) = default;

    // Row 64 * i + b is bit b of word i; bits beyond the last row are 0.
    const std::vector<quint64> &words() const { return m_words; }
    std::vector<quint64> &words() { return m_words; }
    size_t bytes() const { return m_words.capacity() * sizeof(quint64); }

    template <class Visit>
    void forEach(const Visit &visit) const // in ascending order
    {
        for (size_t i = 0; i < m_words.size(); ++i) {
            for (quint64 word = m_words[i]; word; word &= word - 1) {
                visit(64 * i + size_t(std::countr_zero(word)));
            }
        }
    }

private:
    void resizeWords(size_t rows);

    size_t m_rows = 0;
    std::vector<quint64> m_words;
};

#pragma once

#include "Kit/Foundation/ZQPages.h"
#include "Kit/Persistence/ZQColumns.h"

#include <algorithm>
#include <limits>
#include <optional>

// Whole numbers or dates by row, some of them null. What does not fit the type is cut to its range, which no value that
// was saved through the model needs.
template <class T>
class IndexNumbers
{
public:
    size_t size() const { return m_values.size(); }
    T operator[](size_t row) const { return m_values[row]; }
    bool isNull(size_t row) const { return m_nulls.contains(row); }

    void append(std::optional<qint64> value)
    {
        m_values.push_back(0);
        m_nulls.resize(m_values.size());
        set(m_values.size() - 1, value);
    }
    void set(size_t row, std::optional<qint64> value)
    {
        m_values[row] =
            T(std::clamp<qint64>(value.value_or(0), std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
        m_nulls.set(row, !value);
    }
    std::optional<qint64> value(size_t row) const
    {
        return isNull(row) ? std::nullopt : std::optional(qint64(m_values[row]));
    }
    void appendAll(const IndexNumbers &other)
    {
        const size_t before = m_values.size();
        m_values.insert(m_values.end(), other.m_values.begin(), other.m_values.end());
        m_nulls.resize(m_values.size());
        other.m_nulls.forEach([&](size_t row) { m_nulls.insert(before + row); });
    }
    void reserve(size_t rows) { m_values.reserve(rows); }
    void shrink() { zqShrink(m_values); }
    size_t bytes() const { return m_values.capacity() * sizeof(T) + m_nulls.bytes(); }
    ZQNumberColumn column(bool isDate = false) const { return {std::span<const T>(m_values), &m_nulls, isDate}; }

private:
    ZQPagedVector<T> m_values;
    ZQRowSet m_nulls;
};

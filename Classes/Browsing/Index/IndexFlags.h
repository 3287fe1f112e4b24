#pragma once

#include "Kit/Persistence/ZQColumns.h"

#include <optional>

// Yes or no by row, some of them null.
class IndexFlags
{
public:
    const ZQRowSet &rows() const { return m_rows; } // those that say yes
    std::optional<qint64> value(size_t row) const
    {
        return m_nulls.contains(row) ? std::nullopt : std::optional(qint64(m_rows.contains(row)));
    }
    void append(std::optional<qint64> value)
    {
        const size_t row = m_rows.rowCount();
        m_rows.resize(row + 1);
        m_nulls.resize(row + 1);
        set(row, value);
    }
    void set(size_t row, std::optional<qint64> value)
    {
        m_rows.set(row, value.value_or(0) != 0);
        m_nulls.set(row, !value);
    }
    void appendAll(const IndexFlags &other)
    {
        const size_t before = m_rows.rowCount();
        m_rows.resize(before + other.m_rows.rowCount());
        m_nulls.resize(m_rows.rowCount());
        other.m_rows.forEach([&](size_t row) { m_rows.insert(before + row); });
        other.m_nulls.forEach([&](size_t row) { m_nulls.insert(before + row); });
    }
    size_t bytes() const { return m_rows.bytes() + m_nulls.bytes(); }
    ZQFlagColumn column() const { return {&m_rows, &m_nulls}; }

private:
    ZQRowSet m_rows;
    ZQRowSet m_nulls;
};

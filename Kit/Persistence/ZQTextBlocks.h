#pragma once

#include "Kit/Foundation/ZQPages.h"
#include "Kit/Persistence/ZQRowSet.h"

#include <QHash>
#include <QString>

#include <optional>
#include <string>
#include <string_view>

// The texts of many rows, as UTF-8 in blocks of `rowsPerBlock` rows: what is searched is in one piece, and changing a
// text writes one block anew, so that there is never anything to clean up.
//
// Each text is followed by a byte that no text has, so that nothing is found across two of them.
class ZQTextBlocks
{
public:
    static constexpr size_t rowsPerBlock = size_t(1) << 14;
    static constexpr char separator = '\xff';

    struct Block
    {
        ZQPagedString bytes;
        ZQPagedVector<quint32> offsets; // one more than rows; the last is where the bytes end

        size_t rows() const { return offsets.size() - 1; }
        std::string_view text(size_t row) const
        {
            return {bytes.data() + offsets[row], size_t(offsets[row + 1] - offsets[row] - 1)};
        }
    };

    size_t rowCount() const { return m_nulls.rowCount(); }
    const std::vector<Block> &blocks() const { return m_blocks; }
    const ZQRowSet &nulls() const { return m_nulls; } // rows without a text
    bool isNull(size_t row) const { return m_nulls.contains(row); }
    std::string_view text(size_t row) const // empty where there is none
    {
        return m_blocks[row / rowsPerBlock].text(row % rowsPerBlock);
    }
    QString string(size_t row) const; // null where there is none

    using Text = std::optional<std::string_view>; // nothing: the row has none
    void append(Text text);
    void appendAll(const ZQTextBlocks &other);
    void replace(const QHash<quint32, std::optional<std::string>> &texts);
    void shrink(); // gives back memory kept for growing, which only the last block has
    size_t bytes() const;

private:
    Block &blockForNext();

    std::vector<Block> m_blocks;
    ZQRowSet m_nulls;
};

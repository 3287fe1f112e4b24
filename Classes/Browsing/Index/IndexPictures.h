#pragma once

#include "Classes/Browsing/Index/HashDistances.h"
#include "Classes/Browsing/Index/PictureColors.h"
#include "Kit/Foundation/ZQPages.h"
#include "Kit/Persistence/ZQRowSet.h"

#include <optional>

// What pictures look like, by row: hash and palette. Rows without either take four bytes; what the others have lies
// close together, so that a pass over all pictures reads nothing else.
class IndexPictures
{
public:
    struct Value
    {
        std::optional<HashWords> hash;
        PictureColors colors;
        bool isEmpty() const { return !hash && colors.isEmpty(); }
    };
    // Of the attributes `pictureHash` and `palette`.
    static Value valueOf(std::string_view hash, std::string_view palette);

    size_t size() const { return m_slots.size(); }
    Value value(size_t row) const;
    const PictureColors *colors(size_t row) const // null for none; until the next change
    {
        return m_slots[row] == none ? nullptr : &m_colors[m_slots[row]];
    }
    void append(const Value &value);
    void set(size_t row, const Value &value);
    void appendAll(const IndexPictures &other);
    void reserve(size_t rows); // as if all had pictures: room that nothing is written to takes no memory
    void shrink();
    size_t bytes() const;

    // Whatever has a hash or a palette, in slots; both have a value for each, and the row is `none` where it is unused.
    static constexpr quint32 none = ~quint32(0);
    std::span<const HashWords> hashes() const { return m_hashes; }
    std::span<const PictureColors> palettes() const { return m_colors; }
    std::span<const quint32> rows() const { return m_rows; }
    bool hasHash(size_t slot) const { return m_hashed.contains(slot); }

private:
    void put(quint32 slot, const Value &value);

    ZQPagedVector<quint32> m_slots; // by row
    ZQPagedVector<HashWords> m_hashes;
    ZQPagedVector<PictureColors> m_colors;
    ZQPagedVector<quint32> m_rows;
    ZQRowSet m_hashed;
    std::vector<quint32> m_unused;
};

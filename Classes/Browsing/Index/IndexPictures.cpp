#include "Classes/Browsing/Index/IndexPictures.h"

IndexPictures::Value IndexPictures::valueOf(std::string_view hash, std::string_view palette)
{
    Value value;
    value.colors = PictureColors::of(palette);
    if (!hash.empty()) {
        const auto read = ZQPictureHash::fromBytes(QByteArray::fromRawData(hash.data(), qsizetype(hash.size())));
        value.hash = read ? std::optional(read->words) : std::nullopt;
    }
    return value;
}

IndexPictures::Value IndexPictures::value(size_t row) const
{
    const quint32 slot = m_slots[row];
    if (slot == none) {
        return {};
    }
    return {m_hashed.contains(slot) ? std::optional(m_hashes[slot]) : std::nullopt, m_colors[slot]};
}

void IndexPictures::append(const Value &value)
{
    m_slots.push_back(none);
    set(m_slots.size() - 1, value);
}

void IndexPictures::put(quint32 slot, const Value &value)
{
    m_hashes[slot] = value.hash.value_or(HashWords{});
    m_hashed.set(slot, value.hash.has_value());
    m_colors[slot] = value.colors;
}

void IndexPictures::set(size_t row, const Value &value)
{
    quint32 slot = m_slots[row];
    if (slot == none && value.isEmpty()) {
        return;
    }
    if (slot != none && value.isEmpty()) {
        put(slot, value);
        m_rows[slot] = none;
        m_unused.push_back(slot);
        m_slots[row] = none;
        return;
    }
    if (slot == none && !m_unused.empty()) {
        slot = m_unused.back();
        m_unused.pop_back();
    } else if (slot == none) {
        slot = quint32(m_rows.size());
        m_rows.push_back(none);
        m_hashes.emplace_back();
        m_colors.emplace_back();
        m_hashed.resize(m_rows.size());
    }
    put(slot, value);
    m_rows[slot] = quint32(row);
    m_slots[row] = slot;
}

void IndexPictures::appendAll(const IndexPictures &other)
{
    const auto firstRow = quint32(m_slots.size());
    const auto firstSlot = quint32(m_rows.size());
    const auto append = [](auto &own, const auto &more, auto first) {
        own.reserve(own.size() + more.size());
        for (const quint32 each : more) {
            own.push_back(each == none ? none : first + each);
        }
    };
    append(m_slots, other.m_slots, firstSlot);
    append(m_rows, other.m_rows, firstRow);
    m_hashes.insert(m_hashes.end(), other.m_hashes.begin(), other.m_hashes.end());
    m_colors.insert(m_colors.end(), other.m_colors.begin(), other.m_colors.end());
    m_hashed.resize(m_rows.size());
    other.m_hashed.forEach([&](size_t slot) { m_hashed.insert(firstSlot + slot); });
    append(m_unused, other.m_unused, firstSlot);
}

void IndexPictures::reserve(size_t rows)
{
    m_slots.reserve(rows);
    m_hashes.reserve(rows);
    m_colors.reserve(rows);
    m_rows.reserve(rows);
}

void IndexPictures::shrink()
{
    zqShrink(m_slots);
    zqShrink(m_hashes);
    zqShrink(m_colors);
    zqShrink(m_rows);
}

size_t IndexPictures::bytes() const
{
    return m_slots.capacity() * sizeof(quint32) + m_hashes.size() * sizeof(HashWords) +
           m_colors.size() * sizeof(PictureColors) + m_rows.size() * sizeof(quint32) + m_hashed.bytes() +
           m_unused.capacity() * sizeof(quint32);
}

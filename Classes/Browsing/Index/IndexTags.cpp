#include "Classes/Browsing/Index/IndexTags.h"

#include <QSet>

#include <algorithm>
#include <limits>

void IndexTags::build(size_t rows, size_t tags, const Links &links)
{
    m_starts.assign(rows, 0);
    m_counts.assign(rows, 0);
    m_pool.assign(links.size(), 0);
    std::vector<quint32> sizes(tags, 0);
    for (const auto &[row, tag] : links) {
        ++m_counts[row];
        ++sizes[tag];
    }
    quint32 start = 0;
    for (size_t row = 0; row < rows; ++row) {
        m_starts[row] = start;
        start += m_counts[row];
        m_counts[row] = 0;
    }
    m_rowsOf.assign(tags, {});
    for (size_t tag = 0; tag < tags; ++tag) {
        m_rowsOf[tag].reserve(sizes[tag]);
    }
    for (const auto &[row, tag] : links) {
        m_pool[m_starts[row] + m_counts[row]++] = tag;
        m_rowsOf[tag].push_back(row);
    }
    m_unused = 0;
}

void IndexTags::write(quint32 row, const std::vector<quint32> &tags)
{
    // No item has so many; the lists by tag know them all the same.
    const auto count = std::min<size_t>(tags.size(), std::numeric_limits<quint16>::max());
    if (count > m_counts[row]) {
        m_unused += m_counts[row];
        m_starts[row] = quint32(m_pool.size());
        m_pool.resize(m_pool.size() + count);
    } else {
        m_unused += m_counts[row] - count;
    }
    m_counts[row] = quint16(count);
    std::copy_n(tags.begin(), count, m_pool.begin() + m_starts[row]);
}

void IndexTags::set(const QHash<quint32, std::vector<quint32>> &lists, size_t rows, size_t tags)
{
    const auto has = [](const auto &list, quint32 tag) {
        return std::find(list.begin(), list.end(), tag) != list.end();
    };
    m_starts.resize(rows, 0);
    m_counts.resize(rows, 0);
    m_rowsOf.resize(tags);
    ZQRowSet changed(rows);
    QSet<quint32> left; // by some row
    QHash<quint32, std::vector<quint32>> added;
    for (auto entry = lists.cbegin(); entry != lists.cend(); ++entry) {
        const std::span<const quint32> before = tagsOf(entry.key());
        changed.insert(entry.key());
        for (const quint32 tag : before) {
            if (!has(*entry, tag)) {
                left.insert(tag);
            }
        }
        for (const quint32 tag : *entry) {
            if (!has(before, tag)) {
                added[tag].push_back(entry.key());
            }
        }
    }
    for (const quint32 tag : std::as_const(left)) {
        std::erase_if(m_rowsOf[tag],
                      [&](quint32 row) { return changed.contains(row) && !has(*lists.constFind(row), tag); });
    }
    for (auto entry = added.cbegin(); entry != added.cend(); ++entry) {
        std::vector<quint32> &of = m_rowsOf[entry.key()];
        of.insert(of.end(), entry->begin(), entry->end());
    }
    for (auto entry = lists.cbegin(); entry != lists.cend(); ++entry) {
        write(entry.key(), *entry);
    }
    compact();
}

void IndexTags::removeTag(quint32 tag)
{
    if (tag >= m_rowsOf.size()) {
        return;
    }
    for (const quint32 row : std::exchange(m_rowsOf[tag], {})) {
        const auto begin = m_pool.begin() + m_starts[row];
        const auto end = std::remove(begin, begin + m_counts[row], tag);
        m_unused += m_counts[row] - size_t(end - begin);
        m_counts[row] = quint16(end - begin);
    }
}

void IndexTags::compact()
{
    if (2 * m_unused < m_pool.size() + 1024) {
        return;
    }
    ZQPagedVector<quint32> pool;
    pool.reserve(m_pool.size() - m_unused);
    for (size_t row = 0; row < m_starts.size(); ++row) {
        const std::span<const quint32> tags = tagsOf(row);
        const auto start = quint32(pool.size());
        pool.insert(pool.end(), tags.begin(), tags.end());
        m_starts[row] = start;
    }
    m_pool = std::move(pool);
    m_unused = 0;
}

size_t IndexTags::bytes() const
{
    size_t bytes = m_starts.capacity() * 4 + m_counts.capacity() * 2 + m_pool.capacity() * 4;
    for (const std::vector<quint32> &rows : m_rowsOf) {
        bytes += sizeof rows + rows.capacity() * 4;
    }
    return bytes;
}

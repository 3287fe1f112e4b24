#include "Kit/Persistence/ZQTextBlocks.h"

#include <algorithm>
#include <map>

QString ZQTextBlocks::string(size_t row) const
{
    if (isNull(row)) {
        return {};
    }
    const std::string_view utf8 = text(row);
    return utf8.empty() ? QStringLiteral("") : QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
}

// A full block is about as large as the next one will be.
ZQTextBlocks::Block &ZQTextBlocks::blockForNext()
{
    if (m_blocks.empty() || m_blocks.back().rows() == rowsPerBlock) {
        Block next;
        if (!m_blocks.empty()) {
            Block &full = m_blocks.back();
            zqShrink(full.bytes);
            zqShrink(full.offsets);
            next.bytes.reserve(full.bytes.size() + full.bytes.size() / 16);
            next.offsets.reserve(rowsPerBlock + 1);
        }
        next.offsets.push_back(0);
        m_blocks.push_back(std::move(next));
    }
    return m_blocks.back();
}

void ZQTextBlocks::append(Text text)
{
    const size_t row = rowCount();
    Block &block = blockForNext();
    m_nulls.resize(row + 1);
    m_nulls.set(row, !text);
    block.bytes.append(text.value_or(std::string_view()));
    block.bytes.push_back(separator);
    block.offsets.push_back(quint32(block.bytes.size()));
}

void ZQTextBlocks::appendAll(const ZQTextBlocks &other)
{
    const size_t before = rowCount();
    m_nulls.resize(before + other.rowCount());
    other.m_nulls.forEach([&](size_t row) { m_nulls.insert(before + row); });
    for (const Block &block : other.m_blocks) {
        for (size_t row = 0; row < block.rows();) { // as many at once as the last block has room for
            Block &last = blockForNext();
            const size_t end = std::min(block.rows(), row + rowsPerBlock - last.rows());
            const size_t start = last.bytes.size();
            const quint32 from = block.offsets[row];
            last.bytes.append(block.bytes, from, block.offsets[end] - from);
            for (; row < end; ++row) {
                last.offsets.push_back(quint32(start + block.offsets[row + 1] - from));
            }
        }
    }
}

void ZQTextBlocks::replace(const QHash<quint32, std::optional<std::string>> &texts)
{
    std::map<size_t, std::vector<quint32>> byBlock;
    for (auto entry = texts.cbegin(); entry != texts.cend(); ++entry) {
        byBlock[entry.key() / rowsPerBlock].push_back(entry.key());
    }
    for (const auto &[number, changed] : byBlock) {
        Block &block = m_blocks[number];
        Block fresh;
        fresh.bytes.reserve(block.bytes.size());
        fresh.offsets.reserve(block.offsets.size());
        fresh.offsets.push_back(0);
        for (size_t row = 0; row < block.rows(); ++row) {
            const auto changedText = texts.constFind(quint32(number * rowsPerBlock + row));
            if (changedText == texts.cend()) {
                fresh.bytes.append(block.text(row));
            } else {
                fresh.bytes.append(changedText->value_or(std::string()));
                m_nulls.set(number * rowsPerBlock + row, !changedText->has_value());
            }
            fresh.bytes.push_back(separator);
            fresh.offsets.push_back(quint32(fresh.bytes.size()));
        }
        block = std::move(fresh);
    }
}

void ZQTextBlocks::shrink()
{
    if (!m_blocks.empty()) {
        m_blocks.back().bytes.shrink_to_fit();
        m_blocks.back().offsets.shrink_to_fit();
    }
}

size_t ZQTextBlocks::bytes() const
{
    size_t bytes = m_nulls.bytes();
    for (const Block &block : m_blocks) {
        bytes += sizeof(Block) + block.bytes.capacity() + block.offsets.capacity() * sizeof(quint32);
    }
    return bytes;
}

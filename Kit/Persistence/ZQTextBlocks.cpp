#include "Kit/Persistence/ZQTextBlocks.h"

#include <map>

QString ZQTextBlocks::string(size_t row) const
{
    if (isNull(row)) {
        return {};
    }
    const std::string_view utf8 = text(row);
    return utf8.empty() ? QStringLiteral("") : QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
}

void ZQTextBlocks::append(Text text)
{
    const size_t row = rowCount();
    if (row % rowsPerBlock == 0) {
        m_blocks.emplace_back().offsets.push_back(0);
    }
    m_nulls.resize(row + 1);
    m_nulls.set(row, !text);
    Block &block = m_blocks.back();
    block.bytes.append(text.value_or(std::string_view()));
    block.bytes.push_back(separator);
    block.offsets.push_back(quint32(block.bytes.size()));
}

void ZQTextBlocks::appendAll(ZQTextBlocks &&other)
{
    const size_t before = rowCount();
    Q_ASSERT(before % rowsPerBlock == 0);
    m_nulls.resize(before + other.rowCount());
    other.m_nulls.forEach([&](size_t row) { m_nulls.insert(before + row); });
    m_blocks.insert(m_blocks.end(), std::make_move_iterator(other.m_blocks.begin()),
                    std::make_move_iterator(other.m_blocks.end()));
    other = {};
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
    for (Block &block : m_blocks) {
        block.bytes.shrink_to_fit();
        block.offsets.shrink_to_fit();
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

#include "Kit/Persistence/ZQTextScan.h"

#include "Kit/Persistence/ZQByteSearch.h"
#include "Kit/Persistence/ZQRowLoop.h"

#include <algorithm>

using Op = ZQComparisonOperator;

namespace {

constexpr size_t wordsPerBlock = ZQTextBlocks::rowsPerBlock / 64;

bool has(std::string_view text, std::string_view part)
{
    const char *end = text.data() + text.size();
    return zqFindBytes(text.data(), end, part) != end;
}

// One pass over the bytes of a block; rows are told by walking their offsets in step with what is found.
void markInBlock(const ZQTextBlocks::Block &block, size_t firstRow, std::string_view part, const ZQRowSet &among,
                 ZQRowSet &found)
{
    const char *begin = block.bytes.data();
    const char *end = begin + block.bytes.size();
    size_t row = 0;
    for (const char *place = zqFindBytes(begin, end, part); place != end; place = zqFindBytes(place, end, part)) {
        const auto offset = static_cast<quint32>(place - begin);
        while (block.offsets[row + 1] <= offset) {
            ++row;
        }
        if (among.contains(firstRow + row)) {
            found.insert(firstRow + row);
        }
        place = begin + block.offsets[row + 1];
    }
}

template <class Test>
bool markTexts(const ZQTextBlocks &texts, const ZQRowSet &among, ZQRowSet &found, const Test &test)
{
    return zqMarkWhere(among, found, [&](size_t row) { return !texts.isNull(row) && test(texts.text(row)); });
}

// The longest run of characters that a text must have to fit; empty when there is none.
QString longestLiteral(const QString &pattern)
{
    QString longest;
    QString run;
    for (qsizetype i = 0; i <= pattern.size(); ++i) {
        const bool isEnd = i == pattern.size() || pattern[i] == u'*' || pattern[i] == u'?';
        if (isEnd) {
            longest = run.size() > longest.size() ? run : longest;
            run.clear();
        } else {
            i += pattern[i] == u'\\' && i + 1 < pattern.size() ? 1 : 0;
            run.append(pattern[i]);
        }
    }
    return longest.isValidUtf16() ? longest : QString();
}

bool markLike(const QString &pattern, const ZQTextBlocks &texts, const ZQRowSet &among, ZQRowSet &found)
{
    const QByteArray literal = longestLiteral(pattern).toUtf8();
    ZQRowSet candidates(among.rowCount());
    if (literal.isEmpty()) {
        candidates = among;
    } else if (!zqMarkTextsWith({literal.constData(), size_t(literal.size())}, texts, among, candidates)) {
        return false;
    }
    return markTexts(texts, candidates, found, [&pattern](std::string_view text) {
        return zqMatchesWildcards(QString::fromUtf8(text.data(), qsizetype(text.size())), pattern);
    });
}

} // namespace

bool zqMarkTextsWith(std::string_view part, const ZQTextBlocks &texts, const ZQRowSet &among, ZQRowSet &found)
{
    // Where few rows of a block still stand, looking at them alone is less work.
    constexpr size_t sparse = ZQTextBlocks::rowsPerBlock / 16;
    for (size_t number = 0; number < texts.blocks().size(); ++number) {
        if (ZQCancellation::isCurrentCancelled()) {
            return false;
        }
        const size_t firstWord = number * wordsPerBlock;
        const size_t endWord = std::min(firstWord + wordsPerBlock, among.words().size());
        size_t standing = 0;
        for (size_t i = firstWord; i < endWord; ++i) {
            standing += size_t(std::popcount(among.words()[i]));
        }
        const ZQTextBlocks::Block &block = texts.blocks()[number];
        const size_t firstRow = number * ZQTextBlocks::rowsPerBlock;
        if (standing > sparse) {
            markInBlock(block, firstRow, part, among, found);
            continue;
        }
        for (size_t i = firstWord; i < endWord && standing; ++i) {
            for (quint64 word = among.words()[i]; word; word &= word - 1) {
                const size_t row = 64 * i + size_t(std::countr_zero(word));
                found.set(row, found.contains(row) || has(block.text(row - firstRow), part));
            }
        }
    }
    return true;
}

bool zqHasTextScan(Op op)
{
    constexpr Op known[] = {Op::Contains, Op::Equal, Op::BeginsWith, Op::EndsWith, Op::Like};
    return std::find(std::begin(known), std::end(known), op) != std::end(known);
}

bool zqMarkTexts(Op op, const QString &other, const ZQTextBlocks &texts, const ZQRowSet &among, ZQRowSet &found)
{
    const QByteArray bytes = other.toUtf8();
    const std::string_view part(bytes.constData(), size_t(bytes.size()));
    const bool isPlain = std::none_of(other.begin(), other.end(),
                                      [](QChar each) { return each == u'*' || each == u'?' || each == u'\\'; });
    switch (op) {
    case Op::Contains:
        return part.empty() ? markTexts(texts, among, found, [](std::string_view) { return true; })
                            : zqMarkTextsWith(part, texts, among, found);
    case Op::BeginsWith:
        return markTexts(texts, among, found, [part](std::string_view text) { return text.starts_with(part); });
    case Op::EndsWith:
        return markTexts(texts, among, found, [part](std::string_view text) { return text.ends_with(part); });
    case Op::Like:
        if (!isPlain) {
            return markLike(other, texts, among, found);
        }
        [[fallthrough]];
    default:
        return markTexts(texts, among, found, [part](std::string_view text) { return text == part; });
    }
}

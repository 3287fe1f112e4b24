#include "Kit/Imaging/ZQPackedPicture.h"

#include "Kit/Imaging/ZQPackBits.h"

#include <utility>

namespace {

// Takes the rows of a plane off `rest`. False when they are not so many of that width.
bool takeRows(std::span<const char> counts, qsizetype width, std::span<const char> &rest, std::span<const char> &rows)
{
    std::size_t size = 0;
    for (std::size_t i = 0; i < counts.size(); i += 2) {
        const std::size_t count = std::size_t(uchar(counts[i])) << 8 | uchar(counts[i + 1]);
        if (count > rest.size() - size || ZQPackBits::countOf(rest.subspan(size, count)) != width) {
            return false;
        }
        size += count;
    }
    rows = rest.first(size);
    rest = rest.subspan(size);
    return true;
}

} // namespace

std::optional<ZQPackedPicture> ZQPackedPicture::of(std::shared_ptr<const char> bytes, qsizetype count, QSize size,
                                                   QRect part)
{
    ZQPackedPicture out;
    out.m_bytes = std::move(bytes);
    out.m_size = size;
    out.m_part = part;
    const bool isPossible = size.width() > 0 && size.height() > 0 && part.width() <= widest &&
                            (part.isEmpty() || QRect(QPoint(), size).contains(part));
    std::span<const char> rest(out.m_bytes.get(), std::size_t(count));
    const std::size_t countBytes = part.isEmpty() ? 0 : 2 * std::size_t(part.height());
    bool isWhole = isPossible;
    for (std::size_t i = 0; isWhole && i < channelCount; ++i) {
        isWhole = countBytes <= rest.size();
        if (isWhole) {
            out.m_counts[i] = rest.first(countBytes);
            rest = rest.subspan(countBytes);
            isWhole = takeRows(out.m_counts[i], part.width(), rest, out.m_rows[i]);
        }
    }
    return isWhole && rest.empty() ? std::optional(std::move(out)) : std::nullopt;
}

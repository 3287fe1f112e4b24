#include "Classes/Browsing/IndexCounts.h"

#include "Classes/Browsing/IndexNames.h"
#include "Kit/Persistence/ZQCollator.h"

#include <QDateTime>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <map>
#include <numeric>

namespace {

} // namespace

std::vector<quint8> IndexCounts::vectorExtensions() const
{
    std::vector<quint8> result;
    for (const ZQScalar &text : m_columns.items.extensionTexts) {
        const QString *extension = std::get_if<QString>(&text);
        result.push_back(extension && SizeClasses::vectorExtensions().contains(*extension));
    }
    return result;
}

// An edge of just the medium size is both medium and large.
quint32 IndexCounts::sizesOf(quint32 row, const std::vector<quint8> &isVector) const
{
    const bool hasWidth = !m_columns.items.pixelWidth.isNull(row);
    const bool hasHeight = !m_columns.items.pixelHeight.isNull(row);
    const qint32 width = m_columns.items.pixelWidth[row];
    const qint32 height = m_columns.items.pixelHeight[row];
    const bool isOfVectors = isVector[m_columns.items.extensions[row]];
    const auto fits = [&](qint32 edge) { return hasWidth && hasHeight && width <= edge && height <= edge; };
    const auto exceeds = [&](qint32 edge) { return (hasWidth && width > edge) || (hasHeight && height > edge); };
    const bool isNone = ((hasWidth && width <= 0) || (hasHeight && height <= 0)) && !isOfVectors;
    const bool isIcon = fits(qint32(m_sizes.icon)) && width > 0 && height > 0;
    const bool isSmall = fits(qint32(m_sizes.small)) && exceeds(qint32(m_sizes.icon));
    const bool isMedium = fits(qint32(m_sizes.medium)) && exceeds(qint32(m_sizes.small));
    const bool isLarge = (hasWidth && width >= m_sizes.medium) || (hasHeight && height >= m_sizes.medium);
    return quint32(isNone) | quint32(isIcon) << 1 | quint32(isSmall) << 2 | quint32(isMedium) << 3 |
           quint32(isLarge) << 4 | quint32(isOfVectors) << 5;
}

namespace {

// How often each value occurs: null first, then by number. Small numbers, which nearly all are, are counted in a list.
template <class T>
std::vector<IndexCount> countedNumbers(const ZQRowSet &rows, const IndexNumbers<T> &numbers)
{
    constexpr qint64 listed = 4096;
    qint64 nulls = 0;
    std::vector<qint64> small(listed, 0);
    std::map<qint64, qint64> counts;
    rows.forEach([&](size_t row) {
        const qint64 value = numbers[row];
        if (value > 0 && value < listed) {
            ++small[size_t(value)];
        } else if (numbers.isNull(row)) {
            ++nulls;
        } else {
            ++counts[value];
        }
    });
    for (qint64 value = 0; value < listed; ++value) {
        if (small[size_t(value)]) {
            counts[value] += small[size_t(value)];
        }
    }
    std::vector<IndexCount> result;
    if (nulls) {
        result.push_back({QVariant(), nulls});
    }
    for (const auto &[value, count] : counts) {
        result.push_back({QVariant(value), count});
    }
    return result;
}

} // namespace

std::vector<IndexCount> IndexCounts::countSidebar(IndexFacet facet, const ZQRowSet &rows) const
{
    std::vector<qint64> counts(m_columns.sidebar.size(), 0);
    const auto isIn = [&rows](quint32 row) { return rows.contains(row); };
    if (facet == IndexFacet::LiveFolder) {
        rows.forEach([&](size_t row) { ++counts[m_columns.items.folders[row]]; });
    }
    for (size_t number = 0; facet == IndexFacet::Tag && number < m_columns.tags.tagCount(); ++number) {
        const std::vector<quint32> &tagged = m_columns.tags.rowsOf(number);
        counts[number] = std::count_if(tagged.begin(), tagged.end(), isIn);
    }
    for (size_t number = 0; facet == IndexFacet::Project && number < m_columns.memberships.projectCount(); ++number) {
        const std::vector<quint32> &members = m_columns.memberships.ofProject(number);
        counts[number] = std::count_if(members.begin(), members.end(), [&](quint32 membership) {
            return isIn(m_columns.memberships.item(membership));
        });
    }
    std::vector<IndexCount> result;
    for (quint32 number = 1; number < counts.size(); ++number) {
        const bool isActive = m_columns.sidebar.attribute(number, "active") == ZQScalar(qint64(1));
        if (counts[number] && isActive) {
            result.push_back({QVariant::fromValue(m_columns.sidebar.id(number)), counts[number]});
        }
    }
    std::sort(result.begin(), result.end(), [](const IndexCount &a, const IndexCount &b) {
        return a.value.value<ZQObjectID>().key < b.value.value<ZQObjectID>().key;
    });
    return result;
}

std::vector<IndexCount> IndexCounts::counts(IndexFacet facet, const ZQRowSet &rows) const
{
    const IndexItems &items = m_columns.items;
    switch (facet) {
    case IndexFacet::ExtensionName:
        return IndexNames(m_columns).extensions(rows);
    case IndexFacet::TagName:
        return IndexNames(m_columns).tags(rows);
    case IndexFacet::LiveFolderName:
        return IndexNames(m_columns).folders(rows);
    case IndexFacet::MainColor:
        return countedNumbers(rows, items.mainColor);
    case IndexFacet::Rating:
        return countedNumbers(rows, items.rating);
    case IndexFacet::SizeClass: {
        const std::vector<quint8> isVector = vectorExtensions();
        std::vector<IndexCount> counts;
        const QStringList &keys = SizeClasses::keys(); // in the order of the bits
        std::vector<qint64> found(size_t(keys.size()), 0);
        rows.forEach([&](size_t row) {
            const quint32 sizes = sizesOf(quint32(row), isVector);
            for (size_t size = 0; size < found.size(); ++size) {
                found[size] += sizes >> size & 1U;
            }
        });
        for (size_t size = 0; size < found.size(); ++size) {
            if (found[size]) {
                counts.push_back({keys[qsizetype(size)], found[size]});
            }
        }
        return counts;
    }
    default:
        return countSidebar(facet, rows);
    }
}

// What was imported together stands together: nearly every date is between the bounds of the one before it.
std::vector<qint64> IndexCounts::importedBetween(const std::vector<qint64> &bounds, const ZQRowSet &rows) const
{
    const IndexNumbers<qint64> &dates = m_columns.items.importDate;
    std::vector<qint64> counts(bounds.size() + 1, 0);
    size_t place = 0;
    qint64 from = 1; // to `from` - 1: nothing is between them
    qint64 to = 0;
    rows.forEach([&](size_t row) {
        const qint64 date = dates[row];
        if (date < from || date >= to) {
            place = size_t(std::upper_bound(bounds.begin(), bounds.end(), date) - bounds.begin());
            from = place > 0 ? bounds[place - 1] : std::numeric_limits<qint64>::min();
            to = place < bounds.size() ? bounds[place] : std::numeric_limits<qint64>::max();
        }
        counts[place] += dates.isNull(row) ? 0 : 1;
    });
    return counts;
}

QStringList IndexCounts::repeatedDigests(const ZQRowSet &rows) const
{
    struct Start
    {
        quint64 bytes;
        quint32 row;
    };
    const ZQDigests &digests = m_columns.items.digests;
    // First parted by what a digest begins with, so that what is sorted then are a few that lie together.
    constexpr size_t parts = 65536;
    std::vector<size_t> ends(parts, 0);
    const auto partOf = [&](size_t row) { return size_t(digests.digests()[row][0]) << 8 | digests.digests()[row][1]; };
    rows.forEach([&](size_t row) { ends[partOf(row)] += digests.isNull(row) ? 0 : 1; });
    std::exclusive_scan(ends.begin(), ends.end(), ends.begin(), size_t(0));
    std::vector<Start> starts(rows.count());
    rows.forEach([&](size_t row) {
        if (!digests.isNull(row)) {
            Start &start = starts[ends[partOf(row)]++];
            start.row = quint32(row);
            std::memcpy(&start.bytes, digests.digests()[row].data() + 2, sizeof start.bytes);
        }
    });
    QStringList repeated;
    const auto isBefore = [&](const Start &a, const Start &b) {
        return a.bytes != b.bytes ? a.bytes < b.bytes : digests.compare(a.row, b.row) < 0;
    };
    for (size_t part = 0, first = 0; part < parts; first = ends[part++]) {
        std::sort(starts.begin() + qsizetype(first), starts.begin() + qsizetype(ends[part]), isBefore);
        for (size_t i = first + 1; i < ends[part]; ++i) {
            const auto isSame = [&](size_t a, size_t b) { return digests.compare(starts[a].row, starts[b].row) == 0; };
            if (starts[i].bytes == starts[i - 1].bytes && isSame(i - 1, i) && (i == first + 1 || !isSame(i - 2, i))) {
                repeated.append(digests.string(starts[i].row));
            }
        }
    }
    repeated.removeAll(QStringLiteral("0"));
    return repeated;
}

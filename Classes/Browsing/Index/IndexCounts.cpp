#include "Classes/Browsing/Index/IndexCounts.h"

#include "Classes/Browsing/Index/IndexNames.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <map>
#include <span>

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

// Calls `visit` with the rows of a set, up to 64 at once.
template <class Visit>
void forEachWord(const ZQRowSet &rows, const Visit &visit)
{
    quint32 some[64];
    for (size_t i = 0; i < rows.words().size(); ++i) {
        size_t count = 0;
        for (quint64 word = rows.words()[i]; word; word &= word - 1) {
            some[count++] = quint32(64 * i + size_t(std::countr_zero(word)));
        }
        visit(std::span<const quint32>(some, count));
    }
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
    case IndexFacet::ProjectName:
        return IndexNames(m_columns).projects(rows);
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
    const ZQDigests &digests = m_columns.items.digests;
    // Two digests that are the same have the same hash. So many hashes are told apart that few others do, and what is
    // left to compare is little.
    constexpr size_t placesForEach = 16;
    const size_t places = std::bit_ceil(std::clamp<size_t>(rows.count() * placesForEach, 1 << 10, size_t(1) << 28));
    struct Seen // of 64 places
    {
        quint64 once = 0;
        quint64 again = 0;
    };
    std::vector<Seen> seen(places / 64);
    // Each place is somewhere else in memory: those of some rows are asked for before the first one is needed.
    const auto forEachPlace = [&](const auto &visit) {
        size_t ofRows[64];
        forEachWord(rows, [&](std::span<const quint32> some) {
            for (size_t i = 0; i < some.size(); ++i) {
                ofRows[i] = ZQDigests::hashOf(digests.digests()[some[i]]) >> 32 & (places - 1);
                __builtin_prefetch(&seen[ofRows[i] / 64]);
            }
            for (size_t i = 0; i < some.size(); ++i) {
                const quint64 bit = digests.isNull(some[i]) ? 0 : quint64(1) << ofRows[i] % 64;
                visit(some[i], seen[ofRows[i] / 64], bit);
            }
        });
    };
    forEachPlace([](quint32, Seen &at, quint64 bit) {
        at.again |= at.once & bit;
        at.once |= bit;
    });
    std::vector<quint32> candidates;
    forEachPlace([&](quint32 row, const Seen &at, quint64 bit) {
        if (at.again & bit) {
            candidates.push_back(row);
        }
    });
    std::sort(candidates.begin(), candidates.end(), [&](quint32 a, quint32 b) { return digests.compare(a, b) < 0; });
    QStringList repeated;
    const auto isSame = [&](size_t a, size_t b) { return digests.compare(candidates[a], candidates[b]) == 0; };
    for (size_t i = 1; i < candidates.size(); ++i) {
        if (isSame(i - 1, i) && (i == 1 || !isSame(i - 2, i))) {
            repeated.append(digests.string(candidates[i]));
        }
    }
    repeated.removeAll(QStringLiteral("0"));
    return repeated;
}

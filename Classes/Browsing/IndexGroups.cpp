#include "Classes/Browsing/IndexGroups.h"

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

// Those of `rows` at `places`.
IndexRows picked(const IndexRows &rows, const std::vector<quint32> &places)
{
    IndexRows result{rows.kind, {}, {}};
    result.items.reserve(places.size());
    result.memberships.reserve(rows.memberships.empty() ? 0 : places.size());
    for (const quint32 place : places) {
        result.items.push_back(rows.items[place]);
        if (!rows.memberships.empty()) {
            result.memberships.push_back(rows.memberships[place]);
        }
    }
    return result;
}

// Puts rows together whose group is the same, in the order of the groups.
std::vector<size_t> part(IndexRows &rows, const std::vector<quint32> &groupOfRow, size_t groups)
{
    std::vector<size_t> sizes(groups, 0);
    for (const quint32 group : groupOfRow) {
        ++sizes[group];
    }
    std::vector<size_t> starts(groups, 0);
    std::exclusive_scan(sizes.begin(), sizes.end(), starts.begin(), size_t(0));
    std::vector<quint32> places(groupOfRow.size());
    for (size_t i = 0; i < groupOfRow.size(); ++i) {
        places[starts[groupOfRow[i]]++] = quint32(i);
    }
    rows = picked(rows, places);
    return sizes;
}

std::vector<IndexGroup> groupsOf(const std::vector<size_t> &sizes, const std::vector<QVariant> &values)
{
    std::vector<IndexGroup> groups;
    size_t first = 0;
    for (size_t i = 0; i < sizes.size(); ++i) {
        if (sizes[i]) {
            groups.push_back({values[i], first, sizes[i]});
        }
        first += sizes[i];
    }
    return groups;
}

QVariant textOf(const ZQScalar &value)
{
    const QString *text = std::get_if<QString>(&value);
    return text ? QVariant(*text) : QVariant();
}

QDate monthOf(qint64 milliseconds)
{
    const QDate date = QDateTime::fromMSecsSinceEpoch(milliseconds).date();
    return {date.year(), date.month(), 1};
}

// Counts the months of local time that dates are in: a day tells the month, but for the days on which one begins.
void countMonthsOf(const std::vector<qint64> &times, std::map<QDate, qint64> &counts)
{
    constexpr qint64 day = 24 * 60 * 60 * 1000;
    constexpr qint64 mostDays = 200000; // five hundred years; who has dates beyond can wait
    if (times.empty()) {
        return;
    }
    const auto [lowest, highest] = std::minmax_element(times.begin(), times.end());
    const qint64 firstDay = *lowest / day - 1;
    if (*highest / day - firstDay > mostDays) {
        for (const qint64 time : times) {
            ++counts[monthOf(time)];
        }
        return;
    }
    std::vector<QDate> months;
    std::vector<qint64> ends;
    for (QDate month = monthOf(firstDay * day - day); ends.empty() || ends.back() <= *highest;
         month = month.addMonths(1)) {
        months.push_back(month);
        ends.push_back(month.addMonths(1).startOfDay().toMSecsSinceEpoch());
    }
    std::vector<quint32> monthOfDay;
    for (qint64 each = firstDay; each <= *highest / day; ++each) {
        quint32 month = monthOfDay.empty() ? 0 : monthOfDay.back();
        while (ends[month] <= (each - 1) * day) { // division takes times before 1970 to the day after
            ++month;
        }
        monthOfDay.push_back(month);
    }
    std::vector<qint64> found(months.size(), 0);
    for (const qint64 time : times) {
        quint32 month = monthOfDay[size_t(time / day - firstDay)];
        while (ends[month] <= time) {
            ++month;
        }
        ++found[month];
    }
    for (size_t month = 0; month < months.size(); ++month) {
        if (found[month]) {
            counts[months[month]] += found[month];
        }
    }
}

} // namespace

std::vector<IndexGroup> IndexGroups::group(IndexRows &rows, IndexGrouping grouping) const
{
    switch (grouping) {
    case IndexGrouping::Extension:
        return groupByExtension(rows);
    case IndexGrouping::MainColor:
        return groupByColor(rows);
    case IndexGrouping::SizeClass:
        return groupBySize(rows);
    }
    return {};
}

std::vector<IndexGroup> IndexGroups::groupByExtension(IndexRows &rows) const
{
    const std::vector<ZQScalar> &texts = m_columns.items.extensionTexts;
    std::vector<quint32> order(texts.size() - 1);
    std::iota(order.begin(), order.end(), 1U);
    const ZQCollator &collator = ZQCollator::forThisThread();
    std::sort(order.begin(), order.end(), [&](quint32 a, quint32 b) {
        const QString &x = std::get<QString>(texts[a]);
        const QString &y = std::get<QString>(texts[b]);
        const int ignoringCase = collator.compare(zqFold(x, true, false), zqFold(y, true, false));
        return ignoringCase ? ignoringCase < 0 : zqCompareByCodePoint(x, y) < 0;
    });
    order.push_back(0); // none
    std::vector<quint32> groupOf(texts.size());
    std::vector<QVariant> values;
    for (size_t group = 0; group < order.size(); ++group) {
        groupOf[order[group]] = quint32(group);
        values.push_back(textOf(texts[order[group]]));
    }
    std::vector<quint32> groups;
    groups.reserve(rows.size());
    for (const quint32 row : rows.items) {
        groups.push_back(groupOf[m_columns.items.extensions[row]]);
    }
    return groupsOf(part(rows, groups, order.size()), values);
}

std::vector<IndexGroup> IndexGroups::groupByColor(IndexRows &rows) const
{
    const IndexNumbers<qint32> &colors = m_columns.items.mainColor;
    // The colours there are are few and small numbers; any others are looked up.
    constexpr qint32 listed = 4096;
    std::vector<quint32> small(listed, 0);
    std::map<std::optional<qint64>, quint32> known;
    const auto isListed = [&](quint32 row) { return colors[row] > 0 && colors[row] < listed; };
    for (const quint32 row : rows.items) {
        if (isListed(row)) {
            small[size_t(colors[row])] = 1;
        } else {
            known.emplace(colors.value(row), 0);
        }
    }
    for (qint32 color = 0; color < listed; ++color) {
        if (small[size_t(color)]) {
            known.emplace(qint64(color), 0);
        }
    }
    std::vector<QVariant> values;
    for (auto &[color, group] : known) {
        group = quint32(values.size());
        values.push_back(color ? QVariant(*color) : QVariant());
        if (color && *color > 0 && *color < listed) {
            small[size_t(*color)] = group;
        }
    }
    std::vector<quint32> groups;
    groups.reserve(rows.size());
    for (const quint32 row : rows.items) {
        groups.push_back(isListed(row) ? small[size_t(colors[row])] : known.find(colors.value(row))->second);
    }
    return groupsOf(part(rows, groups, values.size()), values);
}

std::vector<quint8> IndexGroups::vectorExtensions() const
{
    std::vector<quint8> result;
    for (const ZQScalar &text : m_columns.items.extensionTexts) {
        const QString extension = textOf(text).toString();
        result.push_back(extension == QStringLiteral("ai") || extension == QStringLiteral("sketch") ||
                         extension == QStringLiteral("svg"));
    }
    return result;
}

// An edge of just the medium size is both medium and large.
quint32 IndexGroups::sizesOf(quint32 row, const std::vector<quint8> &isVector) const
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

std::vector<IndexGroup> IndexGroups::groupBySize(IndexRows &rows) const
{
    const std::vector<quint8> isVector = vectorExtensions();
    // Of many rows in some order it is quicker to look at all columns from front to back.
    std::vector<quint8> ofAll(rows.size() > m_columns.items.size() / 8 ? m_columns.items.size() : 0);
    for (size_t row = 0; row < ofAll.size(); ++row) {
        ofAll[row] = quint8(sizesOf(quint32(row), isVector));
    }
    std::vector<quint8> sizes(rows.size());
    size_t counts[std::size(sizeNames)] = {};
    for (size_t i = 0; i < rows.size(); ++i) {
        const quint32 row = rows.items[i];
        sizes[i] = ofAll.empty() ? quint8(sizesOf(row, isVector)) : ofAll[row];
        for (size_t size = 0; size < std::size(sizeNames); ++size) {
            counts[size] += sizes[i] >> size & 1U;
        }
    }
    std::vector<IndexGroup> groups;
    size_t places[std::size(sizeNames)] = {};
    size_t total = 0;
    for (size_t size = 0; size < std::size(sizeNames); ++size) {
        if (counts[size]) {
            groups.push_back({QLatin1StringView(sizeNames[size]), total, counts[size]});
        }
        places[size] = total;
        total += counts[size];
    }
    std::vector<quint32> all(total);
    for (size_t i = 0; i < rows.size(); ++i) {
        for (quint32 left = sizes[i]; left; left &= left - 1) {
            all[places[std::countr_zero(left)]++] = quint32(i);
        }
    }
    rows = picked(rows, all);
    return groups;
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

std::vector<IndexCount> IndexGroups::countSidebar(IndexFacet facet, const ZQRowSet &rows) const
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

std::vector<IndexCount> IndexGroups::countMonths(const ZQRowSet &rows) const
{
    const IndexNumbers<qint64> &dates = m_columns.items.modificationDate;
    std::vector<qint64> times;
    qint64 nulls = 0;
    rows.forEach([&](size_t row) {
        if (dates.isNull(row)) {
            ++nulls;
        } else {
            times.push_back(dates[row]);
        }
    });
    std::map<QDate, qint64> found;
    if (nulls) {
        found[QDate()] = nulls;
    }
    countMonthsOf(times, found);
    std::vector<IndexCount> counts;
    for (const auto &[month, count] : found) {
        counts.push_back({month.isValid() ? QVariant(month) : QVariant(), count});
    }
    return counts;
}

std::vector<IndexCount> IndexGroups::counts(IndexFacet facet, const ZQRowSet &rows) const
{
    const IndexItems &items = m_columns.items;
    switch (facet) {
    case IndexFacet::Kind: {
        std::vector<qint64> found(items.entities.size(), 0);
        rows.forEach([&](size_t row) { ++found[items.kinds[row]]; });
        std::vector<IndexCount> counts;
        for (size_t kind = 0; kind < found.size(); ++kind) {
            if (found[kind]) {
                counts.push_back({items.entities[kind]->name, found[kind]});
            }
        }
        return counts;
    }
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
    case IndexFacet::ModificationMonth:
        return countMonths(rows);
    case IndexFacet::SizeClass: {
        const std::vector<quint8> isVector = vectorExtensions();
        std::vector<IndexCount> counts;
        qint64 found[std::size(sizeNames)] = {};
        rows.forEach([&](size_t row) {
            const quint32 sizes = sizesOf(quint32(row), isVector);
            for (size_t size = 0; size < std::size(sizeNames); ++size) {
                found[size] += sizes >> size & 1U;
            }
        });
        for (size_t size = 0; size < std::size(sizeNames); ++size) {
            if (found[size]) {
                counts.push_back({QLatin1StringView(sizeNames[size]), found[size]});
            }
        }
        return counts;
    }
    default:
        return countSidebar(facet, rows);
    }
}

// What was imported together stands together: nearly every date is between the bounds of the one before it.
std::vector<qint64> IndexGroups::importedBetween(const std::vector<qint64> &bounds, const ZQRowSet &rows) const
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

QStringList IndexGroups::repeatedDigests(const ZQRowSet &rows) const
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

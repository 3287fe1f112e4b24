#include "Classes/Browsing/IndexGroups.h"

#include "Kit/Persistence/ZQCollator.h"

#include <QDateTime>

#include <algorithm>
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

// The months of local time, found again quickly for dates that lie near each other.
class Months
{
public:
    QDate monthOf(qint64 milliseconds)
    {
        if (milliseconds < m_start || milliseconds >= m_end) {
            const auto found = m_known.upper_bound(milliseconds);
            if (found == m_known.begin() || milliseconds >= std::prev(found)->second.end) {
                add(milliseconds);
            } else {
                use(std::prev(found));
            }
        }
        return m_month;
    }

private:
    struct Month
    {
        qint64 end;
        QDate first;
    };
    void use(std::map<qint64, Month>::const_iterator found)
    {
        m_start = found->first;
        m_end = found->second.end;
        m_month = found->second.first;
    }
    void add(qint64 milliseconds)
    {
        const QDate day = QDateTime::fromMSecsSinceEpoch(milliseconds).date();
        const QDate first(day.year(), day.month(), 1);
        use(m_known
                .insert({first.startOfDay().toMSecsSinceEpoch(),
                         Month{first.addMonths(1).startOfDay().toMSecsSinceEpoch(), first}})
                .first);
    }

    std::map<qint64, Month> m_known; // by start
    qint64 m_start = 0;
    qint64 m_end = 0;
    QDate m_month;
};

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
    std::map<std::optional<qint64>, quint32> known;
    for (const quint32 row : rows.items) {
        known.emplace(colors.value(row), 0);
    }
    std::vector<QVariant> values;
    for (auto &[color, group] : known) {
        group = quint32(values.size());
        values.push_back(color ? QVariant(*color) : QVariant());
    }
    std::vector<quint32> groups;
    groups.reserve(rows.size());
    for (const quint32 row : rows.items) {
        groups.push_back(known.find(colors.value(row))->second);
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
    const bool isIcon = fits(m_sizes.icon) && width > 0 && height > 0;
    const bool isSmall = fits(m_sizes.small) && exceeds(m_sizes.icon);
    const bool isMedium = fits(m_sizes.medium) && exceeds(m_sizes.small);
    const bool isLarge = (hasWidth && width >= m_sizes.medium) || (hasHeight && height >= m_sizes.medium);
    return quint32(isNone) | quint32(isIcon) << 1 | quint32(isSmall) << 2 | quint32(isMedium) << 3 |
           quint32(isLarge) << 4 | quint32(isOfVectors) << 5;
}

std::vector<IndexGroup> IndexGroups::groupBySize(IndexRows &rows) const
{
    const std::vector<quint8> isVector = vectorExtensions();
    std::vector<quint32> places[std::size(sizeNames)];
    for (size_t i = 0; i < rows.size(); ++i) {
        const quint32 sizes = sizesOf(rows.items[i], isVector);
        for (size_t size = 0; size < std::size(sizeNames); ++size) {
            if (sizes >> size & 1U) {
                places[size].push_back(quint32(i));
            }
        }
    }
    std::vector<quint32> all;
    std::vector<IndexGroup> groups;
    for (size_t size = 0; size < std::size(sizeNames); ++size) {
        if (!places[size].empty()) {
            groups.push_back({QLatin1StringView(sizeNames[size]), all.size(), places[size].size()});
            all.insert(all.end(), places[size].begin(), places[size].end());
        }
    }
    rows = picked(rows, all);
    return groups;
}

namespace {

template <class Key, class ValueOf, class Name>
std::vector<IndexCount> counted(const ZQRowSet &rows, const ValueOf &valueOf, const Name &name)
{
    std::map<Key, qint64> found;
    rows.forEach([&](size_t row) { ++found[valueOf(row)]; });
    std::vector<IndexCount> counts;
    for (const auto &[key, count] : found) {
        counts.push_back({name(key), count});
    }
    return counts;
}

QVariant numberOrNothing(const std::optional<qint64> &number)
{
    return number ? QVariant(*number) : QVariant();
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
    Months months;
    std::map<QDate, qint64> found;
    rows.forEach([&](size_t row) { ++found[dates.isNull(row) ? QDate() : months.monthOf(dates[row])]; });
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
    case IndexFacet::Kind:
        return counted<quint8>(
            rows, [&](size_t row) { return items.kinds[row]; },
            [&](quint8 kind) { return QVariant(items.entities[kind]->name); });
    case IndexFacet::MainColor:
        return counted<std::optional<qint64>>(
            rows, [&](size_t row) { return items.mainColor.value(row); }, numberOrNothing);
    case IndexFacet::Rating:
        return counted<std::optional<qint64>>(
            rows, [&](size_t row) { return items.rating.value(row); }, numberOrNothing);
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

#include "Classes/Browsing/Content/FacetCounts.h"

#include "Classes/Browsing/Content/StoreSearch.h"
#include "Classes/Browsing/Index/KindNames.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Classes/Browsing/Search/SearchSpan.h"
#include "Classes/Browsing/Search/SearchTokenizer.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <algorithm>
#include <utility>

namespace {

constexpr FacetKind facetKinds[] = {FacetKind::Kind, FacetKind::Color,    FacetKind::Rating, FacetKind::Tag,
                                    FacetKind::Size, FacetKind::Imported, FacetKind::Folder};
constexpr int mostStars = 5;

QString tokenOf(SearchField field, const QString &argument)
{
    return SearchToken::ofField(field).name() + u' ' + SearchManager::quoted(argument);
}

// What a typed token asks of the extension, folded; empty for another token.
QString extensionOf(const QString &token, const QDate &today)
{
    const SearchLexeme lexeme = SearchTokenizer(token, today).next();
    const bool isExtension = lexeme.token && lexeme.token->field == SearchField::Extension;
    return isExtension ? zqFold(lexeme.text) : QString();
}

void orderByCount(QList<FacetValue> &values)
{
    std::stable_sort(values.begin(), values.end(),
                     [](const FacetValue &a, const FacetValue &b) { return a.count > b.count; });
}

struct ImportSpan
{
    QString argument; // with its comparison
    QString title;
    bool isWider = false; // than those before it, which it holds
    bool isOpen = false;  // without a beginning
    qint64 from = 0;      // milliseconds
    qint64 to = 0;        // not in it any more
};

std::vector<ImportSpan> importSpans(const QDate &today)
{
    constexpr int years = 4;
    const QString month = today.toString(QStringLiteral("yyyy-MM"));
    const QString before = QString::number(today.year() - years);
    std::vector<ImportSpan> spans = {
        {zqLocalized("today"), zqLocalized("today")},
        {zqLocalized("yesterday"), zqLocalized("yesterday")},
        {QStringLiteral("7d"), zqLocalized("last 7 days"), true},
        {month, zqLocalized("this month"), today.day() > 7},
        {QString::number(today.year()), zqLocalized("this year"), true},
    };
    for (int year = today.year() - 1; year >= today.year() - years; --year) {
        spans.push_back({QString::number(year), QString::number(year)});
    }
    spans.push_back({before, zqFormat(zqLocalized("before %@"), {before}), false, true});
    for (ImportSpan &span : spans) {
        const auto dates = SearchSpan::forText(span.argument, today);
        if (dates) {
            span.from = dates->start.toMSecsSinceEpoch();
            span.to = span.isOpen ? span.from : dates->end.toMSecsSinceEpoch() + 1;
        }
        span.argument.prepend(span.isOpen ? u'<' : u'=');
    }
    return spans;
}

} // namespace

FacetCounts::FacetCounts(const QString &text, ContentBuilder::Scope scope)
    : m_text(text), m_read(text, scope.search.today), m_scope(std::move(scope))
{
    // What has to be asked of the store is asked before the index is looked at.
    prepare(text);
    for (const FacetKind kind : facetKinds) {
        prepare(m_read.without(kind));
        for (const QString &token : m_read.tokens(kind)) {
            prepare(token);
        }
    }
}

void FacetCounts::prepare(const QString &text)
{
    if (!m_conditions.contains(text)) {
        m_conditions.emplace(text, SearchManager::predicateForSearchString(text, m_scope.search));
    }
}

const ZQPredicate *FacetCounts::conditionOf(const QString &text)
{
    const auto found = m_conditions.find(text);
    if (found == m_conditions.end()) {
        m_unprepared.append(text);
        return nullptr;
    }
    return &found->second;
}

std::optional<QList<Facet>> FacetCounts::of(const ContentQuery &query, ZQManagedObjectContext &context,
                                            LibraryIndex &index, const ContentBuilder::IsWanted &isWanted)
{
    const ContentBuilder builder(query, context, &index);
    auto scope = builder.scope();
    if (!scope || !isWanted()) {
        return std::nullopt;
    }
    scope->search.liveFolderDepth = [depth = StoreSearch::liveFolderDepth(context)] { return depth; };
    FacetCounts counts(query.filter, std::move(*scope));
    constexpr int mostReadings = 3; // names that are patterns are known from the index, and may be others each time
    std::optional<QList<Facet>> counted;
    for (int readings = 0; readings < mostReadings && (readings == 0 || !counts.m_unprepared.isEmpty()); ++readings) {
        for (const QString &text : std::exchange(counts.m_unprepared, {})) {
            counts.prepare(text);
        }
        if (!isWanted() || !index.isReady() || !index.waitUntilCurrent()) {
            return std::nullopt;
        }
        const auto reading = index.read();
        counted = reading ? counts.count(*reading, isWanted) : std::nullopt;
        if (!counted) {
            return std::nullopt;
        }
    }
    return counts.m_unprepared.isEmpty() ? counted : std::nullopt;
}

std::optional<ZQRowSet> FacetCounts::content(const LibraryIndex::Reading &reading) const
{
    ZQRowSet all(reading.rowCount());
    QList<ZQFetchRequest> memberships; // a folder has thousands of them with one condition
    for (const ZQFetchRequest &request : m_scope.requests) {
        if (zqListRowsOfEntity(request.entityName) == ZQListRows::Memberships) {
            memberships.append(request);
            memberships.last().sortDescriptors.clear();
            continue;
        }
        const auto found = reading.matching(request.predicate, ZQListRows::LibraryItems, reading.items());
        if (!found) {
            return std::nullopt;
        }
        all |= *found;
    }
    const auto found = reading.rows(memberships, {});
    for (const IndexRows &rows : found ? *found : std::vector<IndexRows>()) {
        for (const quint32 row : rows.items) {
            all.insert(row);
        }
    }
    return found ? std::optional(std::move(all)) : std::nullopt;
}

const ZQRowSet &FacetCounts::rowsFor(FacetKind kind, const LibraryIndex::Reading &reading)
{
    const QString text = m_read.without(kind);
    auto rows = m_rows.find(text);
    if (rows == m_rows.end()) {
        const ZQPredicate *condition = conditionOf(text);
        std::optional<ZQRowSet> found; // none yet of a condition that is prepared for the next reading
        if (condition) {
            found = condition->isNull() ? std::optional(m_content)
                                        : reading.matching(*condition, ZQListRows::LibraryItems, m_content);
        }
        m_isComplete = m_isComplete && found;
        rows = m_rows.emplace(text, found ? std::move(*found) : ZQRowSet(reading.rowCount())).first;
    }
    return rows->second;
}

std::optional<QList<Facet>> FacetCounts::count(const LibraryIndex::Reading &reading,
                                               const ContentBuilder::IsWanted &isWanted)
{
    auto all = content(reading);
    if (!all) {
        return std::nullopt;
    }
    m_content = std::move(*all);
    m_rows.clear();
    QList<Facet> facets;
    for (const FacetKind kind : facetKinds) {
        QList<FacetValue> found = values(kind, reading);
        for (FacetValue &value : found) {
            value.isChosen = m_read.contains(kind, value.token);
        }
        addTyped(kind, found, reading);
        if (!isWanted() || ZQCancellation::isCurrentCancelled() || !m_isComplete) {
            return std::nullopt;
        }
        if (!found.isEmpty()) {
            facets.append({kind, found});
        }
    }
    return facets;
}

// What was typed as a value of the facet, and is none of those that are counted.
void FacetCounts::addTyped(FacetKind kind, QList<FacetValue> &values, const LibraryIndex::Reading &reading)
{
    for (const QString &token : m_read.tokens(kind)) {
        const bool isKnown = std::any_of(values.begin(), values.end(), [&](const FacetValue &value) {
            return value.isChosen && FacetText(value.token, m_scope.search.today).contains(kind, token);
        });
        if (!isKnown) {
            QString title = token.section(u' ', 1).remove(u'"');
            title = title.isEmpty() ? token : title;
            values.prepend({.token = token, .title = title, .count = countOf(token, kind, reading), .isChosen = true});
        }
    }
}

qint64 FacetCounts::countOf(const QString &token, FacetKind kind, const LibraryIndex::Reading &reading)
{
    const ZQPredicate *condition = conditionOf(token);
    if (!condition) {
        return 0;
    }
    const auto found = reading.matching(*condition, ZQListRows::LibraryItems, rowsFor(kind, reading));
    m_isComplete = m_isComplete && found;
    return found ? qint64(found->count()) : 0;
}

QList<FacetValue> FacetCounts::values(FacetKind kind, const LibraryIndex::Reading &reading)
{
    switch (kind) {
    case FacetKind::Kind:
        return kinds(reading);
    case FacetKind::Color:
        return colors(reading);
    case FacetKind::Rating:
        return ratings(reading);
    case FacetKind::Size:
        return sizes(reading);
    case FacetKind::Imported:
        return dates(reading);
    case FacetKind::Tag:
    case FacetKind::Folder:
        break;
    }
    return names(kind, reading);
}

// Of a kind that is there with one extension only, a search for that extension is the same value, typed otherwise.
QString FacetCounts::tokenOfKind(const QString &word, const QString &extension) const
{
    const QString own = tokenOf(SearchField::Kind, word);
    QStringList same;
    for (const QString &typed : m_read.tokens(FacetKind::Kind)) {
        if (extensionOf(typed, m_scope.search.today) == extension ||
            FacetText(typed, m_scope.search.today).contains(FacetKind::Kind, own)) {
            same.append(typed);
        }
    }
    return same.isEmpty() ? own : same.join(u' ');
}

QList<FacetValue> FacetCounts::kinds(const LibraryIndex::Reading &reading)
{
    std::map<QString, qint64> byExtension;
    for (const IndexCount &each : reading.counts(IndexFacet::ExtensionName, rowsFor(FacetKind::Kind, reading), {})) {
        if (SearchManager::isPlain(each.value.toString())) {
            byExtension[zqFold(each.value.toString())] = each.count;
        }
    }
    std::map<QString, QStringList> words; // and what there is of them
    for (const auto &[extension, count] : byExtension) {
        words[KindNames::wordOfExtension(extension)].append(extension);
    }
    QList<FacetValue> values;
    for (const auto &[word, extensions] : words) {
        qint64 count = 0;
        for (const QString &extension : KindNames::extensionsOfKind(word)) {
            const auto found = byExtension.find(extension);
            count += found != byExtension.end() ? found->second : 0;
        }
        const QString title = extensions.size() == 1 ? extensions.first() : word.section(u' ', 0, 0);
        const QString token =
            extensions.size() == 1 ? tokenOfKind(word, extensions.first()) : tokenOf(SearchField::Kind, word);
        values.append({.token = token, .title = title.toUpper(), .count = count});
    }
    orderByCount(values);
    return values;
}

// What is chosen is shown with nothing to find, too.
void FacetCounts::add(FacetKind kind, const FacetValue &value, QList<FacetValue> &values) const
{
    if (value.count > 0 || m_read.contains(kind, value.token)) {
        values.append(value);
    }
}

QList<FacetValue> FacetCounts::colors(const LibraryIndex::Reading &reading)
{
    std::map<int, qint64> counts;
    for (const IndexCount &each : reading.counts(IndexFacet::MainColor, rowsFor(FacetKind::Color, reading), {})) {
        counts[each.value.isValid() ? each.value.toInt() : 0] += each.count;
    }
    QList<FacetValue> values;
    for (int code = int(ZQSidebarKind::FirstColor); code <= int(ZQSidebarKind::LastColor); ++code) {
        const QString name = ZQSidebarTag::colorNameForValue(code);
        add(FacetKind::Color,
            {.token = tokenOf(SearchField::Color, name), .title = name, .color = code, .count = counts[code]}, values);
    }
    const QString none = QStringLiteral("none");
    add(FacetKind::Color,
        {.token = tokenOf(SearchField::Color, none), .title = zqLocalized("none"), .count = counts[0]}, values);
    return values;
}

QList<FacetValue> FacetCounts::ratings(const LibraryIndex::Reading &reading)
{
    qint64 atLeast[mostStars + 1] = {};
    qint64 unrated = 0;
    for (const IndexCount &each : reading.counts(IndexFacet::Rating, rowsFor(FacetKind::Rating, reading), {})) {
        const qint64 rating = each.value.isValid() ? each.value.toLongLong() : -1;
        unrated += rating == 0 ? each.count : 0;
        for (int stars = 1; stars <= mostStars; ++stars) {
            atLeast[stars] += rating >= stars ? each.count : 0;
        }
    }
    const QString name = SearchToken::ofField(SearchField::Rating).name();
    QList<FacetValue> values;
    for (int stars = mostStars; stars > 0; --stars) {
        const QString title = stars == mostStars ? zqFormat(zqLocalized("%d Stars"), {stars})
                              : stars == 1       ? zqLocalized("1 star or more")
                                                 : zqFormat(zqLocalized("%d stars or more"), {stars});
        add(FacetKind::Rating,
            {.token = name + u'>' + QString::number(stars - 1),
             .title = title,
             .stars = stars,
             .count = atLeast[stars]},
            values);
    }
    add(FacetKind::Rating, {.token = name + QStringLiteral("=0"), .title = zqLocalized("unrated"), .count = unrated},
        values);
    return values;
}

QList<FacetValue> FacetCounts::sizes(const LibraryIndex::Reading &reading)
{
    QList<FacetValue> values;
    for (const IndexCount &each :
         reading.counts(IndexFacet::SizeClass, rowsFor(FacetKind::Size, reading), m_scope.search.sizes)) {
        const QString name = zqLocalized(each.value.toString());
        values.append({.token = tokenOf(SearchField::Size, name), .title = name, .count = each.count});
    }
    return values;
}

QList<FacetValue> FacetCounts::dates(const LibraryIndex::Reading &reading)
{
    const QDate &today = m_scope.search.today;
    const std::vector<ImportSpan> spans = importSpans(today);
    std::vector<qint64> bounds;
    for (const ImportSpan &span : spans) {
        bounds.insert(bounds.end(), {span.from, span.to});
    }
    std::sort(bounds.begin(), bounds.end());
    const std::vector<qint64> counts = reading.importedBetween(bounds, rowsFor(FacetKind::Imported, reading));
    QList<FacetValue> values;
    qint64 narrower = 0;
    for (const ImportSpan &span : spans) {
        qint64 count = 0;
        for (size_t place = 0; place < counts.size(); ++place) {
            const bool begins = span.isOpen || (place > 0 && bounds[place - 1] >= span.from);
            const bool ends = place < bounds.size() && bounds[place] <= span.to;
            count += begins && ends ? counts[place] : 0;
        }
        const QString token = SearchToken::ofField(SearchField::Imported).name() + span.argument;
        const bool saysMore = !span.isWider || count != narrower || m_read.contains(FacetKind::Imported, token);
        if (saysMore) {
            add(FacetKind::Imported, {.token = token, .title = span.title, .count = count}, values);
        }
        narrower = span.isWider ? count : narrower + count;
    }
    return values;
}

QList<FacetValue> FacetCounts::names(FacetKind kind, const LibraryIndex::Reading &reading)
{
    constexpr int mostAsked = 20; // names that are patterns are looked for one by one
    const bool isTag = kind == FacetKind::Tag;
    const SearchField field = isTag ? SearchField::Tag : SearchField::Folder;
    int asked = 0;
    QList<FacetValue> values;
    for (const IndexCount &each :
         reading.counts(isTag ? IndexFacet::TagName : IndexFacet::LiveFolderName, rowsFor(kind, reading), {})) {
        const QString name = each.value.toString();
        FacetValue value{.token = tokenOf(field, name), .title = name, .count = each.count};
        if (!SearchManager::isPlain(name)) {
            value.count = ++asked <= mostAsked ? countOf(value.token, kind, reading) : 0;
        }
        if (value.count > 0) {
            values.append(value);
        }
    }
    orderByCount(values);
    return values;
}

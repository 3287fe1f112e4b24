#include "Classes/Browsing/Index/IndexSorter.h"

#include "Classes/Browsing/Index/ListOrder.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <numeric>

namespace {

// A number that orders as the value; never 0.
quint64 ordered(qint64 value)
{
    const quint64 flipped = quint64(value) ^ (quint64(1) << 63);
    return flipped == ~quint64(0) ? flipped : flipped + 1;
}

template <class T>
class NumberKey : public IndexSorter::Key
{
public:
    explicit NumberKey(const IndexNumbers<T> &numbers) : m_numbers(numbers) {}
    void fill(const std::vector<quint32> &rows, std::span<quint64> numbers) const override
    {
        for (size_t i = 0; i < rows.size(); ++i) {
            numbers[i] = m_numbers.isNull(rows[i]) ? 0 : ordered(m_numbers[rows[i]]);
        }
    }
    bool isWhole() const override { return true; }
    int compare(quint32 a, quint32 b) const override
    {
        const auto x = m_numbers.value(a);
        const auto y = m_numbers.value(b);
        return x < y ? -1 : (y < x ? 1 : 0);
    }

private:
    const IndexNumbers<T> &m_numbers;
};

class RankKey : public IndexSorter::Key
{
public:
    explicit RankKey(const IndexTitles &titles) : m_titles(titles) {}
    void fill(const std::vector<quint32> &rows, std::span<quint64> numbers) const override
    {
        for (size_t i = 0; i < rows.size(); ++i) {
            numbers[i] = m_titles.rank(rows[i]);
        }
    }
    bool isWhole() const override { return true; }
    int compare(quint32 a, quint32 b) const override
    {
        const quint32 x = m_titles.rank(a);
        const quint32 y = m_titles.rank(b);
        return x < y ? -1 : (y < x ? 1 : 0);
    }

private:
    const IndexTitles &m_titles;
};

// Titles by code point, which is what UTF-8 compares by.
class TextKey : public IndexSorter::Key
{
public:
    explicit TextKey(const ZQTextBlocks &texts) : m_texts(texts) {}
    void fill(const std::vector<quint32> &, std::span<quint64> numbers) const override
    {
        std::fill(numbers.begin(), numbers.end(), 0);
    }
    bool isWhole() const override { return false; }
    int compare(quint32 a, quint32 b) const override
    {
        if (m_texts.isNull(a) || m_texts.isNull(b)) {
            return int(m_texts.isNull(b)) - int(m_texts.isNull(a));
        }
        return m_texts.text(a).compare(m_texts.text(b));
    }

private:
    const ZQTextBlocks &m_texts;
};

// Places among each other; those that `compare` finds equal share one. The first is `from`.
template <class T, class Compare>
std::vector<quint32> sharedPlaces(const std::vector<T> &values, quint32 from, Compare compare)
{
    std::vector<quint32> order(values.size());
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [&](quint32 a, quint32 b) { return compare(values[a], values[b]) < 0; });
    std::vector<quint32> places(values.size());
    for (size_t i = 0; i < order.size(); ++i) {
        const bool isNext = i > 0 && compare(values[order[i - 1]], values[order[i]]) != 0;
        from += isNext ? 1 : 0;
        places[order[i]] = from;
    }
    return places;
}

// Of the few texts that many rows have in common, the places among each other.
class ExtensionKey : public IndexSorter::Key
{
public:
    ExtensionKey(const ZQPagedVector<quint32> &extensions, std::vector<quint32> places)
        : m_extensions(extensions), m_places(std::move(places))
    {
    }
    explicit ExtensionKey(const IndexItems &items) : m_extensions(items.extensions)
    {
        const std::vector<ZQScalar> &texts = items.extensionTexts;
        std::vector<quint32> order(texts.size());
        std::iota(order.begin(), order.end(), 0);
        std::sort(order.begin(), order.end(), [&texts](quint32 a, quint32 b) {
            const bool hasBoth = !zqIsNull(texts[a]) && !zqIsNull(texts[b]);
            return hasBoth ? zqOrderOfScalars(texts[a], texts[b]) < 0 : zqIsNull(texts[a]) && !zqIsNull(texts[b]);
        });
        m_places.resize(texts.size());
        for (size_t place = 0; place < order.size(); ++place) {
            m_places[order[place]] = quint32(place);
        }
    }
    void fill(const std::vector<quint32> &rows, std::span<quint64> numbers) const override
    {
        for (size_t i = 0; i < rows.size(); ++i) {
            numbers[i] = m_places[m_extensions[rows[i]]];
        }
    }
    bool isWhole() const override { return true; }
    int compare(quint32 a, quint32 b) const override
    {
        const quint32 x = m_places[m_extensions[a]];
        const quint32 y = m_places[m_extensions[b]];
        return x < y ? -1 : (y < x ? 1 : 0);
    }

private:
    const ZQPagedVector<quint32> &m_extensions;
    std::vector<quint32> m_places; // by position among the texts
};

QString textOf(const ZQScalar &value)
{
    const QString *text = std::get_if<QString>(&value);
    return text ? *text : QString();
}

std::shared_ptr<const IndexSorter::Key> kindKey(const IndexItems &items)
{
    std::vector<QString> texts;
    for (const ZQScalar &text : items.extensionTexts) {
        texts.push_back(textOf(text).toLower());
    }
    return std::make_shared<ExtensionKey>(
        items.extensions,
        sharedPlaces(texts, 0, [](const QString &a, const QString &b) { return QString::compare(a, b); }));
}

// The places of a person's tags by title, from 1, by number of the sidebar; 0 for what is none.
class TagPlaces
{
public:
    explicit TagPlaces(const LibraryColumns &columns) : m_places(columns.tags.tagCount(), 0)
    {
        const IndexSidebar &sidebar = columns.sidebar;
        std::vector<quint32> tags;
        std::vector<QString> titles;
        for (quint32 number = 1; number < m_places.size(); ++number) {
            const auto is = [&](const char *name) { return sidebar.attribute(number, name) == ZQScalar(qint64(1)); };
            const ZQScalar kind = sidebar.attribute(number, "kind");
            const bool isNoOther = zqIsNull(kind) || kind == ZQScalar(qint64(0));
            if (sidebar.exists(number) && isNoOther && is("is_Tag") && is("active") && !is("is_Label")) {
                tags.push_back(number);
                titles.push_back(textOf(sidebar.attribute(number, "title")));
            }
        }
        const auto places = sharedPlaces(
            titles, 1, [](const QString &a, const QString &b) { return QString::compare(a, b, Qt::CaseInsensitive); });
        for (size_t i = 0; i < tags.size(); ++i) {
            m_places[tags[i]] = places[i];
            m_last = std::max(m_last, places[i]);
        }
    }
    quint32 operator[](quint32 number) const { return m_places[number]; }
    // Of a number that holds a place, and one more above all of them.
    int bits() const { return int(std::bit_width(m_last + 1)); }

private:
    std::vector<quint32> m_places;
    quint32 m_last = 0;
};

// A few of the tags that are compared, from the one at `first` on, in one number.
class TagKey : public IndexSorter::Key
{
public:
    // As many as a number has room for: all that are compared, unless there are tags by the ten thousand.
    static int tagsInOne(const TagPlaces &places)
    {
        int tags = ListOrder::tagsCompared;
        while (tags * places.bits() > 63) {
            tags /= 2;
        }
        return tags;
    }

    TagKey(const LibraryColumns &columns, std::shared_ptr<const TagPlaces> places, int first)
        : m_tags(columns.tags), m_places(std::move(places)), m_first(first), m_count(tagsInOne(*m_places))
    {
    }
    void fill(const std::vector<quint32> &rows, std::span<quint64> numbers) const override
    {
        std::transform(rows.begin(), rows.end(), numbers.begin(), [this](quint32 row) { return number(row); });
    }
    bool isWhole() const override { return true; }
    int compare(quint32 a, quint32 b) const override
    {
        const quint64 x = number(a);
        const quint64 y = number(b);
        return x < y ? -1 : (y < x ? 1 : 0);
    }

private:
    quint64 number(quint32 row) const
    {
        const int bits = m_places->bits();
        quint32 lowest[ListOrder::tagsCompared]; // in their order
        int count = 0;
        for (const quint32 tag : m_tags.tagsOf(row)) {
            quint32 place = (*m_places)[tag];
            for (int i = 0; i < count && place; ++i) {
                if (place < lowest[i]) {
                    std::swap(place, lowest[i]);
                }
            }
            if (place && count < ListOrder::tagsCompared) {
                lowest[count++] = place;
            }
        }
        if (count == 0) {
            return m_first == 0 ? (quint64(1) << (bits * m_count)) - 1 : 0;
        }
        quint64 result = 0;
        for (int i = m_first; i < m_first + m_count; ++i) {
            result = result << bits | (i < count ? lowest[i] : 0);
        }
        return result;
    }

    const IndexTags &m_tags;
    std::shared_ptr<const TagPlaces> m_places;
    int m_first;
    int m_count;
};

class HueKey : public IndexSorter::Key
{
public:
    explicit HueKey(const IndexPictures &pictures) : m_pictures(pictures) {}
    void fill(const std::vector<quint32> &rows, std::span<quint64> numbers) const override
    {
        for (size_t i = 0; i < rows.size(); ++i) {
            numbers[i] = quint64(place(rows[i])) + 1; // none is no null, but the last place
        }
    }
    bool isWhole() const override { return true; }
    int compare(quint32 a, quint32 b) const override { return place(a) - place(b); }

private:
    int place(quint32 row) const
    {
        const PictureColors *colors = m_pictures.colors(row);
        return colors ? colors->huePlace() : PictureColors::lastPlace;
    }

    const IndexPictures &m_pictures;
};

class DigestKey : public IndexSorter::Key
{
public:
    explicit DigestKey(const ZQDigests &digests) : m_digests(digests), m_hasOthers(!digests.others().isEmpty()) {}
    void fill(const std::vector<quint32> &rows, std::span<quint64> numbers) const override
    {
        // The first bits part them well enough; where there are texts that are no digests, nothing does.
        for (size_t i = 0; i < rows.size(); ++i) {
            const ZQDigests::Digest &digest = m_digests.digests()[rows[i]];
            const quint64 start = quint64(digest[0]) << 16 | quint64(digest[1]) << 8 | digest[2];
            numbers[i] = m_hasOthers || m_digests.isNull(rows[i]) ? 0 : start + 1;
        }
    }
    bool isWhole() const override { return false; }
    int compare(quint32 a, quint32 b) const override { return m_digests.compare(a, b); }

private:
    const ZQDigests &m_digests;
    bool m_hasOthers;
};

struct Placed
{
    quint64 number;
    quint32 place;
};

// Stable, in time linear in their count, by the bits of `numberOf` from `first` to before `end`.
template <class Each, class Number>
void sortByNumber(ZQPagedVector<Each> &all, ZQPagedVector<Each> &buffer, int first, int end, Number numberOf)
{
    constexpr int digitBits = 11;
    constexpr size_t digits = size_t(1) << digitBits;
    for (int shift = first; shift < end; shift += digitBits) {
        size_t starts[digits] = {};
        for (const Each &each : all) {
            ++starts[(numberOf(each) >> shift) % digits];
        }
        std::exclusive_scan(std::begin(starts), std::end(starts), std::begin(starts), size_t(0));
        for (const Each &each : all) {
            buffer[starts[(numberOf(each) >> shift) % digits]++] = each;
        }
        all.swap(buffer);
    }
}

// The numbers of several keys, the last one lowest, in as few words as they fit.
struct Words
{
    std::vector<ZQPagedVector<quint64>> words; // the least significant first
    std::vector<int> bits;

    void addHigher(ZQPagedVector<quint64> numbers, bool isAscending)
    {
        quint64 lowest = ~quint64(0);
        quint64 highest = 0;
        for (const quint64 number : numbers) {
            lowest = number ? std::min(lowest, number) : lowest;
            highest = std::max(highest, number);
        }
        const quint64 top = highest ? highest - lowest + 1 : 0;
        for (quint64 &number : numbers) {
            const quint64 small = number ? number - lowest + 1 : 0;
            number = isAscending ? small : top - small;
        }
        const auto needed = int(std::bit_width(top));
        if (words.empty() || bits.back() + needed > 64) {
            words.push_back(std::move(numbers));
            bits.push_back(needed);
            return;
        }
        ZQPagedVector<quint64> &word = words.back();
        for (size_t i = 0; i < word.size() && needed; ++i) {
            word[i] |= numbers[i] << bits.back();
        }
        bits.back() += needed;
    }
    // Stable.
    void sort(std::vector<quint32> &places) const
    {
        const auto placeBits = int(std::bit_width(places.size()));
        if (words.size() == 1 && bits[0] + placeBits <= 64) { // half the memory to move
            ZQPagedVector<quint64> packed(places.size());
            ZQPagedVector<quint64> buffer(places.size());
            std::transform(places.begin(), places.end(), packed.begin(),
                           [&](quint32 place) { return words[0][place] << placeBits | place; });
            sortByNumber(packed, buffer, placeBits, placeBits + bits[0], [](quint64 each) { return each; });
            const quint64 mask = (quint64(1) << placeBits) - 1;
            std::transform(packed.begin(), packed.end(), places.begin(),
                           [mask](quint64 each) { return quint32(each & mask); });
            return;
        }
        ZQPagedVector<Placed> placed(words.empty() ? 0 : places.size());
        ZQPagedVector<Placed> buffer(placed.size());
        for (size_t i = 0; i < words.size(); ++i) {
            std::transform(places.begin(), places.end(), placed.begin(), [&](quint32 place) {
                return Placed{words[i][place], place};
            });
            sortByNumber(placed, buffer, 0, bits[i], [](const Placed &each) { return each.number; });
            std::transform(placed.begin(), placed.end(), places.begin(), [](const Placed &each) { return each.place; });
        }
    }
    bool areEqual(quint32 a, quint32 b) const
    {
        return std::all_of(words.begin(), words.end(), [a, b](const auto &word) { return word[a] == word[b]; });
    }
};

std::vector<quint32> picked(const std::vector<quint32> &values, const std::vector<quint32> &places)
{
    std::vector<quint32> result;
    result.reserve(places.size());
    for (const quint32 place : places) {
        result.push_back(values[place]);
    }
    return result;
}

} // namespace

std::shared_ptr<const IndexSorter::Key> IndexSorter::keyFor(const LibraryColumns &columns, const QString &name,
                                                            ZQSortDescriptor::Comparison comparison)
{
    const IndexItems &items = columns.items;
    if (name == QStringLiteral("title")) {
        if (comparison == ZQSortDescriptor::Comparison::LocalizedStandard) {
            return columns.titles.isBuilt() ? std::make_shared<RankKey>(columns.titles) : nullptr;
        }
        return std::make_shared<TextKey>(items.title);
    }
    if (name == QStringLiteral("extension") && comparison == ZQSortDescriptor::Comparison::Standard) {
        return std::make_shared<ExtensionKey>(items);
    }
    if (name == ListOrder::kindKey) {
        return kindKey(items);
    }
    if (name == ListOrder::hueKey) {
        return std::make_shared<HueKey>(items.pictures);
    }
    if (name == QStringLiteral("SHA1") && comparison == ZQSortDescriptor::Comparison::Standard) {
        return std::make_shared<DigestKey>(items.digests);
    }
    const std::pair<const char *, const IndexNumbers<qint64> *> wide[] = {
        {"import_date", &items.importDate},
        {"modification_date", &items.modificationDate},
        {"creation_date", &items.creationDate},
        {"pixelTotal", &items.pixelTotal},
    };
    for (const auto &[key, numbers] : wide) {
        if (name == QLatin1StringView(key)) {
            return std::make_shared<NumberKey<qint64>>(*numbers);
        }
    }
    const std::pair<const char *, const IndexNumbers<qint32> *> narrow[] = {
        {"mainColor", &items.mainColor}, {"pixelWidth", &items.pixelWidth}, {"pixelHeight", &items.pixelHeight}};
    for (const auto &[key, numbers] : narrow) {
        if (name == QLatin1StringView(key)) {
            return std::make_shared<NumberKey<qint32>>(*numbers);
        }
    }
    return name == QStringLiteral("rating") ? std::make_shared<NumberKey<qint16>>(items.rating) : nullptr;
}

void IndexSorter::addTags(bool isAscending)
{
    const auto places = std::make_shared<const TagPlaces>(m_columns);
    for (int first = 0; first < ListOrder::tagsCompared; first += TagKey::tagsInOne(*places)) {
        m_terms.push_back({std::make_shared<TagKey>(m_columns, places, first), isAscending, false});
    }
}

std::optional<IndexSorter> IndexSorter::make(const LibraryColumns &columns, ZQListRows kind,
                                             const QList<ZQSortDescriptor> &descriptors)
{
    IndexSorter sorter(columns, kind);
    for (const ZQSortDescriptor &descriptor : descriptors) {
        Term term{nullptr, descriptor.ascending, false};
        const QString key = zqItemKey(descriptor.keyPath);
        const bool isPrefixed = key.size() != descriptor.keyPath.size();
        if (kind == ZQListRows::Memberships && descriptor.keyPath == QStringLiteral("order")) {
            term.key = std::make_shared<NumberKey<qint32>>(columns.memberships.orders());
            term.isOfMembership = true;
        } else if (isPrefixed == (kind == ZQListRows::Memberships) && key == ListOrder::tagsKey) {
            sorter.addTags(descriptor.ascending);
            continue;
        } else if (isPrefixed == (kind == ZQListRows::Memberships)) {
            term.key = keyFor(columns, key, descriptor.comparison);
        }
        if (!term.key) {
            return std::nullopt;
        }
        sorter.m_terms.push_back(std::move(term));
    }
    return sorter;
}

std::vector<quint32> IndexSorter::placesOf(const IndexRows &rows, Ties ties) const
{
    std::vector<quint32> places(rows.size());
    std::iota(places.begin(), places.end(), 0U);
    if (ties == Ties::AsTheyAre) {
        return places;
    }
    const bool isOfItems = m_kind == ZQListRows::LibraryItems;
    const IndexKeys &keys = isOfItems ? m_columns.items.keys : m_columns.memberships.keys();
    const std::vector<quint32> &own = isOfItems ? rows.items : rows.memberships;
    const auto isBefore = [&](quint32 a, quint32 b) { return keys[own[a]] < keys[own[b]]; };
    if (!std::is_sorted(places.begin(), places.end(), isBefore)) {
        std::stable_sort(places.begin(), places.end(), isBefore);
    }
    return places;
}

void IndexSorter::sort(IndexRows &rows, Ties ties) const
{
    const auto firstPart =
        std::find_if(m_terms.begin(), m_terms.end(), [](const Term &term) { return !term.key->isWhole(); });
    const size_t used = size_t(firstPart - m_terms.begin()) + (firstPart == m_terms.end() ? 0 : 1);
    Words words;
    for (size_t i = used; i-- > 0;) {
        ZQPagedVector<quint64> numbers(rows.size());
        m_terms[i].key->fill(rowsOf(m_terms[i], rows), numbers);
        words.addHigher(std::move(numbers), m_terms[i].isAscending);
    }
    std::vector<quint32> places = placesOf(rows, ties);
    words.sort(places);
    const auto isBefore = [&](quint32 a, quint32 b) {
        for (auto term = firstPart; term != m_terms.end(); ++term) {
            const std::vector<quint32> &own = rowsOf(*term, rows);
            const int order = term->key->compare(own[a], own[b]);
            if (order != 0) {
                return (order < 0) == term->isAscending;
            }
        }
        return false;
    };
    for (size_t first = 0; firstPart != m_terms.end() && first < places.size();) {
        size_t end = first + 1;
        while (end < places.size() && words.areEqual(places[first], places[end])) {
            ++end;
        }
        if (end - first > 1) { // stable: ties are in their order
            std::stable_sort(places.begin() + qsizetype(first), places.begin() + qsizetype(end), isBefore);
        }
        first = end;
    }
    rows.items = picked(rows.items, places);
    if (m_kind == ZQListRows::Memberships) {
        rows.memberships = picked(rows.memberships, places);
    }
}

#include "Kit/Persistence/ZQColumns.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Persistence/ZQByteSearch.h"
#include "Kit/Persistence/ZQColumnScan.h"
#include "Kit/Persistence/ZQTextScan.h"
#include "Tests/Kit/Persistence/RandomPredicates.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace {

const QStringList toMany = {QStringLiteral("tags"), QStringLiteral("children"), QStringLiteral("notes")};

void collect(const QVariant &value, const QStringList &keys, std::vector<ZQScalar> &into)
{
    if (value.typeId() == QMetaType::QVariantList) {
        for (const QVariant &each : value.toList()) {
            collect(each, keys, into);
        }
    } else if (keys.isEmpty()) {
        const bool isThing = value.typeId() == QMetaType::QVariantMap; // there, but nothing to compare
        into.push_back(isThing ? ZQScalar(QByteArray("thing")) : zqScalarFromVariant(value));
    } else {
        collect(value.toMap().value(keys.first()), keys.mid(1), into);
    }
}

class Lists : public ZQListColumn
{
public:
    void append(const std::vector<ZQScalar> &values)
    {
        std::vector<size_t> elements;
        for (const ZQScalar &value : values) {
            const auto found = std::find(m_elements.begin(), m_elements.end(), value);
            elements.push_back(size_t(found - m_elements.begin()));
            if (found == m_elements.end()) {
                m_elements.push_back(value);
            }
        }
        m_rows.push_back(elements);
    }
    size_t elementCount() const override { return m_elements.size(); }
    ZQScalar element(size_t element) const override { return m_elements[element]; }
    void addRows(size_t element, ZQRowSet &rows) const override
    {
        for (size_t row = 0; row < m_rows.size(); ++row) {
            rows.set(row, rows.contains(row) ||
                              std::find(m_rows[row].begin(), m_rows[row].end(), element) != m_rows[row].end());
        }
    }
    void addSizes(std::vector<quint32> &sizes) const override
    {
        for (size_t row = 0; row < sizes.size(); ++row) {
            sizes[row] += quint32(m_rows[row].size());
        }
    }
    bool visit(size_t row, const std::function<bool(size_t)> &visit) const override
    {
        return std::any_of(m_rows[row].begin(), m_rows[row].end(), visit);
    }

private:
    std::vector<ZQScalar> m_elements;
    std::vector<std::vector<size_t>> m_rows;
};

// The nodes of a database as columns, of a kind chosen for each path.
class DatabaseColumns : public ZQColumnSource
{
public:
    enum class TextKind { Exact, FoldedOnly, Coded, Digests };

    DatabaseColumns(const PredicateDatabase &database, TextKind kind) : m_database(database), m_kind(kind) {}
    size_t rowCount() const override { return size_t(m_database.keys().size()); }
    std::optional<ZQColumn> column(const QStringList &keys) const override
    {
        std::vector<std::vector<ZQScalar>> rows;
        for (const qint64 key : m_database.keys()) {
            collect(m_database.mapOf(key), keys, rows.emplace_back());
        }
        if (std::any_of(keys.begin(), keys.end(), [](const QString &key) { return toMany.contains(key); })) {
            auto lists = std::make_shared<Lists>();
            for (const std::vector<ZQScalar> &values : rows) {
                lists->append(values);
            }
            return lists;
        }
        std::vector<ZQScalar> values;
        for (const std::vector<ZQScalar> &row : rows) {
            values.push_back(row.empty() ? ZQScalar() : row.front());
        }
        return keys.last() == QStringLiteral("title") || keys.last() == QStringLiteral("author")
                   ? textColumn(values)
                   : plainColumn(keys.last(), values);
    }

private:
    struct Held
    {
        std::vector<qint64> numbers;
        std::vector<quint16> codes;
        ZQRowSet nulls;
        ZQRowSet flags;
        ZQTextBlocks folded;
        ZQTextBlocks exact;
        ZQDigests digests;
    };

    static ZQColumn coded(Held &held, const std::vector<ZQScalar> &values)
    {
        ZQCodedColumn column;
        for (const ZQScalar &value : values) {
            const auto found = std::find(column.values.begin(), column.values.end(), value);
            held.codes.push_back(quint16(found - column.values.begin()));
            if (found == column.values.end()) {
                column.values.push_back(value);
            }
        }
        column.codes = std::span<const quint16>(held.codes);
        return column;
    }
    ZQColumn textColumn(const std::vector<ZQScalar> &values) const
    {
        Held &held = *m_held.emplace_back(std::make_unique<Held>());
        if (m_kind == TextKind::Coded) {
            return coded(held, values);
        }
        for (const ZQScalar &value : values) {
            const QString *text = std::get_if<QString>(&value);
            const auto utf8 = [&](const QString &string) { return string.toStdString(); };
            const std::string exact = text ? utf8(*text) : std::string();
            const std::string folded = text ? utf8(zqFold(*text)) : std::string();
            held.exact.append(text ? ZQTextBlocks::Text(exact) : std::nullopt);
            held.folded.append(text ? ZQTextBlocks::Text(folded) : std::nullopt);
            held.digests.append(text ? std::optional<std::string_view>(exact) : std::nullopt);
        }
        if (m_kind == TextKind::Digests) {
            return &held.digests;
        }
        return ZQTextColumn{&held.folded, m_kind == TextKind::Exact ? &held.exact : nullptr};
    }
    ZQColumn plainColumn(const QString &key, const std::vector<ZQScalar> &values) const
    {
        Held &held = *m_held.emplace_back(std::make_unique<Held>());
        const bool isDate = key == QStringLiteral("date");
        if (!isDate && key != QStringLiteral("small") && key != QStringLiteral("large") &&
            key != QStringLiteral("flag")) {
            return coded(held, values);
        }
        held.nulls = ZQRowSet(values.size());
        held.flags = ZQRowSet(values.size());
        for (size_t row = 0; row < values.size(); ++row) {
            const ZQDateValue *date = std::get_if<ZQDateValue>(&values[row]);
            const qint64 *number = std::get_if<qint64>(&values[row]);
            held.numbers.push_back(date ? date->milliseconds : (number ? *number : 0));
            held.flags.set(row, number && *number != 0);
            held.nulls.set(row, !date && !number);
        }
        if (key == QStringLiteral("flag")) {
            return ZQFlagColumn{&held.flags, &held.nulls};
        }
        return ZQNumberColumn{std::span<const qint64>(held.numbers), &held.nulls, isDate};
    }

    const PredicateDatabase &m_database;
    TextKind m_kind;
    mutable std::vector<std::unique_ptr<Held>> m_held;
};

} // namespace

RC_GTEST_PROP(ZQColumns, AgreeWithEvaluationInMemory, ())
{
    PredicateDatabase database;
    fillAtRandom(database);
    using Kind = DatabaseColumns::TextKind;
    const Kind kind = *rc::gen::element(Kind::Exact, Kind::FoldedOnly, Kind::Coded, Kind::Digests);
    const DatabaseColumns columns(database, kind);
    for (int round = 0; round < 20; ++round) {
        QVariantList arguments;
        const QString format = randomPredicateFormat(&arguments, 3);
        const ZQPredicate predicate = ZQPredicate::predicateWithFormat(format, arguments);
        ZQRowSet among(columns.rowCount());
        ZQRowSet expected(columns.rowCount());
        for (size_t row = 0; row < columns.rowCount(); ++row) {
            among.set(row, *rc::gen::inRange(0, 4) > 0);
            const QVariant map = database.mapOf(database.keys().at(qsizetype(row)));
            expected.set(row, among.contains(row) && predicate.evaluateWithObject(map));
        }
        const auto found = zqRowsMatching(predicate, columns, among);
        RC_LOG() << predicate.predicateFormat().toStdString() << "\n";
        RC_ASSERT(found || kind == Kind::FoldedOnly);
        if (found) {
            RC_ASSERT(*found == expected);
        }
    }
}

RC_GTEST_PROP(ZQColumns, FindBytesWhereverTheyStand, ())
{
    const auto text = *rc::gen::container<std::string>(rc::gen::element('a', 'b', '\0', '\xff'));
    const auto padding = *rc::gen::inRange<size_t>(0, 100);
    const std::string whole = std::string(padding, 'a') + text + std::string(*rc::gen::inRange<size_t>(0, 40), 'b');
    const size_t start = *rc::gen::inRange<size_t>(0, whole.size() + 1);
    const std::string needle = *rc::gen::oneOf(rc::gen::just(whole.substr(start, 5)),
                                               rc::gen::container<std::string>(rc::gen::element('a', 'b', 'c')));
    RC_PRE(!needle.empty());
    const std::string copy = whole; // in memory of just this size, for the sanitizer
    const char *found = zqFindBytes(copy.data(), copy.data() + copy.size(), needle);
    const size_t expected = whole.find(needle);
    RC_ASSERT(size_t(found - copy.data()) == (expected == std::string::npos ? whole.size() : expected));
}

namespace {

// Enough rows for several blocks, each with a text, a number and a digest.
class ManyRows : public ZQColumnSource
{
public:
    static constexpr size_t count = 3 * ZQTextBlocks::rowsPerBlock + 77;
    ManyRows()
    {
        for (size_t row = 0; row < count; ++row) {
            m_numbers.push_back(qint16(row % 1000));
            m_codes.push_back(quint16(row % 2));
            m_texts.append(row % 7 ? ZQTextBlocks::Text("row " + std::to_string(row)) : std::nullopt);
            m_digests.append(std::string(36, '0') + hex(row).toStdString());
        }
    }
    static QString hex(size_t row) { return QStringLiteral("%1").arg(row, 4, 16, QLatin1Char('0')).right(4); }
    size_t rowCount() const override { return count; }
    std::optional<ZQColumn> column(const QStringList &keys) const override
    {
        if (keys == QStringList(QStringLiteral("text"))) {
            return ZQTextColumn{&m_texts, nullptr};
        }
        if (keys == QStringList(QStringLiteral("number"))) {
            return ZQNumberColumn{std::span<const qint16>(m_numbers)};
        }
        if (keys == QStringList(QStringLiteral("kind"))) {
            return ZQCodedColumn{std::span<const quint16>(m_codes), {QStringLiteral("even"), QStringLiteral("odd")}};
        }
        return keys == QStringList(QStringLiteral("digest")) ? std::optional<ZQColumn>(&m_digests) : std::nullopt;
    }
    ZQTextBlocks &texts() { return m_texts; }
    size_t matching(const char *format, const QVariantList &arguments = {})
    {
        const auto found = zqRowsMatching(ZQPredicate::predicateWithFormat(QString::fromLatin1(format), arguments),
                                          *this, ZQRowSet(count, true));
        return found ? found->count() : count + 1;
    }

private:
    std::vector<qint16> m_numbers;
    std::vector<quint16> m_codes;
    ZQTextBlocks m_texts;
    ZQDigests m_digests;
};

} // namespace

TEST(ZQColumns, SearchEveryBlockAndSeeWhatWasChangedInOne)
{
    ManyRows rows;
    EXPECT_EQ(rows.matching("text contains[cd] 'ROW'"), ManyRows::count - (ManyRows::count + 6) / 7);
    EXPECT_EQ(rows.matching("text contains[cd] 'row 49228'"), 1U) << "in the last block";
    EXPECT_EQ(rows.matching("text ==[cd] 'ROW 16384'"), 1U) << "the first row of a block";
    EXPECT_EQ(rows.matching("text LIKE[cd] 'r?w 4922*'"), 9U);
    EXPECT_EQ(rows.matching("text contains[cd] 'row' AND number == 5"), rows.matching("number == 5 AND text != nil"));
    EXPECT_EQ(rows.matching("number > 40000"), 0U);
    EXPECT_EQ(rows.matching("kind == 'odd'"), ManyRows::count / 2);
    EXPECT_EQ(rows.matching("number BETWEEN {998, 1000000}"), 2 * (ManyRows::count / 1000));
    EXPECT_EQ(rows.matching("digest == %@", {QString(36, u'0') + ManyRows::hex(12)}), 1U);
    EXPECT_EQ(rows.matching("other == 1"), ManyRows::count + 1) << "no column";

    rows.texts().replace(
        {{3, std::string("changed")}, {4, std::nullopt}, {7, std::string()}, {20000, std::string("x")}});
    EXPECT_EQ(rows.matching("text contains[cd] 'changed'"), 1U);
    EXPECT_EQ(rows.matching("text == nil"), (ManyRows::count + 6) / 7) << "row 7 has one now, row 4 none";
    EXPECT_EQ(rows.matching("text == 'row 5'"), ManyRows::count + 1) << "needs the text as it was written";
    EXPECT_EQ(rows.matching("text ==[cd] ''"), 1U);
    EXPECT_EQ(rows.matching("text ==[cd] 'row 5'"), 1U) << "the neighbours stay";
    EXPECT_TRUE(rows.texts().isNull(4));
    EXPECT_FALSE(rows.texts().isNull(7));

    const auto cancellation = std::make_shared<ZQCancellation>();
    const ZQCancellation::Scope scope(cancellation);
    cancellation->cancel();
    EXPECT_EQ(rows.matching("text contains[cd] 'row'"), ManyRows::count + 1);
}

TEST(ZQColumns, AScanOfAnyKindSaysThatItWasCancelled)
{
    const ManyRows rows;
    const ZQRowSet all(ManyRows::count, true);
    for (const char *format : {"text contains[cd] 'row'", "number == 5", "kind == 'odd'"}) {
        SCOPED_TRACE(format);
        const ZQPredicate predicate = ZQPredicate::predicateWithFormat(QString::fromLatin1(format));
        const ZQComparison &comparison = predicate.root()->comparison;
        const auto column = rows.column(comparison.left.keys);
        ASSERT_TRUE(column);
        const auto cancellation = std::make_shared<ZQCancellation>();
        const ZQCancellation::Scope scope(cancellation);
        EXPECT_TRUE(ZQColumnScan(comparison).rows(*column, all));
        cancellation->cancel();
        EXPECT_FALSE(ZQColumnScan(comparison).rows(*column, all));
    }
}

TEST(ZQColumns, ASearchOfTextsEndsWhereItIsCancelled)
{
    ZQTextBlocks texts;
    texts.append(std::string_view("a text"));
    const ZQRowSet all(1, true);
    for (const bool isCancelled : {false, true}) {
        const auto cancellation = std::make_shared<ZQCancellation>();
        const ZQCancellation::Scope scope(cancellation);
        if (isCancelled) {
            cancellation->cancel();
        }
        ZQRowSet found(1);
        EXPECT_EQ(zqMarkTextsWith("text", texts, all, found), !isCancelled);
        EXPECT_EQ(found.isEmpty(), isCancelled);
    }
}

TEST(ZQColumns, TextsThatAreJoinedInTheMiddleOfABlockStayWhatTheyAre)
{
    constexpr size_t first = ZQTextBlocks::rowsPerBlock + 5;
    constexpr size_t count = first + 2 * ZQTextBlocks::rowsPerBlock + 9;
    ZQTextBlocks texts;
    ZQTextBlocks more;
    for (size_t row = 0; row < count; ++row) {
        (row < first ? texts : more).append(row % 3 ? ZQTextBlocks::Text("row " + std::to_string(row)) : std::nullopt);
    }
    texts.appendAll(more);
    ASSERT_EQ(texts.rowCount(), count);
    for (size_t row = 0; row < count; ++row) {
        ASSERT_EQ(texts.isNull(row), row % 3 == 0) << row;
        ASSERT_EQ(texts.text(row), row % 3 ? "row " + std::to_string(row) : std::string()) << row;
    }
    ZQRowSet found(count);
    ASSERT_TRUE(zqMarkTextsWith("row " + std::to_string(first + 1), texts, ZQRowSet(count, true), found));
    EXPECT_EQ(found.count(), (first + 1) % 3 ? 1U : 0U);
    texts.append(std::string_view("last"));
    EXPECT_EQ(texts.text(count), "last");
}

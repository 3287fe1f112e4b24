#include "Kit/Persistence/ZQPredicateNode.h"
#include "Kit/Persistence/ZQResemblance.h"
#include "Tests/Kit/Persistence/RandomPredicates.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace {

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

ZQPredicate parsed(const char *format, const QVariantList &arguments = {})
{
    ZQError error;
    const ZQPredicate predicate = ZQPredicate::predicateWithFormat(text(format), arguments, &error);
    EXPECT_FALSE(predicate.isNull()) << format << error.localizedDescription().toStdString();
    return predicate;
}

} // namespace

RC_GTEST_PROP(ZQPredicateSQL, AgreesWithEvaluationInMemory, ())
{
    PredicateDatabase database;
    fillAtRandom(database);
    for (int round = 0; round < 20; ++round) {
        QVariantList arguments;
        const QString format = randomPredicateFormat(&arguments, 3);
        ZQError error;
        const ZQPredicate predicate = ZQPredicate::predicateWithFormat(format, arguments, &error);
        RC_ASSERT(error.isNull());
        const auto again = ZQPredicate::predicateWithFormat(predicate.predicateFormat());
        RC_ASSERT(again == predicate);
        QVariantList expected;
        for (const qint64 key : database.keys()) {
            expected.append(qint64(predicate.evaluateWithObject(QVariant(database.mapOf(key)))));
        }
        RC_ASSERT(zqSQLForPredicate(predicate, database.document(), text("t0")).has_value());
        const QVariantList found = database.results(predicate);
        if (found != expected) {
            RC_LOG() << predicate.predicateFormat().toStdString() << "\n"
                     << zqSQLForPredicate(predicate, database.document(), text("t0"))->text.toStdString();
        }
        RC_ASSERT(found == expected);
    }
}

TEST(ZQPredicateSQL, AsksATestThatWasRegisteredWhatDataResemble)
{
    zqRegisterResemblance(text("longer"), [](const QString &wanted) -> ZQResemblance {
        bool isNumber = false;
        const size_t size = wanted.section(u' ', 1).toUInt(&isNumber);
        return isNumber ? ZQResemblance([size](std::string_view data) { return data.size() > size; }) : nullptr;
    });
    PredicateDatabase database;
    const QVariant blobs[] = {QByteArray("abc"), QByteArray("a"), QByteArray(""), QVariant()};
    for (qint64 key = 1; key <= 4; ++key) {
        PredicateDatabase::Node node;
        node.values = {{text("blob"), blobs[key - 1]}, {text("title"), text("longer 0")}};
        database.addNode(key, node);
    }
    const std::pair<const char *, QVariantList> cases[] = {
        {"blob RESEMBLES \"longer 1\"", {1, 0, 0, 0}},
        {"blob resembles \"longer 0\"", {1, 1, 0, 0}},
        {"NOT blob RESEMBLES \"longer 0\"", {0, 0, 1, 1}},
        {"NONE blob RESEMBLES \"longer 0\"", {0, 0, 1, 1}},
        {"blob RESEMBLES title", {1, 1, 0, 0}},
        {"blob RESEMBLES \"longer\"", {0, 0, 0, 0}}, // describes nothing
        {"blob RESEMBLES \"unknown 1\"", {0, 0, 0, 0}},
        {"title RESEMBLES \"longer 0\"", {0, 0, 0, 0}}, // no data
        {"blob RESEMBLES nil", {0, 0, 0, 0}},
    };
    for (const auto &[format, expected] : cases) {
        const ZQPredicate predicate = parsed(format);
        EXPECT_EQ(ZQPredicate::predicateWithFormat(predicate.predicateFormat()), predicate) << format;
        for (qint64 key = 1; key <= 4; ++key) {
            EXPECT_EQ(predicate.evaluateWithObject(QVariant(database.mapOf(key))), expected[key - 1].toBool())
                << format << key;
        }
        EXPECT_EQ(database.results(predicate), expected) << format;
    }
}

TEST(ZQPredicateSQL, LetsAnIndexAnswerSimpleConditions)
{
    PredicateDatabase database;
    QStringList many;
    for (int i = 0; i < 1000; ++i) {
        many.append(QString::number(i));
    }
    const QVariant date = QDateTime::fromMSecsSinceEpoch(0);
    const std::tuple<const char *, QVariantList, const char *> cases[] = {
        {"title == %@", {text("a")}, "byTitle"},
        {"title == nil", {}, "byTitle"},
        {"title in %@", {QStringList{text("a"), text("b")}}, "byTitle"},
        {"title in %@", {many}, "byTitle"},
        {"title >= 'a' AND flag == YES", {}, "byTitle"},
        {"date > %@", {date}, "byDate"},
        {"date BETWEEN %@", {QVariant(QVariantList{date, date})}, "byDate"},
        {"((date >= %@) OR (title == 'a')) AND flag == YES", {date}, "byDate"},
        {"parent == nil && flag == YES", {}, "byParent"},
        {"ANY children.title == 'a'", {}, "USING INDEX by"},
    };
    for (const auto &[format, arguments, index] : cases) {
        const QString plan = database.plan(parsed(format, arguments));
        EXPECT_TRUE(plan.contains(text(index)) || plan.contains(text("COVERING INDEX ") + text(index)))
            << format << ": " << plan.toStdString();
    }
}

TEST(ZQPredicateSQL, ComparesObjectsByIdentity)
{
    PredicateDatabase database;
    database.addTag(1, text("draft"), 1);
    database.addTag(2, text("final"), 2);
    database.addNode(1, {{{text("title"), text("root")}}, 0, {1}, {}});
    database.addNode(2, {{{text("title"), text("child")}}, 1, {1, 2}, {}});
    const auto node = [&](qint64 key) { return QVariant::fromValue(ZQObjectID{database.document(), key}); };
    const auto tag = [&](qint64 key) { return QVariant::fromValue(ZQObjectID{database.tag(), key}); };
    const std::tuple<const char *, QVariantList, QVariantList> cases[] = {
        {"parent == %@", {node(1)}, {2LL}},
        {"parent == %@", {tag(1)}, {}},
        {"parent != %@", {node(1)}, {1LL}},
        {"SELF == %@", {node(1)}, {1LL}},
        {"NOT SELF in %@", {QVariant(QVariantList{node(1), node(7)})}, {2LL}},
        {"ANY tags == %@", {tag(2)}, {2LL}},
        {"tags CONTAINS %@", {tag(1)}, {1LL, 2LL}},
        {"tags CONTAINS %@", {node(1)}, {}},
        {"%@ IN tags", {tag(2)}, {2LL}},
        {"NONE tags in %@", {QVariant(QVariantList{tag(2)})}, {1LL}},
        {"parent.children.@count == 0", {}, {}},
        {"parent.children.@count == nil", {}, {1LL}},
        {"parent.children.@count == 1", {}, {2LL}},
        {"ANY parent.children.title == 'child'", {}, {2LL}},
        {"ALL tags.documents.title BEGINSWITH 'r'", {}, {}},
    };
    for (const auto &[format, arguments, expected] : cases) {
        EXPECT_EQ(database.keysMatching(parsed(format, arguments)), expected) << format;
    }
}

TEST(ZQPredicateSQL, TakesListsOfAnyLength)
{
    PredicateDatabase database;
    database.addNode(1, {{{text("title"), text("39999")}, {text("exact"), 0.1 + 0.2}}, 0, {}, {}});
    database.addNode(2, {{{text("title"), text("x")}, {text("exact"), 0.3}}, 0, {}, {}});
    QVariantList titles;
    QVariantList numbers;
    for (int i = 0; i < 40000; ++i) {
        titles.append(QString::number(i));
        numbers.append(i + 0.1 + 0.2);
    }
    EXPECT_EQ(database.keysMatching(parsed("title in %@", {QVariant(titles)})), QVariantList{1LL});
    EXPECT_EQ(database.keysMatching(parsed("NOT title in %@", {QVariant(titles)})), QVariantList{2LL});
    EXPECT_EQ(database.keysMatching(parsed("exact in %@", {QVariant(numbers)})), QVariantList{1LL});
}

TEST(ZQPredicateSQL, FindsEveryTypeAloneAndInListsOfAnyLength)
{
    const QDateTime date = QDateTime::fromMSecsSinceEpoch(5000);
    struct
    {
        const char *key;
        QVariant value;
        std::function<QVariant(int)> filler;
    } const cases[] = {
        {"title", QString(text("a") + QChar(u'\0') + u'b'), [](int i) { return QVariant(QString::number(i)); }},
        {"blob", QByteArray("\0b", 2), [](int i) { return QVariant(QByteArray::number(i)); }},
        {"blob", QByteArray(""), [](int i) { return QVariant(QByteArray::number(i)); }},
        {"date", date, [=](int i) { return QVariant(date.addDays(i + 1)); }},
        {"large", 1LL << 60, [](int i) { return QVariant(i); }},
        {"exact", 0.1 + 0.2, [](int i) { return QVariant(i + 0.5); }},
        {"exact", 2.5, [](int i) { return QVariant(i); }},
    };
    for (const auto &each : cases) {
        PredicateDatabase database;
        database.addNode(1, {{{text(each.key), each.value}}, 0, {}, {}});
        database.addNode(2, {});
        const auto found = [&](const char *format, const QVariant &value) {
            return database.keysMatching(parsed(format, {text(each.key), value}));
        };
        EXPECT_EQ(found("%K == %@", each.value), QVariantList{1LL}) << each.key;
        EXPECT_EQ(found("%K == %@", each.filler(0)), QVariantList()) << each.key;
        for (const int length : {0, 1, 15, 16, 17, 40}) {
            SCOPED_TRACE(testing::Message() << each.key << " among " << length);
            QVariantList values;
            for (int i = 0; i < length; ++i) {
                values.append(each.filler(i));
            }
            EXPECT_EQ(found("%K IN %@", values), QVariantList());
            EXPECT_EQ(found("%K IN %@", values + QVariantList{QVariant()}), QVariantList{2LL});
            values.append(each.value);
            EXPECT_EQ(found("%K IN %@", values), QVariantList{1LL});
            EXPECT_EQ(found("NOT %K IN %@", values), QVariantList{2LL});
            EXPECT_EQ(found("%K IN %@", values + QVariantList{QVariant()}), (QVariantList{1LL, 2LL}));
            values.last() = text("x") + QString::number(length); // of another type, mostly
            EXPECT_EQ(found("%K IN %@", values), QVariantList());
        }
    }
    PredicateDatabase database;
    database.addNode(1, {{{text("title"), text("t")}, {text("author"), text("t")}}, 0, {}, {}});
    database.addNode(2, {{{text("title"), text("x")}, {text("author"), text("y")}}, 1, {}, {}});
    const std::tuple<const char *, QVariantList> lists[] = {
        {"title IN {author, 'x'}", {1LL, 2LL}},      {"title IN {author}", {1LL}},
        {"author IN {parent.title, 'z'}", {}},       {"parent.title IN {author, nil}", {1LL}},
        {"NOT title IN {author, 'a'}", {2LL}},       {"title BETWEEN {author, 'u'}", {1LL}},
        {"title BETWEEN {'a', author}", {1LL, 2LL}},
    };
    for (const auto &[format, expected] : lists) {
        EXPECT_EQ(database.keysMatching(parsed(format, {})), expected) << format;
        ZQError error;
        const QString broken = text(format).replace(text("author"), text("nothing"));
        EXPECT_FALSE(database.keysMatching(parsed(qPrintable(broken), {}), &error).has_value()) << format;
        EXPECT_TRUE(error.localizedDescription().contains(text("nothing")));
    }
}

TEST(ZQPredicateSQL, RunsTheDeepestAndWidestPredicatesThatParse)
{
    PredicateDatabase database;
    database.addNode(1, {{{text("title"), text("a")}}, 0, {}, {}});
    QString format = text("ANY children.notes.text ==[cd] 'x'");
    for (int i = 0; ZQPredicate::predicateWithFormat(text("title == 'b' OR NOT (") + format + u')').root(); ++i) {
        format = (i % 2 ? text("title == 'b' OR NOT (") : text("title == 'a' AND NOT (")) + format + u')';
    }
    const ZQPredicate deep = ZQPredicate::predicateWithFormat(format);
    EXPECT_GT(deep.root()->depth, zqMaximumPredicateDepth / 2);
    EXPECT_EQ(database.results(deep), QVariantList{qint64(deep.evaluateWithObject(QVariant(database.mapOf(1))))});

    QStringList wide;
    for (int i = 0; i < 5000; ++i) {
        wide.append(QStringLiteral("title CONTAINS \"%1\"").arg(i));
    }
    const ZQPredicate widest = ZQPredicate::predicateWithFormat(wide.join(text(" OR ")) + text(" OR title == 'a'"));
    EXPECT_EQ(database.results(widest), QVariantList{1LL});
}

TEST(ZQPredicateSQL, NamesTheKeyPathThatLeadsNowhere)
{
    PredicateDatabase database;
    EXPECT_EQ(zqSQLForPredicate({}, database.document(), text("t"))->text, text("1"));
    const QList<ZQPredicate> tooMany(40000, parsed("title CONTAINS 'a'"));
    ZQError tooLong;
    EXPECT_FALSE(database.keysMatching(ZQPredicate::orPredicate(tooMany), &tooLong).has_value());
    EXPECT_EQ(tooLong.localizedDescription(), text("The condition is too long. Search for less at once."));
    for (const char *path : {"nothing", "parent.nothing", "title.length", "tags.title"}) {
        ZQError error;
        const ZQPredicate predicate = ZQPredicate::predicateWithFormat(text("%K == 1"), {text(path)});
        EXPECT_FALSE(database.keysMatching(predicate, &error).has_value()) << path;
        EXPECT_TRUE(error.localizedDescription().contains(text(path))) << error.localizedDescription().toStdString();
    }
}

RC_GTEST_PROP(ZQSortDescriptorSQL, OrdersRowsAsValuesInMemory, ())
{
    PredicateDatabase database;
    fillAtRandom(database);
    static const std::vector<QString> paths = {text("title"), text("exact"),        text("date"),
                                               text("flag"),  text("parent.title"), text("parent.parent.title")};
    QList<ZQSortDescriptor> descriptors;
    const int count = *rc::gen::inRange(0, 4);
    for (int i = 0; i < count; ++i) {
        descriptors.append({*rc::gen::elementOf(paths), *rc::gen::arbitrary<bool>(),
                            *rc::gen::arbitrary<bool>() ? ZQSortDescriptor::Comparison::Standard
                                                        : ZQSortDescriptor::Comparison::LocalizedStandard});
    }
    const auto order = zqSQLForSortDescriptors(descriptors, database.document(), text("t0"));
    RC_ASSERT(order.has_value());
    const QVariantList sorted = database.query(
        QStringLiteral("SELECT t0.id FROM TestNode AS t0 %1 ORDER BY %2").arg(order->joins, order->orderBy));
    const auto valueOf = [&](qint64 key, const QString &path) {
        QVariant value = database.mapOf(key);
        for (const QString &part : path.split(u'.')) {
            value = value.toMap().value(part);
        }
        return value;
    };
    QList<qint64> expected = database.keys();
    std::stable_sort(expected.begin(), expected.end(), [&](qint64 a, qint64 b) {
        for (const ZQSortDescriptor &descriptor : descriptors) {
            const int result =
                zqCompareValues(valueOf(a, descriptor.keyPath), valueOf(b, descriptor.keyPath), descriptor.comparison);
            if (result != 0) {
                return descriptor.ascending ? result < 0 : result > 0;
            }
        }
        return false;
    });
    RC_ASSERT(sorted == QVariantList(expected.begin(), expected.end()));
}

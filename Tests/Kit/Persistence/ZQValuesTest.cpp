// What an attribute can hold, from wherever it comes, and how values compare: the borders.

#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQModelReader.h"
#include "Kit/Persistence/ZQScalar.h"
#include "Kit/Persistence/ZQStringMatching.h"
#include "Tests/Kit/Persistence/TestModel.h"

#include <QJsonArray>
#include <QLineF>

#include <limits>

namespace {

using Type = ZQAttributeType;
const QDateTime date = QDateTime::fromMSecsSinceEpoch(1'577'934'245'006, Qt::UTC);
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr qint64 leastWhole = std::numeric_limits<qint64>::min();
constexpr qint64 mostWhole = std::numeric_limits<qint64>::max();

int signOf(const QVariant &a, const QVariant &b)
{
    const auto order = zqOrderOfScalars(zqScalarFromVariant(a), zqScalarFromVariant(b));
    return order ? (*order > 0) - (*order < 0) : 9;
}

} // namespace

TEST(ZQValues, AnAttributeTakesWhatFitsItsType)
{
    struct
    {
        Type type;
        QVariant given;
        std::optional<QVariant> taken; // nothing: refused
    } const cases[] = {
        {Type::Integer16, 32767, 32767},
        {Type::Integer16, 32768, {}},
        {Type::Integer16, -32768, -32768},
        {Type::Integer16, -32769, {}},
        {Type::Integer32, 2147483647LL, 2147483647},
        {Type::Integer32, 2147483648LL, {}},
        {Type::Integer32, -2147483648LL, -2147483647 - 1},
        {Type::Integer32, -2147483649LL, {}},
        {Type::Integer64, mostWhole, mostWhole},
        {Type::Integer64, leastWhole, leastWhole},
        {Type::Integer64, 9.2e18, 9'200'000'000'000'000'000LL},
        {Type::Integer64, -9.2e18, -9'200'000'000'000'000'000LL},
        {Type::Integer64, 9.3e18, {}},
        {Type::Integer64, -9.3e18, {}},
        {Type::Integer64, notANumber, {}},
        {Type::Integer64, 2.9F, 2},
        {Type::Integer64, true, 1},
        {Type::Integer64, QStringLiteral("12"), 12},
        {Type::Integer64, QStringLiteral("1x"), {}},
        {Type::Integer64, QVariantList{1}, {}},
        {Type::Float, QStringLiteral("1.5"), 1.5},
        {Type::Double, QStringLiteral("x"), {}},
        {Type::Boolean, 2, true},
        {Type::Boolean, QVariantList{1}, {}},
        {Type::String, 5, QStringLiteral("5")},
        {Type::String, QVariantMap(), {}},
        {Type::Date, date.toLocalTime(), date},
        {Type::Date, QStringLiteral("yesterday"), {}},
        {Type::Binary, QStringLiteral("ab"), QByteArray("ab")},
        {Type::Binary, QVariantList{1}, {}},
        {Type::Integer16, QVariant(), QVariant()},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(testing::Message() << int(each.type) << ' ' << each.given.toString().toStdString());
        QVariant converted;
        EXPECT_EQ(zqConvertFieldValue(each.given, each.type, converted), each.taken.has_value());
        if (each.taken) {
            EXPECT_EQ(converted, *each.taken);
            EXPECT_EQ(converted.isValid(), each.taken->isValid());
            EXPECT_TRUE(each.type != Type::Date || converted.toDateTime().timeSpec() == Qt::UTC);
        }
    }
}

TEST(ZQValues, AModelAndCopiedRowsSpellThemInJSON)
{
    struct
    {
        Type type;
        QJsonValue json;
        QVariant value; // invalid: refused
    } const cases[] = {
        {Type::String, QStringLiteral("a"), QStringLiteral("a")},
        {Type::String, 1, {}},
        {Type::Boolean, true, true},
        {Type::Boolean, 0, false},
        {Type::Boolean, 1, true},
        {Type::Boolean, 2, {}},
        {Type::Boolean, -1, {}},
        {Type::Boolean, QStringLiteral("true"), {}},
        {Type::Integer16, 32767, 32767LL},
        {Type::Integer16, 32768, {}},
        {Type::Integer16, -32768, -32768LL},
        {Type::Integer16, -32769, {}},
        {Type::Integer32, 2147483647.0, 2147483647LL},
        {Type::Integer32, 2147483648.0, {}},
        {Type::Integer32, -2147483648.0, -2147483648LL},
        {Type::Integer32, -2147483649.0, {}},
        {Type::Integer64, qint64(9'200'000'000'000'000'000), 9'200'000'000'000'000'000LL},
        {Type::Integer64, 9.3e18, {}},
        {Type::Integer64, QStringLiteral("1"), {}},
        {Type::Float, 0.5, 0.5},
        {Type::Double, 1, 1.0},
        {Type::Double, QStringLiteral("1"), {}},
        {Type::Date, double(date.toMSecsSinceEpoch()), date},
        {Type::Date, QStringLiteral("2020-01-02T03:04:05.006Z"), date},
        {Type::Date, QStringLiteral("soon"), {}},
        {Type::Binary, QStringLiteral("AAH/"), QByteArray("\0\1\xFF", 3)},
        {Type::Binary, QJsonArray{1}, {}},
    };
    for (const auto &each : cases) {
        const QVariant value = zqValueFromJSON(each.json, each.type);
        EXPECT_EQ(value, each.value) << int(each.type) << ' ' << each.json.toVariant().toString().toStdString();
        EXPECT_EQ(value.isValid(), each.value.isValid());
    }
}

TEST(ZQValues, EveryTypeIsReadAndWrittenByItsNameAndFetchedWithoutAnObject)
{
    TestStore store;
    ZQManagedObjectContext context(store.coordinator());
    const QVariantMap values{{QStringLiteral("title"), QStringLiteral("t")},
                             {QStringLiteral("flag"), false},
                             {QStringLiteral("small"), -3},
                             {QStringLiteral("medium"), 70000},
                             {QStringLiteral("large"), leastWhole},
                             {QStringLiteral("ratio"), 0.25F},
                             {QStringLiteral("exact"), 1.0 / 3},
                             {QStringLiteral("date"), date},
                             {QStringLiteral("blob"), QByteArray("\0b", 2)},
                             {QStringLiteral("author"), QStringLiteral("")}};
    const auto document = context.insertNewObject<TestDocument>();
    const auto empty = context.insertNewObject<TestDocument>();
    ASSERT_TRUE(context.save());
    for (auto value = values.cbegin(); value != values.cend(); ++value) {
        EXPECT_FALSE(document->hasChangeForKey(value.key()));
        document->setValueForKey(value.value(), value.key());
        EXPECT_TRUE(document->hasChangeForKey(value.key())) << value.key().toStdString();
        EXPECT_EQ(document->valueForKey(value.key()), value.value()) << value.key().toStdString();
    }
    ASSERT_TRUE(context.save());
    const auto request = [](const ZQManagedObject &object) {
        return ZQFetchRequest{
            QStringLiteral("TestDocument"),
            ZQPredicate::predicateWithFormat(QStringLiteral("SELF == %@"), {QVariant::fromValue(object.objectID())})};
    };
    QStringList names = values.keys();
    EXPECT_EQ(context.fetchDictionaries(request(*document), names), QList{values});
    const auto none = context.fetchDictionaries(request(*empty), names + QStringList{QStringLiteral("parent")});
    ASSERT_TRUE(none && none->size() == 1);
    for (auto value = none->first().cbegin(); value != none->first().cend(); ++value) {
        const bool hasDefault = value.key() == QStringLiteral("flag") || value.key() == QStringLiteral("medium");
        EXPECT_EQ(value->isValid(), hasDefault) << value.key().toStdString();
    }
    context.refreshObject(document.get(), false);
    for (auto value = values.cbegin(); value != values.cend(); ++value) {
        EXPECT_EQ(document->valueForKey(value.key()), value.value()) << value.key().toStdString();
        document->setValueForKey(value.value(), value.key());
        EXPECT_FALSE(document->hasChangeForKey(value.key())) << "it is what it was";
        document->setValueForKey({}, value.key());
        EXPECT_TRUE(document->hasChangeForKey(value.key()));
        EXPECT_FALSE(document->valueForKey(value.key()).isValid());
    }
    EXPECT_FALSE(document->hasChangeForKey(QStringLiteral("nothing")));
}

TEST(ZQValues, RelationshipsAreReadAndWrittenByTheirNames)
{
    TestStore store;
    ZQManagedObjectContext context(store.coordinator());
    const auto folder = context.insertNewObject<TestFolder>();
    const auto document = context.insertNewObject<TestDocument>();
    QVariantList tags;
    for (const char *name : {"a", "b", "c"}) {
        const auto tag = context.insertNewObject<TestTag>();
        tag->setName(QLatin1String(name));
        tags.append(QVariant::fromValue(tag->objectID()));
    }
    const QString parent = QStringLiteral("parent");
    const QString list = QStringLiteral("tags");
    EXPECT_FALSE(document->hasChangeForKey(parent) || document->hasChangeForKey(list));
    document->setValueForKey(QVariant::fromValue(folder->objectID()), parent);
    document->setValueForKey(QVariantList{tags.at(0), tags.at(1)}, list);
    EXPECT_TRUE(document->hasChangeForKey(parent) && document->hasChangeForKey(list));
    EXPECT_EQ(document->parent(), folder);
    EXPECT_EQ(document->valueForKey(parent), QVariant::fromValue(folder->objectID()));
    document->setValueForKey(QVariantList{tags.at(2), tags.at(1), tags.at(2)}, list);
    EXPECT_EQ(document->valueForKey(list), (QVariantList{tags.at(1), tags.at(2)}));
    document->setValueForKey({}, parent);
    EXPECT_FALSE(document->parent());
    EXPECT_FALSE(document->valueForKey(parent).isValid());
    document->setValueForKey(QVariant::fromValue(folder->objectID()), parent);
    ASSERT_TRUE(context.save());
    EXPECT_FALSE(document->hasChangeForKey(parent) || document->hasChangeForKey(list));
    document->setValueForKey(QVariantList(), list);
    EXPECT_TRUE(document->hasChangeForKey(list)) << "what was taken away counts as well";
    EXPECT_TRUE(document->tags().isEmpty());

    // What leads elsewhere, is of another kind or has no such name changes nothing.
    TestStore otherStore;
    ZQManagedObjectContext other(otherStore.coordinator());
    const auto stranger = other.insertNewObject<TestFolder>();
    const auto tag = context.fetch<TestTag>({QStringLiteral("TestTag")})->first();
    for (const QString &name : {parent, list, QStringLiteral("title"), QStringLiteral("nothing")}) {
        document->setRelatedObject(name, tag.get());
        document->setRelatedObject(name, stranger.get());
        document->addRelatedObject(name, folder.get());
        document->addRelatedObject(name, stranger.get());
        document->addRelatedObject(name, nullptr);
        document->removeRelatedObject(name, folder.get());
        document->removeRelatedObject(name, nullptr);
        EXPECT_TRUE(name == parent || !document->relatedObject(name));
        EXPECT_TRUE(document->relatedObjects(name).isEmpty() && document->relatedObjectIDs(name).isEmpty());
    }
    EXPECT_EQ(document->parent(), folder);
    document->setParent(nullptr);
    context.deleteObject(document.get());
    ASSERT_TRUE(context.save());
    document->setValueForKey(QVariant::fromValue(folder->objectID()), parent);
    EXPECT_FALSE(document->valueForKey(parent).isValid()) << "it has no context any more";
}

TEST(ZQValues, ComparedTheyAreInOneOrderOrInNone)
{
    const QVariant bytes = QByteArray("ab");
    struct
    {
        QVariant a;
        QVariant b;
        int sign; // 9: no order
    } const cases[] = {
        {1, 2, -1},
        {2, 2, 0},
        {mostWhole, 9223372036854775808.0, -1},
        {mostWhole, 9223372036854775807.0, -1},
        {leastWhole, -9223372036854775808.0, 0},
        {leastWhole, -9223372036854777856.0, 1},
        {5, 5.25, -1},
        {5, 4.75, 1},
        {-5, -5.25, 1},
        {-5, -4.75, -1},
        {5, 5.0, 0},
        {9007199254740993LL, 9007199254740992.0, 1},
        {1.25, 1.5, -1},
        {1.5, 1.5, 0},
        {0.5F, 1, -1},
        {quint64(mostWhole), mostWhole, 0},
        {quint64(mostWhole) + 1, mostWhole, 1},
        {quint64(mostWhole) + 1, 9223372036854775808.0, 0},
        {true, 1, 0},
        {QStringLiteral("a"), QStringLiteral("ab"), -1},
        {QStringLiteral("\uFFFF"), QStringLiteral("\U00010000"), -1},
        {QStringLiteral("\U00010001"), QStringLiteral("\U00010000"), 1},
        {QString(1, QChar(0xD800)), QStringLiteral("?"), 0}, // as the store would hold it
        {date, date.addMSecs(1), -1},
        {bytes, QByteArray("abc"), -1},
        {bytes, QByteArray("b"), -1},
        {bytes, QByteArray("a\xFF"), -1},
        {bytes, QByteArray("ab"), 0},
        {QByteArray(""), QByteArray(""), 0},
        {bytes, QStringLiteral("ab"), 9},
        {1, QStringLiteral("1"), 9},
        {QByteArray(), bytes, 9},
        {notANumber, 1, 9},
        {QVariant(), QVariant(), 9},
        {QDateTime(), date, 9},
    };
    for (const auto &each : cases) {
        EXPECT_EQ(signOf(each.a, each.b), each.sign)
            << each.a.toString().toStdString() << " and " << each.b.toString().toStdString();
        EXPECT_EQ(signOf(each.b, each.a), each.sign == 9 ? 9 : -each.sign);
        if (each.sign == 0) {
            const ZQScalarSet both{zqScalarFromVariant(each.a), zqScalarFromVariant(each.b)};
            EXPECT_EQ(both.size(), 1) << "equals have one hash";
        }
    }
    const ZQScalarSet all{{}, qint64(1), 0.5, QStringLiteral("b"), ZQDateValue{1}, QByteArray("b")};
    EXPECT_EQ(all.size(), 6);
    EXPECT_TRUE(all.contains(QByteArray("b")) && all.contains(ZQDateValue{1}) && all.contains(ZQScalar()));
}

TEST(ZQValues, ListsAndWhatCannotBeCompared)
{
    bool isKnown = false;
    EXPECT_TRUE(zqIsNull(zqScalarFromVariant(QVariant::fromValue(nullptr), &isKnown)) && isKnown);
    EXPECT_TRUE(zqIsNull(zqScalarFromVariant(QVariant::fromValue(ZQObjectID()), &isKnown)) && isKnown);
    EXPECT_TRUE(zqIsNull(zqScalarFromVariant(QVariant(QString()), &isKnown)) && isKnown);
    EXPECT_TRUE(zqIsNull(zqScalarFromVariant(QLineF(), &isKnown)) && !isKnown);
    EXPECT_TRUE(zqIsNull(zqScalarFromVariant(QLineF())));
    EXPECT_EQ(zqListFromVariant(QVariantList{1, 2}), (QVariantList{1, 2}));
    EXPECT_EQ(zqListFromVariant(QVariant::fromValue(QList<int>{3})), (QVariantList{3}));
    EXPECT_EQ(zqListFromVariant(QStringList{QStringLiteral("a")}), (QVariantList{QStringLiteral("a")}));
    for (const QVariant &single : {QVariant(), QVariant(QStringLiteral("ab")), QVariant(QByteArray("ab")),
                                   QVariant(QVariantMap()), QVariant(QVariantHash()), QVariant(1)}) {
        EXPECT_EQ(zqListFromVariant(single), std::nullopt) << single.typeName();
    }
}

TEST(ZQValues, WildcardsStandForWholeCharacters)
{
    const QChar half(0xD83D);
    struct
    {
        QString text;
        QString pattern;
        bool matches;
    } const cases[] = {
        {{}, {}, true},
        {{}, QStringLiteral("**"), true},
        {{}, QStringLiteral("?"), false},
        {QStringLiteral("a"), {}, false},
        {QStringLiteral("\U0001F600"), QStringLiteral("?"), true},
        {QStringLiteral("\U0001F600"), QStringLiteral("??"), false},
        {QString(half), QStringLiteral("?"), true},
        {half + QStringLiteral("a"), QStringLiteral("??"), true},
        {half + QStringLiteral("a"), QStringLiteral("?"), false},
        {QStringLiteral("x\U0001F600y"), QStringLiteral("*?y"), true},
        {QStringLiteral("\U0001F600"), QStringLiteral("*\U0001F600"), true},
        {QStringLiteral("\U0001F600b"), QStringLiteral("*?b"), true},
        {QStringLiteral("b"), QStringLiteral("*b"), true},
        {QStringLiteral("ab"), QStringLiteral("*b*"), true},
        {QStringLiteral("abab"), QStringLiteral("*ab"), true},
        {QStringLiteral("abac"), QStringLiteral("*ab"), false},
        {QStringLiteral("abcabd"), QStringLiteral("a*d"), true},
        {QStringLiteral("ab"), QStringLiteral("b"), false},
        {QStringLiteral("ab"), QStringLiteral("a"), false},
        {QStringLiteral("a*"), QStringLiteral("a\\*"), true},
        {QStringLiteral("ab"), QStringLiteral("a\\*"), false},
        {QStringLiteral("a?"), QStringLiteral("*\\?"), true},
        {QStringLiteral("a\\"), QStringLiteral("a\\"), true},
        {QStringLiteral("\\"), QStringLiteral("\\\\"), true},
    };
    for (const auto &each : cases) {
        EXPECT_EQ(zqMatchesWildcards(each.text, each.pattern), each.matches)
            << each.text.toStdString() << " like " << each.pattern.toStdString();
    }
    const QString grows = QString(20, QChar(0x0390)); // each folds into three
    EXPECT_EQ(zqFold(grows, true, false), QStringLiteral("\u03B9\u0308\u0301").repeated(20));
    EXPECT_EQ(zqFold(QStringLiteral("\U0001D165A\u0301"), false, true), QStringLiteral("\U0001D165A"));
    EXPECT_EQ(zqFold(QStringLiteral("a\U000101FDb"), false, true), QStringLiteral("ab")) << "a mark beyond 16 bits";
    EXPECT_EQ(zqFold(half + QStringLiteral("\u00E9"), false, true), half + QStringLiteral("e"));
    EXPECT_FALSE(zqMatchesExpression(QStringLiteral("("), QStringLiteral("("), {}));
    EXPECT_FALSE(zqMatchesExpression(QStringLiteral("a"), QStringLiteral("b)|(a"), {}));
    EXPECT_TRUE(zqMatchesExpression(QStringLiteral("\u00C9"), QStringLiteral("e"),
                                    {.caseInsensitive = true, .diacriticInsensitive = true}));
}

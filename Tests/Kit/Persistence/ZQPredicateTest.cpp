#include "Kit/Persistence/ZQPredicate.h"
#include "Kit/Persistence/ZQFoldedText.h"

#include <QDateTime>

#include <gtest/gtest.h>

#include <iterator>
#include <random>

namespace {

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

QVariantMap item()
{
    return {
        {text("title"), text("Café Logo")},
        {text("order"), 3},
        {text("width"), 1200.5},
        {text("active"), true},
        {text("father"), QVariant()},
        {text("date"), QDateTime::fromMSecsSinceEpoch(978307200000 + 1500)},
        {text("tags"), QVariantList{QVariantMap{{text("title"), text("Straße")}}, QVariantMap{{text("title"), {}}}}},
        {text("none"), QVariantList()},
        {text("hash"), QVariantHash{{text("a"), 1}}},
        {text("owner"), QVariantMap{{text("name"), text("Ann")}}}};
}

struct Case
{
    const char *format;
    QVariantList arguments;
    bool expected;
};

} // namespace

TEST(ZQPredicate, DecidesWhetherAValueMatches)
{
    const QVariant year2001 = QDateTime::fromMSecsSinceEpoch(978307200000);
    const Case cases[] = {
        {"title == %@", {text("Café Logo")}, true},
        {"title = 'café logo'", {}, false},
        {"title ==[c] 'CAFÉ LOGO'", {}, true},
        {"title contains[cd] %@", {text("CAFE")}, true},
        {"title contains[c] %@", {text("CAFE")}, false},
        {"title LIKE[cd] \"cafe*?ogo\"", {}, true},
        {"title LIKE[cd] \"cafe\"", {}, false},
        {"title LIKE 'Caf\\\\é Logo'", {}, true},
        {"title BEGINSWITH 'Caf' && title endswith 'Logo'", {}, true},
        {"title MATCHES 'Caf.\\\\s\\\\w+'", {}, true},
        {"title MATCHES 'Caf'", {}, false},
        {"title in %@", {QStringList{text("a"), text("Café Logo")}}, true},
        {"title IN {'a', nil}", {}, false},
        {"father IN {'a', nil}", {}, true},
        {"'Logo' IN title", {}, true},
        {"order == 3", {}, true},
        {"order == 3.0", {}, true},
        {"order == '3'", {}, false},
        {"order != '3'", {}, true},
        {"order < '4'", {}, false},
        {"order BETWEEN {1, %d}", {3}, true},
        {"%K >= %ld", {text("order"), 4}, false},
        {"#order > -5", {}, true},
        {"active == YES AND active = 1", {}, true},
        {"father == nil && active == %@", {true}, true},
        {"father == nil &&  active == NO", {}, false},
        {"father != nil || father < 3 || father contains ''", {}, false},
        {"NOT (father < 3)", {}, true},
        {"missing.key == NULL", {}, true},
        {"date > CAST(1.4, \"NSDate\") AND date <= CAST(%lf, \"NSDate\")", {1.5}, true},
        {"((date >= %@) OR (date >= %@))  AND active == %@", {year2001, year2001, true}, true},
        {"owner.name == 'Ann'", {}, true},
        {"ANY tags.title contains[cd] %@", {text("STRASSE")}, true},
        {"tags.title ==[c] 'strasse'", {}, true},
        {"ALL tags.title ==[c] 'strasse'", {}, false},
        {"NONE tags.title == 'x'", {}, true},
        {"ALL none.title == 'x'", {}, true},
        {"SOME none.title != 'x'", {}, false},
        {"tags.@count == 2 AND none.@count == 0", {}, true},
        {"tags.title.@count > %d", {1}, false},
        {"ANY tags.@distinctUnionOfObjects.title == nil", {}, true},
        {"TRUEPREDICATE AND NOT FALSEPREDICATE", {}, true},
        {"NO == NO OR 1 == 2 AND 1 == 3", {}, true},
        {"(YES == NO)", {}, false},
        {"title == 'Caf\\u00e9 Logo'", {}, true},
        {"order == %d", {3.9}, true},
        {"order == %f", {3}, true},
        {"order < 1e999 AND order > -1e999", {}, true},
        {"owner.name IN {title, 'Ann'}", {}, true},
        {"owner.name IN {title, nil}", {}, false},
        {"order BETWEEN {1, width}", {}, true},
        {"order BETWEEN {width, 5}", {}, false},
        {"CAST('AAE=', 'NSData') == %@", {QByteArray("\0\1", 2)}, true},
        {"hash.a == 1 AND hash.b == nil", {}, true},
    };
    for (const Case &test : cases) {
        ZQError error;
        const ZQPredicate predicate = ZQPredicate::predicateWithFormat(text(test.format), test.arguments, &error);
        ASSERT_FALSE(predicate.isNull()) << test.format << ": " << error.localizedDescription().toStdString();
        EXPECT_EQ(predicate.evaluateWithObject(QVariant(item())), test.expected) << test.format;
        EXPECT_EQ(ZQPredicate::notPredicate(predicate).evaluateWithObject(QVariant(item())), !test.expected)
            << test.format;
        const ZQPredicate again =
            ZQPredicate::predicateWithFormat(predicate.predicateFormat(), predicate.predicateFormatArguments(), &error);
        EXPECT_TRUE(again == predicate) << predicate.predicateFormat().toStdString();
    }
}

TEST(ZQPredicate, TreatsAPlainValueAsSelf)
{
    const QStringList known{text("com.example.a"), text("com.example.b")};
    const ZQPredicate unknown = ZQPredicate::predicateWithFormat(text("NOT SELF in %@"), {known});
    EXPECT_TRUE(unknown.evaluateWithObject(QVariant(text("com.example.c"))));
    EXPECT_FALSE(unknown.evaluateWithObject(QVariant(text("com.example.a"))));
    const ZQPredicate listed = ZQPredicate::predicateWithFormat(text("%@ CONTAINS SELF"), {known});
    EXPECT_TRUE(listed.evaluateWithObject(QVariant(text("com.example.a"))));
}

TEST(ZQPredicate, AWholeConditionMayBeAnArgument)
{
    const ZQPredicate either = ZQPredicate::predicateWithFormat(text("SELF == 1 OR SELF == 2"));
    const QVariant condition = QVariant::fromValue(either);
    const auto with = [&](const char *format, const QVariantList &arguments) {
        return ZQPredicate::predicateWithFormat(text(format), arguments);
    };
    EXPECT_EQ(with("%@", {condition}), either);
    EXPECT_EQ(with("NOT %@ AND (%@ OR SELF < %@)", {condition, condition, 7}),
              with("NOT (SELF == 1 OR SELF == 2) AND (SELF == 1 OR SELF == 2 OR SELF < 7)", {}));
    EXPECT_EQ(with("%@ OR SELF == 1", {QVariant::fromValue(ZQPredicate())}), with("TRUEPREDICATE OR SELF == 1", {}));
    EXPECT_TRUE(with("%@ == 1", {condition}).isNull()) << "it is no value";
    EXPECT_TRUE(with("SELF == %@", {condition}).isNull());
    EXPECT_TRUE(with("%d", {condition}).isNull());
    ZQPredicate deep = either;
    for (int level = 0; level < 200 && !deep.isNull(); ++level) {
        deep = with(level % 2 == 0 ? "%@ AND SELF > 0" : "%@ OR SELF > 5", {QVariant::fromValue(deep)});
    }
    EXPECT_TRUE(deep.isNull()) << "it counts as deep as it is";
}

TEST(ZQPredicate, SaysWhatIsWrongAndWhere)
{
    struct ErrorCase
    {
        const char *format;
        QVariantList arguments;
        int position;
        const char *mention;
    };
    const ErrorCase cases[] = {
        {"", {}, 1, "found the end"},
        {"title ==", {}, 9, "key path or a value"},
        {"title 'x'", {}, 7, "a comparison"},
        {"(title == 'x'", {}, 14, "\")\""},
        {"title == 'x' title", {}, 14, "AND, OR or the end"},
        {"title == 'x", {}, 10, "not closed"},
        {"title == %@", {}, 10, "missing"},
        {"title ==[x] 'a'", {}, 10, "option"},
        {"a BETWEEN {1}", {}, 11, "two values"},
        {"a == {1, 2}", {}, 6, "list"},
        {"a MATCHES '('", {}, 11, "pattern"},
        {"%K == 1", {text("a b")}, 1, "not a key path"},
        {"a == %d", {text("x")}, 6, "not a number"},
        {"a == %@", {QVariantMap()}, 6, "QVariantMap"},
        {"a == %z", {}, 6, "placeholder"},
        {"a == CAST(x, \"NSDate\")", {}, 11, "a number"},
        {"a == CAST(1e300, \"NSDate\")", {}, 11, "date"},
        {"a AND b", {}, 3, "a comparison"},
        {"a == 1 ;", {}, 8, "unknown character"},
        {"tags.@sum == 1", {}, 1, "not a key path"},
        {"a ==[c 'x'", {}, 8, "\"]\""},
        {"{1} == a", {}, 1, "left of CONTAINS"},
        {"a == -x", {}, 7, "a number"},
        {"a == 1x", {}, 6, "malformed number"},
        {"a == '\\u12'", {}, 7, "malformed \\u"},
        {"a == CAST 1", {}, 11, "\"(\""},
        {"a == CAST(1 \"NSDate\")", {}, 13, "\",\""},
        {"a == CAST(1, \"Text\")", {}, 14, "NSDate"},
        {"a == CAST(1, \"NSData\")", {}, 14, "NSDate"},
        {"a == CAST(1, \"NSDate\"", {}, 22, "\")\""},
        {"#3 == 1", {}, 1, "not a key path"}, // what begins no word without the sign would not read back
        {"a.#\u059c == 1", {}, 1, "not a key path"},
        {"a IN {1 2}", {}, 9, "\",\" or \"}\""},
        {"a IN {{1}}", {}, 7, "cannot hold a list"},
        {"a IN {1, %@}", {QVariant(QVariantList{1})}, 10, "cannot hold a list"},
        {"a == %@", {QVariant(QVariantList{QVariantMap()})}, 6, "QVariantMap"},
        {"a %@ 1", {1}, 3, "found \"%@\""},
    };
    for (const ErrorCase &test : cases) {
        ZQError error;
        EXPECT_TRUE(ZQPredicate::predicateWithFormat(text(test.format), test.arguments, &error).isNull())
            << test.format;
        EXPECT_EQ(error.userInfo.value(text("position")).toInt(), test.position) << test.format;
        EXPECT_TRUE(error.localizedDescription().contains(text(test.mention)))
            << test.format << ": " << error.localizedDescription().toStdString();
    }
}

TEST(ZQPredicate, RefusesWhatIsNestedTooDeeplyInsteadOfOverflowing)
{
    const QString leaf = text("a == 1");
    for (const auto &[open, close] : {std::pair("(", ")"), std::pair("NOT (b == 2 OR ", ")"), std::pair("{", "}")}) {
        ZQError error;
        const QString format = text(open).repeated(100000) + leaf + text(close).repeated(100000);
        EXPECT_TRUE(ZQPredicate::predicateWithFormat(format, {}, &error).isNull()) << open;
        EXPECT_FALSE(error.isNull());
    }
    EXPECT_FALSE(ZQPredicate::predicateWithFormat(text("NOT ").repeated(100000) + leaf).isNull());
    ZQError error;
    EXPECT_TRUE(ZQPredicate::predicateWithFormat(QString(16 << 20, u' ') + leaf, {}, &error).isNull());
    EXPECT_TRUE(error.localizedDescription().contains(text("too long"))) << error.localizedDescription().toStdString();
    EXPECT_FALSE(ZQPredicate::predicateWithFormat(QString((16 << 20) - leaf.size(), u' ') + leaf).isNull())
        << "as long as one may be";
    ZQPredicate deep = ZQPredicate::predicateWithFormat(leaf);
    for (int i = 0; i < 1000; ++i) {
        deep = ZQPredicate::orPredicate({ZQPredicate::notPredicate(deep), ZQPredicate::predicateWithFormat(leaf)});
    }
    EXPECT_FALSE(deep.isNull()) << "a refused combination must not become one that matches everything";
}

TEST(ZQPredicate, FoldsCaseAndAccents)
{
    struct FoldCase
    {
        const char *text;
        const char *caseFolded;
        const char *plain;
        const char *both;
    };
    const FoldCase cases[] = {
        {"Straße", "strasse", "Straße", "strasse"},
        {"İ", "i\u0307", "I", "i"},
        {"Å", "å", "A", "a"},
        {"A\u030a", "a\u030a", "A", "a"},
        {"ΣΑΣ ς", "σασ σ", "ΣΑΣ ς", "σασ σ"},
        {"e\u0301\u0323", "e\u0301\u0323", "e", "e"},
        {"\u0301", "\u0301", "", ""},
        {"한글", "한글", "한글", "한글"},
        {"𐐀", "𐐨", "𐐀", "𐐨"},
        {"", "", "", ""},
    };
    for (const FoldCase &test : cases) {
        EXPECT_EQ(zqFold(text(test.text), true, false), text(test.caseFolded)) << test.text;
        EXPECT_EQ(zqFold(text(test.text), false, true), text(test.plain)) << test.text;
        EXPECT_EQ(zqFold(text(test.text)), text(test.both)) << test.text;
    }
}

// What is remembered of single characters must not be used where a neighbour changes what they fold to.
TEST(ZQFold, OfTextsInUTF8IsTheSameWhateverStandsBesideACharacter)
{
    std::mt19937 random(7);
    const auto anyUnit = [&random] { return char16_t(random() % 0x10000); };
    std::string buffer;
    for (int unit = 0x80; unit < 0x10000; ++unit) {
        const char16_t middle[] = {u'E',           char16_t(unit), anyUnit(),     u'\u0301',
                                   char16_t(unit), u'\u09be',      char16_t(unit)};
        // Halves of pairs are no text: they become what reading makes of them.
        const QByteArray text = QString::fromUtf8(QStringView(middle, std::size(middle)).toUtf8()).toUtf8();
        const std::string_view bytes(text.constData(), size_t(text.size()));
        ASSERT_EQ(zqFoldedUTF8(bytes, buffer), zqFold(QString::fromUtf8(text)).toStdString())
            << text.toHex().constData();
    }
    for (const char *broken : {"\xc3", "a\xe2\x82", "\xc0\xaf", "\xed\xa0\x80x", "\xf0\x90\x90\x80\xc3\xa9"}) {
        EXPECT_EQ(zqFoldedUTF8(broken, buffer), zqFold(QString::fromUtf8(broken)).toStdString()) << broken;
    }
}

TEST(ZQPredicate, GivesUpOnPatternsThatWouldRunForever)
{
    const QString subject = text("a").repeated(5000) + u'b';
    const ZQPredicate runaway = ZQPredicate::predicateWithFormat(text("SELF MATCHES '(a+)+(a|aa)+c'"));
    EXPECT_FALSE(runaway.evaluateWithObject(QVariant(subject)));
    const ZQPredicate stars =
        ZQPredicate::predicateWithFormat(text("SELF LIKE '") + text("*a").repeated(500) + text("c'"));
    EXPECT_FALSE(stars.evaluateWithObject(QVariant(subject)));
}

TEST(ZQPredicate, ManyEqualitiesStayOneQuickLookup)
{
    QStringList alternatives;
    for (int i = 0; i < 40000; ++i) {
        alternatives.append(QStringLiteral("item.SHA1 == \"%1\"").arg(i));
    }
    const ZQPredicate predicate = ZQPredicate::predicateWithFormat(alternatives.join(text(" OR ")));
    ASSERT_FALSE(predicate.isNull());
    const auto matches = [&](const char *digest) {
        return predicate.evaluateWithObject(
            QVariant(QVariantMap{{text("item"), QVariantMap{{text("SHA1"), text(digest)}}}}));
    };
    EXPECT_TRUE(matches("39999"));
    EXPECT_FALSE(matches("40000"));
    EXPECT_TRUE(predicate.predicateFormat().startsWith(text("item.SHA1 IN {")));
    const QString mixed =
        QStringList(alternatives.mid(0, 10) + alternatives.mid(0, 7).replaceInStrings(text("SHA1"), text("kind")))
            .join(text(" OR ")) +
        text(" OR b > 1");
    const ZQPredicate merged = ZQPredicate::predicateWithFormat(mixed);
    EXPECT_EQ(ZQPredicate::predicateWithFormat(merged.predicateFormat()), merged) << "keeps its order";
    EXPECT_EQ(ZQPredicate::predicateWithFormat(text("title contains[dc] 'a'")).predicateFormat(),
              text("title CONTAINS[cd] \"a\""));
    const ZQPredicate quoting = ZQPredicate::predicateWithFormat(text("title == %@"), {text("the \"a\\b\"")});
    EXPECT_EQ(quoting.predicateFormat(), text("title == \"the \\\"a\\\\b\\\"\""));
    EXPECT_EQ(ZQPredicate::predicateWithFormat(quoting.predicateFormat()), quoting);
    const QString spaced = ZQPredicate::predicateWithFormat(text("title == \"a b\\tc\"")).predicateFormat();
    EXPECT_TRUE(spaced.contains(text("a b"))) << spaced.toStdString() << ": only what is not to be seen is escaped";
}

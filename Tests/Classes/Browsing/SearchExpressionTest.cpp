#include "Classes/Browsing/Index/KindNames.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Classes/Browsing/Search/SearchSpan.h"
#include "Kit/Files/ZQUserDefaults.h"

#include <gtest/gtest.h>

#include <array>

namespace {

const QDate today(2026, 3, 14);

SearchContext contextFor(ZQListRows rows)
{
    SearchContext context;
    context.rows = rows;
    context.today = today;
    context.liveFolderDepth = [] { return 2; };
    context.hashCounts = [] { return QMap<QString, qint64>{{"", 5}, {"0", 9}, {"aa", 2}, {"bb", 1}, {"cc", 3}}; };
    return context;
}

std::string query(const QString &text, ZQListRows rows = ZQListRows::Memberships)
{
    return SearchManager::predicateStringForSearchString(text, contextFor(rows)).toStdString();
}

QString cast(const QDateTime &moment)
{
    const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    return QStringLiteral("CAST(%1, \"NSDate\")").arg(double(reference.msecsTo(moment)) / 1000, 0, 'f', 6);
}

QString wrapped(const QString &clause, const QString &operand = {}, const QString &negation = {})
{
    return operand + QStringLiteral(" ( ") + negation + QStringLiteral(" ( ") + clause + QStringLiteral(" ) )");
}

struct Mistake
{
    const char *text;
    qsizetype position;
    qsizetype length;
    SearchProblem problem;
    const char *rest; // what finds the same; empty: everything is found
};

} // namespace

TEST(SearchExpressionTest, ClausesAreJoinedInTheOrderTyped)
{
    EXPECT_EQ(query("logo"), " (  ( item.title contains[cd] \"logo\" OR item.notes contains[cd] \"logo\" OR "
                             "item.extension contains[cd] \"logo\" OR ANY item.tags.title contains[cd] \"logo\" ) )");
    EXPECT_EQ(query("#w>1000 -#tag draft"), " (  ( item.pixelWidth > 1000 ) )AND ( NOT ( ANY item.tags.title "
                                            "LIKE[cd] \"draft\" ) )");
    const QString a = QStringLiteral("item.title contains[cd] \"a\"");
    const QString b = QStringLiteral("item.title contains[cd] \"b\"");
    const QString c = QStringLiteral("item.title contains[cd] \"c\"");
    const QString either = wrapped(b) + wrapped(c, QStringLiteral("OR"));
    const std::pair<const char *, QString> cases[] = {
        {"#tt a #tt b", wrapped(a) + wrapped(b, "AND")},
        {"#tt a AND #tt b", wrapped(a) + wrapped(b, "AND")},
        {"#tt a + #tt b", wrapped(a) + wrapped(b, "AND")},
        {"+#tt a +#tt b", wrapped(a) + wrapped(b, "AND")},
        {"#tt a OR NOT #tt b", wrapped(a) + wrapped(b, "OR", "NOT")},
        {"#tt a OR #tt b #tt c", wrapped(a) + wrapped(b, "OR") + wrapped(c, "AND")},
        {"#tt a (#tt b OR #tt c)", wrapped(a) + wrapped(either, "AND")},
        {"#tt a -(#tt b OR #tt c)", wrapped(a) + wrapped(either, "AND", "NOT")},
        {"((-(#tt a)))", wrapped(a, {}, "NOT")},
        {"--#tt a", wrapped(a)},
        {"-(-#tt a)", wrapped(a)},
    };
    for (const auto &[text, expected] : cases) {
        EXPECT_EQ(query(QLatin1StringView(text)), expected.toStdString()) << text;
    }
}

TEST(SearchExpressionTest, EachTokenHasItsClauseForMembershipsAndForItems)
{
    const auto whole = [](const QDate &first, const QDate &last) {
        return QStringLiteral("item.modification_date >= %1 AND (item.modification_date <= %2)")
            .arg(cast(first.startOfDay()), cast(last.endOfDay()));
    };
    const QDate christmas(2012, 12, 25);
    const std::pair<const char *, QString> cases[] = {
        {"#notes x", "item.notes contains[cd] \"x\""},
        {"#ext x", "item.extension LIKE[cd] \"x\""},
        {"#project x", "ANY item.projectsItems.project.title contains[cd] \"x\""},
        {"#hash x", "item.SHA1 == \"x\""},
        {"#h x", "item.SHA1 == \"x\""},
        {"#h=5", "item.pixelHeight == 5"},
        {"#H<5", "item.pixelHeight < 5"},
        {"#width>= 5", "item.pixelWidth >= 5"},
        {"#live", "item.managed == NO"},
        {"#untagged", "ALL item.tags.is_Special == YES"},
        {"#notag", "item.tags.@count == 0"},
        {"#np", "item.projectsItems.@count == 0 OR ALL item.projectsItems.project.active == NO"},
        {"#duplicates", "item.SHA1 == \"aa\" OR item.SHA1 == \"cc\""},
        {"#duplicateshashes aa_bb",
         "( item.SHA1 == \"aa\" OR item.SHA1 == \"cc\" ) AND ( item.SHA1 == \"aa\" OR item.SHA1 == \"bb\" )"},
        {"#folder x", "( item.watchingFolder.title contains[cd] \"x\" ) OR ( item.watchingFolder.father.title "
                      "contains[cd] \"x\" )"},
        {"#r>3", "item.rating > 3"},
        {"#c blue", "item.mainColor == 1007"},
        {"#c grey", "item.mainColor == 1002"},
        {"#c 1009", "item.mainColor == 1009"},
        {"#color #3366CC", "item.palette RESEMBLES \"color #3366cc within 10\""},
        {"#c=#36c~5", "item.palette RESEMBLES \"color #3366cc within 5\""},
        {"#c \"#3366cc 20\"", "item.palette RESEMBLES \"color #3366cc within 20\""},
        {"#color Blue~15", "item.palette RESEMBLES \"color #1c6ed4 within 15\""},
        {"#like logo", "FALSEPREDICATE"},
        {"#size large", "item.pixelWidth >= 512 OR item.pixelHeight >= 512"},
        {"#size none", "(item.pixelWidth <= 0 OR item.pixelHeight <= 0) && NOT (item.extension IN {\"ai\", "
                       "\"sketch\", \"svg\"})"},
        {"#size small", "item.pixelWidth <= 128 AND item.pixelHeight <= 128 AND (item.pixelWidth > 32 OR "
                        "item.pixelHeight > 32)"},
        {"#d=25/12/2012", whole(christmas, christmas)},
        {"#d<25/12/2012", "item.modification_date < " + cast(christmas.startOfDay())},
        {"#d>25/12/2012", "item.modification_date > " + cast(christmas.startOfDay())},
        {"#d>2012-12-25", "item.modification_date > " + cast(christmas.startOfDay())},
        {"#d>2026-02", "item.modification_date > " + cast(QDate(2026, 2, 1).startOfDay())},
        {"#d>yesterday", "item.modification_date > " + cast(QDate(2026, 3, 13).startOfDay())},
        {"#d:25/12/2012", whole(christmas, christmas)},
        {"#d=2026-02", whole(QDate(2026, 2, 1), QDate(2026, 2, 28))},
        {"#d=2026", whole(QDate(2026, 1, 1), QDate(2026, 12, 31))},
        {"#d=yesterday", whole(QDate(2026, 3, 13), QDate(2026, 3, 13))},
        {"#d=7D", whole(QDate(2026, 3, 7), today)},
        {"#d=36500d", whole(today.addDays(-36500), today)},
        {"#d=1d", whole(today.addDays(-1), today)},
        {"#di<01/01/2013", "item.import_date < " + cast(QDate(2013, 1, 1).startOfDay())},
        {"#dc<1/1/2013", "item.creation_date < " + cast(QDate(2013, 1, 1).startOfDay())},
        {"#title \"a b\"", "item.title contains[cd] \"a b\""},
        {"#title \"a OR (b\"", "item.title contains[cd] \"a OR (b\""},
        {"#title a\"b", "item.title contains[cd] \"ab\""},
        {"#title a\\b", "item.title contains[cd] \"a\\\\b\""},
        {"#title -a", "item.title contains[cd] \"-a\""},
        {"#e = png", "item.extension LIKE[cd] \"png\""},
        {"#e == png", "item.extension LIKE[cd] \"png\""},
        {"#tag =\"a b\"", "ANY item.tags.title LIKE[cd] \"a b\""},
        {"#color = blue", "item.mainColor == 1007"},
        {"#h = 5", "item.pixelHeight == 5"},
        {"#title :a", "item.title contains[cd] \":a\""},
        {"#title =<a", "item.title contains[cd] \"=<a\""},
        {"#title \"= a\"", "item.title contains[cd] \"= a\""},
        {"#title %1%@", "item.title contains[cd] \"%1%@\""},
    };
    for (const auto &[text, expected] : cases) {
        EXPECT_EQ(query(QLatin1StringView(text)), wrapped(expected).toStdString()) << text;
        const QString ofItems = QString(expected).remove(QStringLiteral("item."));
        EXPECT_EQ(query(QLatin1StringView(text), ZQListRows::LibraryItems), wrapped(ofItems).toStdString()) << text;
    }
    SearchContext nothing;
    EXPECT_EQ(SearchManager::predicateStringForSearchString(QStringLiteral("#duplicates"), nothing),
              wrapped(QStringLiteral("FALSEPREDICATE")));
    EXPECT_EQ(SearchManager::methodForWithOrHeight(QStringLiteral("#width")), QString());
}

TEST(SearchExpressionTest, WhatIsWrongIsNamedAndTheRestStillSearches)
{
    using P = SearchProblem;
    static constexpr Mistake mistakes[] = {
        {"a #d=31/02/2026 b", 2, 13, P::BadDate, "a b"},
        {"#d=36501d", 0, 9, P::BadDate, ""},
        {"#d=0d", 0, 5, P::BadDate, ""},
        {"#d=2026-3", 0, 9, P::BadDate, ""},
        {"#d=9999999999", 0, 13, P::BadDate, ""},
        {"#d=0000", 0, 7, P::BadDate, ""},
        {"#w>wide a", 0, 7, P::BadNumber, "a"},
        {"#w>99999999999999999999", 0, 23, P::BadNumber, ""},
        {"-#r=6 a", 0, 5, P::BadRating, "a"},
        {"#c mauve", 0, 8, P::BadColor, ""},
        {"#c none~5", 0, 9, P::BadColor, ""},
        {"#c blue~101", 0, 11, P::BadColor, ""},
        {"#c #3366cc~x", 0, 12, P::BadColor, ""},
        {"#c #33", 0, 6, P::BadColor, ""}, // and not that there is no such token
        {"#size huge", 0, 10, P::BadSize, ""},
        {"a (b OR c", 2, 1, P::OpenBracket, "a (b OR c)"},
        {"a) b", 1, 1, P::ClosedBracket, "a b"},
        {"a ( ) b", 2, 3, P::EmptyBrackets, "a b"},
        {"a #foo b", 2, 4, P::UnknownToken, "a b"},
        {"#", 0, 1, P::UnknownToken, ""},
        {"#live=2", 0, 6, P::NoComparison, "2"},
        {"#tag>a", 0, 6, P::NoComparison, ""},
        {"#w 1000 a", 0, 7, P::NoComparison, "a"},
        {"#w a", 0, 2, P::NoComparison, "a"},
        {"#w<>3", 0, 5, P::NoComparison, ""},
        {"#tag", 0, 4, P::NoArgument, ""},
        {"#tag \"\"", 0, 7, P::NoArgument, ""},
        {"#tag OR a", 0, 4, P::NoArgument, "a"},
        {"#e = ", 0, 4, P::NoArgument, ""},
        {"#e = #live", 0, 4, P::NoArgument, "#live"},
        {"#w> #live", 0, 3, P::NoArgument, "#live"},
        {"(#w>) a", 1, 3, P::NoArgument, "a"},
        {"a AND", 2, 3, P::StrayOperator, "a"},
        {"OR a", 0, 2, P::StrayOperator, "a"},
        {"a AND OR b", 2, 3, P::StrayOperator, "a OR b"},
        {"(a +) b", 3, 1, P::StrayOperator, "a b"},
        {"a NOT", 2, 3, P::StrayOperator, "a"},
        {"a == b", 2, 2, P::StrayOperator, "a b"},
        {"a OR #foo b", 5, 4, P::UnknownToken, "a OR b"},
        {"\"\" a", 0, 2, P::EmptyQuotes, "a"},
        {"a \"b c", 2, 4, P::UnclosedQuote, "a \"b c\""},
        {"a \"", 2, 1, P::UnclosedQuote, "a"},
        {"#tag \"b c", 5, 4, P::UnclosedQuote, "#tag \"b c\""},
    };
    for (const Mistake &each : mistakes) {
        const auto read = SearchExpression::read(QLatin1StringView(each.text), contextFor(ZQListRows::Memberships));
        const auto problems = read.problems();
        ASSERT_EQ(problems.size(), 1) << each.text;
        EXPECT_EQ(problems.first().position, each.position) << each.text;
        EXPECT_EQ(problems.first().length, each.length) << each.text;
        EXPECT_EQ(problems.first().problem, each.problem) << each.text;
        EXPECT_GT(problems.first().meaning.size(), 10) << each.text;
        EXPECT_EQ(problems.first().text, QString::fromLatin1(each.text).mid(each.position, each.length)) << each.text;
        EXPECT_EQ(read.predicateString.toStdString(), query(QLatin1StringView(each.rest))) << each.text;
    }
    EXPECT_EQ(SearchExpression::read(QStringLiteral("(a OR"), {}).problems().size(), 2);
    const auto excluded = SearchExpression::read(QStringLiteral("-\""), {}).parts;
    ASSERT_EQ(excluded.size(), 2);
    EXPECT_EQ(excluded.first().kind, SearchPart::Kind::Operator);
    const auto all = SearchExpression::read(QStringLiteral(") #foo #c mauve #size huge ("), {}).problems();
    ASSERT_EQ(all.size(), 5);
    EXPECT_TRUE(all.at(2).meaning.contains(QStringLiteral("white")) && all.at(2).meaning.contains("pink"));
    EXPECT_TRUE(all.at(3).meaning.contains(QStringLiteral("none")) && all.at(3).meaning.contains("vector"));
}

TEST(SearchExpressionTest, PartsSayWhatIsUnderstood)
{
    const auto parts = SearchExpression::read(QStringLiteral("logo OR NOT #t \"a b\" -(x +y)"), {}).parts;
    QStringList shown;
    for (const SearchPart &part : parts) {
        shown.append(QStringLiteral("%1%2 %3").arg(int(part.kind)).arg(part.isNegated ? u"-" : u"").arg(part.text));
    }
    EXPECT_EQ(shown.join(QStringLiteral(" | ")).toStdString(),
              "0 logo | 2 OR | 1- NOT #t \"a b\" | 2- - | 3- ( | 0 x | 2 + | 0 y | 3 )");
    EXPECT_EQ(parts.at(2).meaning, QStringLiteral("Has the tag “a b”"));
    SearchContext context = contextFor(ZQListRows::LibraryItems);
    const auto meaning = [&context](const char *text) {
        return SearchExpression::read(QLatin1StringView(text), context).parts.first().meaning;
    };
    EXPECT_EQ(meaning("#d>25/12/2012"), QStringLiteral("Modified since 25 Dec 2012"));
    EXPECT_EQ(meaning("#d>2012-12-25"), QStringLiteral("Modified since 25 Dec 2012"));
    EXPECT_EQ(meaning("#di=2012-12"), QStringLiteral("Imported from 1 Dec 2012 to 31 Dec 2012"));
    EXPECT_EQ(meaning("#c none"), QStringLiteral("Color is “none”"));
    EXPECT_EQ(meaning("#c 1000"), QStringLiteral("Color is “white”"));
    EXPECT_EQ(meaning("#w>=100"), QStringLiteral("Width >= 100"));
}

TEST(SearchExpressionTest, HostileTextsEndSoonAndInAConditionThatCanBeRead)
{
    const auto repeated = [](const char *text, int times) { return QString::fromUtf8(text).repeated(times); };
    const QString right = repeated("(a OR ", 400) + u'b' + repeated(")", 400);
    const QString texts[] = {
        repeated("x", 100'000),
        repeated("(", 10'000),
        repeated(")", 10'000),
        repeated("(", 5000) + u'a' + repeated(")", 5000),
        right,
        repeated("-(a ", 400) + repeated(")", 400),
        repeated("a ", 50'000),
        repeated("- ", 50'000),
        repeated("a OR ", 20'000),
        repeated("#tag ", 20'000),
        repeated("#d=", 30'000),
        repeated("\"", 99'999),
        repeated("#folder x ", 10'000),
        repeated("#kind image ", 5000),
        QString(50'000, QChar(0)) + u'a' + QString(10, QChar(1)),
        QString(50'000, QChar(0xD800)),
        repeated("\\", 100'000),
        repeated("#w<", 30'000),
    };
    for (const QString &text : texts) {
        const auto read = SearchExpression::read(text, contextFor(ZQListRows::Memberships));
        ZQError error;
        if (!read.predicateString.isEmpty()) {
            EXPECT_FALSE(ZQPredicate::predicateWithFormat(read.predicateString, {}, &error).isNull())
                << text.left(20).toStdString() << qPrintable(error.localizedDescription());
        }
    }
    const auto problemIn = [](const QString &text) {
        const auto problems = SearchExpression::read(text, {}).problems();
        return problems.isEmpty() ? SearchProblem::None : problems.last().problem;
    };
    EXPECT_EQ(problemIn(texts[3]), SearchProblem::None) << "brackets around one word are no depth";
    EXPECT_EQ(problemIn(right), SearchProblem::TooDeep);
    EXPECT_FALSE(query(right).empty()) << "what is not too deep is searched";
    EXPECT_EQ(problemIn(texts[6]), SearchProblem::TooMuch);
    EXPECT_TRUE(query(QString(5, QChar(0)) + u'a') == query(QStringLiteral("a")));
}

TEST(SearchManagerTest, WhatIsTooLongToBeAskedFindsNothingRatherThanEverything)
{
    const auto predicate = SearchManager::predicateForSearchString(QString(5'000'000, u'a'), {});
    EXPECT_FALSE(predicate.isNull());
    EXPECT_FALSE(predicate.evaluateWithObject(QVariant(1)));
    EXPECT_TRUE(SearchManager::predicateForSearchString(QStringLiteral("#foo"), {}).isNull());
}

TEST(SearchManagerTest, DuplicatesAreFoundHoweverManyThereAreAndAskedForOnce)
{
    constexpr int many = 450'000;
    const auto digest = [](int number) { return QStringLiteral("%1").arg(number, 40, 16, QLatin1Char('0')); };
    int asked = 0;
    SearchContext context;
    context.rows = ZQListRows::LibraryItems;
    context.hashCounts = [&] {
        ++asked;
        QMap<QString, qint64> counts;
        for (int number = 0; number < many; ++number) {
            counts.insert(counts.cend(), digest(number), 2);
        }
        counts.insert(digest(many), 1);
        return counts;
    };
    const QString text = QStringLiteral("(#duplicates #r>3) OR (#duplicates #w>10) OR (#duplicateshashes %1_%2) "
                                        "OR \"100%@\"")
                             .arg(digest(many - 1), digest(many));
    const auto predicate = SearchManager::predicateForSearchString(text, context);
    EXPECT_EQ(asked, 1);
    const auto finds = [&](int number, int rating, int width, const QString &title = {}) {
        return predicate.evaluateWithObject(QVariantMap{{QStringLiteral("SHA1"), digest(number)},
                                                        {QStringLiteral("rating"), rating},
                                                        {QStringLiteral("pixelWidth"), width},
                                                        {QStringLiteral("title"), title}});
    };
    EXPECT_TRUE(finds(0, 4, 0));
    EXPECT_TRUE(finds(many - 2, 4, 0));
    EXPECT_TRUE(finds(many - 2, 0, 11));
    EXPECT_FALSE(finds(many - 2, 0, 0));
    EXPECT_TRUE(finds(many - 1, 0, 0)) << "one of the digests that were named";
    EXPECT_FALSE(finds(many, 5, 100)) << "of one item";
    EXPECT_TRUE(finds(many, 0, 0, QStringLiteral("at 100%@"))) << "what is typed stands for nothing else";
}

TEST(SearchManagerTest, ATokenIsAddedOnceAndTakenAwayWithWhatItLeaves)
{
    struct Case
    {
        const char *text;
        const char *token;
        const char *toggled;
    };
    static constexpr Case cases[] = {
        {"", "#c red", "#c red"},
        {"logo", "#c red", "logo #c red"},
        {"logo ", "#c red", "logo #c red"},
        {"a OR b", "#c red", "(a OR b) #c red"},
        {"a (b OR c)", "#c red", "a (b OR c) #c red"},
        {"a \"b", "#c red", "a \"b\" #c red"},
        {"a (b OR c", "#c red", "a (b OR c) #c red"},
        {"a NOT", "#c red", "(a NOT) #c red"},
        {"a OR b) c", "#c red", "(a OR b() c) #c red"},
        {"#tag", "x", "(#tag) x"},
        {"#tag =", "x", "(#tag =) x"},
        {"-#c red", "#c red", "-#c red #c red"},
        {"logo #color Red", "#c red", "logo"},
        {"#c 1003 logo", "#c red", "logo"},
        {"a  #c red  b", "#c red", "a  b"},
        {"a AND #c red AND b", "#c red", "a AND b"},
        {"#c red OR a", "#c red", "a"},
        {"a OR #c red", "#c red", "a"},
        {"a -(#c red)", "#c red", "a"},
        {"a OR --(#c red)", "#c red", "a"},
        {"#c red OR (a b)", "#c red", "(a b)"},
        {"(#c red) a", "#c red", "a"},
        {"a #c red OR b", "#c red", "a OR b"},
        {"(#c red OR a) b", "#c red", "(a) b"},
        {"#c red -(a b)", "#c red", "-(a b)"},
        {"a ((#c red)) b", "#c red", "a b"},
        {"(a OR #c red) b", "#c red", "(a) b"},
        {"a -#c red", "-#c red", "a"},
        {"a NOT #C RED b", "-#c red", "a b"},
        {"\"summer day\" x", "\"Summer Day\"", "x"},
        {"#d=01/03/2026", "#date=2026-03-01", ""},
        {"#t a #kind PNG", "#kind png", "#t a"},
        {"x #r>3", "#rating > 3", "x"},
        {"#duplicates x", "#DUPLICATES", "x"},
        {"#duplicateshashes aa", "#duplicateshashes AA", ""},
        {"#duplicateshashes aa", "#duplicateshashes bb", "#duplicateshashes aa #duplicateshashes bb"},
        {"#f Inner", "#folder inner", ""},
    };
    for (const Case &each : cases) {
        const QString text = QLatin1StringView(each.text);
        const QString token = QLatin1StringView(each.token);
        const QString toggled = SearchManager::toggled(text, token);
        EXPECT_EQ(toggled.toStdString(), each.toggled) << each.text << " with " << each.token;
        EXPECT_NE(SearchManager::contains(text, token), SearchManager::contains(toggled, token)) << each.text;
    }
    EXPECT_FALSE(SearchManager::contains(QStringLiteral("a"), QString()));
    EXPECT_EQ(SearchManager::toggled(QStringLiteral("a"), QStringLiteral("#foo")), QStringLiteral("a #foo"));
}

TEST(SearchManagerTest, AnArgumentThatWasQuotedIsReadAsItWas)
{
    for (const char *argument : {"draft", "summer 2026", "OR", "-x", "#1", "a(b)", "a\\b", "+", "=b", "<3", ">"}) {
        const QString text = QLatin1StringView(argument);
        const auto quoted = query(QStringLiteral("#tag ") + SearchManager::quoted(text));
        const QString expected =
            QStringLiteral("ANY item.tags.title LIKE[cd] \"%1\"").arg(SearchManager::safeSearchString(text));
        EXPECT_EQ(quoted, wrapped(expected).toStdString()) << argument;
    }
}

TEST(SizeClassesTest, LimitsAreThoseOfThePersonOrTheUsualOnes)
{
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    const char *const keys[] = {"IconTagSize", "SmallTagSize", "MediumTagSize"};
    const auto limits = [&](const std::array<int, 3> &set) {
        for (std::size_t i = 0; i < set.size(); ++i) {
            defaults.setObjectForKey(set[i], QLatin1StringView(keys[i]));
        }
        const auto current = SizeClasses::Limits::current();
        return std::array<qint64, 3>{current.icon, current.small, current.medium};
    };
    EXPECT_EQ(limits({50, 200, 700}), (std::array<qint64, 3>{50, 200, 700}));
    EXPECT_EQ(limits({0, -5, 1}), (std::array<qint64, 3>{32, 128, 1}));
    for (const char *key : keys) {
        defaults.removeObjectForKey(QLatin1StringView(key));
    }
    EXPECT_EQ(SizeClasses::titleForKey(QStringLiteral("vector")), QStringLiteral("Vector"));
    const auto isIn = [](const char *size, int width, int height) {
        return SizeClasses::predicateForKey(QLatin1StringView(size), ZQListRows::LibraryItems, {})
            .evaluateWithObject(QVariantMap{{QStringLiteral("pixelWidth"), width},
                                            {QStringLiteral("pixelHeight"), height},
                                            {QStringLiteral("extension"), QStringLiteral("png")}});
    };
    EXPECT_TRUE(isIn("medium", 512, 300) && isIn("large", 512, 300));
    EXPECT_TRUE(isIn("icon", 32, 32) && !isIn("small", 32, 32));
    EXPECT_TRUE(isIn("small", 33, 10) && !isIn("icon", 33, 10));
    EXPECT_TRUE(isIn("none", 0, 10) && !isIn("icon", 0, 10));
}

TEST(KindNamesTest, AKindIsFoundByItsNameAndByWhatItIs)
{
    EXPECT_EQ(KindNames::nameOfExtension(QStringLiteral("png")), QStringLiteral("PNG image"));
    EXPECT_EQ(KindNames::nameOfExtension(QStringLiteral("SKETCH")), QStringLiteral("Sketch document"));
    EXPECT_EQ(KindNames::nameOfExtension(QStringLiteral("zzz")), QStringLiteral("ZZZ"));
    const auto has = [](const char *kind, const char *extension) {
        return KindNames::extensionsOfKind(QLatin1StringView(kind)).contains(QLatin1StringView(extension));
    };
    EXPECT_TRUE(has("jpeg", "jpg") && has("Photoshop", "psd") && has("FONT", "otf") && has("font", "ttf"));
    EXPECT_TRUE(has("sketch doc", "sketch") && has("brush", "abr") && !has("brush", "png"));
    EXPECT_TRUE(has("image", "svg") && has("pdf", "pdf") && has("zzz", "zzz") && !has("png", "jpg"));
}

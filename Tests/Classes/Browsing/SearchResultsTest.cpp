#include "Kit/Imaging/ZQPalette.h"
#include "Tests/Classes/Browsing/SearchFixture.h"

namespace {

using SearchResultsTest = SearchFixture;

struct Case
{
    const char *text;
    const char *found; // first letters of the titles
};

} // namespace

TEST_F(SearchResultsTest, WordsAndTokensFindWhatTheySay)
{
    static constexpr Case cases[] = {
        {"", "CLPdsw"},
        {"logo", "LPs"}, // in a title, in notes, in a tag
        {"LOGO", "LPs"},
        {"cafe", "C"},
        {"jpg", "CP"},
        {"lo\"go", "LPs"},
        {"\"Logo brand\"", "L"},
        {"logo brand", "L"},
        {"brand logo", "L"},
        {"50%@", "d"},
        {"back\\slash", "s"},
        {"\"(1)\"", "P"},
        {"#title logo", "L"},
        {"#tt \"o b\"", "L"},
        {"#name seal", "s"},
        {"#notes logo", "P"},
        {"#n ART", "L"},
        {"#ext jpg", "CP"},
        {"#e j*", "CP"},
        {"#e ?????", ""},
        {"#tag draft", "L"},
        {"#t sum", ""},
        {"#t sum*", "C"},
        {"#tag \"summer 2026\"", "C"},
        {"#tag=draft", "L"},
        {"#project brand", "CLPsw"},
        {"#p nothing", ""},
        {"#hash aa", "Ls"},
        {"#h bb", "C"},
        {"#h>900", "C"},
        {"#h=800", "L"},
        {"#w>1000 -#tag draft", "w"},
        {"#w > 1000", "Lw"},
        {"#width=1001", "w"},
        {"#w==1001", "w"},
        {"#w<=32", "ds"},
        {"#height>=900", "C"},
        {"#live", "w"},
        {"#untagged", "Pdw"},
        {"#notag", "dw"},
        {"#noproject", "d"},
        {"-#np", "CLPsw"},
        {"#r>3", "Lw"},
        {"#rating=0", "Ps"},
        {"#r<1", "Ps"},
        {"#r>=3", "CLw"},
        {"#c red", "CP"},
        {"#color Blue", "L"},
        {"#c 1001", "s"},
        {"#c none", "d"},
        {"#size icon", "d"},
        {"#size medium", "P"}, // exactly 512 is in both
        {"#size large", "CLPw"},
        {"#size vector", "s"},
        {"#size none", ""},
        {"#kind png", "L"},
        {"#kind \"jpeg image\"", "CP"},
        {"#kind image", "CLPdsw"},
        {"#folder inner", "w"},
        {"#f OUTER", "dw"},
        {"#f fold", "dw"},
        {"#f live", ""}, // the title of their label is no folder's
        {"#folder brand", ""},
        {"#duplicates", "Ls"}, // "0" is no digest
        {"-#duplicates", "CPdw"},
        {"#duplicateshashes aa_bb", "Ls"},
        {"#duplicateshashes bb", ""},
    };
    for (const Case &each : cases) {
        EXPECT_EQ(found(each.text), each.found) << each.text;
    }
}

TEST_F(SearchResultsTest, PicturesAreFoundByWhatTheyLookLike)
{
    ZQPictureHash logo;
    logo.words = {1, 2, 3, 4};
    ZQPictureHash like = logo;
    like.words[0] ^= 0xff00;
    ZQPictureHash other = logo;
    other.words = {~quint64(1), ~quint64(2), ~quint64(3), ~quint64(4)};
    const auto palette = [](QRgb most, QRgb little) { return ZQPalette{{{most, 200}, {little, 6}}}.bytes(); };
    items[0]->setPictureHash(logo.bytes());
    items[0]->setPalette(palette(0x3366cc, 0xff0000));
    items[1]->setPictureHash(like.bytes());
    items[1]->setPalette(palette(0x2f60c4, 0xffffff));
    items[2]->setPictureHash(other.bytes());
    items[2]->setPalette(palette(0xffffff, 0x2f60c4));
    items[3]->setPictureHash(QByteArray(""));
    library.context().save();
    const Case cases[] = {
        {"#like \"logo brand\"", "CL"},
        {"#like \"LOGO BRAND.png\"", "CL"},
        {"-#like \"logo brand\"", "Pdsw"},
        {"#like \"logo brand~50\"", "CL"},
        {"#like \"logo brand~0\"", "L"},
        {"#like seal", "s"},
        {"#like dot", ""},  // shows nothing
        {"#like wide", ""}, // nobody looked at it yet
        {"#like nobody", ""},
        {"#color #4a7ad0", "CL"}, // of another shade, a little is not enough
        {"#color #2f60c4", "CLs"},
        {"#color #3366cc~0", "L"},
        {"#c #f00", "L"},
        {"#c blue~30", "CLs"},
        {"#c blue #c #3366cc", "L"},
    };
    for (const Case &each : cases) {
        EXPECT_EQ(found(each.text), each.found) << each.text;
    }
    EXPECT_EQ(found(QStringLiteral("#like ") + items[0]->bundleID()), "CL");
    items[0]->setActive(false);
    library.context().save();
    EXPECT_EQ(found("#like \"logo brand\""), "") << "what is deleted is no example";
}

TEST_F(SearchResultsTest, DatesAreWholeSpansToTheirLastMoment)
{
    static constexpr Case cases[] = {
        {"#d=25/12/2012", "L"},     {"#d=24/12/2012", "C"},   {"#date=2012-12-26", "s"},   {"#d<25/12/2012", "C"},
        {"#d>25/12/2012", "LPdsw"}, // since that day
        {"#d>2012-12-25", "LPdsw"}, {"#d<=2012-12-25", "CL"}, {"#d>=2012-12-25", "LPdsw"}, {"#d=2012", "CLs"},
        {"#d=2026-03", "Pd"},       {"#d<2026-03", "CLsw"},   {"#d>2025", "Pdw"},          {"#di<01/01/2013", ""},
        {"#di=2013", "CLs"},        {"#dc=2011", "CLs"},
    };
    for (const Case &each : cases) {
        EXPECT_EQ(found(each.text), each.found) << each.text;
    }
    const QDateTime midnight(QDate::currentDate(), QTime(0, 0));
    items[0]->setModification_date(midnight.toUTC());
    items[1]->setModification_date(midnight.addMSecs(-1).toUTC());
    items[2]->setModification_date(midnight.addDays(-7).toUTC());
    items[3]->setModification_date(midnight.addDays(-7).addMSecs(-1).toUTC());
    items[4]->setModification_date(midnight.addDays(-40).toUTC());
    library.context().save();
    EXPECT_EQ(found("#d=today"), "L");
    EXPECT_EQ(found("#d=yesterday"), "C");
    EXPECT_EQ(found("#d=7d"), "CLs");
    EXPECT_EQ(found("#d>7d"), "CL") << "the first moment itself is not after it";
    EXPECT_EQ(found("#d<7d"), "Pdw");
}

TEST_F(SearchResultsTest, DuplicatesAreThoseOfTheContentAndOneItemInTwoPlacesIsOne)
{
    for (const auto &item : std::as_const(items)) {
        item->setSHA1(item->title());
    }
    items[3]->setSHA1(items[0]->SHA1()); // not in the project
    library.context().save();
    EXPECT_EQ(found(QStringLiteral("#duplicates"), ZQListRows::LibraryItems).size(), 2);
    EXPECT_EQ(found(QStringLiteral("#duplicates"), ZQListRows::Memberships).size(), 0);
    const auto other = addProject(QStringLiteral("Other"));
    other->addItem(items[0].get());
    library.context().save();
    const auto counts =
        StoreSearch::hashCounts({project->contentRequest(), other->contentRequest()}, library.context());
    EXPECT_EQ(counts.value(items[0]->SHA1()), 1);
}

TEST_F(SearchResultsTest, ALiveFolderIsFoundFromAsDeepAsTheyLie)
{
    EXPECT_EQ(StoreSearch::liveFolderDepth(library.context()), 2);
    Item deepest = inner;
    for (int depth = 3; depth <= SearchQueries::deepestFolder + 3; ++depth) {
        deepest = addLiveFolder(QStringLiteral("deep"), deepest);
    }
    items[5]->setWatchingFolder(zqCast<ZQSidebarWatchedFolder>(deepest).get());
    library.context().save();
    EXPECT_EQ(StoreSearch::liveFolderDepth(library.context()), SearchQueries::deepestFolder);
    EXPECT_EQ(found("#f deep"), "w");
    EXPECT_EQ(found("#f outer"), "d") << "farther than a statement reaches, and no error";
}

namespace {

// A random search of known meaning: which of the items it finds, and how that is typed.
class RandomSearch
{
public:
    explicit RandomSearch(unsigned seed) : m_random(seed) {}

    quint32 write(QString &text, int depth)
    {
        quint32 result = 0;
        const int alternatives = 1 + pick(depth > 0 ? 3 : 1);
        for (int i = 0; i < alternatives; ++i) {
            text += i > 0 ? QStringLiteral(" OR ") : QString();
            result |= conjunction(text, depth);
        }
        return result;
    }

private:
    int pick(int count) { return int(m_random() % unsigned(count)); }

    quint32 conjunction(QString &text, int depth)
    {
        quint32 result = ~0U;
        const int parts = 1 + pick(3);
        for (int i = 0; i < parts; ++i) {
            static constexpr const char *joins[] = {" ", " AND ", " + ", " +"};
            text += i > 0 ? QLatin1StringView(joins[pick(4)]) : QLatin1StringView();
            result &= negation(text, depth);
        }
        return result;
    }
    quint32 negation(QString &text, int depth)
    {
        bool isNegated = false;
        while (pick(3) == 0) {
            text += pick(2) == 0 ? QStringLiteral("-") : QStringLiteral("NOT ");
            isNegated = !isNegated;
        }
        quint32 result = 0;
        if (depth > 0 && pick(3) == 0) {
            text += u'(';
            result = write(text, depth - 1);
            text += u')';
        } else {
            const int item = pick(6);
            text += QStringLiteral("#h%1").arg(item);
            result = 1U << item;
        }
        return isNegated ? ~result : result;
    }

    std::mt19937 m_random;
};

} // namespace

TEST_F(SearchResultsTest, NotBindsClosestThenAndThenOr)
{
    for (qsizetype i = 0; i < items.size(); ++i) {
        items[i]->setPixelHeight(qint32(i));
    }
    library.context().save();
    for (unsigned seed = 0; seed < 200; ++seed) {
        QString text;
        const quint32 expected = RandomSearch(seed).write(text, 3);
        text.replace(QStringLiteral("#h"), QStringLiteral("#h="));
        QString letters;
        for (qsizetype i = 0; i < items.size(); ++i) {
            letters += (expected >> i & 1U) != 0 ? items[i]->title().left(1) : QString();
        }
        std::sort(letters.begin(), letters.end());
        ASSERT_EQ(found(text), letters.toStdString()) << text.toStdString();
    }
}

TEST_F(SearchResultsTest, TheMostThatIsSearchedIsNoMoreThanTheStoreTakes)
{
    Item deepest = inner;
    for (int depth = 3; depth <= SearchQueries::deepestFolder; ++depth) {
        deepest = addLiveFolder(QStringLiteral("deep"), deepest);
    }
    const auto repeated = [](const char *text, int times) { return QString::fromUtf8(text).repeated(times); };
    const std::pair<QString, const char *> texts[] = {
        {repeated("logo ", 1000), "LPs"},
        {repeated("nothing OR ", 1000) + QStringLiteral("logo"), ""}, // cut off before the last
        {repeated("-#project x ", 1000), "CLPdsw"},
        {repeated("#f inner ", 1000), "w"},
        {repeated("#kind image ", 1000), "CLPdsw"},
        {repeated("-#kind font OR ", 1000), "CLPdsw"},
        {repeated("#w>0 -#d=2013 ", 1000), "CLPdw"},
        {repeated("#duplicates ", 1000), "Ls"},
        {repeated("-(x OR -(y ", 1000) + repeated("))", 1000), ""},
        {repeated("-(#untagged -(#np OR ", 5) + QStringLiteral("logo") + repeated("))", 5), "CLPds"},
    };
    for (const auto &[text, expected] : texts) {
        EXPECT_EQ(found(text), expected) << text.left(20).toStdString();
    }
}

namespace {

// Anything that means something in a search, in any order.
QString randomText(std::mt19937 &random)
{
    static const QStringList pieces = {
        "logo",  "a",     "\"",   "\\",  "(",     ")",      "-",       "+",          "AND",  "OR",     "NOT",
        "==",    "#",     "#tag", "#t*", "#w>",   "1000",   "#h<=",    "#d=",        "2026", "7d",     "today",
        "#c",    "red",   "#r>",  "3",   "#size", "vector", "#kind",   "font",       "#f",   "Inner",  "#duplicates",
        "#np",   "%@",    "%1",   "*",   "?",     "'",      "\u0301",  "ß",          "#e",   "#zzz",   "#untagged",
        "{1,2}", "$x",    "NULL", "nil", "#d>",   "31/02",  "[cd]",    "\U0001F600", "<",    "#title", "#project",
        "é",     "#hash", "aa",   "\t",  "\n",    "#notes", "#height="};
    QString text;
    for (unsigned i = 0, count = 1 + random() % 16; i < count; ++i) {
        text += pieces.at(qsizetype(random() % unsigned(pieces.size()))) +
                (random() % 3 > 0 ? QStringLiteral(" ") : QString());
    }
    if (random() % 8 == 0) {
        text.insert(qsizetype(random() % unsigned(text.size() + 1)), QChar(random() % 2 ? 0xD83D : 0));
    }
    return text;
}

} // namespace

TEST_F(SearchResultsTest, WhateverIsTypedCanBeAskedAndBothWaysAgree)
{
    std::mt19937 random(1);
    for (int round = 0; round < 250; ++round) {
        const QString text = randomText(random);
        found(text, ZQListRows::LibraryItems);
        found(text, ZQListRows::Memberships);
        const SearchExpression read = SearchExpression::read(text, {});
        qsizetype end = 0;
        for (const SearchPart &part : read.parts) {
            EXPECT_GE(part.position, end) << text.toStdString();
            EXPECT_GT(part.length, 0) << text.toStdString();
            EXPECT_FALSE(part.meaning.isEmpty()) << text.toStdString();
            end = part.end();
        }
        EXPECT_LE(end, text.size());
        if (HasFailure()) {
            break;
        }
    }
}

TEST_F(SearchResultsTest, ATokenThatIsAddedNarrowsAndIsTakenAwayWithoutATrace)
{
    const auto predicate = [](const QString &text) { return SearchManager::predicateForSearchString(text, {}); };
    const QString token = QStringLiteral("#rating=2");
    std::mt19937 random(2);
    for (int round = 0; round < 400; ++round) {
        const QString text = randomText(random);
        const QString added = SearchManager::toggled(text, token);
        ASSERT_TRUE(predicate(added) == ZQPredicate::andPredicate({predicate(text), predicate(token)}))
            << text.toStdString() << " -> " << added.toStdString();
        const QString without = SearchManager::toggled(added, token);
        ASSERT_TRUE(predicate(without) == predicate(text)) << text.toStdString() << " -> " << without.toStdString();
    }
}

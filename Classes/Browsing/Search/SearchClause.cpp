#include "Classes/Browsing/Search/SearchClause.h"

#include "Classes/Browsing/Index/KindNames.h"
#include "Classes/Browsing/Index/PictureConditions.h"
#include "Classes/Browsing/Search/ColorArgument.h"
#include "Classes/Browsing/Search/LikeArgument.h"
#include "Classes/Browsing/Search/SearchQueries.h"
#include "Classes/Browsing/Search/SearchSpan.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <QLocale>

#include <algorithm>

namespace {

constexpr int mostStars = 5;
constexpr int shownLength = 60; // of an argument in a sentence

QString shown(const QString &text)
{
    return zqShortened(text, shownLength);
}

SearchClause wrong(SearchProblem problem, const char *format, const QVariantList &arguments = {})
{
    SearchClause clause;
    clause.problem = problem;
    clause.meaning = zqFormat(zqLocalized(format), arguments);
    return clause;
}

SearchClause plainClause(const QString &query, const QString &meaning)
{
    SearchClause clause;
    clause.meaning = meaning;
    clause.normalized = zqFold(query);
    clause.compose = [query](const QString &operand, bool exclude) {
        return SearchQueries::composeQueryStringWithQuery(query, operand, exclude);
    };
    return clause;
}

QString sentenceForText(SearchField field, const QString &text)
{
    struct Sentence
    {
        SearchField field;
        const char *format;
    };
    static constexpr Sentence sentences[] = {
        {SearchField::Word, zqKey("“%@” in the title, the notes, the extension or a tag")},
        {SearchField::Title, zqKey("Title contains “%@”")},
        {SearchField::Notes, zqKey("Notes contain “%@”")},
        {SearchField::Extension, zqKey("Extension is “%@”")},
        {SearchField::Tag, zqKey("Has the tag “%@”")},
        {SearchField::Project, zqKey("In a project named “%@”")},
        {SearchField::Folder, zqKey("In a live folder named “%@”, or below it")},
        {SearchField::Kind, zqKey("Kind is “%@”")},
        {SearchField::Size, zqKey("Size class is “%@”")},
        {SearchField::Color, zqKey("Color is “%@”")},
        {SearchField::Hash, zqKey("Digest is %@")},
        {SearchField::Like, zqKey("Looks like “%@”")},
    };
    for (const Sentence &each : sentences) {
        if (each.field == field) {
            return zqFormat(zqLocalized(each.format), {shown(text)});
        }
    }
    return SearchToken::ofField(field).meaning();
}

SearchClause numberClause(const SearchLexeme &lexeme, const QString &method, const SearchContext &context)
{
    const bool isRating = lexeme.token->field == SearchField::Rating;
    bool isNumber = false;
    const qint64 value = lexeme.text.toLongLong(&isNumber);
    if (!isNumber) {
        return wrong(SearchProblem::BadNumber, zqKey("“%@” is no whole number."), {shown(lexeme.text)});
    }
    if (isRating && (value < 0 || value > mostStars)) {
        return wrong(SearchProblem::BadRating, zqKey("A rating is a number of stars from 0 to 5."));
    }
    const bool isWidth = lexeme.token->field == SearchField::Width;
    const char *key = isRating ? "rating" : isWidth ? "pixelWidth" : "pixelHeight";
    const QString name = isRating ? zqLocalized("Rating") : isWidth ? zqLocalized("Width") : zqLocalized("Height");
    const QString field = zqItemKeyPath(context.rows, QLatin1StringView(key));
    return plainClause(SearchQueries::numberQuery(field, method, value),
                       zqFormat(QStringLiteral("%@ %@ %ld"), {name, lexeme.comparison, value}));
}

QString dayText(const QDateTime &moment)
{
    return QLocale().toString(moment.date(), QStringLiteral("d MMM yyyy"));
}

QString sentenceForDate(const QString &verb, const QString &method, const SearchSpan &span)
{
    if (method == u"<") {
        return zqFormat(zqLocalized("%@ before %@"), {verb, dayText(span.start)});
    }
    if (method == u"<=") {
        return zqFormat(zqLocalized("%@ until %@"), {verb, dayText(span.end)});
    }
    if (method == u">" || method == u">=") {
        return zqFormat(zqLocalized("%@ since %@"), {verb, dayText(span.start)});
    }
    return span.start.date() == span.end.date()
               ? zqFormat(zqLocalized("%@ on %@"), {verb, dayText(span.start)})
               : zqFormat(zqLocalized("%@ from %@ to %@"), {verb, dayText(span.start), dayText(span.end)});
}

SearchClause dateClause(const SearchLexeme &lexeme, const QString &method, const SearchContext &context)
{
    const auto span = SearchSpan::forText(lexeme.text, context.today);
    if (!span) {
        return wrong(
            SearchProblem::BadDate,
            zqKey("“%@” is no date; write it as 25/12/2026, 2026-12-25, 2026-12, 2026, today, yesterday or 7d."),
            {shown(lexeme.text)});
    }
    const SearchField kind = lexeme.token->field;
    const char *key = kind == SearchField::Imported  ? "import_date"
                      : kind == SearchField::Created ? "creation_date"
                                                     : "modification_date";
    const QString verb = kind == SearchField::Imported  ? zqLocalized("Imported")
                         : kind == SearchField::Created ? zqLocalized("Created")
                                                        : zqLocalized("Modified");
    const QString field = zqItemKeyPath(context.rows, QLatin1StringView(key));
    SearchClause clause;
    clause.meaning = sentenceForDate(verb, method, *span);
    clause.compose = [text = lexeme.text, method, field, today = context.today](const QString &operand, bool exclude) {
        return SearchQueries::searchForDate(text, method, exclude, field, operand, today);
    };
    clause.normalized = clause.compose({}, false);
    return clause;
}

SearchClause colorClause(const SearchLexeme &lexeme, const SearchContext &context)
{
    const auto color = ColorArgument::of(lexeme.text);
    if (!color) {
        QStringList names;
        for (int code = int(ZQSidebarKind::FirstColor); code <= int(ZQSidebarKind::LastColor); ++code) {
            names.append(ZQSidebarTag::colorNameForValue(code));
        }
        return wrong(SearchProblem::BadColor,
                     zqKey("“%@” is no color; there are %@, or one as #3366cc, and behind it how near: ~0 to ~100."),
                     {shown(lexeme.text), names.join(QStringLiteral(", "))});
    }
    const QString name = color->code
                             ? *color->code != 0 ? ZQSidebarTag::colorNameForValue(*color->code) : zqLocalized("none")
                             : ColorArgument::textFor(*color->rgb);
    if (!color->isNearness()) {
        return plainClause(SearchQueries::colorQuery(*color->code, context.rows),
                           sentenceForText(SearchField::Color, name));
    }
    const ColorCondition condition{*color->rgb, color->tolerance.value_or(ColorCondition::usualTolerance)};
    return plainClause(SearchQueries::resemblanceQuery(QStringLiteral("palette"), {condition.text()}, context.rows),
                       zqFormat(zqLocalized("Has a color near %@ (%d)"), {name, condition.tolerance}));
}

// Without a function that knows the pictures nothing is found: the text alone does not say what one looks like.
SearchClause likeClause(const SearchLexeme &lexeme, const SearchContext &context)
{
    const LikeArgument like = LikeArgument::of(lexeme.text);
    QStringList conditions;
    for (const ZQPictureHash &hash :
         context.picturesNamed ? context.picturesNamed(like.name) : QList<ZQPictureHash>()) {
        conditions.append(PictureCondition{hash, like.farthestBits()}.text());
    }
    const QString query = SearchQueries::resemblanceQuery(QStringLiteral("pictureHash"), conditions, context.rows);
    const bool isUnknown = context.picturesNamed && conditions.isEmpty();
    const QString title = context.titleOfPicture ? context.titleOfPicture(like.name) : like.name;
    SearchClause clause = plainClause(
        query, isUnknown ? zqFormat(zqLocalized("No picture named “%@” is known by its looks"), {shown(title)})
                         : sentenceForText(SearchField::Like, title));
    clause.cost = 1 + int(conditions.size());
    clause.normalized = lexeme.token->name() + u' ' + zqFold(lexeme.text);
    return clause;
}

SearchClause sizeClause(const SearchLexeme &lexeme, const SearchContext &context)
{
    const QString key = SizeClasses::keyForName(lexeme.text);
    if (key.isEmpty()) {
        QStringList names;
        for (const QString &each : SizeClasses::keys()) {
            names.append(zqLocalized(each));
        }
        return wrong(SearchProblem::BadSize, zqKey("“%@” is no size class; there are %@."),
                     {shown(lexeme.text), names.join(QStringLiteral(", "))});
    }
    return plainClause(SizeClasses::queryForKey(key, context.rows, context.sizes),
                       sentenceForText(SearchField::Size, zqLocalized(key)));
}

SearchClause kindClause(const SearchLexeme &lexeme, const SearchContext &context)
{
    constexpr qsizetype extensionsForOne = 16; // a list is looked up, not gone through
    SearchClause clause = plainClause(SearchQueries::kindQuery(lexeme.text, context.rows),
                                      sentenceForText(SearchField::Kind, lexeme.text));
    const QStringList extensions = KindNames::extensionsOfKind(lexeme.text);
    clause.cost = 1 + int(extensions.size() / extensionsForOne);
    const auto isPlain = [](QChar c) { return c.isLetterOrNumber(); }; // no pattern, nothing that is left out
    if (extensions.size() == 1 && std::all_of(extensions.first().begin(), extensions.first().end(), isPlain)) {
        clause.normalized =
            zqFold(SearchQueries::queryForField(SearchField::Extension, extensions.first(), context.rows));
    }
    return clause;
}

SearchClause folderClause(const SearchLexeme &lexeme, const SearchContext &context)
{
    const int depth =
        std::clamp(context.liveFolderDepth ? context.liveFolderDepth() : 1, 1, SearchQueries::deepestFolder);
    SearchClause clause;
    clause.meaning = sentenceForText(SearchField::Folder, lexeme.text);
    clause.cost = depth + depth * depth / 8; // each level joins one table more
    clause.compose = [text = lexeme.text, rows = context.rows, depth](const QString &operand, bool exclude) {
        return SearchQueries::folderSearchForString(text, exclude, operand, rows, depth);
    };
    clause.normalized = lexeme.token->name() + u' ' + zqFold(lexeme.text);
    return clause;
}

SearchClause duplicatesClause(const SearchLexeme &lexeme, const SearchContext &context)
{
    constexpr qsizetype hashesForOne = 200; // equalities of one attribute are looked up as one
    SearchClause clause;
    clause.meaning = sentenceForText(lexeme.token->field, {});
    clause.cost = 1 + int(lexeme.text.count(u'_') / hashesForOne); // the content's are one list, however long
    clause.comparesDigests = true;
    QString content = QStringLiteral("%@");
    if (!context.leavesOutDigests) {
        const auto counts = context.hashCounts ? context.hashCounts() : QMap<QString, qint64>();
        content = SearchQueries::duplicateQuery(SearchQueries::repeatedHashes(counts), context.rows);
    }
    clause.compose = [content, hashes = lexeme.text, rows = context.rows](const QString &operand, bool exclude) {
        return SearchQueries::duplicatesSearchWithArrayController(content, exclude, operand, hashes, rows);
    };
    clause.normalized = lexeme.token->name() + u' ' + lexeme.text.toLower();
    return clause;
}

SearchClause textClause(SearchField field, const QString &text, const SearchContext &context)
{
    constexpr int comparisonsOfWord = 4;
    SearchClause clause =
        plainClause(SearchQueries::queryForField(field, text, context.rows), sentenceForText(field, text));
    clause.cost = field == SearchField::Word ? comparisonsOfWord : 2;
    return clause;
}

SearchClause clauseOfToken(const SearchLexeme &lexeme, const QString &method, const SearchContext &context)
{
    switch (lexeme.token->argument) {
    case SearchArgument::Pixels:
    case SearchArgument::Rating:
        return numberClause(lexeme, method, context);
    case SearchArgument::Date:
        return dateClause(lexeme, method, context);
    case SearchArgument::Color:
        return colorClause(lexeme, context);
    case SearchArgument::Size:
        return sizeClause(lexeme, context);
    case SearchArgument::Kind:
        return kindClause(lexeme, context);
    default:
        break;
    }
    switch (lexeme.token->field) {
    case SearchField::Folder:
        return folderClause(lexeme, context);
    case SearchField::Like:
        return likeClause(lexeme, context);
    case SearchField::Duplicates:
    case SearchField::DuplicatesHashes:
        return duplicatesClause(lexeme, context);
    default:
        return textClause(lexeme.token->field, lexeme.text, context);
    }
}

// What is wrong with the form of a token, before its argument is looked at.
std::optional<SearchClause> problemOfForm(const SearchLexeme &lexeme, const QString &name, const QString &method)
{
    const SearchToken *token = lexeme.token;
    if (!token) {
        return wrong(SearchProblem::UnknownToken,
                     zqKey("There is no token “%@”. Put it in quotes to find it as a text."), {shown(name)});
    }
    const bool isEqual = lexeme.comparison.isEmpty() || lexeme.comparison == u"=" || lexeme.comparison == u"==";
    if (!token->compares() && (!isEqual || (token->argument == SearchArgument::None && !method.isEmpty()))) {
        return wrong(SearchProblem::NoComparison, zqKey("“%@” compares nothing; leave “%@” away."),
                     {token->name(), lexeme.comparison});
    }
    const bool isUnknown = lexeme.comparison.size() > 2 || lexeme.comparison == u"<>" || lexeme.comparison == u"><" ||
                           lexeme.comparison == u"<<" || lexeme.comparison == u">>";
    if (token->compares() && (method.isEmpty() || isUnknown)) {
        return wrong(SearchProblem::NoComparison, zqKey("Write <, = or > behind “%@”, and then what to compare with."),
                     {token->name()});
    }
    if (token->argument != SearchArgument::None && SearchQueries::safeSearchString(lexeme.text).isEmpty()) {
        return wrong(SearchProblem::NoArgument, zqKey("Behind “%@” stands what to look for: %@."),
                     {token->name(), token->argumentHint()});
    }
    return std::nullopt;
}

} // namespace

SearchClause SearchClause::ofLexeme(const SearchLexeme &lexeme, const SearchContext &context)
{
    if (lexeme.kind == SearchLexeme::Kind::Word) {
        return SearchQueries::safeSearchString(lexeme.text).isEmpty()
                   ? wrong(SearchProblem::EmptyQuotes, zqKey("There is nothing between the quotes."))
                   : textClause(SearchField::Word, lexeme.text, context);
    }
    const QString method = SearchQueries::methodForWithOrHeight(lexeme.comparison);
    if (auto problem = problemOfForm(lexeme, lexeme.text, method)) {
        return *problem;
    }
    return clauseOfToken(lexeme, method, context);
}

#include "Classes/Browsing/Search/SearchCompletion.h"

#include "Classes/Browsing/Search/ColorArgument.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Classes/Browsing/Search/SearchTokenizer.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <algorithm>

namespace {

SearchCompletion value(const QString &text, const QString &meaning = {})
{
    return {text, {}, {}, meaning};
}

QList<SearchCompletion> dateOptions(const QDate &today)
{
    return {value(zqLocalized("today")), value(zqLocalized("yesterday")),
            value(QStringLiteral("7d"), zqLocalized("The last seven days")),
            value(today.toString(QStringLiteral("yyyy-MM")), zqLocalized("This month")),
            value(today.toString(QStringLiteral("yyyy")), zqLocalized("This year"))};
}

// How near, behind a colour that is typed out.
QList<SearchCompletion> nearnesses(const QString &typed)
{
    const QString color = typed.section(u'~', 0, 0);
    const auto argument = ColorArgument::of(color);
    QList<SearchCompletion> options;
    if (!argument || !argument->rgb || argument->tolerance) {
        return options;
    }
    const std::pair<int, const char *> choices[] = {
        {4, zqKey("Only this shade")}, {10, zqKey("Shades near to it")}, {20, zqKey("All that is akin to it")}};
    for (const auto &[tolerance, meaning] : choices) {
        const QString text = ColorArgument::textFor(color, tolerance);
        if (text.startsWith(typed, Qt::CaseInsensitive)) {
            options.append(value(text, zqLocalized(meaning)));
            options.last().color = argument->code.value_or(0);
        }
    }
    return options;
}

QList<SearchCompletion> optionsForArgument(SearchArgument argument, const QDate &today)
{
    QList<SearchCompletion> options;
    switch (argument) {
    case SearchArgument::Color:
        for (int code = int(ZQSidebarKind::FirstColor); code <= int(ZQSidebarKind::LastColor); ++code) {
            options.append(value(ZQSidebarTag::colorNameForValue(code)));
            options.last().color = code;
        }
        options.append(value(zqLocalized("none")));
        break;
    case SearchArgument::Size:
        for (const QString &key : SizeClasses::keys()) {
            options.append(value(zqLocalized(key)));
        }
        break;
    case SearchArgument::Kind:
        for (const char *family : {zqKey("image"), zqKey("font"), zqKey("brush"), zqKey("document"), zqKey("video")}) {
            options.append(value(QLatin1StringView(family)));
        }
        break;
    case SearchArgument::Rating:
        for (int stars = 5; stars >= 0; --stars) {
            options.append(value(QString::number(stars), QString(stars, u'★')));
        }
        break;
    case SearchArgument::Date:
        return dateOptions(today);
    default:
        break;
    }
    return options;
}

QList<SearchCompletion> tokensBeginning(const QString &typed)
{
    QList<SearchCompletion> options;
    for (const SearchToken &token : SearchToken::all()) {
        const bool begins = std::any_of(token.names.begin(), token.names.end(), [&typed](const QString &name) {
            return name.startsWith(typed, Qt::CaseInsensitive);
        });
        if (begins) {
            options.append({token.name(), token.shortName(), token.argumentHint(), token.meaning()});
        }
    }
    return options;
}

bool endsName(QChar c)
{
    return c == u'<' || c == u'=' || c == u'>' || c == u':' || c == u'"' || SearchTokenizer::isBlank(c);
}

SearchCompletions forArgument(const SearchLexeme &lexeme, const QString &text, qsizetype cursor, const QDate &today)
{
    SearchCompletions result;
    result.token = lexeme.token;
    result.position = lexeme.argumentPosition;
    result.length = lexeme.hasArgument ? lexeme.end() - lexeme.argumentPosition : 0;
    QString typed = text.mid(result.position, cursor - result.position);
    typed.remove(u'"');
    result.typed = lexeme.hasArgument ? typed : QString();
    result.options = optionsForArgument(lexeme.token->argument, today);
    result.options.removeIf([&result](const SearchCompletion &option) {
        return !option.text.startsWith(result.typed, Qt::CaseInsensitive);
    });
    const auto nearer =
        lexeme.token->argument == SearchArgument::Color ? nearnesses(result.typed) : QList<SearchCompletion>();
    if (!nearer.isEmpty()) { // of what is typed in full
        result.options = nearer;
    }
    return result;
}

} // namespace

SearchCompletions SearchCompletions::at(const QString &text, qsizetype cursor, const QDate &today)
{
    SearchTokenizer tokenizer(text, today);
    SearchLexeme last;
    for (SearchLexeme lexeme = tokenizer.next(); lexeme.kind != SearchLexeme::Kind::End && lexeme.position < cursor;
         lexeme = tokenizer.next()) {
        last = lexeme;
    }
    if (last.kind != SearchLexeme::Kind::Token) {
        return {};
    }
    const auto nameEnd = std::find_if(text.begin() + last.position, text.begin() + last.end(), endsName);
    const qsizetype end = nameEnd - text.begin();
    if (cursor <= end) {
        SearchCompletions result;
        result.position = last.position;
        result.length = end - last.position;
        result.options = tokensBeginning(text.mid(last.position, cursor - last.position));
        return result;
    }
    const bool isComplete = last.token && last.token->argument != SearchArgument::None &&
                            (!last.token->compares() || !last.comparison.isEmpty());
    const bool isInside = cursor <= last.end() || (!last.hasArgument && last.argumentPosition != -1);
    return isComplete && cursor >= last.argumentPosition && isInside ? forArgument(last, text, cursor, today)
                                                                     : SearchCompletions();
}

SearchCompletions::Completed SearchCompletions::completed(const QString &text, const SearchCompletion &completion) const
{
    const QString rest = text.mid(position + length);
    QString put = token ? SearchManager::quoted(completion.text) : completion.text;
    const SearchToken *named = token ? nullptr : SearchToken::named(completion.text, true);
    const bool hasComparison = !rest.isEmpty() && endsName(rest.front()) && !SearchTokenizer::isBlank(rest.front());
    if (named && named->compares() && !hasComparison) {
        put += named->argument == SearchArgument::Date ? u'=' : u'>';
    } else if (!hasComparison && (rest.isEmpty() || !SearchTokenizer::isBlank(rest.front()))) {
        put += u' ';
    }
    return {text.left(position) + put + rest, position + put.size()};
}

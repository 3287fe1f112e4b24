#include "Classes/Browsing/Search/SearchManager.h"

#include "Classes/Browsing/Search/SearchTokenizer.h"
#include "Kit/Foundation/ZQLog.h"

#include <algorithm>

namespace {

using Kind = SearchPart::Kind;
using Parts = QList<SearchPart>;

SearchExpression read(const QString &text)
{
    return SearchExpression::read(text, {});
}

// That a digest is one that more than one item of the content has.
ZQPredicate repeatedDigests(const SearchContext &content)
{
    const QStringList digests =
        content.hashCounts ? SearchQueries::repeatedHashes(content.hashCounts()) : QStringList();
    return digests.isEmpty() ? ZQPredicate::notPredicate({})
                             : ZQPredicate::predicateWithFormat(
                                   QStringLiteral("%K IN %@"),
                                   {zqItemKeyPath(content.rows, QStringLiteral("SHA1")), QVariant(digests)});
}

qsizetype indexOfClause(const Parts &parts, const SearchPart &clause)
{
    const auto found = std::find_if(parts.begin(), parts.end(), [&clause](const SearchPart &part) {
        return part.isClause() && part.isNegated == clause.isNegated && !part.normalized.isEmpty() &&
               part.normalized == clause.normalized;
    });
    return found != parts.end() ? found - parts.begin() : -1;
}

Parts clausesOf(const QString &text)
{
    Parts clauses = read(text).parts;
    clauses.removeIf([](const SearchPart &part) { return !part.isClause(); });
    return clauses;
}

bool isBracket(const Parts &parts, qsizetype index, QStringView text)
{
    const SearchPart part = parts.value(index);
    return part.kind == Kind::Bracket && part.text == text;
}

bool isOperator(const Parts &parts, qsizetype index, bool joins)
{
    static const QStringList joining = {QStringLiteral("AND"), QStringLiteral("OR"), QStringLiteral("+")};
    const SearchPart part = parts.value(index);
    return part.kind == Kind::Operator && joining.contains(part.text) == joins;
}

// The parts from `first` to `last` with what would be left of them: brackets that hold nothing else, and what joined
// them to the rest.
std::pair<qsizetype, qsizetype> withLeftovers(const Parts &parts, qsizetype first, qsizetype last)
{
    while (isBracket(parts, first - 1, u"(") && isBracket(parts, last + 1, u")")) {
        ++last;
        first -= isOperator(parts, first - 2, false) ? 2 : 1;
    }
    if (isOperator(parts, first - 1, true)) {
        return {first - 1, last};
    }
    const bool isFirst = first == 0 || isBracket(parts, first - 1, u"(");
    return {first, isFirst && isOperator(parts, last + 1, true) ? last + 1 : last};
}

QString withoutClause(const QString &text, const Parts &parts, qsizetype index)
{
    const auto [first, last] = withLeftovers(parts, index, index);
    qsizetype start = parts.at(first).position;
    qsizetype end = parts.at(last).end();
    const auto isBlankAt = [&text](qsizetype position) {
        return position < 0 || position >= text.size() || SearchTokenizer::isBlank(text.at(position));
    };
    while (end < text.size() && isBlankAt(end)) {
        ++end;
    }
    const bool endsGroup = end == text.size() || text.at(end) == u')';
    while (endsGroup && start > 0 && isBlankAt(start - 1)) {
        --start;
    }
    return text.left(start) + text.mid(end);
}

// So that what stands behind it narrows what all of it finds.
QString closed(QString text)
{
    const SearchExpression expression = read(text);
    const Parts problems = expression.needsBrackets ? expression.problems() : Parts();
    for (auto problem = problems.rbegin(); problem != problems.rend(); ++problem) {
        if (problem->problem == SearchProblem::ClosedBracket) { // would close the brackets around all
            text.insert(problem->position, u'(');
        }
    }
    text += expression.closing;
    return expression.needsBrackets ? u'(' + text.trimmed() + u')' : text;
}

} // namespace

QString SearchManager::predicateStringForSearchString(const QString &searchString, const SearchContext &content)
{
    return SearchExpression::read(searchString, content).predicateString;
}

ZQPredicate SearchManager::predicateForSearchString(const QString &searchString, const SearchContext &content)
{
    SearchContext context = content;
    context.leavesOutDigests = true; // in a text of all of them, a large library's would be too many
    const SearchExpression expression = SearchExpression::read(searchString, context);
    if (expression.predicateString.isEmpty()) {
        return {};
    }
    QVariantList arguments;
    if (expression.digestConditions > 0) {
        arguments = QVariantList(expression.digestConditions, QVariant::fromValue(repeatedDigests(content)));
    }
    ZQError error;
    ZQPredicate predicate = ZQPredicate::predicateWithFormat(expression.predicateString, arguments, &error);
    if (predicate.isNull()) { // a search that cannot be run must not seem to find everything
        qCWarning(zqLogInterface, "A search cannot be read: %s", qUtf8Printable(error.localizedDescription()));
        return ZQPredicate::notPredicate({});
    }
    return predicate;
}

bool SearchManager::contains(const QString &searchText, const QString &tokenText)
{
    const Parts parts = read(searchText).parts;
    const Parts clauses = clausesOf(tokenText);
    return !clauses.isEmpty() && std::all_of(clauses.begin(), clauses.end(), [&parts](const SearchPart &clause) {
        return indexOfClause(parts, clause) >= 0;
    });
}

QString SearchManager::toggled(const QString &searchText, const QString &tokenText)
{
    QString text = searchText;
    if (contains(searchText, tokenText)) {
        for (const SearchPart &clause : clausesOf(tokenText)) {
            const Parts parts = read(text).parts;
            const qsizetype index = indexOfClause(parts, clause);
            text = index >= 0 ? withoutClause(text, parts, index) : text;
        }
        return text;
    }
    text = closed(searchText);
    const bool needsBlank = !text.isEmpty() && !SearchTokenizer::isBlank(text.back());
    return text + (needsBlank ? QStringLiteral(" ") : QString()) + tokenText;
}

QString SearchManager::without(const QString &searchText, qsizetype index)
{
    const Parts parts = read(searchText).parts;
    return index >= 0 && index < parts.size() ? withoutClause(searchText, parts, index) : searchText;
}

QString SearchManager::asPart(const QString &text)
{
    return closed(text).trimmed();
}

QString SearchManager::quoted(const QString &argument)
{
    const auto isSpecial = [](QChar c) { return SearchTokenizer::isBlank(c) || c == u'(' || c == u')'; };
    static const QStringList operators = {QStringLiteral("AND"), QStringLiteral("OR"), QStringLiteral("NOT"),
                                          QStringLiteral("==")};
    const bool needsQuotes = argument.isEmpty() || std::any_of(argument.begin(), argument.end(), isSpecial) ||
                             operators.contains(argument) || QStringView(u"#+-=<>").contains(argument.front());
    return needsQuotes ? u'"' + QString(argument).remove(u'"') + u'"' : argument;
}

bool SearchManager::isPlain(const QString &name)
{
    const auto isSpecial = [](QChar c) { return c < u' ' || QStringView(u"*?\"\\").contains(c); };
    return !name.isEmpty() && std::none_of(name.begin(), name.end(), isSpecial);
}

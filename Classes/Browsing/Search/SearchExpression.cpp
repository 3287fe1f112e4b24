#include "Classes/Browsing/Search/SearchExpression.h"

#include "Classes/Browsing/Search/SearchClause.h"
#include "Classes/Browsing/Search/SearchQueries.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQPredicateNode.h"

#include <optional>
#include <vector>

namespace {

using Kind = SearchLexeme::Kind;

// Less than a predicate takes, since who searches puts it beside other conditions.
constexpr int deepestTree = zqMaximumPredicateDepth - 10;
constexpr int highestCost = 2000; // a statement of the store has a length and values at most

// Something that can be joined: a clause, or brackets with several.
struct Operand
{
    std::function<QString(const QString &operand, bool exclude)> compose;
    bool isExcluded = false;
    bool startsAlternative = false; // OR stands before it, otherwise AND
    int depth = 4;                  // levels of the tree, at most; a clause has up to four
};

// What stands between two brackets.
struct Level
{
    QList<Operand> operands;
    qsizetype openPart = -1;        // the part of its bracket; -1 for the whole text
    bool isExcluded = false;        // NOT stands before the bracket
    bool endsInOperand = false;     // or in what is wrong in an operand's place
    bool startsAlternative = false; // an OR came since the last operand
    qsizetype joinPart = -1;        // of the operator that waits for its right side
    qsizetype notPosition = -1;     // of the first NOT that waits for what it excludes
    qsizetype notEnd = -1;
    int notCount = 0;
};

QString joined(const QList<Operand> &operands)
{
    QString text;
    for (const Operand &each : operands) {
        const QString operand = text.isEmpty()           ? QString()
                                : each.startsAlternative ? QStringLiteral("OR")
                                                         : QStringLiteral("AND");
        text += each.compose(operand, each.isExcluded);
    }
    return text;
}

class Reader
{
public:
    Reader(const QString &text, const SearchContext &context)
        : m_text(text), m_context(context), m_tokenizer(m_text, context.today), m_levels(1)
    {
    }

    SearchExpression read()
    {
        for (SearchLexeme lexeme = m_tokenizer.next(); lexeme.kind != Kind::End && !m_result.isCut;
             lexeme = m_tokenizer.next()) {
            readLexeme(lexeme);
        }
        finish();
        m_result.predicateString = joined(level().operands);
        return std::move(m_result);
    }

private:
    Level &level() { return m_levels.back(); }

    void readLexeme(const SearchLexeme &lexeme);
    void readClause(const SearchLexeme &lexeme);
    void addClausePart(const SearchLexeme &lexeme, const SearchClause &clause, qsizetype position);
    void addUnclosedQuote(const SearchLexeme &lexeme);
    void readJoin(const SearchLexeme &lexeme);
    void readNot(const SearchLexeme &lexeme);
    void open(const SearchLexeme &lexeme);
    void close(const SearchLexeme &lexeme);
    void closeLevel();
    void finish();
    void addOperand(std::optional<Operand> operand);
    Operand grouped(const Level &level) const;
    void endJoins(); // those that wait for something wait in vain
    void takeNots(); // as a part of their own
    SearchPart &addPart(SearchPart::Kind kind, qsizetype position, qsizetype end, const QString &meaning);
    void addProblem(SearchProblem problem, qsizetype position, qsizetype end, const QString &sentence);
    void becomeProblem(qsizetype part, SearchProblem problem, const QString &sentence);
    QString typed(qsizetype position, qsizetype end) const { return m_text.mid(position, end - position); }

    const QString m_text;
    const SearchContext &m_context;
    SearchTokenizer m_tokenizer;
    std::vector<Level> m_levels;
    SearchExpression m_result;
    int m_cost = 0;
};

SearchPart &Reader::addPart(SearchPart::Kind kind, qsizetype position, qsizetype end, const QString &meaning)
{
    SearchPart part;
    part.kind = kind;
    part.position = position;
    part.length = end - position;
    part.text = typed(position, end);
    part.meaning = meaning;
    m_result.parts.append(part);
    return m_result.parts.last();
}

void Reader::addProblem(SearchProblem problem, qsizetype position, qsizetype end, const QString &sentence)
{
    addPart(SearchPart::Kind::Problem, position, end, sentence).problem = problem;
}

void Reader::becomeProblem(qsizetype part, SearchProblem problem, const QString &sentence)
{
    SearchPart &wrong = m_result.parts[part];
    wrong.kind = SearchPart::Kind::Problem;
    wrong.problem = problem;
    wrong.meaning = sentence;
}

void Reader::readLexeme(const SearchLexeme &lexeme)
{
    switch (lexeme.kind) {
    case Kind::And:
    case Kind::Or:
        return readJoin(lexeme);
    case Kind::Not:
        return readNot(lexeme);
    case Kind::Open:
        return open(lexeme);
    case Kind::Close:
        return close(lexeme);
    case Kind::Comparison:
        takeNots();
        addProblem(SearchProblem::StrayOperator, lexeme.position, lexeme.end(),
                   zqLocalized("“==” compares nothing here; write it behind a token, as #width=100."));
        return addOperand(std::nullopt);
    default:
        return readClause(lexeme);
    }
}

void Reader::readNot(const SearchLexeme &lexeme)
{
    level().notPosition = level().notCount == 0 ? lexeme.position : level().notPosition;
    level().notEnd = lexeme.end();
    ++level().notCount;
}

void Reader::takeNots()
{
    if (level().notCount > 0) {
        addPart(SearchPart::Kind::Operator, level().notPosition, level().notEnd,
                zqLocalized("Leaves out what stands behind it"))
            .isNegated = level().notCount % 2 == 1;
    }
}

void Reader::readClause(const SearchLexeme &lexeme)
{
    SearchClause clause = SearchClause::ofLexeme(lexeme, m_context);
    const bool isClosed = lexeme.unclosedQuote < 0;
    m_result.closing = isClosed ? QString() : QStringLiteral("\"");
    if (clause.problem == SearchProblem::EmptyQuotes && !isClosed) {
        takeNots();
        addUnclosedQuote(lexeme);
        return addOperand(std::nullopt);
    }
    const qsizetype position = level().notCount > 0 ? level().notPosition : lexeme.position;
    if (clause.problem != SearchProblem::None) {
        addProblem(clause.problem, position, lexeme.end(), clause.meaning);
        return addOperand(std::nullopt);
    }
    m_cost += clause.cost;
    if (m_cost > highestCost) {
        m_result.isCut = true;
        return addProblem(SearchProblem::TooMuch, position, m_text.size(),
                          zqLocalized("This is more than can be searched at once; from here on it is left out."));
    }
    m_result.digestConditions += m_context.leavesOutDigests && clause.comparesDigests ? 1 : 0;
    addClausePart(lexeme, clause, position);
    addOperand(Operand{.compose = std::move(clause.compose)});
}

void Reader::addUnclosedQuote(const SearchLexeme &lexeme)
{
    addProblem(SearchProblem::UnclosedQuote, lexeme.unclosedQuote, lexeme.end(),
               zqLocalized("This quote is not closed."));
}

void Reader::addClausePart(const SearchLexeme &lexeme, const SearchClause &clause, qsizetype position)
{
    const bool isToken = lexeme.kind == Kind::Token;
    const bool isClosed = lexeme.unclosedQuote < 0;
    if (isClosed || isToken) {
        SearchPart &part = addPart(isToken ? SearchPart::Kind::Token : SearchPart::Kind::Word, position,
                                   isClosed ? lexeme.end() : lexeme.unclosedQuote, clause.meaning);
        part.isNegated = level().notCount % 2 == 1;
        part.normalized = isClosed ? clause.normalized : QString();
    } else {
        takeNots();
    }
    if (!isClosed) {
        addUnclosedQuote(lexeme);
    }
}

void Reader::addOperand(std::optional<Operand> operand)
{
    Level &current = level();
    if (operand) {
        operand->isExcluded = operand->isExcluded != (current.notCount % 2 == 1);
        operand->startsAlternative = current.startsAlternative && !current.operands.isEmpty();
        current.operands.append(std::move(*operand));
        current.startsAlternative = false;
    }
    current.endsInOperand = true;
    current.joinPart = -1;
    current.notCount = 0;
}

void Reader::readJoin(const SearchLexeme &lexeme)
{
    const QString sentence = zqLocalized("“%@” joins nothing; what it joins stands before and behind it.");
    if (level().notCount > 0) {
        endJoins();
    }
    const bool isIdle = lexeme.isPrefix && !level().endsInOperand; // "+logo", "a OR +logo"
    if (level().joinPart >= 0 && !isIdle) {
        becomeProblem(level().joinPart, SearchProblem::StrayOperator,
                      zqFormat(sentence, {m_result.parts.at(level().joinPart).text}));
    } else if (!level().endsInOperand && !isIdle) {
        return addProblem(SearchProblem::StrayOperator, lexeme.position, lexeme.end(),
                          zqFormat(sentence, {typed(lexeme.position, lexeme.end())}));
    }
    const bool isOr = lexeme.kind == Kind::Or;
    addPart(SearchPart::Kind::Operator, lexeme.position, lexeme.end(),
            isOr ? zqLocalized("Finds what one of both sides finds") : zqLocalized("Finds what both sides find"));
    if (!isIdle) {
        level().joinPart = m_result.parts.size() - 1;
        level().startsAlternative = isOr;
        level().endsInOperand = false;
        m_result.needsBrackets = m_result.needsBrackets || (isOr && m_levels.size() == 1);
    }
}

void Reader::endJoins()
{
    Level &current = level();
    if (current.notCount > 0) {
        addProblem(SearchProblem::StrayOperator, current.notPosition, current.notEnd,
                   zqFormat(zqLocalized("“%@” leaves out nothing; what it leaves out stands behind it."),
                            {typed(current.notPosition, current.notEnd)}));
        current.notCount = 0;
    }
    if (current.joinPart >= 0) {
        becomeProblem(current.joinPart, SearchProblem::StrayOperator,
                      zqFormat(zqLocalized("“%@” joins nothing; what it joins stands before and behind it."),
                               {m_result.parts.at(current.joinPart).text}));
        current.joinPart = -1;
    }
}

void Reader::open(const SearchLexeme &lexeme)
{
    Level inner;
    inner.isExcluded = level().notCount % 2 == 1;
    takeNots();
    level().notCount = 0;
    inner.openPart = m_result.parts.size();
    addPart(SearchPart::Kind::Bracket, lexeme.position, lexeme.end(), zqLocalized("Searched as one")).isNegated =
        inner.isExcluded;
    m_levels.push_back(std::move(inner));
}

void Reader::close(const SearchLexeme &lexeme)
{
    if (m_levels.size() == 1) {
        endJoins();
        return addProblem(SearchProblem::ClosedBracket, lexeme.position, lexeme.end(),
                          zqLocalized("This bracket closes nothing."));
    }
    endJoins();
    const qsizetype openPart = level().openPart;
    if (openPart == m_result.parts.size() - 1) {
        const qsizetype position = m_result.parts.takeLast().position;
        addProblem(SearchProblem::EmptyBrackets, position, lexeme.end(),
                   zqLocalized("There is nothing between the brackets."));
    } else {
        addPart(SearchPart::Kind::Bracket, lexeme.position, lexeme.end(), zqLocalized("Searched as one"));
    }
    closeLevel();
}

// Brackets around one clause are that clause, so that any number of them is no depth.
void Reader::closeLevel()
{
    const Level closed = std::move(m_levels.back());
    m_levels.pop_back();
    if (closed.operands.isEmpty()) {
        return addOperand(std::nullopt);
    }
    Operand operand = closed.operands.size() == 1 ? closed.operands.first() : grouped(closed);
    operand.isExcluded = operand.isExcluded != closed.isExcluded;
    const bool isTooDeep = operand.depth > deepestTree;
    if (isTooDeep) {
        becomeProblem(closed.openPart, SearchProblem::TooDeep,
                      zqLocalized("Too many brackets stand in these; what they hold is left out."));
    }
    addOperand(isTooDeep ? std::nullopt : std::optional(std::move(operand)));
}

Operand Reader::grouped(const Level &level) const
{
    Operand group;
    group.depth = 3; // what is left out of alternatives of all of them
    for (const Operand &each : level.operands) {
        group.depth = std::max(group.depth, each.depth + 3);
    }
    group.compose = [text = joined(level.operands)](const QString &operand, bool exclude) {
        return SearchQueries::composeQueryStringWithQuery(text, operand, exclude);
    };
    return group;
}

void Reader::finish()
{
    const SearchProblem last = m_result.parts.isEmpty() ? SearchProblem::None : m_result.parts.last().problem;
    const bool waits = level().joinPart != -1 || level().notCount > 0 || last == SearchProblem::NoArgument ||
                       last == SearchProblem::NoComparison;
    m_result.needsBrackets = m_result.needsBrackets || (waits && m_levels.size() == 1);
    if (!m_result.isCut) {
        m_result.closing += QString(qsizetype(m_levels.size()) - 1, u')');
    }
    while (m_levels.size() > 1) {
        endJoins();
        const qsizetype openPart = level().openPart;
        closeLevel();
        if (!m_result.isCut && m_result.parts.at(openPart).problem == SearchProblem::None) {
            becomeProblem(openPart, SearchProblem::OpenBracket, zqLocalized("This bracket is not closed."));
        }
    }
    endJoins();
}

// Half a character is none, and the store would keep another.
QString withoutHalves(QString text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isPair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (isPair) {
            ++i;
        } else if (text[i].isSurrogate()) {
            text[i] = QChar::ReplacementCharacter;
        }
    }
    return text;
}

} // namespace

SearchExpression SearchExpression::read(const QString &text, const SearchContext &context)
{
    return Reader(withoutHalves(text), context).read();
}

QList<SearchPart> SearchExpression::problems() const
{
    QList<SearchPart> wrong;
    for (const SearchPart &part : parts) {
        if (part.problem != SearchProblem::None) {
            wrong.append(part);
        }
    }
    return wrong;
}

#include "Kit/Persistence/ZQPredicateParser.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQPredicate.h"
#include "Kit/Persistence/ZQPredicateLexer.h"

#include <cmath>

using Op = ZQComparisonOperator;
using Modifier = ZQComparisonModifier;
using Token = ZQPredicateToken;
using Node = ZQPredicateNode;

namespace {

constexpr qsizetype maximumLength = 16 * 1024 * 1024; // characters; a search for duplicates grows with the library
constexpr int maximumParentheses = 200;
constexpr double referenceDate = 978307200; // 2001-01-01T00:00Z in seconds since 1970
constexpr double farthestDate = 1e12;       // seconds

class Parser
{
public:
    Parser(const QString &format, const QVariantList &arguments) : m_lexer(format), m_arguments(arguments)
    {
        advance();
    }

    ZQPredicateNodePtr parse()
    {
        ZQPredicateNodePtr node = alternatives();
        if (node && m_token.kind != Token::Kind::End) {
            return expected(zqLocalized("AND, OR or the end"));
        }
        return node;
    }
    const ZQError &error() const { return m_error; }

private:
    using Expression = std::optional<ZQExpression>;

    ZQPredicateNodePtr alternatives();
    ZQPredicateNodePtr conjunction();
    ZQPredicateNodePtr negation();
    ZQPredicateNodePtr parenthesized();
    ZQPredicateNodePtr comparison();
    ZQPredicateNodePtr wholeCondition();
    ZQPredicateNodePtr finishedComparison(ZQComparison &comparison, qsizetype leftPosition, qsizetype rightPosition);
    bool readOperator(ZQComparison *comparison);
    bool readOptions(ZQFoldOptions *options);

    Expression expression();
    Expression wordExpression();
    Expression cast();
    Expression list();
    Expression number(bool isNegative);
    Expression argument();
    Expression argumentExpression(const QVariant &value, const QString &conversion, qsizetype position);
    Expression keyPath(const QString &path, qsizetype position);

    void advance() { m_token = m_lexer.next(); }
    bool isSymbol(const char *text) const
    {
        return m_token.kind == Token::Kind::Symbol && m_token.text == QLatin1String(text);
    }
    bool isWord(const char *text) const
    {
        return m_token.kind == Token::Kind::Word && m_token.text.compare(QLatin1String(text), Qt::CaseInsensitive) == 0;
    }
    bool take(const char *symbol, const char *word = nullptr)
    {
        if (!isSymbol(symbol) && !(word && isWord(word))) {
            return false;
        }
        advance();
        return true;
    }

    std::nullptr_t fail(qsizetype position, const QString &reason);
    std::nullptr_t expected(const QString &what);
    ZQPredicateNodePtr checked(ZQPredicateNodePtr node)
    {
        return node ? node : fail(m_token.position, zqLocalized("the conditions are nested too deeply"));
    }

    ZQPredicateLexer m_lexer;
    Token m_token;
    const QVariantList &m_arguments;
    qsizetype m_nextArgument = 0;
    int m_parentheses = 0;
    ZQError m_error;
};

std::nullptr_t Parser::fail(qsizetype position, const QString &reason)
{
    if (m_error.isNull()) { // the first thing found wrong explains the others
        m_error = ZQError::with(QStringLiteral("ZQPredicate"), 1,
                                zqFormat(zqLocalized("The condition cannot be read at character %d:"), {position + 1}),
                                reason + u'.');
        m_error.userInfo.insert(QStringLiteral("position"), position + 1);
    }
    return nullptr;
}

std::nullptr_t Parser::expected(const QString &what)
{
    QString found = u'"' + m_token.text + u'"';
    if (m_token.kind == Token::Kind::Placeholder) {
        found = QStringLiteral("\"%") + m_token.text + u'"';
    } else if (m_token.kind == Token::Kind::End) {
        found = zqLocalized("the end");
    } else if (m_token.kind == Token::Kind::Invalid) {
        found = m_token.text;
    }
    return fail(m_token.position, zqFormat(zqLocalized("expected %@, found %@"), {what, found}));
}

ZQPredicateNodePtr Parser::alternatives()
{
    std::vector<ZQPredicateNodePtr> parts;
    do {
        ZQPredicateNodePtr part = conjunction();
        if (!part) {
            return nullptr;
        }
        parts.push_back(std::move(part));
    } while (take("||", "OR"));
    return checked(zqMakeCompound(Node::Kind::Or, parts));
}

ZQPredicateNodePtr Parser::conjunction()
{
    std::vector<ZQPredicateNodePtr> parts;
    do {
        ZQPredicateNodePtr part = negation();
        if (!part) {
            return nullptr;
        }
        parts.push_back(std::move(part));
    } while (take("&&", "AND"));
    return checked(zqMakeCompound(Node::Kind::And, parts));
}

ZQPredicateNodePtr Parser::negation()
{
    bool isNegated = false;
    while (take("!", "NOT")) {
        isNegated = !isNegated;
    }
    ZQPredicateNodePtr node = isSymbol("(") ? parenthesized() : comparison();
    return node && isNegated ? checked(zqMakeNot(node)) : node;
}

ZQPredicateNodePtr Parser::parenthesized()
{
    if (++m_parentheses > maximumParentheses) {
        return fail(m_token.position, zqLocalized("the conditions are nested too deeply"));
    }
    advance();
    ZQPredicateNodePtr node = alternatives();
    if (!node) {
        return nullptr;
    }
    if (!take(")")) {
        return expected(zqLocalized("\")\", AND or OR"));
    }
    --m_parentheses;
    return node;
}

ZQPredicateNodePtr Parser::comparison()
{
    for (const bool value : {true, false}) {
        if (isWord(value ? "TRUEPREDICATE" : "FALSEPREDICATE")) {
            advance();
            return zqMakeConstant(value);
        }
    }
    if (ZQPredicateNodePtr condition = wholeCondition()) {
        return condition;
    }
    ZQComparison result;
    for (const auto &spelling : zqModifierSpellings) {
        if (isWord(spelling.text)) {
            result.modifier = spelling.value;
            advance();
            break;
        }
    }
    const qsizetype leftPosition = m_token.position;
    Expression left = expression();
    if (!left || !readOperator(&result)) {
        return nullptr;
    }
    const qsizetype rightPosition = m_token.position;
    Expression right = expression();
    if (!right) {
        return nullptr;
    }
    result.left = std::move(*left);
    result.right = std::move(*right);
    return finishedComparison(result, leftPosition, rightPosition);
}

// The argument itself, when it is a condition and no value.
ZQPredicateNodePtr Parser::wholeCondition()
{
    const QVariant argument = m_token.kind == Token::Kind::Placeholder ? m_arguments.value(m_nextArgument) : QVariant();
    if (argument.metaType() != QMetaType::fromType<ZQPredicate>() || m_token.text != QStringLiteral("@")) {
        return nullptr;
    }
    ++m_nextArgument;
    advance();
    const auto predicate = std::make_shared<const ZQPredicate>(argument.value<ZQPredicate>());
    // However many places it has, its tree is there once.
    return predicate->isNull() ? zqMakeConstant(true) : ZQPredicateNodePtr(predicate, predicate->root());
}

bool Parser::readOperator(ZQComparison *comparison)
{
    for (const auto &spelling : zqOperatorSpellings) {
        if (isSymbol(spelling.text) || isWord(spelling.text)) {
            comparison->op = spelling.value;
            advance();
            return readOptions(&comparison->options);
        }
    }
    expected(zqLocalized("a comparison"));
    return false;
}

bool Parser::readOptions(ZQFoldOptions *options)
{
    if (!take("[")) {
        return true;
    }
    const QString letters = m_token.kind == Token::Kind::Word ? m_token.text.toLower() : QString();
    const bool isKnown = !letters.isEmpty() &&
                         std::all_of(letters.begin(), letters.end(), [](QChar c) { return c == u'c' || c == u'd'; });
    if (!isKnown) {
        expected(zqLocalized("the option c, d or cd"));
        return false;
    }
    options->caseInsensitive = letters.contains(u'c');
    options->diacriticInsensitive = letters.contains(u'd');
    advance();
    if (!take("]")) {
        expected(QStringLiteral("\"]\""));
        return false;
    }
    return true;
}

ZQPredicateNodePtr Parser::finishedComparison(ZQComparison &comparison, qsizetype leftPosition, qsizetype rightPosition)
{
    using Kind = ZQExpression::Kind;
    const bool isLeftList = comparison.left.kind == Kind::List;
    if (isLeftList && comparison.op == Op::Contains && comparison.right.kind != Kind::List &&
        comparison.modifier != Modifier::All && comparison.modifier != Modifier::None) {
        // A list that contains a value is the value's being in the list.
        std::swap(comparison.left, comparison.right);
        comparison.op = Op::In;
        comparison.modifier = Modifier::Direct;
    } else if (isLeftList) {
        return fail(leftPosition, zqLocalized("a list can only stand left of CONTAINS or right of IN and BETWEEN"));
    }
    const bool isRightList = comparison.right.kind == Kind::List;
    if (comparison.op == Op::Between && !(isRightList && comparison.right.elements.size() == 2)) {
        return fail(rightPosition, zqLocalized("BETWEEN needs a list of two values"));
    }
    if (isRightList && comparison.op != Op::In && comparison.op != Op::Between) {
        return fail(rightPosition, zqLocalized("a list can only stand left of CONTAINS or right of IN and BETWEEN"));
    }
    const QString *pattern = std::get_if<QString>(&comparison.right.constant);
    if (comparison.op == Op::Matches && pattern) {
        const QRegularExpression compiled = zqWholeStringExpression(*pattern, comparison.options);
        if (!compiled.isValid()) {
            return fail(rightPosition, zqFormat(zqLocalized("the pattern is invalid: %@"), {compiled.errorString()}));
        }
    }
    return zqMakeComparison(std::move(comparison));
}

Parser::Expression Parser::expression()
{
    switch (m_token.kind) {
    case Token::Kind::Word:
        return wordExpression();
    case Token::Kind::Number:
        return number(false);
    case Token::Kind::Placeholder:
        return argument();
    case Token::Kind::Text: {
        ZQExpression result{.constant = zqScalarFromVariant(m_token.text)};
        advance();
        return result;
    }
    default:
        break;
    }
    if (isSymbol("{")) {
        return list();
    }
    if (take("-")) {
        if (m_token.kind == Token::Kind::Number) {
            return number(true);
        }
        expected(zqLocalized("a number"));
        return std::nullopt;
    }
    expected(zqLocalized("a key path or a value"));
    return std::nullopt;
}

Parser::Expression Parser::wordExpression()
{
    struct Constant
    {
        const char *word;
        std::optional<qint64> number; // none: null
    };
    static constexpr Constant constants[] = {
        {"YES", 1}, {"TRUE", 1}, {"NO", 0}, {"FALSE", 0}, {"NIL", {}}, {"NULL", {}},
    };
    for (const Constant &constant : constants) {
        if (isWord(constant.word)) {
            advance();
            ZQExpression result;
            if (constant.number) {
                result.constant = *constant.number;
            }
            return result;
        }
    }
    if (isWord("CAST")) {
        return cast();
    }
    if (zqIsReservedWord(m_token.text) && !isWord("SELF")) {
        expected(zqLocalized("a key path or a value"));
        return std::nullopt;
    }
    const Token token = m_token;
    advance();
    return keyPath(token.text, token.position);
}

Parser::Expression Parser::keyPath(const QString &path, qsizetype position)
{
    ZQExpression result{.kind = ZQExpression::Kind::KeyPath};
    const QStringList parts = path.split(u'.');
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const bool isEscaped = parts[i].startsWith(u'#');
        const QString key = isEscaped ? parts[i].mid(1) : parts[i];
        const bool isLast = i + 1 == parts.size();
        if (!isEscaped && key.compare(QStringLiteral("SELF"), Qt::CaseInsensitive) == 0 && i == 0) {
            continue;
        }
        if (key == QStringLiteral("@count") && isLast && i > 0) {
            result.isCount = true;
            continue;
        }
        // Which values there are does not depend on how often each occurs, so the union of distinct ones is the path.
        if (key == QStringLiteral("@distinctUnionOfObjects") && !isLast && parts.last() != QStringLiteral("@count")) {
            continue;
        }
        const bool isKey = !key.isEmpty() && (key.at(0).isLetter() || key.at(0) == u'_') &&
                           std::all_of(key.begin(), key.end(), [](QChar c) {
                               return c.isLetterOrNumber() || c.isMark() || c.isSurrogate() || c == u'_';
                           });
        if (!isKey) {
            fail(position, zqFormat(zqLocalized("\"%@\" is not a key path"), {path}));
            return std::nullopt;
        }
        result.keys.append(key);
    }
    return result;
}

Parser::Expression Parser::number(bool isNegative)
{
    const QString text = (isNegative ? QStringLiteral("-") : QString()) + m_token.text;
    bool isWhole = false;
    const qint64 whole = text.toLongLong(&isWhole);
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    if (!isWhole && !isNumber && !std::isinf(value)) {
        expected(zqLocalized("a number"));
        return std::nullopt;
    }
    advance();
    return ZQExpression{.constant = isWhole ? ZQScalar(whole) : zqScalarFromDouble(value)};
}

Parser::Expression Parser::cast()
{
    advance();
    if (!take("(")) {
        expected(QStringLiteral("\"(\""));
        return std::nullopt;
    }
    const qsizetype position = m_token.position;
    const bool canCast = m_token.kind != Token::Kind::Word && !isSymbol("{");
    const Expression operand = canCast ? expression() : Expression();
    if (!operand || !take(",")) {
        expected(canCast ? QStringLiteral("\",\"") : zqLocalized("a number"));
        return std::nullopt;
    }
    const QString type = m_token.kind == Token::Kind::Text ? m_token.text : QString();
    const ZQScalar &value = operand->constant;
    ZQExpression result;
    if (type == QStringLiteral("NSDate")) {
        const qint64 *whole = std::get_if<qint64>(&value);
        const double *fraction = std::get_if<double>(&value);
        const double seconds = whole ? double(*whole) : (fraction ? *fraction : NAN);
        if (!(std::abs(seconds) <= farthestDate)) {
            fail(position, zqLocalized("a date needs a number of seconds since 2001 within 30 000 years"));
            return std::nullopt;
        }
        result.constant = ZQDateValue{qRound64(seconds * 1000) + qint64(referenceDate) * 1000};
    } else if (type == QStringLiteral("NSData") && std::holds_alternative<QString>(value)) {
        QByteArray data = QByteArray::fromBase64(std::get<QString>(value).toLatin1());
        result.constant = data.isNull() ? QByteArray("") : data;
    } else {
        expected(zqLocalized("the type \"NSDate\""));
        return std::nullopt;
    }
    advance();
    if (!take(")")) {
        expected(QStringLiteral("\")\""));
        return std::nullopt;
    }
    return result;
}

Parser::Expression Parser::list()
{
    advance();
    ZQExpression result{.kind = ZQExpression::Kind::List};
    while (!take("}")) {
        if (!result.elements.empty() && !take(",")) {
            expected(zqLocalized("\",\" or \"}\""));
            return std::nullopt;
        }
        const qsizetype position = m_token.position;
        if (isSymbol("{")) {
            fail(position, zqLocalized("a list cannot hold a list"));
            return std::nullopt;
        }
        Expression element = expression();
        if (!element) {
            return std::nullopt;
        }
        if (element->kind == ZQExpression::Kind::List) {
            fail(position, zqLocalized("a list cannot hold a list"));
            return std::nullopt;
        }
        result.elements.push_back(std::move(*element));
    }
    return result;
}

Parser::Expression Parser::argument()
{
    const Token token = m_token;
    if (m_nextArgument >= m_arguments.size()) {
        fail(token.position, zqFormat(zqLocalized("the argument for %@ is missing"), {QString(u'%' + token.text)}));
        return std::nullopt;
    }
    const QVariant value = m_arguments[m_nextArgument++];
    advance();
    return argumentExpression(value, token.text, token.position);
}

Parser::Expression Parser::argumentExpression(const QVariant &value, const QString &conversion, qsizetype position)
{
    if (conversion == QStringLiteral("K")) {
        return keyPath(value.toString(), position);
    }
    const auto isKnownScalar = [&](const QVariant &variant, ZQScalar *scalar) {
        bool isKnown = false;
        *scalar = zqScalarFromVariant(variant, &isKnown);
        if (!isKnown) {
            fail(position, zqFormat(zqLocalized("a value of the type %@ cannot be compared"),
                                    {QString::fromLatin1(variant.typeName())}));
        }
        return isKnown;
    };
    ZQExpression result;
    const std::optional<QVariantList> elements = zqListFromVariant(value);
    if (elements && conversion == QStringLiteral("@")) {
        result.kind = ZQExpression::Kind::List;
        for (const QVariant &element : *elements) {
            ZQExpression constant;
            if (!isKnownScalar(element, &constant.constant)) {
                return std::nullopt;
            }
            result.elements.push_back(std::move(constant));
        }
        return result;
    }
    if (!isKnownScalar(value, &result.constant)) {
        return std::nullopt;
    }
    const double *fraction = std::get_if<double>(&result.constant);
    if (conversion != QStringLiteral("@")) {
        if (!fraction && !std::holds_alternative<qint64>(result.constant)) {
            fail(position, zqFormat(zqLocalized("the argument for %@ is not a number"), {QString(u'%' + conversion)}));
            return std::nullopt;
        }
        const bool isInteger = QStringView(u"diu").contains(conversion.back());
        if (isInteger && fraction) {
            result.constant = zqScalarFromDouble(std::trunc(*fraction));
        }
    }
    return result;
}

} // namespace

ZQPredicateNodePtr zqParsePredicate(const QString &format, const QVariantList &arguments, ZQError *error)
{
    if (format.size() > maximumLength) {
        zqSetError(error, ZQError::with(QStringLiteral("ZQPredicate"), 2, zqLocalized("The condition is too long."),
                                        zqLocalized("Search for less at once.")));
        return nullptr;
    }
    Parser parser(format, arguments);
    ZQPredicateNodePtr node = parser.parse();
    if (!node) {
        zqSetError(error, parser.error());
    }
    return node;
}

#include "Classes/Browsing/Search/SearchTokenizer.h"

#include "Classes/Browsing/Search/ColorArgument.h"
#include "Classes/Browsing/Search/SearchSpan.h"

#include <algorithm>

using Kind = SearchLexeme::Kind;

namespace {

struct OperatorWord
{
    QStringView text;
    Kind kind;
};
constexpr OperatorWord operatorWords[] = {
    {u"AND", Kind::And}, {u"OR", Kind::Or}, {u"NOT", Kind::Not}, {u"==", Kind::Comparison}};

Kind kindOfWord(QStringView word)
{
    for (const OperatorWord &each : operatorWords) {
        if (each.text == word) {
            return each.kind;
        }
    }
    return Kind::Word;
}

constexpr QChar colon = u':'; // as "=", which is what other programs have there

bool isComparison(QChar c)
{
    return c == u'<' || c == u'=' || c == u'>';
}

} // namespace

bool SearchTokenizer::isBlank(QChar c)
{
    return c.isSpace() || c.category() == QChar::Other_Control;
}

qsizetype SearchTokenizer::skipBlanks(qsizetype position) const
{
    while (position < m_text.size() && isBlank(m_text[position])) {
        ++position;
    }
    return position;
}

// What stands there up to a blank or a bracket.
QStringView SearchTokenizer::chunkAt(qsizetype position) const
{
    const auto ends = [](QChar c) { return isBlank(c) || c == u'(' || c == u')'; };
    const auto end = std::find_if(m_text.begin() + position, m_text.end(), ends);
    return m_text.mid(position, end - m_text.begin() - position);
}

SearchLexeme SearchTokenizer::next()
{
    m_position = skipBlanks(m_position);
    if (m_position >= m_text.size()) {
        return {Kind::End, m_text.size(), 0};
    }
    const QChar following = at(m_position + 1);
    switch (m_text[m_position].unicode()) {
    case u'(':
        return symbol(Kind::Open);
    case u')':
        return symbol(Kind::Close);
    case u'-':
        return symbol(Kind::Not);
    case u'+':
        return symbol(Kind::And, m_position + 1 < m_text.size() && !isBlank(following) && following != u')');
    case u'"':
        return quotation();
    case u'#':
        return token();
    default:
        return word();
    }
}

SearchLexeme SearchTokenizer::symbol(Kind kind, bool isPrefix)
{
    SearchLexeme lexeme{kind, m_position++, 1};
    lexeme.isPrefix = isPrefix;
    return lexeme;
}

SearchLexeme SearchTokenizer::quotation()
{
    SearchLexeme lexeme{Kind::Word, m_position};
    lexeme.text = quotedText(lexeme);
    lexeme.length = m_position - lexeme.position;
    return lexeme;
}

QString SearchTokenizer::quotedText(SearchLexeme &lexeme)
{
    const qsizetype start = m_position + 1;
    const qsizetype close = m_text.indexOf(u'"', start);
    if (close == -1) {
        lexeme.unclosedQuote = m_position;
        m_position = m_text.size();
        return m_text.mid(start).toString();
    }
    m_position = close + 1;
    return m_text.mid(start, close - start).toString();
}

SearchLexeme SearchTokenizer::word()
{
    const QStringView chunk = chunkAt(m_position);
    SearchLexeme lexeme{kindOfWord(chunk), m_position, chunk.size(), chunk.toString()};
    m_position += chunk.size();
    return lexeme;
}

SearchLexeme SearchTokenizer::token()
{
    SearchLexeme lexeme{Kind::Token, m_position};
    const auto endsName = [](QChar c) {
        return isComparison(c) || c == colon || isBlank(c) || c == u'"' || c == u'(' || c == u')';
    };
    const auto nameEnd = std::find_if(m_text.begin() + m_position + 1, m_text.end(), endsName);
    const QString name = m_text.mid(m_position, nameEnd - m_text.begin() - m_position).toString();
    m_position += name.size();
    const auto readComparison = [this](qsizetype from) {
        if (at(from) == colon) {
            return m_text.mid(from, 1);
        }
        const auto end = std::find_if_not(m_text.begin() + from, m_text.end(), isComparison);
        return m_text.mid(from, end - m_text.begin() - from);
    };
    qsizetype comparisonAt = m_position;
    QStringView comparison = readComparison(comparisonAt);
    const SearchToken *named = SearchToken::named(name, true);
    if (comparison.isEmpty() && named && named->argument != SearchArgument::None) {
        const qsizetype behindBlanks = skipBlanks(m_position);
        const QStringView apart = readComparison(behindBlanks);
        // A text may begin with any other sign.
        if (named->compares() || apart == u"=" || apart == u"==") {
            comparisonAt = behindBlanks;
            comparison = apart;
        }
    }
    lexeme.comparison = comparison == QStringView(&colon, 1) ? QStringLiteral("=") : comparison.toString();
    lexeme.token = SearchToken::named(name, !comparison.isEmpty());
    m_position = comparison.isEmpty() ? m_position : comparisonAt + comparison.size();
    if (!lexeme.token) {
        m_position += chunkAt(m_position).size();
        lexeme.text = m_text.mid(lexeme.position, m_position - lexeme.position).toString();
    } else if (lexeme.token->argument != SearchArgument::None) {
        readArgument(lexeme);
    }
    lexeme.length = m_position - lexeme.position;
    return lexeme;
}

// Behind a token that has to compare and does not, only what can be nothing else is taken for its argument.
bool SearchTokenizer::isArgumentWord(QStringView chunk) const
{
    return chunk.front().isDigit() || SearchSpan::forText(chunk.toString(), m_today);
}

void SearchTokenizer::readArgument(SearchLexeme &lexeme)
{
    const bool isAttached = !lexeme.comparison.isEmpty() || at(m_position) == u'"';
    const qsizetype start = skipBlanks(m_position);
    lexeme.argumentPosition = isAttached || start > m_position ? start : -1;
    if (at(start) == u'"' && start < m_text.size()) {
        m_position = start;
        lexeme.text = quotedText(lexeme);
        lexeme.hasArgument = true;
        return;
    }
    const QStringView rest = m_text.mid(start);
    const QStringView typed = rest.startsWith(u'#') ? chunkAt(start) : QStringView();
    const auto code = typed.first(std::find(typed.begin(), typed.end(), u'~') - typed.begin());
    const bool isBegunCode = typed.size() > 1 && typed[1].isDigit(); // no token begins so: it is yet to be typed whole
    const bool isColor = lexeme.token->argument == SearchArgument::Color && (ColorArgument::isHex(code) || isBegunCode);
    if (isColor) {
        lexeme.text = typed.toString();
        lexeme.hasArgument = true;
        m_position = start + typed.size();
        return;
    }
    if (rest.startsWith(u'#') || rest.startsWith(u"-#") || rest.startsWith(u"+#")) { // before a look at all of it
        return;
    }
    const QStringView chunk = chunkAt(start);
    const bool joins = kindOfWord(chunk) != Kind::Word || chunk == u"+" || chunk == u"-";
    const bool isLacking = lexeme.token->compares() && lexeme.comparison.isEmpty();
    if (chunk.isEmpty() || joins || (isLacking && !isArgumentWord(chunk))) {
        return;
    }
    lexeme.text = chunk.toString();
    lexeme.hasArgument = true;
    m_position = start + chunk.size();
}

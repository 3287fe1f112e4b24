#include "Kit/Persistence/ZQPredicateLexer.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <array>

using Token = ZQPredicateToken;

namespace {

bool startsWord(QChar c)
{
    return c.isLetter() || c == u'_' || c == u'#' || c == u'@';
}

bool continuesWord(QChar c)
{
    return c.isLetterOrNumber() || c.isMark() || c.isSurrogate() || c == u'_';
}

// Longest first, so that "<=" is not read as "<".
constexpr std::array<QStringView, 22> symbols = {u"==", u"!=", u"<>", u"<=", u"=<", u">=", u"=>", u"&&",
                                                 u"||", u"=",  u"<",  u">",  u"!",  u"(",  u")",  u"{",
                                                 u"}",  u"[",  u"]",  u",",  u"-",  u"."};

} // namespace

Token ZQPredicateLexer::next()
{
    while (m_position < m_format.size() && m_format[m_position].isSpace()) {
        ++m_position;
    }
    const QChar c = at(m_position);
    if (m_position >= m_format.size()) {
        return {Token::Kind::End, {}, m_format.size()};
    }
    if (startsWord(c)) {
        return word();
    }
    if (c.isDigit() || (c == u'.' && at(m_position + 1).isDigit())) {
        return number();
    }
    if (c == u'"' || c == u'\'') {
        return quotedText();
    }
    if (c == u'%') {
        return placeholder();
    }
    const QStringView rest = m_format.mid(m_position);
    for (const QStringView symbol : symbols) {
        if (rest.startsWith(symbol)) {
            const Token token{Token::Kind::Symbol, symbol.toString(), m_position};
            m_position += symbol.size();
            return token;
        }
    }
    return {Token::Kind::Invalid, zqFormat(zqLocalized("an unknown character \"%@\""), {QString(c)}), m_position};
}

Token ZQPredicateLexer::word()
{
    const qsizetype start = m_position;
    do {
        m_position += m_position > start ? 1 : 0; // the dot
        if (at(m_position) == u'#' || at(m_position) == u'@') {
            ++m_position;
        }
        while (m_position < m_format.size() && continuesWord(m_format[m_position])) {
            ++m_position;
        }
    } while (at(m_position) == u'.' && startsWord(at(m_position + 1)));
    return {Token::Kind::Word, m_format.mid(start, m_position - start).toString(), start};
}

Token ZQPredicateLexer::number()
{
    const qsizetype start = m_position;
    const auto digits = [this] {
        while (at(m_position).unicode() < 0x80 && at(m_position).isDigit()) {
            ++m_position;
        }
    };
    digits();
    if (at(m_position) == u'.') {
        ++m_position;
        digits();
    }
    if (at(m_position) == u'e' || at(m_position) == u'E') {
        ++m_position;
        if (at(m_position) == u'+' || at(m_position) == u'-') {
            ++m_position;
        }
        digits();
    }
    const QString text = m_format.mid(start, m_position - start).toString();
    if (m_position == start || startsWord(at(m_position))) {
        return {Token::Kind::Invalid, zqLocalized("a malformed number"), start};
    }
    return {Token::Kind::Number, text, start};
}

Token ZQPredicateLexer::quotedText()
{
    const qsizetype start = m_position;
    const QChar quote = m_format[m_position++];
    QString text = QStringLiteral(""); // an empty literal is a text, not null
    while (m_position < m_format.size() && m_format[m_position] != quote) {
        if (m_format[m_position] != u'\\') {
            text += m_format[m_position++];
        } else if (!readEscape(&text)) {
            return {Token::Kind::Invalid, zqLocalized("a malformed \\u escape"), m_position};
        }
    }
    if (m_position >= m_format.size()) {
        return {Token::Kind::Invalid, zqLocalized("a quotation that is not closed"), start};
    }
    ++m_position;
    return {Token::Kind::Text, text, start};
}

bool ZQPredicateLexer::readEscape(QString *text)
{
    const QChar escaped = at(m_position + 1);
    if (escaped == u'u') {
        bool isHex = false;
        const QStringView digits = m_format.mid(m_position + 2, 4);
        const ushort unit = digits.toString().toUShort(&isHex, 16);
        if (!isHex || digits.size() != 4) {
            return false;
        }
        *text += QChar(unit);
        m_position += 6;
        return true;
    }
    constexpr QStringView letters = u"ntr";
    constexpr QStringView meanings = u"\n\t\r";
    const qsizetype index = letters.indexOf(escaped);
    if (m_position + 1 < m_format.size()) {
        *text += index >= 0 ? meanings[index] : escaped;
    }
    m_position += 2;
    return true;
}

Token ZQPredicateLexer::placeholder()
{
    const qsizetype start = m_position++;
    if (at(m_position) == u'@' || at(m_position) == u'K') {
        return {Token::Kind::Placeholder, m_format.mid(m_position++, 1).toString(), start};
    }
    const qsizetype conversion = m_position;
    while (at(m_position) == u'l' || at(m_position) == u'h' || at(m_position) == u'q') {
        ++m_position;
    }
    if (QStringView(u"diufFgGeE").contains(at(m_position)) && m_position < m_format.size()) {
        ++m_position;
        return {Token::Kind::Placeholder, m_format.mid(conversion, m_position - conversion).toString(), start};
    }
    return {Token::Kind::Invalid, zqLocalized("an unknown placeholder"), start};
}

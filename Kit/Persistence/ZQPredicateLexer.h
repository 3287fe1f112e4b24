#pragma once

#include <QString>

// The words of the format language.
struct ZQPredicateToken
{
    enum class Kind {
        End,
        Word,        // a key path or keyword; "#" before an escaped key is kept
        Number,      // without a sign
        Text,        // a quoted literal, unescaped
        Placeholder, // what follows the %
        Symbol,      // punctuation or an operator
        Invalid,     // `text` says what is wrong
    };

    Kind kind = Kind::End;
    QString text;
    qsizetype position = 0; // of its first character, from 0
};

class ZQPredicateLexer
{
public:
    explicit ZQPredicateLexer(QStringView format) : m_format(format) {}
    ZQPredicateToken next();

private:
    ZQPredicateToken word();
    ZQPredicateToken number();
    ZQPredicateToken quotedText();
    ZQPredicateToken placeholder();
    bool readEscape(QString *text);
    QChar at(qsizetype index) const { return index < m_format.size() ? m_format[index] : QChar(); }

    QStringView m_format;
    qsizetype m_position = 0;
};

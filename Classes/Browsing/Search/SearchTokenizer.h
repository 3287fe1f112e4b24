#pragma once

#include "Classes/Browsing/Search/SearchToken.h"

#include <QDate>

// A piece of a search text: a word, a token with its argument, an operator or a bracket.
struct SearchLexeme
{
    enum class Kind {
        End,
        Word,
        Token,
        Open,
        Close,
        And,
        Or,
        Not,
        Comparison, // "==" that stands alone
    };

    Kind kind = Kind::End;
    qsizetype position = 0;
    qsizetype length = 0;
    QString text = {}; // of a word or an argument, without its quotes; all of an unknown token
    // A quotation that is not closed reaches to the end of the text, from here. -1: none.
    qsizetype unclosedQuote = -1;
    bool isPrefix = false; // "+" right before something

    const SearchToken *token = nullptr; // null: unknown
    QString comparison = {};            // as typed; "=" for ":"
    bool hasArgument = false;
    qsizetype argumentPosition = -1; // where it stands or is to stand, behind "#tag=" or a blank. -1: nowhere yet

    qsizetype end() const { return position + length; }
};

// Splits a search text at blanks, brackets and quotes; a token takes its argument along. Linear time. Any thread.
class SearchTokenizer
{
public:
    SearchTokenizer(QStringView text, const QDate &today) : m_text(text), m_today(today) {}
    SearchLexeme next();

    static bool isBlank(QChar c); // control characters are

private:
    SearchLexeme symbol(SearchLexeme::Kind kind, bool isPrefix = false);
    SearchLexeme quotation();
    SearchLexeme word();
    SearchLexeme token();
    void readArgument(SearchLexeme &lexeme);
    bool isArgumentWord(QStringView chunk) const;
    QString quotedText(SearchLexeme &lexeme);
    QStringView chunkAt(qsizetype position) const;
    qsizetype skipBlanks(qsizetype position) const;
    QChar at(qsizetype index) const { return index < m_text.size() ? m_text[index] : QChar(); }

    QStringView m_text;
    QDate m_today;
    qsizetype m_position = 0;
};

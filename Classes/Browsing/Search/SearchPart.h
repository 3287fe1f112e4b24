#pragma once

#include <QString>

enum class SearchProblem {
    None,
    UnknownToken,
    NoComparison, // one is needed, or none is allowed
    NoArgument,
    BadNumber,
    BadRating,
    BadDate,
    BadColor,
    BadSize,
    UnclosedQuote,
    EmptyQuotes,
    OpenBracket,
    ClosedBracket,
    EmptyBrackets,
    StrayOperator,
    TooDeep,
    TooMuch,
};

// A piece of a search text, as a chip shows it. Parts come in the order of the text and do not overlap.
struct SearchPart
{
    enum class Kind { Word, Token, Operator, Bracket, Problem };

    Kind kind = Kind::Word;
    qsizetype position = 0; // of a word or token from what negates it
    qsizetype length = 0;
    QString text;           // as it was typed
    bool isNegated = false; // "-" or NOT stands before it; of a bracket, before all of what it holds
    QString meaning;        // one line, localised: what it finds, or what is wrong
    SearchProblem problem = SearchProblem::None;
    // Of words and tokens that search: equal for two that find the same, whatever their spelling.
    QString normalized;

    bool isClause() const { return kind == Kind::Word || kind == Kind::Token; }
    qsizetype end() const { return position + length; }
};

#pragma once

#include "Classes/Browsing/Search/SearchContext.h"
#include "Classes/Browsing/Search/SearchPart.h"
#include "Classes/Browsing/Search/SearchTokenizer.h"

#include <functional>

// What a word or a token with its argument asks for, or what is wrong with it. Any thread.
struct SearchClause
{
    SearchProblem problem = SearchProblem::None;
    QString meaning;              // or the problem, as a sentence
    QString normalized;           // equal for two that find the same
    int cost = 1;                 // comparisons, about
    bool comparesDigests = false; // with those of the content
    // The wrapped condition, behind "AND", "OR" or, when it is the first, nothing. Null with a problem.
    std::function<QString(const QString &operand, bool exclude)> compose;

    // `lexeme` is a word or a token.
    static SearchClause ofLexeme(const SearchLexeme &lexeme, const SearchContext &context);
};

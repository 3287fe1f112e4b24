#pragma once

#include "Classes/Browsing/Search/SearchExpression.h"
#include "Classes/Browsing/Search/SearchQueries.h"
#include "Kit/Persistence/ZQPredicate.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"

// The search language, as the search field, the refine bar, saved searches and the command line speak it: words and
// tokens ("#width>1000", "#tag draft", `SearchToken`), joined by AND, OR and brackets, left out by NOT or "-", and
// texts in double quotes that are taken as they are. Any thread.
class SearchManager : public SearchQueries
{
public:
    // Characters of a text that is typed or saved.
    static constexpr qsizetype longestText = ZQSidebarSmartFolder::longestSearchText;

    // The condition of a text on the rows of `andArrayController`; empty when there is nothing to search for.
    static QString predicateStringForSearchString(const QString &searchString, const SearchContext &andArrayController);
    // The same as a predicate; null when there is nothing to search for, which is everything.
    static ZQPredicate predicateForSearchString(const QString &searchString, const SearchContext &andArrayController);

    // Whether the text searches for the words and tokens of `tokenText`, whatever their spelling.
    static bool contains(const QString &searchText, const QString &tokenText);
    // The text with `tokenText` behind it, so that it finds less; or without it, where the text contains it. The rest
    // stays as it was typed, in brackets where it would mean something else.
    static QString toggled(const QString &searchText, const QString &tokenText);
    // The text without the part at `index` of its `SearchExpression`'s parts, and without what only joined it.
    static QString without(const QString &searchText, qsizetype index);
    // The text as a part of one that says more: closed, and in brackets where it would mean something else.
    static QString asPart(const QString &text);
    // `argument` as it is typed behind a token: in quotes where it needs them.
    static QString quoted(const QString &argument);
    // Whether the name, quoted, asks for itself: it is not empty and nothing in it is taken for a pattern or lost.
    static bool isPlain(const QString &name);
};

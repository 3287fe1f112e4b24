#pragma once

#include "Classes/Browsing/Search/SearchContext.h"
#include "Classes/Browsing/Search/SearchPart.h"

#include <QList>

// A search text, read: NOT binds closest, then AND, which is also meant where nothing stands between two words, then
// OR. What is wrong is named and left out, and the rest still searches.
struct SearchExpression
{
    // Takes linear time, whatever is typed, and makes a condition that `ZQPredicate` reads and the store runs. Any
    // thread.
    static SearchExpression read(const QString &text, const SearchContext &context);

    QString predicateString;        // empty: nothing to search for
    qsizetype digestConditions = 0; // where the context leaves out digests, the "%@" in that, or more
    QList<SearchPart> parts;
    // What has to stand behind the text before something is added to it: a quote, brackets.
    QString closing;
    // Whether what is added narrows what is found only when brackets hold all before it: an OR joins it, or its last
    // part waits for more.
    bool needsBrackets = false;
    // The text was longer than can be searched; `parts` say where it was cut.
    bool isCut = false;

    QList<SearchPart> problems() const;
};

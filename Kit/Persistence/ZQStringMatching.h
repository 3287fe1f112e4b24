#pragma once

#include <QRegularExpression>
#include <QString>

// The text comparisons of predicates: the one implementation that evaluation in memory and the store's SQL functions
// share.

struct ZQFoldOptions
{
    bool caseInsensitive = false;
    bool diacriticInsensitive = false;

    bool any() const { return caseInsensitive || diacriticInsensitive; }
    int flags() const { return (caseInsensitive ? 1 : 0) | (diacriticInsensitive ? 2 : 0); }
    static ZQFoldOptions fromFlags(int flags) { return {(flags & 1) != 0, (flags & 2) != 0}; }
    friend bool operator==(const ZQFoldOptions &, const ZQFoldOptions &) = default;
};

// Whether the whole of `text` fits `pattern`: * is any run of characters, ? one character (a surrogate pair is one),
// and a backslash takes the next character literally. Time is at most the product of the lengths.
bool zqMatchesWildcards(QStringView text, QStringView pattern);

// The regular expression for a whole-string match that gives up instead of running away. Invalid when `pattern` is.
QRegularExpression zqWholeStringExpression(const QString &pattern, ZQFoldOptions options);
// The expressions last used by a thread are kept compiled. False when the pattern is invalid or the match was given up.
bool zqMatchesExpression(const QString &text, const QString &pattern, ZQFoldOptions options);

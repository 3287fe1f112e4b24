#pragma once

#include <QString>

// How much of a text from elsewhere (a title, a name, what somebody typed) a sentence quotes, in UTF-16 units.
inline constexpr qsizetype zqLongestQuotation = 240;

// `text` with an ellipsis in its middle when it is longer than `longest` units, so that both what it begins and what it
// ends with are seen. No character is cut: neither a surrogate pair nor what combines with the one before. Costs the
// same for a text of any length. Any thread.
QString zqShortened(const QString &text, qsizetype longest = zqLongestQuotation);

// What others say, with a full stop where it has no end of its own, so that a sentence can follow it.
QString zqSentence(const QString &text);

// The same as `zqShortened`, for a label of a fixed width: a run without blanks gets places to break that are not seen.
QString zqForLabel(const QString &text, qsizetype longest);

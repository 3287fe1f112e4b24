#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

// The time a date of a search means, from its first to its last millisecond, in local time.
struct SearchSpan
{
    QDateTime start;
    QDateTime end;
    // What ">" starts after: the end, so that later than a year is not in it. Of a date as 25/12/2012 it is that day's
    // beginning, which is what this form has always meant, and of the last days it is theirs, since nothing is later.
    QDateTime after;

    // "dd/MM/yyyy", "today", "yesterday" (or in the current language), "7d" for the last seven days and today, "2026",
    // "2026-03", "2026-03-14". Nothing for what is no date.
    static std::optional<SearchSpan> forText(const QString &text, const QDate &today);
};

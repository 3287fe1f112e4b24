#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

// The time a date of a search means, from its first to its last millisecond, in local time. In every form "<" ends and
// ">" begins at the first: "since" the date.
struct SearchSpan
{
    QDateTime start;
    QDateTime end;

    // "dd/MM/yyyy", "today", "yesterday" (or in the current language), "7d" for the last seven days and today, "2026",
    // "2026-03", "2026-03-14". Nothing for what is no date.
    static std::optional<SearchSpan> forText(const QString &text, const QDate &today);
};

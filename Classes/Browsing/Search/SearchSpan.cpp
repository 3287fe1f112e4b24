#include "Classes/Browsing/Search/SearchSpan.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QRegularExpression>
#include <QStringList>

namespace {

constexpr int mostDays = 36500; // farther back is as good as always

std::optional<SearchSpan> daysBetween(const QDate &first, const QDate &last)
{
    if (!first.isValid() || !last.isValid() || first.year() < 1) {
        return std::nullopt;
    }
    return SearchSpan{first.startOfDay(), last.endOfDay()};
}

std::optional<SearchSpan> lastDays(const QString &number, const QDate &today)
{
    const int days = number.toInt();
    if (days < 1 || days > mostDays) {
        return std::nullopt;
    }
    return daysBetween(today.addDays(-days), today);
}

bool isWord(const QString &text, const char *word)
{
    return QStringList{QLatin1StringView(word), zqLocalized(word)}.contains(text, Qt::CaseInsensitive);
}

} // namespace

std::optional<SearchSpan> SearchSpan::forText(const QString &text, const QDate &today)
{
    static const QRegularExpression slashed(QStringLiteral("^([0-9]{1,2})/([0-9]{1,2})/([0-9]{4})$"));
    static const QRegularExpression ago(QStringLiteral("^([0-9]{1,5})[dD]$"));
    static const QRegularExpression yearFirst(QStringLiteral("^([0-9]{4})(?:-([0-9]{2})(?:-([0-9]{2}))?)?$"));
    if (isWord(text, zqKey("today"))) {
        return daysBetween(today, today);
    }
    if (isWord(text, zqKey("yesterday"))) {
        return daysBetween(today.addDays(-1), today.addDays(-1));
    }
    if (const auto match = ago.match(text); match.hasMatch()) {
        return lastDays(match.captured(1), today);
    }
    if (const auto match = slashed.match(text); match.hasMatch()) {
        const QDate day(match.captured(3).toInt(), match.captured(2).toInt(), match.captured(1).toInt());
        return daysBetween(day, day);
    }
    const auto match = yearFirst.match(text); // of no date the year is 0, which there is none of
    const bool hasMonth = match.hasCaptured(2);
    const bool hasDay = match.hasCaptured(3);
    const QDate first(match.captured(1).toInt(), hasMonth ? match.captured(2).toInt() : 1,
                      hasDay ? match.captured(3).toInt() : 1);
    const QDate next = hasDay ? first.addDays(1) : hasMonth ? first.addMonths(1) : first.addYears(1);
    return daysBetween(first, next.addDays(-1));
}

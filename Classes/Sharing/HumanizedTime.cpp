#include "Classes/Sharing/HumanizedTime.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

constexpr const char *table = "HumanizedTimeLocalizable";

// The English of the table: without a translation a key stands for itself.
struct Word
{
    const char *key;
    const char *english;
};

const std::array words = {Word{"LaterKey", "from now"}, Word{"AgoKey", "ago"},         Word{"YearKey", "1 year"},
                          Word{"YearsKey", "years"},    Word{"DayKey", "day"},         Word{"DaysKey", "days"},
                          Word{"AboutKey", "about"},    Word{"HourKey", "an hour"},    Word{"HoursKey", "hours"},
                          Word{"MinuteKey", "minute"},  Word{"MinutesKey", "minutes"}, Word{"SecondKey", "seconds"}};

QString localizedWord(const char *key)
{
    const auto *const word =
        std::find_if(words.begin(), words.end(), [key](const Word &each) { return std::strcmp(each.key, key) == 0; });
    const QString translated = QCoreApplication::translate(table, key);
    return word != words.end() && translated == QLatin1String(key) ? QString::fromLatin1(word->english) : translated;
}

qint64 whole(double value)
{
    return std::llabs(qint64(std::trunc(value)));
}

} // namespace

QString zqHumanizedTimeDifference(double seconds, const std::function<QString(const char *key)> &localized)
{
    constexpr double year = 31536000;
    constexpr qint64 day = 86400;
    const QString suffix = localized(seconds >= 0 ? "LaterKey" : "AgoKey");
    const qint64 years = whole(seconds / year);
    const qint64 days = whole(seconds / double(day));
    const qint64 rest = whole(seconds) - days * day;
    const qint64 hours = rest / 3600;
    const qint64 minutes = (rest - hours * 60) / 60; // only shown where there are no hours
    const auto counted = [&](qint64 count, const char *key) {
        return zqFormat(QStringLiteral("%d %@ %@"), {count, localized(key), suffix});
    };
    if (years >= 2) {
        return counted(years, "YearsKey");
    }
    if (years == 1) {
        return zqFormat(QStringLiteral("%@ %@"), {localized("YearKey"), suffix});
    }
    if (days >= 1) {
        const char *const key = days == 1 ? "DayKey" : "DaysKey";
        return hours == 0 ? counted(days, key)
                          : zqFormat(QStringLiteral("%d %@ %d %@ %@"),
                                     {days, localized(key), hours, localized("HoursKey"), suffix});
    }
    if (hours == 1) {
        return zqFormat(QStringLiteral("%@ %@ %@"), {localized("AboutKey"), localized("HourKey"), suffix});
    }
    if (hours >= 2) {
        return counted(hours, "HoursKey");
    }
    return minutes == 0 ? zqFormat(QStringLiteral("%@ %@"), {localized("SecondKey"), suffix})
                        : counted(minutes, minutes == 1 ? "MinuteKey" : "MinutesKey");
}

QString stringWithHumanizedTimeDifference(const QDateTime &date, const QDateTime &now)
{
    return zqHumanizedTimeDifference(double(now.msecsTo(date)) / 1000, localizedWord);
}

#include "Classes/Sharing/HumanizedTime.h"

#include <QCoreApplication>
#include <QTranslator>

#include <gtest/gtest.h>

#include <cstring>

namespace {

// A translation of one word.
class German : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *sourceText, const char *, int) const override
    {
        const bool isDays =
            std::strcmp(context, "HumanizedTimeLocalizable") == 0 && std::strcmp(sourceText, "DaysKey") == 0;
        return isDays ? QStringLiteral("Tage") : QString();
    }
};

} // namespace

TEST(HumanizedTime, WordsByTheirKeys)
{
    constexpr double minute = 60;
    constexpr double hour = 3600;
    constexpr double day = 86400;
    constexpr double year = 31536000;
    const struct
    {
        double seconds;
        const char *text;
    } cases[] = {
        {0, "SecondKey LaterKey"},
        {-0.4, "SecondKey AgoKey"},
        {-45, "SecondKey AgoKey"},
        {59.9, "SecondKey LaterKey"},
        {-minute, "1 MinuteKey AgoKey"},
        {119, "1 MinuteKey LaterKey"},
        {-2 * minute, "2 MinutesKey AgoKey"},
        {-hour + 1, "59 MinutesKey AgoKey"},
        {-hour, "AboutKey HourKey AgoKey"},
        {2 * hour - 1, "AboutKey HourKey LaterKey"},
        {-2 * hour, "2 HoursKey AgoKey"},
        {-day + 1, "23 HoursKey AgoKey"},
        {-day, "1 DayKey AgoKey"},
        {-day - hour + 1, "1 DayKey AgoKey"},
        {-25 * hour, "1 DayKey 1 HoursKey AgoKey"},
        {-2 * day, "2 DaysKey AgoKey"},
        {3 * day + 5 * hour, "3 DaysKey 5 HoursKey LaterKey"},
        {-year + 1, "364 DaysKey 23 HoursKey AgoKey"},
        {-year, "YearKey AgoKey"},
        {-2 * year, "2 YearsKey AgoKey"},
        {30 * year + day, "30 YearsKey LaterKey"},
    };
    for (const auto &each : cases) {
        EXPECT_EQ(zqHumanizedTimeDifference(each.seconds, [](const char *key) { return QString::fromLatin1(key); }),
                  QString::fromLatin1(each.text))
            << each.seconds;
    }
    const QDateTime now = QDateTime::currentDateTimeUtc();
    EXPECT_EQ(stringWithHumanizedTimeDifference(now.addSecs(-25 * 3600), now), QStringLiteral("1 day 1 hours ago"));
    EXPECT_EQ(stringWithHumanizedTimeDifference(now.addMSecs(-45'200), now), QStringLiteral("seconds ago"));
    EXPECT_EQ(stringWithHumanizedTimeDifference(now.addSecs(-5400), now), QStringLiteral("about an hour ago"));
}

TEST(HumanizedTime, TranslationsAreFoundByTheKeys)
{
    German german;
    ASSERT_TRUE(QCoreApplication::installTranslator(&german));
    const QDateTime now = QDateTime::currentDateTimeUtc();
    EXPECT_EQ(stringWithHumanizedTimeDifference(now.addDays(-3), now), QStringLiteral("3 Tage ago"));
    QCoreApplication::removeTranslator(&german);
}

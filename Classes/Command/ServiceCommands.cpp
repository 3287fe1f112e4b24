// What Zelto does beside a library: new versions, reports of crashes, counts, and starting at login.

#include "Classes/Application/UpdateChannel.h"
#include "Classes/Command/Commands.h"
#include "Classes/Services/CrashReports.h"
#include "Classes/Services/LaunchAtLogin.h"
#include "Classes/Services/SoftwareUpdater.h"
#include "Classes/Services/UsageCounts.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQFeatures.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonObject>

#include <optional>

namespace {

QString utc(const QDateTime &date)
{
    return date.toUTC().toString(Qt::ISODate);
}

QJsonObject objectOf(const UpdateAnswer &answer)
{
    const UpdateFeed &feed = *answer.feed;
    return {{QStringLiteral("version"), answer.version},
            {QStringLiteral("newest"), feed.version},
            {QStringLiteral("isNewer"), answer.kind == UpdateAnswer::Kind::Newer},
            {QStringLiteral("date"), utc(feed.date)},
            {QStringLiteral("page"), feed.page.toString()},
            {QStringLiteral("notes"), feed.notes}};
}

} // namespace

int zqRunUpdatesCheck(const QString &channel, CommandContext &context)
{
    const QString place = UpdateChannel::feedOf(channel.isEmpty() ? UpdateChannel::chosen(false) : channel);
    const UpdateCheck::Settings settings = UpdateCheck::settingsFor(place);
    const QString whyNot = SoftwareUpdater::whyNot(settings, QCoreApplication::applicationFilePath());
    if (!whyNot.isEmpty()) {
        return context.fail(whyNot);
    }
    const UpdateAnswer answer = UpdateCheck::perform(settings);
    if (answer.kind == UpdateAnswer::Kind::Failed) {
        return context.fail(answer.text());
    }
    const bool isNewer = answer.kind == UpdateAnswer::Kind::Newer;
    if (context.json) {
        context.printJSON(objectOf(answer));
    } else {
        context.print(answer.text());
        if (isNewer) {
            context.print(answer.feed->page.toString());
        }
    }
    return isNewer ? 1 : 0;
}

int zqRunReportsList(CommandContext &context)
{
    const CrashReports reports;
    const auto found = reports.all();
    QJsonArray all;
    for (const CrashReports::Report &report : found) {
        if (context.json) {
            all.append(QJsonObject{{QStringLiteral("file"), report.path},
                                   {QStringLiteral("date"), utc(report.date)},
                                   {QStringLiteral("isNew"), report.isNew},
                                   {QStringLiteral("text"), reports.text(report)}});
        } else {
            context.print(utc(report.date) + u'\t' + report.path +
                          (report.isNew ? u'\t' + zqLocalized("new") : QString()));
        }
    }
    if (context.json) {
        context.printJSON(all);
    } else if (found.isEmpty()) {
        context.note(zqLocalized("there is no report of a crash"));
    }
    return 0;
}

int zqRunReportsShow(CommandContext &context)
{
    const CrashReports reports;
    const auto all = reports.all();
    if (all.isEmpty()) {
        return context.fail(zqLocalized("there is no report of a crash"));
    }
    context.output += reports.text(all.first()).toUtf8();
    return 0;
}

int zqRunReportsErase(CommandContext &context)
{
    const CrashReports reports;
    for (const CrashReports::Report &report : reports.all()) {
        if (ZQError error; !reports.remove(report, &error)) {
            return context.fail(error.localizedDescription());
        }
    }
    return 0;
}

int zqRunUsageShow(CommandContext &context)
{
    ZQError error;
    const UsageCounts::Days days = UsageCounts().days(&error);
    if (!error.isNull()) {
        return context.fail(error.localizedDescription());
    }
    QJsonObject all;
    for (auto day = days.cbegin(); day != days.cend(); ++day) {
        const QString date = day.key().toString(Qt::ISODate);
        QJsonObject features;
        for (auto count = day->cbegin(); count != day->cend(); ++count) {
            features.insert(count.key(), count.value());
            if (!context.json) {
                context.print(date + u'\t' + QString::number(count.value()) + u'\t' + zqTitleOfFeature(count.key()));
            }
        }
        all.insert(date, features);
    }
    if (context.json) {
        context.printJSON(all);
    } else if (days.isEmpty()) {
        const bool counts = ZQUserDefaults::standardUserDefaults().boolForKey(UsageCounts::countsKey);
        context.note(counts ? zqLocalized("nothing was counted yet")
                            : zqLocalized("nothing is counted; `zelto defaults write CountsUsage true` begins it"));
    }
    return 0;
}

int zqRunUsageErase(CommandContext &context)
{
    ZQError error;
    return UsageCounts().erase(&error) ? 0 : context.fail(error.localizedDescription());
}

int zqRunAutostartShow(CommandContext &context)
{
    context.print(LaunchAtLogin().isOn() ? QStringLiteral("on") : QStringLiteral("off"));
    return 0;
}

int zqRunAutostartSet(bool isOn, CommandContext &context)
{
    LaunchAtLogin launch;
    std::optional<ZQError> answer;
    launch.set(isOn, [&answer](const ZQError &error) { answer = error; });
    zqRunMainLoopUntil([&] { return answer.has_value() || !context.isWanted(); }); // the desktop may ask the person
    return answer && answer->isNull()
               ? 0
               : context.fail(answer ? answer->localizedDescription() : zqLocalized("it was given up"));
}

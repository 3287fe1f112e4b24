// How `zelto updates`, `zelto reports`, `zelto usage` and `zelto autostart` are written on a command line.

#include "Classes/Command/CommandLine.h"
#include "Classes/Command/Commands.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

void CommandLine::defineServices()
{
    const auto word = std::make_shared<std::string>();
    const auto addAction = [this](CLI::App *of, const char *name, const char *help,
                                  std::function<int(CommandContext &)> run) {
        CLI::App *action = of->add_subcommand(name, help);
        action->callback([this, run = std::move(run)] {
            m_needsLibrary = false;
            m_run = run;
        });
        return action;
    };

    CLI::App *updates = m_app->add_subcommand("updates", "Look for new versions of Zelto");
    updates->require_subcommand(1);
    CLI::App *check = addAction(
        updates, "check", "Ask which version is the newest; exit status 1 when it is newer than this one",
        [word](CommandContext &context) { return zqRunUpdatesCheck(QString::fromStdString(*word), context); });
    check->add_option("--channel", *word, "Instead of the one of the preferences")
        ->check(CLI::IsMember({"release", "beta", "test"}));
    check->add_flag("--json", m_json, "Print one object: version, newest, isNewer, date, page, notes");

    CLI::App *reports = m_app->add_subcommand("reports", "See the reports of crashes that are kept");
    reports->require_subcommand(1);
    addAction(reports, "list", "List them, the newest first: date, file, and whether it is new", &zqRunReportsList)
        ->add_flag("--json", m_json, "Print an array of objects: file, date, isNew, text");
    addAction(reports, "show", "Print the newest", &zqRunReportsShow);
    addAction(reports, "erase", "Remove all of them", &zqRunReportsErase);

    CLI::App *usage = m_app->add_subcommand("usage", "See what was counted of the use of features");
    usage->require_subcommand(1);
    addAction(usage, "show", "Print the counts: day, times, feature", &zqRunUsageShow)
        ->add_flag("--json", m_json, "Print one object: a day each, with an object of features and their counts");
    addAction(usage, "erase", "Remove all counts", &zqRunUsageErase);

    CLI::App *autostart = m_app->add_subcommand("autostart", "Start Zelto when you log in, or not");
    autostart->require_subcommand(1);
    addAction(autostart, "show", "Print on or off", &zqRunAutostartShow);
    addAction(autostart, "on", "Start it", [](CommandContext &context) { return zqRunAutostartSet(true, context); });
    addAction(autostart, "off", "Do not", [](CommandContext &context) { return zqRunAutostartSet(false, context); });
}

// How the commands that print what there is are written on a command line: the reference, the manual page, and what
// shells complete with.

#include "Classes/Command/CommandDescription.h"
#include "Classes/Command/CommandLine.h"

#include <QCoreApplication>

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

void CommandLine::defineDocumentation()
{
    CLI::App *reference = add("markdown", "Print this reference as Markdown", false, [this](CommandContext &context) {
        context.output += markdown().toUtf8();
        return 0;
    });
    reference->group(""); // for the documentation's own script
    add("man", "Print the manual page, as man reads it", false, [this](CommandContext &context) {
        context.output +=
            zqCommandsAsManual(zqDescribeCommands(*m_app), QCoreApplication::applicationVersion()).toUtf8();
        return 0;
    });
    const auto shell = std::make_shared<std::string>();
    CLI::App *completions =
        add("completions", "Print what a shell completes the commands, options and values with", false,
            [this, shell](CommandContext &context) {
                context.output +=
                    zqCompletionsForShell(QString::fromStdString(*shell), zqDescribeCommands(*m_app)).toUtf8();
                return 0;
            });
    std::vector<std::string> shells;
    for (const QString &each : zqCompletedShells()) {
        shells.push_back(each.toStdString());
    }
    completions->add_option("shell", *shell, "The shell it is for")->required()->check(CLI::IsMember(shells));
}

// How `zelto open-url` is written on a command line.

#include "Classes/Command/CommandLine.h"
#include "Classes/Command/Commands.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

void CommandLine::defineOpenURL()
{
    const auto url = std::make_shared<std::string>();
    CLI::App *command =
        add("open-url",
            "Do what a browser hands over: import images of a page, or capture it; goes to the window "
            "when one is open, and else only imports",
            true, [url](CommandContext &context) { return zqRunOpenURL(QString::fromStdString(*url), context); });
    command->add_option("url", *url, "As the browser's extension writes it")
        ->required()
        ->type_name("zelto:import:JSON");
    command->add_flag("--json", m_json, "Print what became of the images as `zelto download` does");
}

// How `zelto open-url` is written on a command line.

#include "Classes/Command/CommandLine.h"
#include "Classes/Command/Commands.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace {

struct Arguments
{
    std::string url; // what CLI11 parses into
    bool isAgreed = false;
};

} // namespace

void CommandLine::defineOpenURL()
{
    const auto given = std::make_shared<Arguments>();
    CLI::App *command =
        add("open-url", "Do what a browser hands over: import images of a page, or, where a window is open, capture it",
            true, [given](CommandContext &context) {
                return zqRunOpenURL({.url = QString::fromStdString(given->url), .isAgreed = given->isAgreed}, context);
            });
    command->add_option("url", given->url, "As the browser's extension writes it")
        ->required()
        ->type_name("zelto:import:JSON");
    command->add_flag("--yes", given->isAgreed,
                      "Import without asking what comes from other hosts than the page's, or from a page on this "
                      "computer or its network; else an open window asks, and without one nothing is imported");
    command->add_flag("--json", m_json,
                      "Print what became of the images as `zelto download` does; where the window asks, only that it "
                      "does: asked");
}

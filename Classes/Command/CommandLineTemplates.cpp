// How `zelto templates` and `zelto new` are written on a command line.

#include "Classes/Command/CommandLine.h"
#include "Classes/Command/Commands.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

void CommandLine::defineTemplates()
{
    CLI::App *templates = add("templates", "List the templates: title and path", true,
                              [](CommandContext &context) { return zqRunTemplates(context); });
    templates->add_flag("--json", m_json,
                        "Print an array of objects: title, path, and file, which a new asset is a copy of");

    struct Given
    {
        std::string title;
        std::string into;
    };
    const auto given = std::make_shared<Given>();
    CLI::App *make =
        add("new", "Make an asset of a template, and print its bundleID", true, [given](CommandContext &context) {
            return zqRunNewFromTemplate(QString::fromStdString(given->title), QString::fromStdString(given->into),
                                        context);
        });
    make->add_option("template", given->title, "Its title, or the name of its file")->required()->type_name("TEMPLATE");
    make->add_option("--in", given->into,
                     "The project it goes into: titles from the top, as PROJECTS/Clients/Brand, or its UUID text; "
                     "without it the library")
        ->type_name("REF");
}

// How `zelto share` is written on a command line.

#include "Classes/Command/CommandLine.h"
#include "Classes/Command/Commands.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

namespace {

// What CLI11 parses into; it speaks std::string.
struct Arguments
{
    std::vector<std::string> items;
    std::string in;
    int preset = 0;
    std::string service;
};

} // namespace

void CommandLine::defineShare()
{
    const auto given = std::make_shared<Arguments>();
    CLI::App *command =
        add("share", "Upload items and print their links, one a line", true, [given](CommandContext &context) {
            ShareRequest request{.items = {},
                                 .in = QString::fromStdString(given->in),
                                 .preset = given->preset,
                                 .service = QString::fromStdString(given->service)};
            for (const std::string &item : given->items) {
                request.items.append(QString::fromStdString(item));
            }
            return zqRunShare(request, context);
        });
    command->add_option("items", given->items, "Items: a bundleID, a SHA1 or a path inside the library")
        ->type_name("ITEM");
    command
        ->add_option("--in", given->in,
                     "All items of a sidebar entry: titles from the top, as PROJECTS/Clients/Brand, or its UUID text")
        ->type_name("REF");
    command
        ->add_option("--preset", given->preset,
                     "Export with the N-th preset of the Quick export panel first, from 1; without it the files go as "
                     "they are")
        ->check(CLI::Range(1, 10000))
        ->type_name("N");
    command
        ->add_option("--service", given->service,
                     "Where to: cloudapp, dropbox, imgur, webdav or custom:NAME; without it the one in use")
        ->type_name("S");
    command->add_flag("--json", m_json, "Print one object: service, links, missing, failed, cancelled");
}

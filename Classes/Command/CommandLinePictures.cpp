// How the commands that look at pictures are written on a command line.

#include "Classes/Command/CommandLine.h"
#include "Classes/Command/Commands.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace {

// What CLI11 parses into; it speaks std::string.
struct Arguments
{
    std::string item;
    int limit = 20;
};

} // namespace

void CommandLine::definePictures()
{
    const auto given = std::make_shared<Arguments>();
    CLI::App *similar = add(
        "similar", "List the items that look most like one, nearest first, with how many of 256 bits they are apart",
        true, [given](CommandContext &context) {
            return zqRunSimilar(QString::fromStdString(given->item), given->limit, context);
        });
    similar->add_option("item", given->item, "A bundleID, a SHA1 or a path inside the library")
        ->required()
        ->type_name("ITEM");
    similar->add_option("--limit", given->limit, "How many at most; 20 without it")
        ->check(CLI::Range(1, 1000000))
        ->type_name("N");
    similar->add_flag("--json", m_json, "Print an array of objects keyed by attribute names, and distance");

    CLI::App *groups =
        add("near-duplicates",
            "List groups of items that look alike, in other sizes and formats too, each with the one that is best to "
            "keep first, and why; nothing is changed",
            true, [](CommandContext &context) { return zqRunNearDuplicates(context); });
    groups->add_flag("--json", m_json, "Print an array of objects: items, best, reason");
}

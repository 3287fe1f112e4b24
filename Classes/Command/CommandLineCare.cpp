// How the commands that look after the whole library are written on a command line.

#include "Classes/Command/CommandLine.h"
#include "Classes/Command/Commands.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace {

// What CLI11 parses into; it speaks std::string.
struct Arguments
{
    std::string directory;
    int keep = 0;
    bool verifiesAll = false;
    bool isQuick = false;
};

} // namespace

void CommandLine::defineCare()
{
    const auto given = std::make_shared<Arguments>();
    CLI::App *backup = add(
        "backup",
        "Back up the library into a folder of its name in DIR, also while a window has it open: a library by itself, "
        "which shares what did not change with the backup before; exit status 1 when something could not be in it",
        true, [given](CommandContext &context) {
            return zqRunBackup({QString::fromStdString(given->directory), given->keep, given->verifiesAll}, context);
        });
    backup->add_option("directory", given->directory, "A folder, best on another disk")->required()->type_name("DIR");
    backup
        ->add_option("--keep", given->keep,
                     "Remove the oldest backups of this library in DIR until N are left, once the new one is whole; "
                     "without it all stay")
        ->check(CLI::Range(1, 10000))
        ->type_name("N");
    backup->add_flag("--verify-all", given->verifiesAll,
                     "Also read again what is shared with older backups, not only what is new");
    backup->add_flag("--json", m_json,
                     "Print one object: path, items, files, bytes, newBytes, problems, notes, removed");

    CLI::App *statistics = add("statistics", "Count what is in the library", true,
                               [given](CommandContext &context) { return zqRunStatistics(!given->isQuick, context); });
    statistics->add_flag("--quick", given->isQuick, "Leave out the sizes of files, which are read from the disk");
    statistics->add_flag("--json", m_json,
                         "Print one object: items, deleted, managed, untagged, unrated, duplicates, duplicateGroups, "
                         "kinds, years, folders, and, with sizes, bytes, thumbnailBytes, missing, largest");

    CLI::App *fingerprints =
        add("fingerprints",
            "Look at the pictures that were not looked at yet, so that similar ones and colors are found among all: "
            "what a window does beside its work, at once; may be ended at any moment, and goes on with the next call; "
            "exit status 1 when some are not there now",
            true, zqRunFingerprints);
    fingerprints->add_flag("--json", m_json, "Print one object: made, nothing, left");
}

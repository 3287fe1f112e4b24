// How `zelto thumbnail` is written on a command line.

#include "Classes/Command/CommandLine.h"
#include "Classes/Command/Commands.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace {

// What CLI11 parses into; it speaks std::string.
struct Arguments
{
    std::string file;
    std::string out;
    int size = 256;
    bool force = false;
};

constexpr int largestSize = 2048;

} // namespace

void CommandLine::defineThumbnail()
{
    const auto given = std::make_shared<Arguments>();
    CLI::App *command = add("thumbnail",
                            "Draw a small picture of a file, or of a library's newest assets, as file managers ask for "
                            "it; no library is needed",
                            false, [given](CommandContext &context) {
                                return zqRunThumbnail({QString::fromStdString(given->file),
                                                       QString::fromStdString(given->out), given->size, given->force},
                                                      context);
                            });
    command->add_option("file", given->file, "The file, or a library")->required()->type_name("FILE");
    command->add_option("out", given->out, "The picture to write")->required()->type_name("OUT.png");
    command->add_option("--size", given->size, "Pixels of the longer side, without it 256")
        ->check(CLI::Range(1, largestSize))
        ->type_name("N");
    command->add_flag("--force", given->force, "Write over a file that is there");
}

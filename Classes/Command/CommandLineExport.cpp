// How `zelto export` is written on a command line.

#include "Classes/Command/CommandLine.h"
#include "Classes/Command/Commands.h"
#include "Classes/Export/ExportItem.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace {

// What CLI11 parses into; it speaks std::string.
struct Arguments
{
    std::vector<std::string> items;
    std::string in;
    std::string to;
    std::string format;
    std::string namePattern;
    ExportCommandRequest numbers;
};

std::vector<std::string> formats()
{
    std::vector<std::string> names;
    for (const QString &name : zqExportFormats()) {
        names.push_back(name.toStdString());
    }
    return names;
}

ExportCommandRequest requestOf(const Arguments &given)
{
    ExportCommandRequest request = given.numbers;
    for (const std::string &item : given.items) {
        request.items.append(QString::fromStdString(item));
    }
    request.in = QString::fromStdString(given.in);
    request.to = QString::fromStdString(given.to);
    request.format = QString::fromStdString(given.format);
    request.namePattern = QString::fromStdString(given.namePattern);
    return request;
}

} // namespace

void CommandLine::defineExport()
{
    constexpr double mostPixels = ExportItem::mostPixels;
    constexpr double mostPercent = ExportItem::mostPercent;
    const auto given = std::make_shared<Arguments>();
    CLI::App *command = add("export", "Write items into a folder, as they are or converted", true,
                            [given](CommandContext &context) { return zqRunExport(requestOf(*given), context); });
    command->add_option("items", given->items, "Items: a bundleID, a SHA1 or a path inside the library")
        ->type_name("ITEM");
    command
        ->add_option("--in", given->in,
                     "All items of a sidebar entry: titles from the top, as PROJECTS/Clients/Brand, or its UUID text")
        ->type_name("REF");
    command->add_option("--to", given->to, "The folder to write into; files that are there stay as they are")
        ->required()
        ->type_name("DIR");
    CLI::Option *preset =
        command->add_option("--preset", given->numbers.preset, "The N-th preset of the Quick export panel, from 1")
            ->check(CLI::Range(1, 10000))
            ->type_name("N");
    const auto alone = [preset](CLI::Option *option) { return option->excludes(preset); };
    alone(command->add_option("--format", given->format, "Convert to this format; keep copies the files as they are"))
        ->check(CLI::IsMember(formats()));
    alone(command->add_option("--width", given->numbers.width, "Make pictures that are wider so many pixels wide"))
        ->check(CLI::Range(1.0, mostPixels))
        ->type_name("PIXELS");
    alone(command->add_option("--height", given->numbers.height, "Make pictures that are higher so many pixels high"))
        ->check(CLI::Range(1.0, mostPixels))
        ->type_name("PIXELS");
    alone(command->add_option("--percent", given->numbers.percent, "Scale pictures to so many percent"))
        ->check(CLI::Range(0.01, mostPercent))
        ->type_name("P");
    alone(command->add_option("--quality", given->numbers.quality,
                              "1 to 100, for " + zqExportFormatsWithQuality().toStdString()))
        ->check(CLI::Range(1, ExportItem::mostQuality))
        ->type_name("Q");
    command
        ->add_option("--name", given->namePattern,
                     "How files are named: {title}, {index}, {width}, {height} and {date} are filled in; without it, "
                     "{title}")
        ->type_name("PATTERN");
    command->add_flag("--zip", given->numbers.zip, "Write one archive instead, Archive.zip");
    command->add_flag("--json", m_json,
                      "Print one object: written, count, missing, incomplete, notes, failed, cancelled");
}

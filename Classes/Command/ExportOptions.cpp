// How `zelto export` is written on a command line.

#include "Classes/Command/CommandLine.h"
#include "Classes/Command/Commands.h"
#include "Classes/Export/ExportItem.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace {

// What CLI11 parses into; it speaks std::string.
struct ExportOptions
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

ExportCommandRequest requestOf(const ExportOptions &options)
{
    ExportCommandRequest request = options.numbers;
    for (const std::string &item : options.items) {
        request.items.append(QString::fromStdString(item));
    }
    request.in = QString::fromStdString(options.in);
    request.to = QString::fromStdString(options.to);
    request.format = QString::fromStdString(options.format);
    request.namePattern = QString::fromStdString(options.namePattern);
    return request;
}

} // namespace

void CommandLine::defineExport()
{
    constexpr double mostPixels = ExportItem::mostPixels;
    constexpr double mostPercent = ExportItem::mostPercent;
    const auto options = std::make_shared<ExportOptions>();
    CLI::App *command = add("export", "Write items into a folder, as they are or converted", true,
                            [options](CommandContext &context) { return zqRunExport(requestOf(*options), context); });
    command->add_option("items", options->items, "Items: a bundleID, a SHA1 or a path inside the library")
        ->type_name("ITEM");
    command
        ->add_option("--in", options->in,
                     "All items of a sidebar entry: titles from the top, as PROJECTS/Clients/Brand, or its UUID text")
        ->type_name("REF");
    command->add_option("--to", options->to, "The folder to write into; files that are there stay as they are")
        ->required()
        ->type_name("DIR");
    CLI::Option *preset =
        command->add_option("--preset", options->numbers.preset, "The N-th preset of the Quick export panel, from 1")
            ->check(CLI::Range(1, 10000))
            ->type_name("N");
    const auto alone = [preset](CLI::Option *option) { return option->excludes(preset); };
    alone(command->add_option("--format", options->format, "Convert to this format; keep copies the files as they are"))
        ->check(CLI::IsMember(formats()));
    alone(command->add_option("--width", options->numbers.width, "Make pictures that are wider so many pixels wide"))
        ->check(CLI::Range(1.0, mostPixels))
        ->type_name("PIXELS");
    alone(command->add_option("--height", options->numbers.height, "Make pictures that are higher so many pixels high"))
        ->check(CLI::Range(1.0, mostPixels))
        ->type_name("PIXELS");
    alone(command->add_option("--percent", options->numbers.percent, "Scale pictures to so many percent"))
        ->check(CLI::Range(0.01, mostPercent))
        ->type_name("P");
    alone(command->add_option("--quality", options->numbers.quality,
                              "1 to 100, for " + zqExportFormatsWithQuality().toStdString()))
        ->check(CLI::Range(1, ExportItem::mostQuality))
        ->type_name("Q");
    command
        ->add_option("--name", options->namePattern,
                     "How files are named: {title}, {index}, {width}, {height} and {date} are filled in; without it, "
                     "{title}")
        ->type_name("PATTERN");
    command->add_flag("--zip", options->numbers.zip, "Write one archive instead, Archive.zip");
    command->add_flag("--json", m_json, "Print one object: written, count, missing, incomplete, failed, cancelled");
}

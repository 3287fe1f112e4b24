// How `zelto psd` is written on a command line.

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
    std::vector<std::string> layers;
    std::string size;
    std::string out;
    bool force = false;
};

} // namespace

void CommandLine::definePsd()
{
    const auto given = std::make_shared<Arguments>();
    CLI::App *command = add("psd", "Write pictures as the layers of a Photoshop document; no library is needed", false,
                            [given](CommandContext &context) {
                                QStringList layers;
                                for (const std::string &layer : given->layers) {
                                    layers.append(QString::fromStdString(layer));
                                }
                                return zqRunPsd({QString::fromStdString(given->size), layers,
                                                 QString::fromStdString(given->out), given->force},
                                                context);
                            });
    command
        ->add_option("layers", given->layers,
                     "Pictures, the bottom one first. Behind \"@\" may stand where the top left corner goes, the "
                     "opacity from 0 to 1, and a name, which may hold commas; without it a layer is called as its file")
        ->required()
        ->type_name("FILE[@X,Y[,OPACITY[,NAME]]]");
    command->add_option("--size", given->size, "Size of the document in pixels")->required()->type_name("WxH");
    command->add_option("--out", given->out, "The document to write")->required()->type_name("FILE.psd");
    command->add_flag("--force", given->force, "Write over a file that is there");
    command->add_flag("--json", m_json, "Print one object: path, layers, bytes");
}

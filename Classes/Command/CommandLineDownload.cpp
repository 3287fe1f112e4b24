// How `zelto download` is written on a command line.

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
    std::vector<std::string> urls;
    std::string page;
    std::string title;
    bool all = false;
};

} // namespace

void CommandLine::defineDownload()
{
    const auto given = std::make_shared<Arguments>();
    CLI::App *command = add("download", "Download images of a web page and import them with its address and their own",
                            true, [given](CommandContext &context) {
                                DownloadCommandRequest request{.urls = {},
                                                               .page = QString::fromStdString(given->page),
                                                               .title = QString::fromStdString(given->title),
                                                               .all = given->all};
                                for (const std::string &url : given->urls) {
                                    request.urls.append(QString::fromStdString(url));
                                }
                                return zqRunDownload(request, context);
                            });
    command->add_option("urls", given->urls, "Addresses of images: http, https or data, or as the page writes them")
        ->required()
        ->type_name("URL");
    command
        ->add_option("--page", given->page,
                     "Address of the page they are on; images on this computer or its network are downloaded only for "
                     "a page that lives there")
        ->type_name("URL");
    command->add_option("--title", given->title, "Title of that page")->type_name("TEXT");
    command->add_flag("--all", given->all, "Into a new project titled as the page; without it into the library");
    command->add_flag("--json", m_json, "Print one object: downloaded, imported, failed, dropped, cancelled");
    command->parse_complete_callback([this] { m_fillsLibrary = true; });
}

// How `zelto snap` is written on a command line.

#include "Classes/Command/CommandLine.h"
#include "Classes/Command/Commands.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace {

// What CLI11 parses into; it speaks std::string.
struct Arguments
{
    std::string what;
    std::string url;
    SnapWebRequest web;
    bool hasWidth = false;
};

int snap(const Arguments &given, CommandContext &context)
{
    if (given.what == "web") {
        SnapWebRequest request = given.web;
        request.url = QString::fromStdString(given.url);
        return request.url.isEmpty() ? context.fail(zqLocalized("name the page, as zelto snap web https://example.org"))
                                     : zqRunSnapWeb(request, context);
    }
    if (!given.url.empty() || given.hasWidth || given.web.layered || given.web.visible) {
        return context.fail(zqLocalized("an address, --width, --psd and --visible are only for zelto snap web"));
    }
    return zqRunSnap(given.what == "area"     ? SnapKind::Area
                     : given.what == "window" ? SnapKind::Window
                                              : SnapKind::FullScreen,
                     context);
}

} // namespace

void CommandLine::defineSnap()
{
    const auto given = std::make_shared<Arguments>();
    CLI::App *command = add(
        "snap", "Take a picture of the screen or of a web page into Screenshots; any desktop can bind a key to this",
        true, [given](CommandContext &context) { return snap(*given, context); });
    command
        ->add_option_function<std::string>(
            "what",
            [this, given](const std::string &what) {
                given->what = what;
                m_takesScreen = what != "web";
            },
            "An area or a window, which the person chooses, the full screen, or a web page. With 1 as exit "
            "status it was called off")
        ->required()
        ->check(CLI::IsMember({"area", "window", "full", "web"}))
        ->type_name("WHAT");
    command->add_option("url", given->url, "The page's address")->type_name("URL");
    command
        ->add_option_function<int>(
            "--width",
            [given](int width) {
                given->web.width = width;
                given->hasWidth = true;
            },
            "Width of the page in pixels, without it 1280")
        ->check(CLI::PositiveNumber)
        ->type_name("W");
    command->add_flag("--psd", given->web.layered,
                      "As a Photoshop document in which each visible element is a layer, instead of a PNG file");
    command->add_flag("--visible", given->web.visible,
                      "Only what a window of that width shows at first, not the whole page");
    command->add_flag(
        "--json", m_json,
        "Of a page: print an array of objects keyed by attribute names, with httpStatus and captureNotes");
}

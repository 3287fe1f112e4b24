// How `zelto livefolders` and `zelto sync` are written on a command line.

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
    std::string folder;
    std::vector<std::string> paths;
    bool removesMissing = false;
    bool yes = false;
};

} // namespace

void CommandLine::defineLiveFolders()
{
    const auto given = std::make_shared<Arguments>();
    static const char *const folderHelp =
        "A live folder: titles from the top, as \"LIVE FOLDERS/Pictures\", its UUID text, or its path";
    CLI::App *live = m_app->add_subcommand("livefolders", "List the folders on the disk that the library mirrors");
    live->require_subcommand(0, 1);
    live->add_flag(
        "--json", m_json,
        "Print an array of objects: UUID, title, folderPath, items, folders, state, reason, reasonsBelow (by path)");
    const auto define = [this](CLI::App *command, std::function<int(CommandContext &)> run) {
        command->callback([this, command, run = std::move(run)] {
            if (command->get_subcommands().empty()) { // else that one was meant
                m_needsLibrary = true;
                m_run = run;
            }
        });
    };
    const auto which = [given] { return QString::fromStdString(given->folder); };
    const auto sync = [given, which](CommandContext &context) {
        return zqRunSyncLiveFolders(which(), given->removesMissing, context);
    };
    define(live, zqRunLiveFolders);
    CLI::App *addition =
        live->add_subcommand("add", "Mirror folders: their pictures become items and stay where they are");
    addition->add_option("paths", given->paths, "Folders on the disk")->required()->type_name("PATH");
    define(addition, [given](CommandContext &context) {
        QStringList paths;
        for (const std::string &path : given->paths) {
            paths.append(QString::fromStdString(path));
        }
        return zqRunAddLiveFolders(paths, context);
    });
    addition->parse_complete_callback([this] { m_fillsLibrary = true; });
    CLI::App *removal =
        live->add_subcommand("remove", "Take a live folder out of the sidebar; the folder stays on the disk");
    removal->add_option("folder", given->folder, folderHelp)->required()->type_name("REF");
    define(removal, [which](CommandContext &context) { return zqRunRemoveLiveFolder(which(), context); });
    CLI::App *use = live->add_subcommand(
        "use", "Take the folder that lies in the place of a missing live folder for it, as after a change of disks");
    use->add_option("folder", given->folder, folderHelp)->required()->type_name("REF");
    use->add_flag("--yes", given->yes, "Although items whose files are not in it leave the library");
    define(use, [given, which](CommandContext &context) { return zqRunUseLiveFolder(which(), given->yes, context); });
    for (CLI::App *command : {live->add_subcommand("sync", "Bring a live folder, or all, in step with the disk"),
                              m_app->add_subcommand("sync", "Bring all live folders, or one, in step with the disk")}) {
        command->add_option("folder", given->folder, folderHelp)->type_name("REF");
        command->add_flag("--remove-missing", given->removesMissing,
                          "Remove from the library what is gone from the disk, also where it is so much at once that "
                          "it would be kept; this time only");
        command->add_flag("--json", m_json, "Print what `zelto livefolders --json` prints");
        define(command, sync);
    }
}

#include "Classes/Command/CommandLine.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Command/CommandDescription.h"
#include "Classes/Command/Commands.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QRegularExpression>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>
#include <vector>

// What CLI11 parses into; it speaks std::string.
struct CommandLine::Options
{
    std::string library;
    std::string action;
    std::vector<std::string> files;
    std::vector<std::string> paths;
    std::vector<std::string> metadata;
    std::vector<std::string> items;
    std::vector<std::string> words;
    bool counts = false;
    bool explains = false;
    std::vector<std::string> addedTags;
    std::vector<std::string> removedTags;
    std::string reference;
    std::string changed;
    qint64 index = -1;
    bool resumes = false;
    bool forgets = false;
    bool deleted = false;
    bool deep = false;
    bool repair = false;
    std::string duplicates;
    std::string unreadable = "skip";
    std::string key;
    std::string value;
    std::string file;
    std::string size = "1280x800";
    double scale = 1;
    std::string theme;
};

namespace {
QString text(const std::string &value)
{
    return QString::fromStdString(value);
}

QStringList texts(const std::vector<std::string> &values)
{
    QStringList list;
    for (const std::string &value : values) {
        list.append(text(value));
    }
    return list;
}

// The parser quotes whatever it was given.
QString shortLines(const QString &message)
{
    constexpr qsizetype longest = 600;
    QStringList lines = message.split(u'\n');
    std::transform(lines.begin(), lines.end(), lines.begin(),
                   [](const QString &line) { return zqShortened(line, longest); });
    return lines.join(u'\n');
}

const char *const referenceHelp = "A sidebar entry: titles from the top, as PROJECTS/Clients/Brand, or its UUID text";
const char *const itemHelp = "Items: a bundleID, a SHA1 or a path inside the library";
} // namespace

CommandLine::CommandLine()
    : m_app(std::make_unique<CLI::App>("Zelto keeps a designer's library of assets.", "zelto")),
      m_options(std::make_unique<Options>())
{
    m_app->require_subcommand(0, 1);
    m_app->fallthrough();
    m_app->add_option("--library", m_options->library, "The library bundle to work on; without it the remembered one")
        ->type_name("DIR");
    m_app
        ->add_option("--action", m_options->action,
                     "What the window is to do at once, as the desktop's menu offers it: import files, or open another "
                     "library in a window of its own")
        ->check(CLI::IsMember({"import", "another-library"}))
        ->type_name("ACTION");
    m_app->set_version_flag(
        "--version", [] { return "Zelto " + QCoreApplication::applicationVersion().toStdString(); },
        "Print the version and exit");
    m_app
        ->add_option("files", m_options->files,
                     "Files, folders or a library to open in the window, or what a browser hands over (zelto:…)")
        ->type_name("FILE");
    defineImport();
    defineDownload();
    defineItems();
    defineSearch();
    definePictures();
    defineSmartFolder();
    defineExport();
    defineShare();
    defineDeletion();
    defineTags();
    defineLiveFolders();
    definePsd();
    defineOpenURL();
    defineTemplates();
    defineSnap();
    defineThumbnail();
    defineVerify();
    defineCare();
    defineDefaults();
    defineServices();
    defineSnapshot();
    defineDocumentation();
}

CommandLine::~CommandLine() = default;

QString CommandLine::desktopAction() const
{
    return text(m_options->action);
}

CLI::App *CommandLine::add(const char *name, const char *help, bool needsLibrary,
                           std::function<int(CommandContext &)> run)
{
    CLI::App *command = m_app->add_subcommand(name, help);
    command->callback([this, needsLibrary, run = std::move(run)] {
        m_needsLibrary = needsLibrary;
        m_run = run;
    });
    return command;
}

void CommandLine::defineImport()
{
    CLI::App *command =
        add("import", "Import files and folders, and say what became items and what did not", true,
            [this](CommandContext &context) {
                ImportRequest request{texts(m_options->paths),    text(m_options->reference), m_options->index,
                                      texts(m_options->metadata), m_options->resumes,         m_options->forgets,
                                      text(m_options->duplicates)};
                return zqRunImport(request, context);
            });
    command->add_option("paths", m_options->paths, "What to import")->type_name("PATH");
    command
        ->add_option("--into", m_options->reference,
                     "A sidebar entry: titles from the top, as PROJECTS/Clients/Brand, or its UUID text; without it "
                     "folders become projects in PROJECTS, and files go into the library")
        ->type_name("REF");
    command->add_option("--index", m_options->index, "Position among what is there, from 0; without it at the end")
        ->type_name("N");
    command->add_option("--set", m_options->metadata, "An attribute that every imported item gets, as license=CC0")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    command
        ->add_option(
            "--duplicates", m_options->duplicates,
            "What to do with a file the library has: keep both, discard the new one, or relink the old one; holds "
            "for an import that goes on, too, also when it was said at its start")
        ->check(CLI::IsMember({"keep", "discard", "relink"}));
    command
        ->add_option("--unreadable", m_options->unreadable,
                     "Skip files that cannot be read, or stop before anything is imported")
        ->check(CLI::IsMember({"skip", "stop"}));
    command->add_flag("--resume", m_options->resumes,
                      "Go on with imports that were cut off: import what is missing of them");
    command->add_flag("--forget", m_options->forgets,
                      "Give up imports that were cut off; what they brought into the library stays");
    command->add_flag("--json", m_json, "Print one object: imported, incomplete, dropped, notifications");
}

void CommandLine::defineItems()
{
    CLI::App *items = add("items", "List items", true, [this](CommandContext &context) {
        return zqRunItems({text(m_options->reference), m_options->deleted}, context);
    });
    items->add_option("--in", m_options->reference, referenceHelp)->type_name("REF");
    items->add_flag("--deleted", m_options->deleted, "Those that were deleted and not yet purged, instead");
    items->add_flag("--json", m_json, "Print an array of objects keyed by attribute names");

    CLI::App *sidebar =
        add("sidebar", "List the sidebar", true, [](CommandContext &context) { return zqRunSidebar(context); });
    sidebar->add_flag("--json", m_json, "Print an array of the top-level entries with their children");
}

void CommandLine::defineSearch()
{
    CLI::App *search =
        add("search", "Find items, as the window's search field does", true, [this](CommandContext &context) {
            return zqRunSearch({texts(m_options->words).join(u' '), text(m_options->reference), m_options->counts,
                                m_options->explains},
                               context);
        });
    search
        ->add_option("text", m_options->words,
                     "Words and tokens, as '#tag draft -#width<1000'; several are joined by blanks")
        ->required()
        ->type_name("TEXT");
    search->add_option("--in", m_options->reference, referenceHelp)->type_name("REF");
    search->add_flag("--count", m_options->counts, "Print how many there are, and nothing else");
    search->add_flag("--explain", m_options->explains, "Print the condition that is asked of the store instead");
    search->add_flag("--json", m_json, "Print an array of objects keyed by attribute names");
    search->footer(zqSearchLanguage().toStdString());
}

void CommandLine::defineSmartFolder()
{
    CLI::App *smart =
        add("smart", "Save a search as a smart folder, which shows what its text finds", true,
            [this](CommandContext &context) {
                return zqRunSmartFolder({texts(m_options->words), text(m_options->reference), text(m_options->changed)},
                                        context);
            });
    smart
        ->add_option("text", m_options->words,
                     "The title, and behind it words and tokens as `zelto search` takes them; several are joined by "
                     "blanks")
        ->required()
        ->type_name("TEXT");
    smart
        ->add_option("--in", m_options->reference,
                     "The folder it goes into: titles from the top, as PROJECTS/Clients, or its UUID text; without it "
                     "at the end of PROJECTS")
        ->type_name("REF");
    smart
        ->add_option("--change", m_options->changed,
                     "A smart folder that gets the text instead, which is then given without a title")
        ->type_name("REF");
}

// A search may begin with "-", which elsewhere begins an option: what is no option of a search is a word of it, and
// words come behind "--".
QStringList CommandLine::withSearchTextLast(const QStringList &arguments)
{
    qsizetype command = 0;
    while (command < arguments.size() && arguments[command].startsWith(u'-')) {
        command += arguments[command] == u"--library" ? 2 : 1;
    }
    if (arguments.value(command) != u"search" && arguments.value(command) != u"smart") {
        return arguments;
    }
    QStringList options = arguments.mid(0, command + 1);
    QStringList words;
    for (qsizetype i = command + 1; i < arguments.size(); ++i) {
        const QString &word = arguments[i];
        if (word == u"--") {
            words += arguments.mid(i + 1);
            break;
        }
        const bool isOption = word.startsWith(u"--") || word == u"-h";
        (isOption ? options : words).append(word);
        if ((word == u"--in" || word == u"--change" || word == u"--library") && i + 1 < arguments.size()) {
            options.append(arguments[++i]);
        }
    }
    return words.isEmpty() ? options : options + QStringList{QStringLiteral("--")} + words;
}

void CommandLine::defineDeletion()
{
    CLI::App *remove = add("delete", "Delete items from the library; they can be restored until the next purge", true,
                           [this](CommandContext &context) { return zqRunDelete(texts(m_options->items), context); });
    remove->add_option("items", m_options->items, itemHelp)->required()->type_name("ITEM");
    CLI::App *restore = add("restore", "Bring deleted items back", true,
                            [this](CommandContext &context) { return zqRunRestore(texts(m_options->items), context); });
    restore->add_option("items", m_options->items, itemHelp)->required()->type_name("ITEM");
    add("purge", "Remove deleted items and their files for good, as quitting does", true,
        [](CommandContext &context) { return zqRunPurge(context); });
}

void CommandLine::defineTags()
{
    CLI::App *tag =
        add("tag", "Add tags to items and remove some, in the library and in their files", true,
            [this](CommandContext &context) {
                return zqRunTag({texts(m_options->items), texts(m_options->addedTags), texts(m_options->removedTags)},
                                context);
            });
    tag->add_option("items", m_options->items, itemHelp)->required()->type_name("ITEM");
    tag->add_option("--add", m_options->addedTags, "A tag to add; it is made when there is none of this name")
        ->type_name("TAG")
        ->allow_extra_args(false);
    tag->add_option("--remove", m_options->removedTags, "A tag to remove; case matters")
        ->type_name("TAG")
        ->allow_extra_args(false);
    CLI::App *rate = add("rate", "Give items a rating from 0 (none) to 5, which their files carry", true,
                         [this](CommandContext &context) { return zqRunRate(texts(m_options->items), context); });
    rate->add_option("items", m_options->items, itemHelp)->required()->type_name("ITEM… N");
    CLI::App *note = add("note", "Replace the notes of items, in the library and in their files", true,
                         [this](CommandContext &context) { return zqRunNote(texts(m_options->items), context); });
    note->add_option("items", m_options->items, itemHelp)->required()->type_name("ITEM… TEXT");
    CLI::App *tags = add("tags", "List tags with their numbers of items", true,
                         [](CommandContext &context) { return zqRunTags(context); });
    tags->add_flag("--json", m_json, "Print an array of objects: title, numberOfItems, generated, UUID");
    CLI::App *attributes =
        add("attributes", "Show what files themselves carry: tags, rating, comment, origin", false,
            [this](CommandContext &context) { return zqRunAttributes(texts(m_options->paths), context); });
    attributes->add_option("paths", m_options->paths, "Any files; no library is needed")->required()->type_name("PATH");
    attributes->add_flag("--json", m_json,
                         "Print an array of objects: path, tags, rating, comment, webURL, webPageURL, the file "
                         "manager's mirrors, and the names of all attributes");
}

void CommandLine::defineVerify()
{
    CLI::App *command =
        add("verify", "Check that the store is sound and that every item has its files; exit status 1 when not", true,
            [this](CommandContext &context) { return zqRunVerify(m_options->deep, m_options->repair, context); });
    command->add_flag("--deep", m_options->deep, "Also read every file and compare its digest");
    command->add_flag("--repair", m_options->repair,
                      "First name the files after their items that lie in their item directories under other names");
    command->add_flag("--json", m_json, "Print one object: items, problems, orphans, otherNames, links");
    CLI::App *recover =
        add("recover",
            "Copy what can be read of a damaged library into a new store, and keep the damaged one beside it; exit "
            "status 1 while the library is open elsewhere",
            false, [this](CommandContext &context) { return zqRunRecover(m_library, context); });
    recover->add_flag("--json", m_json,
                      "Print one object: damaged, items, sidebarEntries, tags, memberships, unreadable, damagedStore");
}

void CommandLine::defineDefaults()
{
    CLI::App *defaults = m_app->add_subcommand("defaults", "Read and change the preferences");
    defaults->require_subcommand(1);
    const auto addAction = [&](const char *name, const char *help, std::function<int(CommandContext &)> run) {
        CLI::App *action = defaults->add_subcommand(name, help);
        action->callback([this, run = std::move(run)] {
            m_needsLibrary = false;
            m_run = run;
        });
        return action;
    };
    CLI::App *read = addAction("read", "Print one preference, or all", [this](CommandContext &context) {
        return zqRunDefaultsRead(text(m_options->key), context);
    });
    read->add_option("key", m_options->key)->type_name("KEY");
    read->add_flag("--json", m_json, "Print JSON");
    CLI::App *write = addAction("write", "Set a preference", [this](CommandContext &context) {
        return zqRunDefaultsWrite(text(m_options->key), text(m_options->value), context);
    });
    write->add_option("key", m_options->key)->required()->type_name("KEY");
    write->add_option("value", m_options->value, "true, false, a number, a JSON value, or a text")
        ->required()
        ->type_name("VALUE");
    CLI::App *remove = addAction("delete", "Go back to a preference's default", [this](CommandContext &context) {
        return zqRunDefaultsDelete(text(m_options->key), context);
    });
    remove->add_option("key", m_options->key)->required()->type_name("KEY");
}

void CommandLine::defineSnapshot()
{
    CLI::App *command = add("snapshot", "Draw the main window into a PNG file", true, [this](CommandContext &context) {
        SnapshotRequest request = m_snapshot;
        request.file = context.absolutePath(request.file);
        return m_drawSnapshot ? m_drawSnapshot(request, context)
                              : context.fail(zqLocalized("this program was built without a window"));
    });
    command->add_option("file", m_options->file, "Where to write the picture")->required()->type_name("FILE.png");
    command->add_option("--size", m_options->size, "Size of the window in points")->type_name("WxH");
    command->add_option("--scale", m_options->scale, "Pixels a point")->check(CLI::Range(0.5, 4.0))->type_name("S");
    command->add_option("--select", m_options->reference, referenceHelp)->type_name("REF");
    command->add_option("--theme", m_options->theme, "Instead of the preference")
        ->check(CLI::IsMember({"dark", "light"}));
}

int CommandLine::run(CommandContext &context) const
{
    if (m_needsLibrary && context.delegate && !m_options->resumes && !m_options->forgets) {
        zqTellOfCutOffImports(context);
    }
    return m_run(context);
}

bool CommandLine::parse(const QStringList &arguments, CommandContext &context, int *exitStatus)
{
    if (!checkWords(arguments, context)) {
        *exitStatus = 2;
        return false;
    }
    const QStringList ordered = withSearchTextLast(arguments);
    std::vector<std::string> reversed;
    for (auto it = ordered.rbegin(); it != ordered.rend(); ++it) {
        reversed.push_back(it->toStdString());
    }
    try {
        m_app->parse(reversed);
    } catch (const CLI::ParseError &error) {
        std::ostringstream output;
        std::ostringstream errors;
        const int code = m_app->exit(error, output, errors);
        context.output += QByteArray::fromStdString(output.str());
        context.errors += shortLines(QString::fromStdString(errors.str())).toUtf8();
        *exitStatus = code == 0 ? 0 : 2;
        return false;
    }
    m_library = text(m_options->library);
    m_files = texts(m_options->files);
    const qsizetype asked = m_files.size();
    m_files.removeIf([&](const QString &file) { return isNothing(file, context); });
    if (m_files.isEmpty() && asked > 0) {
        *exitStatus = 2;
        return false;
    }
    context.json = m_json;
    m_duplicatePolicy = m_options->duplicates == "discard"  ? DuplicatePolicy::Discard
                        : m_options->duplicates == "relink" ? DuplicatePolicy::Relink
                                                            : DuplicatePolicy::Keep;
    m_unreadablePolicy = m_options->unreadable == "stop" ? UnreadablePolicy::Stop : UnreadablePolicy::Skip;
    m_isImport = m_app->got_subcommand("import") || m_app->got_subcommand("open-url") || m_app->got_subcommand("new");
    m_fillsLibrary = m_fillsLibrary || m_isImport;
    for (const char *edit :
         {"tag", "note", "rate", "delete", "restore", "livefolders", "sync", "download", "share", "backup"}) {
        m_isEdit = m_isEdit || m_app->got_subcommand(edit);
    }
    m_isSnap = m_app->got_subcommand("snap");
    m_fillsLibrary = m_fillsLibrary || m_isSnap;
    m_isSnapshot = m_app->got_subcommand("snapshot");
    if (m_isSnapshot) {
        static const QRegularExpression pattern(QStringLiteral("^(\\d{2,5})x(\\d{2,5})$"));
        const QRegularExpressionMatch size = pattern.match(text(m_options->size));
        if (!size.hasMatch()) {
            *exitStatus =
                context.fail(zqFormat(zqLocalized("“%@” is no size; write it as 1280x800"), {text(m_options->size)}));
            return false;
        }
        m_snapshot = {text(m_options->file),
                      text(m_options->reference),
                      {size.captured(1).toInt(), size.captured(2).toInt()},
                      m_options->scale,
                      text(m_options->theme)};
    }
    return true;
}

// Whether `word`, where a command or a file is expected, is neither; says so in `context`.
bool CommandLine::isNothing(const QString &word, CommandContext &context) const
{
    if (ProtocolHandling::isProtocolURL(word) || QFileInfo::exists(context.pathToOpen(word))) {
        return false;
    }
    const QString meant = commandLike(word);
    const bool isPath = word.contains(u'/') || word.contains(u'.');
    context.fail(
        isPath ? zqFormat(zqLocalized("there is no file or folder “%@”"), {word})
        : meant.isEmpty()
            ? zqFormat(zqLocalized("“%@” is neither a command nor a file; `zelto --help` lists the commands"), {word})
            : zqFormat(zqLocalized("“%@” is neither a command nor a file; did you mean `zelto %@`?"), {word, meant}));
    return true;
}

// Before the options are looked at: those behind a misspelt command would be named as the mistake.
bool CommandLine::checkWords(const QStringList &arguments, CommandContext &context) const
{
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &word = arguments[i];
        if (word == u"--library" || word == u"--action") {
            ++i;
        } else if (!word.startsWith(u'-')) {
            const auto commands = m_app->get_subcommands(
                [&word](const CLI::App *command) { return command->get_name() == word.toStdString(); });
            return !commands.empty() || !isNothing(word, context);
        }
    }
    return true;
}

namespace {
// How many letters have to be put in, taken out, replaced or exchanged with their neighbour to make one of the other.
qsizetype editDistance(const QString &one, const QString &other)
{
    std::vector<std::vector<qsizetype>> cost(std::size_t(one.size() + 1),
                                             std::vector<qsizetype>(std::size_t(other.size() + 1)));
    for (qsizetype i = 0; i <= one.size(); ++i) {
        for (qsizetype j = 0; j <= other.size(); ++j) {
            const auto at = [&cost](qsizetype a, qsizetype b) -> qsizetype & {
                return cost[std::size_t(a)][std::size_t(b)];
            };
            if (i == 0 || j == 0) {
                at(i, j) = i + j;
                continue;
            }
            const bool isSame = one[i - 1] == other[j - 1];
            at(i, j) = std::min({at(i - 1, j) + 1, at(i, j - 1) + 1, at(i - 1, j - 1) + (isSame ? 0 : 1)});
            if (i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1]) {
                at(i, j) = std::min(at(i, j), at(i - 2, j - 2) + 1);
            }
        }
    }
    return cost[std::size_t(one.size())][std::size_t(other.size())];
}
} // namespace

QString CommandLine::commandLike(const QString &word) const
{
    constexpr qsizetype longestCommand = 32;
    if (word.size() > longestCommand) {
        return {};
    }
    QString best;
    qsizetype bestDistance = std::max<qsizetype>(1, word.size() / 3) + 1; // one letter in three may be wrong
    for (const CLI::App *command : m_app->get_subcommands([](const CLI::App *) { return true; })) {
        const QString name = text(command->get_name());
        const bool isBeginning = word.size() > 1 && name.startsWith(word, Qt::CaseInsensitive);
        const qsizetype distance = isBeginning ? 0 : editDistance(word.toLower(), name);
        if (!command->get_group().empty() && distance < bestDistance) {
            bestDistance = distance;
            best = name;
        }
    }
    return best;
}

QString CommandLine::markdown() const
{
    return zqCommandsAsMarkdown(zqDescribeCommands(*m_app));
}

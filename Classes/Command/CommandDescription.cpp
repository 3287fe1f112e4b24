#include "Classes/Command/CommandDescription.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QRegularExpression>

#include <CLI/CLI.hpp>

#include <array>
#include <utility>

namespace {

QString text(const std::string &value)
{
    return QString::fromStdString(value);
}

// The parser writes what a value is checked for behind its name: "N:INT in [1 - 100]", "TEXT:{keep,discard}".
struct Checked
{
    QString name;
    QStringList choices;
    QString range; // as "1 to 100"
};

Checked checkedOf(const QString &typeName)
{
    static const QRegularExpression choices(QStringLiteral("^(.*):\\{([^{}]*)\\}$"));
    static const QRegularExpression range(QStringLiteral("^(.*):(?:INT|FLOAT|UINT) in \\[(\\S+) - (\\S+)\\]$"));
    static const QRegularExpression positive(QStringLiteral("^(.*):(?:POSITIVE|NONNEGATIVE|NUMBER)$"));
    if (const auto match = choices.match(typeName); match.hasMatch()) {
        return {QStringLiteral("{%1}").arg(match.captured(2)), match.captured(2).split(u','), {}};
    }
    if (const auto match = range.match(typeName); match.hasMatch()) {
        return {match.captured(1), {}, zqFormat(zqLocalized("%@ to %@"), {match.captured(2), match.captured(3)})};
    }
    if (const auto match = positive.match(typeName); match.hasMatch()) {
        return {match.captured(1), {}, {}};
    }
    return {typeName, {}, {}};
}

CommandValue kindOf(const QString &value)
{
    static const std::array<std::pair<const char *, CommandValue>, 4> kinds = {{
        {"FILE", CommandValue::File}, // also with an ending, or with more behind it
        {"PATH", CommandValue::File},
        {"DIR", CommandValue::Directory},
        {"KEY", CommandValue::Preference},
    }};
    static const QRegularExpression firstWord(QStringLiteral("^[A-Z]+"));
    const QString word = value.contains(u'=') ? QString() : firstWord.match(value).captured();
    for (const auto &[name, kind] : kinds) {
        if (word == QLatin1String(name)) {
            return kind;
        }
    }
    return CommandValue::Text;
}

CommandOption described(const CLI::Option &option)
{
    CommandOption result;
    result.meaning = text(option.get_description());
    result.isRequired = option.get_required();
    if (!option.get_positional()) {
        for (const std::string &name : option.get_snames()) {
            result.names.append(u'-' + text(name));
        }
        for (const std::string &name : option.get_lnames()) {
            result.names.append(QStringLiteral("--") + text(name));
        }
    }
    if (option.get_items_expected_max() == 0) {
        return result;
    }
    const Checked checked = checkedOf(text(option.get_type_name()));
    result.value = checked.name;
    result.choices = checked.choices;
    result.kind = checked.choices.isEmpty() ? kindOf(checked.name) : CommandValue::Choice;
    result.isRepeated = option.get_items_expected_max() > 1;
    // Limits that only keep numbers sane, and those that the meaning names, are told when one is exceeded.
    static const QRegularExpression told(QStringLiteral("\\d"));
    if (!checked.range.isEmpty() && !checked.range.contains(u'e') && !result.meaning.contains(told)) {
        result.meaning += QStringLiteral(" (%1)").arg(checked.range);
    }
    return result;
}

CommandDescription describedBelow(const CLI::App &command, const QStringList &path)
{
    CommandDescription result{.path = path,
                              .summary = text(command.get_description()),
                              .footer = text(command.get_footer()),
                              .options = {},
                              .commands = {},
                              .isRunnable = command.get_require_subcommand_min() == 0};
    for (const CLI::Option *option : command.get_options()) {
        if (option->get_name() != "--help" || path.isEmpty()) { // every command has that one
            result.options.append(described(*option));
        }
    }
    for (const CLI::App *below : command.get_subcommands([](const CLI::App *) { return true; })) {
        if (!below->get_group().empty()) {
            result.commands.append(describedBelow(*below, path + QStringList{text(below->get_name())}));
        }
    }
    return result;
}

} // namespace

QString CommandOption::label() const
{
    const QString name = names.join(QStringLiteral(", "));
    return isArgument() ? value : value.isEmpty() ? name : name + u' ' + value;
}

QString CommandDescription::fullName() const
{
    return (QStringList{QStringLiteral("zelto")} + path).join(u' ');
}

QString CommandDescription::synopsis() const
{
    QStringList words;
    for (const CommandOption &option : options) {
        // What names several things itself says which of them is which.
        const bool isSeveral = option.isRepeated && !option.value.contains(u'…');
        const QString label = option.names.isEmpty() ? option.value : option.label();
        words.append((option.isRequired ? label : u'[' + label + u']') + (isSeveral ? QStringLiteral("…") : QString()));
    }
    return words.join(u' ');
}

QList<CommandOption> CommandDescription::arguments() const
{
    QList<CommandOption> result = options;
    result.removeIf([](const CommandOption &option) { return !option.isArgument(); });
    return result;
}

QList<CommandOption> CommandDescription::namedOptions() const
{
    QList<CommandOption> result = options;
    result.removeIf([](const CommandOption &option) { return option.isArgument(); });
    return result;
}

QList<const CommandDescription *> CommandDescription::all() const
{
    QList<const CommandDescription *> result;
    if (!path.isEmpty()) {
        result.append(this);
    }
    for (const CommandDescription &command : commands) {
        result.append(command.all());
    }
    return result;
}

CommandDescription zqDescribeCommands(const CLI::App &program)
{
    return describedBelow(program, {});
}

QList<ExitStatus> zqExitStatuses()
{
    return {
        {0, zqLocalized("done; for `verify`, nothing wrong was found")},
        {1, zqLocalized("done in part, or something was found: `verify` or `backup` found something wrong, "
                        "`updates check` knows a newer version, `recover` met an open library, `snap` was called off, "
                        "some of what `export`, `share` or `download` was asked for is "
                        "missing, or an import was cut off, which `zelto import --resume` goes on with")},
        {2, zqLocalized("an error, in which case nothing was changed; a change of many items that fails or is "
                        "cancelled keeps what was done before that")},
    };
}

#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace CLI {
class App;
}

// What may stand in the place of a value, as far as a shell can help with it.
enum class CommandValue { None, Text, Choice, File, Directory, Preference };

struct CommandOption
{
    QStringList names; // as "--into"; empty where it is known by its place
    QString value;     // what stands for its value, as "REF"; for choices "{keep,discard}"; empty for a flag
    QStringList choices;
    CommandValue kind = CommandValue::None;
    QString meaning;
    bool isRequired = false;
    bool isRepeated = false;

    bool isArgument() const { return names.isEmpty(); }
    QString label() const; // as "--into REF"
};

// A command and those below it, in the words of its definition. The reference, the manual page and the completions of
// shells are written from it, so that none of them knows a command that the others do not.
struct CommandDescription
{
    QStringList path; // without the program's name; empty for the program itself
    QString summary;
    QString footer;
    QList<CommandOption> options; // those that every command takes are the program's alone
    QList<CommandDescription> commands;
    bool isRunnable = true; // else one of `commands` has to follow

    QString fullName() const;
    QString synopsis() const; // behind its name; empty where nothing follows
    QList<CommandOption> arguments() const;
    QList<CommandOption> namedOptions() const;
    // Itself, unless it is the program, and all below it, each before those it has.
    QList<const CommandDescription *> all() const;
};

// Commands that are not meant for people are left out.
CommandDescription zqDescribeCommands(const CLI::App &program);

struct ExitStatus
{
    int status;
    QString meaning; // begins with a small letter
};

QList<ExitStatus> zqExitStatuses();

QString zqCommandsAsMarkdown(const CommandDescription &program);
// For `man`: section 1, in ASCII. `version` may be empty.
QString zqCommandsAsManual(const CommandDescription &program, const QString &version);
// Null when `shell` is none of zqCompletedShells().
QString zqCompletionsForShell(const QString &shell, const CommandDescription &program);
QStringList zqCompletedShells();

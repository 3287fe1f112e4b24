#include "Classes/Command/ShellText.h"

#include <array>
#include <utility>

namespace {

using Writer = QString (*)(const CommandDescription &);

constexpr std::array<std::pair<const char *, Writer>, 3> writers = {
    {{"bash", zqBashCompletions}, {"zsh", zqZshCompletions}, {"fish", zqFishCompletions}}};

void gatherOptionsWithValues(const CommandDescription &command, QStringList &names)
{
    for (const CommandOption &option : command.namedOptions()) {
        if (!option.value.isEmpty()) {
            names += option.names;
        }
    }
    for (const CommandDescription &below : command.commands) {
        gatherOptionsWithValues(below, names);
    }
}

} // namespace

QString zqShellQuoted(const QString &text)
{
    QString inner = text;
    return u'\'' + inner.replace(u'\'', QStringLiteral("'\\''")) + u'\'';
}

QStringList zqOptionsWithValues(const CommandDescription &program)
{
    QStringList names;
    gatherOptionsWithValues(program, names);
    names.removeDuplicates();
    return names;
}

QStringList zqCommandPaths(const CommandDescription &program)
{
    QStringList paths;
    for (const CommandDescription *command : program.all()) {
        paths.append(command->path.join(u' '));
    }
    return paths;
}

QStringList zqCompletedShells()
{
    QStringList names;
    for (const auto &[name, writer] : writers) {
        names.append(QString::fromLatin1(name));
    }
    return names;
}

QString zqCompletionsForShell(const QString &shell, const CommandDescription &program)
{
    for (const auto &[name, writer] : writers) {
        if (shell == QLatin1String(name)) {
            return writer(program);
        }
    }
    return {};
}

// docs/COMMANDS.md.

#include "Classes/Command/CommandDescription.h"

namespace {

QString commandAsMarkdown(const CommandDescription &command)
{
    const QString synopsis = command.synopsis();
    QString out = QStringLiteral("\n## `%1`\n\n%2.\n\n```text\n%3\n```\n")
                      .arg(command.fullName(), command.summary,
                           command.fullName() + (synopsis.isEmpty() ? QString() : u' ' + synopsis));
    QString rows;
    for (const CommandOption &option : command.options) {
        if (!option.meaning.isEmpty()) {
            rows += QStringLiteral("| `%1` | %2 |\n").arg(option.label(), option.meaning);
        }
    }
    if (!rows.isEmpty()) {
        out += QStringLiteral("\n| Option | Meaning |\n|---|---|\n") + rows;
    }
    if (!command.footer.isEmpty()) {
        out += QStringLiteral("\n```text\n%1\n```\n").arg(command.footer);
    }
    return out;
}

} // namespace

QString zqCommandsAsMarkdown(const CommandDescription &program)
{
    QString out = QStringLiteral("# Commands\n\n"
                                 "Written by `./dev docs` from the definitions of the commands; change those.\n\n"
                                 "`zelto` opens the window, `zelto FILE…` opens files in it, `zelto COMMAND` does one "
                                 "thing and exits. Every command takes "
                                 "`--library DIR`; without it, the remembered library is meant. When a window has that "
                                 "library open, the command runs in the "
                                 "window's process, so that two processes never write one library.\n\n"
                                 "Only data goes to standard output; errors go to standard error. What `--json` prints "
                                 "is in [JSON.md](JSON.md). `zelto man` prints this as a manual page.\n\n"
                                 "| Exit status | Meaning |\n|---|---|\n");
    for (const ExitStatus &status : zqExitStatuses()) {
        out += QStringLiteral("| %1 | %2 |\n").arg(QString::number(status.status), status.meaning);
    }
    for (const CommandDescription *command : program.all()) {
        if (command->isRunnable) {
            out += commandAsMarkdown(*command);
        }
    }
    return out;
}

#include "Classes/Command/ShellText.h"

namespace {

const char *const helpers = R"sh(
_zelto_preferences() {
    local -a keys
    keys=(${${(f)"$(_call_program preferences zelto defaults read 2>/dev/null)"}%% = *})
    _describe -t preferences preference keys
}
)sh";

// The colons and brackets that an argument of _arguments is made of are meant as they stand.
QString plain(const QString &text, const QString &special)
{
    QString out;
    for (const QChar letter : text) {
        if (special.contains(letter) || letter == u'\\') {
            out += u'\\';
        }
        out += letter;
    }
    return out;
}

QString action(const CommandOption &option)
{
    switch (option.kind) {
    case CommandValue::Choice:
        return QStringLiteral("(%1)").arg(option.choices.join(u' '));
    case CommandValue::File:
        return QStringLiteral("_files");
    case CommandValue::Directory:
        return QStringLiteral("_files -/");
    case CommandValue::Preference:
        return QStringLiteral("_zelto_preferences");
    case CommandValue::Text:
    case CommandValue::None:
        break;
    }
    return QStringLiteral(" ");
}

QString valuePart(const CommandOption &option)
{
    return u':' + plain(option.choices.isEmpty() ? option.value : QStringLiteral("value"), QStringLiteral(":")) + u':' +
           action(option);
}

QString optionSpecification(const CommandOption &option)
{
    const QString meaning = u'[' + plain(option.meaning, QStringLiteral("[]:")) + u']';
    QString out;
    for (const QString &name : option.names) {
        // Each name excludes all of them, unless it may come again.
        const QString excluded = option.isRepeated ? QStringLiteral("*") : u'(' + option.names.join(u' ') + u')';
        const bool isLong = name.startsWith(QStringLiteral("--"));
        const QString value = option.value.isEmpty() ? QString() : valuePart(option);
        out += QStringLiteral(" \\\n        ") +
               zqShellQuoted(excluded + name + (!value.isEmpty() && isLong ? QStringLiteral("=") : QString()) +
                             meaning + value);
    }
    return out;
}

QString optionsOf(const CommandDescription &command, const CommandDescription &program)
{
    QString out;
    for (const CommandOption &option : command.namedOptions()) {
        out += optionSpecification(option);
    }
    if (!command.path.isEmpty()) {
        for (const CommandOption &option : program.namedOptions()) {
            out += optionSpecification(option);
        }
    }
    return out;
}

QString functionName(const CommandDescription &command)
{
    return (QStringList{QStringLiteral("_zelto")} + command.path).join(u'_').replace(u'-', u'_');
}

QString argumentsOf(const CommandDescription &command)
{
    QString out;
    for (const CommandOption &argument : command.arguments()) {
        const QString place = argument.isRepeated   ? QStringLiteral("*")
                              : argument.isRequired ? QString()
                                                    : QStringLiteral(":");
        out += QStringLiteral(" \\\n        ") + zqShellQuoted(place + valuePart(argument));
    }
    return out;
}

// With others below it: the word in the first place says which.
QString branches(const CommandDescription &command, const CommandDescription &program)
{
    QString names;
    QString calls;
    for (const CommandDescription &below : command.commands) {
        names += QStringLiteral("            %1\n")
                     .arg(zqShellQuoted(below.path.last() + u':' + plain(below.summary, QStringLiteral(":"))));
        calls += QStringLiteral("        %1) %2 ;;\n").arg(below.path.last(), functionName(below));
    }
    const bool takesFiles = !command.arguments().isEmpty();
    return QStringLiteral("    local curcontext=$curcontext state state_descr line\n"
                          "    typeset -A opt_args\n"
                          "    _arguments -C -S%1 \\\n        '(-): :->command' '(-)*:: :->rest'\n"
                          "    case $state in\n"
                          "    command)\n        local -a commands\n        commands=(\n%2        )\n"
                          "        _describe -t commands command commands%3\n        ;;\n"
                          "    rest)\n        case $words[1] in\n%4%5        esac\n        ;;\n    esac\n")
        .arg(optionsOf(command, program), names, takesFiles ? QStringLiteral("\n        _files") : QString(), calls,
             takesFiles ? QStringLiteral("        *) _files ;;\n") : QString());
}

} // namespace

QString zqZshCompletions(const CommandDescription &program)
{
    QString out =
        QStringLiteral("#compdef zelto\n# Written by `zelto completions zsh`.\n") + QString::fromUtf8(helpers);
    QList<const CommandDescription *> commands = program.all();
    commands.append(&program);
    for (const CommandDescription *command : commands) {
        const QString body =
            command->commands.isEmpty()
                ? QStringLiteral("    _arguments -S%1%2\n").arg(optionsOf(*command, program), argumentsOf(*command))
                : branches(*command, program);
        out += QStringLiteral("\n%1() {\n%2}\n").arg(functionName(*command), body);
    }
    // Read by the shell when it first completes, or by a person into a shell that runs.
    return out +
           QStringLiteral(
               "\nif [[ $funcstack[1] == _zelto ]]; then\n    _zelto \"$@\"\nelse\n    compdef _zelto zelto\nfi\n");
}

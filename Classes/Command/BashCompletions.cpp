#include "Classes/Command/ShellText.h"

namespace {

// The file names are left to the shell, which knows how to quote them. Programs that read no library are asked for
// nothing but preferences: completing must not open, lock or mend one.
const char *const script = R"sh(# bash completion for zelto, written by `zelto completions bash`

_zelto_words() {
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$current")
}

_zelto_files() {
    compopt -o default 2>/dev/null
    COMPREPLY=()
}

_zelto_directories() {
    compopt -o dirnames 2>/dev/null
    COMPREPLY=()
}

_zelto_preferences() {
    _zelto_words "$(zelto defaults read 2>/dev/null | sed 's/ = .*//')"
}

_zelto() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} path='' place=0 word index words=''
    local valued=%1
    local commands=%2
    COMPREPLY=()
    # The shell takes "=" for a word of its own.
    if [[ $current == '=' ]]; then
        current=''
    elif [[ $previous == '=' ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for ((index = 1; index < COMP_CWORD; index++)); do
        word=${COMP_WORDS[index]}
        if [[ $valued == *" $word "* ]]; then
            [[ ${COMP_WORDS[index + 1]} == '=' ]] && ((index++))
            ((index++))
        elif [[ $word != -* ]]; then
            if [[ $place == 0 && $commands == *"|${path:+$path }$word|"* ]]; then
                path=${path:+$path }$word
            else
                ((place++))
            fi
        fi
    done
    case "$path|$previous" in
%3    esac
    if [[ $current == -* ]]; then
        case $path in
%4        esac
        _zelto_words "$words %5"
        return
    fi
    case "$path|$place" in
%6    esac
}

complete -F _zelto zelto
)sh";

QString call(const CommandOption &option)
{
    switch (option.kind) {
    case CommandValue::Choice:
        return QStringLiteral("_zelto_words ") + zqShellQuoted(option.choices.join(u' '));
    case CommandValue::File:
        return QStringLiteral("_zelto_files");
    case CommandValue::Directory:
        return QStringLiteral("_zelto_directories");
    case CommandValue::Preference:
        return QStringLiteral("_zelto_preferences");
    case CommandValue::Text:
    case CommandValue::None:
        break;
    }
    return QStringLiteral(":");
}

QString row(const QString &pattern, const QString &action, const QString &end = {})
{
    return QStringLiteral("        %1) %2%3 ;;\n").arg(pattern, action, end);
}

QString valueRows(const CommandDescription &command)
{
    QString out;
    for (const CommandOption &option : command.namedOptions()) {
        if (option.value.isEmpty()) {
            continue;
        }
        QStringList patterns;
        for (const QString &name : option.names) {
            patterns.append(command.path.isEmpty() ? QStringLiteral("*'|%1'").arg(name)
                                                   : zqShellQuoted(command.path.join(u' ') + u'|' + name));
        }
        out += row(patterns.join(u'|'), call(option), QStringLiteral("; return"));
    }
    return out;
}

QStringList optionNames(const CommandDescription &command)
{
    QStringList names;
    for (const CommandOption &option : command.namedOptions()) {
        names += option.names;
    }
    return names;
}

QString argumentRows(const CommandDescription &command)
{
    QString out;
    const QString path = command.path.join(u' ');
    if (!command.commands.isEmpty()) {
        QStringList words;
        for (const CommandDescription &below : command.commands) {
            words.append(below.path.last());
        }
        const QString files =
            command.arguments().isEmpty() ? QString() : QStringLiteral("; [[ $COMPREPLY ]] || _zelto_files");
        return row(zqShellQuoted(path + QStringLiteral("|0")),
                   QStringLiteral("_zelto_words ") + zqShellQuoted(words.join(u' ')), files) +
               (files.isEmpty() ? QString() : row(QStringLiteral("'|'*"), QStringLiteral("_zelto_files")));
    }
    qsizetype place = 0;
    for (const CommandOption &argument : command.arguments()) {
        out += argument.isRepeated ? row(zqShellQuoted(path + u'|') + u'*', call(argument))
                                   : row(zqShellQuoted(path + u'|' + QString::number(place)), call(argument));
        ++place;
    }
    return out;
}

} // namespace

QString zqBashCompletions(const CommandDescription &program)
{
    QList<const CommandDescription *> commands = program.all();
    commands.prepend(&program);
    QString values;
    QString names;
    QString arguments;
    for (const CommandDescription *command : commands) {
        values += valueRows(*command);
        const QStringList own = optionNames(*command);
        if (!own.isEmpty() && !command->path.isEmpty()) {
            names += QStringLiteral("    ") + row(zqShellQuoted(command->path.join(u' ')),
                                                  QStringLiteral("words=") + zqShellQuoted(own.join(u' ')));
        }
        arguments += argumentRows(*command);
    }
    return QString::fromUtf8(script).arg(zqShellQuoted(u' ' + zqOptionsWithValues(program).join(u' ') + u' '),
                                         zqShellQuoted(u'|' + zqCommandPaths(program).join(u'|') + u'|'), values, names,
                                         optionNames(program).join(u' '), arguments);
}

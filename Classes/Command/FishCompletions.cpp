#include "Classes/Command/ShellText.h"

namespace {

const char *const beginning = R"sh(# fish completion for zelto, written by `zelto completions fish`

# Whether the words before the cursor name just this command, and, where it is given, so many of its arguments.
function __zelto_at
    set -l valued %1
    set -l commands %2
    set -l path ''
    set -l place 0
    set -l skips 0
    for word in (commandline -opc)[2..-1]
        if test $skips = 1
            set skips 0
        else if contains -- $word $valued
            set skips 1
        else if not string match -q -- '-*' $word
            set -l longer (string trim -- "$path $word")
            if test $place = 0; and contains -- $longer $commands
                set path $longer
            else
                set place (math $place + 1)
            end
        end
    end
    test "$path" = "$argv[1]"; or return 1
    not set -q argv[2]; or test $place = $argv[2]
end

function __zelto_preferences
    zelto defaults read 2>/dev/null | string replace -r ' = .*' ''
end

complete -c zelto -f
)sh";

QString quoted(const QString &text)
{
    QString inner = text;
    inner.replace(u'\\', QStringLiteral("\\\\"));
    return u'\'' + inner.replace(u'\'', QStringLiteral("\\'")) + u'\'';
}

QString quotedAll(const QStringList &texts)
{
    QStringList all;
    for (const QString &text : texts) {
        all.append(quoted(text));
    }
    return all.join(u' ');
}

QString values(const CommandOption &option)
{
    switch (option.kind) {
    case CommandValue::Choice:
        return QStringLiteral(" -a ") + quoted(option.choices.join(u' '));
    case CommandValue::File:
        return QStringLiteral(" -F");
    case CommandValue::Directory:
        return QStringLiteral(" -a '(__fish_complete_directories (commandline -ct))'");
    case CommandValue::Preference:
        return QStringLiteral(" -a '(__zelto_preferences)'");
    case CommandValue::Text:
    case CommandValue::None:
        break;
    }
    return {};
}

QString optionLine(const CommandOption &option, const QString &condition)
{
    QString out = QStringLiteral("complete -c zelto") + condition;
    for (const QString &name : option.names) {
        out += name.startsWith(QStringLiteral("--")) ? QStringLiteral(" -l ") + name.mid(2)
                                                     : QStringLiteral(" -s ") + name.mid(1);
    }
    if (!option.value.isEmpty()) {
        out += option.kind == CommandValue::File ? QStringLiteral(" -r") : QStringLiteral(" -x");
    }
    return out + values(option) + QStringLiteral(" -d ") + quoted(option.meaning) + u'\n';
}

QString linesOf(const CommandDescription &command)
{
    const auto at = [&command](const QString &place) {
        const QString path = command.path.join(u' ');
        return QStringLiteral(" -n ") +
               quoted(QStringLiteral("__zelto_at \"%1\"").arg(path) + (place.isEmpty() ? QString() : u' ' + place));
    };
    QString out;
    for (const CommandOption &option : command.namedOptions()) {
        out += optionLine(option, command.path.isEmpty() ? QString() : at({}));
    }
    for (const CommandDescription &below : command.commands) {
        out += QStringLiteral("complete -c zelto%1 -a %2 -d %3\n")
                   .arg(at(QStringLiteral("0")), below.path.last(), quoted(below.summary));
    }
    qsizetype place = 0;
    for (const CommandOption &argument : command.arguments()) {
        const QString offered = values(argument);
        if (!offered.isEmpty()) {
            out += QStringLiteral("complete -c zelto%1%2\n")
                       .arg(at(argument.isRepeated ? QString() : QString::number(place)), offered);
        }
        ++place;
    }
    return out;
}

} // namespace

QString zqFishCompletions(const CommandDescription &program)
{
    QString out =
        QString::fromUtf8(beginning).arg(quotedAll(zqOptionsWithValues(program)), quotedAll(zqCommandPaths(program)));
    out += linesOf(program);
    for (const CommandDescription *command : program.all()) {
        out += linesOf(*command);
    }
    return out;
}

// The manual page, in the requests of man(7).

#include "Classes/Command/CommandDescription.h"
#include "Kit/Foundation/ZQLocalized.h"

namespace {

// Text that no formatter takes for a request, and in which a minus can be copied into a shell.
QString escaped(const QString &given)
{
    QString out;
    for (const char32_t letter : given.toUcs4()) {
        if (letter == U'\\') {
            out += QStringLiteral("\\e");
        } else if (letter == U'-') {
            out += QStringLiteral("\\-");
        } else if (letter == U'\'') {
            out += QStringLiteral("\\(aq");
        } else if (letter == U'`') {
            out += QStringLiteral("\\(ga");
        } else if (letter == U'^') {
            out += QStringLiteral("\\(ha");
        } else if (letter == U'~') {
            out += QStringLiteral("\\(ti");
        } else if (letter > 126) {
            constexpr int hexadecimal = 16;
            out += QStringLiteral("\\[u%1]").arg(
                QString::number(uint(letter), hexadecimal).toUpper().rightJustified(4, u'0'));
        } else {
            out += QChar(char16_t(letter));
        }
    }
    return out.startsWith(u'.') ? QStringLiteral("\\&") + out : out;
}

// A sentence, in which what stands between backquotes is bold.
QString sentence(const QString &given)
{
    QString out;
    bool isBold = false;
    for (const QString &part : given.split(u'`')) {
        out += isBold ? QStringLiteral("\\fB") + escaped(part) + QStringLiteral("\\fR") : escaped(part);
        isBold = !isBold;
    }
    return out;
}

QString quoted(const QString &given)
{
    return u'"' + escaped(given).replace(u'"', QStringLiteral("\\(dq")) + u'"';
}

QString optionAsRoff(const CommandOption &option)
{
    QStringList names;
    for (const QString &name : option.names) {
        names.append(QStringLiteral("\\fB%1\\fR").arg(escaped(name)));
    }
    const QString value = option.value.isEmpty() ? QString() : QStringLiteral("\\fI%1\\fR").arg(escaped(option.value));
    const QString gap = !names.isEmpty() && !value.isEmpty() ? QStringLiteral(" ") : QString();
    return QStringLiteral(".TP\n%1%2%3\n%4%5\n")
        .arg(names.join(QStringLiteral(", ")), gap, value, sentence(option.meaning),
             option.meaning.isEmpty() ? QStringLiteral("\\&") : QStringLiteral("."));
}

QString literal(const QString &lines)
{
    QString out = QStringLiteral(".PP\n.nf\n");
    for (const QString &line : lines.split(u'\n')) {
        out += escaped(line) + u'\n';
    }
    return out + QStringLiteral(".fi\n");
}

QString commandAsRoff(const CommandDescription &command)
{
    const QString name = command.path.join(u' ');
    QString out = QStringLiteral(".SS %1\n\\fBzelto %2\\fR %3\n.PP\n%4.\n")
                      .arg(quoted(name), escaped(name), escaped(command.synopsis()), sentence(command.summary));
    out.replace(QStringLiteral("\\fR \n"), QStringLiteral("\\fR\n"));
    for (const CommandOption &option : command.options) {
        out += optionAsRoff(option);
    }
    if (!command.footer.isEmpty()) {
        out += literal(command.footer);
    }
    return out;
}

struct Named
{
    const char *name;
    QString meaning;
};

QString listed(const QList<Named> &rows)
{
    QString out;
    for (const Named &row : rows) {
        out += QStringLiteral(".TP\n.B %1\n%2\n").arg(escaped(QString::fromUtf8(row.name)), sentence(row.meaning));
    }
    return out;
}

QString surroundings()
{
    QString out = QStringLiteral(".SH FILES\n");
    out += listed({
        {"$XDG_DATA_HOME/Zelto/Zelto.ztlibrary",
         zqLocalized("The library, unless another one was chosen; ~/.local/share without the variable.")},
        {"$XDG_CONFIG_HOME/Zelto/defaults.json",
         zqLocalized("The preferences, which `zelto defaults` reads and changes; ~/.config without the variable.")},
    });
    out += QStringLiteral(".SH ENVIRONMENT\n");
    out += listed({
        {"XDG_DATA_HOME, XDG_CONFIG_HOME, XDG_RUNTIME_DIR, TMPDIR",
         zqLocalized("Where everything is kept that the program writes.")},
        {"QT_LOGGING_RULES", zqLocalized("As `zelto.*.debug=true`, which turns on the log of every subsystem.")},
        {"ZELTO_TRACE", zqLocalized("As `import,store`, or `all`: print how long the traced steps took.")},
    });
    return out;
}

} // namespace

QString zqCommandsAsManual(const CommandDescription &program, const QString &version)
{
    QString out = QStringLiteral(".TH ZELTO 1 \"\" %1 \"User Commands\"\n")
                      .arg(quoted((QStringLiteral("Zelto ") + version).trimmed()));
    out += QStringLiteral(".SH NAME\nzelto \\- %1\n").arg(sentence(zqLocalized("keep a library of assets")));
    out += QStringLiteral(".SH SYNOPSIS\n"
                          ".B zelto\n[\\fB\\-\\-library\\fR \\fIDIR\\fR] [\\fIFILE\\fR]\\[u2026]\n.br\n"
                          ".B zelto\n[\\fB\\-\\-library\\fR \\fIDIR\\fR] \\fICOMMAND\\fR \\[u2026]\n");
    out += QStringLiteral(".SH DESCRIPTION\n%1\n.PP\n%2\n.PP\n%3\n")
               .arg(sentence(program.summary),
                    sentence(zqLocalized("Without a command the window opens, with the files that are named. A command "
                                         "does one thing and exits; when a window has the library open, it runs in the "
                                         "window's process, so that two processes never write one library.")),
                    sentence(zqLocalized("Only data goes to standard output; errors go to standard error.")));
    out += QStringLiteral(".SH OPTIONS\n");
    for (const CommandOption &option : program.options) {
        out += optionAsRoff(option);
    }
    out += QStringLiteral(".SH COMMANDS\n");
    for (const CommandDescription *command : program.all()) {
        if (command->isRunnable) {
            out += commandAsRoff(*command);
        }
    }
    out += QStringLiteral(".SH \"EXIT STATUS\"\n");
    for (const ExitStatus &status : zqExitStatuses()) {
        out += QStringLiteral(".TP\n.B %1\n%2.\n").arg(QString::number(status.status), sentence(status.meaning));
    }
    return out + surroundings();
}

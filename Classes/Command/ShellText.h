#pragma once

#include "Classes/Command/CommandDescription.h"

#include <QString>
#include <QStringList>

// What the writers of completions share.

// In single quotes, as bash and zsh read them.
QString zqShellQuoted(const QString &text);
// The options whose next word is their value, in all of the program: words that are none of a command's own.
QStringList zqOptionsWithValues(const CommandDescription &program);
// Every command's words, joined by blanks.
QStringList zqCommandPaths(const CommandDescription &program);

QString zqBashCompletions(const CommandDescription &program);
QString zqZshCompletions(const CommandDescription &program);
QString zqFishCompletions(const CommandDescription &program);

#pragma once

#include <QLocale>
#include <QString>

// Shows the texts of the program, and those of the toolkit's own buttons and dialogs, in the first of the person's
// languages (the desktop's, or LANGUAGE) that there is a catalogue for, and lays the windows out in its direction.
// English needs none. The catalogues are `zelto_LANGUAGE.qm`. Gives the language, "en" where there was none.
// Main thread, once the application object is there and before any text is shown.
QString zqInstallLanguage(const QLocale &locale = QLocale(),
                          const QString &folder = QStringLiteral(":/zelto/languages"));

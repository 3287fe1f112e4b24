#pragma once

#include <QLocale>
#include <QString>

// The language that texts are shown in, and the way it is written, which windows are laid out in.
struct ZQLanguage
{
    QString code; // "en" where there was no catalogue
    Qt::LayoutDirection direction = Qt::LeftToRight;
};

// Shows the texts of the program, and those of the toolkit's own buttons and dialogs, in the first of the person's
// languages (the desktop's, or LANGUAGE) that there is a catalogue for. English needs none. The catalogues are
// `zelto_LANGUAGE.qm`. Main thread, once the application object is there and before any text is shown.
ZQLanguage zqInstallLanguage(const QLocale &locale = QLocale(),
                             const QString &folder = QStringLiteral(":/zelto/languages"));

#pragma once

#include <QLocale>
#include <QString>

#include <optional>

// The language that texts are shown in, and the way it is written, which windows are laid out in.
struct ZQLanguage
{
    QString code; // "en" where there was no catalogue
    Qt::LayoutDirection direction = Qt::LeftToRight;
    // For numbers, sizes and dates among these texts where the person's own is of another language, which there was no
    // catalogue for: in the language of the texts, as it is written in the person's country. Null: their own.
    std::optional<QLocale> locale = {};
};

// Shows the texts of the program, and those of the toolkit's own buttons and dialogs, in the first of the person's
// languages (the desktop's, or LANGUAGE) that there is a catalogue for. English needs none. The catalogues are
// `zelto_LANGUAGE.qm`. The default locale is left to the caller. Main thread, once the application object is there and
// before any text is shown.
ZQLanguage zqInstallLanguage(const QLocale &locale = QLocale(),
                             const QString &folder = QStringLiteral(":/zelto/languages"));

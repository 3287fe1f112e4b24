#include "Kit/Foundation/ZQLanguage.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

#include <memory>

namespace {

bool install(const QString &name, const QString &folder)
{
    auto translator = std::make_unique<QTranslator>(QCoreApplication::instance());
    return translator->load(name, folder) && QCoreApplication::installTranslator(translator.release());
}

// Digits and names of months of another language would stand alone among the texts.
std::optional<QLocale> localeBeside(const QString &code, const QLocale &person)
{
    const QLocale texts(code);
    if (person.language() == texts.language() || person.language() == QLocale::C) {
        return std::nullopt;
    }
    const QLocale there(texts.language(), person.territory());
    if (there.territory() == person.territory()) {
        return there;
    }
    return texts.language() == QLocale::English ? QLocale(QLocale::English, QLocale::World) : texts;
}

} // namespace

ZQLanguage zqInstallLanguage(const QLocale &locale, const QString &folder)
{
    const QStringList languages = locale.uiLanguages();
    for (const QString &language : languages) {
        const QString code = language.section(u'-', 0, 0);
        if (code == u"en" || code == u"C") {
            break; // what comes after English is wanted less than it
        }
        if (!install(QStringLiteral("zelto_") + code, folder)) {
            continue;
        }
        // What the toolkit says itself; it goes with the program's language even where the desktop has another first.
        install(QStringLiteral("qtbase_") + code, QLibraryInfo::path(QLibraryInfo::TranslationsPath));
        // The toolkit knows the direction from a catalogue of its own, which need not be there.
        return {code, QLocale(code).textDirection(), localeBeside(code, locale)};
    }
    const QString english = QStringLiteral("en");
    return {.code = english, .locale = localeBeside(english, locale)};
}

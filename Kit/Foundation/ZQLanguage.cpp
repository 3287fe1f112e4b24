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
        return {code, QLocale(code).textDirection()};
    }
    return {QStringLiteral("en")};
}

#include "Classes/Browsing/Index/KindNames.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Persistence/ZQPredicate.h"

#include <QMimeDatabase>

#include <algorithm>
#include <map>

namespace {

struct Kind
{
    QString name;   // folded
    QString family; // "image"
};

// Documents of designers that the system's types lack, or take for something else.
struct DesignKind
{
    const char *extension;
    const char *name;
    const char *family;
};
constexpr DesignKind designKinds[] = {
    {"otf", zqKey("OpenType font"), "font"},          {"sketch", zqKey("Sketch document"), "document"},
    {"acorn", zqKey("Acorn document"), "document"},   {"abr", zqKey("Photoshop brush"), "brush"},
    {"indd", zqKey("InDesign document"), "document"}, {"afdesign", zqKey("Affinity Designer document"), "document"},
};

// Types of other families are thousands, each a file to read; those of a library's documents are these.
constexpr const char *documentExtensions[] = {"ai", "pdf", "ps", "zip", "rar", "7z"};

const DesignKind *designKindOf(const QString &extension)
{
    for (const DesignKind &kind : designKinds) {
        if (extension.compare(QLatin1StringView(kind.extension), Qt::CaseInsensitive) == 0) {
            return &kind;
        }
    }
    return nullptr;
}

QMimeType typeOf(const QString &extension)
{
    return QMimeDatabase().mimeTypeForFile(QStringLiteral("x.") + extension, QMimeDatabase::MatchExtension);
}

std::map<QString, Kind> kindsByExtension()
{
    std::map<QString, Kind> kinds;
    const auto add = [&kinds](const QString &extension, const QString &family) {
        kinds[extension] = {zqFold(KindNames::nameOfExtension(extension)), family};
    };
    for (const QMimeType &type : QMimeDatabase().allMimeTypes()) {
        const QString family = type.name().section(u'/', 0, 0);
        if (family == u"image" || family == u"font" || family == u"video") {
            for (const QString &extension : type.suffixes()) {
                add(extension.toLower(), family);
            }
        }
    }
    for (const char *extension : documentExtensions) {
        add(QLatin1StringView(extension), QStringLiteral("document"));
    }
    for (const DesignKind &kind : designKinds) {
        add(QLatin1StringView(kind.extension), QLatin1StringView(kind.family));
    }
    return kinds;
}

} // namespace

QString KindNames::nameOfExtension(const QString &extension)
{
    if (const DesignKind *kind = designKindOf(extension)) {
        return zqLocalized(kind->name);
    }
    const QMimeType type = typeOf(extension);
    const QString comment = type.isDefault() ? QString() : type.comment();
    return comment.isEmpty() ? extension.toUpper() : comment.left(1).toUpper() + comment.mid(1);
}

QString KindNames::wordOfExtension(const QString &extension)
{
    static ZQMutex lock;
    static std::map<QString, QString> known;
    const QString key = zqFold(extension);
    const ZQLockGuard guard(lock);
    if (const auto found = known.find(key); found != known.end()) {
        return found->second;
    }
    const QString name = nameOfExtension(key);
    const auto isOfOneKind = [&](const QString &text) {
        const QStringList found = extensionsOfKind(text);
        return found.contains(key) && std::all_of(found.begin(), found.end(), [&](const QString &each) {
                   return each == text || nameOfExtension(each) == name;
               });
    };
    const QString word = zqFold(name.section(u' ', 0, 0));
    return known[key] = isOfOneKind(word) ? word : isOfOneKind(zqFold(name)) ? zqFold(name) : key;
}

QStringList KindNames::extensionsOfKind(const QString &text)
{
    static const std::map<QString, Kind> kinds = kindsByExtension();
    const QString wanted = zqFold(text);
    QStringList extensions{wanted};
    for (const auto &[extension, kind] : kinds) {
        if (extension != wanted && (kind.family == wanted || kind.name.contains(wanted))) {
            extensions.append(extension);
        }
    }
    extensions.sort();
    return extensions;
}

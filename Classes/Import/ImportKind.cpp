#include "Classes/Import/ImportKind.h"

#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Imaging/ZQImageSource.h"

#include <QFileInfo>

#include <algorithm>

namespace {

using Match = ImportKind::Match;
using Takes = ImportKind::Takes;

// The first match wins. EPS has an importer and is refused all the same.
constexpr ImportKind importKinds[] = {
    {"public.jpeg", Match::Type, Takes::File, Importer::Image},
    {"public.jpeg-2000", Match::Type, Takes::File, Importer::Image},
    {"public.tiff", Match::Type, Takes::File, Importer::Image},
    {"com.compuserve.gif", Match::Type, Takes::File, Importer::Image},
    {"public.png", Match::Type, Takes::File, Importer::Image},
    {"com.apple.icns", Match::Type, Takes::File, Importer::Image},
    {"com.microsoft.bmp", Match::Type, Takes::File, Importer::Image},
    {"com.microsoft.ico", Match::Type, Takes::File, Importer::Image},
    {"public.svg-image", Match::Type, Takes::File, Importer::SVG},
    {"com.adobe.photoshop-image", Match::Type, Takes::File, Importer::Image},
    {"com.adobe.illustrator.ai-image", Match::Type, Takes::File, Importer::Image},
    {"com.adobe.encapsulated-postscript", Match::Type, Takes::Nothing, Importer::EPS},
    {"com.truevision.tga-image", Match::Type, Takes::File, Importer::Image},
    {"com.pixelmator.pxm", Match::Type, Takes::File, Importer::QuickLook},
    {"com.pixen.pxim", Match::Type, Takes::File, Importer::QuickLook},
    {"com.flyingmeat.Acorn", Match::Type, Takes::File, Importer::Acorn},
    {"acorn", Match::Extension, Takes::File, Importer::Acorn},
    {"sketch", Match::Extension, Takes::Package, Importer::Sketch},
    {"snap", Match::Extension, Takes::Package, Importer::Snap},
    {"public.camera-raw-image", Match::ConformingType, Takes::File, Importer::Image},
    {"com.adobe.raw-image", Match::ConformingType, Takes::File, Importer::Image},
    {"com.adobe.pdf", Match::Type, Takes::File, Importer::PDF},
    {"zip", Match::Extension, Takes::File, Importer::Archive},
    {"rar", Match::Extension, Takes::File, Importer::Archive},
};

// Ahead of the others, while the person wants them.
constexpr ImportKind modernKinds[] = {
    {"org.webmproject.webp", Match::Type, Takes::File, Importer::Image},
    {"public.heic", Match::Type, Takes::File, Importer::Image},
    {"public.avif", Match::Type, Takes::File, Importer::Image},
    {"public.jpeg-xl", Match::Type, Takes::File, Importer::Image},
    {"sketch", Match::Extension, Takes::FileOrPackage, Importer::Sketch},
};

bool matches(const ImportKind &kind, const QString &type, const QString &extension)
{
    const QLatin1String name(kind.name);
    switch (kind.match) {
    case Match::Type:
        return type == name;
    case Match::ConformingType:
        return !type.isEmpty() && ZQTypeIdentifier::conforms(type, name);
    case Match::Extension:
        return extension == name;
    }
    return false;
}

template <size_t count>
const ImportKind *firstMatch(const ImportKind (&kinds)[count], const QString &type, const QString &extension)
{
    const ImportKind *const end = kinds + count;
    const ImportKind *const found =
        std::find_if(kinds, end, [&](const ImportKind &kind) { return matches(kind, type, extension); });
    return found == end ? nullptr : found;
}

bool areModernImagesImported()
{
    return ZQUserDefaults::standardUserDefaults().boolForKey(QStringLiteral("ImportModernImages"));
}

} // namespace

const ImportKind *importKindForPath(const QString &path, ModernImages modern)
{
    const QString extension = zqPathExtension(path).toLower();
    const QString type = ZQTypeIdentifier::forExtension(extension);
    const ImportKind *const kind = firstMatch(modernKinds, type, extension);
    const bool isWanted = kind && (modern == ModernImages::Always || areModernImagesImported());
    return isWanted ? kind : firstMatch(importKinds, type, extension);
}

QStringList importableExtensions()
{
    QStringList candidates = ZQImageSource::supportedExtensions();
    QList<ImportKind> kinds(std::begin(importKinds), std::end(importKinds));
    kinds.append(QList<ImportKind>(std::begin(modernKinds), std::end(modernKinds)));
    for (const ImportKind &kind : std::as_const(kinds)) {
        const QString name = QString::fromLatin1(kind.name);
        candidates += kind.match == Match::Extension ? QStringList(name) : ZQTypeIdentifier::extensions(name);
    }
    candidates.removeDuplicates();
    candidates.removeIf([](const QString &extension) {
        const ImportKind *kind = importKindForPath(QStringLiteral("file.") + extension);
        return !kind || !kind->takesFiles();
    });
    return candidates;
}

bool isArchivePath(const QString &path)
{
    const QString extension = zqPathExtension(path).toLower();
    return extension == u"zip" || extension == u"rar";
}

bool isSketchFile(const QString &path)
{
    return zqPathExtension(path).compare(u"sketch", Qt::CaseInsensitive) == 0 && QFileInfo(path).isFile();
}

#include "Classes/Import/ImportKind.h"

#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Imaging/ZQImageSource.h"

#include <QFileInfo>

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

} // namespace

const ImportKind *importKindForPath(const QString &path)
{
    const QString extension = zqPathExtension(path).toLower();
    const QString type = ZQTypeIdentifier::forExtension(extension);
    for (const ImportKind &kind : importKinds) {
        if (matches(kind, type, extension)) {
            return &kind;
        }
    }
    return nullptr;
}

QStringList importableExtensions()
{
    QStringList candidates = ZQImageSource::supportedExtensions();
    for (const ImportKind &kind : importKinds) {
        const QString name = QString::fromLatin1(kind.name);
        candidates += kind.match == Match::Extension ? QStringList(name) : ZQTypeIdentifier::extensions(name);
    }
    candidates.removeDuplicates();
    candidates.removeIf([](const QString &extension) {
        const ImportKind *kind = importKindForPath(QStringLiteral("file.") + extension);
        return !kind || kind->takes != Takes::File;
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

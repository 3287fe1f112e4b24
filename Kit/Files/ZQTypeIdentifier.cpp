#include "Kit/Files/ZQTypeIdentifier.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QHash>

#include <string_view>

namespace {

// One type: its extensions (preferred first) and the types it is a kind of, each separated by a blank.
struct Row
{
    std::string_view type;
    std::string_view extensions;
    std::string_view parents;
    std::string_view mimeType;
    const char *description;
};

constexpr std::string_view image = "public.image";
constexpr std::string_view raw = "public.camera-raw-image";
constexpr const char *rawDescription = "Camera raw image";

constexpr Row rows[] = {
    {"public.item", "", "", "", "File"},
    {"public.data", "", "public.item", "application/octet-stream", "File"},
    {"public.content", "", "", "", "File"},
    {"public.image", "", "public.data public.content", "", "Image"},
    {"public.composite-content", "", "public.content", "", "Document"},
    {"public.text", "", "public.data public.content", "", "Text"},
    {"public.archive", "", "public.data", "", "Archive"},
    {"public.audiovisual-content", "", "public.data public.content", "", "Media"},
    {"public.movie", "", "public.audiovisual-content", "", "Movie"},
    {"public.audio", "", "public.audiovisual-content", "", "Audio"},
    {"public.font", "", "public.data public.content", "", "Font"},
    {"public.directory", "", "public.item", "inode/directory", "Folder"},
    {"public.folder", "", "public.directory", "inode/directory", "Folder"},
    {"com.apple.package", "", "public.directory", "", "Package"},

    {"public.jpeg", "jpg jpeg jpe jfif", image, "image/jpeg", "JPEG image"},
    {"public.jpeg-2000", "jp2 jpf jpx j2k j2c jpc", image, "image/jp2", "JPEG 2000 image"},
    {"public.tiff", "tiff tif", image, "image/tiff", "TIFF image"},
    {"com.compuserve.gif", "gif", image, "image/gif", "GIF image"},
    {"public.png", "png apng", image, "image/png", "PNG image"},
    {"com.apple.icns", "icns", image, "image/x-icns", "Icon image"},
    {"com.microsoft.bmp", "bmp dib", image, "image/bmp", "BMP image"},
    {"com.microsoft.ico", "ico", image, "image/vnd.microsoft.icon", "Windows icon image"},
    {"public.svg-image", "svg svgz", image, "image/svg+xml", "Scalable vector graphic"},
    {"com.adobe.photoshop-image", "psd", image, "image/vnd.adobe.photoshop", "Photoshop image"},
    {"com.adobe.illustrator.ai-image", "ai", image, "application/illustrator", "Illustrator image"},
    {"com.adobe.encapsulated-postscript", "eps epsf epsi", image, "image/x-eps", "Encapsulated PostScript image"},
    {"com.truevision.tga-image", "tga", image, "image/x-tga", "TGA image"},
    {"com.pixelmator.pxm", "pxm", image, "image/x-pixelmator", "Pixelmator image"},
    {"com.pixen.pxim", "pxim", image, "image/x-pixen", "Pixen image"},
    {"com.flyingmeat.Acorn", "acorn", image, "image/x-acorn", "Acorn document"},
    {"org.webmproject.webp", "webp", image, "image/webp", "WebP image"},
    {"public.heic", "heic heif hif", image, "image/heic", "HEIC image"},
    {"public.avif", "avif avifs", image, "image/avif", "AVIF image"},
    {"public.jpeg-xl", "jxl", image, "image/jxl", "JPEG XL image"},
    {"com.ilm.openexr-image", "exr", image, "image/x-exr", "OpenEXR image"},
    {"public.radiance", "hdr", image, "image/vnd.radiance", "Radiance image"},
    {"public.pbm", "ppm pgm pbm pnm", image, "image/x-portable-anymap", "Portable bitmap image"},
    {"org.gimp.xcf", "xcf", image, "image/x-xcf", "GIMP image"},
    {"org.krita.kra", "kra", image, "application/x-krita", "Krita document"},

    {raw, "", image, "image/x-dcraw", rawDescription},
    {"com.adobe.raw-image", "dng", raw, "image/x-adobe-dng", "Digital negative image"},
    {"com.canon.cr2-raw-image", "cr2", raw, "image/x-canon-cr2", rawDescription},
    {"com.canon.cr3-raw-image", "cr3", raw, "image/x-canon-cr3", rawDescription},
    {"com.canon.crw-raw-image", "crw", raw, "image/x-canon-crw", rawDescription},
    {"com.nikon.raw-image", "nef", raw, "image/x-nikon-nef", rawDescription},
    {"com.nikon.nrw-raw-image", "nrw", raw, "image/x-nikon-nrw", rawDescription},
    {"com.sony.arw-raw-image", "arw", raw, "image/x-sony-arw", rawDescription},
    {"com.sony.raw-image", "srf", raw, "image/x-sony-srf", rawDescription},
    {"com.sony.sr2-raw-image", "sr2", raw, "image/x-sony-sr2", rawDescription},
    {"com.fuji.raw-image", "raf", raw, "image/x-fuji-raf", rawDescription},
    {"com.olympus.raw-image", "orf", raw, "image/x-olympus-orf", rawDescription},
    {"com.panasonic.rw2-raw-image", "rw2", raw, "image/x-panasonic-rw2", rawDescription},
    {"com.panasonic.raw-image", "raw", raw, "image/x-panasonic-rw", rawDescription},
    {"com.pentax.raw-image", "pef", raw, "image/x-pentax-pef", rawDescription},
    {"com.pentax.ptx-raw-image", "ptx", raw, "image/x-pentax-ptx", rawDescription},
    {"com.kodak.raw-image", "dcr", raw, "image/x-kodak-dcr", rawDescription},
    {"com.kodak.k25-raw-image", "k25", raw, "image/x-kodak-k25", rawDescription},
    {"com.kodak.kdc-raw-image", "kdc", raw, "image/x-kodak-kdc", rawDescription},
    {"com.konicaminolta.raw-image", "mrw", raw, "image/x-minolta-mrw", rawDescription},
    {"com.leica.rwl-raw-image", "rwl", raw, "image/x-leica-rwl", rawDescription},
    {"com.samsung.raw-image", "srw", raw, "image/x-samsung-srw", rawDescription},
    {"com.sigma.raw-image", "x3f", raw, "image/x-sigma-x3f", rawDescription},
    {"com.hasselblad.3fr-raw-image", "3fr", raw, "image/x-hasselblad-3fr", rawDescription},
    {"com.hasselblad.fff-raw-image", "fff", raw, "image/x-hasselblad-fff", rawDescription},
    {"com.epson.raw-image", "erf", raw, "image/x-epson-erf", rawDescription},
    {"com.mamiya.mef-raw-image", "mef", raw, "image/x-mamiya-mef", rawDescription},
    {"com.leafamerica.raw-image", "mos", raw, "image/x-leaf-mos", rawDescription},
    {"com.phaseone.raw-image", "iiq", raw, "image/x-phaseone-iiq", rawDescription},

    {"com.adobe.pdf", "pdf", "public.data public.composite-content", "application/pdf", "PDF document"},
    {"com.adobe.postscript", "ps", "public.data public.content", "application/postscript", "PostScript document"},
    {"com.bohemiancoding.sketch.drawing", "sketch", "public.data public.content", "image/x-sketch", "Sketch document"},
    {"com.adobe.indesign-document", "indd", "public.data public.content", "application/x-indesign",
     "InDesign document"},
    {"public.plain-text", "txt text log", "public.text", "text/plain", "Plain text document"},
    {"net.daringfireball.markdown", "md markdown", "public.plain-text", "text/markdown", "Markdown document"},
    {"public.comma-separated-values-text", "csv", "public.plain-text", "text/csv", "Comma-separated values"},
    {"public.rtf", "rtf", "public.text", "application/rtf", "Rich text document"},
    {"public.html", "html htm", "public.text", "text/html", "HTML document"},
    {"public.css", "css", "public.text", "text/css", "Style sheet"},
    {"public.json", "json", "public.text", "application/json", "JSON document"},
    {"public.xml", "xml", "public.text", "application/xml", "XML document"},
    {"com.apple.property-list", "plist", "public.data", "application/x-plist", "Property list"},
    {"com.microsoft.word.doc", "doc", "public.data public.content", "application/msword", "Word document"},
    {"org.openxmlformats.wordprocessingml.document", "docx", "public.data public.content",
     "application/vnd.openxmlformats-officedocument.wordprocessingml.document", "Word document"},
    {"org.openxmlformats.presentationml.presentation", "pptx", "public.data public.content",
     "application/vnd.openxmlformats-officedocument.presentationml.presentation", "Presentation"},
    {"org.openxmlformats.spreadsheetml.sheet", "xlsx", "public.data public.content",
     "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet", "Spreadsheet"},
    {"org.oasis-open.opendocument.text", "odt", "public.data public.content", "application/vnd.oasis.opendocument.text",
     "Text document"},
    {"org.oasis-open.opendocument.graphics", "odg", "public.data public.content",
     "application/vnd.oasis.opendocument.graphics", "Drawing"},

    {"public.zip-archive", "zip", "public.archive", "application/zip", "ZIP archive"},
    {"com.rarlab.rar-archive", "rar", "public.archive", "application/vnd.rar", "RAR archive"},
    {"org.7-zip.7-zip-archive", "7z", "public.archive", "application/x-7z-compressed", "7-Zip archive"},
    {"public.tar-archive", "tar", "public.archive", "application/x-tar", "Tape archive"},
    {"org.gnu.gnu-zip-archive", "gz tgz", "public.archive", "application/gzip", "GZIP archive"},

    {"public.mpeg-4", "mp4", "public.movie", "video/mp4", "MPEG-4 movie"},
    {"com.apple.m4v-video", "m4v", "public.movie", "video/x-m4v", "MPEG-4 movie"},
    {"com.apple.quicktime-movie", "mov qt", "public.movie", "video/quicktime", "QuickTime movie"},
    {"public.avi", "avi", "public.movie", "video/x-msvideo", "AVI movie"},
    {"org.webmproject.webm", "webm", "public.movie", "video/webm", "WebM movie"},
    {"org.matroska.mkv", "mkv", "public.movie", "video/x-matroska", "Matroska movie"},
    {"public.mp3", "mp3", "public.audio", "audio/mpeg", "MP3 audio"},
    {"public.mpeg-4-audio", "m4a", "public.audio", "audio/mp4", "MPEG-4 audio"},
    {"com.microsoft.waveform-audio", "wav", "public.audio", "audio/x-wav", "Waveform audio"},
    {"org.xiph.flac", "flac", "public.audio", "audio/flac", "FLAC audio"},
    {"public.truetype-ttf-font", "ttf", "public.font", "font/ttf", "TrueType font"},
    {"public.opentype-font", "otf", "public.font", "font/otf", "OpenType font"},
};

QString text(std::string_view view)
{
    return QString::fromLatin1(view.data(), static_cast<qsizetype>(view.size()));
}
QStringList words(std::string_view view)
{
    return text(view).split(u' ', Qt::SkipEmptyParts);
}

const Row *rowOfType(const QString &type)
{
    static const QHash<QString, const Row *> index = [] {
        QHash<QString, const Row *> built;
        for (const Row &row : rows) {
            built.insert(text(row.type).toLower(), &row);
        }
        return built;
    }();
    return index.value(type.toLower());
}

} // namespace

QString ZQTypeIdentifier::forExtension(const QString &extension)
{
    static const QHash<QString, QString> index = [] {
        QHash<QString, QString> built;
        for (const Row &row : rows) {
            for (const QString &word : words(row.extensions)) {
                built.insert(word, text(row.type));
            }
        }
        return built;
    }();
    return index.value(extension.toLower());
}

QString ZQTypeIdentifier::forPath(const QString &path)
{
    return forExtension(zqPathExtension(path));
}

bool ZQTypeIdentifier::conforms(const QString &type, const QString &other)
{
    if (type.isEmpty() || other.isEmpty()) {
        return false;
    }
    if (type.compare(other, Qt::CaseInsensitive) == 0) {
        return true;
    }
    const Row *const row = rowOfType(type);
    if (!row) {
        return false;
    }
    const QStringList parents = words(row->parents);
    return std::any_of(parents.cbegin(), parents.cend(),
                       [&](const QString &parent) { return conforms(parent, other); });
}

QString ZQTypeIdentifier::preferredExtension(const QString &type)
{
    return extensions(type).value(0);
}

QString ZQTypeIdentifier::mimeType(const QString &type)
{
    const Row *const row = rowOfType(type);
    return row ? text(row->mimeType) : QString();
}

QStringList ZQTypeIdentifier::extensions(const QString &type)
{
    const Row *const row = rowOfType(type);
    return row ? words(row->extensions) : QStringList();
}

QString ZQTypeIdentifier::localizedDescription(const QString &type)
{
    const Row *const row = rowOfType(type);
    return zqLocalized(row ? row->description : "File");
}

QString ZQTypeIdentifier::forMimeType(const QString &mimeType)
{
    const QString wanted = mimeType.section(u';', 0, 0).trimmed().toLower();
    static const QHash<QString, QString> otherNames = {
        {QStringLiteral("image/jpg"), JPEG},
        {QStringLiteral("image/pjpeg"), JPEG},
        {QStringLiteral("image/x-png"), PNG},
        {QStringLiteral("image/x-icon"), ICO},
        {QStringLiteral("image/ico"), ICO},
        {QStringLiteral("image/x-ms-bmp"), BMP},
        {QStringLiteral("image/x-bmp"), BMP},
        {QStringLiteral("image/svg"), SVG},
        {QStringLiteral("image/x-photoshop"), PSD},
        {QStringLiteral("application/x-photoshop"), PSD},
        {QStringLiteral("image/x-targa"), TGA},
        {QStringLiteral("application/eps"), EPS},
        {QStringLiteral("application/x-pdf"), PDF},
        {QStringLiteral("image/heif"), HEIC},
        {QStringLiteral("application/x-zip-compressed"), QStringLiteral("public.zip-archive")},
        {QStringLiteral("application/x-rar-compressed"), QStringLiteral("com.rarlab.rar-archive")},
    };
    for (const Row &row : rows) {
        if (!row.extensions.empty() && text(row.mimeType) == wanted) {
            return text(row.type);
        }
    }
    return otherNames.value(wanted);
}

QString zqPathExtension(const QString &path)
{
    QString name = path;
    while (name.size() > 1 && name.endsWith(u'/')) {
        name.chop(1);
    }
    name = name.mid(name.lastIndexOf(u'/') + 1);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.mid(dot + 1) : QString();
}

QString zqBaseName(const QString &path)
{
    QString name = path;
    while (name.size() > 1 && name.endsWith(u'/')) {
        name.chop(1);
    }
    name = name.mid(name.lastIndexOf(u'/') + 1);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.left(dot) : name;
}

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
constexpr const char *rawDescription = zqKey("Camera raw image");

constexpr Row rows[] = {
    {"public.item", "", "", "", zqKey("File")},
    {"public.data", "", "public.item", "application/octet-stream", zqKey("File")},
    {"public.content", "", "", "", zqKey("File")},
    {"public.image", "", "public.data public.content", "", zqKey("Image")},
    {"public.composite-content", "", "public.content", "", zqKey("Document")},
    {"public.text", "", "public.data public.content", "", zqKey("Text")},
    {"public.archive", "", "public.data", "", zqKey("Archive")},
    {"public.audiovisual-content", "", "public.data public.content", "", zqKey("Media")},
    {"public.movie", "", "public.audiovisual-content", "", zqKey("Movie")},
    {"public.audio", "", "public.audiovisual-content", "", zqKey("Audio")},
    {"public.font", "", "public.data public.content", "", zqKey("Font")},
    {"public.directory", "", "public.item", "inode/directory", zqKey("Folder")},
    {"public.folder", "", "public.directory", "inode/directory", zqKey("Folder")},
    {"com.apple.package", "", "public.directory", "", zqKey("Package")},

    {"public.jpeg", "jpg jpeg jpe jfif", image, "image/jpeg", zqKey("JPEG image")},
    {"public.jpeg-2000", "jp2 jpf jpx j2k j2c jpc", image, "image/jp2", zqKey("JPEG 2000 image")},
    {"public.tiff", "tiff tif", image, "image/tiff", zqKey("TIFF image")},
    {"com.compuserve.gif", "gif", image, "image/gif", zqKey("GIF image")},
    {"public.png", "png apng", image, "image/png", zqKey("PNG image")},
    {"com.apple.icns", "icns", image, "image/x-icns", zqKey("Icon image")},
    {"com.microsoft.bmp", "bmp dib", image, "image/bmp", zqKey("BMP image")},
    {"com.microsoft.ico", "ico", image, "image/vnd.microsoft.icon", zqKey("Windows icon image")},
    {"public.svg-image", "svg svgz", image, "image/svg+xml", zqKey("Scalable vector graphic")},
    {"com.adobe.photoshop-image", "psd", image, "image/vnd.adobe.photoshop", zqKey("Photoshop image")},
    {"com.adobe.illustrator.ai-image", "ai", image, "application/illustrator", zqKey("Illustrator image")},
    {"com.adobe.encapsulated-postscript", "eps epsf epsi", image, "image/x-eps",
     zqKey("Encapsulated PostScript image")},
    {"com.truevision.tga-image", "tga", image, "image/x-tga", zqKey("TGA image")},
    {"com.pixelmator.pxm", "pxm", image, "image/x-pixelmator", zqKey("Pixelmator image")},
    {"com.pixen.pxim", "pxim", image, "image/x-pixen", zqKey("Pixen image")},
    {"com.flyingmeat.Acorn", "acorn", image, "image/x-acorn", zqKey("Acorn document")},
    {"org.webmproject.webp", "webp", image, "image/webp", zqKey("WebP image")},
    {"public.heic", "heic heif hif", image, "image/heic", zqKey("HEIC image")},
    {"public.avif", "avif avifs", image, "image/avif", zqKey("AVIF image")},
    {"public.jpeg-xl", "jxl", image, "image/jxl", zqKey("JPEG XL image")},
    {"com.ilm.openexr-image", "exr", image, "image/x-exr", zqKey("OpenEXR image")},
    {"public.radiance", "hdr", image, "image/vnd.radiance", zqKey("Radiance image")},
    {"public.pbm", "ppm pgm pbm pnm", image, "image/x-portable-anymap", zqKey("Portable bitmap image")},
    {"org.gimp.xcf", "xcf", image, "image/x-xcf", zqKey("GIMP image")},
    {"org.krita.kra", "kra", image, "application/x-krita", zqKey("Krita document")},

    {raw, "", image, "image/x-dcraw", rawDescription},
    {"com.adobe.raw-image", "dng", raw, "image/x-adobe-dng", zqKey("Digital negative image")},
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

    {"com.adobe.pdf", "pdf", "public.data public.composite-content", "application/pdf", zqKey("PDF document")},
    {"com.adobe.postscript", "ps", "public.data public.content", "application/postscript",
     zqKey("PostScript document")},
    {"com.bohemiancoding.sketch.drawing", "sketch", "public.data public.content", "image/x-sketch",
     zqKey("Sketch document")},
    {"com.adobe.indesign-document", "indd", "public.data public.content", "application/x-indesign",
     zqKey("InDesign document")},
    {"public.plain-text", "txt text log", "public.text", "text/plain", zqKey("Plain text document")},
    {"net.daringfireball.markdown", "md markdown", "public.plain-text", "text/markdown", zqKey("Markdown document")},
    {"public.comma-separated-values-text", "csv", "public.plain-text", "text/csv", zqKey("Comma-separated values")},
    {"public.rtf", "rtf", "public.text", "application/rtf", zqKey("Rich text document")},
    {"public.html", "html htm", "public.text", "text/html", zqKey("HTML document")},
    {"public.css", "css", "public.text", "text/css", zqKey("Style sheet")},
    {"public.json", "json", "public.text", "application/json", zqKey("JSON document")},
    {"public.xml", "xml", "public.text", "application/xml", zqKey("XML document")},
    {"com.apple.property-list", "plist", "public.data", "application/x-plist", zqKey("Property list")},
    {"com.microsoft.word.doc", "doc", "public.data public.content", "application/msword", zqKey("Word document")},
    {"org.openxmlformats.wordprocessingml.document", "docx", "public.data public.content",
     "application/vnd.openxmlformats-officedocument.wordprocessingml.document", zqKey("Word document")},
    {"org.openxmlformats.presentationml.presentation", "pptx", "public.data public.content",
     "application/vnd.openxmlformats-officedocument.presentationml.presentation", zqKey("Presentation")},
    {"org.openxmlformats.spreadsheetml.sheet", "xlsx", "public.data public.content",
     "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet", zqKey("Spreadsheet")},
    {"org.oasis-open.opendocument.text", "odt", "public.data public.content", "application/vnd.oasis.opendocument.text",
     zqKey("Text document")},
    {"org.oasis-open.opendocument.graphics", "odg", "public.data public.content",
     "application/vnd.oasis.opendocument.graphics", zqKey("Drawing")},

    {"public.zip-archive", "zip", "public.archive", "application/zip", zqKey("ZIP archive")},
    {"com.rarlab.rar-archive", "rar", "public.archive", "application/vnd.rar", zqKey("RAR archive")},
    {"org.7-zip.7-zip-archive", "7z", "public.archive", "application/x-7z-compressed", zqKey("7-Zip archive")},
    {"public.tar-archive", "tar", "public.archive", "application/x-tar", zqKey("Tape archive")},
    {"org.gnu.gnu-zip-archive", "gz tgz", "public.archive", "application/gzip", zqKey("GZIP archive")},

    {"public.mpeg-4", "mp4", "public.movie", "video/mp4", zqKey("MPEG-4 movie")},
    {"com.apple.m4v-video", "m4v", "public.movie", "video/x-m4v", zqKey("MPEG-4 movie")},
    {"com.apple.quicktime-movie", "mov qt", "public.movie", "video/quicktime", zqKey("QuickTime movie")},
    {"public.avi", "avi", "public.movie", "video/x-msvideo", zqKey("AVI movie")},
    {"org.webmproject.webm", "webm", "public.movie", "video/webm", zqKey("WebM movie")},
    {"org.matroska.mkv", "mkv", "public.movie", "video/x-matroska", zqKey("Matroska movie")},
    {"public.mp3", "mp3", "public.audio", "audio/mpeg", zqKey("MP3 audio")},
    {"public.mpeg-4-audio", "m4a", "public.audio", "audio/mp4", zqKey("MPEG-4 audio")},
    {"com.microsoft.waveform-audio", "wav", "public.audio", "audio/x-wav", zqKey("Waveform audio")},
    {"org.xiph.flac", "flac", "public.audio", "audio/flac", zqKey("FLAC audio")},
    {"public.truetype-ttf-font", "ttf", "public.font", "font/ttf", zqKey("TrueType font")},
    {"public.opentype-font", "otf", "public.font", "font/otf", zqKey("OpenType font")},
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
    return zqLocalized(row ? row->description : zqKey("File"));
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

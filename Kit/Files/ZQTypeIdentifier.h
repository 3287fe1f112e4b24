#pragma once

#include <QString>
#include <QStringList>

// Uniform type identifiers by file name extension alone; the content is never looked at. One constant table, any
// thread.
namespace ZQTypeIdentifier {

inline const QString JPEG = QStringLiteral("public.jpeg");
inline const QString JPEG2000 = QStringLiteral("public.jpeg-2000");
inline const QString TIFF = QStringLiteral("public.tiff");
inline const QString GIF = QStringLiteral("com.compuserve.gif");
inline const QString PNG = QStringLiteral("public.png");
inline const QString ICNS = QStringLiteral("com.apple.icns");
inline const QString BMP = QStringLiteral("com.microsoft.bmp");
inline const QString ICO = QStringLiteral("com.microsoft.ico");
inline const QString SVG = QStringLiteral("public.svg-image");
inline const QString PSD = QStringLiteral("com.adobe.photoshop-image");
inline const QString AI = QStringLiteral("com.adobe.illustrator.ai-image");
inline const QString EPS = QStringLiteral("com.adobe.encapsulated-postscript");
inline const QString TGA = QStringLiteral("com.truevision.tga-image");
inline const QString Pixelmator = QStringLiteral("com.pixelmator.pxm");
inline const QString Pixen = QStringLiteral("com.pixen.pxim");
inline const QString Acorn = QStringLiteral("com.flyingmeat.Acorn");
inline const QString CameraRaw = QStringLiteral("public.camera-raw-image");
inline const QString AdobeRaw = QStringLiteral("com.adobe.raw-image");
inline const QString PDF = QStringLiteral("com.adobe.pdf");
inline const QString WebP = QStringLiteral("org.webmproject.webp");
inline const QString HEIC = QStringLiteral("public.heic");
inline const QString AVIF = QStringLiteral("public.avif");
inline const QString JPEGXL = QStringLiteral("public.jpeg-xl");

// Empty when no type is known for the extension (given without its dot, case ignored).
QString forExtension(const QString &extension);
QString forPath(const QString &path);
// Whether `type` is `other` or one of its kinds (every raw format conforms to `CameraRaw`, "public.image", …).
bool conforms(const QString &type, const QString &other);
QString preferredExtension(const QString &type);
QString mimeType(const QString &type);
// The type a server's content type names (parameters are ignored); empty for an unknown one.
QString forMimeType(const QString &mimeType);
QStringList extensions(const QString &type); // preferred first
QString
localizedDescription(const QString &type); // "PNG image", "Scalable vector graphic", …; "File" for an unknown one

} // namespace ZQTypeIdentifier

// The extension of the last path component, without the dot, as written; empty for none and for ".name".
QString zqPathExtension(const QString &path);
// The last path component, without its extension.
QString zqBaseName(const QString &path);

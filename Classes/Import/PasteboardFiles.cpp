#include "Classes/Import/PasteboardFiles.h"

#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQFreeName.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"

#include <QFile>
#include <QFileInfo>
#include <QMimeData>

#include <algorithm>

namespace {

// Encoded pictures are kept as they are, never decoded here; the best first.
const QStringList &encodedFormats()
{
    static const QStringList formats{
        QStringLiteral("image/svg+xml"),  QStringLiteral("image/png"),
        QStringLiteral("image/x-png"),    QStringLiteral("image/jpeg"),
        QStringLiteral("image/jpg"),      QStringLiteral("image/gif"),
        QStringLiteral("image/tiff"),     QStringLiteral("application/pdf"),
        QStringLiteral("image/jp2"),      QStringLiteral("image/vnd.adobe.photoshop"),
        QStringLiteral("image/bmp"),      QStringLiteral("image/x-bmp"),
        QStringLiteral("image/x-ms-bmp"), QStringLiteral("image/x-tga"),
        QStringLiteral("image/x-icon"),   QStringLiteral("image/vnd.microsoft.icon"),
    };
    return formats;
}

// Empty when the address has none.
QString baseNameFromURL(const QUrl &url)
{
    constexpr qsizetype longest = 200; // bytes, which leaves room for a number
    return zqNumberedName(zqSafeName(zqBaseName(url.fileName(QUrl::FullyDecoded)), {}, ZQLeadingDots::Dropped), 0,
                          longest);
}

QString freePath(const QString &directory, const QString &baseName, const QString &extension)
{
    QString path = directory + u'/' + baseName + u'.' + extension;
    for (int number = 1; QFileInfo::exists(path); ++number) {
        path = directory + u'/' + zqFormat(QStringLiteral("%@ %d%@"), {baseName, number, QString(u'.' + extension)});
    }
    return path;
}

// The picture inside a "data:" address; empty when it is none.
QByteArray dataOfURL(const QUrl &url, QString *mimeType)
{
    const QString text = url.toString(QUrl::FullyEncoded);
    const qsizetype comma = text.indexOf(u',');
    if (url.scheme() != u"data" || comma < 0) {
        return {};
    }
    const QString header = text.mid(5, comma - 5);
    *mimeType = header.section(u';', 0, 0).toLower();
    const QByteArray body = QByteArray::fromPercentEncoding(text.mid(comma + 1).toUtf8());
    return header.endsWith(u";base64", Qt::CaseInsensitive) ? QByteArray::fromBase64(body) : body;
}

class PictureWriter
{
public:
    explicit PictureWriter(const std::function<QString()> &makeDirectory) : m_makeDirectory(makeDirectory) {}

    bool writeData(const QByteArray &data, const QString &mimeType, const QString &baseName)
    {
        const QString extension = ZQTypeIdentifier::preferredExtension(ZQTypeIdentifier::forMimeType(mimeType));
        if (data.isEmpty() || extension.isEmpty() || !hasDirectory()) {
            return false;
        }
        const QString path = freePath(m_directory, baseName, extension);
        ZQError error;
        return keep(path, zqWriteFileAtomically(path, data, &error), error);
    }

    QStringList paths() const { return m_paths; }

private:
    bool hasDirectory()
    {
        if (m_directory.isEmpty()) {
            m_directory = m_makeDirectory();
        }
        return !m_directory.isEmpty();
    }

    bool keep(const QString &path, bool isWritten, const ZQError &error)
    {
        if (isWritten) {
            m_paths.append(path);
        } else {
            qCWarning(zqLogImport).noquote()
                << "The clipboard's picture was not written:" << error.localizedDescription();
        }
        return isWritten;
    }

    const std::function<QString()> &m_makeDirectory;
    QString m_directory;
    QStringList m_paths;
};

bool writePicture(const QMimeData &mimeData, const QString &baseName, PictureWriter &writer)
{
    for (const QString &format : encodedFormats()) {
        if (mimeData.hasFormat(format) && writer.writeData(mimeData.data(format), format, baseName)) {
            return true;
        }
    }
    return false;
}

} // namespace

bool PasteboardFiles::hasContent(const QMimeData &mimeData)
{
    const QList<QUrl> urls = mimeData.urls();
    return hasPicture(mimeData) || std::any_of(urls.begin(), urls.end(), [](const QUrl &url) {
               return url.isLocalFile() || url.scheme() == u"data";
           });
}

bool PasteboardFiles::hasPicture(const QMimeData &mimeData)
{
    const QStringList &formats = encodedFormats();
    return std::any_of(formats.begin(), formats.end(),
                       [&mimeData](const QString &format) { return mimeData.hasFormat(format); });
}

// Its title follows in the next line.
QUrl PasteboardFiles::linkOf(const QMimeData &mimeData)
{
    const QByteArray text = mimeData.data(QStringLiteral("_NETSCAPE_URL"));
    const QUrl link(QString::fromUtf8(text.split('\n').first()).trimmed(), QUrl::StrictMode);
    return link.isValid() && (link.scheme() == u"http" || link.scheme() == u"https") ? link : QUrl();
}

PasteboardFiles PasteboardFiles::filesFromMimeData(const QMimeData *mimeData,
                                                   const std::function<QString()> &makeDirectory)
{
    PasteboardFiles files;
    if (!mimeData) {
        return files;
    }
    const QString defaultName = zqLocalized("Pasted image");
    PictureWriter writer(makeDirectory);
    QUrl webURL;
    for (const QUrl &url : mimeData->urls()) {
        QString mimeType;
        if (url.isLocalFile()) {
            files.paths.append(url.toLocalFile());
        } else if (const QByteArray data = dataOfURL(url, &mimeType); !data.isEmpty()) {
            writer.writeData(data, mimeType, defaultName);
        } else if (webURL.isEmpty() && url.scheme().startsWith(u"http")) {
            webURL = url;
        }
    }
    if (files.paths.isEmpty() && writer.paths().isEmpty()) {
        const QUrl link = linkOf(*mimeData);
        webURL = webURL.isEmpty() ? link : webURL;
        const QString name = baseNameFromURL(webURL);
        if (writePicture(*mimeData, name.isEmpty() ? defaultName : name, writer) && !webURL.isEmpty()) {
            files.metadata.insert(QStringLiteral("webURL"), webURL.toString());
            if (!link.isEmpty() && link != webURL) {
                files.metadata.insert(QStringLiteral("webPageURL"), link.toString());
            }
        }
    }
    files.paths.append(writer.paths());
    return files;
}

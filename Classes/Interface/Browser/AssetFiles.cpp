#include "Classes/Interface/Browser/AssetFiles.h"

#include "Classes/Application/TemporaryArea.h"
#include "Classes/Export/ExportNames.h"
#include "Kit/Files/ZQPlainCopy.h"
#include "Kit/Files/ZQSharedFile.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLog.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QUrl>

#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace {

const QString uriList = QStringLiteral("text/uri-list");
const QString imageType = QStringLiteral("application/x-qt-image");
constexpr qint64 mostToCopy = qint64(64) << 20; // bytes of one drag; that much takes less than half a second
constexpr int mostCopiesFirst = 200;

// Gives files names in a folder that is made for the first of them.
class NamedFiles
{
public:
    // Empty where the file itself would go, which other folders share and cannot be parted from them.
    QString pathFor(const Asset &asset)
    {
        const QString path = namedPathFor(asset);
        return path != asset.path || makeOwn(path) ? path : QString();
    }

private:
    QString namedPathFor(const Asset &asset)
    {
        const QFileInfo file(asset.path);
        const QString name = ExportNames::nameForTitle(asset.title, zqPathExtension(asset.path));
        if (file.fileName() == name && !m_names.contains(name)) {
            m_names.insert(name);
            return asset.path;
        }
        // A folder cannot be linked; and what is made while the application goes would stay.
        if (!file.isFile() || QCoreApplication::closingDown() || !makeFolder()) {
            return asset.path;
        }
        const QString free = ExportNames::safeNameForFile(name, m_names, m_numbers[name]);
        const QString path = m_folder + u'/' + free;
        if (!give(file, path)) {
            return asset.path;
        }
        m_names.insert(free);
        return path;
    }

    bool makeFolder()
    {
        if (m_folder.isEmpty() && !m_isRefused) {
            ZQError error;
            m_folder = TemporaryArea::newFolder(&error);
            m_isRefused = m_folder.isEmpty();
            if (m_isRefused) {
                qCWarning(zqLogApplication) << "Cannot make a folder for files:" << error.localizedDescription();
            }
        }
        return !m_isRefused;
    }

    // A copy is best: whatever the other program does with it, the library's file stays. Of many, links are made at
    // once where the folder is on the same file system.
    bool give(const QFileInfo &file, const QString &path)
    {
        return (m_given++ < mostCopiesFirst && copy(file, path)) || link(file, path) || copy(file, path);
    }

    bool copy(const QFileInfo &file, const QString &path)
    {
        const bool mayCopy = m_copied + file.size() <= mostToCopy && zqCopyPlainly(file.filePath(), path);
        m_copied += mayCopy ? file.size() : 0;
        return mayCopy;
    }

    static bool makeOwn(const QString &path)
    {
        ZQError error;
        const bool isOwn = ZQSharedFile::makeAllOwn(path, &error);
        if (!isOwn) {
            qCWarning(zqLogApplication) << "Not handed out:" << path << error.localizedDescription();
        }
        return isOwn;
    }

    static bool link(const QFileInfo &file, const QString &path)
    {
        return makeOwn(file.filePath()) && ::linkat(AT_FDCWD, QFile::encodeName(file.filePath()).constData(), AT_FDCWD,
                                                    QFile::encodeName(path).constData(), AT_SYMLINK_FOLLOW) == 0;
    }

    QString m_folder;
    bool m_isRefused = false;
    QSet<QString> m_names;
    QHash<QString, int> m_numbers;
    qint64 m_copied = 0;
    int m_given = 0;
};

} // namespace

AssetFiles::AssetFiles(std::function<QList<Asset>()> look) : m_look(std::move(look)) {}

void AssetFiles::lookNow()
{
    m_assets = m_look();
}

void AssetFiles::setPicture(std::function<QImage()> picture)
{
    m_picture = std::move(picture);
}

QStringList AssetFiles::paths() const
{
    if (m_paths) {
        return *m_paths;
    }
    if (!m_assets) {
        m_assets = m_look();
    }
    NamedFiles named;
    m_paths.emplace();
    for (const Asset &asset : std::as_const(*m_assets)) {
        if (const QString path = named.pathFor(asset); !path.isEmpty()) {
            m_paths->append(path);
        }
    }
    return *m_paths;
}

QStringList AssetFiles::formats() const
{
    QStringList result = QMimeData::formats();
    result.append(uriList);
    if (m_isForClipboard) {
        result.append(copiedFilesType);
    }
    if (m_picture) {
        result.append(imageType);
    }
    return result;
}

QVariant AssetFiles::retrieveData(const QString &format, QMetaType type) const
{
    if (format == imageType && m_picture) {
        if (!m_image) {
            m_image = QCoreApplication::closingDown() ? QImage() : m_picture(); // nobody decodes by then
        }
        return *m_image;
    }
    if (format != uriList && format != copiedFilesType) {
        return QMimeData::retrieveData(format, type);
    }
    QVariantList urls;
    QByteArray copied = QByteArrayLiteral("copy");
    for (const QString &path : paths()) {
        const QUrl url = QUrl::fromLocalFile(path);
        urls.append(url);
        copied += '\n' + url.toEncoded();
    }
    return format == uriList ? QVariant(urls) : QVariant(copied);
}

#include "Classes/Import/ImportQueries.h"
#include "Classes/Import/ImportErrors.h"
#include "Classes/Import/ImportKind.h"
#include "Classes/Import/ImportQueries.h"
#include "Classes/Import/ThumbGenerator.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool isDirectory(const QString &path)
{
    return QFileInfo(path).isDir();
}

template <class Test>
bool anyPath(const QStringList &paths, Test test)
{
    return std::any_of(paths.begin(), paths.end(), test);
}

} // namespace

bool ImportQueries::fileAtPathIsSupported(const QString &path)
{
    const ImportKind *kind = importKindForPath(path);
    return kind && (isDirectory(path) ? kind->takesPackages() : kind->takesFiles());
}

bool ImportQueries::fileAtPathIsArchive(const QString &path)
{
    return isArchivePath(path);
}

bool ImportQueries::filesAtPathsContainsValidItems(const QStringList &paths)
{
    return anyPath(paths, fileAtPathIsSupported);
}

bool ImportQueries::filesAtPathsContainsDirectory(const QStringList &paths)
{
    return anyPath(paths, isDirectory);
}

bool ImportQueries::filesAtPathsContainsArchive(const QStringList &paths)
{
    return anyPath(paths, isArchivePath);
}

SidebarTargetRules::Files ImportQueries::kindsOfFilesAtPaths(const QStringList &paths)
{
    return {filesAtPathsContainsValidItems(paths), filesAtPathsContainsDirectory(paths),
            filesAtPathsContainsArchive(paths)};
}

bool ImportQueries::areFilesAtPaths(const QStringList &paths, const ZQSidebarBaseItem *validForSidebarItem)
{
    return bool(SidebarTargetRules::files(kindsOfFilesAtPaths(paths), validForSidebarItem));
}

QStringList ImportQueries::supportedTypeForOpenPanel()
{
    static const QStringList others{QStringLiteral("pdf"), QStringLiteral("PDF"), QStringLiteral("zip"),
                                    QStringLiteral("ZIP"), QStringLiteral("rar"), QStringLiteral("RAR"),
                                    QStringLiteral("eps"), QStringLiteral("EPS"), QStringLiteral("svg"),
                                    QStringLiteral("SVG")};
    return ZQImageSource::supportedExtensions() + others;
}

QStringList ImportQueries::removeSubFoldersFromPaths(const QStringList &paths)
{
    // A path goes when a different one is its beginning; that one has its own fate, but whatever it lies in begins this
    // path too.
    QStringList sorted = paths;
    std::sort(sorted.begin(), sorted.end());
    QStringList roots; // in text order a path follows its nearest root directly
    for (const QString &path : std::as_const(sorted)) {
        if (roots.isEmpty() || !path.startsWith(roots.last())) {
            roots.append(path);
        }
    }
    QStringList kept;
    for (const QString &path : paths) {
        if (std::binary_search(roots.begin(), roots.end(), path)) {
            kept.append(path);
        }
    }
    return kept;
}

QString ImportQueries::getActualPath(const QString &path)
{
    const QString actual = zqURLFromPersistentData(zqDataForPersistentURL(path, ZQReferenceContents::NotNoted));
    return actual.isEmpty() ? path : actual;
}

bool ImportQueries::isFileReadableAtPath(const QString &path, QString *reason)
{
    const QByteArray name = QFile::encodeName(path);
    struct statx attributes = {};
    QString why;
    if (::statx(AT_FDCWD, name.constData(), AT_STATX_SYNC_AS_STAT, STATX_TYPE, &attributes) != 0 ||
        ::access(name.constData(), R_OK) != 0) {
        why = importReasonForError(ZQError::posix(errno, path));
    } else if ((attributes.stx_attributes & STATX_ATTR_IMMUTABLE) && !S_ISDIR(attributes.stx_mode)) {
        why = zqLocalized("It is locked against every change. Unlock it, or import a copy of it.");
    }
    if (reason) {
        *reason = why;
    }
    return why.isEmpty();
}

QStringList ImportQueries::unreadableFilesForFilePaths(const QStringList &paths)
{
    QStringList unreadable;
    for (const QString &path : paths) {
        if (isDirectory(path)) {
            unreadable.append(unreadableFilesForDirectory(path));
        } else if (!isFileReadableAtPath(path)) {
            unreadable.append(path);
        }
    }
    return unreadable;
}

QStringList ImportQueries::unreadableFilesForDirectory(const QString &directory)
{
    QStringList unreadable;
    if (!isFileReadableAtPath(directory)) {
        return {directory};
    }
    QDirIterator entries(directory, QDir::AllEntries | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories); // links are not followed
    while (entries.hasNext()) {
        const QString path = entries.next();
        if (!entries.fileInfo().isSymLink() && !isFileReadableAtPath(path)) {
            unreadable.append(path);
        }
    }
    return unreadable;
}

bool ImportQueries::fileIsInsideTemporaryDirectory(const QString &path)
{
    static const QStringList beginnings{QStringLiteral("/private/var/"), QStringLiteral("/var/"),
                                        QStringLiteral("/tmp/")};
    static const QStringList parts{QStringLiteral("/Library/Caches/"), QStringLiteral("ZeltoTemporaryFolder")};
    return anyPath(beginnings, [&path](const QString &beginning) { return path.startsWith(beginning); }) ||
           anyPath(parts, [&path](const QString &part) { return path.contains(part); });
}

bool ImportQueries::canSkipThumbForPath(const QString &path)
{
    constexpr qint64 cheapToShow = 262144;
    return !ZQUserDefaults::standardUserDefaults().boolForKey(QStringLiteral("AlwaysMakeThumbsWhileImporting")) &&
           ThumbGenerator::willUseNativeQuicklookThumbnailForURL(path) && QFileInfo(path).size() <= cheapToShow;
}

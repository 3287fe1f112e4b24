#include "Kit/Files/ZQPersistentURL.h"

#include "Kit/Files/ZQFileFinder.h"
#include "Kit/Files/ZQSystemFile.h"

#include <QDir>
#include <QFile>

namespace {

std::optional<ZQFileReference> referenceOf(const QByteArray &data)
{
    auto reference = ZQFileReference::decoded(data);
    return reference && !zqWouldMount(reference->path) ? std::move(reference) : std::nullopt;
}

QString resolved(const QByteArray &data, bool waits, const ZQFileFinder::Moved &moved)
{
    const auto reference = referenceOf(data);
    if (!reference) {
        return {};
    }
    return QFile::decodeName(ZQFileFinder::shared().find(data, *reference, waits, moved));
}

} // namespace

QByteArray zqDataForPersistentURL(const QString &path, ZQReferenceContents contents)
{
    const auto name = zqSystemPath(path, nullptr);
    if (!name) {
        return {};
    }
    ZQFileReference reference;
    reference.path = QFile::encodeName(QDir::cleanPath(QDir::current().absoluteFilePath(path)));
    const auto file = zqLookAtFile(reference.path);
    if (!file) {
        return {};
    }
    reference.file = file->identity;
    reference.file.fileSystem = zqFileSystemOf(reference.path);
    reference.isFolder = file->isFolder;
    const QByteArray parent = zqFolderOf(reference.path);
    if (const auto folder = zqLookAtFile(parent)) {
        reference.folder = folder->identity;
        reference.folder.fileSystem = zqFileSystemOf(parent);
    }
    if (contents == ZQReferenceContents::Noted && !reference.isFolder) {
        reference.contents = ZQFileContents::ofFile(reference.path);
        reference.names = file->names; // of one that lies in the library, a name is its source, which goes
    }
    return reference.encoded();
}

QString zqURLFromPersistentData(const QByteArray &data, const std::function<void(const QString &path)> &moved)
{
    return resolved(data, false, moved);
}

QString zqFindPersistentURL(const QByteArray &data)
{
    return resolved(data, true, {});
}

void zqLookForPersistentURLs(const QList<ZQPersistentURL> &all)
{
    QList<ZQFileFinder::Wanted> wanted;
    for (const ZQPersistentURL &each : all) {
        if (const auto reference = referenceOf(each.data)) {
            wanted.append({each.data, *reference, each.moved});
        }
    }
    ZQFileFinder::shared().lookFor(wanted, false);
}

std::optional<ZQReferencedFile> zqFileOfPersistentURL(const QByteArray &data)
{
    const auto reference = ZQFileReference::decoded(data);
    return reference ? std::optional(ZQReferencedFile{QFile::decodeName(reference->path), reference->file.inode})
                     : std::nullopt;
}

bool zqPersistentURLIsAt(const QByteArray &data, const QString &path)
{
    const auto reference = referenceOf(data);
    const auto name = zqSystemPath(path, nullptr);
    return reference && name && zqIsFile(*name, reference->file);
}

QByteArray zqMovedPersistentURL(const QByteArray &data, const QString &path)
{
    auto reference = referenceOf(data);
    const auto name = zqSystemPath(path, nullptr);
    if (!reference || !name || !zqIsFile(*name, reference->file)) {
        return {};
    }
    reference->path = *name;
    const QByteArray parent = zqFolderOf(*name);
    if (const auto folder = zqLookAtFile(parent)) {
        reference->folder = folder->identity;
        reference->folder.fileSystem = zqFileSystemOf(parent);
    }
    return reference->encoded();
}

void zqTellPersistentURLAgain(const QByteArray &data)
{
    ZQFileFinder::shared().tellAgain(data);
}

void zqSetPersistentURLsWait(bool wait)
{
    ZQFileFinder::shared().setWaits(wait);
}

void zqSetPersistentURLRoots(const QStringList &paths)
{
    QList<QByteArray> names;
    for (const QString &path : paths) {
        if (const auto name = zqSystemPath(QDir::cleanPath(path), nullptr)) {
            names.append(*name);
        }
    }
    ZQFileFinder::shared().setRoots(names);
}

ZQPersistentURLCounts zqPersistentURLCounts()
{
    return ZQFileFinder::shared().counts();
}

void zqSetPersistentURLTime(std::optional<std::chrono::nanoseconds> since1970)
{
    ZQFileFinder::shared().setTime(since1970);
}

void zqForgetPersistentURLs()
{
    ZQFileFinder::shared().forget();
}

void zqWaitForPersistentURLSearches()
{
    ZQFileFinder::shared().wait();
}

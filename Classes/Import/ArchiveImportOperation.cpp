#include "Classes/Import/ArchiveImportOperation.h"

#include "Classes/Import/ImportBatch.h"
#include "Classes/Import/ImportKind.h"
#include "Classes/Import/ImportQueries.h"
#include "Classes/Import/TemporaryFolder.h"
#include "Classes/Tags/WhereFroms.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQArchiveWorker.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <utility>

namespace {

// A folder with such a name would count as one document.
bool looksLikePackage(const QString &path)
{
    const ImportKind *kind = importKindForPath(path);
    return kind && kind->takesPackages();
}

// Where an archive is unpacked to: a folder named after it, which is not there yet.
QString folderForArchive(const QString &archivePath, const QString &inFolder)
{
    QString name = zqBaseName(archivePath);
    if (name.isEmpty()) {
        name = zqLocalized("Archive");
    }
    if (looksLikePackage(name)) {
        name.replace(name.lastIndexOf(u'.'), 1, u' ');
    }
    QString folder = inFolder + u'/' + name;
    for (int number = 1; QFileInfo::exists(folder); ++number) {
        folder = inFolder + u'/' + zqFormat(QStringLiteral("%@ %d%@"), {name, number, QString()});
    }
    return folder;
}

bool endsUnpacking(const ZQError &error)
{
    return error.domain == ZQArchiveReader::errorDomain &&
           (error.code == ZQArchiveReader::TooMuch || error.code == ZQArchiveReader::DiskFull ||
            error.code == ZQArchiveReader::Cancelled || error.code == ZQArchiveReader::Unavailable);
}

} // namespace

ArchiveImportOperation::ArchiveImportOperation(const QString &filePath) : BaseImportOperation(filePath)
{
    m_fileData.reset();
}

ZQArchiveLimits ArchiveImportOperation::limits()
{
    const ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    ZQArchiveLimits limits;
    const std::pair<const char *, qint64 *> settings[] = {
        {"ArchiveMaximumTotalSize", &limits.totalSize},
        {"ArchiveMaximumEntryCount", &limits.entryCount},
        {"ArchiveMaximumRatio", &limits.ratio},
        {"ArchiveMaximumNestingDepth", &limits.nestingDepth},
    };
    for (const auto &[key, limit] : settings) {
        const qint64 value = defaults.integerForKey(QLatin1String(key));
        if (value > 0) {
            *limit = value;
        }
    }
    return limits;
}

void ArchiveImportOperation::main()
{
    if (!isCancelled()) {
        unpack();
    }
    tellBatchOfEnd();
}

void ArchiveImportOperation::unpack()
{
    const QFileInfo info(filePath());
    if (!info.isFile()) {
        drop(info.exists() ? zqLocalized("It is no regular file. Import a copy of what it gives.")
                           : zqLocalized("It is not there any more. Look where it went and import it from there."));
        return;
    }
    const QString temporary = TemporaryFolder::temporaryDirectory();
    if (temporary.isEmpty()) {
        drop(zqLocalized("It cannot be unpacked, since no temporary folder can be made. Free some space there, or name "
                         "another folder in TMPDIR, and import it again."));
        return;
    }
    auto holder = std::make_shared<TemporaryFolder>(temporary);
    const QString root = folderForArchive(filePath(), temporary);
    ZQArchiveWorker worker; // nothing of a stranger's archive is read in this process
    ZQArchiveReader reader(worker, limits(), [this] { return isCancelled(); });
    ZQError error;
    if (!reader.extractArchive(filePath(), root, 0, &error) || !unfoldZipsAtPath(root, reader, 1, &error)) {
        drop(error.localizedDescription());
        return;
    }
    QStringList leftOut;
    if (reader.skippedCount() > 0) {
        leftOut.append(reader.skippedCount() == 1
                           ? zqFormat(zqLocalized("Left out was %@."), {reader.firstSkipped()})
                           : zqFormat(zqLocalized("%d of its entries were left out, the first is %@."),
                                      {reader.skippedCount(), reader.firstSkipped()}));
    }
    if (!m_unreadableArchive.isEmpty()) {
        leftOut.append(zqFormat(zqLocalized("An archive in it was left out: %@"), {m_unreadableArchive}));
    }
    if (!leftOut.isEmpty()) {
        tell(leftOut.join(u' '), DroppedFile::Telling::InWindowPartly);
    }
    finish(root, std::move(holder));
}

// Documents that are folders keep what they hold as it is.
bool ArchiveImportOperation::unfoldZipsAtPath(const QString &folder, ZQArchiveReader &reader, int depth, ZQError *error)
{
    struct Folder
    {
        QString path;
        int depth; // of the archives in it
    };
    QList<Folder> folders{{folder, depth}};
    while (!folders.isEmpty()) {
        const Folder current = folders.takeLast();
        const QFileInfoList entries =
            QDir(current.path).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        for (const QFileInfo &entry : entries) {
            const QString path = entry.filePath();
            if (isCancelled()) {
                return false;
            }
            if (entry.isSymLink()) {
                continue;
            }
            if (entry.isDir() && !ImportQueries::fileAtPathIsSupported(path)) {
                folders.append({path, current.depth});
            } else if (entry.isFile() && isArchivePath(path)) {
                const QString unfolded = folderForArchive(path, current.path);
                ZQError archiveError;
                if (reader.extractArchive(path, unfolded, current.depth, &archiveError)) {
                    folders.append({unfolded, current.depth + 1});
                } else if (endsUnpacking(archiveError)) {
                    zqSetError(error, archiveError);
                    return false;
                } else if (m_unreadableArchive.isEmpty()) {
                    m_unreadableArchive = archiveError.localizedDescription();
                }
                QFile::remove(path);
            }
        }
    }
    return true;
}

void ArchiveImportOperation::finish(const QString &root, std::shared_ptr<TemporaryFolder> holder)
{
    QVariantMap metadata = this->metadata();
    const QString origin = WhereFroms::urlsOfFile(filePath()).webURL;
    if (!origin.isEmpty() && !metadata.contains(QStringLiteral("webURL"))) {
        metadata.insert(QStringLiteral("webURL"), origin);
    }
    const QFileInfoList entries =
        QDir(root).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    const bool isOneFolder = entries.size() == 1 && entries.first().isDir();
    if (entries.isEmpty()) {
        drop(zqLocalized("The archive holds nothing that can be imported."));
    } else if (ImportBatch *receiver = batch()) {
        receiver->archiveDidUnfold({.archivePath = sourcePath(),
                                    .root = root,
                                    .folder = isOneFolder ? entries.first().filePath() : root,
                                    .sidebarItem = sidebarItem(),
                                    .metadata = metadata,
                                    .holder = std::move(holder)});
    }
}

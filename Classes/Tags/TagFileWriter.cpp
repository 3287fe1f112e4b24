#include "Classes/Tags/TagFileWriter.h"

#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/OpenMetaBackup.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

#include <cerrno>

namespace {

QSet<QString> setOf(const QStringList &tags)
{
    return {tags.begin(), tags.end()};
}

quint64 deviceOf(const QString &path)
{
    struct stat status = {};
    return lstat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_dev : 0;
}

// The errors that concern a place rather than one file that is gone, and what to say of them.
struct Reason
{
    int code;
    const char *text;
};
constexpr Reason reasons[] = {
    {ENOTSUP, "Its file system keeps no extended attributes. Files on a disk formatted as ext4, Btrfs or XFS do."},
    {EROFS, "It is mounted read-only."},
    {EACCES, "You may not write to the files there. Change their permissions to let their tags travel with them."},
    {EPERM, "You may not write to the files there. Change their permissions to let their tags travel with them."},
    {ENOSPC, "There is no room left for attributes. Use fewer or shorter tags and notes, or free some space."},
    {EDQUOT, "There is no room left for attributes. Use fewer or shorter tags and notes, or free some space."},
    {E2BIG, "There is no room left for attributes. Use fewer or shorter tags and notes, or free some space."},
};
constexpr const char *tooManyTags = "The tags or the notes of a file are too long for it. Use fewer or shorter ones.";

const char *reasonFor(const ZQError &error)
{
    if (error.domain == OpenMeta::errorDomain && error.code == OpenMeta::TooBigError) {
        return tooManyTags;
    }
    if (error.domain == ZQError::posixDomain) {
        for (const Reason &reason : reasons) {
            if (reason.code == error.code) {
                return reason.text;
            }
        }
    }
    return nullptr;
}

} // namespace

TagFileWriter &TagFileWriter::sharedTagFileWriter()
{
    static TagFileWriter writer;
    return writer;
}

TagFileWriter::TagFileWriter() : m_queue(QStringLiteral("OpenMeta"), 1)
{
    OpenMetaBackup::waitUntilAllWritten(); // so that what the last writes note outlives this queue
}

TagFileWriter::~TagFileWriter()
{
    m_queue.waitUntilAllOperationsAreFinished(); // destroying the queue would forget what still waits
}

void TagFileWriter::setProblemHandler(ProblemHandler handler)
{
    const std::lock_guard lock(m_mutex);
    m_problemHandler = std::move(handler);
}

bool TagFileWriter::report(const QString &path, const ZQError &error)
{
    const char *const reason = reasonFor(error);
    if (!reason) {
        return false;
    }
    const std::lock_guard lock(m_mutex);
    const quint64 device = deviceOf(path);
    if (!m_problemHandler || m_toldDevices.contains(device)) {
        return m_problemHandler != nullptr;
    }
    m_toldDevices.insert(device);
    m_problemHandler(ZQError::with(
        errorDomain, error.code,
        zqFormat(zqLocalized("The tags of “%@” could not be written to the file; the library keeps them."),
                 {QFileInfo(path).fileName()}),
        zqLocalized(reason)));
    return true;
}

void TagFileWriter::writeTags(const QString &path, const QStringList &tags)
{
    const QStringList wanted = OpenMeta::removeDuplicateTags(tags);
    ZQError error;
    const QStringList fileTags = OpenMeta::getUserTags(path, &error).value_or(QStringList());
    if (error.isNull()) {
        if (setOf(OpenMeta::decomposeArrayOfStrings(fileTags)) == setOf(wanted)) {
            return;
        }
        error = OpenMeta::setUserTags(wanted, path);
    }
    if (!error.isNull()) {
        const bool isKnown = !wanted.isEmpty() && report(path, error);
        if (!isKnown) {
            qCInfo(zqLogTags).noquote() << "The tags of" << path << "were not written:" << error.localizedDescription();
        }
    }
}

void TagFileWriter::writeNotes(const QString &path, const QString &notes)
{
    if (OpenMeta::getFinderComment(path).value_or(QString()) == notes) {
        return;
    }
    const ZQError error = OpenMeta::setFinderComment(notes, path);
    if (!error.isNull()) {
        qCWarning(zqLogTags).noquote() << zqFormat(
            QStringLiteral("OpenMeta error on trying to set the Finder Comment: %@"), {error.localizedDescription()});
        report(path, error);
    }
}

void TagFileWriter::writeTagsToFile(const QString &path, const QStringList &tags, const std::optional<QString> &notes,
                                    std::function<void()> done)
{
    m_queue.addOperationWithBlock([this, path, tags, notes, done = std::move(done)] {
        writeTags(path, tags);
        if (notes) {
            writeNotes(path, *notes);
        }
        if (done) {
            done();
        }
    });
}

ZQError TagFileWriter::writeRatingToFile(const QString &path, double rating)
{
    m_queue.waitUntilAllOperationsAreFinished();
    return OpenMeta::setRating(rating, path);
}

void TagFileWriter::waitUntilAllWritten()
{
    m_queue.waitUntilAllOperationsAreFinished();
}

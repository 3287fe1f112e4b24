#include "Classes/Tags/TagFileWriter.h"

#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/OpenMetaBackup.h"
#include "Classes/Tags/PathLock.h"
#include "Classes/Tags/TagBackupStore.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

#include <algorithm>
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
    {ENOTSUP,
     zqKey("Its file system keeps no extended attributes. Files on a disk formatted as ext4, Btrfs or XFS do.")},
    {EROFS, zqKey("It is mounted read-only.")},
    {EACCES,
     zqKey("You may not write to the files there. Change their permissions to let their tags travel with them.")},
    {EPERM,
     zqKey("You may not write to the files there. Change their permissions to let their tags travel with them.")},
    {ENOSPC, zqKey("There is no room left for attributes. Use fewer or shorter tags and notes, or free some space.")},
    {EDQUOT, zqKey("There is no room left for attributes. Use fewer or shorter tags and notes, or free some space.")},
    {E2BIG, zqKey("There is no room left for attributes. Use fewer or shorter tags and notes, or free some space.")},
};
constexpr const char *tooManyTags =
    zqKey("The tags or the notes of a file are too long for it. Use fewer or shorter ones.");

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

// What is no rating at all may be replaced; what the system could not read may be one.
bool isUnreadable(const ZQError &error)
{
    return !error.isNull() && error.domain != OpenMeta::errorDomain;
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
    const ZQLockGuard lock(m_mutex);
    m_problemHandler = std::move(handler);
}

bool TagFileWriter::report(const QString &path, const ZQError &error)
{
    const char *const reason = reasonFor(error);
    if (!reason) {
        return false;
    }
    const ZQLockGuard lock(m_mutex);
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

void TagFileWriter::complain(const QString &path, const ZQError &error, bool isAboutSomething)
{
    const bool isKnown = isAboutSomething && report(path, error);
    if (!isKnown) {
        qCInfo(zqLogTags).noquote() << "The tags of" << path << "were not written:" << error.localizedDescription();
    }
}

bool TagFileWriter::putTags(const QString &path, const QStringList &tags, const QStringList &present)
{
    const QStringList wanted = OpenMeta::removeDuplicateTags(tags);
    if (setOf(OpenMeta::decomposeArrayOfStrings(present)) == setOf(wanted)) {
        return true;
    }
    const ZQError error = OpenMeta::setUserTags(wanted, path);
    if (!error.isNull()) {
        complain(path, error, !wanted.isEmpty());
    }
    return error.isNull();
}

bool TagFileWriter::putNotes(const QString &path, const QString &notes, const QString &present)
{
    if (present == notes) {
        return true;
    }
    const ZQError error = OpenMeta::setFinderComment(notes, path);
    if (!error.isNull()) {
        qCWarning(zqLogTags).noquote() << zqFormat(
            QStringLiteral("OpenMeta error on trying to set the Finder Comment: %@"), {error.localizedDescription()});
        report(path, error);
    }
    return error.isNull();
}

// Other programs rate with fractions, which stay while they round to the same.
bool TagFileWriter::putRating(const QString &path, int rating, double present)
{
    if (OpenMeta::starsForRating(present) == rating) {
        return true;
    }
    const ZQError error = OpenMeta::setRating(rating, path);
    if (!error.isNull()) {
        complain(path, error, rating > 0);
    }
    return error.isNull();
}

void TagFileWriter::replace(const QString &path, const QStringList &tags, const std::optional<QString> &notes,
                            const std::optional<int> &rating)
{
    ZQError error;
    const std::optional<QStringList> present = OpenMeta::getUserTags(path, &error);
    if (error.isNull()) {
        putTags(path, tags, present.value_or(QStringList()));
    } else {
        complain(path, error, !tags.isEmpty());
    }
    if (notes) { // of a copy: a comment that cannot be read counts as none
        putNotes(path, *notes, OpenMeta::getFinderComment(path).value_or(QString()));
    }
    if (rating) {
        ZQError ratingError;
        const double before = OpenMeta::getRating(path, &ratingError);
        if (isUnreadable(ratingError)) {
            complain(path, ratingError, *rating > 0);
        } else {
            putRating(path, *rating, before);
        }
    }
    ZQExtendedAttributes::remove(path, SeenFileTags::attributeName); // of the file that this one is a copy of
}

void TagFileWriter::writeTagsToFile(const QString &path, const QStringList &tags, const std::optional<QString> &notes,
                                    const std::optional<int> &rating)
{
    m_queue.addOperationWithBlock([this, path, tags, notes, rating] { replace(path, tags, notes, rating); });
}

// A program that saves by replacing a file may do so between two of its attributes. A record alone in the new one would
// say that what it lacks was taken away.
void TagFileWriter::merge(const Merge &merge)
{
    constexpr int mostTries = 3;
    const PathLock lock(merge.path);
    for (int i = 0; i < mostTries; ++i) {
        const QByteArray before = TagFileIdentity::ofFile(merge.path).text;
        mergeWithOneFile(merge);
        const QByteArray after = TagFileIdentity::ofFile(merge.path).text;
        if (after == before || after.isEmpty()) {
            return;
        }
        ZQExtendedAttributes::remove(merge.path, SeenFileTags::attributeName);
    }
}

void TagFileWriter::mergeWithOneFile(const Merge &merge)
{
    ZQError error;
    FileTags library = merge.library;
    if (merge.takesRating) {
        library.rating = OpenMeta::starsForRating(OpenMeta::getRating(merge.path, &error));
        if (isUnreadable(error)) {
            complain(merge.path, error, !library.isEmpty());
            return;
        }
        error = {};
    }
    auto found = FileTagsMerge::ofFile(merge.path, library, FileTagsMerge::Unknown::KeepsBoth, merge.isFirst, &error);
    if (!found) {
        complain(merge.path, error, !library.isEmpty());
        return;
    }
    if (merge.ratingIsMeant) {
        found->isRecorded = found->isRecorded && found->merged.rating == library.rating;
        found->merged.rating = library.rating;
        found->change.rating.reset();
    }
    if (found->isRecorded && (!merge.isLibrarysOwn || SeenFileTags::ofFile(merge.path))) {
        return;
    }
    const FileTags &merged = found->merged;
    bool isInFile = putTags(merge.path, found->tagsForFile(), found->tags.value_or(QStringList()));
    isInFile = putNotes(merge.path, merged.comment, found->comment.value_or(QString())) && isInFile;
    isInFile = putRating(merge.path, merged.rating, found->rating.value_or(0)) && isInFile;
    if (isInFile) {
        using Empty = SeenFileTags::Empty;
        SeenFileTags::write(SeenFileTags::of(library), merge.path,
                            merge.isLibrarysOwn ? Empty::IsWritten : Empty::IsLeftOut);
    }
    if (merge.adopt && !found->change.isEmpty()) {
        merge.adopt(found->change);
    }
}

void TagFileWriter::mergeWithFile(Merge request)
{
    const QString asked = request.path;
    {
        const ZQLockGuard lock(m_mutex);
        ++m_waiting[asked];
    }
    m_queue.addOperationWithBlock([this, asked, request = std::move(request)]() mutable {
        if (request.find) {
            request.path = request.find();
        }
        if (request.path.isEmpty()) {
            qCInfo(zqLogTags) << "A file is missing; it gets its tags when it is found";
        } else {
            if (request.willTouch) {
                request.willTouch();
            }
            merge(request);
        }
        {
            const ZQLockGuard lock(m_mutex);
            if (const auto waiting = m_waiting.find(asked); --*waiting == 0) {
                m_waiting.erase(waiting);
            }
        }
        if (request.done) {
            request.done(request.path);
        }
    });
}

bool TagFileWriter::isWaiting(const QString &path)
{
    const ZQLockGuard lock(m_mutex);
    return m_waiting.contains(path);
}

ZQError TagFileWriter::writeRatingToFile(const QString &path, double rating)
{
    m_queue.waitUntilAllOperationsAreFinished();
    return OpenMeta::setRating(rating, path);
}

void TagFileWriter::afterWrites(std::function<void()> work)
{
    m_queue.addOperationWithBlock(std::move(work));
}

void TagFileWriter::waitUntilFewerWait(int most, ZQOperation *asking)
{
    m_queue.waitUntilOperationCount(most, asking);
}

void TagFileWriter::waitUntilAllWritten()
{
    m_queue.waitUntilAllOperationsAreFinished();
}

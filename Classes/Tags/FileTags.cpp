#include "Classes/Tags/FileTags.h"

#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/OpenMetaBackup.h"
#include "Classes/Tags/PathLock.h"
#include "Classes/Tags/TagBackupStore.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Foundation/ZQText.h"

#include <QCryptographicHash>

#include <algorithm>
#include <cerrno>

namespace {

constexpr qsizetype tagDigits = 6; // of 64 values each
constexpr qsizetype commentDigits = 16;

QByteArray digestOf(const QString &text, qsizetype digits)
{
    return QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha1)
        .toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals)
        .left(digits);
}

QByteArray commentDigest(const QString &comment)
{
    return comment.isEmpty() ? QByteArray() : digestOf(comment.normalized(QString::NormalizationForm_C), commentDigits);
}

QSet<QString> keysOf(const QStringList &tags)
{
    QSet<QString> keys;
    for (const QString &tag : tags) {
        keys.insert(zqPlainLine(tag));
    }
    return keys;
}

// What the file itself says. Where it has a record, a value that is missing was taken away; where it has none, the
// value may as well have been lost with the attributes.
bool readInto(FileTagsMerge &file, const QString &path, bool absenceCounts, ZQError *error)
{
    const auto isUnreadable = [error](const ZQError &found) {
        const bool isOnlyGarbage = found.domain == OpenMeta::errorDomain;
        if (!found.isNull() && !isOnlyGarbage) {
            zqSetError(error, found);
        }
        return !found.isNull() && !isOnlyGarbage;
    };
    const OpenMeta::Values values = OpenMeta::getValues(path);
    if (!values.tagsError.isNull()) {
        zqSetError(error, values.tagsError);
        return false;
    }
    if (isUnreadable(values.commentError) || isUnreadable(values.ratingError)) {
        return false;
    }
    file.tags = values.tags;
    file.comment = values.comment;
    file.rating = values.rating;
    if (absenceCounts) {
        file.tags = file.tags.value_or(QStringList());
        file.comment = values.commentError.isNull() ? std::optional(file.comment.value_or(QString())) : file.comment;
        file.rating = values.ratingError.isNull() ? std::optional(file.rating.value_or(0)) : file.rating;
    }
    return true;
}

// Copies of older versions hold what was last seen and nothing of it apart.
std::optional<SeenFileTags> seenAtLastBackup(const QString &path)
{
    const std::optional<TagBackup> backup = OpenMetaBackup::lastKnown(path);
    if (!backup || backup->seen) {
        return backup ? SeenFileTags::fromText(*backup->seen) : std::nullopt;
    }
    SeenFileTags seen = SeenFileTags::of({backup->tags, backup->comment, 0});
    seen.rating = -1; // stores of older versions had no ratings
    return seen;
}

QStringList mergedTags(const std::optional<SeenFileTags> &seen, const QStringList &file, const FileTags &library,
                       bool takesFile)
{
    const QSet<QString> inFile = keysOf(file);
    const QSet<QString> measured = keysOf(library.measured);
    QSet<QString> inLibrary = keysOf(library.tags);
    const auto wasHeld = [&](const QString &tag) {
        return seen ? seen->hasTag(tag) : inLibrary.contains(zqPlainLine(tag));
    };
    QSet<QString> standIns; // of a tag that differs from them only in case
    for (const QString &tag : file) {
        if (wasHeld(tag)) {
            standIns.insert(OpenMeta::comparisonKey(zqPlainLine(tag)));
        }
    }
    QStringList merged;
    for (const QString &tag : library.tags) {
        const QString key = zqPlainLine(tag);
        const bool isThere =
            inFile.contains(key) || measured.contains(key) || standIns.contains(OpenMeta::comparisonKey(key));
        const bool wasTakenAway = !isThere && (seen ? seen->hasTag(tag) : takesFile);
        if (!wasTakenAway) {
            merged.append(tag);
        }
    }
    for (const QString &tag : file) {
        const QString key = zqPlainLine(tag);
        if (!key.isEmpty() && !inLibrary.contains(key) && !(seen && seen->hasTag(tag))) {
            inLibrary.insert(key);
            merged.append(tag);
        }
    }
    return merged;
}

QString mergedComment(const std::optional<SeenFileTags> &seen, const QString &file, const QString &library,
                      bool takesFile)
{
    if (file == library || (seen && seen->hasComment(file))) {
        return library;
    }
    if ((seen && seen->hasComment(library)) || (!seen && takesFile)) {
        return file;
    }
    return FileTags::joinedComments(library, file);
}

int mergedRating(const std::optional<SeenFileTags> &seen, int file, int library, bool takesFile)
{
    const bool isKnown = seen && seen->rating >= 0;
    const bool isOnlyTheirs = isKnown ? seen->rating == library : takesFile || library == 0;
    return isOnlyTheirs ? file : library;
}

FileTags mergedValues(const std::optional<SeenFileTags> &seen, const FileTagsMerge &file, const FileTags &library,
                      bool takesFile)
{
    FileTags merged = library;
    if (file.tags) {
        merged.tags = mergedTags(seen, *file.tags, library, takesFile);
    }
    if (file.comment) {
        merged.comment = mergedComment(seen, *file.comment, library.comment, takesFile);
    }
    if (file.rating) {
        merged.rating = mergedRating(seen, OpenMeta::starsForRating(*file.rating), library.rating, takesFile);
    }
    return merged;
}

FileTagsChange changeFrom(const FileTags &library, const FileTags &merged)
{
    FileTagsChange change;
    change.from = library;
    const QSet<QString> before = keysOf(library.tags);
    const QSet<QString> after = keysOf(merged.tags);
    std::copy_if(merged.tags.begin(), merged.tags.end(), std::back_inserter(change.added),
                 [&before](const QString &tag) { return !before.contains(zqPlainLine(tag)); });
    std::copy_if(library.tags.begin(), library.tags.end(), std::back_inserter(change.removed),
                 [&after](const QString &tag) { return !after.contains(zqPlainLine(tag)); });
    if (merged.comment != library.comment) {
        change.comment = merged.comment;
    }
    if (merged.rating != library.rating) {
        change.rating = merged.rating;
    }
    return change;
}

using Unknown = FileTagsMerge::Unknown;

std::optional<FileTagsMerge> mergeOfOneFile(const QString &path, const FileTags &library, Unknown unknown,
                                            bool ignoresSeen, ZQError *error)
{
    ignoresSeen = ignoresSeen || (unknown == Unknown::TakesFile && library.isEmpty());
    ZQError recordError;
    const std::optional<SeenFileTags> record = ignoresSeen ? std::nullopt : SeenFileTags::ofFile(path, &recordError);
    if (!recordError.isNull()) {
        zqSetError(error, recordError);
        return std::nullopt;
    }
    std::optional<SeenFileTags> seen = record;
    if (!seen && !ignoresSeen) { // before reading, which may bring the backup up to date
        seen = seenAtLastBackup(path);
    }
    // Reading gives lost values back, and those may be older than the library's.
    const bool takesFile = unknown == Unknown::TakesFile && !seen && OpenMetaBackup::hasAttributes(path);
    FileTagsMerge file;
    if (!readInto(file, path, record.has_value(), error)) {
        return std::nullopt;
    }
    file.merged = mergedValues(seen, file, library, takesFile);
    file.change = changeFrom(library, file.merged);
    const bool isInFile = keysOf(file.tags.value_or(QStringList())) == keysOf(file.tagsForFile()) &&
                          file.comment.value_or(QString()) == file.merged.comment &&
                          OpenMeta::starsForRating(file.rating.value_or(0)) == file.merged.rating;
    file.isRecorded = isInFile && file.change.isEmpty() && record.value_or(SeenFileTags()) == SeenFileTags::of(library);
    return file;
}

} // namespace

const QString SeenFileTags::attributeName = AttributeStore::seenName;

QString FileTags::joinedComments(const QString &first, const QString &second)
{
    if (first.contains(second)) {
        return first;
    }
    return second.startsWith(first) ? second : first + u'\n' + second;
}

SeenFileTags SeenFileTags::of(const FileTags &values)
{
    SeenFileTags seen;
    for (const QString &tag : values.tags) {
        seen.tags.insert(digestOf(zqPlainLine(tag), tagDigits));
    }
    seen.comment = commentDigest(values.comment);
    seen.rating = values.rating;
    return seen;
}

QByteArray SeenFileTags::text() const
{
    QByteArrayList digests(tags.begin(), tags.end());
    std::sort(digests.begin(), digests.end());
    QByteArray text = 'r' + QByteArray::number(rating) + " t" + digests.join();
    return comment.isEmpty() ? text : text + " c" + comment;
}

std::optional<SeenFileTags> SeenFileTags::fromText(const QByteArray &text)
{
    const QByteArrayList fields = text.split(' ');
    if (fields.size() < 2 || fields.size() > 3 || fields.at(0).size() != 2 || !fields.at(0).startsWith('r') ||
        !fields.at(1).startsWith('t') || (fields.at(1).size() - 1) % tagDigits != 0) {
        return std::nullopt;
    }
    SeenFileTags seen;
    seen.rating = fields.at(0).at(1) - '0';
    for (qsizetype at = 1; at < fields.at(1).size(); at += tagDigits) {
        seen.tags.insert(fields.at(1).mid(at, tagDigits));
    }
    if (fields.size() == 3) {
        if (!fields.at(2).startsWith('c') || fields.at(2).size() != commentDigits + 1) {
            return std::nullopt;
        }
        seen.comment = fields.at(2).mid(1);
    }
    return seen.rating >= 0 && seen.rating <= 5 ? std::optional(seen) : std::nullopt;
}

bool SeenFileTags::hasTag(const QString &tag) const
{
    return tags.contains(digestOf(zqPlainLine(tag), tagDigits));
}

bool SeenFileTags::hasComment(const QString &text) const
{
    return comment == commentDigest(text);
}

std::optional<SeenFileTags> SeenFileTags::ofFile(const QString &path, ZQError *error)
{
    const auto text = ZQExtendedAttributes::get(path, attributeName, error);
    return text ? fromText(*text) : std::nullopt;
}

void SeenFileTags::write(const SeenFileTags &seen, const QString &path, Empty empty)
{
    const std::optional<QByteArray> present = ZQExtendedAttributes::get(path, attributeName);
    const QByteArray text = seen.text();
    const bool isNeedless = empty == Empty::IsLeftOut && !present && seen == SeenFileTags();
    if (present != text && !isNeedless && !ZQExtendedAttributes::set(path, attributeName, text)) {
        ZQExtendedAttributes::remove(path, attributeName);
        OpenMetaBackup::backupMetadata(path, text);
    }
}

QStringList FileTagsMerge::tagsForFile() const
{
    const QSet<QString> inFile = keysOf(tags.value_or(QStringList()));
    QSet<QString> taken; // by what is there
    for (const QString &tag : merged.tags) {
        if (inFile.contains(zqPlainLine(tag))) {
            taken.insert(OpenMeta::comparisonKey(zqPlainLine(tag)));
        }
    }
    QStringList wanted = merged.tags;
    wanted.removeIf([&](const QString &tag) {
        const QString key = zqPlainLine(tag);
        return !inFile.contains(key) && taken.contains(OpenMeta::comparisonKey(key));
    });
    return OpenMeta::removeDuplicateTags(wanted);
}

// A record of one file beside the values of another would say that all of them were taken away.
std::optional<FileTagsMerge> FileTagsMerge::ofFile(const QString &path, const FileTags &library, Unknown unknown,
                                                   bool ignoresSeen, ZQError *error)
{
    constexpr int mostTries = 3;
    const PathLock lock(path);
    QByteArray before = TagFileIdentity::ofFile(path).text;
    for (int i = 0; i < mostTries; ++i) {
        auto file = mergeOfOneFile(path, library, unknown, ignoresSeen, error);
        const QByteArray after = TagFileIdentity::ofFile(path).text;
        if (!file || before == after) {
            return file;
        }
        before = after;
    }
    zqSetError(error, ZQError::posix(EBUSY, path));
    return std::nullopt;
}

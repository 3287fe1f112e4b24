#include "Classes/Tags/OpenMeta.h"

#include "Classes/Tags/DesktopMirror.h"
#include "Classes/Tags/OpenMetaBackup.h"
#include "Classes/Tags/PathLock.h"
#include "Kit/Files/ZQExtendedAttributes.h"

#include <QSet>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

QSet<QString> comparisonKeys(const QStringList &tags)
{
    QSet<QString> keys;
    for (const QString &tag : tags) {
        keys.insert(OpenMeta::comparisonKey(tag));
    }
    return keys;
}

// What file managers wrote since, written into the file's own attributes as far as it can be written to.
DesktopMirror::Newer takeInMirrors(const QString &path)
{
    if (!OpenMeta::canNameAFile(path) || !DesktopMirror::isOn()) {
        return {};
    }
    const PathLock lock(path);
    const DesktopMirror::Newer found = DesktopMirror::newer(path);
    if (found.tags) {
        OpenMeta::setUserTags(*found.tags, path);
    }
    if (found.comment) {
        OpenMeta::setFinderComment(*found.comment, path);
    }
    if (found.rating) {
        OpenMeta::setRating(*found.rating, path);
    }
    return found;
}

// What is due before a file's tags, rating or comment are read; one look at the names of its attributes says whether
// there is anything to do.
DesktopMirror::Newer bringUpToDate(const QString &path, bool upgradesOlderTags)
{
    ZQError error;
    const QStringList names = OpenMeta::canNameAFile(path) ? ZQExtendedAttributes::list(path, &error) : QStringList();
    if (!error.isNull() || !OpenMeta::canNameAFile(path)) {
        return {};
    }
    if (upgradesOlderTags && names.contains(OpenMeta::openmetaTimeKey(OpenMeta::olderUserTagsKey))) {
        OpenMetaBackup::copyTagsFromOldKeyTokMDItemOMIfNeeded(path);
    }
    OpenMetaBackup::restoreMetadata(path, names);
    return DesktopMirror::isAmong(names) ? takeInMirrors(path) : DesktopMirror::Newer();
}

} // namespace

ZQError OpenMeta::addUserTags(const QVariant &tags, const QString &path)
{
    const auto added = validateAsArrayOfStrings(tags);
    if (!added) {
        return parameterError();
    }
    ZQError error;
    const QStringList original = getUserTags(path, &error).value_or(QStringList());
    if (!error.isNull()) {
        return error;
    }
    const QStringList result = removeDuplicateTags(original + *added);
    return result == original ? ZQError() : setUserTags(result, path);
}

ZQError OpenMeta::clearUserTags(const QVariant &tags, const QString &path)
{
    const auto cleared = validateAsArrayOfStrings(tags);
    if (!cleared) {
        return parameterError();
    }
    ZQError error;
    const QStringList original = getUserTagsNoRestore(path, &error).value_or(QStringList());
    if (!error.isNull()) {
        return error;
    }
    const QSet<QString> keys = comparisonKeys(*cleared);
    QStringList kept;
    std::copy_if(original.begin(), original.end(), std::back_inserter(kept),
                 [&keys](const QString &tag) { return !keys.contains(comparisonKey(tag)); });
    return kept.size() == original.size() ? ZQError() : setUserTags(kept, path);
}

std::optional<QStringList> OpenMeta::getUserTags(const QString &path, ZQError *error)
{
    // What another program wrote counts also where it cannot be written into the file's own attributes.
    const DesktopMirror::Newer newer = bringUpToDate(path, true);
    return newer.tags ? newer.tags : getUserTagsNoRestore(path, error);
}

QStringList OpenMeta::getCommonUserTags(const QStringList &paths, ZQError *error)
{
    if (paths.size() == 1) {
        return getUserTags(paths.first(), error).value_or(QStringList());
    }
    for (const QString &path : paths) {
        OpenMetaBackup::copyTagsFromOldKeyTokMDItemOMIfNeeded(path);
    }
    for (const QString &path : paths) {
        OpenMetaBackup::restoreMetadata(path);
    }
    QHash<QString, QString> common;
    QStringList order;
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const DesktopMirror::Newer newer = takeInMirrors(paths.at(i));
        const auto tags = newer.tags ? newer.tags : getUserTagsNoRestore(paths.at(i), error);
        if (!tags || tags->isEmpty()) {
            return {};
        }
        if (i == 0) {
            order = *tags;
            for (const QString &tag : order) {
                common.insert(comparisonKey(tag), tag);
            }
            continue;
        }
        const QSet<QString> keys = comparisonKeys(*tags);
        common.removeIf([&keys](QHash<QString, QString>::iterator entry) { return !keys.contains(entry.key()); });
        if (common.isEmpty()) {
            return {};
        }
    }
    return orderedArrayWithDict(common, order);
}

ZQError OpenMeta::setCommonUserTags(const QStringList &paths, const QStringList &originalCommonTags,
                                    const QStringList &replaceWith)
{
    if (originalCommonTags.isEmpty() && replaceWith.isEmpty()) {
        return {};
    }
    const QSet<QString> replaced = comparisonKeys(originalCommonTags);
    ZQError lastError;
    for (const QString &path : paths) {
        ZQError error;
        QStringList tags = getUserTagsNoRestore(path, &error).value_or(QStringList());
        if (error.isNull() && tags != replaceWith) {
            tags.removeIf([&replaced](const QString &tag) { return replaced.contains(comparisonKey(tag)); });
            error = setUserTags(tags + replaceWith, path);
        }
        if (!error.isNull()) {
            lastError = error;
        }
    }
    return lastError;
}

double OpenMeta::getRating(const QString &path, ZQError *error)
{
    const DesktopMirror::Newer newer = bringUpToDate(path, false);
    return newer.rating ? *newer.rating : getXAttrMetaData(starRatingKey, path, error).toDouble();
}

int OpenMeta::starsForRating(double rating)
{
    return std::isnan(rating) ? 0 : int(std::lround(std::clamp(rating, 0.0, 5.0)));
}

OpenMeta::Values OpenMeta::getValues(const QString &path)
{
    const DesktopMirror::Newer newer = bringUpToDate(path, true);
    Values values{newer.tags, newer.comment, newer.rating, {}, {}, {}};
    if (!values.tags) {
        values.tags = getUserTagsNoRestore(path, &values.tagsError);
    }
    if (!values.comment) {
        const QVariant comment = getXAttrMetaData(finderCommentKey, path, &values.commentError);
        values.comment = comment.typeId() == QMetaType::QString ? std::optional(comment.toString()) : std::nullopt;
    }
    if (!values.rating) {
        const QVariant rating = getXAttrMetaData(starRatingKey, path, &values.ratingError);
        values.rating = rating.isValid() ? std::optional(rating.toDouble()) : std::nullopt;
    }
    return values;
}

std::optional<QString> OpenMeta::getFinderComment(const QString &path, ZQError *error)
{
    const DesktopMirror::Newer newer = bringUpToDate(path, false);
    if (newer.comment) {
        return newer.comment;
    }
    const QVariant comment = getXAttrMetaData(finderCommentKey, path, error);
    return comment.typeId() == QMetaType::QString ? std::optional(comment.toString()) : std::nullopt;
}

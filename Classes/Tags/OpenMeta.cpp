#include "Classes/Tags/OpenMeta.h"

#include "Classes/Tags/AttributeRoom.h"
#include "Classes/Tags/DesktopMirror.h"
#include "Classes/Tags/OpenMetaBackup.h"
#include "Classes/Tags/PathLock.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQPropertyList.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QRandomGenerator>
#include <QSet>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

ZQError openMetaError(int code, const QString &info)
{
    ZQError error = ZQError::with(OpenMeta::errorDomain, code, info);
    error.userInfo.insert(OpenMeta::errorInfoKey, info);
    return error;
}

ZQError parameterError()
{
    return openMetaError(OpenMeta::ParameterError, zqLocalized("Open Meta parameter error"));
}

ZQError tooBigError()
{
    return openMetaError(
        OpenMeta::TooBigError,
        zqLocalized(
            "Meta data is too big - size as binary plist must be less than (perhaps 4k?) some number of bytes"));
}

ZQError posixError(int errnoValue)
{
    const QString info = OpenMeta::errnoString(errnoValue);
    ZQError error = ZQError::with(ZQError::posixDomain, errnoValue, info);
    error.userInfo.insert(OpenMeta::errorInfoKey, info);
    return error;
}

bool isList(const QVariant &value)
{
    return value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QStringList;
}

// ext4 looks for another file with an equal block of attributes to share it, by a hash in which equal values, and the
// equal digits of two dates, cancel each other out. Dates that differ only by when they were taken give thousands of
// files few hashes, and each write then compares its block with those of all of them. So what is below the precision
// that matters is drawn by lot.
QVariant now()
{
    constexpr std::uint32_t microsecondsByLot = 4096;
    static thread_local QRandomGenerator random = QRandomGenerator::securelySeeded();
    const auto lot = std::chrono::nanoseconds(random.bounded(microsecondsByLot * 1000));
    return QVariant::fromValue(std::chrono::system_clock::time_point(std::chrono::system_clock::now() - lot));
}

QSet<QString> comparisonKeys(const QStringList &tags)
{
    QSet<QString> keys;
    for (const QString &tag : tags) {
        keys.insert(OpenMeta::comparisonKey(tag));
    }
    return keys;
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
    return DesktopMirror::mayBeNewer(names) ? DesktopMirror::takeIn(path) : DesktopMirror::Newer();
}

// An older list beside a newer one would mislead those who read only that name.
void setOrDrop(const QStringList &tags, const QString &name, const QString &path)
{
    if (AttributeRoom::isWanting(OpenMeta::setXAttr(tags, name, path))) {
        OpenMeta::setXAttr({}, name, path);
    }
}

// The value under both names. Where they do not fit, the spotlight name is the one that counts.
ZQError setBothNames(const QVariant &value, const QString &key, const QString &path)
{
    ZQError otherError = OpenMeta::setXAttrNoSpotlightMirror(value, key, path);
    ZQError error = OpenMeta::setXAttr(value, OpenMeta::spotlightKey(key), path);
    if (AttributeRoom::isWanting(error)) {
        error =
            AttributeRoom::write(path, [&] { return OpenMeta::setXAttr(value, OpenMeta::spotlightKey(key), path); });
        if (error.isNull()) {
            otherError = OpenMeta::setXAttr(value, OpenMeta::openmetaKey(key), path);
        }
    }
    if (error.isNull() && AttributeRoom::isWanting(otherError)) {
        OpenMeta::setXAttr({}, OpenMeta::openmetaKey(key), path);
    }
    return error;
}

} // namespace

ZQError OpenMeta::setUserTags(const QVariant &tags, const QString &path)
{
    const auto strings = validateAsArrayOfStrings(tags);
    if (!strings || !canNameAFile(path)) {
        return parameterError();
    }
    const QStringList unique = removeDuplicateTags(*strings);
    const PathLock lock(path);
    setXAttrMetaData(now(), userTagTimeKey, path);
    for (const QString &name : {spotlightKey(olderUserTagsKey), openmetaKey(olderUserTagsKey)}) {
        setOrDrop(unique, name, path);
    }
    const ZQError error = setBothNames(unique, userTagsKey, path);
    if (error.isNull()) {
        DesktopMirror::write(DesktopMirror::Kind::Tags, DesktopMirror::textForTags(unique), path);
    }
    return error;
}

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

std::optional<QStringList> OpenMeta::getUserTagsNoRestore(const QString &path, ZQError *error)
{
    const auto array = getNSArrayMetaData(userTagsKey, path, error);
    if (!array) {
        return std::nullopt;
    }
    QStringList tags; // other programs may have put anything into the list
    for (const QVariant &member : *array) {
        if (member.typeId() == QMetaType::QString) {
            tags.append(member.toString());
        }
    }
    return tags;
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
        const DesktopMirror::Newer newer = DesktopMirror::takeIn(paths.at(i));
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

ZQError OpenMeta::setRating(double rating, const QString &path)
{
    const QVariant value = rating > 0 ? QVariant(std::min(rating, 5.0)) : QVariant();
    const PathLock lock(path);
    const ZQError error = setBothNames(value, starRatingKey, path);
    if (error.isNull()) {
        DesktopMirror::write(DesktopMirror::Kind::Rating, DesktopMirror::textForRating(rating), path);
        OpenMetaBackup::backupMetadata(path);
    }
    return error;
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

ZQError OpenMeta::setFinderComment(const QString &comment, const QString &path)
{
    const PathLock lock(path);
    const ZQError error =
        AttributeRoom::write(path, [&] { return setXAttr(comment, spotlightKey(finderCommentKey), path); });
    if (error.isNull()) {
        DesktopMirror::write(DesktopMirror::Kind::Comment, comment.toUtf8(), path);
        OpenMetaBackup::backupMetadata(path);
    }
    return error;
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

ZQError OpenMeta::setString(const QString &string, const QString &keyName, const QString &path)
{
    return setXAttrMetaData(string.isNull() ? QVariant() : QVariant(string), keyName, path);
}

QString OpenMeta::getString(const QString &keyName, const QString &path, ZQError *error)
{
    const QVariant value = getXAttrMetaData(keyName, path, error);
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

std::optional<QVariantList> OpenMeta::getNSArrayMetaData(const QString &metaDataKey, const QString &path,
                                                         ZQError *error)
{
    const QVariant value = getXAttrMetaData(metaDataKey, path, error);
    return isList(value) ? std::optional(value.toList()) : std::nullopt;
}

ZQError OpenMeta::setNSArrayMetaData(const QVariant &array, const QString &metaDataKey, const QString &path)
{
    return isList(array) ? setXAttrMetaData(array, metaDataKey, path) : parameterError();
}

ZQError OpenMeta::addToNSArrayMetaData(const QVariant &array, const QString &metaDataKey, const QString &path)
{
    if (!isList(array)) {
        return parameterError();
    }
    ZQError error;
    QVariantList members = getNSArrayMetaData(metaDataKey, path, &error).value_or(QVariantList());
    if (!error.isNull()) {
        return error;
    }
    const qsizetype oldSize = members.size();
    for (const QVariant &member : array.toList()) {
        if (!members.contains(member)) {
            members.append(member);
        }
    }
    return members.size() == oldSize ? ZQError() : setNSArrayMetaData(members, metaDataKey, path);
}

QVariant OpenMeta::getXAttrMetaData(const QString &metaDataKey, const QString &path, ZQError *error)
{
    return getXAttr(spotlightKey(metaDataKey), path, error);
}

QVariant OpenMeta::getXAttrMetaDataNoSpotlightMirror(const QString &metaDataKey, const QString &path, ZQError *error)
{
    return getXAttr(openmetaKey(metaDataKey), path, error);
}

ZQError OpenMeta::setXAttrMetaData(const QVariant &value, const QString &metaDataKey, const QString &path)
{
    setXAttrNoSpotlightMirror(value, metaDataKey, path);
    return setXAttr(value, spotlightKey(metaDataKey), path);
}

ZQError OpenMeta::setXAttrNoSpotlightMirror(const QVariant &value, const QString &omKey, const QString &path)
{
    const ZQError error = setXAttr(value, openmetaKey(omKey), path);
    if (!error.isNull()) {
        return error;
    }
    return setXAttr(now(), openmetaTimeKey(omKey), path);
}

ZQError OpenMeta::setXAttr(const QVariant &value, const QString &forKey, const QString &path)
{
    if (!canNameAFile(path)) {
        return parameterError();
    }
    QByteArray data;
    if (value.isValid()) {
        ZQError error;
        const auto encoded = ZQPropertyList::toBinary(value, &error);
        if (!encoded) {
            return openMetaError(PropertyListError, error.localizedDescription());
        }
        data = *encoded;
        if (data.size() > maximumDataSize) {
            return tooBigError();
        }
    }
    ZQError error;
    const bool done = data.isEmpty() ? ZQExtendedAttributes::remove(path, forKey, &error)
                                     : ZQExtendedAttributes::set(path, forKey, data, &error);
    if (!done) {
        return posixError(error.code);
    }
    if (forKey.contains(userTagsKey)) {
        OpenMetaBackup::backupMetadata(path);
    }
    return {};
}

QVariant OpenMeta::getXAttr(const QString &name, const QString &path, ZQError *error)
{
    if (!canNameAFile(path)) {
        zqSetError(error, parameterError());
        return {};
    }
    ZQError readError;
    const auto data = ZQExtendedAttributes::get(path, name, &readError);
    if (!data) {
        if (!readError.isNull() && readError.code != EINVAL) {
            zqSetError(error, posixError(readError.code));
        }
        return {};
    }
    if (data->size() > maximumDataSize) {
        zqSetError(error, posixError(ERANGE));
        return {};
    }
    if (data->isEmpty()) {
        return {};
    }
    const auto value = ZQPropertyList::fromData(*data, &readError);
    if (!value) {
        zqSetError(error, openMetaError(PropertyListError, readError.localizedDescription()));
        return {};
    }
    return *value;
}

std::optional<QStringList> OpenMeta::validateAsArrayOfStrings(const QVariant &value)
{
    if (!isList(value)) {
        return std::nullopt;
    }
    QStringList strings;
    for (const QVariant &member : value.toList()) {
        if (member.typeId() != QMetaType::QString) {
            return std::nullopt;
        }
        strings.append(member.toString());
    }
    return strings;
}

QStringList OpenMeta::removeDuplicateTags(const QStringList &tags)
{
    const QStringList decomposed = decomposeArrayOfStrings(tags);
    QHash<QString, QString> tagsByKey;
    for (const QString &tag : decomposed) {
        tagsByKey.insert(comparisonKey(tag), tag);
    }
    return orderedArrayWithDict(tagsByKey, decomposed);
}

QStringList OpenMeta::orderedArrayWithDict(const QHash<QString, QString> &tagsByKey, const QStringList &sortHint)
{
    QHash<QString, QString> left = tagsByKey;
    QStringList ordered;
    ordered.reserve(left.size());
    for (const QString &tag : sortHint) {
        if (left.remove(comparisonKey(tag))) {
            ordered.append(tag);
        }
    }
    return ordered + left.values();
}

bool OpenMeta::canNameAFile(const QString &path)
{
    return !path.isEmpty() && !path.contains(QChar(0)) && path.isValidUtf16();
}

QStringList OpenMeta::decomposeArrayOfStrings(const QStringList &strings)
{
    QStringList decomposed;
    decomposed.reserve(strings.size());
    for (const QString &string : strings) {
        decomposed.append(string.normalized(QString::NormalizationForm_D));
    }
    return decomposed;
}

QString OpenMeta::errnoString(int errnoValue)
{
    char buffer[1024] = "";
    return zqFormat(QStringLiteral("errno error: %d, %s"),
                    {errnoValue, QString::fromLocal8Bit(::strerror_r(errnoValue, buffer, sizeof buffer))});
}

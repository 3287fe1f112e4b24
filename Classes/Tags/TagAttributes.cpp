#include "Classes/Tags/TagAttributes.h"

#include "Classes/Tags/AttributeRoom.h"
#include "Classes/Tags/DesktopMirror.h"
#include "Classes/Tags/PathLock.h"
#include "Classes/Tags/TagBackupQueue.h"

#include <QRandomGenerator>

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace {

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

// An older list beside a newer one would mislead those who read only that name.
void setOrDrop(const QStringList &tags, const QString &name, const QString &path)
{
    if (AttributeRoom::isWanting(TagAttributes::setXAttr(tags, name, path))) {
        TagAttributes::setXAttr({}, name, path);
    }
}

// The value under both names. Where they do not fit, the spotlight name is the one that counts.
ZQError setBothNames(const QVariant &value, const QString &key, const QString &path)
{
    ZQError otherError = TagAttributes::setXAttrNoSpotlightMirror(value, key, path);
    ZQError error = TagAttributes::setXAttr(value, TagAttributes::spotlightKey(key), path);
    if (AttributeRoom::isWanting(error)) {
        error = AttributeRoom::write(
            path, [&] { return TagAttributes::setXAttr(value, TagAttributes::spotlightKey(key), path); });
        if (error.isNull()) {
            otherError = TagAttributes::setXAttr(value, TagAttributes::openmetaKey(key), path);
        }
    }
    if (error.isNull() && AttributeRoom::isWanting(otherError)) {
        TagAttributes::setXAttr({}, TagAttributes::openmetaKey(key), path);
    }
    return error;
}

} // namespace

ZQError TagAttributes::setUserTags(const QVariant &tags, const QString &path)
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

ZQError TagAttributes::setRating(double rating, const QString &path)
{
    const QVariant value = rating > 0 ? QVariant(std::min(rating, 5.0)) : QVariant();
    const PathLock lock(path);
    const ZQError error = setBothNames(value, starRatingKey, path);
    if (error.isNull()) {
        DesktopMirror::write(DesktopMirror::Kind::Rating, DesktopMirror::textForRating(rating), path);
        TagBackupQueue::shared().add(path);
    }
    return error;
}

ZQError TagAttributes::setFinderComment(const QString &comment, const QString &path)
{
    const PathLock lock(path);
    const ZQError error =
        AttributeRoom::write(path, [&] { return setXAttr(comment, spotlightKey(finderCommentKey), path); });
    if (error.isNull()) {
        DesktopMirror::write(DesktopMirror::Kind::Comment, comment.toUtf8(), path);
        TagBackupQueue::shared().add(path);
    }
    return error;
}

ZQError TagAttributes::setString(const QString &string, const QString &keyName, const QString &path)
{
    return setXAttrMetaData(string.isNull() ? QVariant() : QVariant(string), keyName, path);
}

ZQError TagAttributes::setNSArrayMetaData(const QVariant &array, const QString &metaDataKey, const QString &path)
{
    return isList(array) ? setXAttrMetaData(array, metaDataKey, path) : parameterError();
}

ZQError TagAttributes::addToNSArrayMetaData(const QVariant &array, const QString &metaDataKey, const QString &path)
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

ZQError TagAttributes::setXAttrMetaData(const QVariant &value, const QString &metaDataKey, const QString &path)
{
    setXAttrNoSpotlightMirror(value, metaDataKey, path);
    return setXAttr(value, spotlightKey(metaDataKey), path);
}

ZQError TagAttributes::setXAttrNoSpotlightMirror(const QVariant &value, const QString &omKey, const QString &path)
{
    const ZQError error = setXAttr(value, openmetaKey(omKey), path);
    if (!error.isNull()) {
        return error;
    }
    return setXAttr(now(), openmetaTimeKey(omKey), path);
}

ZQError TagAttributes::setXAttr(const QVariant &value, const QString &forKey, const QString &path)
{
    const ZQError error = write(value, forKey, path);
    if (error.isNull() && forKey.contains(userTagsKey)) {
        TagBackupQueue::shared().add(path);
    }
    return error;
}

#include "Classes/Tags/AttributeStore.h"

#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQPropertyList.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <cerrno>
#include <cstring>

namespace {

ZQError openMetaError(int code, const QString &info)
{
    ZQError error = ZQError::with(AttributeStore::errorDomain, code, info);
    error.userInfo.insert(AttributeStore::errorInfoKey, info);
    return error;
}

ZQError tooBigError()
{
    return openMetaError(
        AttributeStore::TooBigError,
        zqLocalized(
            "Meta data is too big - size as binary plist must be less than (perhaps 4k?) some number of bytes"));
}

ZQError posixError(int errnoValue)
{
    const QString info = AttributeStore::errnoString(errnoValue);
    ZQError error = ZQError::with(ZQError::posixDomain, errnoValue, info);
    error.userInfo.insert(AttributeStore::errorInfoKey, info);
    return error;
}

} // namespace

bool AttributeStore::isList(const QVariant &value)
{
    return value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QStringList;
}

ZQError AttributeStore::parameterError()
{
    return openMetaError(ParameterError, zqLocalized("Open Meta parameter error"));
}

bool AttributeStore::isOfSystem(const ZQError &error)
{
    return !error.isNull() && error.domain == ZQError::posixDomain;
}

bool AttributeStore::isOurs(const QString &name)
{
    return name.startsWith(openmetaKey({})) || name.startsWith(openmetaTimeKey({})) ||
           name == spotlightKey(userTagsKey) || name == spotlightKey(olderUserTagsKey) ||
           name == spotlightKey(userTagTimeKey) || name == spotlightKey(starRatingKey) ||
           name == spotlightKey(finderCommentKey) || name == seenName;
}

ZQError AttributeStore::write(const QVariant &value, const QString &name, const QString &path)
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
    const bool done = data.isEmpty() ? ZQExtendedAttributes::remove(path, name, &error)
                                     : ZQExtendedAttributes::set(path, name, data, &error);
    if (!done) {
        return posixError(error.code);
    }
    return {};
}

QVariant AttributeStore::getXAttr(const QString &name, const QString &path, ZQError *error)
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

QVariant AttributeStore::getXAttrMetaData(const QString &metaDataKey, const QString &path, ZQError *error)
{
    return getXAttr(spotlightKey(metaDataKey), path, error);
}

QVariant AttributeStore::getXAttrMetaDataNoSpotlightMirror(const QString &metaDataKey, const QString &path,
                                                           ZQError *error)
{
    return getXAttr(openmetaKey(metaDataKey), path, error);
}

QString AttributeStore::getString(const QString &keyName, const QString &path, ZQError *error)
{
    const QVariant value = getXAttrMetaData(keyName, path, error);
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

std::optional<QVariantList> AttributeStore::getNSArrayMetaData(const QString &metaDataKey, const QString &path,
                                                               ZQError *error)
{
    const QVariant value = getXAttrMetaData(metaDataKey, path, error);
    return isList(value) ? std::optional(value.toList()) : std::nullopt;
}

std::optional<QStringList> AttributeStore::getUserTagsNoRestore(const QString &path, ZQError *error)
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

std::optional<QStringList> AttributeStore::validateAsArrayOfStrings(const QVariant &value)
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

QStringList AttributeStore::removeDuplicateTags(const QStringList &tags)
{
    const QStringList decomposed = decomposeArrayOfStrings(tags);
    QHash<QString, QString> tagsByKey;
    for (const QString &tag : decomposed) {
        tagsByKey.insert(comparisonKey(tag), tag);
    }
    return orderedArrayWithDict(tagsByKey, decomposed);
}

QStringList AttributeStore::orderedArrayWithDict(const QHash<QString, QString> &tagsByKey, const QStringList &sortHint)
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

bool AttributeStore::canNameAFile(const QString &path)
{
    return !path.isEmpty() && !path.contains(QChar(0)) && path.isValidUtf16();
}

QStringList AttributeStore::decomposeArrayOfStrings(const QStringList &strings)
{
    QStringList decomposed;
    decomposed.reserve(strings.size());
    for (const QString &string : strings) {
        decomposed.append(string.normalized(QString::NormalizationForm_D));
    }
    return decomposed;
}

QString AttributeStore::errnoString(int errnoValue)
{
    char buffer[1024] = "";
    return zqFormat(QStringLiteral("errno error: %d, %s"),
                    {errnoValue, QString::fromLocal8Bit(::strerror_r(errnoValue, buffer, sizeof buffer))});
}

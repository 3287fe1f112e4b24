#include "Classes/Tags/AttributeRoom.h"

#include "Classes/Tags/AttributeStore.h"
#include "Classes/Tags/DesktopMirror.h"
#include "Kit/Files/ZQExtendedAttributes.h"

#include <cerrno>
#include <utility>

namespace {

using Attributes = QList<std::pair<QString, QByteArray>>;

// What gives way, step by step.
QList<QStringList> steps(const QString &path)
{
    using M = AttributeStore;
    return {
        DesktopMirror::attributesOfOurs(path),
        {M::spotlightKey(M::olderUserTagsKey), M::openmetaKey(M::olderUserTagsKey)},
        {M::openmetaKey(M::userTagTimeKey), M::openmetaTimeKey(M::userTagTimeKey), M::openmetaTimeKey(M::userTagsKey),
         M::openmetaTimeKey(M::starRatingKey), M::spotlightKey(M::userTagTimeKey), M::seenName},
        {M::openmetaKey(M::userTagsKey), M::openmetaKey(M::starRatingKey)},
    };
}

bool giveUp(const QString &path, const QStringList &names, Attributes &given)
{
    const qsizetype before = given.size();
    for (const QString &name : names) {
        const auto value = ZQExtendedAttributes::get(path, name);
        if (value && ZQExtendedAttributes::remove(path, name)) {
            given.append({name, *value});
        }
    }
    return given.size() > before;
}

} // namespace

bool AttributeRoom::isWanting(const ZQError &error)
{
    return error.domain == ZQError::posixDomain &&
           (error.code == ENOSPC || error.code == EDQUOT || error.code == E2BIG);
}

ZQError AttributeRoom::write(const QString &path, const std::function<ZQError()> &write)
{
    ZQError error = write();
    if (!isWanting(error)) {
        return error;
    }
    Attributes given;
    for (const QStringList &names : steps(path)) {
        if (giveUp(path, names, given)) {
            error = write();
            if (!isWanting(error)) {
                return error;
            }
        }
    }
    while (!given.isEmpty()) { // the last first: the record of the mirrors comes after the mirrors
        const auto [name, value] = given.takeLast();
        ZQExtendedAttributes::set(path, name, value);
    }
    return error;
}

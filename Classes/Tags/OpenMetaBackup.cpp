#include "Classes/Tags/OpenMetaBackup.h"

#include "Classes/Tags/OpenMeta.h"

#include <QDateTime>

void OpenMetaBackup::copyTagsFromOldKeyTokMDItemOMIfNeeded(const QString &path)
{
    constexpr qint64 clearlyLaterMilliseconds = 2000;
    const QVariant olderTime = OpenMeta::getXAttr(OpenMeta::openmetaTimeKey(OpenMeta::olderUserTagsKey), path);
    if (olderTime.typeId() != QMetaType::QDateTime) {
        return;
    }
    const QVariant time = OpenMeta::getXAttr(OpenMeta::openmetaTimeKey(OpenMeta::userTagsKey), path);
    if (time.typeId() == QMetaType::QDateTime &&
        time.toDateTime().msecsTo(olderTime.toDateTime()) < clearlyLaterMilliseconds) {
        return;
    }
    const QVariant olderTags = OpenMeta::getXAttr(OpenMeta::openmetaKey(OpenMeta::olderUserTagsKey), path);
    const QVariant tags = OpenMeta::getXAttr(OpenMeta::openmetaKey(OpenMeta::userTagsKey), path);
    if (!olderTags.isValid() || olderTags == tags) {
        return;
    }
    OpenMeta::setXAttr(olderTags, OpenMeta::openmetaKey(OpenMeta::userTagsKey), path);
    OpenMeta::setXAttr(olderTags, OpenMeta::spotlightKey(OpenMeta::userTagsKey), path);
    OpenMeta::setXAttr(olderTime, OpenMeta::openmetaTimeKey(OpenMeta::userTagsKey), path);
}

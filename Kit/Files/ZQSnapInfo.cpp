#include "Kit/Files/ZQSnapInfo.h"

#include "Kit/Files/ZQPropertyList.h"

#include <QFileInfo>

namespace {

QString textOf(const QVariant &value)
{
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

QStringList textsOf(const QVariant &value)
{
    QStringList texts;
    const QVariantList values = value.typeId() == QMetaType::QVariantList ? value.toList() : QVariantList{value};
    for (const QVariant &entry : values) {
        if (entry.typeId() == QMetaType::QString) {
            texts.append(entry.toString().trimmed());
        }
    }
    return texts;
}

} // namespace

std::optional<ZQSnapInfo> ZQSnapInfo::fromData(const QByteArray &data)
{
    const auto info = ZQPropertyList::fromData(data);
    if (!info || info->typeId() != QMetaType::QVariantMap) {
        return std::nullopt;
    }
    const QVariantMap values = info->toMap();
    return ZQSnapInfo{.picture = textOf(values.value(QStringLiteral("imageGrabPath"))),
                      .tags = textsOf(values.value(QStringLiteral("tags"))),
                      .url = textOf(values.value(QStringLiteral("url")))};
}

bool ZQSnapInfo::isPictureInside(const QString &package) const
{
    QString path = package;
    for (const QString &part : picture.split(u'/', Qt::SkipEmptyParts)) {
        path += u'/' + part;
        if (part == u".." || QFileInfo(path).isSymLink()) {
            return false;
        }
    }
    return !picture.startsWith(u'/') && !picture.contains(QChar(u'\0'));
}

#include "Classes/Tags/WhereFroms.h"

#include "Classes/Tags/AttributeStore.h"
#include "Kit/Files/ZQExtendedAttributes.h"

namespace {
QString address(const QString &path, const QString &name)
{
    return QString::fromUtf8(ZQExtendedAttributes::get(path, name).value_or(QByteArray())).trimmed();
}

QString textAt(const QVariantList &list, qsizetype index)
{
    const QVariant value = list.value(index);
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}
} // namespace

ZQError WhereFroms::noteInFile(const QString &path) const
{
    QVariantList urls = {webURL};
    if (!webPageURL.isEmpty()) {
        urls.append(webPageURL);
    }
    return webURL.isEmpty() && webPageURL.isEmpty()
               ? ZQError()
               : AttributeStore::write(urls, AttributeStore::spotlightKey(ownKey), path);
}

WhereFroms WhereFroms::urlsOfFile(const QString &path)
{
    if (!AttributeStore::canNameAFile(path)) {
        return {};
    }
    const QVariant origin = AttributeStore::getXAttrMetaData(AttributeStore::whereFromsKey, path);
    WhereFroms urls{origin.typeId() == QMetaType::QString ? origin.toString() : textAt(origin.toList(), 0), {}};
    if (urls.webURL.isEmpty()) {
        urls.webURL = address(path, originName);
    }
    urls.webPageURL = address(path, referrerName);
    const auto own = AttributeStore::getNSArrayMetaData(ownKey, path);
    if (own && !own->isEmpty()) {
        urls.webURL = textAt(*own, 0);
        if (own->size() > 1) {
            urls.webPageURL = textAt(*own, 1);
        }
    }
    return urls;
}

#include "Kit/Persistence/ZQObjectID.h"

#include "Kit/Persistence/ZQManagedObjectModel.h"

namespace {
// Temporary identifiers are unique in this process only; the name space keeps their text unique across processes.
QUuid temporaryUUID(qint64 key)
{
    static const QUuid nameSpace = QUuid::createUuid();
    return QUuid::createUuidV5(nameSpace, QString::number(key));
}
} // namespace

QString ZQObjectID::URIRepresentation(const QUuid &storeUUID) const
{
    if (isNull() || !entity) {
        return {};
    }
    if (isTemporary()) {
        return QStringLiteral("x-zelto:///%1/t%2").arg(entity->name, temporaryUUID(key).toString(QUuid::WithoutBraces));
    }
    return QStringLiteral("x-zelto://%1/%2/p%3").arg(storeUUID.toString(QUuid::WithoutBraces), entity->name).arg(key);
}

const ZQEntityDescription *ZQObjectID::rootEntity() const
{
    return entity ? entity->root : nullptr;
}

#include "Models/DataModel/ZQModelFetch.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"

#include <QJsonObject>
#include <QJsonValue>

void zqLogFetchError(const ZQError &error)
{
    if (error.domain == ZQStoreErrorDomain && error.code == int(ZQStoreError::Cancelled)) {
        return; // nobody waits for it
    }
    const QString description = error.localizedDescription();
    const QString text = zqFormat(QStringLiteral("Error while fetching\n%@"),
                                  {description.isEmpty() ? QStringLiteral("Unknown Error") : description});
    qCWarning(zqLogStore, "%s", qUtf8Printable(text));
}

qint64 zqCount(ZQManagedObjectContext &context, const ZQFetchRequest &request)
{
    ZQError error;
    const auto count = context.countForFetchRequest(request, &error);
    if (!count) {
        zqLogFetchError(error);
    }
    return count.value_or(0);
}

QDateTime zqNow()
{
    return QDateTime::fromMSecsSinceEpoch(QDateTime::currentMSecsSinceEpoch(), Qt::UTC);
}

static QJsonValue jsonValue(const QVariant &value, ZQAttributeType type)
{
    switch (type) {
    case ZQAttributeType::String:
        return value.toString();
    case ZQAttributeType::Boolean:
        return value.toBool();
    case ZQAttributeType::Integer16:
    case ZQAttributeType::Integer32:
    case ZQAttributeType::Integer64:
        return value.toLongLong();
    case ZQAttributeType::Float:
        // Through its own shortest text: 0.445F is 0.445, not the nearest double's seventeen digits.
        return QString::number(value.toFloat()).toDouble();
    case ZQAttributeType::Double:
        return value.toDouble();
    case ZQAttributeType::Date: {
        const QDateTime date = value.toDateTime();
        return date.isValid() ? QJsonValue(date.toUTC().toString(Qt::ISODateWithMs)) : QJsonValue();
    }
    case ZQAttributeType::Binary:
        return QString::fromLatin1(value.toByteArray().toBase64());
    }
    return {};
}

static bool isMissing(const QVariant &value, ZQAttributeType type)
{
    return !value.isValid() || value.isNull() || (type == ZQAttributeType::String && value.toString().isNull()) ||
           (type == ZQAttributeType::Binary && value.toByteArray().isNull());
}

QJsonObject zqJSONObject(const ZQManagedObject &object)
{
    const ZQManagedObjectContext *context = object.managedObjectContext();
    const QUuid store = context ? context->persistentStoreCoordinator()->storeUUID() : QUuid();
    QJsonObject json;
    for (const ZQAttributeDescription &attribute : object.entity()->attributes) {
        const QVariant value = object.valueForKey(attribute.name);
        json.insert(attribute.name, isMissing(value, attribute.type) ? QJsonValue() : jsonValue(value, attribute.type));
    }
    for (const ZQRelationshipDescription &relationship : object.entity()->relationships) {
        if (!relationship.toMany) {
            const auto target = object.valueForKey(relationship.name).value<ZQObjectID>();
            json.insert(relationship.name,
                        target.isNull() ? QJsonValue() : QJsonValue(target.URIRepresentation(store)));
        }
    }
    json.insert(QStringLiteral("entity"), object.entity()->name);
    json.insert(QStringLiteral("UUID"), object.objectID().URIRepresentation(store));
    return json;
}

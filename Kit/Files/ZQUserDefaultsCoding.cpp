#include "Kit/Files/ZQUserDefaultsCoding.h"

#include "Kit/Foundation/ZQLog.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

#include <cmath>

namespace {

const QString dataMark = QStringLiteral("$data");
const QString dateMark = QStringLiteral("$date");
const QString realMark = QStringLiteral("$real");
const QString mapMark = QStringLiteral("$map");

QJsonValue fromReal(double value)
{
    if (std::isfinite(value) && value != std::floor(value)) {
        return value;
    }
    return QJsonObject{{realMark, QString::number(value, 'g', 17)}};
}

QJsonValue fromMap(const QVariantMap &map)
{
    QJsonObject object;
    bool hasMark = false;
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        object.insert(it.key(), zqJSONFromVariant(it.value()));
        hasMark = hasMark || it.key().startsWith(u'$');
    }
    return hasMark ? QJsonObject{{mapMark, object}} : object;
}

QVariantMap toMap(const QJsonObject &object)
{
    QVariantMap map;
    for (auto it = object.begin(); it != object.end(); ++it) {
        map.insert(it.key(), zqVariantFromJSON(it.value()));
    }
    return map;
}

} // namespace

QJsonValue zqJSONFromVariant(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        return QJsonValue::Null;
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Double:
    case QMetaType::Float:
        return fromReal(value.toDouble());
    case QMetaType::QByteArray:
        return QJsonObject{{dataMark, QString::fromLatin1(value.toByteArray().toBase64())}};
    case QMetaType::QDateTime:
        return QJsonObject{{dateMark, value.toDateTime().toUTC().toString(Qt::ISODateWithMs)}};
    case QMetaType::QVariantMap:
        return fromMap(value.toMap());
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        QJsonArray array;
        for (const QVariant &one : value.toList()) {
            array.append(zqJSONFromVariant(one));
        }
        return array;
    }
    case QMetaType::QString:
        return value.toString();
    default:
        break;
    }
    bool isInteger = false;
    const qlonglong integer = value.toLongLong(&isInteger);
    if (isInteger) {
        return integer;
    }
    if (!value.canConvert<QString>()) {
        qCWarning(zqLogFiles, "A setting of type %s cannot be kept", value.typeName());
        return QJsonValue::Null;
    }
    return value.toString();
}

QVariant zqVariantFromJSON(const QJsonValue &value)
{
    if (value.isArray()) {
        QVariantList list;
        for (const QJsonValue &one : value.toArray()) {
            list.append(zqVariantFromJSON(one));
        }
        return list;
    }
    if (!value.isObject()) {
        return value.isNull() ? QVariant() : value.toVariant();
    }
    const QJsonObject object = value.toObject();
    if (object.size() == 1) {
        const QString mark = object.begin().key();
        const QJsonValue marked = object.begin().value();
        if (mark == dataMark) {
            return QByteArray::fromBase64(marked.toString().toLatin1());
        }
        if (mark == dateMark) {
            return QDateTime::fromString(marked.toString(), Qt::ISODateWithMs).toUTC();
        }
        if (mark == realMark) {
            return marked.toString().toDouble();
        }
        if (mark == mapMark) {
            return toMap(marked.toObject());
        }
    }
    return toMap(object);
}

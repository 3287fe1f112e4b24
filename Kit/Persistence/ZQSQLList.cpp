#include "Kit/Persistence/ZQSQLList.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace {

constexpr qsizetype maximumPlaceholders = 16; // longer lists go as JSON

// What is bound for `value` when it can equal a value of `type`; invalid when it cannot.
QVariant boundValue(const ZQScalar &value, ZQSQLType type, const ZQEntityDescription *root)
{
    if (type == ZQSQLType::Number) {
        if (const qint64 *number = std::get_if<qint64>(&value)) {
            return *number;
        }
        const double *fraction = std::get_if<double>(&value);
        return fraction ? QVariant(*fraction) : QVariant();
    }
    if (const QString *text = std::get_if<QString>(&value)) {
        return type == ZQSQLType::Text ? QVariant(*text) : QVariant();
    }
    if (const ZQDateValue *date = std::get_if<ZQDateValue>(&value)) {
        return type == ZQSQLType::Date ? QVariant(date->milliseconds) : QVariant();
    }
    if (const QByteArray *data = std::get_if<QByteArray>(&value)) {
        return type == ZQSQLType::Binary ? QVariant(*data) : QVariant();
    }
    if (const ZQObjectID *id = std::get_if<ZQObjectID>(&value)) {
        return type == ZQSQLType::Object && id->rootEntity() == root ? QVariant(id->key) : QVariant();
    }
    return {};
}

// SQLite's JSON loses the last digit of some fractions, ends a text at a NUL and has no data: those go as hexadecimal
// digits that `zq_decode` reads.
bool needsDecoding(const QVariant &value)
{
    return value.typeId() == QMetaType::Double || value.typeId() == QMetaType::QByteArray ||
           (value.typeId() == QMetaType::QString && value.toString().contains(QChar(u'\0')));
}

QString encoded(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QByteArray:
        return u'b' + QString::fromLatin1(value.toByteArray().toHex());
    case QMetaType::QString:
        return u't' + QString::fromLatin1(value.toString().toUtf8().toHex());
    case QMetaType::Double:
        return u'd' + QString::number(value.toDouble(), 'g', 17);
    default:
        return u'i' + QString::number(value.toLongLong());
    }
}

ZQSQLFragment listText(const QVariantList &values)
{
    if (values.size() <= maximumPlaceholders) {
        QStringList marks(values.size(), QStringLiteral("?"));
        return {u'(' + marks.join(u',') + u')', values};
    }
    const bool isEncoded = std::any_of(values.begin(), values.end(), needsDecoding);
    QJsonArray array;
    for (const QVariant &value : values) {
        array.append(isEncoded ? QJsonValue(encoded(value)) : QJsonValue::fromVariant(value));
    }
    const QString json = QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
    return {QStringLiteral("(SELECT %1 FROM json_each(?))")
                .arg(isEncoded ? QStringLiteral("zq_decode(value)") : QStringLiteral("value")),
            {json}};
}

} // namespace

ZQSQLFragment zqSQLForMembership(const ZQSQLFragment &value, ZQSQLType type, const ZQEntityDescription *root,
                                 bool isNeverNull, const ZQScalarSet &set)
{
    QVariantList values;
    bool hasNull = false;
    for (const ZQScalar &element : set) {
        hasNull = hasNull || zqIsNull(element);
        const QVariant bound = boundValue(element, type, root);
        if (bound.isValid()) {
            values.append(bound);
        }
    }
    const ZQSQLFragment list = listText(values);
    const bool canBeNull = hasNull && !isNeverNull;
    if (values.isEmpty()) {
        return canBeNull ? ZQSQLFragment{value.text + QStringLiteral(" IS NULL"), value.bindings}
                         : ZQSQLFragment{QStringLiteral("0"), {}};
    }
    const QString membership = value.text + QStringLiteral(" IN ") + list.text;
    if (isNeverNull) {
        return {membership, value.bindings + list.bindings};
    }
    return {QStringLiteral("(%1 %2)").arg(
                membership, canBeNull ? QStringLiteral("OR ") + value.text + QStringLiteral(" IS NULL")
                                      : QStringLiteral("AND ") + value.text + QStringLiteral(" IS NOT NULL")),
            value.bindings + list.bindings + value.bindings};
}

QString zqKeysAsJSON(const QList<qint64> &keys)
{
    QString text = QStringLiteral("[");
    for (const qint64 key : keys) {
        text += QString::number(key) + u',';
    }
    if (!keys.isEmpty()) {
        text.chop(1);
    }
    return text + u']';
}

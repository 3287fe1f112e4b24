#include "Classes/Command/Commands.h"

#include "Classes/Application/PreferencesController.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {
QJsonValue jsonValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QByteArray:
        return QString::fromLatin1(value.toByteArray().toBase64());
    case QMetaType::QDateTime:
        return value.toDateTime().toUTC().toString(Qt::ISODateWithMs);
    default:
        return QJsonValue::fromVariant(value);
    }
}

QString plainText(const QVariant &value)
{
    const QJsonValue json = jsonValue(value);
    if (json.isString()) {
        return json.toString();
    }
    // Qt writes documents only, so a single value is written as a list of one and its brackets cut off.
    const QByteArray list = QJsonDocument(QJsonArray{json}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(list.mid(1, list.size() - 2));
}

QVariant parsed(const QString &value)
{
    const QJsonDocument document = QJsonDocument::fromJson('[' + value.toUtf8() + ']');
    if (document.isArray() && document.array().size() == 1 && !document.array().first().isNull()) {
        return document.array().first().toVariant();
    }
    return value;
}

bool isKnown(const QString &key)
{
    return PreferencesController::isKnown(key) || ZQUserDefaults::standardUserDefaults().objectForKey(key).isValid();
}

int stored(const QVariant &value, const QString &key, CommandContext &context)
{
    ZQError error;
    const bool isStored = ZQUserDefaults::standardUserDefaults().storeObjectForKey(value, key, &error);
    return isStored ? 0 : context.fail(error.localizedDescription());
}
} // namespace

int zqRunDefaultsRead(const QString &key, CommandContext &context)
{
    PreferencesController::registerDefaultPreferences();
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    if (!key.isEmpty()) {
        const QVariant value = defaults.objectForKey(key);
        if (!value.isValid()) {
            return context.fail(
                zqFormat(zqLocalized("there is no preference “%@”; `zelto defaults read` lists them"), {key}));
        }
        if (context.json) {
            context.printJSON(QJsonObject{{key, jsonValue(value)}});
        } else {
            context.print(plainText(value));
        }
        return 0;
    }
    QJsonObject all;
    for (const QString &name : defaults.keys()) {
        const QVariant value = defaults.objectForKey(name);
        all.insert(name, jsonValue(value));
        if (!context.json) {
            context.print(name + QStringLiteral(" = ") + plainText(value));
        }
    }
    if (context.json) {
        context.printJSON(all);
    }
    return 0;
}

int zqRunDefaultsWrite(const QString &key, const QString &value, CommandContext &context)
{
    const QVariant before = PreferencesController::defaultPreferences().value(key);
    const QVariant wanted = parsed(value);
    const bool isNumber = before.typeId() == QMetaType::Int;
    if ((before.typeId() == QMetaType::Bool && wanted.typeId() != QMetaType::Bool) ||
        (isNumber && !wanted.canConvert<double>()) || (isNumber && wanted.typeId() == QMetaType::QString)) {
        return context.fail(zqFormat(zqLocalized("“%@” is no value for %@; it is now %@"),
                                     {value, zqShortened(key), zqShortened(plainText(before))}));
    }
    if (!isKnown(key)) {
        context.note(zqFormat(zqLocalized("“%@” is not among the preferences that `zelto defaults read` lists; it is "
                                          "kept, see whether it is written right"),
                              {zqShortened(key)}));
    }
    return stored(wanted, key, context);
}

int zqRunDefaultsDelete(const QString &key, CommandContext &context)
{
    if (!ZQUserDefaults::standardUserDefaults().isSet(key)) {
        return context.fail(zqFormat(zqLocalized("the preference “%@” is not set"), {key}));
    }
    return stored({}, key, context);
}

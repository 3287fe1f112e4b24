#include "Classes/Browsing/SizeClasses.h"

#include "Kit/Files/ZQUserDefaults.h"

QList<SizeClass> zqSizeClasses()
{
    const ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    const auto bound = [&defaults](const char *key, qint64 usual) {
        const QString name = QLatin1StringView(key);
        return QVariant(defaults.objectForKey(name).isValid() ? defaults.integerForKey(name) : usual);
    };
    const QVariant icon = bound("IconTagSize", 32);
    const QVariant small = bound("SmallTagSize", 128);
    const QVariant medium = bound("MediumTagSize", 512);
    const QVariant vector = QVariantList{QStringLiteral("ai"), QStringLiteral("sketch"), QStringLiteral("svg")};
    const QString between =
        QStringLiteral("%1pixelWidth <= %ld AND %1pixelHeight <= %ld AND (%1pixelWidth > %ld OR %1pixelHeight > %ld)");
    return {
        {"none", QStringLiteral("(%1pixelWidth <= 0 OR %1pixelHeight <= 0) && NOT (%1extension IN %@)"),
         QVariantList{vector}},
        {"icon",
         QStringLiteral("%1pixelWidth <= %ld AND %1pixelHeight <= %ld AND %1pixelWidth > 0 AND %1pixelHeight > 0"),
         {icon, icon}},
        {"small", between, {small, small, icon, icon}},
        {"medium", between, {medium, medium, small, small}},
        {"large", QStringLiteral("%1pixelWidth >= %ld OR %1pixelHeight >= %ld"), {medium, medium}},
        {"vector", QStringLiteral("%1extension IN %@"), QVariantList{vector}},
    };
}

#include "Classes/Browsing/Index/SizeClasses.h"

#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <algorithm>
#include <limits>

namespace {

const QString icon = QLatin1StringView(zqKey("icon"));
const QString small = QLatin1StringView(zqKey("small"));
const QString medium = QLatin1StringView(zqKey("medium"));
const QString large = QLatin1StringView(zqKey("large"));
const QString vectors = QLatin1StringView(zqKey("vector"));
const QString none = QLatin1StringView(zqKey("none"));

} // namespace

SizeClasses::Limits SizeClasses::Limits::current()
{
    const auto limit = [](const char *key, qint64 usual) {
        const qint64 set = ZQUserDefaults::standardUserDefaults().integerForKey(QLatin1StringView(key));
        return set > 0 ? std::min<qint64>(set, std::numeric_limits<qint32>::max()) : usual; // pixels have no more bits
    };
    const Limits usual;
    return {limit("IconTagSize", usual.icon), limit("SmallTagSize", usual.small), limit("MediumTagSize", usual.medium)};
}

const QStringList &SizeClasses::keys()
{
    static const QStringList all{none, icon, small, medium, large, vectors};
    return all;
}

const QStringList &SizeClasses::vectorExtensions()
{
    static const QStringList all{QStringLiteral("ai"), QStringLiteral("sketch"), QStringLiteral("svg")};
    return all;
}

QString SizeClasses::keyForName(const QString &name)
{
    const auto found = std::find_if(keys().begin(), keys().end(), [&name](const QString &key) {
        return QStringList{key, zqLocalized(key)}.contains(name, Qt::CaseInsensitive);
    });
    return found != keys().end() ? *found : QString();
}

QString SizeClasses::titleForKey(const QString &key)
{
    const QString name = zqLocalized(key);
    return name.left(1).toUpper() + name.mid(1);
}

QString SizeClasses::formatForKey(const QString &key, ZQListRows rows, const Limits &limits)
{
    const QString prefix = zqItemKeyPath(rows, QString());
    const auto between = [&prefix](qint64 above, qint64 upTo) {
        return QStringLiteral(
                   "%1pixelWidth <= %2 AND %1pixelHeight <= %2 AND (%1pixelWidth > %3 OR %1pixelHeight > %3)")
            .arg(prefix, QString::number(upTo), QString::number(above));
    };
    if (key == none) {
        return QStringLiteral("(%1pixelWidth <= 0 OR %1pixelHeight <= 0) && NOT (%1extension IN %@)").arg(prefix);
    }
    if (key == icon) {
        return QStringLiteral("%1pixelWidth <= %2 AND %1pixelHeight <= %2 AND %1pixelWidth > 0 AND %1pixelHeight > 0")
            .arg(prefix, QString::number(limits.icon));
    }
    if (key == small) {
        return between(limits.icon, limits.small);
    }
    if (key == medium) {
        return between(limits.small, limits.medium);
    }
    if (key == large) {
        return QStringLiteral("%1pixelWidth >= %2 OR %1pixelHeight >= %2").arg(prefix, QString::number(limits.medium));
    }
    return key == vectors ? QStringLiteral("%1extension IN %@").arg(prefix) : QString();
}

QString SizeClasses::queryForKey(const QString &key, ZQListRows rows, const Limits &limits)
{
    const QString list =
        QStringLiteral("{\"") + vectorExtensions().join(QStringLiteral("\", \"")) + QStringLiteral("\"}");
    return zqFormat(formatForKey(key, rows, limits), {list});
}

ZQPredicate SizeClasses::predicateForKey(const QString &key, ZQListRows rows, const Limits &limits)
{
    return ZQPredicate::predicateWithFormat(queryForKey(key, rows, limits));
}

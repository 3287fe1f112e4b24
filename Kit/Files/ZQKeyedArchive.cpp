#include "Kit/Files/ZQKeyedArchive.h"

#include "Kit/Files/ZQPropertyList.h"
#include "Kit/Foundation/ZQIndexSet.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QPointF>
#include <QRegularExpression>

#include <cmath>

using namespace ZQKeyedArchive;

namespace {

const QString domain = QStringLiteral("keyedarchive");
enum Code { CannotRead = 1, CannotWrite = 2 };

const QString archiverKey = QStringLiteral("$archiver");
const QString archiverName = QStringLiteral("NSKeyedArchiver");
const QString versionKey = QStringLiteral("$version");
constexpr int version = 100000;
const QString topKey = QStringLiteral("$top");
const QString rootKey = QStringLiteral("root");
const QString objectsKey = QStringLiteral("$objects");
const QString nullText = QStringLiteral("$null");
const QString classKey = QStringLiteral("$class");
const QString classNameKey = QStringLiteral("$classname");
const QString classesKey = QStringLiteral("$classes");
const QString baseClass = QStringLiteral("NSObject");
const QString membersKey = QStringLiteral("NS.objects");
const QString keysKey = QStringLiteral("NS.keys");
const QString textKey = QStringLiteral("NS.string");
const QString pointKey = QStringLiteral("NS.pointval");
const QString specialKey = QStringLiteral("NS.special");
constexpr int pointSpecial = 1;
const QString rangeCountKey = QStringLiteral("NSRangeCount");
const QString rangeDataKey = QStringLiteral("NSRangeData");
const QString locationKey = QStringLiteral("NSLocation");
const QString lengthKey = QStringLiteral("NSLength");
constexpr quint64 furthestIndex = quint64(1) << 53;

// A number in groups of seven bits, the lowest first; the eighth says that more follow.
void appendNumber(QByteArray &data, quint64 value)
{
    for (; value >= 0x80; value >>= 7) {
        data.append(static_cast<char>((value & 0x7f) | 0x80));
    }
    data.append(static_cast<char>(value));
}

std::optional<quint64> takeNumber(const QByteArray &data, qsizetype &position)
{
    quint64 value = 0;
    for (int shift = 0; position < data.size() && shift < 56; shift += 7) {
        const auto byte = static_cast<quint8>(data.at(position++));
        value |= quint64(byte & 0x7f) << shift;
        if (byte < 0x80) {
            return value;
        }
    }
    return std::nullopt;
}

class Writer
{
public:
    std::optional<QVariant> list(const QVariant &root)
    {
        const auto top = add(root, 0);
        if (!top) {
            return std::nullopt;
        }
        return QVariantMap{{archiverKey, archiverName},
                           {versionKey, version},
                           {topKey, QVariantMap{{rootKey, *top}}},
                           {objectsKey, m_objects}};
    }

private:
    using Place = std::optional<QVariant>; // the reference to what was added; nothing when it cannot be archived

    QVariant place(const QVariant &object)
    {
        m_objects.append(object);
        return QVariant::fromValue(ZQPropertyListUID{quint64(m_objects.size() - 1)});
    }

    QVariant classNamed(const QString &name)
    {
        if (!m_classes.contains(name)) {
            m_classes.insert(name,
                             place(QVariantMap{{classNameKey, name}, {classesKey, QStringList{name, baseClass}}}));
        }
        return m_classes.value(name);
    }

    Place add(const QVariant &value, int depth)
    {
        if (depth > deepest) {
            return std::nullopt;
        }
        switch (value.typeId()) {
        case QMetaType::UnknownType:
            return QVariant::fromValue(ZQPropertyListUID{0});
        case QMetaType::QString:
        case QMetaType::Bool:
        case QMetaType::Int:
        case QMetaType::LongLong:
        case QMetaType::Double:
        case QMetaType::QByteArray:
        case QMetaType::QDateTime:
            return place(value);
        case QMetaType::QStringList:
        case QMetaType::QVariantList:
            return addMembers(QStringLiteral("NSArray"), value.toList(), {}, depth);
        case QMetaType::QVariantMap: {
            const QVariantMap map = value.toMap();
            return addMembers(QStringLiteral("NSDictionary"), map.values(), map.keys(), depth);
        }
        case QMetaType::QPointF:
            return addPoint(value.toPointF());
        default:
            break;
        }
        if (value.metaType() == QMetaType::fromType<ZQIndexSet>()) {
            return addIndexes(value.value<ZQIndexSet>());
        }
        return value.metaType() == QMetaType::fromType<Object>() ? addObject(value.value<Object>(), depth)
                                                                 : std::nullopt;
    }

    // A place is taken before the members', so that an object comes before what it holds.
    Place fill(const QVariant &taken, const QString &className, QVariantMap fields)
    {
        fields.insert(classKey, classNamed(className));
        m_objects[qsizetype(taken.value<ZQPropertyListUID>().value)] = fields;
        return taken;
    }

    Place addMembers(const QString &className, const QVariantList &members, const QStringList &keys, int depth)
    {
        const QVariant taken = place({});
        QVariantMap fields;
        QVariantList places;
        for (const QString &key : keys) {
            places.append(place(key));
        }
        if (className == QStringLiteral("NSDictionary")) {
            fields.insert(keysKey, std::exchange(places, {}));
        }
        for (const QVariant &member : members) {
            const Place added = add(member, depth + 1);
            if (!added) {
                return added;
            }
            places.append(*added);
        }
        fields.insert(membersKey, places);
        return fill(taken, className, fields);
    }

    Place addObject(const Object &object, int depth)
    {
        const QVariant taken = place({});
        QVariantMap fields;
        for (auto it = object.fields.cbegin(); it != object.fields.cend(); ++it) {
            const Place added = add(it.value(), depth + 1);
            if (!added) {
                return added;
            }
            fields.insert(it.key(), *added);
        }
        return fill(taken, object.className, fields);
    }

    Place addPoint(const QPointF &point)
    {
        const QVariant taken = place({});
        const QVariant text = place(
            QStringLiteral("{%1, %2}").arg(QString::number(point.x(), 'g', 17), QString::number(point.y(), 'g', 17)));
        return fill(taken, QStringLiteral("NSValue"), {{pointKey, text}, {specialKey, pointSpecial}});
    }

    Place addIndexes(const ZQIndexSet &indexes)
    {
        const QVariant taken = place({});
        const auto ranges = indexes.ranges();
        QVariantMap fields{{rangeCountKey, qlonglong(ranges.size())}};
        if (ranges.size() == 1) {
            fields.insert(locationKey, qlonglong(indexes.first()));
            fields.insert(lengthKey, qlonglong(indexes.count()));
        } else if (!ranges.isEmpty()) {
            QByteArray data;
            for (const auto &[first, last] : ranges) {
                appendNumber(data, quint64(first));
                appendNumber(data, quint64(last - first + 1));
            }
            fields.insert(rangeDataKey, place(data));
        }
        return fill(taken, QStringLiteral("NSIndexSet"), fields);
    }

    QVariantList m_objects{nullText};
    QHash<QString, QVariant> m_classes;
};

class Reader
{
public:
    std::optional<QVariant> read(const QVariant &list)
    {
        const QVariantMap archive = list.toMap();
        const QVariant root = archive.value(topKey).toMap().value(rootKey);
        if (archive.value(archiverKey) != archiverName || archive.value(versionKey) != QVariant(qlonglong(version)) ||
            !isReference(root)) {
            return std::nullopt;
        }
        m_objects = archive.value(objectsKey).toList();
        return value(root, 0);
    }

private:
    using Value = std::optional<QVariant>; // nothing when it makes no sense

    static bool isReference(const QVariant &value)
    {
        return value.metaType() == QMetaType::fromType<ZQPropertyListUID>();
    }

    const QVariant *target(const QVariant &reference) const
    {
        const quint64 index = isReference(reference) ? reference.value<ZQPropertyListUID>().value : quint64(-1);
        return index < quint64(m_objects.size()) ? &m_objects.at(qsizetype(index)) : nullptr;
    }

    Value value(const QVariant &field, int depth)
    {
        if (depth > deepest || ++m_values > mostValues) {
            return std::nullopt;
        }
        const QVariant *found = isReference(field) ? target(field) : &field;
        if (!found || isReference(*found)) {
            return std::nullopt;
        }
        if (isReference(field) && *found == QVariant(nullText)) {
            return QVariant();
        }
        switch (found->typeId()) {
        case QMetaType::QString:
        case QMetaType::Bool:
        case QMetaType::LongLong:
        case QMetaType::Double:
        case QMetaType::QByteArray:
        case QMetaType::QDateTime:
            return *found;
        case QMetaType::QVariantMap:
            return object(found->toMap(), depth);
        default:
            return std::nullopt;
        }
    }

    Value object(const QVariantMap &map, int depth)
    {
        const QVariant *described = target(map.value(classKey));
        QString name = described ? described->toMap().value(classNameKey).toString() : QString();
        if (name.isEmpty()) {
            return std::nullopt;
        }
        name.replace(QStringLiteral("NSMutable"), QStringLiteral("NS"));
        if (name == QStringLiteral("NSArray")) {
            return list(map.value(membersKey), depth);
        }
        if (name == QStringLiteral("NSDictionary")) {
            return dictionary(map, depth);
        }
        if (name == QStringLiteral("NSString")) {
            return value(map.value(textKey), depth + 1);
        }
        if (name == QStringLiteral("NSValue")) {
            return point(map, depth);
        }
        if (name == QStringLiteral("NSIndexSet")) {
            return indexes(map, depth);
        }
        Object result{name, {}};
        for (auto it = map.cbegin(); it != map.cend(); ++it) {
            if (it.key() == classKey) {
                continue;
            }
            const Value field = value(it.value(), depth + 1);
            if (!field) {
                return std::nullopt;
            }
            result.fields.insert(it.key(), *field);
        }
        return QVariant::fromValue(result);
    }

    Value list(const QVariant &members, int depth)
    {
        if (members.typeId() != QMetaType::QVariantList) {
            return std::nullopt;
        }
        QVariantList result;
        for (const QVariant &member : members.toList()) {
            const Value one = value(member, depth + 1);
            if (!one) {
                return std::nullopt;
            }
            result.append(*one);
        }
        return result;
    }

    Value dictionary(const QVariantMap &map, int depth)
    {
        const Value keys = list(map.value(keysKey), depth);
        const Value values = list(map.value(membersKey), depth);
        if (!keys || !values || keys->toList().size() != values->toList().size()) {
            return std::nullopt;
        }
        QVariantMap result;
        for (qsizetype i = 0; i < keys->toList().size(); ++i) {
            const QVariant key = keys->toList().at(i);
            if (key.typeId() != QMetaType::QString) {
                return std::nullopt;
            }
            result.insert(key.toString(), values->toList().at(i));
        }
        return result;
    }

    Value point(const QVariantMap &map, int depth)
    {
        static const QRegularExpression form(QStringLiteral(R"(^\{([^\s,{}]{1,40}), ?([^\s,{}]{1,40})\}$)"));
        const Value text = value(map.value(pointKey), depth + 1);
        const auto match = form.match(text ? text->toString() : QString());
        bool isX = false;
        bool isY = false;
        const double x = match.captured(1).toDouble(&isX);
        const double y = match.captured(2).toDouble(&isY);
        return isX && isY && std::isfinite(x) && std::isfinite(y) ? Value(QPointF(x, y)) : std::nullopt;
    }

    Value indexes(const QVariantMap &map, int depth)
    {
        const qlonglong count = map.value(rangeCountKey).toLongLong();
        ZQIndexSet result;
        if (count == 1) {
            const qlonglong first = map.value(locationKey, -1).toLongLong();
            const qlonglong length = map.value(lengthKey, -1).toLongLong();
            return first >= 0 && length > 0 && add(result, quint64(first), quint64(length))
                       ? Value(QVariant::fromValue(result))
                       : std::nullopt;
        }
        const Value stored = count > 1 ? value(map.value(rangeDataKey), depth + 1) : Value(QVariant(QByteArray()));
        const QByteArray data = stored ? stored->toByteArray() : QByteArray();
        qsizetype position = 0;
        for (qlonglong i = 0; i < count; ++i) {
            const auto first = takeNumber(data, position);
            const auto length = takeNumber(data, position);
            if (!first || !length || !add(result, *first, *length)) {
                return std::nullopt;
            }
        }
        return count >= 0 ? Value(QVariant::fromValue(result)) : std::nullopt;
    }

    // Ascending only: in disorder many ranges would take for ever.
    static bool add(ZQIndexSet &into, quint64 first, quint64 length)
    {
        if (length == 0 || first > furthestIndex || length > furthestIndex || qint64(first) <= into.last()) {
            return false;
        }
        into.insert(qint64(first), qint64(first + length - 1));
        return true;
    }

    QVariantList m_objects;
    int m_values = 0;
};

} // namespace

std::optional<QByteArray> ZQKeyedArchive::toData(const QVariant &root, ZQError *error)
{
    const auto list = Writer().list(root);
    if (!list) {
        zqSetError(error, ZQError::with(domain, CannotWrite, zqLocalized("The value cannot be archived.")));
        return std::nullopt;
    }
    return ZQPropertyList::toBinary(*list, error);
}

std::optional<QVariant> ZQKeyedArchive::fromData(const QByteArray &data, ZQError *error)
{
    const auto list = ZQPropertyList::fromData(data, error);
    auto value = list ? Reader().read(*list) : std::nullopt;
    if (list && !value) {
        zqSetError(error, ZQError::with(domain, CannotRead, zqLocalized("The archive is damaged.")));
    }
    return value;
}

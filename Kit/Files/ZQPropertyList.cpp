#include "Kit/Files/ZQPropertyList.h"

#include "Kit/Files/ZQPropertyListReader.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <plist/plist.h>

#include <cstdlib>
#include <limits>
#include <memory>

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::sys_time;
using std::chrono::system_clock;

const QString domain = QStringLiteral("propertylist");
enum Code { CannotRead = 1, CannotWrite = 2 };

using Node = std::unique_ptr<void, void (*)(plist_t)>;

Node node(plist_t raw)
{
    return Node(raw, plist_free);
}

Node nodeOf(const QVariant &value, int depth);

// The library takes texts that end at a null character.
Node textNode(const QString &text)
{
    return text.contains(QChar::Null) ? node(nullptr) : node(plist_new_string(text.toUtf8().constData()));
}

Node dateNode(sys_time<microseconds> date)
{
    const auto sinceEpoch = date.time_since_epoch() - seconds(ZQPropertyListReader::epoch);
    const auto whole = std::chrono::floor<seconds>(sinceEpoch);
    if (whole.count() < std::numeric_limits<qint32>::min() || whole.count() > std::numeric_limits<qint32>::max()) {
        return node(nullptr);
    }
    return node(plist_new_date(static_cast<qint32>(whole.count()), static_cast<qint32>((sinceEpoch - whole).count())));
}

Node dateNode(const QDateTime &date)
{
    constexpr qint64 farthest = qint64(1) << 43; // beyond what a property list holds
    const qint64 time = date.toMSecsSinceEpoch();
    return date.isValid() && time > -farthest && time < farthest ? dateNode(sys_time<milliseconds>(milliseconds(time)))
                                                                 : node(nullptr);
}

Node listNode(const QVariantList &list, int depth)
{
    Node array = node(plist_new_array());
    for (const QVariant &value : list) {
        Node member = nodeOf(value, depth + 1);
        if (!member) {
            return member;
        }
        plist_array_append_item(array.get(), member.release());
    }
    return array;
}

Node mapNode(const QVariantMap &map, int depth)
{
    Node dictionary = node(plist_new_dict());
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        Node member = it.key().contains(QChar::Null) ? node(nullptr) : nodeOf(it.value(), depth + 1);
        if (!member) {
            return member;
        }
        plist_dict_set_item(dictionary.get(), it.key().toUtf8().constData(), member.release());
    }
    return dictionary;
}

Node nodeOf(const QVariant &value, int depth)
{
    if (depth > ZQPropertyListReader::deepest) {
        return node(nullptr);
    }
    switch (value.typeId()) {
    case QMetaType::QString:
        return textNode(value.toString());
    case QMetaType::Bool:
        return node(plist_new_bool(value.toBool()));
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Short:
        return node(plist_new_uint(static_cast<uint64_t>(value.toLongLong())));
    case QMetaType::Double:
    case QMetaType::Float:
        return node(plist_new_real(value.toDouble()));
    case QMetaType::QDateTime:
        return dateNode(value.toDateTime());
    case QMetaType::QByteArray: {
        const QByteArray data = value.toByteArray();
        return node(plist_new_data(data.constData(), static_cast<uint64_t>(data.size())));
    }
    case QMetaType::QStringList:
    case QMetaType::QVariantList:
        return listNode(value.toList(), depth);
    case QMetaType::QVariantMap:
        return mapNode(value.toMap(), depth);
    default:
        if (value.metaType() == QMetaType::fromType<ZQPropertyListUID>()) {
            return node(plist_new_uid(value.value<ZQPropertyListUID>().value));
        }
        if (value.metaType() != QMetaType::fromType<system_clock::time_point>()) {
            return node(nullptr);
        }
        return dateNode(std::chrono::floor<microseconds>(value.value<system_clock::time_point>()));
    }
}

template <class Write>
std::optional<QByteArray> written(const QVariant &value, ZQError *error, Write write)
{
    const Node root = nodeOf(value, 0);
    char *bytes = nullptr;
    uint32_t size = 0;
    if (root) {
        write(root.get(), &bytes, &size);
    }
    const std::unique_ptr<char, void (*)(void *)> owner(bytes, free);
    if (!bytes) {
        zqSetError(error,
                   ZQError::with(domain, CannotWrite, zqLocalized("The value cannot be written as a property list.")));
        return std::nullopt;
    }
    return QByteArray(bytes, static_cast<qsizetype>(size));
}

} // namespace

std::optional<QVariant> ZQPropertyList::fromData(const QByteArray &data, ZQError *error)
{
    QString problem = QStringLiteral("It is too large.");
    std::optional<QVariant> value;
    if (data.size() <= ZQPropertyListReader::largest) {
        value = data.startsWith("bplist0") ? ZQPropertyListReader::binary(data, &problem)
                                           : ZQPropertyListReader::xml(data, &problem);
    }
    if (!value) {
        zqSetError(error, ZQError::with(domain, CannotRead, zqLocalized("The property list cannot be read."), problem));
    }
    return value;
}

std::optional<QByteArray> ZQPropertyList::toBinary(const QVariant &value, ZQError *error)
{
    return written(value, error, [](plist_t root, char **bytes, uint32_t *size) { plist_to_bin(root, bytes, size); });
}

std::optional<QByteArray> ZQPropertyList::toXML(const QVariant &value, ZQError *error)
{
    return written(value, error, [](plist_t root, char **bytes, uint32_t *size) { plist_to_xml(root, bytes, size); });
}

#include "Classes/Browsing/Index/IndexSidebar.h"

#include <QDateTime>

namespace {

const QString father = QStringLiteral("father");

enum class Type { Text, Number, Date };
struct Attribute
{
    const char *name;
    Type type;
};
constexpr Attribute attributes[] = {
    {"title", Type::Text},         {"kind", Type::Number},       {"order", Type::Number},
    {"active", Type::Number},      {"enabled", Type::Number},    {"expanded", Type::Number},
    {"is_Label", Type::Number},    {"is_Special", Type::Number}, {"is_Tag", Type::Number},
    {"groupKey", Type::Number},    {"sortKeys", Type::Number},   {"sortDirection", Type::Number},
    {"creation_date", Type::Date},
};

std::optional<size_t> positionOf(const QString &key)
{
    for (size_t i = 0; i < std::size(attributes); ++i) {
        if (key == QLatin1StringView(attributes[i].name)) {
            return i;
        }
    }
    return std::nullopt;
}

} // namespace

const QStringList &IndexSidebar::properties()
{
    static const QStringList names = [] {
        QStringList result;
        for (const Attribute &attribute : attributes) {
            result.append(QLatin1StringView(attribute.name));
        }
        return result + QStringList{father};
    }();
    return names;
}

IndexSidebar::Entry IndexSidebar::entryOf(const ZQRowStream::Row &row)
{
    Entry entry;
    entry.entity = row.entity;
    int property = 0;
    for (const Attribute &attribute : attributes) {
        ZQScalar &value = entry.values.emplace_back();
        if (row.isNull(property)) {
            value = {};
        } else if (attribute.type == Type::Text) {
            const std::string_view text = row.text(property);
            value = text.empty() ? QStringLiteral("") : QString::fromUtf8(text.data(), qsizetype(text.size()));
        } else if (attribute.type == Type::Date) {
            value = ZQDateValue{row.number(property)};
        } else {
            value = row.number(property);
        }
        ++property;
    }
    entry.father = row.number(property);
    return entry;
}

IndexSidebar::IndexSidebar()
{
    numberFor(0);
}

quint32 IndexSidebar::numberFor(qint64 key)
{
    if (const auto number = m_keys.rowOf(key)) {
        return *number;
    }
    m_entries.emplace_back().values.resize(std::size(attributes));
    return m_keys.append(key);
}

void IndexSidebar::set(qint64 key, std::optional<Entry> entry)
{
    Entry gone;
    gone.values.resize(std::size(attributes));
    m_entries[numberFor(key)] = entry ? std::move(*entry) : gone;
}

ZQObjectID IndexSidebar::id(quint32 number) const
{
    return exists(number) ? ZQObjectID{m_entries[number].entity, m_keys[number]} : ZQObjectID();
}

std::optional<ZQScalar> IndexSidebar::value(quint32 number, const QStringList &keys, qsizetype from) const
{
    // A chain of fathers that were damaged into a ring ends, since the path does.
    for (; from < keys.size() && keys[from] == father; ++from) {
        number = m_keys.rowOf(m_entries[number].father).value_or(none);
    }
    std::optional<ZQScalar> result;
    if (from == keys.size()) {
        result.emplace();
        if (const ZQObjectID reached = id(number); !reached.isNull()) {
            *result = reached;
        }
    } else if (const auto position = from + 1 == keys.size() ? positionOf(keys[from]) : std::nullopt) {
        result.emplace(m_entries[number].values[*position]);
    }
    return result;
}

std::optional<std::vector<ZQScalar>> IndexSidebar::values(const QStringList &keys, qsizetype from) const
{
    std::vector<ZQScalar> result;
    result.reserve(size());
    for (quint32 number = 0; number < size(); ++number) {
        auto each = value(number, keys, from);
        if (!each) {
            return std::nullopt;
        }
        result.push_back(std::move(*each));
    }
    return result;
}

ZQScalar IndexSidebar::attribute(quint32 number, const char *name) const
{
    const auto position = positionOf(QLatin1StringView(name));
    return position ? m_entries[number].values[*position] : ZQScalar();
}

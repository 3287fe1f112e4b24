#pragma once

#include "Classes/Browsing/Index/IndexKeys.h"
#include "Kit/Persistence/ZQRowStream.h"
#include "Kit/Persistence/ZQScalar.h"

#include <QStringList>

#include <optional>
#include <vector>

// The sidebar items that library items lead to, by number: their attributes, and their fathers. Number 0 is none: what
// leads nowhere leads there. One that the store does not have is all null.
class IndexSidebar
{
public:
    static constexpr quint32 none = 0;
    static const QStringList &properties(); // to be read for each of them

    struct Entry
    {
        const ZQEntityDescription *entity = nullptr;
        qint64 father = 0;            // its key
        std::vector<ZQScalar> values; // of the attributes, by position
    };
    static Entry entryOf(const ZQRowStream::Row &row);

    IndexSidebar();
    size_t size() const { return m_keys.size(); }
    qint64 key(quint32 number) const { return m_keys[number]; }
    bool exists(quint32 number) const { return m_entries[number].entity != nullptr; }
    std::optional<quint32> numberOf(qint64 key) const { return m_keys.rowOf(key); }
    // Makes room for one that is not there.
    quint32 numberFor(qint64 key);
    void set(qint64 key, std::optional<Entry> entry); // nothing: it is gone
    // A null identifier for none.
    ZQObjectID id(quint32 number) const;
    // The value at the end of a key path, through fathers; nothing for a path that has no value here.
    std::optional<ZQScalar> value(quint32 number, const QStringList &keys, qsizetype from) const;
    std::optional<std::vector<ZQScalar>> values(const QStringList &keys, qsizetype from) const; // of all, by number
    ZQScalar attribute(quint32 number, const char *name) const;
    size_t bytes() const { return m_entries.capacity() * (sizeof(Entry) + 16 * sizeof(ZQScalar)) + m_keys.bytes(); }

private:
    IndexKeys m_keys;
    std::vector<Entry> m_entries;
};

#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <functional>
#include <string_view>

class ZQSQLiteStatement;
class ZQSQLiteTransaction;

// Reads many rows without making objects of them, all of one state of the store: nothing that is saved meanwhile is
// seen. Unsaved changes of the context do not count. While it lives, the context does nothing else, and the store's
// log cannot be emptied: it ends soon.
//
// On the context's thread. Each reading ends with ZQStoreError::Cancelled once the thread's ZQCancellation is
// cancelled.
class ZQRowStream
{
public:
    // A row as it is being read; good until the next one.
    class Row
    {
    public:
        qint64 key = 0;
        const ZQEntityDescription *entity = nullptr;

        // By the position of the property in what was asked for.
        bool isNull(int property) const;
        qint64 number(int property) const;         // booleans 0 and 1, dates in milliseconds since 1970 UTC; 0 for null
        std::string_view text(int property) const; // UTF-8 as the store holds it; empty for null
        std::string_view data(int property) const; // empty for null

    private:
        friend class ZQRowStream;
        const ZQSQLiteStatement *m_statement = nullptr;
    };

    explicit ZQRowStream(ZQManagedObjectContext &context);
    ~ZQRowStream();
    ZQRowStream(const ZQRowStream &) = delete;
    ZQRowStream &operator=(const ZQRowStream &) = delete;

    // Which rows, by key: those from `first` to before `end`, or those of a list.
    struct Keys
    {
        qint64 first = 0;
        qint64 end = std::numeric_limits<qint64>::max();
        std::optional<QList<qint64>> list = {};
    };

    // The rows of an entity and of those below it, by ascending key. Properties are attributes and to-one
    // relationships, which read as the key they lead to. False after an error.
    bool rows(const QString &entityName, const QStringList &properties, const Keys &keys,
              const std::function<void(const Row &)> &visit, ZQError *error);
    // What a many-to-many relationship ties: `keys` are those of the owners. In no order.
    bool links(const QString &entityName, const QString &relationship, const Keys &keys,
               const std::function<void(qint64 owner, qint64 other)> &visit, ZQError *error);
    // 0 when there are no rows; nothing after an error.
    std::optional<qint64> highestKey(const QString &entityName, ZQError *error);

private:
    bool step(const QString &sql, const Keys &keys, const std::function<bool(ZQSQLiteStatement &)> &visit,
              ZQError *error);

    ZQManagedObjectContext::Private &m_context;
    std::unique_ptr<ZQSQLiteTransaction> m_transaction;
};

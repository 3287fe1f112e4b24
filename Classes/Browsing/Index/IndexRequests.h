#pragma once

#include "Classes/Browsing/Index/IndexSorter.h"

// Answers fetch requests for library items, and for the memberships of one project, out of the columns. Nothing where
// it lacks a column, or when the thread's ZQCancellation was cancelled.
class IndexRequests
{
public:
    // Whole lists in the orders that were asked for last, so that a search in one of them sorts nothing.
    class Orders
    {
    public:
        using Order = std::shared_ptr<const std::vector<quint32>>;
        Order find(const QString &name, quint64 generation);
        void keep(const QString &name, quint64 generation, Order order);

    private:
        struct Kept
        {
            QString name;
            quint64 generation = 0;
            Order order;
        };
        ZQMutex m_lock;
        std::vector<Kept> m_kept ZQ_GUARDED_BY(m_lock); // the latest last
    };

    IndexRequests(const LibraryColumns &columns, Orders &orders, quint64 generation)
        : m_columns(columns), m_orders(orders), m_generation(generation)
    {
    }

    std::optional<ZQRowSet> matching(const ZQPredicate &predicate, ZQListRows prefix, const ZQRowSet &among) const;
    std::optional<IndexRows> sorted(IndexRows rows, const QList<ZQSortDescriptor> &descriptors) const;
    std::optional<std::vector<IndexRows>> rows(const QList<ZQFetchRequest> &requests, const ZQPredicate &search) const;

private:
    struct Found // by the last predicates; requests one after another have them in common
    {
        ZQPredicate predicate;
        std::optional<ZQRowSet> rows;
    };
    std::optional<IndexRows> itemRows(const ZQFetchRequest &request, const ZQRowSet &found) const;
    std::optional<IndexRows> membershipRows(const ZQFetchRequest &request, const ZQRowSet &among,
                                            const ZQPredicate &search, Found &last) const;
    Orders::Order order(const QList<ZQSortDescriptor> &descriptors) const; // null where it lacks a column
    std::optional<IndexRows> sortedItems(const ZQRowSet &rows, const QList<ZQSortDescriptor> &descriptors) const;

    const LibraryColumns &m_columns;
    Orders &m_orders;
    quint64 m_generation;
};

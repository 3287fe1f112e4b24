#pragma once

#include "Classes/Browsing/Index/IndexRows.h"
#include "Classes/Browsing/Index/LibraryColumns.h"

#include <memory>
#include <span>

// Puts rows of the index into the order that a fetch with these descriptors gives them.
class IndexSorter
{
public:
    // Nothing when a sort key has no column.
    static std::optional<IndexSorter> make(const LibraryColumns &columns, ZQListRows kind,
                                           const QList<ZQSortDescriptor> &descriptors);

    enum class Ties { ByKey, AsTheyAre }; // as a fetch has them, or in the order that the rows have already
    void sort(IndexRows &rows, Ties ties = Ties::ByKey) const;

    // One sort key over rows.
    class Key
    {
    public:
        virtual ~Key() = default;
        // Numbers in the order of the values, 0 for null. Rows with the same number may still differ when the key is
        // not `isWhole`.
        virtual void fill(const std::vector<quint32> &rows, std::span<quint64> numbers) const = 0;
        virtual bool isWhole() const = 0;
        virtual int compare(quint32 a, quint32 b) const = 0;
    };

private:
    struct Term
    {
        std::shared_ptr<const Key> key;
        bool isAscending = true;
        bool isOfMembership = false;
    };
    static std::shared_ptr<const Key> keyFor(const LibraryColumns &columns, const QString &name,
                                             ZQSortDescriptor::Comparison comparison);
    IndexSorter(const LibraryColumns &columns, ZQListRows kind) : m_columns(columns), m_kind(kind) {}
    void addTags(bool isAscending);
    std::vector<quint32> placesOf(const IndexRows &rows, Ties ties) const;
    const std::vector<quint32> &rowsOf(const Term &term, const IndexRows &rows) const
    {
        return term.isOfMembership ? rows.memberships : rows.items;
    }

    const LibraryColumns &m_columns;
    ZQListRows m_kind;
    std::vector<Term> m_terms;
};

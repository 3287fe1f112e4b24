#include "Classes/Browsing/Index/IndexRequests.h"

#include "Kit/Persistence/ZQPredicateNode.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQProjectItem.h"

#include <algorithm>

namespace {

const QString itemKey = QStringLiteral("item");

// The columns of items as memberships reach them.
class MembershipSource : public ZQColumnSource
{
public:
    explicit MembershipSource(const LibraryColumns &columns) : m_columns(columns) {}
    size_t rowCount() const override { return m_columns.rowCount(); }
    std::optional<ZQColumn> column(const QStringList &keys) const override
    {
        return !keys.isEmpty() && keys.first() == itemKey ? m_columns.column(keys.mid(1)) : std::nullopt;
    }
    bool hasResemblances(const QStringList &keys) const override
    {
        return !keys.isEmpty() && keys.first() == itemKey && m_columns.hasResemblances(keys.mid(1));
    }
    std::optional<ZQRowSet> resembling(const QStringList &keys, const QString &text,
                                       const ZQRowSet &among) const override
    {
        return m_columns.resembling(keys.mid(1), text, among);
    }

private:
    const LibraryColumns &m_columns;
};

bool isComparison(const ZQPredicateNode &node, const QStringList &keys)
{
    const ZQComparison &comparison = node.comparison;
    return node.kind == ZQPredicateNode::Kind::Comparison && comparison.modifier == ZQComparisonModifier::Direct &&
           comparison.op == ZQComparisonOperator::Equal && comparison.left.kind == ZQExpression::Kind::KeyPath &&
           !comparison.left.isCount && comparison.left.keys == keys &&
           comparison.right.kind == ZQExpression::Kind::Constant;
}

// "project == %@ AND item.active == YES AND …": the project, and what is asked of the items.
struct MembershipCondition
{
    ZQObjectID project;
    ZQPredicate ofItems;
    bool isOfActiveItems = false; // so that memberships of nobody have no part in it
};

MembershipCondition conditionOf(const ZQPredicate &predicate)
{
    MembershipCondition condition;
    QList<ZQPredicate> others;
    if (predicate.isNull() || predicate.root()->kind != ZQPredicateNode::Kind::And) {
        return condition;
    }
    for (const ZQPredicateNodePtr &node : predicate.root()->children) {
        const ZQScalar &constant = node->comparison.right.constant;
        if (condition.project.isNull() && isComparison(*node, {QStringLiteral("project")}) &&
            std::holds_alternative<ZQObjectID>(constant)) {
            condition.project = std::get<ZQObjectID>(constant);
            continue;
        }
        condition.isOfActiveItems =
            condition.isOfActiveItems ||
            (isComparison(*node, {itemKey, QStringLiteral("active")}) && constant == ZQScalar(qint64(1)));
        others.append(ZQPredicate(node));
    }
    condition.ofItems = ZQPredicate::andPredicate(others);
    return condition;
}

void limit(IndexRows &rows, const ZQFetchRequest &request)
{
    for (std::vector<quint32> *values : {&rows.items, &rows.memberships}) {
        const size_t offset = std::min(size_t(std::max(0, request.fetchOffset)), values->size());
        values->erase(values->begin(), values->begin() + qsizetype(offset));
        if (request.fetchLimit > 0 && values->size() > size_t(request.fetchLimit)) {
            values->resize(size_t(request.fetchLimit));
        }
    }
}

QString nameOf(const QList<ZQSortDescriptor> &descriptors)
{
    QString name;
    for (const ZQSortDescriptor &descriptor : descriptors) {
        name += descriptor.keyPath + QString::number(int(descriptor.ascending) + 2 * int(descriptor.comparison));
    }
    return name;
}

} // namespace

IndexRequests::Orders::Order IndexRequests::Orders::find(const QString &name, quint64 generation)
{
    const ZQLockGuard guard(m_lock);
    const auto found = std::find_if(m_kept.begin(), m_kept.end(), [&](const Kept &kept) {
        return kept.name == name && kept.generation == generation;
    });
    if (found == m_kept.end()) {
        return nullptr;
    }
    std::rotate(found, found + 1, m_kept.end());
    return m_kept.back().order;
}

void IndexRequests::Orders::keep(const QString &name, quint64 generation, Order order)
{
    constexpr size_t kept = 3;
    const ZQLockGuard guard(m_lock);
    std::erase_if(m_kept, [&](const Kept &each) { return each.name == name || each.generation < generation; });
    m_kept.push_back({name, generation, std::move(order)});
    if (m_kept.size() > kept) {
        m_kept.erase(m_kept.begin());
    }
}

std::optional<ZQRowSet> IndexRequests::matching(const ZQPredicate &predicate, ZQListRows prefix,
                                                const ZQRowSet &among) const
{
    if (prefix == ZQListRows::LibraryItems) {
        return zqRowsMatching(predicate, m_columns, among);
    }
    return zqRowsMatching(predicate, MembershipSource(m_columns), among);
}

std::optional<IndexRows> IndexRequests::sorted(IndexRows rows, const QList<ZQSortDescriptor> &descriptors) const
{
    const auto sorter = IndexSorter::make(m_columns, rows.kind, descriptors);
    if (!sorter) {
        return std::nullopt;
    }
    sorter->sort(rows);
    return rows;
}

// Of all items. What is to be parted by one more key was shown in the order of the others just before, mostly.
IndexRequests::Orders::Order IndexRequests::order(const QList<ZQSortDescriptor> &descriptors) const
{
    const QString name = nameOf(descriptors);
    if (auto kept = m_orders.find(name, m_generation)) {
        return kept;
    }
    const auto rest = descriptors.size() > 1 ? m_orders.find(nameOf(descriptors.sliced(1)), m_generation) : nullptr;
    const auto sorter =
        IndexSorter::make(m_columns, ZQListRows::LibraryItems, rest ? descriptors.first(1) : descriptors);
    if (!sorter) {
        return nullptr;
    }
    IndexRows all;
    if (rest) {
        all.items = *rest;
        sorter->sort(all, IndexSorter::Ties::AsTheyAre);
    } else {
        m_columns.items.present.forEach([&](size_t row) { all.items.push_back(quint32(row)); });
        sorter->sort(all);
    }
    auto order = std::make_shared<const std::vector<quint32>>(std::move(all.items));
    m_orders.keep(name, m_generation, order);
    return order;
}

std::optional<IndexRows> IndexRequests::sortedItems(const ZQRowSet &rows,
                                                    const QList<ZQSortDescriptor> &descriptors) const
{
    IndexRows result;
    const size_t count = rows.count();
    const bool isMany = count > m_columns.items.present.count() / 8;
    if (!isMany) {
        result.items.reserve(count);
        rows.forEach([&](size_t row) { result.items.push_back(quint32(row)); });
        return sorted(std::move(result), descriptors);
    }
    const auto order = this->order(descriptors);
    if (!order) {
        return std::nullopt;
    }
    // Written without a branch, which would be guessed wrong at every other row; the last write may be one too many.
    result.items.resize(count + 1);
    size_t taken = 0;
    for (const quint32 row : *order) {
        result.items[std::min(taken, count)] = row;
        taken += rows.contains(row) ? 1 : 0;
    }
    result.items.resize(count);
    return result;
}

std::optional<IndexRows> IndexRequests::itemRows(const ZQFetchRequest &request, const ZQRowSet &found) const
{
    const auto matching = this->matching(request.predicate, ZQListRows::LibraryItems, found);
    auto rows = matching ? sortedItems(*matching, request.sortDescriptors) : std::nullopt;
    if (rows) {
        limit(*rows, request);
    }
    return rows;
}

std::optional<IndexRows> IndexRequests::membershipRows(const ZQFetchRequest &request, const ZQRowSet &among,
                                                       const ZQPredicate &search, Found &last) const
{
    const MembershipCondition condition = conditionOf(request.predicate);
    if (condition.project.isNull() || !condition.isOfActiveItems) {
        return std::nullopt;
    }
    if (!last.rows || !(last.predicate == condition.ofItems)) {
        last = {condition.ofItems, matching(condition.ofItems, ZQListRows::Memberships, among)};
        if (last.rows && !search.isNull()) {
            last.rows = matching(search, ZQListRows::Memberships, *last.rows);
        }
        if (!last.rows) {
            return std::nullopt;
        }
    }
    IndexRows rows{ZQListRows::Memberships, {}, {}};
    const auto project = m_columns.sidebar.numberOf(condition.project.key);
    if (project && *project < m_columns.memberships.projectCount()) {
        for (const quint32 membership : m_columns.memberships.ofProject(*project)) {
            if (last.rows->contains(m_columns.memberships.item(membership))) {
                rows.memberships.push_back(membership);
                rows.items.push_back(m_columns.memberships.item(membership));
            }
        }
    }
    auto sortedRows = sorted(std::move(rows), request.sortDescriptors);
    if (sortedRows) {
        limit(*sortedRows, request);
    }
    return sortedRows;
}

std::optional<std::vector<IndexRows>> IndexRequests::rows(const QList<ZQFetchRequest> &requests,
                                                          const ZQPredicate &search) const
{
    std::vector<IndexRows> result;
    std::optional<ZQRowSet> found; // by the search, among all items
    Found last;
    for (const ZQFetchRequest &request : requests) {
        std::optional<IndexRows> rows;
        if (request.entityName == ZQProjectItem::entityName()) {
            rows = membershipRows(request, m_columns.items.present, search, last);
        } else if (request.entityName == ZQLibraryBaseItem::entityName() && request.includesSubentities) {
            if (!found) {
                found = search.isNull() ? m_columns.items.present
                                        : matching(search, ZQListRows::Memberships, m_columns.items.present);
            }
            rows = found ? itemRows(request, *found) : std::nullopt;
        }
        if (!rows) {
            return std::nullopt;
        }
        result.push_back(std::move(*rows));
    }
    return result;
}

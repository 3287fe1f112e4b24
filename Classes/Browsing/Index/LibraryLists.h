#pragma once

#include "Classes/Browsing/Index/IndexMemberships.h"
#include "Classes/Browsing/Index/IndexTags.h"
#include "Kit/Persistence/ZQColumns.h"

// What the to-many relationships of library items lead to, as lists for predicates. Each holds the columns it reads.

class TagList : public ZQListColumn
{
public:
    TagList(const IndexTags &tags, std::vector<ZQScalar> values) : m_tags(tags), m_values(std::move(values)) {}
    size_t elementCount() const override { return m_values.size(); }
    ZQScalar element(size_t element) const override { return m_values[element]; }
    void addRows(size_t element, ZQRowSet &rows) const override;
    void addSizes(std::vector<quint32> &sizes) const override;
    bool visit(size_t row, const std::function<bool(size_t)> &visit) const override;

private:
    const IndexTags &m_tags;
    std::vector<ZQScalar> m_values; // by number in the sidebar
};

// The projects of an item's memberships.
class ProjectList : public ZQListColumn
{
public:
    ProjectList(const IndexMemberships &memberships, std::vector<ZQScalar> values)
        : m_memberships(memberships), m_values(std::move(values))
    {
    }
    size_t elementCount() const override { return m_values.size(); }
    ZQScalar element(size_t element) const override { return m_values[element]; }
    void addRows(size_t element, ZQRowSet &rows) const override;
    void addSizes(std::vector<quint32> &sizes) const override { m_memberships.addSizes(sizes); }
    bool visit(size_t row, const std::function<bool(size_t)> &visit) const override;

private:
    const IndexMemberships &m_memberships;
    std::vector<ZQScalar> m_values; // by number in the sidebar
};

class MembershipList : public ZQListColumn
{
public:
    MembershipList(const IndexMemberships &memberships, const ZQEntityDescription *entity)
        : m_memberships(memberships), m_entity(entity)
    {
    }
    size_t elementCount() const override { return m_memberships.size(); }
    ZQScalar element(size_t element) const override { return ZQObjectID{m_entity, m_memberships.keys()[element]}; }
    void addRows(size_t element, ZQRowSet &rows) const override;
    void addSizes(std::vector<quint32> &sizes) const override { m_memberships.addSizes(sizes); }
    bool visit(size_t row, const std::function<bool(size_t)> &visit) const override;

private:
    const IndexMemberships &m_memberships;
    const ZQEntityDescription *m_entity;
};

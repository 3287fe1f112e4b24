#include "Classes/Browsing/Index/LibraryLists.h"

#include <algorithm>

void TagList::addRows(size_t element, ZQRowSet &rows) const
{
    if (element < m_tags.tagCount()) {
        for (const quint32 row : m_tags.rowsOf(element)) {
            rows.insert(row);
        }
    }
}

void TagList::addSizes(std::vector<quint32> &sizes) const
{
    for (size_t row = 0; row < sizes.size(); ++row) {
        sizes[row] += quint32(m_tags.tagsOf(row).size());
    }
}

bool TagList::visit(size_t row, const std::function<bool(size_t)> &visit) const
{
    const std::span<const quint32> tags = m_tags.tagsOf(row);
    return std::any_of(tags.begin(), tags.end(), visit);
}

void ProjectList::addRows(size_t element, ZQRowSet &rows) const
{
    if (element < m_memberships.projectCount()) {
        for (const quint32 membership : m_memberships.ofProject(element)) {
            rows.insert(m_memberships.item(membership));
        }
    }
}

bool ProjectList::visit(size_t row, const std::function<bool(size_t)> &visit) const
{
    return m_memberships.ofItem(row, [&](quint32 membership) { return visit(m_memberships.project(membership)); });
}

void MembershipList::addRows(size_t element, ZQRowSet &rows) const
{
    if (m_memberships.exists(quint32(element))) {
        rows.insert(m_memberships.item(quint32(element)));
    }
}

bool MembershipList::visit(size_t row, const std::function<bool(size_t)> &visit) const
{
    return m_memberships.ofItem(row, visit);
}

#include "Classes/Browsing/Index/IndexMemberships.h"

#include <algorithm>

void IndexMemberships::reserve(size_t memberships)
{
    m_keys.reserve(memberships);
    m_items.reserve(memberships);
    m_projects.reserve(memberships);
    m_orders.reserve(memberships);
    m_next.reserve(memberships);
}

void IndexMemberships::append(const Values &values)
{
    const quint32 membership = m_keys.append(values.key);
    m_exists.resize(membership + 1);
    m_exists.set(membership, values.item != none);
    m_items.push_back(values.item);
    m_projects.push_back(values.project);
    m_orders.append(values.order);
    m_next.push_back(none);
}

void IndexMemberships::linkOne(quint32 membership)
{
    m_next[membership] = m_first[m_items[membership]];
    m_first[m_items[membership]] = membership;
    m_ofProject[m_projects[membership]].push_back(membership);
}

void IndexMemberships::link(size_t items, size_t projects)
{
    m_first.assign(items, none);
    m_ofProject.assign(projects, {});
    std::vector<quint32> sizes(projects, 0);
    m_exists.forEach([&](size_t membership) { ++sizes[m_projects[membership]]; });
    for (size_t project = 0; project < projects; ++project) {
        m_ofProject[project].reserve(sizes[project]);
    }
    m_exists.forEach([&](size_t membership) { linkOne(quint32(membership)); });
}

void IndexMemberships::unlink(const std::vector<quint32> &memberships)
{
    ZQRowSet left(m_keys.size());
    std::vector<quint32> projects;
    for (const quint32 membership : memberships) {
        if (!exists(membership)) {
            continue;
        }
        quint32 *place = &m_first[m_items[membership]];
        while (*place != none && *place != membership) {
            place = &m_next[*place];
        }
        *place = *place == none ? none : m_next[membership];
        m_exists.remove(membership);
        left.insert(membership);
        projects.push_back(m_projects[membership]);
    }
    std::sort(projects.begin(), projects.end());
    projects.erase(std::unique(projects.begin(), projects.end()), projects.end());
    for (const quint32 project : projects) {
        std::erase_if(m_ofProject[project], [&left](quint32 membership) { return left.contains(membership); });
    }
}

void IndexMemberships::change(const std::vector<Values> &changed, const std::vector<quint32> &gone, size_t items,
                              size_t projects)
{
    m_first.resize(items, none);
    m_ofProject.resize(std::max(projects, m_ofProject.size()));
    std::vector<quint32> moved = gone;
    for (const Values &values : changed) {
        if (const auto membership = m_keys.rowOf(values.key)) {
            moved.push_back(*membership);
        }
    }
    unlink(moved);
    if (m_keys.size() + changed.size() > m_items.capacity()) {
        const size_t room = m_keys.size() + changed.size();
        reserve(room + room / 16);
    }
    for (const Values &values : changed) {
        const auto known = m_keys.rowOf(values.key);
        if (!known) {
            append(values);
        } else {
            m_exists.set(*known, values.item != none);
            m_items[*known] = values.item;
            m_projects[*known] = values.project;
            m_orders.set(*known, values.order);
        }
        if (values.item != none) {
            linkOne(known.value_or(quint32(m_keys.size() - 1)));
        }
    }
}

size_t IndexMemberships::bytes() const
{
    size_t bytes = m_keys.bytes() + m_exists.bytes() + m_orders.bytes() +
                   4 * (m_items.capacity() + m_projects.capacity() + m_first.capacity() + m_next.capacity());
    for (const std::vector<quint32> &memberships : m_ofProject) {
        bytes += sizeof memberships + 4 * memberships.capacity();
    }
    return bytes;
}

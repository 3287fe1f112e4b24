#pragma once

#include "Classes/Browsing/Index/IndexKeys.h"
#include "Classes/Browsing/Index/IndexNumbers.h"

// The memberships of items in projects: their order, and the ways from the item and from the project.
class IndexMemberships
{
public:
    static constexpr quint32 none = ~quint32(0);

    struct Values
    {
        qint64 key = 0;
        quint32 item = none; // the row; none for a membership of nobody, which is in no list
        quint32 project = 0; // the number in the sidebar
        std::optional<qint64> order;
    };

    void reserve(size_t memberships);
    void append(const Values &values);        // of a key that is not there yet; to be followed by `link`
    void link(size_t items, size_t projects); // makes the ways anew
    // Changes and adds; `gone` are numbers of memberships.
    void change(const std::vector<Values> &changed, const std::vector<quint32> &gone, size_t items, size_t projects);

    size_t size() const { return m_keys.size(); }
    const IndexKeys &keys() const { return m_keys; }
    bool exists(quint32 membership) const { return m_exists.contains(membership); }
    quint32 item(quint32 membership) const { return m_items[membership]; }
    quint32 project(quint32 membership) const { return m_projects[membership]; }
    const IndexNumbers<qint32> &orders() const { return m_orders; }
    const std::vector<quint32> &ofProject(size_t project) const { return m_ofProject[project]; } // in no order
    size_t projectCount() const { return m_ofProject.size(); }
    size_t itemCount() const { return m_first.size(); }
    // Until `visit` answers true, which is then the answer.
    template <class Visit>
    bool ofItem(size_t item, const Visit &visit) const
    {
        for (quint32 membership = m_first[item]; membership != none; membership = m_next[membership]) {
            if (visit(membership)) {
                return true;
            }
        }
        return false;
    }
    // Adds to each item's number how many it has.
    void addSizes(std::vector<quint32> &sizes) const
    {
        m_exists.forEach([&](size_t membership) { ++sizes[m_items[membership]]; });
    }
    size_t bytes() const;

private:
    void unlink(const std::vector<quint32> &memberships);
    void linkOne(quint32 membership);

    IndexKeys m_keys;
    ZQRowSet m_exists;
    ZQPagedVector<quint32> m_items;
    ZQPagedVector<quint32> m_projects;
    IndexNumbers<qint32> m_orders;
    ZQPagedVector<quint32> m_first; // by item; then from one membership of it to the next
    ZQPagedVector<quint32> m_next;
    std::vector<std::vector<quint32>> m_ofProject;
};

#include "Kit/Persistence/ZQObjectList.h"

void ZQObjectList::add(ZQManagedObject *object)
{
    if (!m_positions.contains(object)) {
        m_positions.insert(object, m_objects.size());
        m_objects.emplace_back(object);
    }
}

void ZQObjectList::remove(ZQManagedObject *object)
{
    const auto found = m_positions.constFind(object);
    if (found == m_positions.cend()) {
        return;
    }
    const Object kept = std::exchange(m_objects[*found], Object());
    m_positions.erase(found);
    if (m_positions.isEmpty()) {
        m_objects.clear();
    }
}

void ZQObjectList::clear()
{
    // Letting go of an object may reach back into the context, which must not find it here any more.
    const auto objects = std::exchange(m_objects, {});
    m_positions.clear();
}

QList<ZQObjectList::Object> ZQObjectList::objects() const
{
    QList<Object> all;
    all.reserve(m_positions.size());
    for (const Object &object : m_objects) {
        if (object) {
            all.append(object);
        }
    }
    return all;
}

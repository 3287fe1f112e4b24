#pragma once

#include "Kit/Persistence/ZQManagedObject.h"

#include <QHash>
#include <QList>

#include <vector>

// Objects kept alive, in the order they came. Adding, removing and looking up take constant time.
class ZQObjectList
{
public:
    using Object = ZQRef<ZQManagedObject>;
    bool contains(ZQManagedObject *object) const { return m_positions.contains(object); }
    bool isEmpty() const { return m_positions.isEmpty(); }
    qsizetype size() const { return m_positions.size(); }
    void add(ZQManagedObject *object);
    void remove(ZQManagedObject *object);
    void clear();
    QList<Object> objects() const;
    // In the same order, without a copy. The list must not change meanwhile.
    template <class Visit>
    void visit(const Visit &visitor) const
    {
        for (const Object &object : m_objects) {
            if (object) {
                visitor(object);
            }
        }
    }

private:
    std::vector<Object> m_objects; // removed ones leave an empty place
    QHash<ZQManagedObject *, size_t> m_positions;
};

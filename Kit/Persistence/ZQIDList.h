#pragma once

#include "Kit/Persistence/ZQObjectID.h"

#include <QList>
#include <QSet>

// Identifiers without repetition, in the order they came. Removing one that is there is linear.
struct ZQIDList
{
    QList<ZQObjectID> list;
    QSet<ZQObjectID> set;

    void add(const ZQObjectID &id)
    {
        if (!set.contains(id)) {
            set.insert(id);
            list.append(id);
        }
    }
    void remove(const ZQObjectID &id)
    {
        if (set.remove(id)) {
            list.removeOne(id);
        }
    }
    void clear()
    {
        list.clear();
        set.clear();
    }
};

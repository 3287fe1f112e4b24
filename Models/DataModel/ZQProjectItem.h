#pragma once

#include "Models/DataModel/_ZQProjectItem.h"

// The membership of a library item in a project, with its position there.
class ZQProjectItem : public _ZQProjectItem
{
public:
    // Which item and project, without looking at them; 0 for none.
    qint64 itemKey() const { return willAccess(), m_row.item; }
    qint64 projectKey() const { return willAccess(), m_row.project; }
};

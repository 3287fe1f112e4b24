#pragma once

#include "Kit/Persistence/ZQObjectID.h"

#include <QtGlobal>

class BrowserContent;
class ZQGridView;

// What a person looks at stays where it is on the screen while rows come and go around it: the first row in view, of
// those that are not selected where there are others, since what is selected may be what moves. At the very top nothing
// holds, so that what comes first is seen.
class ScrollAnchor
{
public:
    ScrollAnchor() = default; // holds nothing
    ScrollAnchor(const ZQGridView &grid, const BrowserContent &content);
    // Once the grid has the new rows.
    void restore(ZQGridView &grid, const BrowserContent &content) const;
    bool hasSeenSelection() const { return m_hasSeenSelection; } // some of it was in view

private:
    ZQObjectID m_row;
    qint64 m_index = -1; // where it was
    int m_top = 0;       // of the row, in the viewport
    bool m_hasSeenSelection = false;
};

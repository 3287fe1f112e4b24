#pragma once

#include "Classes/Editing/EditContext.h"
#include "Classes/Editing/LiveFolderItems.h"

#include <QSet>

#include <utility>

// Where a row of the sidebar hangs, to hang it there again.
struct SidebarPlace
{
    ZQObjectID row;
    ZQObjectID father;
    quint32 index = 0;

    static SidebarPlace of(const ZQRef<ZQSidebarBaseItem> &row);
};

// Rows that are deleted or restored together. Files lose and get tags after the save, many beside the window; a tag's
// own `deleteSelf` would write them at once. Many items of live folders go and come beside the window, too. Who keeps
// live folders in step is told of theirs. Main thread.
class SidebarActivation
{
public:
    explicit SidebarActivation(EditContext &edits);
    void remove(const ZQRef<ZQSidebarBaseItem> &row);
    void restore(const ZQRef<ZQSidebarBaseItem> &row);
    void save();

private:
    void add(const ZQRef<ZQSidebarBaseItem> &tag);
    void addLiveFolder(const ZQRef<ZQSidebarBaseItem> &row, bool comes);

    EditContext &m_edits;
    QList<ZQObjectID> m_tagged;
    QSet<ZQObjectID> m_known;
    QList<ZQObjectID> m_liveFolders;
    LiveFolderItems m_liveItems;
};

// Rows taken out of the sidebar with all below them, and put back where they hung. Each saves. Main thread.
class SidebarRemoval
{
public:
    SidebarRemoval(EditContext &edits, QList<ZQObjectID> rows) : m_edits(edits), m_rows(std::move(rows)) {}

    void remove();  // those that are there
    void putBack(); // what it removed; says so to who wants to see it

private:
    EditContext &m_edits;
    QList<ZQObjectID> m_rows;
    QList<SidebarPlace> m_places;
    QList<ZQObjectID> m_deleted; // those below too
};

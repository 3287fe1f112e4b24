#pragma once

#include "Classes/Interface/WindowContext.h"

// The commands on library items, each one undo step and saved. Main thread.
class LibraryCommands
{
public:
    explicit LibraryCommands(WindowContext &window) : m_window(window) {}

    void deleteItems(const QList<ZQObjectID> &items); // soft: undo, or the next launch's purge, decides
    void removeItems(const QList<ZQObjectID> &items, const ZQObjectID &fromSidebarItem);
    void addItems(const QList<ZQObjectID> &items, const ZQObjectID &toSidebarItem, quint32 atIndex);
    // Manual order: the members move before the one now at `toIndex`.
    void moveItems(const QList<ZQObjectID> &items, const ZQObjectID &inSidebarItem, quint32 toIndex);
    void duplicateItems(const QList<ZQObjectID> &items);
    void renameItem(const ZQObjectID &item, const QString &title);

private:
    WindowContext &m_window;
};

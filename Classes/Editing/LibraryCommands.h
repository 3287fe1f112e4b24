#pragma once

#include "Classes/Editing/EditContext.h"

#include <functional>
#include <memory>

// The commands on library items, each one undo step and saved. What changes many rows, those that only move up
// included, is done on the edit queue, with progress and cancel; undo takes back what was done by then. What
// is there already is looked at when a command's turn comes, and what could not be read is told. Main thread.
class LibraryCommands
{
public:
    explicit LibraryCommands(EditContext &edits) : m_edits(edits) {}

    void deleteItems(const QList<ZQObjectID> &items); // soft: undo, or the next launch's purge, decides
    // As parts of another undo step, or of none: `done` are those that are deleted and not restored, of those only that
    // were not deleted before.
    using Done = std::shared_ptr<QList<ZQObjectID>>;
    void deleteItems(const QList<ZQObjectID> &items, const Done &done);
    void restoreItems(const Done &done);
    void removeItems(const QList<ZQObjectID> &items, const ZQObjectID &fromSidebarItem);
    void addItems(const QList<ZQObjectID> &items, const ZQObjectID &toSidebarItem, quint32 atIndex);
    // Manual order: the members move before the one now at `toIndex`.
    void moveItems(const QList<ZQObjectID> &items, const ZQObjectID &inSidebarItem, quint32 toIndex);
    // The copies of members of that sidebar item become members, each beside its original. `didMake` is told of them
    // the first time, on the main thread, when the caller's context knows them.
    void duplicateItems(const QList<ZQObjectID> &items, const ZQObjectID &inSidebarItem = {},
                        const std::function<void(const QList<ZQObjectID> &copies)> &didMake = {});
    void renameItem(const ZQObjectID &item, const QString &title);

    // Beyond so many rows the edit queue does it.
    static constexpr qint64 mostAtOnce = 1000;

private:
    EditContext &m_edits;
};

#pragma once

#include "Classes/Editing/EditContext.h"
#include "Classes/Tags/WhereFroms.h"

#include <QStringList>

// What comes into live folders by a person's hand, on the disk and in the library, each one undo step. Files never
// replace others: they get numbered names. What is taken away again goes to the trash, or is hidden as deleted items
// are. What could not be done is told, with what to do; of a change of many files what was done stays, on the disk as
// in the store. Main thread.
class LiveFolderEdits
{
public:
    explicit LiveFolderEdits(EditContext &edits) : m_edits(edits) {}

    // The files of items of other live folders move there, with the items; of other items the folder gets a copy, which
    // is an item of its own with the same tags.
    void moveLibraryItems(const QList<ZQObjectID> &items, const ZQObjectID &intoFolder);
    // Copies files and folders there; what was there already stays where it is. The folder is synchronised afterwards,
    // which makes items of them. `origin`: of files that came from the web.
    void copyFiles(const QStringList &paths, const ZQObjectID &intoWatchedFolder, const WhereFroms &origin = {});

    // Files that are copied, however few, are copied on the edit queue; what only moves from so many on.
    static constexpr qint64 mostAtOnce = 200;

private:
    EditContext &m_edits;
};

#pragma once

#include "Classes/Tags/WhereFroms.h"
#include "Kit/Files/ZQVerifiedCopy.h"
#include "Kit/Persistence/ZQObjectID.h"

#include <QByteArray>
#include <QList>
#include <QStringList>

class EditRun;
class FileProblems;
class ZQOwnMoves;
class ZQSidebarWatchedFolder;

// Files and folders that one step copies into a live folder, and takes away again: an item that was made of one since
// is deleted as a person deletes it, and comes back with its tags; anything else goes to the trash, unless somebody
// changed it since. Touched by one thread at a time.
class FileCopies
{
public:
    // `origin`: noted in the copies of files, so that their items know it.
    FileCopies(QStringList paths, const ZQObjectID &folder, WhereFroms origin)
        : m_paths(std::move(paths)), m_folder(folder), m_origin(std::move(origin))
    {
    }

    bool copyFiles(EditRun &run);   // whether there is any
    void deleteFiles(EditRun &run); // what was not come to stays for the next time
    bool hasFiles() const { return !m_copies.isEmpty(); }

private:
    struct Copy
    {
        QString original;
        QByteArray reference; // to the copy, wherever it is moved
        ZQTreeState state;
        ZQObjectID item; // deleted with its file; null: not, or there is none
    };
    bool copy(EditRun &run, const QString &path, const ZQSidebarWatchedFolder &folder, FileProblems &problems);
    bool remove(EditRun &run, Copy &copy, ZQOwnMoves &moves, FileProblems &problems) const;
    void restoreItems(EditRun &run, FileProblems &problems);

    QStringList m_paths;
    ZQObjectID m_folder;
    WhereFroms m_origin;
    QList<Copy> m_copies;  // that are there
    QList<Copy> m_deleted; // of which there are items
};

#pragma once

#include "Kit/Files/ZQOwnMove.h"
#include "Kit/Files/ZQVerifiedCopy.h"

#include <QHash>
#include <QList>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

class FileProblems;

// People's files that one batch of a change puts into folders of theirs. Until the store was saved all of it can be
// taken back, and no file is gone from where it was unless it was renamed; for as long as it lives, nobody makes items
// of them. Of one thread at a time.
class ArrivedFiles
{
public:
    explicit ArrivedFiles(std::function<bool()> isCancelled = {});

    // To the folder, under that name or, where it is taken, a numbered one. Where the file is then; empty after an
    // error, with the file where it was.
    QString move(const QString &from, const QString &folder, const QString &name, ZQError *error);
    QString copy(const QString &from, const QString &folder, const QString &name, ZQError *error);
    // A file that this process copied to `copy` and then put into the trash, from there to the folder, with the copy to
    // be removed once the store knows. Empty where that cannot be, as for one that somebody changed: nothing was done.
    QString takeFromTrash(const QString &trashed, const QString &copy, const ZQTreeState &state, const QString &folder,
                          const QString &name);
    ZQOwnMoves &renamed() { return m_renamed; } // by others than these, for the same batch

    // Before the store names them. False, with an error, when the copies may not be on the disk.
    bool flush(ZQError *error) const;
    // The store does not know of them.
    void takeBack();
    // The store knows: what had to be copied to be moved goes to the trash at its old place, unless it changed since.
    void removeSources(FileProblems &problems);
    // Of what was copied to `path`: where its source is in the trash now, and how it looked; nothing: it is not there.
    struct Recycled
    {
        QString path;
        ZQTreeState state;
    };
    std::optional<Recycled> recycledSource(const QString &path) const;
    // Or it stays, for that reason.
    void keepSources(const ZQError &why, FileProblems &problems) const;
    void addCopies(const ZQError &error, FileProblems &problems) const; // also of what was not moved

private:
    struct Copied
    {
        QString from; // to be removed; empty: it stays
        QString to;
        ZQTreeState state;
    };
    struct TakenOut
    {
        QString trashed;
        QString to;
        QString copy;
        ZQTreeState state;
    };
    void removeCopy(const TakenOut &taken, FileProblems &problems) const;

    std::function<bool()> m_isCancelled;
    ZQOwnMoves m_renamed;
    QList<Copied> m_copied;
    QList<TakenOut> m_takenOut;
    QHash<QString, Recycled> m_recycled; // by what was copied from it
    std::vector<ZQOwnChange> m_changes;  // where the files are, until the store knows
};

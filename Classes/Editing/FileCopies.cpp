#include "Classes/Editing/FileCopies.h"

#include "Classes/Editing/ArrivedFiles.h"
#include "Classes/Editing/EditRun.h"
#include "Classes/Editing/FileProblems.h"
#include "Classes/Editing/ItemDeletion.h"
#include "Classes/Editing/LiveFolderPlace.h"
#include "Kit/Files/ZQOwnChanges.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Files/ZQTrash.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace {

// The item of a live folder that `path` is the file of.
ZQRef<ZQLibraryBaseItem> itemWithFile(ZQManagedObjectContext &context, const ZQObjectID &folder, const QString &path)
{
    const auto namesakes =
        zqFetch<ZQLibraryBaseItem>(context, QStringLiteral("watchingFolder == %@ AND title == %@ AND active == YES"),
                                   {QVariant::fromValue(folder), zqBaseName(path)});
    for (const auto &item : namesakes.value_or(QList<ZQRef<ZQLibraryBaseItem>>())) {
        if (item->findItemURL() == path) {
            return item;
        }
    }
    return {};
}

// What was written into attributes meanwhile, as tags are, is no change.
bool isChanged(const QString &path, const ZQTreeState &state)
{
    return ZQTreeState::of(path) != state;
}

} // namespace

bool FileCopies::copyFiles(EditRun &run)
{
    const auto folder = zqFolderForFiles(run, m_folder);
    if (!folder) {
        return hasFiles();
    }
    FileProblems problems;
    restoreItems(run, problems);
    run.inBatches(zqLocalized("Copying files…"), m_paths.size(), [&](qsizetype first, qsizetype size) {
        for (const QString &path : m_paths.mid(first, size)) {
            const bool isThere = std::any_of(m_copies.begin(), m_copies.end(),
                                             [&path](const Copy &each) { return each.original == path; });
            if (run.isCancelled() || (!isThere && !copy(run, path, *folder, problems) && problems.endChange())) {
                return false;
            }
        }
        return true;
    });
    problems.tell(run, zqKey("“%@” cannot be copied into the live folder."),
                  zqKey("%d files cannot be copied into the live folder."));
    return hasFiles();
}

bool FileCopies::copy(EditRun &run, const QString &path, const ZQSidebarWatchedFolder &folder, FileProblems &problems)
{
    const QString original = QDir::cleanPath(path);
    const QFileInfo info(original);
    const QString place = folder.folderURL();
    if (QFileInfo(info.path()).canonicalFilePath() == QFileInfo(place).canonicalFilePath()) {
        return true; // it is there
    }
    ZQError error;
    const QString source = info.isSymLink() ? info.canonicalFilePath() : original; // what it leads to, under its name
    QString to;
    {
        ArrivedFiles arrived([&run] { return run.isCancelled(); }); // nobody makes an item before the origin is noted
        to = arrived.copy(source.isEmpty() ? original : source, place, info.fileName(), &error);
        if (const ZQError unnoted = to.isEmpty() || info.isDir() ? ZQError() : m_origin.noteInFile(to);
            !unnoted.isNull()) {
            qCWarning(zqLogFiles).noquote()
                << "Where" << to << "came from is not kept:" << unnoted.localizedDescription();
        }
    }
    ZQOwnChanges::sharedOwnChanges().forget(to); // it is whole, and synchronising makes its item
    const auto state = to.isEmpty() ? std::nullopt : ZQTreeState::of(to, &error);
    if (!state) {
        problems.add(info.fileName(), error);
        return false;
    }
    m_copies.append({path, zqDataForPersistentURL(to), *state, {}});
    return true;
}

void FileCopies::restoreItems(EditRun &run, FileProblems &problems)
{
    ZQOwnMoves moves;
    QList<Copy> restored;
    for (Copy each : std::exchange(m_deleted, {})) {
        const auto item = zqCast<ZQLibraryBaseItem>(run.context().existingObjectWithID(each.item));
        if (item && (item->active() || zqRestoreItem(*item, moves, problems))) {
            run.didBring({each.item});
            each.item = {};
            restored.append(each);
        } // else it is copied again
    }
    if (run.save()) {
        m_copies += restored;
    } else {
        moves.takeBack();
    }
}

void FileCopies::deleteFiles(EditRun &run)
{
    FileProblems problems;
    QList<Copy> todo = std::exchange(m_copies, {});
    QList<Copy> kept;
    run.inBatches(zqLocalized("Deleting files…"), todo.size(), [&](qsizetype, qsizetype size) {
        ZQOwnMoves moves;
        QList<Copy> batch = todo.last(size);
        QList<Copy> deleted;
        QList<Copy> left;
        for (Copy &each : batch) {
            if (!remove(run, each, moves, problems)) {
                left.append(each);
            } else if (!each.item.isNull()) {
                deleted.append(each);
            }
        }
        if (!run.save()) {
            moves.takeBack();
            return false;
        }
        todo.resize(todo.size() - size);
        kept += left;
        m_deleted += deleted;
        return true;
    });
    m_copies = todo + kept;
    problems.tell(run, zqKey("“%@” stays where it was copied to."), zqKey("%d files stay where they were copied to."));
}

bool FileCopies::remove(EditRun &run, Copy &copy, ZQOwnMoves &moves, FileProblems &problems) const
{
    const QString path = zqFindPersistentURL(copy.reference);
    if (path.isEmpty()) {
        return true; // somebody did it before
    }
    const QString name = QFileInfo(path).fileName();
    if (isChanged(path, copy.state)) {
        problems.add(name, ZQError::with(QStringLiteral("zelto.editing"), 1,
                                         zqLocalized("It was changed since. Delete it if you do not need it.")));
        return false;
    }
    if (const auto item = itemWithFile(run.context(), m_folder, path)) {
        copy.item = item->objectID();
        if (!zqDeleteItem(*item, moves, problems)) {
            copy.item = {};
            return false;
        }
        return true;
    }
    ZQError error;
    if (!ZQTrash::recycle(path, nullptr, &error)) {
        problems.add(name, error);
        return false;
    }
    return true;
}

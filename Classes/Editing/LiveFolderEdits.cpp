#include "Classes/Editing/LiveFolderEdits.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Editing/ArrivedFiles.h"
#include "Classes/Editing/EditStep.h"
#include "Classes/Editing/FileCopies.h"
#include "Classes/Editing/FileProblems.h"
#include "Classes/Editing/ItemDeletion.h"
#include "Classes/Editing/LiveFolderPlace.h"
#include "Kit/Files/ZQFileAdvice.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <optional>
#include <utility>

namespace {

using IDs = QList<ZQObjectID>;
using Folder = ZQRef<ZQSidebarWatchedFolder>;

constexpr qsizetype filesPerBatch = 16; // copied before a save names them
constexpr qsizetype filesOfManyPerBatch = 64;
constexpr qint64 bytesPerRow = 8LL << 20; // copying so much takes about as long as a small file

bool isOfLiveFolder(const ZQLibraryBaseItem &item)
{
    return !item.managed() && item.hasWatchingFolder();
}

// What came into a folder by one step, and where it was.
struct Arrived
{
    ZQObjectID item;       // in the folder now
    ZQObjectID fromFolder; // null for a copy
    QString fromPath;      // of its file
    // Of what had to be copied: its file of before, while it is in the trash as it was.
    std::optional<ArrivedFiles::Recycled> recycled = {};
};

struct Transfer
{
    IDs items;                        // as they were dragged
    QList<Arrived> arrived;           // and not taken back
    QHash<qint64, ZQObjectID> copies; // that were made, by their original's key
};

// One way of a step, a batch at a time; each is safe on the disk before the store names it, and taken back there when
// the store could not be saved.
class TransferPass
{
public:
    TransferPass(EditRun &run, Transfer &transfer) : m_run(run), m_transfer(transfer) {}

    void bring(const Folder &folder)
    {
        const QString place = folder->folderURL();
        m_run.inBatches(zqLocalized("Copying items…"), m_transfer.items.size(), [&](qsizetype first, qsizetype size) {
            begin();
            const auto batch = ZQLibraryBaseItem::itemsWithIDs(m_transfer.items.mid(first, size), m_run.context());
            ZQLibraryBaseItem::lookForFiles(batch);
            for (const auto &item : batch) {
                if (item->active() && !stops()) {
                    isOfLiveFolder(*item) ? bringOver(item, folder, place) : bringCopy(item, folder, place);
                }
            }
            return save() && !stops();
        });
        tell(zqKey("“%@” cannot be put into the live folder."), zqKey("%d items cannot be put into the live folder."));
    }

    void takeBack()
    {
        QList<Arrived> todo = std::exchange(m_transfer.arrived, {});
        QList<Arrived> kept;
        m_run.inBatches(zqLocalized("Moving items back…"), todo.size(), [&](qsizetype, qsizetype size) {
            begin();
            QList<Arrived> left;
            const QList<Arrived> batch = todo.last(size);
            for (auto each = batch.crbegin(); each != batch.crend(); ++each) {
                if (stops() || !takeBack(*each)) {
                    left.prepend(*each);
                }
            }
            if (!save()) {
                return false;
            }
            todo.resize(todo.size() - size);
            kept = left + kept;
            return !stops();
        });
        m_transfer.arrived = todo + kept;
        tell(zqKey("“%@” cannot be moved back."), zqKey("%d items cannot be moved back."));
    }

private:
    struct Change
    {
        ZQRef<ZQLibraryBaseItem> item;
        std::optional<Arrived> arrived; // without the item, which has its identifier once it is saved
        std::optional<qint64> copyOf;
    };

    bool stops() const
    {
        return m_problems.endChange() || m_unsafe.endChange() || m_left.endChange() || m_run.isCancelled();
    }
    void tell(const char *one, const char *several) const
    {
        m_problems.tell(m_run, one, several);
        m_unsafe.tell(
            m_run, zqKey("“%@” was copied, but may not be safe on the disk. Its original stays where it was."),
            zqKey("%d files were copied, but may not be safe on the disk. Their originals stay where they were."));
        m_left.tell(m_run, zqKey("“%@” was copied, but its original stays where it was."),
                    zqKey("%d files were copied, but their originals stay where they were."));
    }
    void begin()
    {
        m_files = ArrivedFiles([this] { return m_run.isCancelled(); });
        m_changes.clear();
    }
    // A person's file goes from its old place only once the store says where it is.
    bool save()
    {
        ZQError error;
        const bool isOnDisk = m_files.flush(&error);
        if (!m_run.save()) {
            m_files.takeBack();
            return false;
        }
        if (!isOnDisk) {
            m_files.addCopies(error, m_unsafe);
        } else if (m_run.context().hasChanges()) { // which are kept to be saved with what comes
            m_files.keepSources(
                zqExplainedFileError(EAGAIN, zqLocalized("The library could not be saved yet. Delete the "
                                                         "original once it is, if you do not need it.")),
                m_left);
        } else {
            m_files.removeSources(m_left);
        }
        for (const Change &change : std::as_const(m_changes)) {
            const ZQObjectID id = change.item->objectID();
            if (change.arrived) {
                m_transfer.arrived.append({id, change.arrived->fromFolder, change.arrived->fromPath,
                                           m_files.recycledSource(change.item->itemURL())});
            }
            if (change.copyOf) {
                m_transfer.copies.insert(*change.copyOf, id);
            }
            m_run.didBring({id});
            change.item->writeOpenMetaToDisk(); // what was on its way to the file where it was
        }
        return true;
    }

    bool moveFile(const ZQRef<ZQLibraryBaseItem> &item, const QString &from, const Folder &folder, const QString &place,
                  const QString &name)
    {
        ZQError error = ZQError::posix(ENOENT, item->title());
        const QString to = from.isEmpty() ? QString() : m_files.move(from, place, name, &error);
        if (to.isEmpty()) {
            m_problems.add(item->title(), error);
            return false;
        }
        didMove(item, folder, to);
        return true;
    }
    static void didMove(const ZQRef<ZQLibraryBaseItem> &item, const Folder &folder, const QString &to)
    {
        item->setWatchingFolder(folder.get());
        item->updateFileURLsForURL(to);
    }
    void bringOver(const ZQRef<ZQLibraryBaseItem> &item, const Folder &folder, const QString &place)
    {
        const auto before = item->watchingFolder();
        const QString from = before == folder ? QString() : item->findItemURL();
        if (before != folder && moveFile(item, from, folder, place, QFileInfo(from).fileName())) {
            m_changes.append({item, Arrived{{}, before->objectID(), from}, {}});
        }
    }
    bool takeBack(const Arrived &arrived)
    {
        const auto item = zqCast<ZQLibraryBaseItem>(m_run.context().existingObjectWithID(arrived.item));
        if (!item || !item->active()) {
            return true; // somebody deleted it since
        }
        return arrived.fromFolder.isNull() ? zqDeleteItem(*item, m_files.renamed(), m_problems)
                                           : moveBack(item, arrived);
    }
    bool moveBack(const ZQRef<ZQLibraryBaseItem> &item, const Arrived &arrived)
    {
        ZQError error;
        const Folder folder = zqFolderForFiles(m_run.context(), arrived.fromFolder, &error);
        if (!folder) {
            m_problems.add(item->title(), error);
            return false;
        }
        const QString name = QFileInfo(arrived.fromPath).fileName();
        const QString from = item->findItemURL();
        const QString to = arrived.recycled && !from.isEmpty()
                               ? m_files.takeFromTrash(arrived.recycled->path, from, arrived.recycled->state,
                                                       folder->folderURL(), name)
                               : QString();
        if (!to.isEmpty()) {
            didMove(item, folder, to);
        }
        const bool isMoved = !to.isEmpty() || moveFile(item, from, folder, folder->folderURL(), name);
        if (isMoved) {
            m_changes.append({item, {}, {}});
        }
        return isMoved;
    }
    void bringCopy(const ZQRef<ZQLibraryBaseItem> &item, const Folder &folder, const QString &place)
    {
        const qint64 key = item->objectID().key;
        const auto known = m_transfer.copies.constFind(key);
        auto copy = known == m_transfer.copies.cend()
                        ? ZQRef<ZQLibraryBaseItem>()
                        : zqCast<ZQLibraryBaseItem>(m_run.context().existingObjectWithID(*known));
        if (copy) {
            if (copy->active() || !zqRestoreItem(*copy, m_files.renamed(), m_problems)) {
                return;
            }
        } else {
            ZQError error = ZQError::posix(ENOENT, item->title());
            const QString from = item->findItemURL();
            const QString to = from.isEmpty() ? from : m_files.copy(from, place, QFileInfo(from).fileName(), &error);
            copy = to.isEmpty() ? copy : item->duplicateForWatchedFolder(folder.get(), to);
            if (!copy) {
                m_problems.add(item->title(), error);
                return;
            }
        }
        m_changes.append({copy, Arrived(), key});
    }

    EditRun &m_run;
    Transfer &m_transfer;
    FileProblems m_problems;
    FileProblems m_unsafe; // copied, and not known to be on the disk
    FileProblems m_left;   // copied, and the person's file is where it was, too
    ArrivedFiles m_files;
    QList<Change> m_changes;
};

dev_t deviceOf(const QString &path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_dev : 0;
}

// How much there is to do, and how much of that may be done at once.
EditSize sizeOf(EditContext &edits, const IDs &items, const ZQObjectID &into)
{
    const auto folder = zqCast<ZQSidebarWatchedFolder>(edits.sidebarItem(into));
    const dev_t device = folder ? deviceOf(folder->folderURL()) : 0;
    QHash<qint64, bool> isCopiedFrom; // by live folder
    qint64 bytes = 0;
    bool isCopied = items.size() > LiveFolderEdits::mostAtOnce; // or may be
    for (qsizetype i = 0; i < items.size() && items.size() <= LiveFolderEdits::mostAtOnce; ++i) {
        const auto item = edits.libraryItem(items[i]);
        const auto from = item && isOfLiveFolder(*item) ? item->watchingFolder() : Folder();
        if (from && !isCopiedFrom.contains(from->objectID().key)) {
            isCopiedFrom.insert(from->objectID().key, deviceOf(from->folderURL()) != device);
        }
        if (item && (!from || isCopiedFrom.value(from->objectID().key))) {
            isCopied = true;
            bytes += QFileInfo(item->findItemURL()).size();
        }
    }
    const qint64 rows = std::max<qint64>(items.size(), bytes / bytesPerRow);
    const bool areMany = items.size() > LiveFolderEdits::mostAtOnce;
    return {rows, isCopied ? 0 : LiveFolderEdits::mostAtOnce, areMany ? filesOfManyPerBatch : filesPerBatch};
}

} // namespace

void LiveFolderEdits::moveLibraryItems(const QList<ZQObjectID> &items, const ZQObjectID &intoFolder)
{
    if (items.isEmpty()) {
        return;
    }
    const auto transfer = std::make_shared<Transfer>(Transfer{items, {}, {}});
    const EditPass redo{[transfer, intoFolder](EditRun &run) {
                            if (const Folder folder = zqFolderForFiles(run, intoFolder)) {
                                TransferPass(run, *transfer).bring(folder);
                            }
                            return !transfer->arrived.isEmpty();
                        },
                        zqLocalized("Copying items…")};
    const EditPass undo{[transfer](EditRun &run) {
                            TransferPass(run, *transfer).takeBack();
                            return true;
                        },
                        zqLocalized("Moving items back…")};
    zqPushEdit(m_edits, zqLocalized("copy items"), sizeOf(m_edits, items, intoFolder), redo, undo);
}

void LiveFolderEdits::copyFiles(const QStringList &paths, const ZQObjectID &intoWatchedFolder, const WhereFroms &origin)
{
    if (paths.isEmpty()) {
        return;
    }
    qint64 bytes = 0;
    for (const QString &path : paths) {
        const QFileInfo info(path);
        bytes += info.isDir() ? bytesPerRow * (filesPerBatch + 1) : info.size(); // a folder may hold anything
    }
    const auto copies = std::make_shared<FileCopies>(paths, intoWatchedFolder, origin);
    const auto synchronise = [manager = m_edits.liveFolderManager, intoWatchedFolder] {
        if (manager) {
            zqOnMainThread([manager, intoWatchedFolder] { manager->syncWatchedFolder(intoWatchedFolder, false); });
        }
    };
    const EditPass redo{[copies, synchronise](EditRun &run) {
                            const bool isAnythingThere = copies->copyFiles(run);
                            if (isAnythingThere) {
                                synchronise();
                            }
                            return isAnythingThere;
                        },
                        zqLocalized("Copying files…")};
    const EditPass undo{[copies, synchronise](EditRun &run) {
                            copies->deleteFiles(run);
                            synchronise();
                            return true;
                        },
                        zqLocalized("Deleting files…")};
    const qint64 rows = std::max<qint64>(paths.size(), bytes / bytesPerRow);
    zqPushEdit(m_edits, zqLocalized("copy files"), {rows, 0, filesPerBatch}, redo, undo);
}

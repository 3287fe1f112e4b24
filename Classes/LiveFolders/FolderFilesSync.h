#pragma once

#include "Classes/LiveFolders/FolderTreeSync.h"
#include "Classes/LiveFolders/LiveFileImport.h"
#include "Classes/LiveFolders/SyncRun.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <optional>
#include <unordered_map>
#include <vector>

// The files of the folders that changed: new ones become items, changed ones are read again, and those that moved keep
// their items, with tags, projects and rating, without being read. Items whose files are gone are only told; nothing is
// removed here, and no file is ever touched.
class FolderFilesSync
{
public:
    explicit FolderFilesSync(SyncRun &run) : m_run(run), m_import(run) {}

    // All that changed; then what they need is done.
    void run(FolderTreeSync &tree);

    // Items whose files are gone, of one folder.
    struct Gone
    {
        LiveFolderRecord *record = nullptr;
        qint64 folder = 0;
        QList<ZQRef<ZQLibraryBaseItem>> items;
        qsizetype known = 0; // active items the folder had, those included
    };
    const std::vector<Gone> &gone() const { return m_gone; }
    // Files that may have got tags.
    const QStringList &touched() const { return m_touched; }
    const WrittenTags &writtenTags() const { return m_import.writtenTags(); }
    // Files that made no item, now or when they were like this before.
    QStringList unreadFiles() const { return m_unreadFiles + m_import.unreadFiles(); }
    bool isComplete() const { return m_run.isWanted() && !m_import.wasRefused(); }
    // The run's turn was over before all files were read. How many were not, and in which folders.
    bool isCutShort() const { return m_filesLeft > 0; }
    qsizetype filesLeft() const { return m_filesLeft; }
    const QSet<qint64> &foldersLeft() const { return m_foldersLeft; }

private:
    using Item = ZQRef<ZQLibraryBaseItem>;
    struct NewFile
    {
        LiveFolderRecord *record;
        qint64 folder;
        QString path;
        FolderEntry entry;
        bool hasPassingInode = false;
    };
    struct Lost
    {
        static constexpr std::size_t noPlace = std::size_t(-1); // its folder is gone, too
        LiveFolderRecord *record;
        qint64 folder;
        Item item;
        std::size_t place; // in `m_gone`
    };

    void compare(const FolderTreeSync::Changed &changed);
    void compareFile(const FolderTreeSync::Changed &changed, const RecordedFolder &folder, const FolderEntry &entry,
                     const Item &item, QList<Item> &lost);
    bool isElsewhereNow(const Item &item, const NewFile &now, const FolderEntry *recorded);
    QHash<QByteArray, Item> itemsByName(const FolderTreeSync::Changed &changed, QList<Item> &lost);
    QByteArray nameIn(const RecordedFolder &folder, const Item &item) const;
    void updateDbItem(const Item &item, const QString &path, const FolderEntry &entry, const FolderEntry *was);
    void refreshTags(const Item &item, const QString &path, const FolderEntry &entry, bool isReplaced);
    void renewReference(const Item &item, const QString &path);
    void adopt(const Item &item, const NewFile &file);
    void noteItemsOfGoneFolders(const FolderTreeSync &tree);
    void settle();
    void import(const NewFile &file, const QString &SHA1);
    void leave(qint64 folder);
    bool hasContentOf(const Lost &lost, const FolderEntry &entry) const;
    Item movedHere(const NewFile &file);
    Item adoptableAt(const NewFile &file, QString &SHA1);
    void readAdoptables();
    static void waitUntilWritten(const QString &path, const FolderEntry &entry, const ZQOperation &operation);

    SyncRun &m_run;
    LiveFileImport m_import;
    const std::vector<FolderTreeSync::Changed> *m_changed = nullptr;
    struct Arrival
    {
        const FolderTreeSync::Changed *folder;
        const FolderEntry *entry;
    };
    std::optional<std::unordered_map<quint64, Arrival>> m_arrivals; // by inode
    std::vector<NewFile> m_new;
    std::vector<Gone> m_gone;
    std::unordered_multimap<quint64, Lost> m_goneByInode;
    QStringList m_touched;
    QStringList m_unreadFiles;
    qsizetype m_filesLeft = 0;
    QSet<qint64> m_foldersLeft;
    bool m_hasAdoptables = false;
    QHash<QString, QList<Item>> m_adoptableByPath;
    QMultiHash<quint64, Item> m_adoptableByInode;
};

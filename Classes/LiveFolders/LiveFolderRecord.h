#pragma once

#include "Classes/LiveFolders/FolderEntries.h"
#include "Kit/Files/ZQFolderIdentity.h"
#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <optional>

// A folder of a live folder's tree, as it was when store and disk were last in step.
struct RecordedFolder
{
    qint64 key = 0;    // of its row in the store
    qint64 father = 0; // 0: the root
    QByteArray path;
    quint64 device = 0;
    quint64 inode = 0;
    std::optional<ZQFolderIdentity> place; // of a root, and of what is mounted in the tree
    bool isKnown = false;                  // what it held is in `entries`; else it has to be looked at
    bool isMissing = false;                // its place is out of reach, and what it held is kept until it comes back
    FolderEntries entries;
};

// What a root and everything below it held when store and disk were last in step, kept beside the store so that what is
// as it was needs no look at the store. It is never the truth: without it, or with one that is behind the store,
// everything is compared with the store instead.
//
// One thread at a time. A file that is damaged, of another store or of another format is as none.
class LiveFolderRecord
{
public:
    explicit LiveFolderRecord(qint64 rootKey = 0) : m_rootKey(rootKey) {}

    static std::optional<LiveFolderRecord> readFrom(const QString &file, const QByteArray &store, qint64 rootKey);
    bool writeTo(const QString &file, const QByteArray &store, ZQError *error) const;

    qint64 rootKey() const { return m_rootKey; }
    // The root's sync date in the store when this was written, in milliseconds; another one: the store went on, or
    // back.
    qint64 stamp() const { return m_stamp; }
    void setStamp(qint64 stamp) { m_stamp = stamp; }

    bool isEmpty() const { return m_folders.isEmpty(); }
    const QHash<qint64, RecordedFolder> &folders() const { return m_folders; }
    RecordedFolder *folder(qint64 key); // null for none
    RecordedFolder *root() { return folder(m_rootKey); }
    RecordedFolder *folderAtPath(const QByteArray &path);
    RecordedFolder &put(RecordedFolder folder); // takes the place of the one with its key
    void remove(qint64 key);                    // with everything below it
    QList<qint64> children(qint64 key) const { return m_children.value(key); }
    QList<qint64> below(qint64 key) const; // itself not included; a folder before what it holds
    // The folder and all below it lie elsewhere now.
    void move(qint64 key, const QByteArray &path, qint64 father);

private:
    void forget(const RecordedFolder &folder);

    qint64 m_rootKey;
    qint64 m_stamp = 0;
    QHash<qint64, RecordedFolder> m_folders;
    QHash<QByteArray, qint64> m_keys;        // by path
    QHash<qint64, QList<qint64>> m_children; // by father
};

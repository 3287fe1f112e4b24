#pragma once

#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <map>
#include <optional>

// What a file is, apart from its name.
struct TagFileIdentity
{
    QByteArray text; // inode and birth time, or inode and device where there is no birth time; empty: no file
    quint64 inode = 0;
    bool isFolder = false;
    static TagFileIdentity ofFile(const QString &path);
};

// What a file holds, as far as it takes to know it again: its size and a digest of its two ends.
struct TagFileContents
{
    qint64 size = 0;
    QByteArray digest; // empty: no file that can be read, or one without contents, which is like any other
    static TagFileContents ofFile(const QString &path);
    bool isSameAs(const TagFileContents &other) const
    {
        return !digest.isEmpty() && size == other.size && digest == other.digest;
    }
};

// One file's tags as they were last seen.
struct TagBackup
{
    QStringList tags;
    QString comment; // null: none
    double rating = 0;
    QByteArray identity;
    quint64 inode = 0;
    bool isFolder = false;
    qint64 saved = 0; // milliseconds since 1970 UTC
    TagFileContents contents;
    std::optional<QByteArray> seen; // the library's record of the file, empty: none; nothing: of an older version
    bool isEmpty() const { return tags.isEmpty() && comment.isEmpty() && rating <= 0; }
};

// Backups of files' tags in a folder of small property lists: by path, and for each identity the path it was last seen
// at, both spread over a fixed number of lists by a digest of the key. Each list is written atomically and read again
// when another process wrote it. Paths of which copies are to be made are noted in a file of this process, so that the
// next one makes them when this one is killed. Any thread.
class TagBackupStore
{
public:
    explicit TagBackupStore(const QString &folder, qsizetype longestList = 4000);
    ~TagBackupStore();

    bool contains(const QString &path);
    std::optional<TagBackup> find(const QString &path);
    QString pathOfIdentity(const QByteArray &identity); // empty: unknown

    // Nothing in place of a backup removes it. A file that was kept under another path is kept only under its new one.
    // What belongs to no file any more goes after half a year, or when a list grows too long; what belongs to a file
    // never goes. False, with nothing of it lost here, when another process holds the lists or they cannot be written.
    bool store(const QHash<QString, std::optional<TagBackup>> &backups);

    void note(const QString &path);
    void setNotes(const QSet<QString> &paths); // in place of all noted so far
    QStringList takeOverNotes();               // of processes that are gone; noted here from now on

private:
    struct List
    {
        QHash<QString, TagBackup> files;
        QHash<QByteArray, QString> identities;
        QByteArray stamp;
        qsizetype pruneAt = 0; // how long it may grow before it is looked through again
        bool isRead = false;
        bool isBeingWritten = false; // what is here is newer than the file
    };
    static int numberOf(const QByteArray &key);
    QString pathOf(int number) const;
    List &list(int number) ZQ_REQUIRES(m_mutex);
    void read(int number, List &list) const;
    bool write(int number, List &list) const;
    void prune(List &list) const;
    bool hasFolder() const;
    using Backups = QHash<QString, std::optional<TagBackup>>;
    std::map<int, List> takeIn(const Backups &backups) ZQ_REQUIRES(m_storeMutex);
    void noteLocked(const QString &path) ZQ_REQUIRES(m_notesMutex);

    QString m_folder;
    qsizetype m_longestList;
    ZQMutex m_notesMutex;
    ZQFileDescriptor m_notes ZQ_GUARDED_BY(m_notesMutex);
    QString m_notesPath ZQ_GUARDED_BY(m_notesMutex);
    ZQMutex m_storeMutex; // one `store` at a time; before the other
    ZQMutex m_mutex;      // never held while a list is written
    std::map<int, List> m_lists ZQ_GUARDED_BY(m_mutex);
};

#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <map>
#include <mutex>
#include <optional>

// What a file is, apart from its name.
struct TagFileIdentity
{
    QByteArray text; // inode and birth time, or inode and device where there is no birth time; empty: no file
    quint64 inode = 0;
    bool isFolder = false;
    static TagFileIdentity ofFile(const QString &path);
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
    bool isEmpty() const { return tags.isEmpty() && comment.isEmpty() && rating <= 0; }
};

// Backups of files' tags in a folder of small property lists: by path, and for each identity the path it was last seen
// at, both spread over a fixed number of lists by a digest of the key. Each list is written atomically and read again
// when another process wrote it. Any thread.
class TagBackupStore
{
public:
    explicit TagBackupStore(const QString &folder) : m_folder(folder) {}

    bool contains(const QString &path);
    std::optional<TagBackup> find(const QString &path);
    QString pathOfIdentity(const QByteArray &identity); // empty: unknown

    // Nothing in place of a backup removes it. A file that was kept under another path is kept only under its new one.
    // What belongs to no file any more goes after half a year, and the oldest when a list grows too long.
    void store(const QHash<QString, std::optional<TagBackup>> &backups);

private:
    struct List
    {
        QHash<QString, TagBackup> files;
        QHash<QByteArray, QString> identities;
        QByteArray stamp;
        bool isRead = false;
    };
    static int numberOf(const QByteArray &key);
    QString pathOf(int number) const;
    List &list(int number);
    void read(int number, List &list) const;
    bool write(int number, List &list) const;
    static void prune(List &list);

    QString m_folder;
    std::mutex m_mutex;
    std::map<int, List> m_lists;
};

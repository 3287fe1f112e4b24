#pragma once

#include <QByteArray>
#include <QFile>
#include <QHash>
#include <QString>

#include <optional>

// The list of a backup's files, by which it is known later whether they still are what was backed up. One line of JSON
// for each, [KEY, DIGEST, PATH, IS NEW]: the key of its item, its SHA-1, its path in "Library", and whether it was
// copied for this backup. By ascending keys, so that two lists are read side by side, and neither as a whole.
struct BackupDigest
{
    qint64 key = 0;
    QByteArray SHA1;
    QString path;
    bool isNew = false;
};

namespace BackupDigests {

inline const QString fileName = QStringLiteral("backup-digests");

class Writer
{
public:
    bool open(const QString &bundle);
    void add(const BackupDigest &digest);
    bool close(); // false: not all of it could be written

private:
    QFile m_file;
    bool m_isWritten = true;
};

// Missing or damaged lines are no lines.
class Reader
{
public:
    explicit Reader(const QString &bundle);
    std::optional<BackupDigest> next();
    // The digests of one item, by path. Keys are asked for in ascending order.
    QHash<QString, QByteArray> ofKey(qint64 key);

private:
    QFile m_file;
    std::optional<BackupDigest> m_read; // and not asked for yet
};

} // namespace BackupDigests

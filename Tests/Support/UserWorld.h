#pragma once

#include <QByteArray>
#include <QHash>
#include <QTemporaryDir>

// Everything the application keeps for a person, and its temporary files, go into folders below a folder of the test's
// own while this lives. The folder is beside the test program: in the temporary area what is imported would be moved,
// and in the current folder a test that is killed would leave it to the sources.
class UserWorld
{
public:
    explicit UserWorld(const char *name);
    ~UserWorld();
    UserWorld(const UserWorld &) = delete;
    UserWorld &operator=(const UserWorld &) = delete;

    QString path() const { return m_folder.path(); }
    QString filePath(const QString &relative) const { return m_folder.filePath(relative); }

private:
    QTemporaryDir m_folder;
    QHash<QByteArray, QByteArray> m_variablesBefore; // null when there was none
};

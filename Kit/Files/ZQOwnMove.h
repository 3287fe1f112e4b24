#pragma once

#include "Kit/Files/ZQOwnChanges.h"
#include "Kit/Foundation/ZQError.h"

#include <QList>
#include <QString>

#include <utility>

// Changes of this process where its own watchers may look on: they do not answer them. Any thread.

// A change at a path, for as long as it lives.
class ZQOwnChange
{
public:
    explicit ZQOwnChange(const QString &path) : m_path(path) { ZQOwnChanges::sharedOwnChanges().note(m_path); }
    ~ZQOwnChange() { ZQOwnChanges::sharedOwnChanges().didChange(m_path); }
    ZQOwnChange(const ZQOwnChange &) = delete;
    ZQOwnChange &operator=(const ZQOwnChange &) = delete;

private:
    QString m_path;
};

// Renames within one file system, never over an existing file.
bool zqMoveNoted(const QString &source, const QString &destination, ZQError *error = nullptr);

// Renamings that belong to a change of the store: when that cannot be saved, they are taken back.
class ZQOwnMoves
{
public:
    void add(const QString &from, const QString &to)
    {
        if (from != to && !from.isEmpty() && !to.isEmpty()) {
            m_moves.append({from, to});
        }
    }
    void takeBack(); // the last first; what cannot be is logged

private:
    QList<std::pair<QString, QString>> m_moves;
};

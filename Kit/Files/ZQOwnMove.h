#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QList>
#include <QString>

#include <utility>

// Renames within one file system, never over an existing file, where this process' own watchers may look on: they do
// not answer it. Any thread.
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

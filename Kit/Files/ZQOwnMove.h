#pragma once

#include "Kit/Files/ZQOwnChanges.h"
#include "Kit/Foundation/ZQError.h"

#include <QList>
#include <QString>

#include <utility>

// Changes of this process where its own watchers may look on: they do not answer them. Any thread.

// A change at a path, for as long as it lives and for a moment after that. It may outlive what is done on the disk,
// until the store knows.
class ZQOwnChange
{
public:
    explicit ZQOwnChange(const QString &path) : m_path(path) { ZQOwnChanges::sharedOwnChanges().hold(m_path); }
    ~ZQOwnChange()
    {
        if (!m_path.isEmpty()) {
            didChange();
            ZQOwnChanges::sharedOwnChanges().release(m_path);
        }
    }
    ZQOwnChange(ZQOwnChange &&other) noexcept
        : m_path(std::exchange(other.m_path, {})), m_isMade(std::exchange(other.m_isMade, false))
    {
    }
    ZQOwnChange &operator=(ZQOwnChange &&other) noexcept
    {
        std::swap(m_path, other.m_path);
        std::swap(m_isMade, other.m_isMade);
        return *this;
    }

    void didChange() // on the disk: what happens there from then on is done by others
    {
        if (!std::exchange(m_isMade, true)) {
            ZQOwnChanges::sharedOwnChanges().didChange(m_path);
        }
    }

private:
    QString m_path; // empty: another one took it over
    bool m_isMade = false;
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

#pragma once

#include "Kit/Files/ZQFileReference.h"

#include <QHash>
#include <QList>

#include <atomic>
#include <deque>

// Looks for files by their identities in and below a folder, nearest folders first, opening only what may hold one.
// Stays on the folder's volume and within a fixed number of entries, so it may end without an answer; those of the
// folder it begins with do not count when it looks below, too. Any thread.
class ZQFileSearch
{
public:
    enum class Reach { Folder, Below };

    // `references` must outlive the search. Counts the entries it looks at in `looked`.
    ZQFileSearch(const QList<const ZQFileReference *> &references, std::atomic<qint64> &looked);

    // Where those it finds are.
    QHash<const ZQFileReference *, QByteArray> run(const QByteArray &start, Reach reach);

    static constexpr int mostEntries = 6000; // around one start

private:
    void lookIn(const QByteArray &folder, Reach reach, bool isCounted);
    void note(const QByteArray &path, quint64 inode);

    QMultiHash<quint64, const ZQFileReference *> m_wanted; // by inode
    QHash<quint64, int> m_folders;                         // inodes of the folders they were in
    QHash<const ZQFileReference *, QByteArray> m_found;
    std::deque<QByteArray> m_ahead;
    std::atomic<qint64> &m_looked;
    quint64 m_device = 0;
    int m_left = 0;
};

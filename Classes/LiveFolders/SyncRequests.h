#pragma once

#include "Kit/Persistence/ZQObjectID.h"

#include <QHash>
#include <QList>
#include <QSet>

#include <utility>

// What live folders are to be looked at, and which of them together in the next run: all that is asked for, but for the
// roots whose run was cut short. Those come one by one when nothing else is wanted, the one with the fewest files left
// first. A value; roots are known by their keys, 0 for none.
class SyncRequests
{
public:
    struct Wanted
    {
        qint64 root = 0;
        bool everythingBelow = false;
        bool isForced = false;
        bool isAskedFor = false;     // by a person
        bool removesMissing = false; // what its root misses may go, however much; said for this one time
    };

    void note(const ZQObjectID &folder, const Wanted &wanted);
    // Something moved from one root to the other: they are looked at in one run, which must not take what it finds at
    // one end only for removed.
    void join(qint64 root, qint64 other);
    // What is asked of the root waits until the others had their turn. `begun`: told of as started, and not as ended.
    void cutShort(qint64 root, qsizetype filesLeft) { m_cutShort.insert(root, filesLeft); }
    void setBegun(const ZQObjectID &folder) { m_begun.insert(folder); }

    bool isEmpty() const { return m_wanted.isEmpty(); }
    bool contains(const ZQObjectID &folder) const { return m_wanted.contains(folder); }
    const QHash<ZQObjectID, Wanted> &all() const { return m_wanted; }
    // Whether something is wanted for which a run over `roots` should make way.
    bool isAnyToGoFirst(const QSet<qint64> &roots) const;

    struct Next
    {
        QHash<ZQObjectID, Wanted> folders;
        QSet<qint64> roots;
        QSet<ZQObjectID> begun;
    };
    Next unfoldItemsToUpdateSet();

    // Answers those that were begun.
    template <class Condition>
    QList<ZQObjectID> removeIf(Condition isGone)
    {
        m_wanted.removeIf([&](const auto &wanted) { return isGone(wanted.key()); });
        return takeUnwantedBegun();
    }
    QList<ZQObjectID> clear()
    {
        return removeIf([](const ZQObjectID &) { return true; });
    }

private:
    QSet<qint64> joinedWith(qint64 root) const; // itself included
    bool mayGoFirst(const Wanted &wanted) const;
    QList<ZQObjectID> takeUnwantedBegun();

    QHash<ZQObjectID, Wanted> m_wanted;
    QMultiHash<qint64, qint64> m_joined; // both ways
    QHash<qint64, qsizetype> m_cutShort; // files left, by root
    QSet<ZQObjectID> m_begun;
};

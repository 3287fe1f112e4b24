#include "Classes/LiveFolders/SyncRequests.h"

#include <algorithm>

void SyncRequests::note(const ZQObjectID &folder, const Wanted &wanted)
{
    Wanted &all = m_wanted[folder];
    all.root = wanted.root;
    all.everythingBelow = all.everythingBelow || wanted.everythingBelow;
    all.isForced = all.isForced || wanted.isForced;
    all.isAskedFor = all.isAskedFor || wanted.isAskedFor;
    all.removesMissing = all.removesMissing || wanted.removesMissing;
}

void SyncRequests::join(qint64 root, qint64 other)
{
    if (root != other && !m_joined.contains(root, other)) {
        m_joined.insert(root, other);
        m_joined.insert(other, root);
    }
}

QSet<qint64> SyncRequests::joinedWith(qint64 root) const
{
    QList<qint64> found = {root};
    QSet<qint64> all = {root};
    while (!found.isEmpty()) {
        for (const qint64 other : m_joined.values(found.takeLast())) {
            if (!all.contains(other)) {
                all.insert(other);
                found.append(other);
            }
        }
    }
    return all;
}

bool SyncRequests::mayGoFirst(const Wanted &wanted) const
{
    const QSet<qint64> roots = joinedWith(wanted.root);
    return std::none_of(roots.begin(), roots.end(), [this](qint64 root) { return m_cutShort.contains(root); });
}

bool SyncRequests::isAnyToGoFirst(const QSet<qint64> &roots) const
{
    return std::any_of(m_wanted.begin(), m_wanted.end(), [&](const Wanted &wanted) {
        return wanted.root != 0 && mayGoFirst(wanted) && !joinedWith(wanted.root).intersects(roots);
    });
}

SyncRequests::Next SyncRequests::unfoldItemsToUpdateSet()
{
    Next next;
    for (auto wanted = m_wanted.constBegin(); wanted != m_wanted.constEnd(); ++wanted) {
        if (mayGoFirst(*wanted)) {
            next.folders.insert(wanted.key(), *wanted);
        }
    }
    if (next.folders.isEmpty() && !m_wanted.isEmpty()) {
        const auto isBefore = [this](const Wanted &a, const Wanted &b) {
            const auto left = [this](const Wanted &wanted) {
                qsizetype sum = 0;
                for (const qint64 root : joinedWith(wanted.root)) {
                    sum += m_cutShort.value(root);
                }
                return sum;
            };
            return std::pair(left(a), a.root) < std::pair(left(b), b.root);
        };
        const QSet<qint64> first = joinedWith(std::min_element(m_wanted.begin(), m_wanted.end(), isBefore)->root);
        for (auto wanted = m_wanted.constBegin(); wanted != m_wanted.constEnd(); ++wanted) {
            if (first.contains(wanted->root)) {
                next.folders.insert(wanted.key(), *wanted);
            }
        }
    }
    for (auto wanted = next.folders.constBegin(); wanted != next.folders.constEnd(); ++wanted) {
        m_wanted.remove(wanted.key());
        next.roots.insert(wanted->root);
        if (m_begun.remove(wanted.key())) {
            next.begun.insert(wanted.key());
        }
    }
    for (const qint64 root : std::as_const(next.roots)) {
        m_cutShort.remove(root);
        for (const qint64 other : m_joined.values(root)) {
            m_joined.remove(other, root);
        }
        m_joined.remove(root);
    }
    return next;
}

QList<ZQObjectID> SyncRequests::takeUnwantedBegun()
{
    QList<ZQObjectID> ended;
    m_begun.removeIf([&](const ZQObjectID &folder) {
        const bool isUnwanted = !m_wanted.contains(folder);
        if (isUnwanted) {
            ended.append(folder);
        }
        return isUnwanted;
    });
    const auto isWanted = [this](qint64 root) {
        return std::any_of(m_wanted.begin(), m_wanted.end(), [root](const Wanted &each) { return each.root == root; });
    };
    m_cutShort.removeIf([&](const auto &entry) { return !isWanted(entry.key()); });
    return ended;
}

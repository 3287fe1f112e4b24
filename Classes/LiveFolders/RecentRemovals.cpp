#include "Classes/LiveFolders/RecentRemovals.h"

#include <cstdlib>

namespace {
constexpr qint64 memory = 60; // seconds
} // namespace

// A clock that was put back makes nothing last for ever.
QList<RecentRemovals::Removal> &RecentRemovals::latest(qint64 folder, const QDateTime &now)
{
    QList<Removal> &all = m_removals[folder];
    all.removeIf([&now](const Removal &removal) { return std::abs(removal.when.secsTo(now)) > memory; });
    return all;
}

std::optional<QDateTime> RecentRemovals::since(qint64 folder, const QDateTime &now)
{
    const QList<Removal> &all = latest(folder, now);
    return all.isEmpty() ? std::nullopt : std::optional(all.first().when);
}

RecentRemovals::Sum RecentRemovals::with(qint64 folder, const Sum &more, const QDateTime &now)
{
    Sum sum = more;
    const QList<Removal> &all = latest(folder, now);
    for (const Removal &removal : all) {
        sum.gone += removal.sum.gone;
    }
    if (!all.isEmpty()) {
        sum.known = all.first().sum.known;
    }
    return sum;
}

void RecentRemovals::add(qint64 folder, const Sum &removed, const QDateTime &now)
{
    if (removed.gone > 0) {
        latest(folder, now).append({now, removed});
    }
}

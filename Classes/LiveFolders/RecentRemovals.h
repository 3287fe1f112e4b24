#pragma once

#include <QDateTime>
#include <QHash>
#include <QList>

#include <optional>

// How much left the folders of a root in the last minute, so that many small removals in a row are as one. Folders are
// known by their keys, 0 for the root with all below it. A value.
class RecentRemovals
{
public:
    struct Sum
    {
        qsizetype gone = 0;
        qsizetype known = 0; // before the first of them
    };
    // When the first of those that still count was; nothing for none. What came after that was not there before it.
    std::optional<QDateTime> since(qint64 folder, const QDateTime &now);
    // With those of the last minute: `gone` more leave a folder that has `known` now.
    Sum with(qint64 folder, const Sum &more, const QDateTime &now);
    void add(qint64 folder, const Sum &removed, const QDateTime &now);

private:
    struct Removal
    {
        QDateTime when;
        Sum sum;
    };
    QList<Removal> &latest(qint64 folder, const QDateTime &now);

    QHash<qint64, QList<Removal>> m_removals;
};

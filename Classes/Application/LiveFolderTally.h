#pragma once

#include "Classes/Application/ControllerInterfaces.h"

#include <QHash>

#include <algorithm>

// Sums up how far several live folders are, for a line that shows all of them. What was done stays done, also when a
// folder ends, waits for another one or begins anew, so that the sum never goes back. A value.
class LiveFolderTally
{
public:
    void note(const ZQObjectID &root, const LiveFolderStatus &status)
    {
        Count &count = m_counts[root];
        if (!status.isSyncing || status.filesDone < count.done) {
            m_earlier += count.done;
            count = {};
        }
        if (status.isSyncing) {
            count = {status.filesDone, std::max(status.filesDone, status.filesTotal)};
        }
    }
    QList<ZQObjectID> roots() const { return m_counts.keys(); } // that were noted
    qsizetype done() const { return sum(&Count::done); }
    qsizetype total() const { return sum(&Count::total); } // 0: not known

private:
    struct Count
    {
        qsizetype done = 0;
        qsizetype total = 0;
    };
    qsizetype sum(qsizetype Count::*number) const
    {
        qsizetype all = m_earlier;
        for (const Count &count : m_counts) {
            all += count.*number;
        }
        return all;
    }

    QHash<ZQObjectID, Count> m_counts;
    qsizetype m_earlier = 0; // files of what ended
};

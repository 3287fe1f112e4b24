#pragma once

#include "Classes/LiveFolders/LiveFolderRecords.h"
#include "Classes/LiveFolders/SyncRun.h"

#include <QList>
#include <QObject>
#include <QSet>

// Asks whether much that is gone from live folders at once may leave the library, one question at a time while runs go
// on, and keeps the answers for the run that follows. Main thread.
class RemovalQuestions : public QObject
{
    Q_OBJECT
public:
    explicit RemovalQuestions(QObject *parent = nullptr) : QObject(parent) {}

    // Asks at once, in a main loop, unless it does already. A root's question takes the place of its earlier one.
    void ask(const QList<SyncQuestion> &questions);
    // Before a run over these roots: what the person said since the last one. Whether something may go in this run.
    bool tell(LiveFolderRecords &records, const QSet<qint64> &roots);

Q_SIGNALS:
    void removalWasAllowed(const ZQObjectID &root);

private:
    QList<SyncQuestion> m_questions;
    QList<SyncQuestion> m_allowed;
    QSet<qint64> m_postponed; // roots
    bool m_isAsking = false;
};

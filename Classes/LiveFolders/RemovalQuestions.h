#pragma once

#include "Classes/LiveFolders/LiveFolderRecords.h"
#include "Classes/LiveFolders/SyncRun.h"

#include <QList>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

class QuestionWithdrawal;

// Asks whether much that is gone from live folders at once may leave the library, one question at a time while runs go
// on, and keeps the answers for the run that follows. Main thread.
class RemovalQuestions : public QObject
{
    Q_OBJECT
public:
    explicit RemovalQuestions(QObject *parent = nullptr);

    // After a run. They are asked once no run has ended for the quiet time, since programs that replace many files take
    // some away before they bring the others; in a main loop, unless one is being asked. A root's question takes the
    // place of its earlier one, also of the one that is being asked when that is about other files.
    void ask(const QList<SyncQuestion> &questions);
    // 0: at once.
    void setQuietTime(std::chrono::milliseconds time) { m_quietTime = time; }
    // The files may be back, or their live folder away: a question that is not to be asked any more is taken back.
    void lookAgain();
    // How many files of a root are gone at the moment of the question. 0: it is not asked any more.
    void setGone(std::function<qsizetype(const ZQObjectID &root)> gone) { m_gone = std::move(gone); }
    // Before a run over these roots: what the person said since the last one. Whether something may go in this run.
    bool tell(LiveFolderRecords &records, const QSet<qint64> &roots);

Q_SIGNALS:
    void removalWasAllowed(const ZQObjectID &root);

private:
    void askAll();
    int answerTo(const SyncQuestion &question); // a button, or -1: it was withdrawn

    std::chrono::milliseconds m_quietTime = std::chrono::seconds(10);
    std::function<qsizetype(const ZQObjectID &root)> m_gone;
    QTimer m_quiet;
    QList<SyncQuestion> m_questions;
    QList<SyncQuestion> m_allowed;
    QSet<qint64> m_postponed; // roots
    bool m_isAsking = false;
    SyncQuestion m_asked; // while there is a withdrawal
    std::shared_ptr<QuestionWithdrawal> m_withdrawal;
};

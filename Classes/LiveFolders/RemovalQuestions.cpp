#include "Classes/LiveFolders/RemovalQuestions.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QLocale>
#include <QPointer>

#include <utility>

RemovalQuestions::RemovalQuestions(QObject *parent) : QObject(parent)
{
    m_quiet.setSingleShot(true);
    connect(&m_quiet, &QTimer::timeout, this, &RemovalQuestions::askAll);
}

void RemovalQuestions::ask(const QList<SyncQuestion> &questions)
{
    for (const SyncQuestion &question : questions) {
        m_questions.removeIf([&question](const SyncQuestion &other) { return other.root == question.root; });
        m_questions.append(question);
    }
    if (m_questions.isEmpty()) {
        return;
    }
    if (m_quietTime.count() == 0) {
        askAll();
    } else {
        m_quiet.start(m_quietTime);
    }
}

// Meanwhile the disk is followed, and what is asked about stays.
void RemovalQuestions::askAll()
{
    if (m_isAsking) {
        return;
    }
    m_isAsking = true;
    const QPointer alive(this);
    while (alive && !m_questions.isEmpty() && !tamberin_AppDelegate::sharedDelegate()->isTerminating()) {
        SyncQuestion question = m_questions.takeFirst();
        question.count = m_gone ? m_gone(question.root) : question.count;
        if (question.count == 0) {
            continue;
        }
        const int answer = tamberin_AppDelegate::sharedDelegate()->userInteraction().ask(
            {zqFormat(zqLocalized("%@ files of the live folder “%@” are gone"),
                      {QLocale().toString(question.count), question.title}),
             zqLocalized("They were deleted, or moved to where Zelto does not look. If you remove them from the "
                         "library, they leave their projects too. If a drive is not connected, keep them: they are "
                         "there again when it is."),
             {zqLocalized("Keep"), zqLocalized("Remove from Library"), zqLocalized("Ask Again Later")},
             {},
             false});
        if (alive && answer == 1) {
            m_allowed.append(question);
            Q_EMIT removalWasAllowed(question.root);
        } else if (alive && answer != 0) {
            m_postponed.insert(question.root.key);
        }
    }
    if (alive) {
        m_questions.clear();
        m_isAsking = false;
    }
}

bool RemovalQuestions::tell(LiveFolderRecords &records, const QSet<qint64> &roots)
{
    for (const qint64 root : std::exchange(m_postponed, {})) {
        records.askAgain(root);
    }
    records.forgetAllowed();
    const qsizetype told = m_allowed.removeIf([&](const SyncQuestion &each) {
        const bool isOfRun = roots.contains(each.root.key);
        if (isOfRun) {
            records.allowRemoval(each.root.key, each.what);
        }
        return isOfRun;
    });
    return told > 0;
}

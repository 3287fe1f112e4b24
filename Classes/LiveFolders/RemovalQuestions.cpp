#include "Classes/LiveFolders/RemovalQuestions.h"

#include "Classes/Application/QuestionWithdrawal.h"
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
        if (m_withdrawal && m_asked.root == question.root && m_asked.what == question.what) {
            continue;
        }
        m_questions.append(question);
        if (m_withdrawal && m_asked.root == question.root) {
            m_withdrawal->withdraw();
        }
    }
    lookAgain();
    if (m_questions.isEmpty()) {
        return;
    }
    if (m_quietTime.count() == 0) {
        m_quiet.stop(); // one that began when it was longer holds nothing back
        askAll();
    } else {
        m_quiet.start(m_quietTime);
    }
}

void RemovalQuestions::lookAgain()
{
    if (m_withdrawal && m_gone && m_gone(m_asked.root) == 0) {
        m_withdrawal->withdraw();
    }
}

int RemovalQuestions::answerTo(const SyncQuestion &question)
{
    const QPointer alive(this);
    const auto withdrawal = std::make_shared<QuestionWithdrawal>();
    m_asked = question;
    m_withdrawal = withdrawal;
    const int answer = tamberin_AppDelegate::sharedDelegate()->userInteraction().ask(
        {.message = zqFormat(zqLocalized("%@ files of the live folder “%@” are gone"),
                             {QLocale().toString(question.count), question.title}),
         .informativeText =
             zqLocalized("They were deleted, or moved to where Zelto does not look. If you remove them from the "
                         "library, they leave their projects too. If a drive is not connected, keep them: they are "
                         "there again when it is."),
         .buttons = {zqLocalized("Keep"), zqLocalized("Remove from Library"), zqLocalized("Ask Again Later")},
         .suppressionKey = {},
         .withdrawal = withdrawal});
    if (alive) {
        m_withdrawal.reset();
    }
    return withdrawal->isWithdrawn() ? -1 : answer;
}

// Meanwhile the disk is followed, and what is asked about stays.
void RemovalQuestions::askAll()
{
    if (m_isAsking) {
        return;
    }
    m_isAsking = true;
    const QPointer alive(this);
    const auto goesOn = [this] {
        return !m_questions.isEmpty() && !m_quiet.isActive() &&
               !tamberin_AppDelegate::sharedDelegate()->isTerminating();
    };
    while (alive && goesOn()) {
        SyncQuestion question = m_questions.takeFirst();
        question.count = m_gone ? m_gone(question.root) : question.count;
        if (question.count == 0) {
            continue;
        }
        const int answer = answerTo(question);
        if (alive && answer == 1) {
            m_allowed.append(question);
            Q_EMIT removalWasAllowed(question.root);
        } else if (alive && answer > 1) {
            m_postponed.insert(question.root.key);
        }
    }
    if (alive) {
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

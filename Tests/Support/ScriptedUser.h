#pragma once

#include "Classes/Application/UserInteraction.h"

#include <atomic>
#include <mutex>
#include <utility>

// A person who answers as the test says and remembers what was shown. Without an answer from the test, the one that
// changes least.
class ScriptedUser : public UserInteraction
{
public:
    struct Notification
    {
        QString text;
        NotificationPlace position;
        std::chrono::milliseconds time;
    };

    std::function<int(const UserQuestion &)> answerQuestion;
    std::function<bool(QList<FileConflict> &)> answerUnreadableFiles;
    std::function<std::optional<DuplicateAnswers>(const QList<DuplicatePair> &)> answerDuplicates;
    std::function<void(const std::function<void()> &cancel)> onBeginProgress; // on the thread that works
    QStringList filesToOpen; // what is chosen in a dialog; empty: cancelled
    std::optional<QString> fileToSave;

    struct Progress
    {
        QString text;
        std::atomic<double> maximum;
        std::atomic<double> done = 0;
        std::atomic<bool> isOver = false;
        QString countText; // of the thread that works, until it is over
    };
    QList<std::shared_ptr<Progress>> progresses; // that were begun
    QList<FileChoice> fileChoices;               // that were asked for
    QList<ZQError> errors;
    std::function<void()> onError = [] {};
    QList<UserQuestion> questions;
    QList<Notification> notifications;
    QStringList systemNotifications; // titles
    QList<DuplicatePair> duplicates;
    bool archivesFollow = false; // as it was said with these
    QList<ImportOutcome> outcomes;
    std::atomic<int> dismissals = 0;

private:
    std::mutex m_mutex; // for `progresses`, which other threads begin

public:
    QStringList notificationTexts() const;

    void presentError(const ZQError &error) override
    {
        errors.append(error);
        onError();
    }
    int ask(const UserQuestion &question) override;
    void importDidEnd(const ImportOutcome &outcome) override
    {
        outcomes.append(outcome);
        UserInteraction::importDidEnd(outcome);
    }
    void showNotificationWithText(const QString &text, NotificationPlace position,
                                  std::chrono::milliseconds time) override;
    void showSystemNotification(const QString &title, const QString &text) override;
    QStringList chooseFilesToOpen(const FileChoice &choice) override;
    std::optional<QString> chooseFileToSave(const FileChoice &choice) override;
    bool resolveUnreadableFiles(QList<FileConflict> &conflicts) override;
    std::optional<DuplicateAnswers> resolveDuplicates(const QList<DuplicatePair> &pairs,
                                                      bool doArchivesFollow) override;
    void dismissQuestions() override { ++dismissals; }
    std::shared_ptr<UserProgress> beginProgress(const QString &text, double maximum,
                                                std::function<void()> cancel) override;
};

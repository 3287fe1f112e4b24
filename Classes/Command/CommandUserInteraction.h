#pragma once

#include "Classes/Application/UserInteraction.h"
#include "Classes/Command/CommandLine.h"

// A person at a terminal, or nobody: errors and progress go to standard error, questions take the answer that changes
// least.
class CommandUserInteraction : public UserInteraction
{
public:
    void setPolicies(DuplicatePolicy duplicates, UnreadablePolicy unreadable)
    {
        m_duplicates = duplicates;
        m_unreadable = unreadable;
    }

    void presentError(const ZQError &error) override;
    int ask(const UserQuestion &question) override;
    void showNotificationWithText(const QString &text, NotificationPlace position,
                                  std::chrono::milliseconds time) override;
    void showSystemNotification(const QString &title, const QString &text) override;
    QStringList chooseFilesToOpen(const FileChoice &choice) override;
    std::optional<QString> chooseFileToSave(const FileChoice &choice) override;
    bool resolveUnreadableFiles(QList<FileConflict> &conflicts) override;
    std::optional<DuplicateAnswers> resolveDuplicates(const QList<DuplicatePair> &pairs, bool archivesFollow) override;
    std::shared_ptr<UserProgress> beginProgress(const QString &text, double maximum,
                                                std::function<void()> cancel) override;

    // Cancels the work whose progress is shown, as Ctrl+C does. Main thread.
    void cancelCurrentWork();

private:
    DuplicatePolicy m_duplicates = DuplicatePolicy::Keep;
    UnreadablePolicy m_unreadable = UnreadablePolicy::Skip;
    struct Current // work; main thread
    {
        std::weak_ptr<std::function<void()>> cancel;
        bool isCancelled = false;
    };
    static void cancel(Current &current);
    const std::shared_ptr<Current> m_current = std::make_shared<Current>(); // outlives what is on its way there
};

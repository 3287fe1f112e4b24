#include "Tests/Support/ScriptedUser.h"

#include "Kit/Operations/ZQMainThread.h"

namespace {

class NotedProgress : public UserProgress
{
public:
    explicit NotedProgress(std::shared_ptr<ScriptedUser::Progress> note) : m_note(std::move(note)) {}
    ~NotedProgress() override { m_note->isOver = true; }
    void setMaximum(double maximum) override { m_note->maximum = maximum; }
    void advanceBy(double amount) override { m_note->done += amount; }
    void setText(const QString &) override {}
    void setCountText(const QString &format) override { m_note->countText = format; }

private:
    std::shared_ptr<ScriptedUser::Progress> m_note;
};

} // namespace

QStringList ScriptedUser::notificationTexts() const
{
    QStringList texts;
    for (const Notification &notification : notifications) {
        texts.append(notification.text);
    }
    return texts;
}

int ScriptedUser::ask(const UserQuestion &question)
{
    questions.append(question);
    return answerQuestion ? answerQuestion(question) : int(question.buttons.size()) - 1;
}

void ScriptedUser::showNotificationWithText(const QString &text, NotificationPlace position,
                                            std::chrono::milliseconds time)
{
    notifications.append({text, position, time});
}

void ScriptedUser::showSystemNotification(const QString &title, const QString &)
{
    systemNotifications.append(title);
}

QStringList ScriptedUser::chooseFilesToOpen(const FileChoice &choice)
{
    fileChoices.append(choice);
    return filesToOpen;
}

std::optional<QString> ScriptedUser::chooseFileToSave(const FileChoice &choice)
{
    fileChoices.append(choice);
    return fileToSave;
}

bool ScriptedUser::resolveUnreadableFiles(QList<FileConflict> &conflicts)
{
    bool goesOn = false;
    zqOnMainThreadAndWait([&] { goesOn = answerUnreadableFiles && answerUnreadableFiles(conflicts); });
    return goesOn;
}

std::optional<DuplicateAnswers> ScriptedUser::resolveDuplicates(const QList<DuplicatePair> &pairs,
                                                                bool doArchivesFollow)
{
    std::optional<DuplicateAnswers> answers;
    zqOnMainThreadAndWait([&] {
        duplicates = pairs;
        archivesFollow = doArchivesFollow;
        answers = answerDuplicates ? answerDuplicates(pairs) : std::nullopt;
    });
    return answers;
}

std::shared_ptr<UserProgress> ScriptedUser::beginProgress(const QString &text, double maximum,
                                                          std::function<void()> cancel)
{
    const auto note = std::make_shared<Progress>();
    note->text = text;
    note->maximum = maximum;
    {
        const std::lock_guard lock(m_mutex);
        progresses.append(note);
    }
    if (onBeginProgress) {
        onBeginProgress(cancel);
    }
    return std::make_shared<NotedProgress>(note);
}

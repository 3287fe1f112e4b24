#include "Tests/Support/ScriptedUser.h"

#include "Kit/Operations/ZQMainThread.h"

namespace {

class UnwatchedProgress : public UserProgress
{
public:
    void setMaximum(double) override {}
    void advanceBy(double) override {}
    void setText(const QString &) override {}
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

void ScriptedUser::showNotificationWithText(const QString &text, int position, double seconds)
{
    notifications.append({text, position, seconds});
}

void ScriptedUser::showSystemNotification(const QString &title, const QString &)
{
    systemNotifications.append(title);
}

QStringList ScriptedUser::chooseFilesToOpen(const FileChoice &)
{
    return filesToOpen;
}

std::optional<QString> ScriptedUser::chooseFileToSave(const FileChoice &)
{
    return fileToSave;
}

bool ScriptedUser::resolveUnreadableFiles(QList<FileConflict> &conflicts)
{
    bool goesOn = false;
    zqOnMainThreadAndWait([&] { goesOn = answerUnreadableFiles && answerUnreadableFiles(conflicts); });
    return goesOn;
}

std::optional<QList<DuplicateChoice>> ScriptedUser::resolveDuplicates(const QList<DuplicatePair> &pairs)
{
    std::optional<QList<DuplicateChoice>> choices;
    zqOnMainThreadAndWait([&] {
        duplicates = pairs;
        choices = answerDuplicates ? answerDuplicates(pairs) : std::nullopt;
    });
    return choices;
}

std::shared_ptr<UserProgress> ScriptedUser::beginProgress(const QString &, double, std::function<void()> cancel)
{
    if (onBeginProgress) {
        onBeginProgress(cancel);
    }
    return std::make_shared<UnwatchedProgress>();
}

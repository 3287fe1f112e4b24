#include "Classes/Command/CommandEdits.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Command/AbandonWatch.h"
#include "Classes/Command/CommandContext.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"

#include <utility>

// The application's, apart from errors, and with a cancel for a person who is elsewhere.
class CommandEdits::User : public UserInteraction
{
public:
    explicit User(CommandContext &command) : m_command(command), m_user(command.delegate->userInteraction()) {}

    void presentError(const ZQError &error) override
    {
        hasFailed = true;
        m_command.fail(error.localizedDescription());
    }
    int ask(const UserQuestion &question) override { return m_user.ask(question); }
    void showNotificationWithText(const QString &text, NotificationPlace position,
                                  std::chrono::milliseconds time) override
    {
        m_user.showNotificationWithText(text, position, time);
    }
    void showSystemNotification(const QString &title, const QString &text) override
    {
        m_user.showSystemNotification(title, text);
    }
    QStringList chooseFilesToOpen(const FileChoice &choice) override { return m_user.chooseFilesToOpen(choice); }
    std::optional<QString> chooseFileToSave(const FileChoice &choice) override
    {
        return m_user.chooseFileToSave(choice);
    }
    bool resolveUnreadableFiles(QList<FileConflict> &conflicts) override
    {
        return m_user.resolveUnreadableFiles(conflicts);
    }
    std::optional<DuplicateAnswers> resolveDuplicates(const QList<DuplicatePair> &pairs, bool archivesFollow) override
    {
        return m_user.resolveDuplicates(pairs, archivesFollow);
    }
    std::shared_ptr<UserProgress> beginProgress(const QString &text, double maximum,
                                                std::function<void()> cancel) override
    {
        cancelWork = cancel;
        return m_user.beginProgress(text, maximum, std::move(cancel));
    }

    std::function<void()> cancelWork; // that runs or waits; null for what is too short
    bool hasFailed = false;

private:
    CommandContext &m_command;
    UserInteraction &m_user;
};

CommandEdits::CommandEdits(CommandContext &command)
    : m_command(command), m_user(std::make_unique<User>(command)), m_isCancelled(std::make_shared<bool>(false)),
      m_context(command.delegate->persistentStoreCoordinator(), ZQMergePolicy::PropertyObjectTrump),
      m_edits{.context = m_context,
              .user = *m_user,
              .editQueue = command.delegate->editQueue(),
              .save = [this] { return save(); },
              .writesUnchangedFiles = true,
              .merge = [this](const ZQContextDidSave &saved) { takeIn(saved); },
              .wasCancelled = [isCancelled = m_isCancelled] { *isCancelled = true; },
              .liveFolderManager = command.delegate->liveFolderManager()}
{
}

CommandEdits::~CommandEdits()
{
    zqRunMainLoopUntil([this] { return *m_edits.queued == 0; });
}

void CommandEdits::takeIn(const ZQContextDidSave &saved)
{
    m_command.store().mergeChangesFromContextDidSaveNotification(saved);
}

bool CommandEdits::save()
{
    ZQError error;
    const auto merging = m_context.observeDidSave([this](const ZQContextDidSave &saved) { takeIn(saved); });
    if (!m_context.save(&error)) {
        m_context.rollback();
        m_user->presentError(error);
    }
    return error.isNull();
}

int CommandEdits::finish(qsizetype count, const ZQCountedKey &text)
{
    const AbandonWatch watch(m_command, [this] {
        if (m_user->cancelWork) {
            m_user->cancelWork();
        }
    });
    zqRunMainLoopUntil([this] { return *m_edits.queued == 0; }, std::chrono::milliseconds(5));
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    // A file that can't carry its tags is reported there, and what other programs changed comes into the store.
    zqRunMainLoopFor(std::chrono::milliseconds(0));
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    if (m_user->hasFailed) {
        return 2;
    }
    if (*m_isCancelled) {
        return m_command.fail(zqLocalized("it was cancelled; what was changed before that stays so"));
    }
    m_command.print(zqCounted(text, count));
    return 0;
}

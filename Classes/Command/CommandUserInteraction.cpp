#include "Classes/Command/CommandUserInteraction.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Operations/ZQMainThread.h"

#include <cstdio>
#include <unistd.h>

namespace {
void printError(const QString &text)
{
    constexpr qsizetype longest = 4000;
    std::fprintf(stderr, "zelto: %s\n", zqShortened(text, longest).toUtf8().constData());
}

// A bar of numbers that rewrites its line; silent unless a terminal watches.
class TerminalProgress : public UserProgress
{
public:
    TerminalProgress(const QString &text, double maximum, std::function<void()> cancel)
        : cancelBlock(std::make_shared<std::function<void()>>(std::move(cancel))), m_text(text), m_maximum(maximum),
          m_isShown(::isatty(STDERR_FILENO) != 0)
    {
    }
    ~TerminalProgress() override
    {
        if (m_isShown && m_drawn) {
            std::fprintf(stderr, "\r\033[K");
        }
    }
    void setMaximum(double maximum) override
    {
        const ZQLockGuard lock(m_mutex);
        m_maximum = maximum;
    }
    void advanceBy(double amount) override
    {
        const ZQLockGuard lock(m_mutex);
        m_done += amount;
        draw();
    }
    void setText(const QString &text) override
    {
        const ZQLockGuard lock(m_mutex);
        m_text = text;
    }

    std::shared_ptr<std::function<void()>> cancelBlock;

private:
    void draw() ZQ_REQUIRES(m_mutex)
    {
        if (m_isShown) {
            std::fprintf(stderr, "\r\033[K%s %.0f / %.0f", m_text.toUtf8().constData(), m_done, m_maximum);
            m_drawn = true;
        }
    }
    ZQMutex m_mutex;
    QString m_text ZQ_GUARDED_BY(m_mutex);
    double m_maximum ZQ_GUARDED_BY(m_mutex);
    double m_done ZQ_GUARDED_BY(m_mutex) = 0;
    const bool m_isShown;
    bool m_drawn ZQ_GUARDED_BY(m_mutex) = false;
};
} // namespace

void CommandUserInteraction::presentError(const ZQError &error)
{
    printError(error.localizedDescription());
}

int CommandUserInteraction::ask(const UserQuestion &question)
{
    return static_cast<int>(question.buttons.size()) - 1;
}

void CommandUserInteraction::showNotificationWithText(const QString &, NotificationPlace, std::chrono::milliseconds)
{
    // The command's own report says it; a line of its own would say it twice.
}

void CommandUserInteraction::showSystemNotification(const QString &, const QString &) {}

QStringList CommandUserInteraction::chooseFilesToOpen(const FileChoice &)
{
    return {};
}

std::optional<QString> CommandUserInteraction::chooseFileToSave(const FileChoice &)
{
    return std::nullopt;
}

bool CommandUserInteraction::resolveUnreadableFiles(QList<FileConflict> &conflicts)
{
    for (FileConflict &conflict : conflicts) {
        conflict.isIncluded = conflict.isValid;
    }
    return m_unreadable == UnreadablePolicy::Skip;
}

// For what archives bring later nothing is said: kept with their requests, it would be taken for the person's answer.
// They ask, and are answered the same.
std::optional<DuplicateAnswers> CommandUserInteraction::resolveDuplicates(const QList<DuplicatePair> &pairs, bool)
{
    const DuplicateChoice choice = m_duplicates == DuplicatePolicy::Discard  ? DuplicateChoice::Discard
                                   : m_duplicates == DuplicatePolicy::Relink ? DuplicateChoice::Relink
                                                                             : DuplicateChoice::KeepBoth;
    return QList<DuplicateChoice>(pairs.size(), choice);
}

std::shared_ptr<UserProgress> CommandUserInteraction::beginProgress(const QString &text, double maximum,
                                                                    std::function<void()> cancel)
{
    auto progress = std::make_shared<TerminalProgress>(text, maximum, std::move(cancel));
    zqOnMainThread([current = m_current, block = progress->cancelBlock] {
        current->cancel = block;
        if (current->isCancelled) { // asked for before there was anything to cancel
            CommandUserInteraction::cancel(*current);
        }
    });
    return progress;
}

void CommandUserInteraction::cancelCurrentWork()
{
    m_current->isCancelled = true;
    cancel(*m_current);
}

void CommandUserInteraction::cancel(Current &current)
{
    const auto cancel = current.cancel.lock();
    if (cancel && *cancel) {
        (*cancel)();
    }
}

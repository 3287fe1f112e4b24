#include "Classes/Application/BackupWork.h"
#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Command/AbandonWatch.h"
#include "Classes/Command/Commands.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

int finish(const BackupResult &result, CommandContext &context)
{
    if (result.path.isEmpty()) {
        return context.fail(result.error.localizedDescription());
    }
    if (context.json) {
        context.printJSON(QJsonObject{{QStringLiteral("path"), result.path},
                                      {QStringLiteral("items"), result.items},
                                      {QStringLiteral("files"), result.files},
                                      {QStringLiteral("bytes"), result.bytes},
                                      {QStringLiteral("newBytes"), result.newBytes},
                                      {QStringLiteral("problems"), QJsonArray::fromStringList(result.problems)},
                                      {QStringLiteral("notes"), QJsonArray::fromStringList(result.notes)},
                                      {QStringLiteral("removed"), QJsonArray::fromStringList(result.removed)}});
    } else {
        for (const QString &line : result.lines()) {
            context.print(line);
        }
    }
    return result.problems.isEmpty() ? 0 : 1;
}

// A line for each stage, where the command is alone; a window shows its own.
class StageProgress
{
public:
    explicit StageProgress(BackupWork &work) : m_work(work)
    {
        QObject::connect(&work, &BackupWork::progressed, &work,
                         [this](LibraryBackup::Stage stage, qint64 done, qint64 total) { show(stage, done, total); });
    }

private:
    void show(LibraryBackup::Stage stage, qint64 done, qint64 total)
    {
        if (!m_progress || stage != m_stage) {
            m_stage = stage;
            m_shown = 0;
            m_progress.reset();
            m_progress = tamberin_AppDelegate::sharedDelegate()->userInteraction().beginProgress(
                BackupWork::stageText(stage), double(total), [work = &m_work] { work->stop(); });
        }
        m_progress->advanceBy(double(done - std::exchange(m_shown, done)));
    }

    BackupWork &m_work;
    LibraryBackup::Stage m_stage = LibraryBackup::Stage::Measuring;
    qint64 m_shown = 0;
    std::shared_ptr<UserProgress> m_progress;
};

} // namespace

int zqRunBackup(const BackupRequest &request, CommandContext &context)
{
    const auto work = std::make_shared<BackupWork>(*context.delegate);
    const BackupOptions options{context.absolutePath(request.directory), request.keep, request.verifiesAll};
    if (!work->start(options)) {
        return context.fail(zqLocalized("the library is not open"));
    }
    if (context.mayBeFinishedLater) {
        const auto isDone = [work, isAbandoned = context.isAbandoned] {
            if (isAbandoned && isAbandoned()) {
                work->stop();
            }
            return !work->isRunning();
        };
        context.pending =
            PendingCommand{isDone, [work](CommandContext &finished) { return finish(work->result(), finished); }, {}};
        return 0;
    }
    const StageProgress progress(*work);
    // Ctrl+C may come before there is any progress to cancel.
    const auto waiting = context.delegate->userInteraction().beginProgress(zqLocalized("Copying the database"), 1,
                                                                           [work] { work->stop(); });
    const AbandonWatch watch(context, [&work] { work->stop(); });
    zqRunMainLoopUntil([&work] { return !work->isRunning(); }, std::chrono::milliseconds(5));
    return finish(work->result(), context);
}

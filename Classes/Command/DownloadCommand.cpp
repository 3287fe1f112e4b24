#include "Classes/Command/AbandonWatch.h"
#include "Classes/Command/Commands.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Import/DownloadImageOperation.h"
#include "Classes/Import/ImageDownloads.h"
#include "Classes/Import/ImportOperation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace {

using Asker = ImageDownloadRequest::Asker;
using Download = std::shared_ptr<DownloadImageOperation>;
constexpr qsizetype longestAddress = 300; // that is printed for a person

bool isDone(const Download &download)
{
    const auto import = download->isFinished() ? download->importOperation() : nullptr;
    return download->isFinished() && (!import || import->isWhollyFinished());
}

// A question of the import goes with who asked for it: its answer could change nothing any more.
void cancel(const Download &download, UserInteraction &user)
{
    download->cancel();
    if (const auto import = download->isFinished() ? download->importOperation() : nullptr) {
        const bool mayAsk = import->isAnyRunning();
        import->cancelWholly();
        if (mayAsk) {
            user.dismissQuestions();
        }
    }
}

void addTo(QStringList &imported, QList<DroppedFile> &dropped, const std::shared_ptr<ImportOperation> &import)
{
    imported += import->report().imported();
    dropped += import->report().dropped();
    for (const auto &followUp : import->followUps()) {
        addTo(imported, dropped, followUp);
    }
}

// Where the file came from says more than where it lay for a moment.
QString addressOf(const QString &path, const DownloadImageOperation &download)
{
    for (const QVariantMap &file : download.filesToImport()) {
        if (file.value(QStringLiteral("imagePath")) == path) {
            return file.value(QStringLiteral("imageUrl")).toString();
        }
    }
    return path;
}

void printJSON(const DownloadImageOperation &download, const QStringList &imported, const QList<DroppedFile> &dropped,
               bool isCancelled, CommandContext &context)
{
    QJsonArray failures;
    for (const DownloadImageOperation::Failure &failure : download.failures()) {
        failures.append(QJsonObject{{QStringLiteral("url"), failure.imageUrl},
                                    {QStringLiteral("reason"), failure.error.localizedDescription()}});
    }
    QJsonArray droppedFiles;
    for (const DroppedFile &file : dropped) {
        droppedFiles.append(QJsonObject{{QStringLiteral("url"), addressOf(file.path, download)},
                                        {QStringLiteral("reason"), file.reason}});
    }
    context.printJSON(QJsonObject{{QStringLiteral("downloaded"), download.filesToImport().size()},
                                  {QStringLiteral("imported"), QJsonArray::fromStringList(imported)},
                                  {QStringLiteral("failed"), failures},
                                  {QStringLiteral("dropped"), droppedFiles},
                                  {QStringLiteral("cancelled"), isCancelled}});
}

void printText(const DownloadImageOperation &download, const QStringList &imported, const QList<DroppedFile> &dropped,
               CommandContext &context)
{
    context.print(zqCounted({"1 item imported", "%d items imported"}, imported.size()));
    for (const DownloadImageOperation::Failure &failure : download.failures()) {
        context.print(zqFormat(zqLocalized("not downloaded: %@: %@"),
                               {zqShortened(failure.imageUrl, longestAddress), failure.error.localizedDescription()}));
    }
    for (const DroppedFile &file : dropped) {
        const QString format =
            file.isImportedInPart() ? zqLocalized("imported in part: %@: %@") : zqLocalized("not imported: %@: %@");
        context.print(zqFormat(format, {zqShortened(addressOf(file.path, download), longestAddress), file.reason}));
    }
}

void tellOfMissingPage(CommandContext &context)
{
    context.fail(zqLocalized("images on this computer or in its own network come only for a page that is there, too: "
                             "write --page with its address, as --page http://127.0.0.1/"));
}

int report(const DownloadImageOperation &download, CommandContext &context)
{
    if (download.lacksPage()) {
        tellOfMissingPage(context);
    }
    QStringList imported;
    QList<DroppedFile> dropped;
    bool isCancelled = download.isCancelled();
    if (const auto import = download.importOperation()) {
        addTo(imported, dropped, import);
        isCancelled = isCancelled || import->isAnyCancelled();
    }
    if (context.json) {
        printJSON(download, imported, dropped, isCancelled, context);
    } else {
        printText(download, imported, dropped, context);
    }
    if (isCancelled) {
        return context.fail(imported.isEmpty()
                                ? zqLocalized("the download was cancelled; nothing was imported")
                                : zqLocalized("the download was cancelled; what is listed was imported before that"));
    }
    if (imported.isEmpty() && dropped.isEmpty()) {
        return context.fail(zqLocalized("none of the images could be downloaded"));
    }
    const bool isAllThere = std::all_of(dropped.begin(), dropped.end(), [](const DroppedFile &file) {
        return file.telling == DroppedFile::Telling::Decided; // a duplicate is in the library
    });
    return download.failures().isEmpty() && isAllThere ? 0 : imported.isEmpty() && !isAllThere ? 2 : 1;
}

} // namespace

int zqRunDownload(const DownloadCommandRequest &request, CommandContext &context)
{
    if (request.urls.isEmpty()) {
        return context.fail(zqLocalized("name the addresses of the images"));
    }
    const QString project = request.title.isEmpty() ? request.page : request.title;
    if (request.all && project.isEmpty()) {
        return context.fail(zqLocalized("--all needs a --title for the project"));
    }
    if (const QString reason = ImageDownloads::sharedImageDownloads().reasonToRefuse();
        request.isFromPage && !reason.isEmpty()) {
        return context.fail(reason);
    }
    const Download download =
        ImageDownloads::sharedImageDownloads().start({.pageTitle = project,
                                                      .pageUrl = request.page,
                                                      .images = request.urls,
                                                      .importAll = request.all ? QStringLiteral("1") : QString(),
                                                      .asker = request.isFromPage ? Asker::Page : Asker::Person},
                                                     ImageDownloads::Tells::Caller);
    const auto finish = [download](CommandContext &finished) { return report(*download, finished); };
    if (context.mayBeFinishedLater) {
        const auto isDoneOrUnwanted = [download, isAbandoned = context.isAbandoned,
                                       &user = context.delegate->userInteraction()] {
            if (isAbandoned && isAbandoned()) {
                cancel(download, user);
            }
            return isDone(download);
        };
        context.pending = PendingCommand{isDoneOrUnwanted, finish, AImportManager::didFinishImportOperation};
        return 0;
    }
    const AbandonWatch watch(context, [&] { cancel(download, context.delegate->userInteraction()); });
    zqRunMainLoopUntil([&download] { return isDone(download); }, std::chrono::milliseconds(5));
    return finish(context);
}

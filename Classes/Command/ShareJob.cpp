#include "Classes/Command/ShareJob.h"

#include "Classes/Application/TemporaryArea.h"
#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Command/CommandContext.h"
#include "Classes/Export/ExportManager.h"
#include "Classes/Export/ExportReport.h"
#include "Classes/Export/ExportSource.h"
#include "Classes/Import/TemporaryFolder.h"
#include "Classes/Sharing/CloudService.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <utility>

ShareJob::ShareJob(QList<ZQObjectID> items, std::shared_ptr<CloudService> service, const CommandContext &context)
    : m_items(std::move(items)), m_service(std::move(service)), m_isAbandoned(context.isAbandoned),
      m_showsProgress(!context.mayBeFinishedLater)
{
}

ShareJob::~ShareJob()
{
    cancel(); // nobody would hear of it
}

QString ShareJob::start(const std::optional<ExportItem> &preset, ZQManagedObjectContext &store)
{
    if (preset) {
        return beginExport(*preset);
    }
    QList<CloudFile> files;
    for (const ZQRef<ZQLibraryBaseItem> &item : ExportSource::itemsWithIDs(m_items, store)) {
        if (!item) {
            continue;
        }
        const QString path = item->itemURL();
        if (!path.isEmpty() && QFileInfo(path).isFile()) {
            files.append({path, item->title()});
        } else {
            m_missing.append({item->title(), zqLocalized("Its original file is missing. Look whether it was moved or "
                                                         "deleted, or whether its disk is there.")});
        }
    }
    return upload(files) ? QString() : zqLocalized("none of the items has a file to share");
}

QString ShareJob::beginExport(const ExportItem &preset)
{
    ZQError error;
    const QString folder = TemporaryArea::newFolder(&error);
    if (folder.isEmpty()) {
        return error.localizedDescription();
    }
    m_folder = std::make_unique<TemporaryFolder>(folder);
    ExportRequest request = ExportRequest::with(preset, m_items, folder);
    request.tellsPerson = false; // it is in the answer
    m_export = ExportManager::sharedExportManager().exportItems(request);
    return m_export ? QString() : zqLocalized("the library is not open");
}

void ShareJob::takeExport()
{
    const auto operation = std::exchange(m_export, nullptr);
    operation->waitUntilFinished();
    const ExportResult &result = operation->result();
    for (const QList<ExportResult::Problem> &problems : {result.missing, result.failed}) {
        for (const ExportResult::Problem &problem : problems) {
            m_missing.append({problem.title, problem.reason});
        }
    }
    if (!result.refusal.isNull()) {
        m_refusal = ExportReport::stopped(operation->request(), result).localizedDescription();
    }
    m_isCancelled = m_isCancelled || result.isCancelled;
    QList<CloudFile> files;
    for (const QString &path : result.written) {
        files.append({path, QFileInfo(path).completeBaseName()});
    }
    if (m_refusal.isNull() && !m_isCancelled && !upload(files)) {
        m_refusal = zqLocalized("none of the items could be exported");
    }
}

bool ShareJob::upload(const QList<CloudFile> &files)
{
    *m_isUploading = true;
    const auto ended = [result = m_result, isUploading = m_isUploading](const CloudUploadResult &what) {
        *result = what;
        *isUploading = false;
    };
    m_upload = CloudUploader::sharedCloudUploader().upload(files, *m_service, ended);
    if (m_upload == 0) {
        *m_isUploading = false;
        return false;
    }
    if (m_showsProgress) {
        showProgress(files.size());
    }
    return true;
}

void ShareJob::showProgress(qsizetype files)
{
    m_progress = tamberin_AppDelegate::sharedDelegate()->userInteraction().beginProgress(
        zqFormat(zqLocalized("Uploading to %@"), {m_service->title()}), double(files),
        [upload = m_upload] { CloudUploader::sharedCloudUploader().cancelUpload(upload); });
    m_progressObserver = ZQNotificationCenter::defaultCenter().addObserver(
        CloudUploader::didUpdate, nullptr, [this](const ZQNotification &notification) {
            const double done = notification.userInfo.value(CloudUploader::numberKey).toDouble();
            m_progress->advanceBy(done - std::exchange(m_shown, done));
        });
}

bool ShareJob::isDone()
{
    if (m_isAbandoned && m_isAbandoned()) {
        cancel();
    }
    if (m_export && m_export->isFinished()) {
        takeExport();
    }
    return !m_export && !*m_isUploading;
}

void ShareJob::cancel()
{
    if (m_export) {
        m_isCancelled = true;
        m_export->cancel();
    }
    if (*m_isUploading) {
        CloudUploader::sharedCloudUploader().cancelUpload(m_upload); // others may be uploading too
    }
}

void ShareJob::print(CommandContext &context) const
{
    if (!context.json) {
        for (const CloudUploadResult::Link &link : m_result->links) {
            context.print(link.url);
        }
        for (const Problem &problem : m_missing) {
            context.fail(zqFormat(zqLocalized("not shared: %@: %@"), {problem.title, problem.reason}));
        }
        return;
    }
    QJsonArray links;
    for (const CloudUploadResult::Link &link : m_result->links) {
        links.append(QJsonObject{{QStringLiteral("title"), link.file.name}, {QStringLiteral("url"), link.url}});
    }
    QJsonArray missing;
    for (const Problem &problem : m_missing) {
        missing.append(
            QJsonObject{{QStringLiteral("title"), problem.title}, {QStringLiteral("reason"), problem.reason}});
    }
    context.printJSON(QJsonObject{{QStringLiteral("service"), m_service->identifier()},
                                  {QStringLiteral("links"), links},
                                  {QStringLiteral("missing"), missing},
                                  {QStringLiteral("failed"), m_result->hasFailed},
                                  {QStringLiteral("cancelled"), m_isCancelled || m_result->isCancelled}});
}

int ShareJob::finish(CommandContext &context)
{
    m_progressObserver.reset();
    m_progress.reset();
    print(context);
    if (!m_refusal.isNull()) {
        return context.fail(m_refusal);
    }
    const bool isNothing = m_result->links.isEmpty();
    if (m_isCancelled || m_result->isCancelled) {
        return context.fail(isNothing ? zqLocalized("the upload was cancelled; nothing was shared")
                                      : zqLocalized("the upload was cancelled; the links above stay valid"));
    }
    if (m_result->hasFailed) {
        const QString reason = m_result->error.isNull() ? zqLocalized("the service gave no reason; try again later")
                                                        : m_result->error.localizedDescription();
        return context.fail(isNothing ? reason
                                      : zqFormat(zqLocalized("%@ The links above stay valid; what came after them was "
                                                             "not uploaded."),
                                                 {reason}));
    }
    return m_missing.isEmpty() ? 0 : 1;
}

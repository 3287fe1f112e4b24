#include "Classes/Sharing/CloudUploader.h"

#include "Classes/Application/TemporaryArea.h"
#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Export/ExportManager.h"
#include "Classes/Sharing/CloudServices.h"
#include "Classes/Sharing/LatestUploads.h"
#include "Classes/Sharing/ServiceAddress.h"
#include "Classes/Sharing/UploadProblem.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Network/ZQNetworkError.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QSet>
#include <QUuid>

#include <algorithm>

namespace {

constexpr std::chrono::milliseconds longTime{1500};
constexpr std::chrono::milliseconds shortTime{1200};
constexpr qint64 timeBetweenSynchronizing = 1000; // ms

UserInteraction *person()
{
    const tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    return delegate ? &delegate->userInteraction() : nullptr;
}

void show(const QString &text, std::chrono::milliseconds time)
{
    if (UserInteraction *const user = person()) {
        user->showNotificationWithText(text, NotificationPlace::Window, time);
    }
}

void present(const ZQError &error)
{
    if (UserInteraction *const user = person()) {
        user->presentError(error);
    }
}

void present(const QString &text)
{
    present(ZQError::with(CloudServices::errorDomain, 3, zqLocalized("Cannot upload the files"), text));
}

void post(const QString &name, const QVariantMap &userInfo = {})
{
    ZQNotificationCenter::defaultCenter().postNotification(name, nullptr, userInfo);
}

void putOnClipboard(const QString &text)
{
    if (qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        QGuiApplication::clipboard()->setText(text);
    }
}

std::shared_ptr<ExportOperation> exportInto(const QString &folder)
{
    std::shared_ptr<ExportOperation> latest;
    tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    if (!delegate) {
        return latest;
    }
    for (const auto &each : delegate->backgroundOperationQueue().operations()) {
        const auto operation = std::dynamic_pointer_cast<ExportOperation>(each);
        if (operation && QDir::cleanPath(operation->request().destinationURL) == QDir::cleanPath(folder)) {
            latest = operation;
        }
    }
    return latest;
}

} // namespace

// The files that an export for an upload wrote. When this goes they do: these names and no others, where they lie in a
// folder of their own in the temporary area, and then the folder if nothing else is in it.
struct CloudUploader::ExportedFiles
{
    explicit ExportedFiles(QStringList paths) : m_paths(std::move(paths)) {}
    ~ExportedFiles()
    {
        const QString area = QFileInfo(TemporaryArea::folder()).canonicalFilePath();
        QSet<QString> folders;
        for (const QString &path : m_paths) {
            const QFileInfo folder(QFileInfo(path).absolutePath());
            const bool isOurs = !area.isEmpty() && !folder.isSymLink() &&
                                folder.fileName().startsWith(QStringLiteral("t.")) &&
                                QFileInfo(folder.absolutePath()).canonicalFilePath() == area;
            if (isOurs) {
                QFile::remove(path);
                folders.insert(folder.absoluteFilePath());
            }
        }
        for (const QString &folder : folders) {
            QDir().rmdir(folder);
        }
    }
    ExportedFiles(const ExportedFiles &) = delete;
    ExportedFiles &operator=(const ExportedFiles &) = delete;

private:
    const QStringList m_paths;
};

CloudUploader &CloudUploader::sharedCloudUploader()
{
    static CloudUploader *const uploader = new CloudUploader; // its queue must not wait for a main thread that ended
    return *uploader;
}

CloudUploader::CloudUploader() : m_pasteboard(putOnClipboard)
{
    ZQNotificationCenter &center = ZQNotificationCenter::defaultCenter();
    const auto observe = [this, &center](const QString &name, bool isCancelled) {
        m_exportObservers.append(center.addObserver(name, nullptr, [this, isCancelled](const ZQNotification &) {
            if (!m_export || m_export->isFinished()) { // else it is another one's end, or its own follows
                exportDidEnd(m_export ? m_export->isCancelled() : isCancelled);
            }
        }));
    };
    observe(ExportManager::didFinishExportOperation, false);
    observe(ExportManager::didCancelExportOperation, true);
}

CloudUploader::~CloudUploader()
{
    *m_isAlive = false;
    cancelUploads();
}

std::shared_ptr<CloudService> CloudUploader::readyService() const
{
    auto service = CloudServices::sharedCloudServices().adapterClassForUpload();
    if (const ZQError problem = CloudServices::problemOf(service.get()); !problem.isNull()) {
        present(problem);
        return nullptr;
    }
    return service;
}

void CloudUploader::uploadLibrayItems(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    Q_ASSERT(zqIsMainThread());
    if (isUploading()) {
        cancelUploads();
        show(zqLocalized("Upload cancelled"), longTime);
        return;
    }
    m_uploadedCount = 0;
    QList<CloudFile> files;
    files.reserve(items.size());
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        const QString path = item ? item->itemURL() : QString();
        if (!path.isEmpty() && QFileInfo(path).isFile()) {
            files.append({path, item->title()});
        }
    }
    if (files.isEmpty()) {
        show(zqLocalized("Please select some items!"), shortTime);
        return;
    }
    if (const auto service = readyService()) {
        enqueue(files, *service, nullptr);
        qCInfo(zqLogFeatures, "%s", qUtf8Printable(service->featureName()));
    }
}

bool CloudUploader::upload(const QList<CloudFile> &files, CloudService &service, Ended ended)
{
    if (files.isEmpty()) {
        return false;
    }
    if (!isUploading()) {
        m_uploadedCount = 0;
    }
    enqueue(files, service, std::move(ended));
    return true;
}

void CloudUploader::enqueue(const QList<CloudFile> &files, CloudService &service, Ended ended,
                            const std::shared_ptr<ExportedFiles> &exported)
{
    const auto batch = std::make_shared<Batch>(Batch{std::move(ended), {}, files.size()});
    for (const CloudFile &file : files) {
        auto adapter =
            service.makeAdapter(file.path, file.name, QUuid::createUuid().toString(QUuid::WithoutBraces), this);
        m_uploads.insert(adapter.get(), {adapter, batch});
        adapter->setCompletionBlock([this, isAlive = m_isAlive, ended = adapter.get(), held = exported]() mutable {
            held.reset(); // before the queue counts one less
            zqOnMainThread([this, isAlive, ended] {
                if (*isAlive) {
                    adapterDidFinish(ended);
                }
            });
        });
        m_queue.addOperation(std::move(adapter));
    }
    post(didStart, {{numberKey, files.size()}});
}

void CloudUploader::setFileToUploadAfterExport(const QStringList &paths)
{
    cancelUploadExportedItems();
    if (paths.isEmpty()) {
        return;
    }
    m_fileToUploadAfterExport = paths;
    m_exported = std::make_shared<ExportedFiles>(paths);
    m_export = exportInto(QFileInfo(paths.first()).absolutePath());
    if (!m_export) {
        return;
    }
    m_exportObserver = m_export->observe([this, isAlive = m_isAlive, raw = m_export.get()](ZQOperation::Key key) {
        if (key == ZQOperation::Key::IsFinished) {
            zqOnMainThread([this, isAlive, raw] {
                if (*isAlive && m_export.get() == raw) {
                    exportDidEnd(m_export->isCancelled());
                }
            });
        }
    });
}

void CloudUploader::exportDidEnd(bool isCancelled)
{
    if (isCancelled) {
        cancelUploadExportedItems();
    } else {
        uploadExportedItems();
    }
}

void CloudUploader::uploadExportedItems()
{
    QList<CloudFile> files;
    for (const QString &path : std::as_const(m_fileToUploadAfterExport)) {
        if (const QFileInfo info(path); info.isFile()) {
            files.append({path, info.completeBaseName()});
        }
    }
    const auto exported = m_exported;
    cancelUploadExportedItems(); // they wait no longer; first, since what follows may show something
    if (files.isEmpty()) {
        return;
    }
    m_uploadedCount = 0;
    if (const auto service = readyService()) {
        enqueue(files, *service, nullptr, exported);
    }
}

void CloudUploader::cancelUploadExportedItems()
{
    m_fileToUploadAfterExport.clear();
    m_exported.reset();
    m_exportObserver.reset();
    m_export.reset();
}

void CloudUploader::cancelUploads()
{
    if (isUploading()) {
        endAll([](CloudUploadResult &result) { result.isCancelled = true; });
    }
}

bool CloudUploader::endAll(const std::function<void(CloudUploadResult &result)> &note)
{
    const QHash<CloudAdapter *, Upload> ended = std::exchange(m_uploads, {});
    m_queue.cancelAllOperations();
    post(didFinish);
    synchronizeNowAndThen(true);
    QSet<Batch *> told;
    bool isForPerson = false;
    for (const Upload &upload : ended) {
        Batch &batch = *upload.batch;
        if (!told.contains(&batch)) {
            told.insert(&batch);
            note(batch.result);
            isForPerson = isForPerson || !batch.ended;
            if (batch.ended) {
                batch.ended(batch.result);
            }
        }
    }
    return isForPerson;
}

// One that ended without a word, as when something else than this cancelled it.
void CloudUploader::adapterDidFinish(CloudAdapter *adapter)
{
    if (m_uploads.contains(adapter)) {
        cancelUploads();
    }
}

void CloudUploader::cloudAdapter(CloudAdapter &adapter, double didProgressUpload)
{
    if (m_uploads.contains(&adapter)) {
        post(didUpdate, {{numberKey, float(double(m_uploadedCount) + didProgressUpload)}});
    }
}

void CloudUploader::cloudAdapter(CloudAdapter &adapter, const QVariantMap &didUploadFile)
{
    if (!m_uploads.contains(&adapter)) {
        return;
    }
    const QString url = ServiceAddress::link(didUploadFile.value(QStringLiteral("url")).toString());
    if (url.isEmpty()) {
        fail(UploadProblem::with(zqLocalized("The service did not say where the file is."),
                                 zqLocalized("It may have been uploaded all the same. Try again later.")));
        return;
    }
    const std::shared_ptr<Batch> batch = m_uploads.take(&adapter).batch;
    ++m_uploadedCount;
    batch->result.links.append({{adapter.fileToUploadURL(), adapter.fileToUploadName()}, url});
    if (m_uploads.isEmpty()) {
        if (!batch->ended) {
            didUploadLast(url);
        }
        post(didFinish);
    }
    LatestUploads::add({url, adapter.fileToUploadName(), QDateTime::currentDateTime()});
    synchronizeNowAndThen(m_uploads.isEmpty());
    if (tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate()) {
        delegate->updateCloudMenu();
    }
    if (--batch->left == 0 && batch->ended) {
        batch->ended(batch->result);
    }
}

// A disk may take longer to be sure of the list than the file to be uploaded.
void CloudUploader::synchronizeNowAndThen(bool isLast)
{
    if (isLast || !m_synchronized.isValid() || m_synchronized.hasExpired(timeBetweenSynchronizing)) {
        LatestUploads::synchronize();
        m_synchronized.start();
    }
}

void CloudUploader::didUploadLast(const QString &url)
{
    m_pasteboard(url);
    show(m_uploadedCount < 2 ? zqLocalized("Upload done, url copied to clipboard!")
                             : zqFormat(zqLocalized("Uploaded %d files to the cloud!"), {m_uploadedCount}),
         longTime);
}

void CloudUploader::cloudAdapter(CloudAdapter &adapter, const ZQError &didFailUpload)
{
    if (m_uploads.contains(&adapter)) {
        fail(didFailUpload);
    }
}

// What is shown may run the main loop, and in it anything may be asked of this.
void CloudUploader::fail(const ZQError &error)
{
    const bool isForPerson = endAll([&error](CloudUploadResult &result) {
        result.hasFailed = true;
        result.error = error;
    });
    qCWarning(zqLogApplication).noquote() << zqFormat(QStringLiteral("File upload failed: %@"),
                                                      {error.isNull() ? QString() : error.localizedDescription()});
    if (!isForPerson) {
        return;
    }
    if (zqIsNetworkError(error, ZQNetworkErrorCode::Offline)) {
        present(zqLocalized("The internet connection seem to be unavailable."));
    }
    if (error.domain == UploadProblem::errorDomain) {
        present(error);
    } else {
        present(zqLocalized("An error as occured, please try again later"));
    }
}

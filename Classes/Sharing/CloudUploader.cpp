#include "Classes/Sharing/CloudUploader.h"

#include "Classes/Application/TemporaryArea.h"
#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Export/ExportManager.h"
#include "Classes/Sharing/CloudServices.h"
#include "Classes/Sharing/ServiceAddress.h"
#include "Classes/Sharing/UploadProblem.h"
#include "Kit/Foundation/ZQFeatures.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQShortened.h"
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
constexpr std::chrono::milliseconds keepingTime{50}; // small files follow one another faster than a disk writes

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

// The same with what it is about in the title.
ZQError titled(const ZQError &error, const QString &name, qsizetype notSent)
{
    ZQError told = error;
    QString text = error.localizedDescription();
    if (notSent > 0) {
        text += u' ' + zqCounted({"One more file was not sent.", "%@ more files were not sent."}, notSent);
    }
    told.userInfo.insert(ZQError::descriptionKey,
                         zqFormat(zqLocalized("“%@” could not be uploaded"), {zqShortened(name)}));
    told.userInfo.insert(ZQError::failureReasonKey, text);
    return told;
}

void askToSetUp(const ZQError &problem)
{
    UserInteraction *const user = person();
    const auto text = [&problem](const QString &key) { return problem.userInfo.value(key).toString(); };
    const int answer = user ? user->ask({text(ZQError::descriptionKey),
                                         text(ZQError::failureReasonKey),
                                         {zqLocalized("Open Cloud Preferences…"), zqLocalized("OK")},
                                         {},
                                         false})
                            : -1;
    if (answer == 0) {
        post(CloudUploader::preferencesRequested);
    }
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
        QSet<QString> folders;
        for (const QString &path : m_paths) {
            const QString folder = QFileInfo(path).absolutePath();
            if (TemporaryArea::isFolderOfOurs(folder)) {
                QFile::remove(path);
                folders.insert(folder);
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

// An export whose files are to be uploaded. It stays until the export has ended also when nobody wants the files any
// more: what it still writes is to be removed.
struct CloudUploader::WaitingExport
{
    QStringList paths; // empty: nobody wants them
    std::shared_ptr<ExportedFiles> files;
    std::shared_ptr<ExportOperation> operation; // null where it is not known
    ZQOperation::Token observer;
    bool isUnderWay() const { return operation && !operation->isFinished(); }
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
        m_exportObservers.append(center.addObserver(
            name, nullptr, [this, isCancelled](const ZQNotification &) { exportDidEnd(isCancelled); }));
    };
    observe(ExportManager::didFinishExportOperation, false);
    observe(ExportManager::didCancelExportOperation, true);
    m_keeping.setSingleShot(true);
    QObject::connect(&m_keeping, &QTimer::timeout, &m_keeping, [this] { keepLinks(); });
}

CloudUploader::~CloudUploader()
{
    *m_isAlive = false;
    cancelUploads();
    keepLinks();
}

std::shared_ptr<CloudService> CloudUploader::readyService() const
{
    auto service = CloudServices::sharedCloudServices().adapterClassForUpload();
    if (const ZQError problem = CloudServices::problemOf(service.get()); !problem.isNull()) {
        askToSetUp(problem);
        return nullptr;
    }
    return service;
}

void CloudUploader::uploadLibrayItems(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    Q_ASSERT(zqIsMainThread());
    if (isUploading()) {
        cancelUploadExportedItems(); // else an upload would begin after it was said that all is cancelled
        cancelUploads();
        show(zqLocalized("Upload cancelled"), longTime);
        return;
    }
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
        zqDidUseFeature(service->feature());
    }
}

quint64 CloudUploader::upload(const QList<CloudFile> &files, CloudService &service, Ended ended)
{
    return files.isEmpty() ? 0 : enqueue(files, service, std::move(ended));
}

quint64 CloudUploader::enqueue(const QList<CloudFile> &files, CloudService &service, Ended ended,
                               const std::shared_ptr<ExportedFiles> &exported)
{
    const auto batch = std::make_shared<Batch>();
    batch->number = ++m_lastNumber;
    batch->ended = std::move(ended);
    for (const CloudFile &file : files) {
        auto adapter =
            service.makeAdapter(file.path, file.name, QUuid::createUuid().toString(QUuid::WithoutBraces), this);
        adapter->setCompletionBlock(
            [this, isAlive = m_isAlive, weak = std::weak_ptr(adapter), held = exported]() mutable {
                held.reset(); // before the queue counts one less
                // Held until it is looked for: the next one could be made at its address.
                zqOnMainThread([this, isAlive, ended = weak.lock()] {
                    if (*isAlive && ended) {
                        adapterDidFinish(*ended);
                    }
                });
            });
        batch->left.append(std::move(adapter));
    }
    m_batches.append(batch);
    startNext();
    return batch->number;
}

void CloudUploader::startNext()
{
    if (m_batches.isEmpty() || m_batches.first()->isStarted) {
        return;
    }
    const std::shared_ptr<Batch> batch = m_batches.first();
    batch->isStarted = true;
    for (const auto &adapter : std::as_const(batch->left)) {
        m_queue.addOperation(adapter);
    }
    post(didStart, {{numberKey, batch->left.size()}});
}

std::shared_ptr<CloudUploader::Batch> CloudUploader::batchOf(const CloudAdapter &adapter) const
{
    if (m_batches.isEmpty()) {
        return nullptr;
    }
    const auto &left = m_batches.first()->left;
    const bool isLeft =
        std::any_of(left.begin(), left.end(), [&adapter](const auto &each) { return each.get() == &adapter; });
    return isLeft ? m_batches.first() : nullptr;
}

void CloudUploader::setFileToUploadAfterExport(const QStringList &paths)
{
    if (paths.isEmpty()) {
        cancelUploadExportedItems();
        return;
    }
    const auto waiting = std::make_shared<WaitingExport>();
    waiting->paths = paths;
    waiting->files = std::make_shared<ExportedFiles>(paths);
    waiting->operation = exportInto(QFileInfo(paths.first()).absolutePath());
    m_waitingExports.append(waiting);
    if (!waiting->operation) {
        return;
    }
    waiting->observer = waiting->operation->observe([this, isAlive = m_isAlive](ZQOperation::Key key) {
        if (key == ZQOperation::Key::IsFinished) {
            zqOnMainThread([this, isAlive] {
                if (*isAlive) {
                    exportsDidEnd();
                }
            });
        }
    });
    exportsDidEnd(); // it may have been faster
}

QStringList CloudUploader::fileToUploadAfterExport() const
{
    QStringList paths;
    for (const auto &waiting : m_waitingExports) {
        paths.append(waiting->paths);
    }
    return paths;
}

// Of those that are known, whichever ended; of the others the one that is told of, as it may be theirs.
void CloudUploader::exportDidEnd(bool isCancelled)
{
    for (const auto &waiting : QList(m_waitingExports)) {
        if (!waiting->operation) {
            isCancelled ? cancelExported(waiting) : uploadExported(waiting);
        }
    }
    exportsDidEnd();
}

void CloudUploader::exportsDidEnd()
{
    for (const auto &waiting : QList(m_waitingExports)) {
        if (waiting->operation && waiting->operation->isFinished()) {
            waiting->operation->isCancelled() ? cancelExported(waiting) : uploadExported(waiting);
        }
    }
}

void CloudUploader::uploadExportedItems()
{
    for (const auto &waiting : QList(m_waitingExports)) {
        if (!waiting->isUnderWay()) {
            uploadExported(waiting);
        }
    }
}

void CloudUploader::uploadExported(const std::shared_ptr<WaitingExport> &waiting)
{
    if (!m_waitingExports.removeOne(waiting)) { // first, since what follows may show something
        return;
    }
    QList<CloudFile> files;
    for (const QString &path : std::as_const(waiting->paths)) {
        if (const QFileInfo info(path); info.isFile()) {
            files.append({path, info.completeBaseName()});
        }
    }
    if (files.isEmpty()) {
        return;
    }
    if (const auto service = readyService()) {
        enqueue(files, *service, nullptr, waiting->files);
    }
}

void CloudUploader::cancelUploadExportedItems()
{
    for (const auto &waiting : QList(m_waitingExports)) {
        cancelExported(waiting);
    }
}

void CloudUploader::cancelExported(const std::shared_ptr<WaitingExport> &waiting)
{
    waiting->paths.clear();
    if (!waiting->isUnderWay()) {
        m_waitingExports.removeOne(waiting);
    }
}

void CloudUploader::cancelUploads()
{
    const auto batches = m_batches;
    for (auto each = batches.crbegin(); each != batches.crend(); ++each) { // so that none of them starts
        cancelUpload((*each)->number);
    }
}

void CloudUploader::cancelUpload(quint64 upload)
{
    const auto found = std::find_if(m_batches.cbegin(), m_batches.cend(),
                                    [upload](const auto &each) { return each->number == upload; });
    if (found != m_batches.cend()) {
        end(*found, [](CloudUploadResult &result) { result.isCancelled = true; });
    }
}

// `batch` by value: who gives it may hold it in the list.
void CloudUploader::end(std::shared_ptr<Batch> batch, const std::function<void(CloudUploadResult &result)> &note)
{
    keepLinks();
    m_batches.removeOne(batch);
    const auto left = std::exchange(batch->left, {});
    for (auto each = left.crbegin(); each != left.crend(); ++each) { // the current one last, or the next would start
        (*each)->cancel();
    }
    if (batch->isStarted) {
        post(didFinish);
    }
    note(batch->result);
    if (batch->ended) {
        batch->ended(batch->result);
    }
    startNext();
}

// One that ended without a word, as when something else than this cancelled it.
void CloudUploader::adapterDidFinish(CloudAdapter &adapter)
{
    if (const auto batch = batchOf(adapter)) {
        cancelUpload(batch->number);
    }
}

void CloudUploader::cloudAdapter(CloudAdapter &adapter, double didProgressUpload)
{
    if (const auto batch = batchOf(adapter)) {
        const auto count = double(batch->result.links.size());
        post(didUpdate, {{numberKey, float(count + didProgressUpload)}});
    }
}

void CloudUploader::cloudAdapter(CloudAdapter &adapter, const QVariantMap &didUploadFile)
{
    const std::shared_ptr<Batch> batch = batchOf(adapter);
    if (!batch) {
        return;
    }
    const QString url = ServiceAddress::link(didUploadFile.value(QStringLiteral("url")).toString());
    if (url.isEmpty()) {
        fail(batch,
             UploadProblem::with(zqLocalized("The service did not say where the file is."),
                                 zqLocalized("It may have been uploaded all the same. Try again later.")),
             adapter.fileToUploadName());
        return;
    }
    batch->left.removeIf([&adapter](const auto &each) { return each.get() == &adapter; });
    if (batch->result.links.isEmpty()) {
        m_lastLinks.clear();
    }
    m_lastLinks.append(url);
    batch->result.links.append({{adapter.fileToUploadURL(), adapter.fileToUploadName()}, url});
    const bool isLast = batch->left.isEmpty();
    if (isLast) {
        m_batches.removeOne(batch);
        if (!batch->ended) {
            didUpload(batch->result);
        }
        post(didFinish);
    }
    m_unkept.append({url, adapter.fileToUploadName(), QDateTime::currentDateTime()});
    if (isLast) {
        keepLinks();
        if (batch->ended) {
            batch->ended(batch->result);
        }
        startNext();
    } else if (!m_keeping.isActive()) {
        m_keeping.start(keepingTime);
    }
}

void CloudUploader::keepLinks()
{
    m_keeping.stop();
    if (m_unkept.isEmpty()) {
        return;
    }
    LatestUploads::add(std::exchange(m_unkept, {}));
    LatestUploads::synchronize();
    if (tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate()) {
        delegate->updateCloudMenu();
    }
}

void CloudUploader::didUpload(const CloudUploadResult &all)
{
    const qsizetype count = all.links.size();
    const QString url = all.links.last().url;
    m_pasteboard(url);
    const QString text = count < 2 ? zqLocalized("Upload done, url copied to clipboard!")
                                   : zqFormat(zqLocalized("Uploaded %d files to the cloud!"), {count});
    show(text, longTime);
    if (UserInteraction *const user = person()) {
        user->tellWhenAway(
            {zqLocalized("Sharing done"), text, zqLocalized("Copy Link"), [copy = m_pasteboard, url] { copy(url); }});
    }
}

void CloudUploader::cloudAdapter(CloudAdapter &adapter, const ZQError &didFailUpload)
{
    if (const auto batch = batchOf(adapter)) {
        fail(batch, didFailUpload, adapter.fileToUploadName());
    }
}

// What is shown may run the main loop, and in it anything may be asked of this.
void CloudUploader::fail(const std::shared_ptr<Batch> &batch, const ZQError &error, const QString &name)
{
    const qsizetype notSent = batch->left.size() - 1;
    end(batch, [&error](CloudUploadResult &result) {
        result.hasFailed = true;
        result.error = error;
    });
    const QString line =
        zqFormat(QStringLiteral("File upload failed: %@"), {error.isNull() ? QString() : error.localizedDescription()});
    if (batch->ended) { // who asked says it, perhaps where this line would stand, too
        qCDebug(zqLogApplication).noquote() << line;
        return;
    }
    qCWarning(zqLogApplication).noquote() << line;
    if (zqIsNetworkError(error, ZQNetworkErrorCode::Offline)) {
        present(zqLocalized("The internet connection seem to be unavailable."));
    }
    if (error.domain == UploadProblem::errorDomain) {
        present(UploadProblem::isOurs(error) ? titled(error, name, notSent) : error);
    } else {
        const QString advice = UploadProblem::adviceOf(error);
        const QString general = zqLocalized("An error as occured, please try again later");
        present(advice.isEmpty() ? general : general + QStringLiteral("\n\n") + advice);
    }
}

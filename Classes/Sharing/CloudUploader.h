#pragma once

#include "Classes/Application/CloudUploading.h"
#include "Classes/Sharing/CloudAdapter.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQModelFetch.h"

#include <QElapsedTimer>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class CloudService;
class ExportOperation;
class ZQLibraryBaseItem;

// A file that is to be uploaded.
struct CloudFile
{
    QString path;
    QString name; // under which it is listed
};

// What became of files that were uploaded together.
struct CloudUploadResult
{
    struct Link
    {
        CloudFile file;
        QString url;
    };
    QList<Link> links; // in the order of the files; those that came before a failure or a cancel stay valid
    bool hasFailed = false;
    ZQError error; // null after a failure without a reason
    bool isCancelled = false;
};

// Shares files by one cloud service: uploads them one after the other on a queue of its own, puts the link on the
// general pasteboard, and keeps the latest uploads. The first failure ends everything that waits. Main thread.
class CloudUploader : public CloudUploading, public CloudAdapterDelegate
{
public:
    // Notifications without an object. The number they are about is in the user information: of files at the start, of
    // files done, with what is done of the current one, at an update.
    static inline const QString didStart = QStringLiteral("CloudUploadDidStart");
    static inline const QString didUpdate = QStringLiteral("CloudUploadDidUpdate");
    static inline const QString didFinish = QStringLiteral("CloudUploadDidFinish");
    static inline const QString numberKey = QStringLiteral("number");

    static CloudUploader &sharedCloudUploader();
    CloudUploader();
    ~CloudUploader() override; // once `hasUploadsLeft` is false

    // Uploads the files of those that have one, or, while something is uploaded, cancels that.
    void uploadLibrayItems(const QList<ZQRef<ZQLibraryBaseItem>> &items);
    // The files that an export is about to write. Once that has ended, those that are there are uploaded. What lies in
    // the temporary area is removed after the last of them.
    void setFileToUploadAfterExport(const QStringList &paths);
    void uploadExportedItems();
    void cancelUploadExportedItems();
    QStringList fileToUploadAfterExport() const { return m_fileToUploadAfterExport; }

    // For a caller who tells the person: nothing is shown or put on the pasteboard, and `ended` is called when the last
    // of these has ended. False, with nothing begun, for no files.
    using Ended = std::function<void(const CloudUploadResult &result)>;
    bool upload(const QList<CloudFile> &files, CloudService &service, Ended ended);

    bool isUploading() const override { return !m_uploads.isEmpty(); }
    void cancelUploads() override;
    bool hasUploadsLeft() const override { return isUploading() || m_queue.operationCount() > 0; }

    void cloudAdapter(CloudAdapter &adapter, const QVariantMap &didUploadFile) override;
    void cloudAdapter(CloudAdapter &adapter, const ZQError &didFailUpload) override;
    void cloudAdapter(CloudAdapter &adapter, double didProgressUpload) override;

    // Instead of the desktop's clipboard, which there is none of without a window.
    using Pasteboard = std::function<void(const QString &text)>;
    void setPasteboard(Pasteboard pasteboard) { m_pasteboard = std::move(pasteboard); }

private:
    struct Batch // files that were asked for together
    {
        Ended ended; // null: the person is told
        CloudUploadResult result;
        qsizetype left = 0;
    };
    struct Upload
    {
        std::shared_ptr<CloudAdapter> adapter;
        std::shared_ptr<Batch> batch;
    };
    struct ExportedFiles;

    std::shared_ptr<CloudService> readyService() const; // null: the person was told why
    void enqueue(const QList<CloudFile> &files, CloudService &service, Ended ended,
                 const std::shared_ptr<ExportedFiles> &exported = nullptr);
    void exportDidEnd(bool isCancelled);
    void adapterDidFinish(CloudAdapter *adapter);
    bool endAll(const std::function<void(CloudUploadResult &result)> &note); // whether the person is to be told
    void didUploadLast(const QString &url);
    void synchronizeNowAndThen(bool isLast);
    void fail(const ZQError &error);

    QHash<CloudAdapter *, Upload> m_uploads; // that have not ended
    qint32 m_uploadedCount = 0;
    QStringList m_fileToUploadAfterExport;
    std::shared_ptr<ExportedFiles> m_exported; // what is to be removed of them
    std::shared_ptr<ExportOperation> m_export; // that writes them; null where it is not known
    ZQOperation::Token m_exportObserver;
    QList<ZQNotificationCenter::Token> m_exportObservers;
    Pasteboard m_pasteboard;
    QElapsedTimer m_synchronized;                                         // since the list of uploads was
    const std::shared_ptr<bool> m_isAlive = std::make_shared<bool>(true); // for what comes later
    ZQOperationQueue m_queue{QStringLiteral("Uploads"), 1};
};

#pragma once

#include "Classes/Application/CloudUploading.h"
#include "Classes/Sharing/CloudAdapter.h"
#include "Classes/Sharing/LatestUploads.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQModelFetch.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QTimer>

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
// general pasteboard, and keeps the latest uploads. What is asked for together is a batch; batches follow one another,
// and the first failure ends the rest of its own. Main thread.
class CloudUploader : public CloudUploading, public CloudAdapterDelegate
{
public:
    // Notifications without an object. The number they are about is in the user information: of files at the start, of
    // files done, with what is done of the current one, at an update.
    static inline const QString didStart = QStringLiteral("CloudUploadDidStart");
    static inline const QString didUpdate = QStringLiteral("CloudUploadDidUpdate");
    static inline const QString didFinish = QStringLiteral("CloudUploadDidFinish");
    // The person wants to set up where files go.
    static inline const QString preferencesRequested = QStringLiteral("CloudPreferencesRequested");
    static inline const QString numberKey = QStringLiteral("number");

    static CloudUploader &sharedCloudUploader();
    CloudUploader();
    ~CloudUploader() override; // once `hasUploadsLeft` is false

    // Uploads the files of those that have one, or, while something is uploaded, cancels that.
    void uploadLibrayItems(const QList<ZQRef<ZQLibraryBaseItem>> &items);
    // The files that an export is about to write. Once that has ended, those that are there are uploaded; several may
    // be waited for, each for its own. What lies in the temporary area is removed after the last of them.
    void setFileToUploadAfterExport(const QStringList &paths);
    void uploadExportedItems(); // but what an export still writes
    void cancelUploadExportedItems();
    QStringList fileToUploadAfterExport() const;

    // For a caller who tells the person: nothing is shown or put on the pasteboard, and `ended` is called when the last
    // of these has ended. What is being uploaded comes first. 0, with nothing begun, for no files; else what
    // `cancelUpload` knows these by.
    using Ended = std::function<void(const CloudUploadResult &result)>;
    quint64 upload(const QList<CloudFile> &files, CloudService &service, Ended ended);
    void cancelUpload(quint64 upload); // these files and no others; nothing once they have ended

    bool isUploading() const override { return !m_batches.isEmpty(); }
    // Of the files that were uploaded together last, in their order, since the application began.
    QStringList linksOfLastUpload() const { return m_lastLinks; }
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
        quint64 number = 0;
        Ended ended; // null: the person is told
        CloudUploadResult result;
        QList<std::shared_ptr<CloudAdapter>> left; // that have not ended
        bool isStarted = false;
    };
    struct ExportedFiles;
    struct WaitingExport;

    std::shared_ptr<CloudService> readyService() const; // null: the person was told why
    quint64 enqueue(const QList<CloudFile> &files, CloudService &service, Ended ended,
                    const std::shared_ptr<ExportedFiles> &exported = nullptr);
    std::shared_ptr<Batch> batchOf(const CloudAdapter &adapter) const; // null: it has ended
    void startNext();
    void end(std::shared_ptr<Batch> batch, const std::function<void(CloudUploadResult &result)> &note);
    void exportDidEnd(bool isCancelled);
    void exportsDidEnd(); // looks which have
    void uploadExported(const std::shared_ptr<WaitingExport> &waiting);
    void cancelExported(const std::shared_ptr<WaitingExport> &waiting);
    void adapterDidFinish(CloudAdapter &adapter);
    void keepLinks(); // for the menu of the latest uploads
    void didUpload(const CloudUploadResult &all);
    void fail(const std::shared_ptr<Batch> &batch, const ZQError &error, const QString &name);

    QList<std::shared_ptr<Batch>> m_batches; // the first is uploaded, the others wait for it
    quint64 m_lastNumber = 0;
    QStringList m_lastLinks;
    QList<LatestUpload> m_unkept;
    QTimer m_keeping;
    QList<std::shared_ptr<WaitingExport>> m_waitingExports;
    QList<ZQNotificationCenter::Token> m_exportObservers;
    Pasteboard m_pasteboard;
    const std::shared_ptr<bool> m_isAlive = std::make_shared<bool>(true); // for what comes later
    ZQOperationQueue m_queue{QStringLiteral("Uploads"), 1};
};

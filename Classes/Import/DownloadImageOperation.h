#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Kit/Foundation/ZQError.h"
#include "Kit/Operations/ZQOperation.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <memory>

class ImageFetch;
class ImportOperation;
class ImportOwner;
class TemporaryFolder;
class UserProgress;

// Downloads the images of a web page into the temporary area, one after another, and has them imported with the
// addresses of image and page: into a new project titled as the page, or into the library.
//
// Made on the main thread. It runs on the queue of `ImageDownloads` and not on the one of
// imports, which would stand still while a server takes its time. Cancelled, it ends the running request, imports
// nothing and leaves nothing.
class DownloadImageOperation : public ZQOperation
{
public:
    struct Failure
    {
        QString imageUrl;
        ZQError error;
    };

    DownloadImageOperation(const ImageDownloadRequest &request, ImportOwner &owner);
    ~DownloadImageOperation() override;

    // Shows it, from before its turn on. Once it is held by a shared pointer.
    void beginProgress();
    void main() override;

    const QString &pageTitle() const { return m_request.pageTitle; }
    const QString &pageUrl() const { return m_request.pageUrl; }
    const QStringList &images() const { return m_request.images; }
    const QString &importAll() const { return m_request.importAll; }
    // Once it has finished.
    const QList<QVariantMap> &filesToImport() const { return m_filesToImport; } // "imageUrl", "imagePath"
    const QList<Failure> &failures() const { return m_failures; }
    // One was refused that a page there could have brought, and no page was named.
    bool lacksPage() const;
    // What became of those that came; null when none did, or it was cancelled.
    std::shared_ptr<ImportOperation> importOperation() const { return m_importOperation; }
    // Null when all came, or it was cancelled.
    ZQError errorOfFailures() const;

private:
    void download(ImageFetch &fetch, const QString &imageUrl);
    void moveProgress(double part);
    QString freePath(const QString &name) const;
    void fixExtension(QString &path, const QString &contentType) const;
    void massDownloadEnded();
    QString titleOfNewProject() const;
    ZQObjectID newProject() const;
    void finish();

    const ImageDownloadRequest m_request;
    ImportOwner &m_owner;
    std::shared_ptr<UserProgress> m_progress; // null: none is shown
    double m_shownPart = 0;                   // of the running image; of the network's thread while that is fetched
    std::unique_ptr<TemporaryFolder> m_folder;
    QList<QVariantMap> m_filesToImport;
    QList<Failure> m_failures;
    std::shared_ptr<ImportOperation> m_importOperation;
};

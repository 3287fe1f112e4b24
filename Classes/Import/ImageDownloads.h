#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QString>

#include <memory>

class DownloadImageOperation;

// The downloads of images from web pages: one page after the other, on a queue of their own, since imports must not
// wait for servers. What could not be downloaded is told at the end. Main thread.
class ImageDownloads : public ImageDownloading
{
public:
    static constexpr int mostQueued = 10; // that pages, which never tire, may have asked for
    static ImageDownloads &sharedImageDownloads();

    enum class Tells { Person, Caller }; // of failures
    std::shared_ptr<DownloadImageOperation> start(const ImageDownloadRequest &request, Tells tells = Tells::Person);
    // Refused, and said so, while they are too many.
    void downloadImages(const ImageDownloadRequest &request) override;
    // Why what a page asks for has to wait, localized: `mostQueued` others are not done. Empty: it has not.
    QString reasonToRefuse() const;
    bool isDownloading() const override { return m_queue.operationCount() > 0; }
    void stopDownloads() override { m_queue.cancelAllOperations(); }

private:
    ImageDownloads() = default;

    bool m_hasRefused = false; // since it last took one: the person knows
    ZQOperationQueue m_queue{QStringLiteral("Downloads"), 1};
};

#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <memory>

class DownloadImageOperation;

// The downloads of images from web pages: one page after the other, on a queue of their own, since imports must not
// wait for servers. What could not be downloaded is told at the end. Main thread.
class ImageDownloads : public ImageDownloading
{
public:
    static ImageDownloads &sharedImageDownloads();

    enum class Tells { Person, Caller }; // of failures
    std::shared_ptr<DownloadImageOperation> start(const ImageDownloadRequest &request, Tells tells = Tells::Person);
    void downloadImages(const ImageDownloadRequest &request) override { start(request); }
    bool isDownloading() const override { return m_queue.operationCount() > 0; }
    void stopDownloads() override { m_queue.cancelAllOperations(); }

private:
    ImageDownloads() = default;

    ZQOperationQueue m_queue{QStringLiteral("Downloads"), 1};
};

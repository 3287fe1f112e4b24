#include "Classes/Import/ImageDownloads.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Import/DownloadImageOperation.h"
#include "Classes/Import/ImportErrors.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"

#include <chrono>
#include <utility>

ImageDownloads &ImageDownloads::sharedImageDownloads()
{
    static ImageDownloads downloads;
    return downloads;
}

std::shared_ptr<DownloadImageOperation> ImageDownloads::start(const ImageDownloadRequest &request, Tells tells)
{
    Q_ASSERT(zqIsMainThread());
    auto operation = std::make_shared<DownloadImageOperation>(request, AImportManager::sharedAImportManager());
    operation->beginProgress();
    if (tells == Tells::Person) {
        operation->setCompletionBlock([weak = std::weak_ptr(operation)] {
            const auto ended = weak.lock();
            if (const ZQError error = ended ? ended->errorOfFailures() : ZQError(); !error.isNull()) {
                presentImportError(error);
            }
        });
    }
    m_queue.addOperation(operation);
    return operation;
}

QString ImageDownloads::reasonToRefuse() const
{
    return m_queue.operationCount() < mostQueued
               ? QString()
               : zqFormat(
                     zqLocalized("The images of %d pages are still being downloaded. Try again when some are done."),
                     {mostQueued});
}

void ImageDownloads::downloadImages(const ImageDownloadRequest &request)
{
    constexpr std::chrono::milliseconds longEnoughToRead{6000};
    const QString reason = reasonToRefuse();
    if (request.asker == ImageDownloadRequest::Asker::Person || reason.isEmpty()) {
        m_hasRefused = false;
        start(request);
    } else if (auto *const delegate = tamberin_AppDelegate::sharedDelegate();
               delegate && !std::exchange(m_hasRefused, true)) {
        delegate->userInteraction().showNotificationWithText(reason, NotificationPlace::Window, longEnoughToRead);
    }
}

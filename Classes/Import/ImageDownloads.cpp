#include "Classes/Import/ImageDownloads.h"

#include "Classes/Import/AImportManager.h"
#include "Classes/Import/DownloadImageOperation.h"
#include "Classes/Import/ImportErrors.h"
#include "Kit/Operations/ZQMainThread.h"

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

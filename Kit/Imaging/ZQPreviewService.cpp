#include "Kit/Imaging/ZQPreviewService.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQRenderNotice.h"
#include "Kit/Imaging/ZQRenderPool.h"

#include <QFileInfo>

#include <utility>

namespace {

// What document bundles keep as their own preview, best first.
QString previewInsideBundle(const QString &path)
{
    for (const char *name :
         {"QuickLook/Preview.png", "QuickLook/Preview.jpg", "QuickLook/Preview.tiff", "QuickLook/Preview.pdf",
          "QuickLook/Thumbnail.png", "QuickLook/Thumbnail.jpg", "QuickLook/Thumbnail.tiff"}) {
        const QString preview = path + u'/' + QLatin1String(name);
        if (QFileInfo(preview).isFile()) {
            return preview;
        }
    }
    return {};
}

} // namespace

void ZQPreviewService::prepare()
{
    ZQRenderPool::shared().prepare();
}

void ZQPreviewService::setUnconfinedHandler(std::function<void()> handler)
{
    zqSetUnconfinedHandler(std::move(handler));
}

ZQBitmap ZQPreviewService::previewOfFile(const QString &path, QSize box, ZQError *error, int frame,
                                         std::optional<ZQImageProperties> *properties)
{
    const QFileInfo info(path);
    const QString source = info.isDir() ? previewInsideBundle(path) : path;
    if (source.isEmpty() || box.isEmpty()) {
        zqSetError(error, zqImagingError(ZQImagingErrorCode::UnknownFormat, path, zqLocalized("It holds no preview.")));
        return {};
    }
    const ZQRenderPool::Result result = ZQRenderPool::shared().perform(ZQRenderRequest::Kind::Preview, source, box,
                                                                       frame, error, properties != nullptr);
    if (properties) {
        *properties = result.properties;
    }
    return result.bitmap;
}

#include "Kit/Imaging/ZQPreviewService.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageDecoding.h"
#include "Kit/Imaging/ZQThumbnailers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr qint64 sniffedBytes = 4096;

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

bool isSVG(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray head = file.read(sniffedBytes);
    const bool compressed = head.startsWith("\x1f\x8b") && path.endsWith(QLatin1String(".svgz"), Qt::CaseInsensitive);
    return compressed || head.contains("<svg") || head.contains(":svg");
}

} // namespace

ZQBitmap ZQPreviewService::previewOfFile(const QString &path, QSize box, ZQError *error)
{
    const QFileInfo info(path);
    const QString source = info.isDir() ? previewInsideBundle(path) : path;
    if (source.isEmpty() || box.isEmpty()) {
        zqSetError(error, zqImagingError(ZQImagingErrorCode::UnknownFormat, path, zqLocalized("It holds no preview.")));
        return {};
    }
    ZQError failure;
    const ZQBitmap decoded = zqDecodeFile({source, box, 0, true, zqPaperOfFile(source)}, &failure);
    if (!decoded.isNull()) {
        return decoded;
    }
    if (failure.code == int(ZQImagingErrorCode::UnknownFormat)) {
        if (isSVG(source)) {
            return zqSVGDecoder.decode({source, box, 0, true, ZQPaper::Transparent}, error);
        }
        const ZQBitmap drawn = zqThumbnailerPreview(source, box);
        if (!drawn.isNull()) {
            return drawn;
        }
    }
    zqSetError(error, failure);
    return {};
}

#include "Kit/Imaging/ZQImageExport.h"

#include "Kit/Files/ZQNewFile.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageEncoding.h"
#include "Kit/Imaging/ZQImagingError.h"
#include "Kit/Imaging/ZQRenderPool.h"

#include <cmath>

namespace {

constexpr double longestSide = 10'000'000; // larger ones are refused anyway
constexpr double roundingError = 1e-6;

int side(double pixels)
{
    return int(std::clamp(pixels, 1.0, longestSide));
}

ZQError namingFile(ZQError error, const QString &path)
{
    return error.domain == ZQError::posixDomain ? ZQError::posix(error.code, path) : error;
}

} // namespace

std::optional<QSize> zqExportPixelSize(QSize pixels, const ZQExportSize &asked)
{
    const double width = pixels.width();
    const double height = pixels.height();
    if (pixels.isEmpty() || std::isnan(asked.percentage.value_or(0))) {
        return std::nullopt;
    }
    if (asked.percentage) {
        const double part = *asked.percentage / 100;
        const QSize size(side(std::floor(width * part + roundingError)),
                         side(std::floor(height * part + roundingError)));
        return size == pixels ? std::nullopt : std::optional(size);
    }
    if (!asked.size || std::isnan(asked.size->width()) || std::isnan(asked.size->height())) {
        return std::nullopt;
    }
    const double across = asked.size->width() / width;
    const double down = asked.size->height() / height;
    const double factor = across <= 0 ? down : (down <= 0 ? across : std::min(across, down));
    if (factor >= 1) {
        return std::nullopt;
    }
    const QSize size(side(std::round(width * factor)), side(std::round(height * factor)));
    return size == pixels ? std::nullopt : std::optional(size);
}

std::optional<ZQExportedImage> zqExportImageFile(const QString &source, const ZQExportEncoding &encoding,
                                                 const QString &path, ZQError *error)
{
    auto file = ZQNewFile::make(path, error);
    ZQError failure;
    const auto out =
        file ? ZQRenderPool::shared().exportFile(source, encoding, file->descriptor(), &failure) : std::nullopt;
    if (file && !out) {
        zqSetError(error, namingFile(failure, path));
    }
    return out && file->place(error) ? out : std::nullopt;
}

std::optional<ZQExportedImage> zqExportBitmap(const ZQBitmap &bitmap, const ZQExportEncoding &encoding,
                                              const QString &path, ZQError *error)
{
    if (bitmap.isNull()) {
        zqSetError(error,
                   zqExportError(ZQImagingErrorCode::Damaged, path, zqLocalized("There is no picture to write.")));
        return std::nullopt;
    }
    auto file = ZQNewFile::make(path, error);
    if (!file) {
        return std::nullopt;
    }
    ZQError failure;
    const auto out = zqEncodeBitmap(bitmap, encoding, file->descriptor(), &failure);
    if (!out) {
        const bool isOfImaging = failure.domain != ZQError::posixDomain;
        zqSetError(error, isOfImaging ? zqExportError(ZQImagingErrorCode(failure.code), path,
                                                      failure.userInfo.value(ZQError::failureReasonKey).toString())
                                      : namingFile(failure, path));
        return std::nullopt;
    }
    if (ZQCancellation::isCurrentCancelled()) {
        zqSetError(error, zqExportError(ZQImagingErrorCode::Cancelled, path, zqLocalized("That was cancelled.")));
        return std::nullopt;
    }
    return file->place(error) ? out : std::nullopt;
}

#include "Classes/Import/ImageImportOperation.h"

#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Models/DataModel/ZQLibraryImage.h"

#include <algorithm>
#include <limits>

QString ImageImportOperation::itemClass() const
{
    return ZQLibraryImage::entityName();
}

void ImageImportOperation::fillExtension()
{
    BaseImportOperation::fillExtension();
    const QString extension = m_fileData->value(QStringLiteral("extension")).toString();
    if (extension == u"jpeg") {
        m_fileData->insert(QStringLiteral("extension"), QStringLiteral("jpg"));
    } else if (extension == u"tif") {
        m_fileData->insert(QStringLiteral("extension"), QStringLiteral("tiff"));
    }
}

void ImageImportOperation::fillMetadata()
{
    BaseImportOperation::fillMetadata();
    const auto properties = readPicture();
    if (!properties) {
        return;
    }
    const qint64 pixels = qint64(properties->pixelWidth) * properties->pixelHeight;
    if (pixels > ZQImageSource::maximumPixels) {
        drop(zqFormat(zqLocalized("It has too many pixels (%d × %d). Make it smaller and import it again."),
                      {properties->pixelWidth, properties->pixelHeight}));
        return;
    }
    m_keywords = properties->keywords;
    const bool isTurned = properties->orientation == 6 || properties->orientation == 8;
    const QSize stored(properties->pixelWidth, properties->pixelHeight);
    const QSize size = isTurned ? stored.transposed() : stored;
    if (!size.isEmpty()) {
        setPixelSize(size);
        m_fileData->insert(QStringLiteral("pixelTotal"), pixels);
    }
    constexpr int most = std::numeric_limits<qint16>::max();
    m_fileData->insert({{QStringLiteral("pixelDepth"), std::clamp(properties->bitsPerSample, 0, most)},
                        {QStringLiteral("pixelDpi"), std::clamp(properties->dpi, 0, most)},
                        {QStringLiteral("animated"), properties->frameCount > 1}});
    if (!properties->colorModel.isEmpty()) {
        m_fileData->insert(QStringLiteral("color_model"), properties->colorModel);
    }
}

void ImageImportOperation::fillSize()
{
    if (!addSizeTag() && m_fileData->value(QStringLiteral("extension")) == QStringLiteral("ai")) {
        addVectorTag();
    }
}

#include "Classes/Import/ItemPicture.h"

#include "Classes/Import/ColorFinder.h"
#include "Classes/Import/ImportQueries.h"
#include "Classes/Import/ThumbGenerator.h"
#include "Kit/Imaging/ZQImageDestination.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QFileInfo>

void ItemPicture::draw(const QString &path, std::optional<ZQImageProperties> *properties)
{
    m_isDrawn = true;
    m_showsFileItself = ImportQueries::canSkipThumbForPath(path);
    // Views will decode the file again and again: one that cannot be decoded is told now. The colours come from this.
    m_thumbnail = m_showsFileItself
                      ? ZQImageSource::thumbnailOfFile(path, ColorFinder::decodedSize, &m_drawError, 0, properties)
                      : ThumbGenerator::newThumbForImageURL(path, properties, &m_drawError);
}

std::optional<ZQImageProperties> ItemPicture::drawWithProperties(const QString &path)
{
    std::optional<ZQImageProperties> properties;
    draw(path, &properties);
    return properties;
}

bool ItemPicture::writeRepresentation(const ZQBitmap &bitmap, const QString &itemDirectory, ZQError *error)
{
    if (!ZQImageDestination::writePNG(bitmap, itemDirectory + u'/' + ZQLibraryBaseItem::representationBitmapName,
                                      error)) {
        return false;
    }
    m_representation = bitmap;
    return true;
}

void ItemPicture::finish(const QString &path, const QString &itemDirectory, ZQError *error)
{
    if (!m_isDrawn) {
        draw(path, nullptr);
    }
    *error = m_drawError;
    if (!m_showsFileItself && !m_thumbnail.isNull()) {
        m_thumbnailPath = ThumbGenerator::writeThumb(m_thumbnail, path, itemDirectory, error);
    }
}

QString ItemPicture::thumbnailName() const
{
    return QFileInfo(m_thumbnailPath).fileName();
}

bool ItemPicture::isIncomplete() const
{
    return (m_representation.isNull() ? m_thumbnail : m_representation).isIncomplete();
}

QStringList ItemPicture::colors(const QString &path) const
{
    if (m_thumbnailPath.isEmpty()) {
        return m_thumbnail.isNull() ? ColorFinder::colorsForImageURL(path) : ColorFinder::colorsForBitmap(m_thumbnail);
    }
    // A PNG thumbnail holds the very pixels that were made; those of a JPEG are known only after reading it back.
    const bool isExact = m_thumbnailPath.endsWith(QStringLiteral(".png")) && !m_thumbnail.isNull();
    return isExact ? ColorFinder::colorsForBitmap(m_thumbnail) : ColorFinder::colorsForImageURL(m_thumbnailPath);
}

ZQPictureFingerprint ItemPicture::fingerprint() const
{
    return ZQPictureFingerprint::of(m_thumbnail);
}

void ItemPicture::release()
{
    m_representation = {};
    m_thumbnail = {};
}

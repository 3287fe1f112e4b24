#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Imaging/ZQBitmap.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Models/DataModel/ZQPictureFingerprint.h"

#include <QString>
#include <QStringList>

#include <optional>

// What is drawn of one file that becomes an item: its thumbnail, the picture that stands for a document, and the
// colours and the fingerprint that are found in them. The file is decoded once, by a worker process, however much of
// this is asked for.
//
// One thread at a time; touches no store. Errors are those of drawing and of writing into the item directory.
class ItemPicture
{
public:
    // Draws the thumbnail, along with what the file says of itself; nothing when it cannot be read. Once for an item.
    std::optional<ZQImageProperties> drawWithProperties(const QString &path);
    // Writes the picture that stands for a document into the item directory.
    bool writeRepresentation(const ZQBitmap &bitmap, const QString &itemDirectory, ZQError *error);
    // Draws the thumbnail unless that was done, and writes it into the item directory unless views show the file
    // itself. An error beside a thumbnail's name says that only writing failed.
    void finish(const QString &path, const QString &itemDirectory, ZQError *error);

    bool isShownByItself() const { return m_showsFileItself && !m_thumbnail.isNull(); } // no thumbnail is kept
    QString thumbnailName() const; // in the item directory; empty: there is none
    bool isIncomplete() const;     // only a part of it could be drawn
    // By name, the main one first.
    QStringList colors(const QString &path) const;
    ZQPictureFingerprint fingerprint() const; // of the pixels that were drawn
    void release();                           // the pixels

private:
    void draw(const QString &path, std::optional<ZQImageProperties> *properties);

    QString m_thumbnailPath;
    ZQBitmap m_representation;
    ZQBitmap m_thumbnail;
    ZQError m_drawError; // why there is no thumbnail, once drawn
    bool m_isDrawn = false;
    bool m_showsFileItself = false;
};

#pragma once

#include <QByteArray>

class ZQBitmap;
class ZQLibraryBaseItem;

// What an item keeps of its picture, so that likeness and colours are found without a look at any picture. Made from
// the pixels of a thumbnail, wherever one is made. Any thread.
struct ZQPictureFingerprint
{
    QByteArray pictureHash = QByteArray(""); // ZQPictureHash; empty, and not null: it shows nothing
    QByteArray palette;                      // ZQPalette

    // Of no picture: as of one that shows nothing.
    static ZQPictureFingerprint of(const ZQBitmap &bitmap);
    void applyTo(ZQLibraryBaseItem &item) const;
    // The item's picture is another one, and is to be looked at again.
    static void removeFrom(ZQLibraryBaseItem &item);
};

#pragma once

#include "Kit/Imaging/Decoders/ZQSourceFile.h"

#include <QRect>

#include <optional>
#include <vector>

// Where the tiles of a JPEG 2000 picture are, on its grid and in its file, read without decoding.
struct ZQJPEG2000Layout
{
    bool isFile = false;   // a codestream in boxes; otherwise the codestream alone
    bool isWhole = false;  // it comes to its end mark
    quint64 dataEnd = 0;   // offset in the file after the last data of a tile
    quint64 dataBytes = 0; // all data of tiles that is there
    int components = 0;
    QRect area;       // the picture on the grid
    QPoint firstTile; // where it begins on the grid; may be outside the area
    QSize tileSize;
    int tilesAcross = 0;      // row by row
    std::vector<bool> isTile; // for each: whether there is data of it

    struct TilePart
    {
        quint16 tile;
        quint64 place; // offset in the file
    };
    std::vector<TilePart> parts; // those that have begun, in the order of the file

    // The part of a tile that shows.
    QRect tileArea(int tile) const;
    // The pixels of the tiles of which there is data.
    qint64 coveredPixels() const;
};

// Nothing when it is no such picture, or its headers are cut or make no sense.
std::optional<ZQJPEG2000Layout> zqLayoutOfJPEG2000(const ZQSourceFile::Bytes &bytes);

// Makes every tile say that it has as many parts as there are: readers wait for all of them.
void zqCloseTilesOfJPEG2000(ZQSourceFile::Bytes &bytes, const ZQJPEG2000Layout &layout);

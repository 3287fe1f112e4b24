#pragma once

#include "Models/DataModel/_ZQLibrarySketch.h"

// A Sketch document: a package with its own preview or, as newer versions write it, a file that holds one.
class ZQLibrarySketch : public _ZQLibrarySketch
{
public:
    QString detailItemURL() const override;
    QString pixelSizeString() const override;
    qint64 byteSize() const override;
    static qint64 folderSizeAtURL(const QString &path); // bytes of all files below; links are not followed
};

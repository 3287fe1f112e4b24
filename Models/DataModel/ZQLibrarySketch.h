#pragma once

#include "Models/DataModel/_ZQLibrarySketch.h"

// A Sketch document: a package with its own preview.
class ZQLibrarySketch : public _ZQLibrarySketch
{
public:
    QString detailItemURL() const override;
    QString pixelSizeString() const override;
    qint64 byteSize() const override;
    static qint64 folderSizeAtURL(const QString &path); // bytes of all files below; links are not followed
};

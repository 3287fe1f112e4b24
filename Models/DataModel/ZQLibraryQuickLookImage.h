#pragma once

#include "Models/DataModel/_ZQLibraryQuickLookImage.h"

// Any file that the desktop's preview service renders.
class ZQLibraryQuickLookImage : public _ZQLibraryQuickLookImage
{
public:
    bool hasRepresentationBitmap() const override { return true; }
    ZQBitmap renderRepresentationBitmap(const QString &path, ZQError *error = nullptr) const override;
    QString invalidImageMessage() const override { return QStringLiteral("file %@ is not a valid image"); }
};

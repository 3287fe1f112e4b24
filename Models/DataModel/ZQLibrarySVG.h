#pragma once

#include "Models/DataModel/_ZQLibrarySVG.h"

// An SVG document, shown by a bitmap.
class ZQLibrarySVG : public _ZQLibrarySVG
{
public:
    bool hasRepresentationBitmap() const override { return true; }
    ZQBitmap renderRepresentationBitmap(const QString &path, ZQError *error = nullptr) const override;
    QString invalidImageMessage() const override { return QStringLiteral("SVG %@ is not a valid image"); }
    QString pixelSizeString() const override;
};

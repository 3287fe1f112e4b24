#pragma once

#include "Models/DataModel/_ZQLibraryEPS.h"

// An EPS document, shown by a bitmap of its bounding box.
class ZQLibraryEPS : public _ZQLibraryEPS
{
public:
    bool hasRepresentationBitmap() const override { return true; }
    ZQBitmap renderRepresentationBitmap(const QString &path, ZQError *error = nullptr) const override;
    QString invalidImageMessage() const override { return QStringLiteral("EPS %@ is not a valid image"); }
};

#pragma once

#include "Models/DataModel/_ZQLibraryAcorn.h"

// An Acorn document, shown by the composite image it holds.
class ZQLibraryAcorn : public _ZQLibraryAcorn
{
public:
    bool hasRepresentationBitmap() const override { return true; }
    ZQBitmap renderRepresentationBitmap(const QString &path, ZQError *error = nullptr) const override;
    QString invalidImageMessage() const override { return QStringLiteral("Acorn %@ is not a valid image"); }
};

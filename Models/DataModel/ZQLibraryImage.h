#pragma once

#include "Models/DataModel/_ZQLibraryImage.h"

// A bitmap image.
class ZQLibraryImage : public _ZQLibraryImage
{
public:
    ZQBitmap exportImageRep(ZQError *error = nullptr) const override;
};

#pragma once

#include "Models/DataModel/_ZQLibraryImage.h"

// A bitmap image.
class ZQLibraryImage : public _ZQLibraryImage
{
public:
    ZQExportRepresentation exportRepresentation() const override;
};

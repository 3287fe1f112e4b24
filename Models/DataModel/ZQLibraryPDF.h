#pragma once

#include "Models/DataModel/_ZQLibraryPDF.h"

// A PDF document.
class ZQLibraryPDF : public _ZQLibraryPDF
{
public:
    ZQBitmap exportImageRep(ZQError *error = nullptr) const override; // the first page
};

#pragma once

#include "Models/DataModel/_ZQLibraryPDF.h"

// A PDF document.
class ZQLibraryPDF : public _ZQLibraryPDF
{
public:
    ZQExportRepresentation exportRepresentation() const override; // the first page
};

#pragma once

#include "Classes/Import/BaseImportOperation.h"

// Imports a document that the image decoder cannot show by itself. Its size is that of the picture that stands for it,
// since the file's header tells nothing about pixels, and it gets the tag for that size.
class DocumentImportOperation : public BaseImportOperation
{
public:
    using BaseImportOperation::BaseImportOperation;

protected:
    void fillSize() override { addSizeTag(); }
    // Keeps the picture and its size; without one the file is dropped for `error`, or with `invalidMessage`, in which
    // "%@" is the file's name.
    void keepRepresentation(const ZQBitmap &bitmap, const char *invalidMessage, const ZQError &error)
    {
        if (writeRepresentationBitmap(bitmap, invalidMessage, error)) {
            setPixelSize(bitmap.size());
        }
    }
};
